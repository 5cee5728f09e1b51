#pragma once

#include "support/FakeDriver.h"

#include <QStringList>

/// The bytes of the writes that the driver got for an I2C address ("A0"), oldest first: "05 0A 00 00 F0" each. What a
/// refused write was tried with again is left out.
inline QStringList i2cFrames(const FakeDriver &driver, const char *address, const char *card = "gpu")
{
    QStringList frames;
    for (const QString &call : driver.calls("NvAPI_I2CWrite")) {
        if (!call.contains(QLatin1String(" addr=") + QLatin1String(address)) ||
            !call.contains(QLatin1Char(' ') + QLatin1String(card)))
            continue;
        frames << call.section(QStringLiteral(" data="), 1).section(QStringLiteral(" ->"), 0, 0);
    }
    return frames;
}
