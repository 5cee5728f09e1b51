#pragma once

#include <QAbstractNativeEventFilter>

class Ovryn_GlobalShortCut;

/// Recognises the system's message of a pressed hot key for one Ovryn_GlobalShortCut, which owns the filter. GUI
/// thread.
class Ovryn_WinEventFilter : public QAbstractNativeEventFilter
{
public:
    explicit Ovryn_WinEventFilter(Ovryn_GlobalShortCut *served) : shortCut(served) {}

    /// True, after `activated`, for the press of a pair that the served object has registered; every other message
    /// goes on to the next filter.
    bool nativeEventFilter(const QByteArray &eventType, void *message, long *result) override;

private:
    Ovryn_GlobalShortCut *shortCut;
};
