#include "platform/GlobalHotKeys.h"

#include <utility>

namespace
{

GlobalHotKeys *replacement = nullptr;

} // namespace

GlobalHotKeys &GlobalHotKeys::current()
{
    return replacement ? *replacement : ofSystem();
}

GlobalHotKeys *GlobalHotKeys::replace(GlobalHotKeys *other)
{
    return std::exchange(replacement, other);
}
