#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

// Runs a fuzz entry over saved inputs, and over a batch of mutated ones that is the same each time. It is the
// main of an ordinary test; a real fuzzer brings its own.
//
//   replay [folder of saved inputs [number of mutated inputs]]
//
// OVRYN_FUZZ_CORPUS and OVRYN_FUZZ_MUTATIONS, which the build sets, are what stands without arguments.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace
{

using Input = std::vector<std::uint8_t>;

constexpr std::size_t kMaxInputSize = 64 * 1024;

std::vector<Input> savedInputs(const std::filesystem::path &folder)
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_regular_file())
            paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end()); // the order of a folder differs from machine to machine
    std::vector<Input> inputs;
    for (const auto &path : paths) {
        std::ifstream file(path, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return inputs;
}

void run(const Input &input)
{
    // a copy of exactly this size, so that the address sanitizer sees a read behind it
    const Input exact(input.begin(), input.end());
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

/// The generator's own remainder, because the library's distributions differ between implementations.
std::size_t below(std::mt19937 &random, std::size_t limit)
{
    return limit ? random() % limit : 0;
}

void mutate(Input &input, const std::vector<Input> &saved, std::mt19937 &random)
{
    constexpr std::uint8_t telling[] = {0x00, 0x01, 0x7F, 0x80, 0xFE, 0xFF};
    for (std::size_t step = 1 + below(random, 8); step > 0; --step) {
        const std::size_t at = below(random, input.size() + 1);
        switch (below(random, 6)) {
        case 0: // one bit
            if (at < input.size())
                input[at] = static_cast<std::uint8_t>(input[at] ^ (1u << below(random, 8)));
            break;
        case 1: // a telling byte, a few times
            for (std::size_t i = at; i < std::min(input.size(), at + 1 + below(random, 8)); ++i)
                input[i] = telling[below(random, std::size(telling))];
            break;
        case 2: // any byte more
            input.insert(input.begin() + static_cast<std::ptrdiff_t>(at), static_cast<std::uint8_t>(random()));
            break;
        case 3: // a piece less
            input.erase(input.begin() + static_cast<std::ptrdiff_t>(at),
                        input.begin() + static_cast<std::ptrdiff_t>(std::min(input.size(), at + below(random, 16))));
            break;
        case 4: // cut off
            input.resize(at);
            break;
        default: { // a piece of another input
            const Input &other = saved[below(random, saved.size())];
            const std::size_t from = below(random, other.size());
            const std::size_t length = std::min(other.size() - from, below(random, 64));
            input.insert(input.begin() + static_cast<std::ptrdiff_t>(at),
                         other.begin() + static_cast<std::ptrdiff_t>(from),
                         other.begin() + static_cast<std::ptrdiff_t>(from + length));
            break;
        }
        }
    }
    input.resize(std::min(input.size(), kMaxInputSize));
}

} // namespace

int main(int argc, char **argv)
{
    const char *const folder = argc > 1 ? argv[1] : OVRYN_FUZZ_CORPUS;
    const int mutations = argc > 2 ? std::atoi(argv[2]) : OVRYN_FUZZ_MUTATIONS;
    const std::vector<Input> saved = savedInputs(folder);
    if (saved.empty()) {
        std::fprintf(stderr, "no saved inputs in %s\n", folder);
        return 1;
    }
    run({});
    for (const Input &input : saved)
        run(input);

    std::mt19937 random(20180417); // any fixed number: a failure must come back
    for (int i = 0; i < mutations; ++i) {
        Input input = saved[below(random, saved.size())];
        mutate(input, saved, random);
        run(input);
    }
    std::printf("%zu saved inputs, %d mutated ones\n", saved.size(), mutations);
    return 0;
}
