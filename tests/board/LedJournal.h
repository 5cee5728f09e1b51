#pragma once

#include "board/I2cJournal.h"

/// The frames that the LED controller was sent, oldest first: "05 0A 00 00 F0" each.
inline QStringList ledFrames(const FakeDriver &driver)
{
    return i2cFrames(driver, "A0");
}
