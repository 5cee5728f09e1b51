#pragma once

#include "support/FakeDriver.h"

#include <QStringList>

/// The frames that the LED controller was sent, oldest first: "05 0A 00 00 F0" each.
inline QStringList ledFrames(const FakeDriver &driver)
{
    QStringList frames;
    for (const QString &call : driver.calls("NvAPI_I2CWrite")) {
        if (!call.contains(QLatin1String("addr=A0")))
            continue;
        const QString data = call.section(QStringLiteral(" data="), 1);
        frames << data.section(QStringLiteral(" ->"), 0, 0);
    }
    return frames;
}
