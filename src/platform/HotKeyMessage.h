#pragma once

#include <QtGlobal>

#include <optional>

/// \file
/// The message that tells of a pressed hot key. All systems hand it to the native event filters in one form, the
/// Windows desktop's, so that one filter serves them all.

/// A message of the desktop, laid out as its `MSG`. The other systems fill it for hot keys alone.
struct WindowMessage
{
    static constexpr quint32 kHotKey = 0x312; ///< `id` of a pressed hot key, WM_HOTKEY

    void *window = nullptr;     ///< null: for the thread
    quint32 id = 0;             ///< what happened
    quintptr wordParameter = 0; ///< of a hot key: the identifier that it was registered with
    qintptr longParameter = 0;  ///< of a hot key: virtual key in bits 16 to 31, modifiers in bits 0 to 15
    quint32 timeMs = 0;         ///< since the system's start
    qint32 pointerX = 0;        ///< screen pixels
    qint32 pointerY = 0;
};

/// Event type under which native event filters are given a WindowMessage.
constexpr char kWindowMessageType[] = "windows_generic_MSG";

/// A pressed hot key.
struct HotKeyPress
{
    quint32 virtualKey = 0;
    quint32 modifiers = 0; ///< bits of GlobalHotKeys::Modifier
};

/// What a message with this `id` and `longParameter` tells; nothing when it is about something else.
[[nodiscard]] std::optional<HotKeyPress> hotKeyPressOf(quint32 messageId, qintptr longParameter);
/// The same of a message as a native event filter gets it under kWindowMessageType.
[[nodiscard]] std::optional<HotKeyPress> hotKeyPressOf(const void *windowMessage);

/// Hands the message of a press to the native event filters of the application, the newest first. True when one of
/// them took it. GUI thread; false without an application.
bool dispatchHotKeyPress(quint32 identifier, HotKeyPress press);
