#include "board/lcd/Ovryn_HotKeyEdit.h"

#include "platform/NativeKeyCode.h"

#include <QKeyEvent>

namespace
{

constexpr quint32 kFirstModifier = 0x11; // Ctrl
constexpr quint32 kFirstNormalKey = 0x30;

struct NamedKey
{
    quint32 code;
    const char *name;
};

// clang-format off
constexpr NamedKey kModifierKeys[] = {
    { 0x10, "Shift" },
    { 0x11, "Ctrl"  },
    { 0x12, "Alt"   },
};

// The blanks belong to the names.
constexpr NamedKey kNormalKeys[] = {
    { 0x20, "Space"      },
    { 0x21, "PageUp"     },
    { 0x22, "PageDown"   },
    { 0x25, "LeftArrow"  },
    { 0x26, "UpArrow"    },
    { 0x27, "RightArrow" },
    { 0x28, "DownArrow"  },
    { 0x30, "0" }, { 0x31, "1" }, { 0x32, "2" }, { 0x33, "3" }, { 0x34, "4" },
    { 0x35, "5" }, { 0x36, "6" }, { 0x37, "7" }, { 0x38, "8" }, { 0x39, "9" },
    { 0x41, "A" }, { 0x42, "B" }, { 0x43, "C" }, { 0x44, "D" }, { 0x45, "E" }, { 0x46, "F" }, { 0x47, "G" },
    { 0x48, "H" },
    { 0x49, "l" }, // a small L: the capital I can't be told from it in the field's font, and users know it so
    { 0x4A, "J" }, { 0x4B, "K" }, { 0x4C, "L" }, { 0x4D, "M" }, { 0x4E, "N" }, { 0x4F, "O" }, { 0x50, "P" },
    { 0x51, "Q" }, { 0x52, "R" }, { 0x53, "S" }, { 0x54, "T" }, { 0x55, "U" }, { 0x56, "V" }, { 0x57, "W" },
    { 0x58, "X" }, { 0x59, "Y" }, { 0x5A, "Z" },
    { 0x60, "Num 0" }, { 0x61, "Num 1" }, { 0x62, "Num 2" }, { 0x63, "Num 3" }, { 0x64, "Num 4" },
    { 0x65, "Num 5" }, { 0x66, "Num 6" }, { 0x67, "Num 7" }, { 0x68, "Num 8" }, { 0x69, "Num 9" },
    { 0x6A, "Num *"  },
    { 0x6B, "Num + " },
    { 0x6D, "Num - " },
    { 0x6E, "Num ."  },
    { 0x6F, "Num / " },
    { 0x70, "F1" }, { 0x71, "F2" }, { 0x72, "F3" }, { 0x73, "F4"  }, { 0x74, "F5"  }, { 0x75, "F6"  },
    { 0x76, "F7" }, { 0x77, "F8" }, { 0x78, "F9" }, { 0x79, "F10" }, { 0x7A, "F11" }, { 0x7B, "F12" },
    { 0xBA, "; : "  },
    { 0xBB, " = +"  },
    { 0xBD, " - _"  },
    { 0xBF, " / ? " },
    { 0xC0, "`~"    },
    { 0xDB, "[{"    },
    { 0xDC, "\\ | " },
    { 0xDD, "] } "  },
    { 0xDE, "'\""   },
};
// clang-format on

template <std::size_t count>
QMap<quint32, QString> mapOf(const NamedKey (&keys)[count])
{
    QMap<quint32, QString> map;
    for (const NamedKey &key : keys)
        map.insert(key.code, QString::fromLatin1(key.name));
    return map;
}

} // namespace

Ovryn_HotKeyEdit::Ovryn_HotKeyEdit(bool takesModifier, QWidget *parent)
    : QLineEdit(parent),
      modifierMode(takesModifier),
      normalKeys(mapOf(kNormalKeys)),
      modifierKeys(mapOf(kModifierKeys))
{
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false); // a text dropped here would stand for no key
    setKey(modifierMode ? kFirstModifier : kFirstNormalKey);
}

bool Ovryn_HotKeyEdit::setKey(quint32 code)
{
    const QMap<quint32, QString> &keys = modifierMode ? modifierKeys : normalKeys;
    const auto found = keys.constFind(code);
    if (found == keys.constEnd())
        return false;
    setText(*found); // its textChanged still finds the old code
    keyCode = code;
    return true;
}

void Ovryn_HotKeyEdit::keyPressEvent(QKeyEvent *event)
{
    setKey(virtualKeyOf(*event));
}

void Ovryn_HotKeyEdit::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::MiddleButton) // which would paste what is selected elsewhere
        QLineEdit::mouseReleaseEvent(event);
}
