#include "simulated/JsonNode.h"

#include <algorithm>
#include <sstream>

namespace simulated
{
namespace
{

constexpr std::size_t kMostShown = 40;

std::string plain(double number)
{
    std::ostringstream stream;
    stream.precision(15);
    stream << number;
    return stream.str();
}

} // namespace

void JsonNode::fail(const std::string &text) const
{
    throw ScenarioError((path.empty() ? std::string("the scenario") : path) + ": " + text);
}

void JsonNode::failExpecting(const std::string &what) const
{
    std::string found = value.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    if (found.size() > kMostShown)
        found = found.substr(0, kMostShown) + "...";
    fail("expected " + what + ", found " + found);
}

bool JsonNode::flag() const
{
    if (!value.is_boolean())
        failExpecting("true or false");
    return value.get<bool>();
}

double JsonNode::number(double minimum, double maximum) const
{
    if (!value.is_number() || value.get<double>() < minimum || value.get<double>() > maximum)
        failExpecting("a number from " + plain(minimum) + " to " + plain(maximum));
    return value.get<double>();
}

qint64 JsonNode::integer(qint64 minimum, qint64 maximum) const
{
    const std::string expected = "a whole number from " + std::to_string(minimum) + " to " + std::to_string(maximum);
    qint64 number = 0;
    if (value.is_string()) {
        const auto &text = value.get_ref<const std::string &>();
        constexpr std::size_t kMostDigits = 8;
        const bool hex = text.size() > 2 && text.size() <= 2 + kMostDigits && text.compare(0, 2, "0x") == 0 &&
                         text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos;
        if (!hex)
            failExpecting(expected);
        number = std::stoll(text.substr(2), nullptr, 16);
    } else {
        const bool fits = value.is_number_integer() &&
                          (!value.is_number_unsigned() || value.get<quint64>() <= static_cast<quint64>(INT64_MAX));
        if (!fits)
            failExpecting(expected);
        number = value.get<qint64>();
    }
    if (number < minimum || number > maximum)
        failExpecting(expected);
    return number;
}

std::string JsonNode::text(std::size_t maxSize) const
{
    if (!value.is_string() || value.get_ref<const std::string &>().size() > maxSize)
        failExpecting("a text of at most " + std::to_string(maxSize) + " characters");
    return value.get<std::string>();
}

std::vector<JsonNode> JsonNode::list(std::size_t minSize, std::size_t maxSize) const
{
    if (!value.is_array() || value.size() < minSize || value.size() > maxSize)
        failExpecting("a list of " + std::to_string(minSize) + " to " + std::to_string(maxSize) + " entries");
    std::vector<JsonNode> nodes;
    for (std::size_t i = 0; i < value.size(); ++i)
        nodes.emplace_back(value[i], path + "[" + std::to_string(i) + "]");
    return nodes;
}

std::size_t JsonNode::choice(const std::vector<std::string> &choices) const
{
    const auto found =
        value.is_string() ? std::find(choices.begin(), choices.end(), value.get<std::string>()) : choices.end();
    if (found == choices.end()) {
        std::string names;
        for (const std::string &name : choices)
            names += (names.empty() ? "\"" : ", \"") + name + "\"";
        failExpecting("one of " + names);
    }
    return static_cast<std::size_t>(found - choices.begin());
}

} // namespace simulated
