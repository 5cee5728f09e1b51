#include "device/LedFrame.h"

#include <algorithm>
#include <numeric>

static_assert(kLedStatusColoursOffset + kLedMaxColours * kLedBytesPerColour <= kLedStatusSize,
              "the status frame holds every colour");

std::vector<quint8> buildLedFrame(const quint8 *data, qint32 len, quint8 effect, quint8 level, quint8 interval,
                                  bool closing)
{
    const std::size_t colourBytes = data && len > 0 ? static_cast<std::size_t>(len) : 0;
    std::vector<quint8> frame(kLedFrameOverhead + colourBytes);
    frame[kLedSizeOffset] = static_cast<quint8>(frame.size() | (closing ? kLedClosingFlag : 0u));
    frame[kLedEffectOffset] = effect;
    frame[kLedLevelOffset] = level;
    frame[kLedIntervalOffset] = interval;
    if (colourBytes > 0)
        std::copy_n(data, colourBytes, frame.begin() + kLedColoursOffset);
    // The controller sums the flag of the size byte too.
    const quint32 sum = std::accumulate(frame.begin(), frame.end() - kLedChecksumSize, 0u);
    frame.back() = static_cast<quint8>(~sum);
    return frame;
}

void decodeLedStatus(const LedStatusFrame &frame, LedControllerState &out)
{
    const std::size_t colourCount = std::min<std::size_t>(frame[kLedStatusColourCountOffset], kLedMaxColours);
    out.controllerType = frame[kLedStatusTypeOffset];
    out.colourCount = static_cast<qint32>(colourCount);
    out.stateEffect = frame[kLedStatusEffectOffset];
    out.stateLevel = frame[kLedStatusLevelOffset];
    out.stateInterval = frame[kLedStatusIntervalOffset];
    std::copy_n(frame.begin() + kLedStatusColoursOffset, colourCount * kLedBytesPerColour, out.colours.begin());
}
