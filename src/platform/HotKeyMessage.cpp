#include "platform/HotKeyMessage.h"

#include <QAbstractEventDispatcher>

#include <cstring>

namespace
{

constexpr quint32 kWordMask = 0xFFFF;
constexpr int kWordBits = 16;

} // namespace

std::optional<HotKeyPress> hotKeyPressOf(quint32 messageId, qintptr longParameter)
{
    if (messageId != WindowMessage::kHotKey)
        return std::nullopt;
    const auto words = static_cast<quint32>(longParameter); // the upper half of a 64-bit parameter has no meaning
    return HotKeyPress{words >> kWordBits, words & kWordMask};
}

std::optional<HotKeyPress> hotKeyPressOf(const void *windowMessage)
{
    if (!windowMessage)
        return std::nullopt;
    WindowMessage message;
    std::memcpy(&message, windowMessage, sizeof message); // the system's record is of a type of its own
    return hotKeyPressOf(message.id, message.longParameter);
}

bool dispatchHotKeyPress(quint32 identifier, HotKeyPress press)
{
    QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
    if (!dispatcher)
        return false;
    WindowMessage message;
    message.id = WindowMessage::kHotKey;
    message.wordParameter = identifier;
    message.longParameter =
        static_cast<qint32>((press.virtualKey & kWordMask) << kWordBits | (press.modifiers & kWordMask));
    long result = 0;
    return dispatcher->filterNativeEvent(kWindowMessageType, &message, &result);
}
