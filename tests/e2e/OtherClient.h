#pragma once

#include <QString>

#include <xcb/xcb.h>

/// Another application on the same X server, only for the keyboard: a connection of its own, a window that can take
/// the focus, and key grabs on the root window. All calls wait for the server.
class OtherClient
{
public:
    explicit OtherClient(const QString &display);
    ~OtherClient();
    Q_DISABLE_COPY_MOVE(OtherClient)

    [[nodiscard]] bool isConnected() const { return window != XCB_NONE; }

    /// Its window, which asks the window manager to be shown.
    [[nodiscard]] qint64 windowId() const { return window; }
    [[nodiscard]] bool hasFocus() const; ///< the keyboard is its window's

    /// The modifiers and locks that are on, as XCB_MOD_MASK_ bits.
    [[nodiscard]] quint16 keyboardState() const;
    /// The key that gives the keysym, 0 when none does.
    [[nodiscard]] xcb_keycode_t keyWith(xcb_keysym_t keysym) const;

    /// False when another client holds it.
    bool grab(xcb_keycode_t key, quint16 state);
    void releaseGrabs();

    /// How often its window got a press of that key since the last call; presses of other keys are forgotten.
    int takePresses(xcb_keycode_t key);
    void forgetPresses() { takePresses(0); }

private:
    xcb_connection_t *connection;
    xcb_window_t root = XCB_NONE;
    xcb_window_t window = XCB_NONE;
};
