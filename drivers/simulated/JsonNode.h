#pragma once

#include <QtGlobal>

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace simulated
{

/// A mistake in a scenario: the text starts with the key's path, "cards[1].fan.maxRpm: expected ...".
class ScenarioError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A value of the scenario that knows its place in it, so that a mistake can be reported with the place.
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

} // namespace simulated
