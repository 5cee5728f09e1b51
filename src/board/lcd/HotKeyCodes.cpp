#include "board/lcd/HotKeyCodes.h"

#include "platform/GlobalHotKeys.h"

#include <Qt>

namespace
{

/// Qt keys in a row, whose virtual keys are in the same order.
struct KeyRange
{
    quint32 firstQtKey;
    quint32 lastQtKey;
    quint32 firstVirtualKey;
};

// clang-format off
constexpr KeyRange kKeys[] = {
    // first Qt key       last Qt key          first virtual key
    { Qt::Key_Space,      Qt::Key_Space,       0x20 },
    { Qt::Key_Asterisk,   Qt::Key_Minus,       0x6A }, // the keypad's * + separator -
    { Qt::Key_Slash,      Qt::Key_Slash,       0x6F }, // the keypad's
    { Qt::Key_0,          Qt::Key_9,           0x30 },
    { Qt::Key_A,          Qt::Key_Z,           0x41 },
    { Qt::Key_Escape,     Qt::Key_Escape,      0x1B },
    { Qt::Key_Tab,        Qt::Key_Tab,         0x09 },
    { Qt::Key_Backtab,    Qt::Key_Backtab,     0x09 },
    { Qt::Key_Backspace,  Qt::Key_Backspace,   0x08 },
    { Qt::Key_Return,     Qt::Key_Return,      0x0D },
    { Qt::Key_Enter,      Qt::Key_Enter,       0x0D },
    { Qt::Key_Insert,     Qt::Key_Insert,      0x2D },
    { Qt::Key_Delete,     Qt::Key_Delete,      0x2E },
    { Qt::Key_Pause,      Qt::Key_Pause,       0x13 },
    { Qt::Key_Print,      Qt::Key_Print,       0x2A },
    { Qt::Key_Clear,      Qt::Key_Clear,       0x0C },
    { Qt::Key_Home,       Qt::Key_Home,        0x24 },
    { Qt::Key_End,        Qt::Key_End,         0x23 },
    { Qt::Key_Left,       Qt::Key_Down,        0x25 }, // left, up, right, down
    { Qt::Key_PageUp,     Qt::Key_PageDown,    0x21 },
    { Qt::Key_F1,         Qt::Key_F24,         0x70 },
};

struct ModifierRow
{
    quint32 qtModifier;
    quint32 modifier;
};

constexpr ModifierRow kModifiers[] = {
    { Qt::ShiftModifier,   GlobalHotKeys::Shift   },
    { Qt::ControlModifier, GlobalHotKeys::Control },
    { Qt::AltModifier,     GlobalHotKeys::Alt     },
    { Qt::MetaModifier,    GlobalHotKeys::Super   },
};
// clang-format on

} // namespace

quint32 virtualKeyOfQtKey(quint32 qtKey)
{
    for (const KeyRange &range : kKeys) {
        if (qtKey >= range.firstQtKey && qtKey <= range.lastQtKey)
            return range.firstVirtualKey + (qtKey - range.firstQtKey);
    }
    return 0;
}

quint32 hotKeyModifiersOf(quint32 qtModifiers)
{
    quint32 modifiers = 0;
    for (const ModifierRow &row : kModifiers) {
        if (qtModifiers & row.qtModifier)
            modifiers |= row.modifier;
    }
    return modifiers;
}
