#pragma once

#include "support/CheckedDriver.h"

#include "simulated/StateFile.h"
#include "simulated/front/CardFront.h"

#include <QByteArray>
#include <QVector>

/// The driver's own state file of a card whose controllers took the frames given.
inline QByteArray stateAfter(const std::vector<quint8> &ledFrame, const std::vector<quint8> &lcdFrame)
{
    simulated::CardParameters parameters;
    parameters.name = "GeForce GTX 1070 Ti";
    simulated::Card card(parameters);
    card.led.emplace(quint8(3));
    card.lcd.emplace();
    if (!ledFrame.empty())
        card.led->write(ledFrame);
    if (!lcdFrame.empty())
        card.lcd->write(lcdFrame);
    return QByteArray::fromStdString(simulated::stateText({card, simulated::Card(parameters)}, 0));
}

/// An LCD frame of a GTX 1070 Ti that is half busy, with a right checksum.
inline std::vector<quint8> lcdFrameOf(quint8 command)
{
    // clang-format off
    std::vector<quint8> frame = {
        0xAA, 0x88, 7, command,
        0x00, 0x00, 0x80, 0x00,  // 8388608 KB in all
        0x47, 0x06, 83, 0,       // 1607 MHz, limit 83 degrees
        0xE4, 0x0C,              // at most 3300 RPM
        1, 0, 7, 0, 1, 0, 0,     // 1070 Ti
        0x00, 0x00, 0x20, 0x00,  // 2097152 KB used
        0x93, 0x06, 64, 0,       // 1683 MHz, 64 degrees
        0xC8, 0x05, 0, 0,        // 1480 RPM
    };
    // clang-format on
    quint32 sum = 0;
    for (const quint8 byte : frame)
        sum += byte;
    frame.push_back(static_cast<quint8>(sum & 0xFF));
    frame.push_back(static_cast<quint8>(sum >> 8 & 0xFF));
    return frame;
}
