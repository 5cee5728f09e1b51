#pragma once

#include <QtGlobal>

#include <string>
#include <vector>

namespace simulated
{

/// "0x30108": a word as the record tables write it.
std::string hexWord(quint32 value);

/// "08 00 32": bytes in the order of the bus.
std::string hexBytes(const quint8 *bytes, std::size_t size);
std::string hexBytes(const std::vector<quint8> &bytes);

} // namespace simulated
