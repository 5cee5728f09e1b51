#pragma once

#include "device/nvapi/NvApiRecords.h"

#include <utility>
#include <vector>

/// One transfer, in the form in which the program makes it; a test changes what it is about.
struct Transfer
{
    quint8 reg = 0;
    std::vector<quint8> data;
    NV_I2C_INFO record{};

    Transfer(quint8 address, quint32 regSize, std::vector<quint8> bytes, quint32 version = kI2cInfoVersion3)
        : data(std::move(bytes))
    {
        record.version = version;
        record.i2cDevAddress = address;
        record.pbI2cRegAddress = &reg;
        record.regAddrSize = regSize;
        record.pbData = data.data();
        record.cbSize = static_cast<quint32>(data.size());
        record.i2cSpeed = kI2cSpeedDeprecated;
        record.i2cSpeedKhz = NVAPI_I2C_SPEED_400KHZ;
        record.portId = 1;
        record.bIsPortIdSet = 1;
    }
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;
};
