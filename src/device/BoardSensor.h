#pragma once

#include <QtGlobal>

/// \file
/// The board's temperature sensors: one I2C register of two bytes, the high byte first, whose upper 12 bits
/// are sixteenths of a degree Celsius in two's complement.

constexpr quint8 kBoardSensorAddress9E = 0x9E; ///< 8-bit form, as all addresses
constexpr quint8 kBoardSensorAddress90 = 0x90;
constexpr quint8 kBoardSensorAddress96 = 0x96;
constexpr quint8 kBoardSensorAddress92 = 0x92;

constexpr quint8 kBoardSensorRegister = 0;
constexpr quint32 kBoardSensorRegisterSize = 1; ///< bytes of the register's address
constexpr quint32 kBoardSensorDataSize = 2;     ///< bytes

/// Whole degrees Celsius; the fraction is dropped toward zero. `first` is the byte that was read first.
[[nodiscard]] constexpr qint32 decodeBoardSensor(quint8 first, quint8 second)
{
    constexpr qint32 signBitOfFirst = 0x80;
    constexpr qint32 rawRange = 1 << 12;
    constexpr qint32 stepsPerDegree = 16;

    const qint32 raw = (first << 8 | second) >> 4;
    if (first & signBitOfFirst)
        return (raw - rawRange) / stepsPerDegree;
    return raw / stepsPerDegree;
}
