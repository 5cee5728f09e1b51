#include "simulated/front/CardFront.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <tuple>

namespace cardfront
{
namespace
{

constexpr int kMaxByte = 0xFF;
constexpr int kMaxWord = 0xFFFF;
constexpr double kMaxLong = 4294967295.0;
constexpr double kMaxFrames = 2000000000.0;
constexpr double kMaxFanRpm = 20000.0;
constexpr int kMaxColours = 7;
constexpr int kMaxNameLength = 64; // of the driver's texts

/// A number within bounds; the lower bound for anything that is none.
double numberOf(const QJsonValue &value, double lowest, double highest)
{
    return qBound(lowest, value.toDouble(lowest), highest);
}

int byteOf(const QJsonValue &value)
{
    return static_cast<int>(numberOf(value, 0, kMaxByte));
}

int wordOf(const QJsonValue &value)
{
    return static_cast<int>(numberOf(value, 0, kMaxWord));
}

LedState ledOf(const QJsonObject &led)
{
    LedState state;
    state.effect = byteOf(led.value(QLatin1String("effect")));
    state.level = byteOf(led.value(QLatin1String("level")));
    state.interval = byteOf(led.value(QLatin1String("interval")));
    state.accepted = static_cast<int>(numberOf(led.value(QLatin1String("accepted")), 0, kMaxFrames));
    const QJsonArray colours = led.value(QLatin1String("colours")).toArray();
    for (const QJsonValue &value : colours) {
        const QJsonArray parts = value.toArray();
        if (parts.size() != 3)
            continue;
        state.colours.append(QColor(byteOf(parts[0]), byteOf(parts[1]), byteOf(parts[2])));
        if (state.colours.size() == kMaxColours)
            break;
    }
    return state;
}

LcdState lcdOf(const QJsonObject &lcd)
{
    LcdState state;
    // without a command nothing is known to be shown, which is how a controller starts
    if (lcd.value(QLatin1String("command")).isDouble())
        state.command = byteOf(lcd.value(QLatin1String("command")));
    state.sequence = byteOf(lcd.value(QLatin1String("sequence")));
    state.memoryTotalKB = numberOf(lcd.value(QLatin1String("memoryTotalKB")), 0, kMaxLong);
    state.memoryUsedKB = numberOf(lcd.value(QLatin1String("memoryUsedKB")), 0, kMaxLong);
    state.baseClockMHz = wordOf(lcd.value(QLatin1String("baseClockMHz")));
    state.currentClockMHz = wordOf(lcd.value(QLatin1String("currentClockMHz")));
    state.thermalLimitC = wordOf(lcd.value(QLatin1String("thermalLimitC")));
    state.temperatureC = wordOf(lcd.value(QLatin1String("temperatureC")));
    state.fanMaxRpm = wordOf(lcd.value(QLatin1String("fanMaxRpm")));
    state.fanRpm = wordOf(lcd.value(QLatin1String("fanRpm")));
    state.fanFlag = byteOf(lcd.value(QLatin1String("fanFlag"))) != 0;
    const QJsonArray digits = lcd.value(QLatin1String("modelDigits")).toArray();
    for (int i = 0; i < static_cast<int>(state.modelDigits.size()); ++i)
        state.modelDigits[static_cast<std::size_t>(i)] = byteOf(digits.at(i)); // undefined, so 0, beyond the end
    state.modelTi = byteOf(lcd.value(QLatin1String("modelTi"))) != 0;
    return state;
}

CardFront cardOf(const QJsonObject &entry)
{
    CardFront card;
    card.name = entry.value(QLatin1String("name")).toString().left(kMaxNameLength).simplified();
    const QJsonObject readings = entry.value(QLatin1String("readings")).toObject();
    card.fanRpm = numberOf(readings.value(QLatin1String("fanRpm")), 0, kMaxFanRpm);
    card.fanPercent = numberOf(readings.value(QLatin1String("fanPercent")), 0, 100);
    if (entry.value(QLatin1String("led")).isObject())
        card.led = ledOf(entry.value(QLatin1String("led")).toObject());
    if (entry.value(QLatin1String("lcd")).isObject())
        card.lcd = lcdOf(entry.value(QLatin1String("lcd")).toObject());
    return card;
}

auto fieldsOf(const LedState &led)
{
    return std::tie(led.effect, led.level, led.interval, led.colours, led.accepted);
}

auto fieldsOf(const LcdState &lcd)
{
    return std::tie(lcd.command, lcd.sequence, lcd.memoryTotalKB, lcd.memoryUsedKB, lcd.baseClockMHz,
                    lcd.currentClockMHz, lcd.thermalLimitC, lcd.temperatureC, lcd.fanMaxRpm, lcd.fanRpm, lcd.fanFlag,
                    lcd.modelDigits, lcd.modelTi);
}

} // namespace

bool operator==(const LedState &a, const LedState &b)
{
    return fieldsOf(a) == fieldsOf(b);
}

bool operator==(const LcdState &a, const LcdState &b)
{
    return fieldsOf(a) == fieldsOf(b);
}

bool operator==(const CardFront &a, const CardFront &b)
{
    return a.name == b.name && a.fanRpm == b.fanRpm && a.fanPercent == b.fanPercent && a.led == b.led &&
           a.lcd == b.lcd;
}

std::optional<QVector<CardFront>> cardFrontsOf(const QByteArray &text)
{
    const QJsonValue list = QJsonDocument::fromJson(text).object().value(QLatin1String("cards"));
    if (!list.isArray())
        return {};
    QVector<CardFront> cards;
    const QJsonArray entries = list.toArray();
    for (const QJsonValue &entry : entries) {
        if (entry.isObject())
            cards.append(cardOf(entry.toObject()));
    }
    return cards;
}

} // namespace cardfront
