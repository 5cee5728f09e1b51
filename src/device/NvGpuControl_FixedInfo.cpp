#include "device/NvGpuControl.h"

#include "device/Arithmetic.h"
#include "device/Units.h"
#include "device/nvapi/DriverText.h"
#include "device/nvapi/NvApi.h"
#include "device/nvapi/VersionLadder.h"

#include <QString>

#include <algorithm>

// The card's fixed information as texts. Read anew at each sample, so that the clocks follow the user's offsets.

namespace
{

const char kUnknown[] = "Unknown";

constexpr std::array<quint32, 3> kChipsetInfoVersions = {kChipsetInfoVersion4, kChipsetInfoVersion3,
                                                         kChipsetInfoVersion2};

struct MemoryType
{
    const char *text;
    qint32 rateFactor; ///< data transfers a clock, as the bandwidth counts them
};

// clang-format off
constexpr MemoryType kMemoryTypes[] = { // the index is the driver's number of the type
    // text      rate factor
    { kUnknown,  2 },
    { "SDRAM",   1 },
    { "DDR1",    2 },
    { "DDR2",    2 },
    { "GDDR2",   2 },
    { "GDDR3",   2 },
    { "GDDR4",   4 }, // the only one with 4, also beside the later types
    { "DDR3",    2 },
    { "GDDR5",   2 },
    { "LPDDR2",  2 },
    { "GDDR5X",  2 },
    { "HBM1",    2 },
    { "HBM2",    2 },
    { "SDDR4",   2 },
};
// clang-format on
static_assert(std::size(kMemoryTypes) == 14, "types 0 to 13");

const MemoryType &memoryTypeOf(quint32 driverType)
{
    return kMemoryTypes[driverType < std::size(kMemoryTypes) ? driverType : 0];
}

/// Formats a number. Qt's decimal point does not depend on the user's locale.
template <typename Number>
std::string formatted(const char *format, Number number)
{
    return QString::asprintf(format, number).toStdString();
}

constexpr double kBitsPerByte = 8;

/// Gigabytes per second from megahertz and bits. The product wraps at 32 bits.
double memoryBandwidth(qint32 rateFactor, qint32 memoryClockMHz, quint32 widthBits)
{
    const quint32 megabits = static_cast<quint32>(rateFactor) * static_cast<quint32>(memoryClockMHz) * widthBits;
    return static_cast<float>(static_cast<double>(megabits)) / kBitsPerByte / kMegabytesPerGigabyte;
}

std::string upperCase(std::string text)
{
    // ASCII only: the BIOS version is hexadecimal and does not depend on the user's locale.
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    return text;
}

/// Asks for the chipset. The result is not used, since the BIOS version is in the field that the chipset's name once
/// had, but the call stays part of each sample.
void readChipset()
{
    NvApiChipsetInfo record{};
    const LadderResult read =
        descendWhile(descendOnRefusedVersion, kChipsetInfoVersions, record, NvAPI_SYS_GetChipSetInfo);
    if (read.status == NVAPI_ERROR)
        dropErrorText(read.status);
}

} // namespace

void NvGpuControl::getFixedInfo(NvInfo &info)
{
    void *const gpu = currentHandle();
    if (!gpu) {
        info = {};
        return;
    }

    DriverTextBuffer name{};
    info.gpuName = NvAPI_GPU_GetFullName(gpu, name.data()) == NVAPI_OK ? driverText(name) : kUnknown;

    NvMemoryInfo memory;
    info.memSize = getMemoryInfo(memory) ? formatted("%dMB", memory.totalKB >> kKBPerMBBits) : kUnknown;

    quint32 driverType = 0;
    if (NvAPI_GPU_GetRamType(gpu, &driverType) != NVAPI_OK)
        driverType = 0;
    const MemoryType &memoryType = memoryTypeOf(driverType);
    info.memType = memoryType.text;
    memoryRateFactor = memoryType.rateFactor;

    // A failed read leaves zeros, which show as 0 MHz.
    NvClockSet custom;
    getBaseClocks(custom, false);
    info.customGpuFreClock = formatted("%dMHz", custom.gpuClock);
    NvClockSet base;
    getBaseClocks(base, true);
    info.gpuFreClock = formatted("%dMHz", base.gpuClock);

    quint32 version = 0;
    // The driver's own integer, such as 38532; without the usual point before its last two digits.
    info.driverVersion = getDriverVersion(version) ? formatted("%d", static_cast<qint32>(version)) : kUnknown;

    readChipset();

    quint32 widthBits = 0;
    quint32 location = 0;
    if (NvAPI_GPU_GetFBWidthAndLocation(gpu, &widthBits, &location) == NVAPI_OK) {
        info.memBitWidth = formatted("%dBIT", static_cast<qint32>(widthBits));
    } else {
        widthBits = 0;
        info.memBitWidth = kUnknown;
    }
    info.memBandWidth = formatted("%.1fGB/s", memoryBandwidth(memoryRateFactor, custom.memoryClock, widthBits));

    info.customMemFreClock = formatted("%dMHz", custom.memoryClock);
    info.memFreClock = formatted("%dMHz", base.memoryClock);
    info.memFreClockChanged = wrappingDifference(custom.memoryClock, base.memoryClock);
    info.gpuFreClockChanged = wrappingDifference(custom.gpuClock, base.gpuClock);

    DriverTextBuffer biosVersion{};
    info.biosVersion = NvAPI_GPU_GetVbiosVersionString(gpu, biosVersion.data()) == NVAPI_OK
                           ? upperCase(driverText(biosVersion))
                           : kUnknown;
}

bool NvGpuControl::getDriverVersion(quint32 &version)
{
    version = 0;
    quint32 reported = 0;
    DriverTextBuffer branch{}; // the call needs it; shown nowhere
    if (NvAPI_SYS_GetDriverAndBranchVersion(&reported, branch.data()) != NVAPI_OK)
        return false;
    version = reported;
    return true;
}
