#include "platform/GlobalHotKeys.h"
#include "platform/HotKeyMessage.h"

#include <cstddef>

#include <windows.h>

static_assert(WindowMessage::kHotKey == WM_HOTKEY);
static_assert(sizeof(WindowMessage) == sizeof(MSG), "the filters read the system's record through ours");
static_assert(offsetof(WindowMessage, id) == offsetof(MSG, message));
static_assert(offsetof(WindowMessage, wordParameter) == offsetof(MSG, wParam));
static_assert(offsetof(WindowMessage, longParameter) == offsetof(MSG, lParam));
static_assert(GlobalHotKeys::Alt == MOD_ALT && GlobalHotKeys::Control == MOD_CONTROL);
static_assert(GlobalHotKeys::Shift == MOD_SHIFT && GlobalHotKeys::Super == MOD_WIN);

namespace
{

/// Without a window, so that the message goes to the queue of the thread that registers.
class DesktopHotKeys final : public GlobalHotKeys
{
public:
    bool registerKey(quint32 identifier, quint32 modifiers, quint32 virtualKey) override
    {
        return RegisterHotKey(nullptr, static_cast<int>(identifier), modifiers, virtualKey) != FALSE;
    }

    bool unregisterKey(quint32 identifier) override
    {
        return UnregisterHotKey(nullptr, static_cast<int>(identifier)) != FALSE;
    }
};

} // namespace

GlobalHotKeys &GlobalHotKeys::ofSystem()
{
    static DesktopHotKeys hotKeys;
    return hotKeys;
}
