#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

class NvGpuControl;

/// What the main dialog knows of a card that it found. Kept in detection order.
struct GpuCardInfo
{
    QString gpuName;         ///< the driver's full name, with " N" after the N-th repetition
    QString displayName;     ///< short name for the selector, numbered likewise
    quint32 subSystemId = 0; ///< vendor in the low half, device in the high half
    qint32 family = 0;       ///< kFamilyOvryn, kFamilyStorm, 0 for another board of the maker, kFamilyForeign
    qint32 seriesCode = 0;   ///< bits 8 to 11 of the subsystem device, 0 where not of a known series
    qint32 modelCode = 0;    ///< bits 4 to 7, 0 where not of a known model
    qint32 variantCode = 0;  ///< bits 0 to 3, 0 where not of a known variant
    qint32 gpuIndex = 0;     ///< for NvGpuControl::setCurrentGpu
    bool hasLcd = false;     ///< the LCD controller acknowledged its probe
    bool hasLed = false;     ///< the LED controller acknowledged its probe
};

constexpr qint32 kFamilyOvryn = 0x1000;
constexpr qint32 kFamilyStorm = 0x2000;
constexpr qint32 kFamilyForeign = 0xFFFF;

/// Names and codes of a card from what the driver reports of it. Pure function.
GpuCardInfo identifyCard(const QString &gpuName, quint32 subSystemId);

/// Gives `card` its numbers after the cards found before it in this run. `earlier` holds the names as
/// detected, without numbers.
void numberRepeatedCard(GpuCardInfo &card, const QList<GpuCardInfo> &earlier);

/// True for the boards that carry the high-performance switch.
bool offersHighPerformance(const GpuCardInfo &card);

/// Walks the cards of `control`, probing each for its LED and LCD controllers. Calls the driver.
QList<GpuCardInfo> detectCards(NvGpuControl &control);
