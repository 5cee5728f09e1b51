#pragma once

#include <QtGlobal>

#include <cstring>
#include <vector>

/// A value that lies somewhere in a record's bytes.
template <class Value>
Value valueAt(const std::vector<quint8> &bytes, std::size_t offset)
{
    Value value{};
    std::memcpy(&value, bytes.data() + offset, sizeof(value));
    return value;
}
