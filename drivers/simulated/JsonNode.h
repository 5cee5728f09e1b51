#pragma once

#include <QtGlobal>

#include <nlohmann/json.hpp>

#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace simulated
{

/// A mistake in a scenario: the text starts with the key's path, "cards[1].fan.maxRpm: expected ...".
class ScenarioError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A value of the scenario that knows where it stands, so that a mistake can be told with its place.
class JsonNode
{
public:
    JsonNode(const nlohmann::json &nodeValue, std::string nodePath) : value(nodeValue), path(std::move(nodePath)) {}

    [[noreturn]] void fail(const std::string &text) const;
    [[noreturn]] void failExpecting(const std::string &what) const;

    [[nodiscard]] bool isNull() const { return value.is_null(); }
    [[nodiscard]] bool isObject() const { return value.is_object(); }
    [[nodiscard]] bool isText() const { return value.is_string(); }
    [[nodiscard]] bool isList() const { return value.is_array(); }

    [[nodiscard]] bool flag() const;
    [[nodiscard]] double number(double minimum, double maximum) const;
    /// A whole number; also as a text of hexadecimal digits after "0x".
    [[nodiscard]] qint64 integer(qint64 minimum, qint64 maximum) const;
    [[nodiscard]] std::string text(std::size_t maxSize) const;
    [[nodiscard]] std::vector<JsonNode> list(std::size_t minSize, std::size_t maxSize) const;
    /// Position of the text in `choices`.
    [[nodiscard]] std::size_t choice(const std::vector<std::string> &choices) const;

private:
    friend class JsonObject;
    const nlohmann::json &value;
    std::string path;
};

/// The keys of an object. Absent keys leave their targets alone; `finish` refuses keys that nobody asked for.
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
