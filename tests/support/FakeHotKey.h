#pragma once

#include "platform/GlobalHotKeys.h"
#include "platform/HotKeyMessage.h"

#include <QStringList>

#include <algorithm>
#include <utility>
#include <vector>

/// Stands in for the keyboard's hot keys while it exists, by the rules of the desktop: it keeps the list of the calls
/// it got and of the keys that are held, and presses them. GUI thread.
class FakeHotKey final : public GlobalHotKeys
{
public:
    FakeHotKey() : before(replace(this)) {}
    ~FakeHotKey() override { replace(before); }
    Q_DISABLE_COPY_MOVE(FakeHotKey)

    bool refuses = false; ///< another application holds every key

    bool registerKey(quint32 identifier, quint32 modifiers, quint32 virtualKey) override
    {
        const bool taken = std::any_of(held.begin(), held.end(), [=](const Held &one) {
            return one.identifier == identifier ||
                   (one.press.modifiers == modifiers && one.press.virtualKey == virtualKey);
        });
        const bool answer = !refuses && !taken;
        journal << QStringLiteral("register %1 mods %2 key %3%4")
                       .arg(hex(identifier))
                       .arg(modifiers)
                       .arg(hex(virtualKey), answer ? QString() : QStringLiteral(" refused"));
        if (answer)
            held.push_back({identifier, {virtualKey, modifiers}});
        return answer;
    }

    bool unregisterKey(quint32 identifier) override
    {
        const auto found =
            std::find_if(held.begin(), held.end(), [=](const Held &one) { return one.identifier == identifier; });
        journal << QStringLiteral("unregister %1%2")
                       .arg(hex(identifier), found == held.end() ? QStringLiteral(" unknown") : QString());
        if (found == held.end())
            return false;
        held.erase(found);
        return true;
    }

    /// The user presses the keys: a message goes out when they are held, as the system does it. True when one of the
    /// application's filters took it.
    bool press(quint32 virtualKey, quint32 modifiers) // NOLINT(bugprone-easily-swappable-parameters)
    {
        for (const Held &one : held) {
            if (one.press.virtualKey == virtualKey && one.press.modifiers == modifiers)
                return dispatchHotKeyPress(one.identifier, one.press);
        }
        return false;
    }

    [[nodiscard]] bool holds(quint32 virtualKey, quint32 modifiers) const
    {
        return std::any_of(held.begin(), held.end(), [=](const Held &one) {
            return one.press.virtualKey == virtualKey && one.press.modifiers == modifiers;
        });
    }

    /// The calls since the last time, "register 0x33 mods 2 key 0x31" and "unregister 0x33", with " refused" or
    /// " unknown" behind a call that failed.
    QStringList takeCalls() { return std::exchange(journal, {}); }

private:
    struct Held
    {
        quint32 identifier;
        HotKeyPress press;
    };

    static QString hex(quint32 value) { return QStringLiteral("0x") + QString::number(value, 16); }

    GlobalHotKeys *before;
    std::vector<Held> held;
    QStringList journal;
};
