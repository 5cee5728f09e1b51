#pragma once

#include "board/I2cJournal.h"

#include <QList>

/// The frames that the LCD controllers were sent, oldest first; `card` as "gpu1", "gpu" for all.
inline QList<QByteArray> lcdFrames(const FakeDriver &driver, const char *card = "gpu")
{
    QList<QByteArray> frames;
    for (const QString &frame : i2cFrames(driver, "AC", card))
        frames << QByteArray::fromHex(frame.toLatin1());
    return frames;
}

/// The pages that the frames ask for: 0x80, 0x40, 0x20 and 0x10, or 0xF0 for an LCD that is to go dark.
inline QList<int> lcdCommands(const FakeDriver &driver, const char *card = "gpu")
{
    QList<int> commands;
    for (const QByteArray &frame : lcdFrames(driver, card))
        commands << int(quint8(frame.at(3)));
    return commands;
}
