#include "device/NvGpuControl.h"

#include "device/nvapi/NvApi.h"
#include "device/nvapi/VersionLadder.h"

// I2C on the card's bus. A transfer is one driver call, so the driver keeps its bytes together.

namespace
{

constexpr std::array<quint32, 3> kI2cInfoVersions = {kI2cInfoVersion3, kI2cInfoVersion2, kI2cInfoVersion1};

constexpr quint8 kI2cPort = 1; ///< the bus of the LED and LCD controllers and the board sensors

using PlainTransfer = NvAPI_Status (*)(NvPhysicalGpuHandle gpu, NV_I2C_INFO *record);
using ExtendedTransfer = NvAPI_Status (*)(NvPhysicalGpuHandle gpu, NV_I2C_INFO *record, quint32 *twoZeroWords);

/// `reg` is the caller's own copy of the register byte; the record points at it.
NV_I2C_INFO i2cRecord(quint8 address, quint8 *reg, quint32 regSize, quint8 *data, quint32 size)
{
    NV_I2C_INFO record{};
    record.displayMask = 0;
    record.bIsDDCPort = 0;
    record.i2cDevAddress = address;
    record.pbI2cRegAddress = reg; // also when no register byte is sent
    record.regAddrSize = regSize;
    record.pbData = data;
    record.cbSize = size;
    record.i2cSpeed = kI2cSpeedDeprecated;
    record.i2cSpeedKhz = NVAPI_I2C_SPEED_400KHZ;
    record.portId = kI2cPort;
    record.bIsPortIdSet = 1;
    return record;
}

bool transfer(NvPhysicalGpuHandle gpu, NV_I2C_INFO record, PlainTransfer plain, ExtendedTransfer extended)
{
    const auto extendedWithWords = [extended](NvPhysicalGpuHandle card, NV_I2C_INFO *info) {
        quint32 twoZeroWords[2] = {0, 0};
        return extended(card, info, twoZeroWords);
    };
    return descendWithExtendedCall(kI2cInfoVersions, record, plain, extendedWithWords, gpu).succeeded();
}

} // namespace

bool NvGpuControl::i2cRead(quint8 address, quint8 reg, quint32 regSize, quint8 *data, quint32 size)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    return transfer(gpu, i2cRecord(address, &reg, regSize, data, size), NvAPI_I2CRead, NvAPI_I2CReadEx);
}

bool NvGpuControl::i2cWrite(quint8 address, quint8 reg, quint32 regSize, quint8 *data, quint32 size)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    return transfer(gpu, i2cRecord(address, &reg, regSize, data, size), NvAPI_I2CWrite, NvAPI_I2CWriteEx);
}
