#include "platform/X11Keys.h"

#include <X11/keysym.h>

namespace
{

/// Keysyms in a row, whose keys follow each other in both numberings.
struct KeyRange
{
    quint32 firstKeysym;
    quint32 lastKeysym;
    quint32 firstVirtualKey;
};

// Where several keysyms belong to one virtual key, the first is what its key gives without Shift.
// clang-format off
constexpr KeyRange kKeys[] = {
    // first keysym        last keysym          first virtual key
    { XK_Break,            XK_Break,            0x03 },
    { XK_BackSpace,        XK_BackSpace,        0x08 },
    { XK_Tab,              XK_Tab,              0x09 },
    { XK_ISO_Left_Tab,     XK_ISO_Left_Tab,     0x09 }, // Tab with Shift
    { XK_Clear,            XK_Clear,            0x0C },
    { XK_Return,           XK_Return,           0x0D },
    { XK_Shift_L,          XK_Shift_L,          0x10 },
    { XK_Shift_R,          XK_Shift_R,          0x10 },
    { XK_Control_L,        XK_Control_L,        0x11 },
    { XK_Control_R,        XK_Control_R,        0x11 },
    { XK_Alt_L,            XK_Alt_L,            0x12 },
    { XK_Alt_R,            XK_Alt_R,            0x12 },
    { XK_Meta_L,           XK_Meta_L,           0x12 }, // Alt with Shift
    { XK_Meta_R,           XK_Meta_R,           0x12 },
    { XK_ISO_Level3_Shift, XK_ISO_Level3_Shift, 0x12 }, // right Alt of the layouts that have a third level
    { XK_Pause,            XK_Pause,            0x13 },
    { XK_Caps_Lock,        XK_Caps_Lock,        0x14 },
    { XK_Escape,           XK_Escape,           0x1B },
    { XK_space,            XK_space,            0x20 },
    { XK_Prior,            XK_Next,             0x21 }, // Page Up, Page Down
    { XK_End,              XK_End,              0x23 },
    { XK_Home,             XK_Home,             0x24 },
    { XK_Left,             XK_Down,             0x25 }, // left, up, right, down
    { XK_Select,           XK_Select,           0x29 },
    { XK_Execute,          XK_Execute,          0x2B },
    { XK_Print,            XK_Print,            0x2C },
    { XK_Sys_Req,          XK_Sys_Req,          0x2C }, // Print with Alt
    { XK_Insert,           XK_Insert,           0x2D },
    { XK_Delete,           XK_Delete,           0x2E },
    { XK_Help,             XK_Help,             0x2F },
    { XK_0,                XK_9,                0x30 },
    { XK_a,                XK_z,                0x41 },
    { XK_A,                XK_Z,                0x41 },
    { XK_Super_L,          XK_Super_R,          0x5B },
    { XK_Menu,             XK_Menu,             0x5D },
    { XK_KP_0,             XK_KP_9,             0x60 },
    { XK_KP_Multiply,      XK_KP_Add,           0x6A },
    { XK_KP_Subtract,      XK_KP_Divide,        0x6D }, // minus, decimal, divide
    { XK_KP_Separator,     XK_KP_Separator,     0x6E }, // the decimal key where it writes a comma
    { XK_F1,               XK_F24,              0x70 },
    { XK_Num_Lock,         XK_Num_Lock,         0x90 },
    { XK_Scroll_Lock,      XK_Scroll_Lock,      0x91 },
    { XK_semicolon,        XK_semicolon,        0xBA },
    { XK_colon,            XK_colon,            0xBA },
    { XK_equal,            XK_equal,            0xBB },
    { XK_plus,             XK_plus,             0xBB },
    { XK_comma,            XK_comma,            0xBC },
    { XK_less,             XK_less,             0xBC },
    { XK_minus,            XK_minus,            0xBD },
    { XK_underscore,       XK_underscore,       0xBD },
    { XK_period,           XK_period,           0xBE },
    { XK_greater,          XK_greater,          0xBE },
    { XK_slash,            XK_slash,            0xBF },
    { XK_question,         XK_question,         0xBF },
    { XK_grave,            XK_grave,            0xC0 },
    { XK_asciitilde,       XK_asciitilde,       0xC0 },
    { XK_bracketleft,      XK_bracketleft,      0xDB },
    { XK_braceleft,        XK_braceleft,        0xDB },
    { XK_backslash,        XK_backslash,        0xDC },
    { XK_bar,              XK_bar,              0xDC },
    { XK_bracketright,     XK_bracketright,     0xDD },
    { XK_braceright,       XK_braceright,       0xDD },
    { XK_apostrophe,       XK_apostrophe,       0xDE },
    { XK_quotedbl,         XK_quotedbl,         0xDE },
    // the digits with Shift
    { XK_parenright,       XK_parenright,       0x30 },
    { XK_exclam,           XK_exclam,           0x31 },
    { XK_at,               XK_at,               0x32 },
    { XK_numbersign,       XK_percent,          0x33 }, // 3, 4, 5
    { XK_asciicircum,      XK_asciicircum,      0x36 },
    { XK_ampersand,        XK_ampersand,        0x37 },
    { XK_asterisk,         XK_asterisk,         0x38 },
    { XK_parenleft,        XK_parenleft,        0x39 },
    // the keypad without Num Lock
    { XK_KP_Begin,         XK_KP_Begin,         0x0C }, // its 5
    { XK_KP_Enter,         XK_KP_Enter,         0x0D },
    { XK_KP_Prior,         XK_KP_Next,          0x21 },
    { XK_KP_End,           XK_KP_End,           0x23 },
    { XK_KP_Home,          XK_KP_Home,          0x24 },
    { XK_KP_Left,          XK_KP_Down,          0x25 },
    { XK_KP_Insert,        XK_KP_Delete,        0x2D },
};
// clang-format on

constexpr quint32 lastVirtualKey(const KeyRange &range)
{
    return range.firstVirtualKey + (range.lastKeysym - range.firstKeysym);
}

} // namespace

quint32 virtualKeyForKeysym(quint32 keysym)
{
    for (const KeyRange &range : kKeys) {
        if (keysym >= range.firstKeysym && keysym <= range.lastKeysym)
            return range.firstVirtualKey + (keysym - range.firstKeysym);
    }
    return 0;
}

quint32 keysymForVirtualKey(quint32 virtualKey)
{
    for (const KeyRange &range : kKeys) {
        if (virtualKey >= range.firstVirtualKey && virtualKey <= lastVirtualKey(range))
            return range.firstKeysym + (virtualKey - range.firstVirtualKey);
    }
    return 0;
}
