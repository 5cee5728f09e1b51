#include "simulated/LcdController.h"

#include <algorithm>
#include <numeric>

namespace simulated
{
namespace
{

constexpr std::size_t kFrameSize = 35;
constexpr std::size_t kChecksumOffset = 33;

quint16 wordAt(const std::vector<quint8> &bytes, std::size_t offset)
{
    return static_cast<quint16>(bytes[offset] | bytes[offset + 1] << 8);
}

quint32 longAt(const std::vector<quint8> &bytes, std::size_t offset)
{
    return wordAt(bytes, offset) | quint32(wordAt(bytes, offset + 2)) << 16;
}

} // namespace

std::string LcdController::faultOf(const std::vector<quint8> &bytes)
{
    if (bytes.size() != kFrameSize)
        return "LCD frame of " + std::to_string(bytes.size()) + " bytes";
    if (bytes[0] != 0xAA || bytes[1] != 0x88)
        return "LCD frame does not start with AA 88";
    const quint32 sum = std::accumulate(bytes.begin(), bytes.begin() + kChecksumOffset, 0u);
    if (wordAt(bytes, kChecksumOffset) != (sum & 0xFFFFu))
        return "LCD frame checksum does not match";
    return {};
}

std::string LcdController::write(const std::vector<quint8> &bytes)
{
    std::string fault = faultOf(bytes);
    if (!fault.empty()) {
        ++refusedFrames;
        return fault;
    }
    ++acceptedFrames;
    lastFrame = bytes;
    shown.sequence = bytes[2];
    shown.command = bytes[3];
    shown.memoryTotalKB = longAt(bytes, 4);
    shown.baseClockMHz = wordAt(bytes, 8);
    shown.thermalLimitC = wordAt(bytes, 10);
    shown.fanMaxRpm = wordAt(bytes, 12);
    std::copy_n(bytes.begin() + 14, shown.modelDigits.size(), shown.modelDigits.begin());
    shown.modelTi = bytes[18];
    shown.fanFlag = bytes[19];
    shown.memoryUsedKB = longAt(bytes, 21);
    shown.currentClockMHz = wordAt(bytes, 25);
    shown.temperatureC = wordAt(bytes, 27);
    shown.fanRpm = wordAt(bytes, 29);
    return {};
}

} // namespace simulated
