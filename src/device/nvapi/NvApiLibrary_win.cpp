#include "device/nvapi/NvApiLibrary.h"

#include <windows.h>

// The program is a 32-bit process, so the library is nvapi.dll also on a 64-bit system: the loader
// looks for it in the system folder of 32-bit processes. Its I2C record has the size that the version
// words say.
static_assert(sizeof(void *) == 4, "a 64-bit process needs another library and the larger I2C record");

NvApiLibrary openSystemNvApiLibrary()
{
    // From the system folder only: a file of that name beside the program is not the driver.
    const HMODULE library = LoadLibraryExW(L"nvapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (!library)
        return {};
    const FARPROC entry = GetProcAddress(library, "nvapi_QueryInterface");
    if (!entry) {
        FreeLibrary(library);
        return {};
    }
    // Through void *: the compilers warn about a direct cast of the function's type.
    void *const address = reinterpret_cast<void *>(entry);
    return {reinterpret_cast<NvApiQueryInterface>(address), [library] { FreeLibrary(library); }, false};
}
