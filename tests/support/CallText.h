#pragma once

#include "simulated/Call.h"

#include <QString>

/// A call with the names and units of what it is about: "GPU_SetPstates20 gpu0 graphics offset 100000 kHz",
/// "GPU_SetCoolerLevels gpu0 fan 60 % manual", "I2CWrite gpu0 port 1 0xA0: 05 0A 00 00 F0", with "-> -1" after a
/// call that failed. Record versions are left out.
QString callText(const simulated::Call &call);

/// The same without operation and card: "graphics offset 100000 kHz".
QString orderText(const simulated::Call &call);

/// A call as bytes: operation, card, other arguments, version word, every word of the record that is not 0 as
/// [byte offset]=value, and the status where that is not 0: "GPU_GetMemoryInfo gpu0 0x30020 -> -9". A record of the
/// bus holds pointers, so its fields are named: "I2CWrite gpu0 0x3002C addr=A0 reg=00 regSize=0 size=5 speed=FFFF/6
/// port=1/1 data=05 0A 00 00 F0".
QString rawCallText(const simulated::Call &call);

/// The version word as it stands in the texts, "0x30020"; "none" for a call without a record.
QString versionText(const simulated::Call &call);

/// The operation's name without "NvAPI_".
QString operationText(simulated::Operation operation);
