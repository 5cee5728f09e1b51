#include "simulated/JsonObject.h"

#include <cmath>

namespace simulated
{
namespace
{

std::string childPath(const std::string &path, const std::string &key)
{
    return path.empty() ? key : path + "." + key;
}

} // namespace

JsonObject::JsonObject(const JsonNode &objectNode) : node(objectNode)
{
    if (!node.value.is_object())
        node.failExpecting("an object");
}

bool JsonObject::with(const char *key, const std::function<void(const JsonNode &)> &read)
{
    known.insert(key);
    const auto found = node.value.find(key);
    if (found == node.value.end())
        return false;
    read(JsonNode(*found, childPath(node.path, key)));
    return true;
}

void JsonObject::flag(const char *key, bool &target)
{
    with(key, [&](const JsonNode &entry) { target = entry.flag(); });
}

void JsonObject::text(const char *key, std::string &target, std::size_t maxSize)
{
    with(key, [&](const JsonNode &entry) { target = entry.text(maxSize); });
}

void JsonObject::finish() const
{
    for (const auto &entry : node.value.items()) {
        if (known.count(entry.key()) == 0)
            failAt(entry.key().c_str(), "unknown key");
    }
}

void JsonObject::failAt(const char *key, const std::string &text) const
{
    JsonNode(node.value, childPath(node.path, key)).fail(text);
}

std::vector<std::pair<std::string, JsonNode>> JsonObject::entries() const
{
    std::vector<std::pair<std::string, JsonNode>> list;
    for (const auto &entry : node.value.items())
        list.emplace_back(entry.key(), JsonNode(entry.value(), childPath(node.path, entry.key())));
    return list;
}

qint64 JsonObject::rounded(double number)
{
    return std::llround(number);
}

} // namespace simulated
