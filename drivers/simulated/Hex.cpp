#include "simulated/Hex.h"

namespace simulated
{
namespace
{
constexpr char kDigits[] = "0123456789ABCDEF";
}

std::string hexWord(quint32 value)
{
    std::string digits;
    do {
        digits.insert(digits.begin(), kDigits[value & 0xFu]);
        value >>= 4;
    } while (value != 0);
    return "0x" + digits;
}

std::string hexBytes(const quint8 *bytes, std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        if (i > 0)
            text += ' ';
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 0xF];
    }
    return text;
}

std::string hexBytes(const std::vector<quint8> &bytes)
{
    return hexBytes(bytes.data(), bytes.size());
}

} // namespace simulated
