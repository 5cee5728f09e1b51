#pragma once

#include "device/DeviceRecords.h"
#include "monitor/gauge/GaugeLayout.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QString>

#include <array>

class QPainter;

/// \file
/// What stands in the gauge's hole: the texts of the readout and of the adjustment overlay, and their painting.
/// A size without room for a text leaves that text out.

/// The chosen quantity. The numbers are the order of the readouts, not a code of the card.
enum GaugeDisplayMode
{
    GaugeDisplayClock = 0,
    GaugeDisplayTemperature = 1,
    GaugeDisplayMemory = 2,
};

struct ReadoutTexts
{
    QString mainValue; ///< with its unit
    QString maxValue;  ///< plain number
    QString minValue;  ///< plain number
};

/// Placeholders for a display mode that no button sets.
[[nodiscard]] ReadoutTexts readoutTextsFor(int displayMode, const NvCardBaseInfo &info);

/// `alpha` 0 to 255 is the opacity of the white texts.
void paintReadout(QPainter &painter, const ReadoutLayout &layout, const ReadoutTexts &texts, int alpha);

struct OverlayTexts
{
    struct Row
    {
        QString label;
        QString value;
    };

    std::array<Row, 3> rows; ///< in the order of OverlayLayout::rows
};

/// `changedSize` is shown without its sign, which the label tells.
[[nodiscard]] OverlayTexts overlayTextsFor(const Lang_BreathCircle &words, const QString &presetValue,
                                           const QString &presentValue, int changedSize);

void paintOverlay(QPainter &painter, const OverlayLayout &layout, const OverlayTexts &texts, const QString &family,
                  int alpha);
