#include <cstddef>
#include <new>

#include <windows.h>

#include <shellapi.h>

/// \file
/// The entry of a program without a console: turns the wide command line into the narrow arguments of `main`, in the
/// system's code page. Characters that the code page lacks are lost, as with every narrow `main`.

int main(int argc, char **argv);

namespace
{

constexpr int kFailed = -1;
constexpr int kToTheEnd = -1; // source length of a text that ends with a zero

/// Owns the narrow arguments, and gives `main` a second array, which `main` may reorder.
class NarrowArguments
{
public:
    NarrowArguments(int argc, wchar_t **wide)
    {
        const std::size_t places = std::size_t(argc) + 1; // and the null pointer after the last
        if (argc < 0 || places > std::size_t(-1) / sizeof(char *))
            return;
        owned = new (std::nothrow) char *[places]();
        handedOut = new (std::nothrow) char *[places]();
        if (!owned || !handedOut)
            return;
        for (count = 0; count < argc; ++count) {
            owned[count] = narrow(wide[count]);
            if (!owned[count])
                return;
            handedOut[count] = owned[count];
        }
        complete = true;
    }

    ~NarrowArguments()
    {
        for (int i = 0; owned && i < count; ++i)
            delete[] owned[i];
        delete[] owned;
        delete[] handedOut;
    }

    NarrowArguments(const NarrowArguments &) = delete;
    NarrowArguments &operator=(const NarrowArguments &) = delete;

    [[nodiscard]] bool isComplete() const { return complete; }
    [[nodiscard]] char **forMain() { return handedOut; }

private:
    /// A fresh copy of the text, null where there is no memory for it.
    static char *narrow(const wchar_t *text)
    {
        const int bytes = WideCharToMultiByte(CP_ACP, 0, text, kToTheEnd, nullptr, 0, nullptr, nullptr);
        char *converted = new (std::nothrow) char[bytes > 0 ? std::size_t(bytes) : 1];
        if (!converted)
            return nullptr;
        converted[0] = '\0'; // what cannot be converted becomes the empty text
        if (bytes > 0 && WideCharToMultiByte(CP_ACP, 0, text, kToTheEnd, converted, bytes, nullptr, nullptr) != bytes)
            converted[0] = '\0';
        return converted;
    }

    char **owned = nullptr;
    char **handedOut = nullptr;
    int count = 0;
    bool complete = false;
};

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    int argc = 0;
    wchar_t **wide = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (!wide)
        return kFailed;
    NarrowArguments arguments(argc, wide);
    LocalFree(wide);
    if (!arguments.isComplete())
        return kFailed;
    return main(argc, arguments.forMain());
}
