#pragma once

#include "simulated/JsonNode.h"

#include <functional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace simulated
{

/// The keys of an object. Absent keys leave their targets unchanged; `finish` refuses keys that were not read.
class JsonObject
{
public:
    explicit JsonObject(const JsonNode &objectNode);

    /// True and `read` called when the key is there.
    bool with(const char *key, const std::function<void(const JsonNode &)> &read);

    void flag(const char *key, bool &target);
    void text(const char *key, std::string &target, std::size_t maxSize = 63);
    template <class Number>
    void number(const char *key, Number &target, double minimum, double maximum, double factor = 1)
    {
        with(key, [&](const JsonNode &value) {
            if constexpr (std::is_floating_point_v<Number>)
                target = value.number(minimum, maximum) * factor;
            else if (factor != 1) // a fraction of the unit is fine where the target counts in finer ones
                target = static_cast<Number>(rounded(value.number(minimum, maximum) * factor));
            else
                target =
                    static_cast<Number>(value.integer(static_cast<qint64>(minimum), static_cast<qint64>(maximum)));
        });
    }
    template <class Number>
    void numbers(const char *key, std::vector<Number> &target, std::size_t maxSize, double minimum, double maximum)
    {
        with(key, [&](const JsonNode &value) {
            target.clear();
            for (const JsonNode &entry : value.list(0, maxSize))
                target.push_back(
                    static_cast<Number>(entry.integer(static_cast<qint64>(minimum), static_cast<qint64>(maximum))));
        });
    }

    void finish() const;
    [[noreturn]] void failAt(const char *key, const std::string &text) const;
    [[nodiscard]] std::vector<std::pair<std::string, JsonNode>> entries() const;

private:
    static qint64 rounded(double number);

    const JsonNode &node;
    std::set<std::string> known;
};

} // namespace simulated
