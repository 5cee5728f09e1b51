#include "simulated/LedController.h"

#include <algorithm>
#include <numeric>

namespace simulated
{
namespace
{

constexpr std::size_t kHeaderSize = 4;
constexpr std::size_t kColourSize = 3;
constexpr std::size_t kMaxColours = 7;
constexpr std::size_t kSmallestFrame = kHeaderSize + 1;
constexpr std::size_t kLargestFrame = kSmallestFrame + kMaxColours * kColourSize;
constexpr std::size_t kStatusSize = 27;
constexpr std::size_t kStatusColours = 5; // offset of the first colour
constexpr quint8 kClosingFlag = 0x80;

constexpr quint8 kEffectProbe = 0x0A;
// steady, breathing, several steady in turn, gradient, probe
constexpr quint8 kKnownEffects[] = {0, 1, 2, 4, kEffectProbe};

quint8 sumOf(std::vector<quint8>::const_iterator begin, std::vector<quint8>::const_iterator end)
{
    return static_cast<quint8>(std::accumulate(begin, end, 0u) & 0xFFu);
}

} // namespace

std::string LedController::faultOf(const std::vector<quint8> &bytes)
{
    if (bytes.size() < kSmallestFrame || bytes.size() > kLargestFrame)
        return "LED frame of " + std::to_string(bytes.size()) + " bytes";
    if ((bytes[0] & ~kClosingFlag) != static_cast<int>(bytes.size()))
        return "LED frame size byte does not match";
    if ((bytes.size() - kSmallestFrame) % kColourSize != 0)
        return "LED frame with part of a colour";
    if (bytes.back() != static_cast<quint8>(~sumOf(bytes.begin(), bytes.end() - 1)))
        return "LED frame checksum does not match";
    if (std::find(std::begin(kKnownEffects), std::end(kKnownEffects), bytes[1]) == std::end(kKnownEffects))
        return "LED effect " + std::to_string(bytes[1]) + " is unknown";
    return {};
}

std::string LedController::write(const std::vector<quint8> &bytes)
{
    std::string fault = faultOf(bytes);
    if (!fault.empty()) {
        ++refusedFrames;
        return fault;
    }
    ++acceptedFrames;
    lastFrame = bytes;
    if (bytes[1] == kEffectProbe)
        return {};
    shown.effect = bytes[1];
    shown.level = bytes[2];
    shown.interval = bytes[3];
    shown.closing = (bytes[0] & kClosingFlag) != 0;
    shown.colours.assign(bytes.begin() + kHeaderSize, bytes.end() - 1);
    return {};
}

std::vector<quint8> LedController::status() const
{
    std::vector<quint8> bytes(kStatusSize, 0);
    const std::size_t colourBytes = std::min(shown.colours.size(), kMaxColours * kColourSize);
    bytes[0] = type;
    bytes[1] = static_cast<quint8>(colourBytes / kColourSize);
    bytes[2] = shown.effect;
    bytes[3] = shown.level;
    bytes[4] = shown.interval;
    std::copy_n(shown.colours.begin(), colourBytes, bytes.begin() + kStatusColours);
    bytes.back() = static_cast<quint8>(~sumOf(bytes.begin(), bytes.end() - 1));
    return bytes;
}

} // namespace simulated
