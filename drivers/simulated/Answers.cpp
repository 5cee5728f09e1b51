#include "simulated/Answers.h"

#include <algorithm>

namespace simulated
{

std::optional<quint32> Answers::cardOf(const void *handle) const
{
    const std::size_t count = std::min(cardCount(), handlePlaces.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (handle == &handlePlaces[i])
            return static_cast<quint32>(i);
    }
    return std::nullopt;
}

} // namespace simulated
