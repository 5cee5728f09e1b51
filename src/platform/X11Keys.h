#pragma once

#include <QtGlobal>

/// \file
/// X11 keysyms and the virtual-key codes of the same keys. A keysym is the character of a key, so it changes with
/// Shift, Caps Lock and Num Lock. A virtual-key code is the key itself and changes only with Num Lock. The shifted
/// characters of the digits and the punctuation keys are those of the US layout. Pure functions; any thread.

/// The virtual-key code of the key that gives this keysym; 0 for a key that has none.
[[nodiscard]] quint32 virtualKeyForKeysym(quint32 keysym);

/// The keysym that the key with this virtual-key code gives without Shift; 0 for a code that no key has.
[[nodiscard]] quint32 keysymForVirtualKey(quint32 virtualKey);
