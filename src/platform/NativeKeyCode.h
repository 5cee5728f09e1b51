#pragma once

#include <QtGlobal>

class QKeyEvent;

/// \file
/// Virtual-key codes, one numbering of the keys on all systems: the Windows desktop's. Pure functions; any thread.

/// The virtual-key code of the key that was pressed; 0 for a key that has none.
[[nodiscard]] quint32 virtualKeyOf(const QKeyEvent &event);

/// The value of QKeyEvent::nativeVirtualKey on this system for the key with that code; 0 for a key that has none.
[[nodiscard]] quint32 nativeKeyFor(quint32 virtualKey);
