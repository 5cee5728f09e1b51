#include "device/LcdFrame.h"

#include "device/MakersBoards.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>

namespace
{

struct SwitchTimeCode
{
    int upToSeconds;
    quint8 code;
};

// clang-format off
constexpr SwitchTimeCode kSwitchTimeCodes[] = {
    // up to   code
    {  0,      0x1 },
    {  1,      0xB }, // intended: one second has the code of the longest time
    {  2,      0x2 },
    {  3,      0x3 },
    {  4,      0x4 },
    {  6,      0x5 },
    { 10,      0x6 },
    { 15,      0x7 },
    { 20,      0x8 },
    { 24,      0x9 },
    { 29,      0xA },
    { std::numeric_limits<int>::max(), 0xB },
};
// clang-format on

quint8 switchTimeCode(int timeSeconds)
{
    return std::find_if(std::begin(kSwitchTimeCodes), std::end(kSwitchTimeCodes),
                        [timeSeconds](const SwitchTimeCode &row) { return timeSeconds <= row.upToSeconds; })
        ->code;
}

constexpr quint32 kFanFlagBoards = 0x13; ///< upper byte of the subsystem device of the cards with a fan flag

const char kModelMark[] = "GTX";
const char kTiMark[] = "Ti";
constexpr std::size_t kModelMarkAndBlank = 4; ///< characters of "GTX" and the blank after it

bool hasTi(const std::string &text)
{
    return text.find(kTiMark) != std::string::npos;
}

/// The low `byteCount` bytes of `value`, lowest first.
void place(LcdFrame &frame, std::size_t offset, quint32 value, std::size_t byteCount)
{
    for (std::size_t index = 0; index < byteCount; ++index)
        frame[offset + index] = static_cast<quint8>(value >> (8 * index));
}

void placeHalf(LcdFrame &frame, std::size_t offset, qint32 value)
{
    place(frame, offset, static_cast<quint32>(value), 2);
}

} // namespace

LcdModel lcdModelOf(const std::string &gpuName)
{
    LcdModel model;
    const std::size_t mark = gpuName.find(kModelMark);
    if (mark == std::string::npos)
        return model;
    const std::string tail = gpuName.substr(std::min(mark + kModelMarkAndBlank, gpuName.size()));
    const std::size_t blank = tail.find(' ');
    model.isTi = hasTi(tail);
    // "1080Ti" as one word is no number. In a name without "Ti" the number may be the last word.
    if (model.isTi && blank == std::string::npos)
        return model;

    const std::string number = tail.substr(0, std::min(blank, kLcdModelDigitCount));
    std::transform(number.rbegin(), number.rend(), model.digits.rbegin(),
                   [](char digit) { return static_cast<quint8>(digit - '0'); });
    return model;
}

quint8 lcdCommand(bool enable, bool autoSwitch, int timeSeconds, int mode)
{
    if (!enable)
        return kLcdCommandOff;
    if (!autoSwitch)
        return static_cast<quint8>(mode);
    return kLcdCommandAutoSwitch | switchTimeCode(timeSeconds);
}

bool lcdFanFlag(quint32 subSystemId, const std::string &gpuName, qint32 fanRpm)
{
    return subSystemDeviceOf(subSystemId) >> 8 == kFanFlagBoards && !hasTi(gpuName) && fanRpm > 0;
}

LcdFrame buildLcdFrame(const LcdReadings &readings)
{
    LcdFrame frame{};
    frame[kLcdMagicOffset] = kLcdMagic1;
    frame[kLcdMagicOffset + 1] = kLcdMagic2;
    frame[kLcdSequenceOffset] = readings.sequence;
    frame[kLcdCommandOffset] = readings.command;
    place(frame, kLcdMemoryTotalOffset, readings.memoryTotalKB, 4);
    placeHalf(frame, kLcdBaseClockOffset, readings.baseClockMHz);
    placeHalf(frame, kLcdThermalLimitOffset, readings.thermalLimit);
    placeHalf(frame, kLcdFanMaxRpmOffset, readings.fanMaxRpm);
    std::copy(readings.model.digits.begin(), readings.model.digits.end(), frame.begin() + kLcdModelDigitsOffset);
    frame[kLcdModelTiOffset] = readings.model.isTi ? 1 : 0;
    frame[kLcdFanFlagOffset] = readings.fanFlag ? 1 : 0;
    place(frame, kLcdMemoryUsedOffset, readings.memoryUsedKB, 4);
    placeHalf(frame, kLcdCurrentClockOffset, readings.currentClockMHz);
    placeHalf(frame, kLcdTemperatureOffset, readings.temperature);
    placeHalf(frame, kLcdFanRpmOffset, readings.fanRpm);
    place(frame, kLcdChecksumOffset, std::accumulate(frame.begin(), frame.begin() + kLcdChecksumOffset, 0u), 2);
    return frame;
}
