#include "simulated/Answers.h"

#include <algorithm>

namespace simulated
{
namespace
{

constexpr quintptr kFirstDisplay = 0x0D150000;

} // namespace

std::optional<quint32> Answers::cardOf(const void *handle) const
{
    const std::size_t count = std::min(cardCount(), handlePlaces.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (handle == &handlePlaces[i])
            return static_cast<quint32>(i);
    }
    return std::nullopt;
}

NvDisplayHandle Answers::displayHandle(quint32 index)
{
    return reinterpret_cast<NvDisplayHandle>(kFirstDisplay + index);
}

quintptr Answers::displayOf(NvDisplayHandle display)
{
    return reinterpret_cast<quintptr>(display) - kFirstDisplay;
}

} // namespace simulated
