// A small library under the file name of a card driver's own. It knows one card and the board sensor of address 0x9E,
// and takes the record of a bus transfer apart by bytes: the program's record is what the test is about.

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{

#if defined(OVRYN_NATIVE_SIZES)
// as a 64-bit process has them: 64, 56 and 48 bytes
constexpr std::uint32_t kVersions[] = {0x30040, 0x20038, 0x10030};
constexpr char kName[] = "card driver of its own";
#else
// sizes of a 32-bit process
constexpr std::uint32_t kVersions[] = {0x3002C, 0x20024, 0x10020};
constexpr char kName[] = "stand-in";
#endif

// places in the transfer's record of a 64-bit process
constexpr int kAddressAt = 9;
constexpr int kRegisterPointerAt = 16;
constexpr int kRegisterSizeAt = 24;
constexpr int kDataPointerAt = 32;
constexpr int kDataSizeAt = 40;
constexpr int kSpeedAt = 44;
constexpr int kSpeedCodeAt = 48;
constexpr int kPortAt = 52;
constexpr int kPortSetAt = 56;

constexpr int kOk = 0;
constexpr int kError = -1;
constexpr int kVersionRefused = -9;

char card; ///< its address is the card's handle

/// Place in kVersions of the newest version that is answered.
int newestVersion()
{
    const char *refused = std::getenv("OVRYN_TEST_VERSIONS_REFUSED");
    return refused ? std::atoi(refused) : 0;
}

template <typename Value>
Value at(const unsigned char *record, int offset)
{
    Value value;
    std::memcpy(&value, record + offset, sizeof value);
    return value;
}

int initialise()
{
    return kOk;
}

int unload()
{
    return kOk;
}

int physicalGpus(void **gpus, std::uint32_t *count)
{
    gpus[0] = &card;
    *count = 1;
    return kOk;
}

int fullName(void *, char *name)
{
    std::memcpy(name, kName, sizeof kName);
    return kOk;
}

int read(void *, unsigned char *record)
{
    const auto version = at<std::uint32_t>(record, 0);
    int index = newestVersion();
    while (index < 3 && kVersions[index] != version)
        ++index;
    if (index == 3)
        return kVersionRefused;
    const auto *registerByte = at<const unsigned char *>(record, kRegisterPointerAt);
    const bool forSensor = record[kAddressAt] == 0x9E && at<std::uint32_t>(record, kRegisterSizeAt) == 1 &&
                           *registerByte == 0 && at<std::uint32_t>(record, kDataSizeAt) == 2;
    const bool atSpeed =
        at<std::uint32_t>(record, kSpeedAt) == 0xFFFF && (index == 2 || at<std::uint32_t>(record, kSpeedCodeAt) == 6);
    const bool onPort = index > 0 || (record[kPortAt] == 1 && at<std::uint32_t>(record, kPortSetAt) == 1);
    if (!forSensor || !atSpeed || !onPort)
        return kError;
    auto *data = at<unsigned char *>(record, kDataPointerAt);
    data[0] = static_cast<unsigned char>(30 + index); // degrees: 30 by the newest version, 32 by the oldest
    data[1] = 0;
    return kOk;
}

template <typename Function>
void *entry(Function *function)
{
    return reinterpret_cast<void *>(function);
}

} // namespace

extern "C" __attribute__((visibility("default"))) void *nvapi_QueryInterface(std::uint32_t identifier)
{
    switch (identifier) {
    case 0x0150E828:
        return entry(initialise);
    case 0xD22BDD7E:
        return entry(unload);
    case 0xE5AC921F:
        return entry(physicalGpus);
    case 0xCEEE8E9F:
        return entry(fullName);
    case 0x2FDE12C5:
        return entry(read);
    default:
        return nullptr;
    }
}
