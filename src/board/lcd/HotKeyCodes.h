#pragma once

#include <QtGlobal>

/// \file
/// Translations from Qt's key codes to what a hot key is registered with. Pure functions; any thread.

/// The virtual-key code of a Qt::Key; 0 for a key that has none in the table.
[[nodiscard]] quint32 virtualKeyOfQtKey(quint32 qtKey);

/// The bits of GlobalHotKeys::Modifier for a union of Qt::KeyboardModifier; other bits tell nothing.
[[nodiscard]] quint32 hotKeyModifiersOf(quint32 qtModifiers);
