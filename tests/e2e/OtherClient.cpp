#include "e2e/OtherClient.h"

#include <xcb/xcb_keysyms.h>

#include <cstdlib>
#include <memory>

namespace
{

struct FreeReply
{
    void operator()(void *reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

constexpr quint16 kWindowSide = 50;

} // namespace

OtherClient::OtherClient(const QString &display) : connection(xcb_connect(display.toLatin1().constData(), nullptr))
{
    if (xcb_connection_has_error(connection))
        return;
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    root = screen->root;
    window = xcb_generate_id(connection);
    const quint32 values[] = {screen->black_pixel, XCB_EVENT_MASK_KEY_PRESS};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root, 0, 0, kWindowSide, kWindowSide, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK,
                      values);
    xcb_map_window(connection, window);
    xcb_flush(connection);
}

OtherClient::~OtherClient()
{
    xcb_disconnect(connection);
}

bool OtherClient::hasFocus() const
{
    const Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return focus && focus->focus == window;
}

quint16 OtherClient::keyboardState() const
{
    const Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    constexpr quint16 kModifierMask = 0xFF; // buttons above it
    return pointer ? pointer->mask & kModifierMask : 0;
}

xcb_keycode_t OtherClient::keyWith(xcb_keysym_t keysym) const
{
    xcb_key_symbols_t *symbols = xcb_key_symbols_alloc(connection);
    const Reply<xcb_keycode_t> keys(xcb_key_symbols_get_keycode(symbols, keysym));
    xcb_key_symbols_free(symbols);
    return keys ? *keys : xcb_keycode_t(0);
}

bool OtherClient::grab(xcb_keycode_t key, quint16 state)
{
    const Reply<xcb_generic_error_t> error(xcb_request_check(
        connection, xcb_grab_key_checked(connection, 0, root, state, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    return !error;
}

void OtherClient::releaseGrabs()
{
    const Reply<xcb_generic_error_t> error(
        xcb_request_check(connection, xcb_ungrab_key_checked(connection, XCB_GRAB_ANY, root, XCB_MOD_MASK_ANY)));
}

int OtherClient::takePresses(xcb_keycode_t key)
{
    int presses = 0;
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        if (event->response_type != XCB_KEY_PRESS)
            continue;
        const auto *press = reinterpret_cast<const xcb_key_press_event_t *>(event.get());
        if (press->event == window && press->detail == key)
            ++presses;
    }
    return presses;
}
