#include "platform/GlobalHotKeys.h"
#include "platform/HotKeyMessage.h"
#include "platform/X11Keys.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QPointer>
#include <QX11Info>

#include <X11/keysym.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

namespace
{

struct FreeReply
{
    void operator()(void *reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

struct FreeSymbols
{
    void operator()(xcb_key_symbols_t *symbols) const { xcb_key_symbols_free(symbols); }
};

constexpr int kModifierRows = 8; ///< of the server's modifier map: Shift, Lock, Control, Mod1 to Mod5
constexpr int kKeyColumns = 4;   ///< of a key's symbols: plain and shifted, in two groups

/// The keyboard's symbols at the moment of the query, and the modifier of each lock key.
class Keyboard
{
public:
    explicit Keyboard(xcb_connection_t *connection)
        : symbols(xcb_key_symbols_alloc(connection)),
          modifierMap(xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr)),
          setup(xcb_get_setup(connection))
    {
    }

    /// The keys that give this keysym, in the first column where any does: the same character may stand on the
    /// third level of another key.
    [[nodiscard]] std::vector<xcb_keycode_t> keysWith(xcb_keysym_t keysym) const
    {
        std::vector<xcb_keycode_t> keys;
        if (!symbols || keysym == XCB_NO_SYMBOL)
            return keys;
        for (int column = 0; column < kKeyColumns && keys.empty(); ++column) {
            for (int key = setup->min_keycode; key <= setup->max_keycode; ++key) {
                const auto keycode = static_cast<xcb_keycode_t>(key);
                if (xcb_key_symbols_get_keysym(symbols.get(), keycode, column) == keysym)
                    keys.push_back(keycode);
            }
        }
        return keys;
    }

    /// The modifier bit that a key with this keysym sets, 0 when none does.
    [[nodiscard]] quint16 modifierOf(xcb_keysym_t keysym) const
    {
        if (!modifierMap)
            return 0;
        const std::vector<xcb_keycode_t> keys = keysWith(keysym);
        const xcb_keycode_t *mapped = xcb_get_modifier_mapping_keycodes(modifierMap.get());
        const int perRow = modifierMap->keycodes_per_modifier;
        for (int i = 0; i < kModifierRows * perRow; ++i) {
            if (mapped[i] != 0 && std::find(keys.begin(), keys.end(), mapped[i]) != keys.end())
                return static_cast<quint16>(1U << (i / perRow));
        }
        return 0;
    }

    /// The bits of an event's state for GlobalHotKeys::Modifier bits; nothing when the keyboard lacks one.
    [[nodiscard]] std::optional<quint16> stateFor(quint32 modifiers) const
    {
        quint16 state = 0;
        if (modifiers & GlobalHotKeys::Shift)
            state |= XCB_MOD_MASK_SHIFT;
        if (modifiers & GlobalHotKeys::Control)
            state |= XCB_MOD_MASK_CONTROL;
        const struct
        {
            quint32 modifier;
            xcb_keysym_t keysym;
        } mapped[] = {{GlobalHotKeys::Alt, XK_Alt_L}, {GlobalHotKeys::Super, XK_Super_L}};
        for (const auto &entry : mapped) {
            if (!(modifiers & entry.modifier))
                continue;
            const quint16 bit = modifierOf(entry.keysym);
            if (bit == 0)
                return std::nullopt;
            state |= bit;
        }
        return state;
    }

    /// Every combination of the lock keys' bits, the empty one first. A grab is valid for exactly one modifier state,
    /// and a lock that is on is part of that state.
    [[nodiscard]] std::vector<quint16> lockStates() const
    {
        std::vector<quint16> states = {0};
        for (const quint16 lock : {quint16(XCB_MOD_MASK_LOCK), modifierOf(XK_Num_Lock), modifierOf(XK_Scroll_Lock)}) {
            const std::size_t without = states.size();
            for (std::size_t i = 0; i < without; ++i) {
                const auto with = static_cast<quint16>(states[i] | lock);
                if (std::find(states.begin(), states.end(), with) == states.end())
                    states.push_back(with);
            }
        }
        return states;
    }

private:
    std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols;
    Reply<xcb_get_modifier_mapping_reply_t> modifierMap;
    const xcb_setup_t *setup;
};

/// One passive grab on the root window.
struct Grab
{
    xcb_keycode_t key;
    quint16 state;

    bool operator==(const Grab &other) const { return key == other.key && state == other.state; }
};

/// One registration with the grabs that it consists of.
struct HeldKey
{
    quint32 identifier;
    HotKeyPress press;
    std::vector<Grab> grabs;
};

/// Hot keys as passive grabs on the root window. The server reports a grabbed key to this program alone, as a press
/// on the root window, and again for each repetition while the key is held. The keys are looked up at the
/// registration; a later change of the layout does not move them.
class DesktopHotKeys final : public GlobalHotKeys, private QAbstractNativeEventFilter
{
public:
    bool registerKey(quint32 identifier, quint32 modifiers, quint32 virtualKey) override
    {
        if (!connected() || isHeld(identifier))
            return false;
        std::vector<Grab> grabs = grabsFor(modifiers, virtualKey);
        // The server lets the same client grab a key twice, and one release would end both grabs.
        if (grabs.empty() || std::any_of(grabs.begin(), grabs.end(), [this](Grab grab) { return holderOf(grab); }))
            return false;
        if (!take(grabs))
            return false;
        held.push_back({identifier, {virtualKey, modifiers}, std::move(grabs)});
        return true;
    }

    bool unregisterKey(quint32 identifier) override
    {
        if (!connected())
            return false;
        const auto found =
            std::find_if(held.begin(), held.end(), [=](const HeldKey &key) { return key.identifier == identifier; });
        if (found == held.end())
            return false;
        release(found->grabs.begin(), found->grabs.end());
        held.erase(found);
        return true;
    }

private:
    using GrabIterator = std::vector<Grab>::const_iterator;

    /// True on an X server. Also detects a new application object: the grabs ended with the old one's connection.
    bool connected()
    {
        if (!QX11Info::isPlatformX11() || !QX11Info::connection())
            return false;
        if (application != QCoreApplication::instance()) {
            held.clear();
            application = QCoreApplication::instance();
            application->installNativeEventFilter(this);
        }
        return true;
    }

    [[nodiscard]] bool isHeld(quint32 identifier) const
    {
        return std::any_of(held.begin(), held.end(),
                           [=](const HeldKey &key) { return key.identifier == identifier; });
    }

    [[nodiscard]] const HeldKey *holderOf(Grab grab) const
    {
        for (const HeldKey &key : held) {
            if (std::find(key.grabs.begin(), key.grabs.end(), grab) != key.grabs.end())
                return &key;
        }
        return nullptr;
    }

    [[nodiscard]] static std::vector<Grab> grabsFor(quint32 modifiers, quint32 virtualKey)
    {
        std::vector<Grab> grabs;
        const Keyboard keyboard(QX11Info::connection());
        const std::optional<quint16> state = keyboard.stateFor(modifiers);
        if (!state)
            return grabs;
        for (const xcb_keycode_t key : keyboard.keysWith(keysymForVirtualKey(virtualKey))) {
            for (const quint16 locks : keyboard.lockStates())
                grabs.push_back({key, static_cast<quint16>(*state | locks)});
        }
        return grabs;
    }

    /// All of them or, when another client holds one, none.
    [[nodiscard]] static bool take(const std::vector<Grab> &grabs)
    {
        xcb_connection_t *connection = QX11Info::connection();
        for (auto grab = grabs.begin(); grab != grabs.end(); ++grab) {
            const xcb_void_cookie_t cookie =
                xcb_grab_key_checked(connection, 0, QX11Info::appRootWindow(), grab->state, grab->key,
                                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
            const Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
            if (error) {
                release(grabs.begin(), grab);
                return false;
            }
        }
        return true;
    }

    static void release(GrabIterator first, GrabIterator last)
    {
        xcb_connection_t *connection = QX11Info::connection();
        for (; first != last; ++first)
            xcb_ungrab_key(connection, first->key, QX11Info::appRootWindow(), first->state);
        xcb_flush(connection);
    }

    bool nativeEventFilter(const QByteArray &eventType, void *message, long *) override
    {
        if (eventType != "xcb_generic_event_t" || !message)
            return false;
        const auto *event = static_cast<const xcb_generic_event_t *>(message);
        if (event->response_type != XCB_KEY_PRESS)
            return false;
        const auto *press = static_cast<const xcb_key_press_event_t *>(message);
        if (press->event != QX11Info::appRootWindow())
            return false;
        constexpr quint16 kKeyboardState = 0xFF; // above it are the pointer's buttons and the group
        const HeldKey *key = holderOf({press->detail, static_cast<quint16>(press->state & kKeyboardState)});
        if (!key)
            return false;
        dispatchHotKeyPress(key->identifier, key->press);
        return true;
    }

    QPointer<QCoreApplication> application; ///< whose events are filtered
    std::vector<HeldKey> held;
};

} // namespace

GlobalHotKeys &GlobalHotKeys::ofSystem()
{
    static DesktopHotKeys hotKeys;
    return hotKeys;
}
