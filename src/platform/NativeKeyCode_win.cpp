#include "platform/NativeKeyCode.h"

#include <QKeyEvent>

quint32 virtualKeyOf(const QKeyEvent &event)
{
    return event.nativeVirtualKey();
}

quint32 nativeKeyFor(quint32 virtualKey)
{
    return virtualKey;
}
