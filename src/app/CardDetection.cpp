#include "app/CardDetection.h"

#include "device/MakersBoards.h"
#include "device/NvGpuControl.h"

#include <string>

namespace
{

constexpr quint8 kLedProbeEffect = 0x0A;
constexpr int kLcdProbeSeconds = 10;

const QString kOvrynPrefix = QStringLiteral("Ovryn ");
const QString kStormPrefix = QStringLiteral("StormPIKE ");

/// The text after "GeForce "; the whole name where it lacks that.
QString withoutBrand(const QString &gpuName)
{
    const QString brand = QStringLiteral("GeForce ");
    const int at = gpuName.indexOf(brand);
    return at < 0 ? gpuName : gpuName.mid(at + brand.size());
}

QString makerDisplayName(const QString &gpuName, const QString &prefix)
{
    const QString series = QStringLiteral("GTX");
    const int at = gpuName.indexOf(series);
    if (at < 0)
        return withoutBrand(gpuName);
    return prefix + gpuName.mid(at + series.size() + 1); // the blank after the series goes too
}

qint32 knownSeries(quint32 device)
{
    const quint32 code = device & 0x0F00;
    return code == 0x100 || code == 0x300 || code == 0x400 ? qint32(code) : 0;
}

qint32 knownModel(quint32 device)
{
    const quint32 code = device & 0x00F0;
    const bool known = (code >= 0x10 && code <= 0x70) || (code >= 0xA0 && code <= 0xD0);
    return known ? qint32(code) : 0;
}

qint32 knownVariant(quint32 device)
{
    const quint32 code = device & 0x000F;
    return code == 1 || code == 2 || code >= 8 ? qint32(code) : 0;
}

/// The variant of a board outside the Ovryn family: bit 0 decides, and where it is not set bit 1 does.
qint32 plainVariant(quint32 device)
{
    return (device & 1) ? 1 : qint32(device & 2);
}

/// A name as it can be shown and written to config.xml: XML has no way to hold a control character, and one in a
/// name would make the whole file unreadable.
QString printableName(const std::string &driverName)
{
    QString name;
    for (const QChar letter : QString::fromStdString(driverName))
        if (letter.isPrint())
            name += letter;
    return name;
}

} // namespace

GpuCardInfo identifyCard(const QString &gpuName, quint32 subSystemId)
{
    GpuCardInfo card;
    card.gpuName = gpuName;
    card.subSystemId = subSystemId;
    card.displayName = withoutBrand(gpuName);

    if (subSystemVendorOf(subSystemId) != kMakerSubSystemVendor) {
        card.family = kFamilyForeign;
        return card;
    }
    const quint32 device = subSystemDeviceOf(subSystemId);
    switch (device & 0xF000) {
    case kFamilyOvryn:
        card.family = kFamilyOvryn;
        card.displayName = makerDisplayName(gpuName, kOvrynPrefix);
        card.seriesCode = knownSeries(device);
        card.modelCode = knownModel(device);
        card.variantCode = knownVariant(device);
        break;
    case kFamilyStorm:
        card.family = kFamilyStorm;
        card.displayName = makerDisplayName(gpuName, kStormPrefix);
        card.variantCode = plainVariant(device);
        break;
    default:
        card.family = 0;
        card.variantCode = plainVariant(device);
        break;
    }
    return card;
}

void numberRepeatedCard(GpuCardInfo &card, const QList<GpuCardInfo> &earlier)
{
    int sameDisplayName = 0;
    int sameCard = 0;
    for (const GpuCardInfo &other : earlier) {
        if (other.displayName == card.displayName)
            ++sameDisplayName;
        if (other.gpuName == card.gpuName && other.subSystemId == card.subSystemId)
            ++sameCard;
    }
    if (sameDisplayName > 0)
        card.displayName += QLatin1Char(' ') + QString::number(sameDisplayName);
    if (sameCard > 0)
        card.gpuName += QLatin1Char(' ') + QString::number(sameCard);
}

bool offersHighPerformance(const GpuCardInfo &card)
{
    return card.gpuName == QLatin1String(kHighPerformanceModel) && card.family == kFamilyOvryn &&
           card.variantCode >= 8;
}

QList<GpuCardInfo> detectCards(NvGpuControl &control)
{
    QList<GpuCardInfo> cards;
    QList<GpuCardInfo> asDetected;
    const quint32 count = control.gpuCount();
    for (quint32 index = 0; index < count; ++index) {
        control.setCurrentGpu(qint32(index));
        NvPciIds ids;
        control.getPciIdentifiers(ids); // after a failed read the identifiers are 0, and the card counts as foreign
        GpuCardInfo card = identifyCard(printableName(control.getGpuName()), ids.subSystemId);
        card.gpuIndex = qint32(index);
        card.hasLed = control.i2cWriteFramed(nullptr, 0, kLedProbeEffect, 0, 0, false);
        card.hasLcd = control.sendCardInfoToLcd(true, true, kLcdProbeSeconds, LcdDisplayClock);
        const GpuCardInfo detected = card;
        numberRepeatedCard(card, asDetected);
        asDetected.append(detected);
        cards.append(card);
    }
    return cards;
}
