#pragma once

#include <QtGlobal>

#include <optional>

/// \file
/// The message of a pressed hot key. On all systems the native event filters get it in one form, that of the Windows
/// desktop, so that one filter serves all systems.

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

/// The press that a message with this `id` and `longParameter` reports; no value for any other message.
[[nodiscard]] std::optional<HotKeyPress> hotKeyPressOf(quint32 messageId, qintptr longParameter);
/// The same of a message as a native event filter gets it under kWindowMessageType.
[[nodiscard]] std::optional<HotKeyPress> hotKeyPressOf(const void *windowMessage);

/// Passes the message of a press to the native event filters of the application, the newest first. True when one of
/// them accepted it. GUI thread; false without an application.
bool dispatchHotKeyPress(quint32 identifier, HotKeyPress press);
