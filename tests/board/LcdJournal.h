#pragma once

#include "support/StandInDriver.h"

#include <QList>

constexpr quint8 kLcdAddress = 0xAC;

/// The frames that the LCD controllers were sent, oldest first, of one card or of all.
inline QList<QByteArray> lcdFrames(const StandInDriver &driver, std::optional<quint32> card = std::nullopt)
{
    QList<QByteArray> frames;
    for (const QString &frame : driver.frames(kLcdAddress, card))
        frames << QByteArray::fromHex(frame.toLatin1());
    return frames;
}

/// The pages that the frames ask for: 0x80, 0x40, 0x20 and 0x10, or 0xF0 for an LCD that is to go dark.
inline QList<int> lcdCommands(const StandInDriver &driver, std::optional<quint32> card = std::nullopt)
{
    QList<int> commands;
    for (const QByteArray &frame : lcdFrames(driver, card))
        commands << int(quint8(frame.at(3)));
    return commands;
}
