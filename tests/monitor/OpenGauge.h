#pragma once

#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"
#include "monitor/gauge/Ovryn_CircleButton.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"
#include "ui/Fonts.h"

#include <QPainter>
#include <QtTest>

constexpr int kSide = 400; // ring from 80 to 120 pixels around (200, 200)
constexpr int kPatienceMs = 20000;

inline Lang_BreathCircle englishWords()
{
    return {"C L O C K", "T E M P", "M E M O R Y", "Preset ", "Present ", "Dec ", "Inc "};
}

/// A gauge whose parts are at hand.
class OpenGauge : public Ovryn_GpuInfoCircleBox
{
public:
    OpenGauge()
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setLanguage(englishWords(), kLanguageEnglish);
        resize(kSide, kSide);
    }

    using Ovryn_GpuInfoCircleBox::adjustChanged;
    using Ovryn_GpuInfoCircleBox::adjustCurrent;
    using Ovryn_GpuInfoCircleBox::adjustSize;
    using Ovryn_GpuInfoCircleBox::background;
    using Ovryn_GpuInfoCircleBox::btnMemory;
    using Ovryn_GpuInfoCircleBox::displayMode;
    using Ovryn_GpuInfoCircleBox::enableWave;
    using Ovryn_GpuInfoCircleBox::fadeTimer;
    using Ovryn_GpuInfoCircleBox::holeRadius;
    using Ovryn_GpuInfoCircleBox::nvCardBaseInfo;
    using Ovryn_GpuInfoCircleBox::overlayAlpha;
    using Ovryn_GpuInfoCircleBox::renderer;
    using Ovryn_GpuInfoCircleBox::ringSize;
    using Ovryn_GpuInfoCircleBox::waveLevel;

    void showReady()
    {
        show();
        QVERIFY(QTest::qWaitForWindowExposed(this));
    }

    /// The renderer's next picture has water in the lower part of its disc.
    [[nodiscard]] bool showsWater() const
    {
        const QImage picture = renderer->renderFrame();
        return qAlpha(picture.pixel(picture.width() / 2, int(picture.width() / 2 + 0.9 * holeRadius))) > 100;
    }

    /// The renderer's next picture has a glow around the ring.
    [[nodiscard]] bool showsGlow() const
    {
        const QImage picture = renderer->renderFrame();
        return qAlpha(picture.pixel(picture.width() / 2, int(picture.width() / 2 - 0.5 * ringSize - 3))) > 0;
    }

    /// What the box itself paints, without its buttons.
    QImage painted()
    {
        QImage image(size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        render(&image, QPoint(), QRegion(), IgnoreMask);
        return image;
    }
};

inline NvCardBaseInfo sample()
{
    NvCardBaseInfo info;
    info.gpuClock = {1987, 139, 1911, 2000, 0};
    info.temperature = {83, 31, 64, 104, 0};
    info.memoryUsage = {7112, 420, 3276, 8192, 0};
    info.memoryUsagePercent.currentValue = 40;
    return info;
}

/// What each test of the gauge finds: the program's fonts.
class GaugeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        substituteFontFamilies();
        QApplication::setFont(QFont(QString::fromUtf8("微软雅黑"))); // as the program does
    }
};
