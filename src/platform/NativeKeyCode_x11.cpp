#include "platform/NativeKeyCode.h"
#include "platform/X11Keys.h"

#include <QKeyEvent>

quint32 virtualKeyOf(const QKeyEvent &event)
{
    return virtualKeyForKeysym(event.nativeVirtualKey());
}

quint32 nativeKeyFor(quint32 virtualKey)
{
    return keysymForVirtualKey(virtualKey);
}
