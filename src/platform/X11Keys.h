#pragma once

#include <QtGlobal>

/// \file
/// X11 keysyms and the virtual-key codes of the same keys. A keysym tells what a key writes, so it changes with
/// Shift, Caps Lock and Num Lock; a virtual-key code tells the key and changes with Num Lock alone. What Shift
/// makes of the digits and of the punctuation keys is taken from the US layout. Pure functions; any thread.

/// The virtual-key code of the key that gives this keysym; 0 for a key that has none.
[[nodiscard]] quint32 virtualKeyForKeysym(quint32 keysym);

/// The keysym that the key with this virtual-key code gives without Shift; 0 for a code that no key has.
[[nodiscard]] quint32 keysymForVirtualKey(quint32 virtualKey);
