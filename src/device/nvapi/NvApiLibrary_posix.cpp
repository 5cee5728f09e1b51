#include "device/nvapi/NvApiLibrary.h"

#include <dlfcn.h>

namespace
{

struct Candidate
{
    const char *fileName;
    bool wantsNativeI2cSize;
};

// clang-format off
constexpr Candidate kCandidates[] = {
    // file                     native I2C size
    { "libnvapi.so.1",          false }, // a stand-in in the library path goes before the card's own driver
    { "libnvidia-api.so.1",     true  }, // the card driver's own
};
// clang-format on

} // namespace

NvApiLibrary openSystemNvApiLibrary()
{
    for (const Candidate &candidate : kCandidates) {
        void *const library = dlopen(candidate.fileName, RTLD_NOW | RTLD_LOCAL);
        if (!library)
            continue;
        void *const entry = dlsym(library, "nvapi_QueryInterface");
        if (!entry) {
            dlclose(library);
            continue;
        }
        return {reinterpret_cast<NvApiQueryInterface>(entry), [library] { dlclose(library); },
                candidate.wantsNativeI2cSize};
    }
    return {};
}
