// The bus that the board's own devices hang on.

#include "simulated/Operations.h"

#include <algorithm>

namespace simulated
{
namespace
{

constexpr quint8 kBoardPort = 1;
constexpr quint8 kLedWriteAddress = 0xA0;
constexpr quint8 kLedReadAddress = 0xA1;
constexpr quint8 kLcdWriteAddress = 0xAC;
constexpr quint32 kLargestTransfer = 256;
constexpr quint32 kLargestRegisterAddress = 4;
constexpr std::size_t kSensorSize = 2;

/// Two bytes of a sensor: twelve bits of sixteenths of a degree, two's complement, left-aligned.
std::vector<quint8> sensorBytes(qint32 sixteenths)
{
    const auto raw = static_cast<quint32>(sixteenths) << 4;
    return {static_cast<quint8>(raw >> 8 & 0xFF), static_cast<quint8>(raw & 0xFF)};
}

} // namespace

NvAPI_Status Operations::checkTransfer(const NV_I2C_INFO &record)
{
    if (record.cbSize == 0 || record.cbSize > kLargestTransfer || !record.pbData)
        return refuse(NVAPI_INVALID_ARGUMENT, "no data");
    if (record.regAddrSize > kLargestRegisterAddress || (record.regAddrSize > 0 && !record.pbI2cRegAddress))
        return refuse(NVAPI_INVALID_ARGUMENT, "bad register address");
    // only the newest record tells the port; the others mean the board's own
    const bool otherPort =
        version() == kI2cInfoVersion3 && (record.bIsPortIdSet & 1u) != 0 && record.portId != kBoardPort;
    if (record.bIsDDCPort != 0 || otherPort)
        return refuse(NVAPI_ERROR, "no device on this port");
    return NVAPI_OK;
}

NvAPI_Status Operations::readBus(NV_I2C_INFO *record)
{
    const NvAPI_Status refusal = checkTransfer(*record);
    if (refusal != NVAPI_OK)
        return refusal;

    std::vector<quint8> answer;
    if (record->i2cDevAddress == kLedReadAddress && card().led) {
        if (record->regAddrSize != 0)
            return refuse(NVAPI_ERROR, "the LED controller has no registers");
        answer = card().led->status();
    }
    for (const BoardSensorParameters &sensor : card().parameters.boardSensors) {
        if (record->i2cDevAddress != sensor.address)
            continue;
        if (record->regAddrSize != 1 || record->pbI2cRegAddress[0] != 0)
            return refuse(NVAPI_ERROR, "the sensor has register 0 only");
        answer = sensorBytes(card().boardTemperature16(sensor));
    }
    if (answer.empty())
        return refuse(NVAPI_ERROR, "no device answers");
    if (record->cbSize != answer.size())
        return refuse(NVAPI_ERROR, "the device answers " + std::to_string(answer.size()) + " bytes");
    std::copy(answer.begin(), answer.end(), record->pbData);
    return NVAPI_OK;
}

NvAPI_Status Operations::writeBus(NV_I2C_INFO *record)
{
    const NvAPI_Status refusal = checkTransfer(*record);
    if (refusal != NVAPI_OK)
        return refusal;
    if (record->regAddrSize != 0)
        return refuse(NVAPI_ERROR, "no device with registers to write");

    const std::vector<quint8> bytes(record->pbData, record->pbData + record->cbSize);
    std::string fault;
    if (record->i2cDevAddress == kLedWriteAddress && card().led)
        fault = card().led->write(bytes);
    else if (record->i2cDevAddress == kLcdWriteAddress && card().lcd)
        fault = card().lcd->write(bytes);
    else
        fault = "no device answers";
    return fault.empty() ? NVAPI_OK : refuse(NVAPI_ERROR, fault);
}

NvAPI_Status Operations::NvAPI_I2CRead(NvPhysicalGpuHandle, NV_I2C_INFO *record)
{
    return readBus(record);
}

NvAPI_Status Operations::NvAPI_I2CReadEx(NvPhysicalGpuHandle, NV_I2C_INFO *record, quint32 *)
{
    return readBus(record);
}

NvAPI_Status Operations::NvAPI_I2CWrite(NvPhysicalGpuHandle, NV_I2C_INFO *record)
{
    return writeBus(record);
}

NvAPI_Status Operations::NvAPI_I2CWriteEx(NvPhysicalGpuHandle, NV_I2C_INFO *record, quint32 *)
{
    return writeBus(record);
}

} // namespace simulated
