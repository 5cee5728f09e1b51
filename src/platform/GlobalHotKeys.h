#pragma once

#include <QtGlobal>

/// Hot keys of this process that work while any application has the focus.
///
/// A press reaches the GUI thread as a message through the native event filters of the application, in the form
/// that platform/HotKeyMessage.h tells, on every system. A key that is held down repeats as the keyboard does.
/// Every call is made on the GUI thread, and each registration lasts until it is undone or the process ends.
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
    /// Puts another object in front, null for the keyboard's own again. Gives back what was there before, null for
    /// the keyboard's own. The caller keeps the object, and takes it out again before it ends.
    static GlobalHotKeys *replace(GlobalHotKeys *other);

    /// False when the keys can't be had: another application holds them, this process holds the identifier
    /// already, the key is not on this keyboard, or the system knows no hot keys. Nothing is held then.
    virtual bool registerKey(quint32 identifier, quint32 modifiers, quint32 virtualKey) = 0;
    /// False when this process holds no such identifier. Whoever registered it, it is gone.
    virtual bool unregisterKey(quint32 identifier) = 0;

private:
    static GlobalHotKeys &ofSystem(); ///< each platform's own
};
