#pragma once

#include "device/DeviceRecords.h"
#include "monitor/gauge/GaugeReadout.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QImage>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

class CreateBreathCircleAndWaveCircleThread;
class Ovryn_CircleButton;

/// The round gauge of one card: three clickable ring segments choose what the centre reads, behind it the
/// renderer's glow and water level, in front of it, while an overclocking slider moves, the change.
/// One per card, in the main dialog's stack; GUI thread. Nothing fails; before the first sample all values
/// read 0.
class Ovryn_GpuInfoCircleBox : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_GpuInfoCircleBox(QWidget *parent = nullptr);
    ~Ovryn_GpuInfoCircleBox() override;

public slots:
    /// Shows the adjustment overlay at once and in full.
    void setAdjustInfo(QString currentValue, QString changedValue, int changedSize);
    void closeDisplayInfo(); ///< fades back to the readout
    void recvNvCardInfo(NvCardBaseInfo nvCardBaseInfo);
    void setEnableBreathingCircle(bool enable);
    void setEnableWave(bool enable); ///< the water shows on the memory readout only
    void setLanguage(Lang_BreathCircle lang, LanguageType langType);
    void btnFreClock_MouseClick();
    void btnTemperature_MouseClick();
    void btnMemory_MouseClick();
    void onTimer1Timerout(); ///< one step of the fade
    void recvBkImg(QPixmap pixmap);

signals:
    /// The card's LCD is to show the same quantity.
    void setLcdDisplayMode(LCDDisplayMode lcdDisplayMode);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    // its parts and state, open to a derived class
    Ovryn_CircleButton *btnFreClock;
    Ovryn_CircleButton *btnTemperature;
    Ovryn_CircleButton *btnMemory;
    double ringRatio = 0.2;
    double ringSize = 0;
    double holeRadius = 0;
    double waveLevel = 0.5;
    int displayMode = GaugeDisplayClock;
    QString adjustCurrent = QStringLiteral("00");
    QString adjustChanged = QStringLiteral("00");
    int adjustSize = 0;
    QTimer *fadeTimer;
    int overlayAlpha = 255; ///< 255 shows the readout alone, 0 the overlay alone
    NvCardBaseInfo nvCardBaseInfo;
    QPixmap background;
    CreateBreathCircleAndWaveCircleThread *renderer;
    bool enableWave = true;
    Lang_BreathCircle words;
    LanguageType language = kLanguageEnglish;

private slots:
    void recvRenderedImage(const QImage &image);

private:
    void selectDisplayMode(GaugeDisplayMode mode);
    void updateReadoutTexts();
    void updateOverlayTexts();
    void drawReadout(QPainter &painter);
    [[nodiscard]] const QRegion &regionOfGlow(int reach);

    // what a repaint needs, made where its inputs change
    RingLayout ringLayout;
    QRect discRect;
    QRegion animatedRegion; ///< for animatedReach
    int animatedReach = -1; ///< in pixels; -1 after a resize
    QPixmap readoutPicture; ///< null until it is drawn after a change of text, font or size
    ReadoutLayout readoutLayout;
    OverlayLayout overlayLayout;
    ReadoutTexts readoutTexts;
    OverlayTexts overlayTexts;
};
