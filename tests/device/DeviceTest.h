#pragma once

#include "device/NvGpuControl.h"
#include "support/DeviceFields.h"
#include "support/RawDriver.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <limits>

/// \file
/// What several tests of the device layer share. Lines are those of `StandInDriver::rawCalls`.

/// Prepares a driver for a row of a table.
using Arrange = std::function<void(RawDriver &)>;
Q_DECLARE_METATYPE(Arrange)

constexpr qint32 kLowest = std::numeric_limits<qint32>::min();
constexpr qint32 kHighest = std::numeric_limits<qint32>::max();

const char *const kReadPstates = "GPU_GetPstates20 gpu0 0x31CF8";
const char *const kReadBaseClocks = "GPU_GetAllClockFrequencies gpu0 0x30108 [4]=1";
const char *const kReadRamType = "GPU_GetRamType gpu0";
const char *const kThermalInfoRead = "GPU_ClientThermalPoliciesGetInfo gpu0 0x20068";

/// Words of a record by their byte offset, without those that are 0.
inline QString words(std::initializer_list<QPair<int, qint32>> values)
{
    QString text;
    for (const QPair<int, qint32> &value : values) {
        if (value.second)
            text += QString(" [%1]=%2").arg(value.first).arg(value.second);
    }
    return text;
}

inline QString shown(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

/// The bytes of the last write to an I2C address; none where nothing was written.
inline QByteArray lastFrame(const StandInDriver &driver, quint8 address)
{
    const QStringList frames = driver.frames(address);
    return frames.isEmpty() ? QByteArray() : QByteArray::fromHex(frames.last().toLatin1());
}

constexpr quint8 kLedAddress = 0xA0;
constexpr quint8 kLcdAddress = 0xAC;

/// The running extremes of one quantity: largest, smallest.
inline FieldList extreme(NvGpuControl &gpu, int index)
{
    NvExtremes extremes;
    gpu.getExtremes(extremes);
    return fields(extremes.pairs[std::size_t(index)]);
}
