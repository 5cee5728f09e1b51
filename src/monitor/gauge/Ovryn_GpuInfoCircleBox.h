#pragma once

#include "device/DeviceRecords.h"
#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"
#include "monitor/gauge/GaugeReadout.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QPixmap>
#include <QTimer>
#include <QWidget>

class Ovryn_CircleButton;

/// The round gauge of one card. Three clickable ring segments choose the quantity in the centre. The renderer's glow
/// and water level are the background; while an overclocking slider moves, an overlay shows its change. One per card,
/// in the main dialog's stack; GUI thread. Nothing fails; before the first sample all values are 0.
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
    /// The user chose a quantity, and the card's LCD should show the same one.
    void setLcdDisplayMode(LCDDisplayMode lcdDisplayMode);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    // parts and state, which a derived class may use
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
    void recvRenderedFrame(const GaugeFrame &frame);

private:
    void selectDisplayMode(GaugeDisplayMode mode);
    void updateReadoutTexts();
    void updateOverlayTexts();
    void drawReadout(QPainter &painter);
    [[nodiscard]] const QRegion &regionOfGlow(int reach);

    // inputs of a repaint, made again only when their sources change
    RingLayout ringLayout;
    QRect discRect;
    GaugeFrame shownFrame;  ///< in `background`; without a picture when `background` is no frame of the renderer
    QRegion animatedRegion; ///< for animatedReach
    int animatedReach = -1; ///< in pixels; -1 after a resize
    QPixmap readoutPicture; ///< null until it is drawn after a change of text, font or size
    ReadoutLayout readoutLayout;
    OverlayLayout overlayLayout;
    ReadoutTexts readoutTexts;
    OverlayTexts overlayTexts;
};
