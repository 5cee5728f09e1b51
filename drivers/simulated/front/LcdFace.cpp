#include "simulated/front/LcdFace.h"

#include <array>

namespace cardfront
{
namespace
{

constexpr int kRotation = 0xF0; // with a rate in the low half
constexpr std::array<int, 4> kPages = {kLcdClock, kLcdTemperature, kLcdMemory, kLcdOther};

// seconds by the low half of a rotation's command; each stands for a few and is shown as the longest of them
constexpr std::array<int, 16> kStaySeconds = {30, 1, 2, 3, 4, 6, 10, 15, 20, 24, 29, 30, 30, 30, 30, 30};

constexpr int kMostMegabytes = 9999; // four digits are on the panel; larger amounts are told in GB

double partOf(double value, double whole)
{
    return whole > 0 ? qBound(0.0, value / whole, 1.0) : 0.0;
}

/// An amount of memory as the panel tells it: number and unit.
std::pair<QString, QString> memoryText(double kilobytes)
{
    const double megabytes = kilobytes / 1024.0;
    if (megabytes < kMostMegabytes + 1)
        return {QString::number(static_cast<int>(megabytes)), QStringLiteral("MB")};
    return {QString::number(megabytes / 1024.0, 'f', 1), QStringLiteral("GB")};
}

} // namespace

qint64 pageStayMs(int command)
{
    return kStaySeconds[static_cast<std::size_t>(command & 0x0F)] * 1000LL;
}

int lcdPageAt(int command, qint64 sinceMs)
{
    if (command == kLcdOff)
        return 0;
    if ((command & 0xF0) == kRotation) {
        const qint64 turn = qMax<qint64>(sinceMs, 0) / pageStayMs(command);
        return kPages[static_cast<std::size_t>(turn % static_cast<qint64>(kPages.size()))];
    }
    for (const int page : kPages) {
        if (command == page)
            return page;
    }
    return 0;
}

QString modelText(const LcdState &lcd)
{
    QString text;
    for (const int digit : lcd.modelDigits) {
        if (digit == 0 && text.isEmpty())
            continue; // the number stands at the right
        // the sender takes the character "0" off whatever stands in the name
        const int character = ('0' + digit) & 0xFF;
        text += character > ' ' && character < 0x7F ? QChar(character) : QChar(QLatin1Char('-'));
    }
    if (text.isEmpty())
        return text;
    return QLatin1String("GTX ") + text + (lcd.modelTi ? QLatin1String(" Ti") : QLatin1String());
}

LcdFace lcdFaceAt(const LcdState &lcd, qint64 sinceMs)
{
    LcdFace face;
    if (lcd.command == kLcdOff)
        return face;
    face.lit = true;
    face.page = lcdPageAt(lcd.command, sinceMs);
    face.beat = lcd.sequence % 2 != 0;
    switch (face.page) {
    case kLcdClock:
        face.caption = QStringLiteral("CLOCK");
        face.digits = QString::number(lcd.currentClockMHz);
        face.unit = QStringLiteral("MHz");
        face.detail = QStringLiteral("base %1").arg(lcd.baseClockMHz);
        face.part = partOf(lcd.currentClockMHz, 1.25 * lcd.baseClockMHz); // room for the boost
        break;
    case kLcdTemperature:
        face.caption = QStringLiteral("TEMP");
        face.digits = QString::number(lcd.temperatureC);
        face.unit = QStringLiteral("°C");
        face.detail = QStringLiteral("limit %1").arg(lcd.thermalLimitC);
        face.part = partOf(lcd.temperatureC, lcd.thermalLimitC);
        break;
    case kLcdMemory: {
        const auto [digits, unit] = memoryText(lcd.memoryUsedKB);
        const auto [total, totalUnit] = memoryText(lcd.memoryTotalKB);
        face.caption = QStringLiteral("MEMORY");
        face.digits = digits;
        face.unit = unit;
        face.detail = QStringLiteral("of %1 %2").arg(total, totalUnit);
        face.part = partOf(lcd.memoryUsedKB, lcd.memoryTotalKB);
        break;
    }
    case kLcdOther:
        face.caption = lcd.fanFlag ? QStringLiteral("FAN ON") : QStringLiteral("FAN");
        face.digits = QString::number(lcd.fanRpm);
        face.unit = QStringLiteral("RPM");
        face.detail = modelText(lcd);
        face.part = partOf(lcd.fanRpm, lcd.fanMaxRpm);
        break;
    default:
        face.digits = QStringLiteral("----");
        break;
    }
    return face;
}

} // namespace cardfront
