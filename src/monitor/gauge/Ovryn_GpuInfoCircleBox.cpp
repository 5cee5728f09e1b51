#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"

#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"
#include "monitor/gauge/GaugeLayout.h"
#include "monitor/gauge/Ovryn_CircleButton.h"
#include "ui/PageFrame.h"

#include <QEvent>
#include <QPainter>
#include <QRegion>

#include <algorithm>
#include <utility>

namespace
{

constexpr int kFadeIntervalMs = 20;
constexpr int kFadeStep = 10; // the fade takes 26 ticks
constexpr int kOpaque = 255;
constexpr int kReachStep = 16; // pixels; the glow takes some eight frames from one to the next

LCDDisplayMode lcdModeFor(GaugeDisplayMode mode)
{
    switch (mode) {
    case GaugeDisplayTemperature:
        return LcdDisplayTemperature;
    case GaugeDisplayMemory:
        return LcdDisplayMemory;
    case GaugeDisplayClock:
        break;
    }
    return LcdDisplayClock;
}

bool hasWholePixels(const QImage &picture)
{
    return picture.depth() == 32; // a screen of fewer colours makes others of what it is given
}

bool samePart(const QImage &left, const QImage &right, const QRect &part)
{
    if (left.format() != right.format() || !hasWholePixels(left))
        return false;
    const QRect inside = part & left.rect() & right.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const auto *leftRow = reinterpret_cast<const QRgb *>(left.constScanLine(y));
        const auto *rightRow = reinterpret_cast<const QRgb *>(right.constScanLine(y));
        if (!std::equal(leftRow + inside.left(), leftRow + inside.right() + 1, rightRow + inside.left()))
            return false;
    }
    return true;
}

/// How far from its middle the picture is painted: the reach of the glow, or of the disc where nothing glows.
int paintedReach(const QImage &picture)
{
    const int middle = picture.width() / 2;
    if (!hasWholePixels(picture))
        return middle;
    const auto *row = reinterpret_cast<const QRgb *>(picture.constScanLine(picture.height() / 2));
    return middle - static_cast<int>(std::find_if(row, row + middle, [](QRgb pixel) { return pixel != 0; }) - row);
}

} // namespace

Ovryn_GpuInfoCircleBox::Ovryn_GpuInfoCircleBox(QWidget *parent)
    : QWidget(parent),
      btnFreClock(new Ovryn_CircleButton(RingSegmentClock, this)),
      btnTemperature(new Ovryn_CircleButton(RingSegmentTemperature, this)),
      btnMemory(new Ovryn_CircleButton(RingSegmentMemory, this)),
      fadeTimer(new QTimer(this)),
      renderer(new CreateBreathCircleAndWaveCircleThread(this))
{
    qRegisterMetaType<LCDDisplayMode>("LCDDisplayMode");
    btnFreClock->setObjectName(QStringLiteral("btnFreClock"));
    btnTemperature->setObjectName(QStringLiteral("btnTemperature"));
    btnMemory->setObjectName(QStringLiteral("btnMemory"));
    fadeTimer->setObjectName(QStringLiteral("fadeTimer"));
    fadeTimer->setInterval(kFadeIntervalMs);
    renderer->setBreathEnabled(false);
    renderer->setWaveEnabled(false);
    updateReadoutTexts();
    updateOverlayTexts();

    connect(btnFreClock, SIGNAL(onMouseClick()), this, SLOT(btnFreClock_MouseClick()));
    connect(btnTemperature, SIGNAL(onMouseClick()), this, SLOT(btnTemperature_MouseClick()));
    connect(btnMemory, SIGNAL(onMouseClick()), this, SLOT(btnMemory_MouseClick()));
    connect(fadeTimer, SIGNAL(timeout()), this, SLOT(onTimer1Timerout()));
    connect(renderer, SIGNAL(sendImage(QImage)), this, SLOT(recvRenderedImage(QImage)), Qt::QueuedConnection);
}

Ovryn_GpuInfoCircleBox::~Ovryn_GpuInfoCircleBox()
{
    delete renderer; // it must have ended before the box that it sends to goes
}

void Ovryn_GpuInfoCircleBox::setAdjustInfo(QString currentValue, QString changedValue, int changedSize)
{
    adjustCurrent = std::move(currentValue);
    adjustChanged = std::move(changedValue);
    adjustSize = changedSize;
    updateOverlayTexts();
    fadeTimer->stop();
    overlayAlpha = 0;
    update();
}

void Ovryn_GpuInfoCircleBox::closeDisplayInfo()
{
    if (overlayAlpha < kOpaque)
        fadeTimer->start();
    update();
}

void Ovryn_GpuInfoCircleBox::onTimer1Timerout()
{
    overlayAlpha += kFadeStep;
    if (overlayAlpha >= kOpaque) {
        overlayAlpha = kOpaque;
        fadeTimer->stop();
    }
    update();
}

void Ovryn_GpuInfoCircleBox::recvNvCardInfo(NvCardBaseInfo info)
{
    nvCardBaseInfo = info;
    waveLevel = nvCardBaseInfo.memoryUsagePercent.currentValue / 100.0;
    renderer->setWaveLevel(waveLevel);
    updateReadoutTexts();
    update();
}

void Ovryn_GpuInfoCircleBox::setEnableBreathingCircle(bool enable)
{
    renderer->setBreathEnabled(enable);
    if (isVisible())
        renderer->startRender();
}

void Ovryn_GpuInfoCircleBox::setEnableWave(bool enable)
{
    enableWave = enable;
    if (displayMode == GaugeDisplayMemory)
        renderer->setWaveEnabled(enable);
    if (isVisible())
        renderer->startRender();
}

void Ovryn_GpuInfoCircleBox::setLanguage(Lang_BreathCircle lang, LanguageType langType)
{
    words = std::move(lang);
    language = langType;
    btnFreClock->setText(words.clock);
    btnTemperature->setText(words.temp);
    btnMemory->setText(words.memory);
    updateOverlayTexts();
    update();
}

void Ovryn_GpuInfoCircleBox::btnFreClock_MouseClick()
{
    selectDisplayMode(GaugeDisplayClock);
}

void Ovryn_GpuInfoCircleBox::btnTemperature_MouseClick()
{
    selectDisplayMode(GaugeDisplayTemperature);
}

void Ovryn_GpuInfoCircleBox::btnMemory_MouseClick()
{
    selectDisplayMode(GaugeDisplayMemory);
}

void Ovryn_GpuInfoCircleBox::selectDisplayMode(GaugeDisplayMode mode)
{
    displayMode = mode;
    overlayAlpha = kOpaque;
    updateReadoutTexts();
    const bool wave = mode == GaugeDisplayMemory && enableWave;
    renderer->setWaveEnabled(wave);
    if (wave)
        renderer->startRender();
    emit setLcdDisplayMode(lcdModeFor(mode));
    update();
}

void Ovryn_GpuInfoCircleBox::recvRenderedImage(const QImage &image)
{
    const QImage shown = background.toImage(); // shares the pixmap's memory
    background = QPixmap::fromImage(image);
    if (shown.size() != image.size()) {
        update();
        return;
    }
    const QRegion &changed = regionOfGlow(qMax(paintedReach(shown), paintedReach(image)));
    // Without water the disc stays as it is, and the readout on it need not be painted again.
    update(samePart(shown, image, discRect) ? changed - discRect : changed);
}

const QRegion &Ovryn_GpuInfoCircleBox::regionOfGlow(int reach)
{
    const int roundedUp = (reach + kReachStep - 1) / kReachStep * kReachStep;
    if (roundedUp != animatedReach) {
        animatedReach = roundedUp;
        animatedRegion = animatedRegionFor(ringLayout, animatedReach);
    }
    return animatedRegion;
}

void Ovryn_GpuInfoCircleBox::recvBkImg(QPixmap pixmap)
{
    background = std::move(pixmap);
    update();
}

void Ovryn_GpuInfoCircleBox::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    ringLayout = ringLayoutFor(size(), ringRatio);
    const RingLayout &ring = ringLayout;
    ringSize = ring.ringSize;
    holeRadius = ring.holeRadius;
    readoutLayout = readoutLayoutFor(ring.side, holeRadius);
    overlayLayout = overlayLayoutFor(ring.side, holeRadius, ringRatio);
    discRect = discRectFor(ring);
    animatedReach = -1;
    readoutPicture = QPixmap();
    setMask(QRegion(0, 0, ring.side, ring.side, QRegion::Ellipse));

    for (Ovryn_CircleButton *button : {btnFreClock, btnTemperature, btnMemory}) {
        button->setThickness(ring.thickness);
        button->setGeometry(ring.button);
    }
    renderer->setSize(ring.side);
    renderer->setBreathRadius(ringSize * 0.5);
    renderer->setWaveRadius(holeRadius);
}

void Ovryn_GpuInfoCircleBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, background);
    if (overlayAlpha == kOpaque)
        drawReadout(painter);
    else if (overlayAlpha > 0)
        paintReadout(painter, readoutLayout, readoutTexts, overlayAlpha);
    if (overlayAlpha < kOpaque)
        paintOverlay(painter, overlayLayout, overlayTexts, PageFrame::fontFamily(language), kOpaque - overlayAlpha);
}

void Ovryn_GpuInfoCircleBox::drawReadout(QPainter &painter)
{
    const QRect place = readoutLayout.bounds() & rect();
    if (readoutPicture.isNull() && !place.isEmpty()) {
        readoutPicture = QPixmap(place.size());
        readoutPicture.fill(Qt::transparent);
        QPainter once(&readoutPicture);
        once.setFont(font());
        once.translate(-place.topLeft());
        paintReadout(once, readoutLayout, readoutTexts, kOpaque);
    }
    painter.drawPixmap(place.topLeft(), readoutPicture);
}

void Ovryn_GpuInfoCircleBox::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        readoutPicture = QPixmap();
}

void Ovryn_GpuInfoCircleBox::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    renderer->startRender();
}

void Ovryn_GpuInfoCircleBox::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    renderer->stopRender();
}

void Ovryn_GpuInfoCircleBox::updateReadoutTexts()
{
    readoutTexts = readoutTextsFor(displayMode, nvCardBaseInfo);
    readoutPicture = QPixmap();
}

void Ovryn_GpuInfoCircleBox::updateOverlayTexts()
{
    overlayTexts = overlayTextsFor(words, adjustCurrent, adjustChanged, adjustSize);
}
