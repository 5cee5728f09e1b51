#pragma once

#include <QtGlobal>

/// Hot keys of this process that work while any application has the focus.
///
/// A press reaches the GUI thread as a message through the native event filters of the application, in the form that
/// platform/HotKeyMessage.h describes, on every system. A key that is held down repeats as the keyboard does. Every
/// call is made on the GUI thread, and each registration lasts until it is undone or the process ends.
class GlobalHotKeys
{
public:
    /// Bits of `modifiers`, as the desktop's own interface numbers them.
    enum Modifier : quint32
    {
        Alt = 1,
        Control = 2,
        Shift = 4,
        Super = 8
    };

    virtual ~GlobalHotKeys() = default;

    /// The keyboard's hot keys, or what a test has put in their place.
    static GlobalHotKeys &current();
    /// Replaces the object; null restores the keyboard's own. Returns the former object, null for the keyboard's own.
    /// The caller owns the object, and restores the former one before it deletes it.
    static GlobalHotKeys *replace(GlobalHotKeys *other);

    /// False when the keys are not available: another application holds them, this process holds the identifier
    /// already, the key is not on this keyboard, or the system has no hot keys. Nothing is registered then.
    virtual bool registerKey(quint32 identifier, quint32 modifiers, quint32 virtualKey) = 0;
    /// False when this process holds no such identifier. Removes it whoever registered it.
    virtual bool unregisterKey(quint32 identifier) = 0;

private:
    static GlobalHotKeys &ofSystem(); ///< each platform's own
};
