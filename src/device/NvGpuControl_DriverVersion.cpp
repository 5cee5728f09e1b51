#include "device/NvGpuControl.h"

#include "device/nvapi/NvApi.h"

namespace
{
constexpr std::size_t kBranchTextSize = 64; ///< bytes of the driver's branch text
}

bool NvGpuControl::getDriverVersion(quint32 &version)
{
    version = 0;
    quint32 reported = 0;
    std::array<char, kBranchTextSize> branch{}; // wanted by the call, shown nowhere
    if (NvAPI_SYS_GetDriverAndBranchVersion(&reported, branch.data()) != NVAPI_OK)
        return false;
    version = reported;
    return true;
}
