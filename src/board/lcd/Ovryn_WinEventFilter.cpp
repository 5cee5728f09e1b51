#include "board/lcd/Ovryn_WinEventFilter.h"

#include "board/lcd/Ovryn_GlobalShortCut.h"
#include "platform/HotKeyMessage.h"

bool Ovryn_WinEventFilter::nativeEventFilter(const QByteArray &eventType, void *message, long *)
{
    if (eventType != kWindowMessageType)
        return false;
    const std::optional<HotKeyPress> press = hotKeyPressOf(message);
    if (!press)
        return false;
    Ovryn_GlobalShortCut *target = shortCut->registeredFor(press->virtualKey, press->modifiers);
    if (!target)
        return false;
    emit target->activated(); // may end the object and this filter with it
    return true;
}
