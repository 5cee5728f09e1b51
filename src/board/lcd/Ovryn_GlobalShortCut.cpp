#include "board/lcd/Ovryn_GlobalShortCut.h"

#include "board/lcd/HotKeyCodes.h"
#include "board/lcd/Ovryn_WinEventFilter.h"
#include "platform/GlobalHotKeys.h"

#include <QCoreApplication>

namespace
{

constexpr quint32 kModifierBits = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

struct ModifierChoice
{
    int key;
    Qt::KeyboardModifier modifier;
};

// clang-format off
constexpr ModifierChoice kModifierChoices[] = {
    { Qt::Key_Shift,   Qt::ShiftModifier   },
    { Qt::Key_Control, Qt::ControlModifier },
    { Qt::Key_Meta,    Qt::MetaModifier    },
    { Qt::Key_Alt,     Qt::AltModifier     },
};
// clang-format on

// Callers hand in virtual-key codes, none of which is in the table, so that what they register is with Ctrl. Users
// know their hot key so: it stays.
Qt::KeyboardModifier modifierFor(int key)
{
    for (const ModifierChoice &choice : kModifierChoices) {
        if (choice.key == key)
            return choice.modifier;
    }
    return Qt::ControlModifier;
}

quint32 identifierOf(const QPair<quint32, quint32> &pair)
{
    return pair.second ^ pair.first;
}

} // namespace

Ovryn_GlobalShortCut::Ovryn_GlobalShortCut(QObject *parent) : QObject(parent)
{
    filters.push_back(std::make_unique<Ovryn_WinEventFilter>(this));
    eventFilter = filters.back().get();
}

Ovryn_GlobalShortCut::~Ovryn_GlobalShortCut()
{
    unsetShortcut();
}

void Ovryn_GlobalShortCut::setShortcut(int modifier, int newKey)
{
    keySequence = QKeySequence(modifierFor(modifier) | newKey);
    filters.push_back(std::make_unique<Ovryn_WinEventFilter>(this));
    eventFilter = filters.back().get();
    QCoreApplication::instance()->installNativeEventFilter(eventFilter);

    const KeyPair pair = pairOfSequence();
    registered.insert(pair, this);
    // A refusal is not reported: the object takes the key for registered, and it just never comes.
    GlobalHotKeys::current().registerKey(identifierOf(pair), pair.second, pair.first);
}

void Ovryn_GlobalShortCut::unsetShortcut()
{
    const KeyPair pair = pairOfSequence();
    registered.remove(pair);
    GlobalHotKeys::current().unregisterKey(identifierOf(pair)); // one that isn't held needs no undoing
}

Ovryn_GlobalShortCut *Ovryn_GlobalShortCut::registeredFor(quint32 virtualKey, quint32 modifierFlags) const
{
    return registered.value({virtualKey, modifierFlags}, nullptr);
}

Ovryn_GlobalShortCut::KeyPair Ovryn_GlobalShortCut::pairOfSequence()
{
    const auto keys = keySequence.isEmpty() ? 0U : static_cast<quint32>(keySequence[0]);
    key = keys & ~kModifierBits;
    modifiers = keys & kModifierBits;
    return {virtualKeyOfQtKey(key), hotKeyModifiersOf(modifiers)};
}
