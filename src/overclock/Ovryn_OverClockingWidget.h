#pragma once

#include "config/ConfigRecords.h"
#include "overclock/AdjustPageLayout.h"
#include "overclock/AdjustRows.h"
#include "overclock/OverClockingParam.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Reds.h"

#include <QColor>
#include <QList>
#include <QMap>
#include <QPixmap>
#include <QPoint>
#include <QString>
#include <QWidget>

#include <array>
#include <functional>

class NvGpuControl;
class Ovryn_SetUserDefineFanSpeedThread;
class Ovryn_SliderWidget;
class Ovryn_UserDefineFanSpeed;
class QCheckBox;
class QPushButton;

/// How long the page and its fan worker pause, in milliseconds.
struct AdjustTimings
{
    unsigned int settleMs = 500;       ///< between the orders and reading the card back, so that the driver settles
    unsigned int fanIntervalMs = 1000; ///< between two cycles of the fan curve
};

/// Called with true before a fan begins to follow a curve, and with false once the driver has it back or holds a
/// level of the user's: in between, somebody must hand it back if this process dies.
using FanWatch = std::function<void(bool followsCurve)>;

/// The page on which one card's clocks, voltage, targets and fan are adjusted. It works on a snapshot: nothing
/// reaches the card until Apply is confirmed, and what the card made of it is read back and shown. It has two faces,
/// the rows and the fan curve editor.
///
/// Owned by the main dialog, which lends it the card; without a card it shows empty rows and changes nothing. GUI
/// thread only: Apply, Default and the mode switch block it while the fan worker ends and the driver settles. A
/// setting that the driver refuses is told by nothing but the value read back.
class Ovryn_OverClockingWidget : public QWidget
{
    Q_OBJECT

public:
    /// Shows the card as it stands and changes nothing of it.
    explicit Ovryn_OverClockingWidget(NvGpuControl *control, QWidget *parent = nullptr,
                                      const AdjustTimings &pauses = {}, FanWatch fanWatch = {});
    /// Brings the card to the saved values first.
    Ovryn_OverClockingWidget(const AdjustModuleInfo &saved, NvGpuControl *control, QWidget *parent = nullptr,
                             const AdjustTimings &pauses = {}, FanWatch fanWatch = {});
    /// Hands the fan back, see handFanBack.
    ~Ovryn_OverClockingWidget() override;

    void requestEnd(); ///< asks the fan worker to end; waits for nothing
    /// The end of the page's work: ends the fan worker, and hands the fan back to the driver when the user's curve
    /// drove it. A worker that hangs in the driver is left behind. The page must not be used afterwards; nothing the
    /// second time.
    void handFanBack();

    /// What is in force, without edits that were not applied; of a row that can't be read the number known last, or
    /// -1.
    void getParameter(AdjustModuleInfo &out) const;
    void setLanguage(Lang_OverClock texts, LanguageType newLanguage);

    [[nodiscard]] bool isHighPerformance() const { return highPerformance; }
    /// Switches the preset of certain boards. False for any other board, which also ends the mode.
    bool setHighPerformance(bool enable);

public slots:
    void onSliderChanged(Ovryn_SliderWidget *sender);
    void onSliderMoved(Ovryn_SliderWidget *sender, int move);
    void onSliderReleased(Ovryn_SliderWidget *sender);
    void onBtnApplyClick();
    void onBtnCancleClick();
    void onBtnDefaultClick();
    void onBtnFanAutoClick();
    void onBtnFanManualClick();
    void onBtnFanUserDefinedClick();
    void onLinkCheckBoxToggle(bool checked);
    void onBtnUserDefineConfigClick();
    void showPage();

signals:
    /// A slider is being dragged: the value in force, the value now, and the second less the first.
    void adjustChanged(QString currentValue, QString changedValue, int changedSize);
    void closeDisplayAdjustInfo(); ///< the slider was let go
    void highPerformanceModeChanged(bool bChanged);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    Ovryn_OverClockingWidget(const AdjustModuleInfo *saved, NvGpuControl *control, QWidget *parent,
                             const AdjustTimings &pauses, FanWatch fanWatch);

    void build();
    void connectAll();
    void setFonts();
    void drawFrame();

    void startFromCard();
    void startFromSaved(const AdjustModuleInfo &saved);
    void startInHighPerformance();

    void readDevice();                         ///< into `current`, which keeps its link and its fan mode
    void keepNumbers(OverClockingParam param); ///< of the rows that were read, for `kept`
    void showParam(OverClockingParam param);
    void readSliders(); ///< from the widgets into `current`
    void applyParam();  ///< `current`
    /// Gives the orders, waits and reads the card back. `current` keeps its own link and fan mode.
    void applyParam(OverClockingParam param);
    void startFanThread();
    void stopFanThread();
    /// After the card's fan got another order than the curve's; where it was refused, the driver gets the fan back.
    void fanLeftCurve(bool orderTaken);

    void returnToApplied(); ///< drops the edits that were not applied
    void applySliders();
    void applyCurve();
    void restoreDefaults();
    void leaveCurve(); ///< to the rows
    void endHighPerformance();
    void showActionButtons();
    void hideApplyAndCancel();

    const AdjustTimings timings;
    NvGpuControl *const gpuControl;               ///< borrowed; may be null
    const FanWatch fanWatch;                      ///< may be empty
    Ovryn_SetUserDefineFanSpeedThread *fanThread; ///< null once the page's work has ended
    bool curveDrivesFan = false;                  ///< from the worker's start until the card took another order

    std::array<Ovryn_SliderWidget *, AdjustRowCount> rows{};
    Ovryn_UserDefineFanSpeed *editor = nullptr;
    QPushButton *btnApply = nullptr;
    QPushButton *btnCancel = nullptr;
    QPushButton *btnDefault = nullptr;
    QPushButton *btnFanAuto = nullptr; ///< this and the next two are one exclusive group
    QPushButton *btnFanManual = nullptr;
    QPushButton *btnFanUserDefined = nullptr;
    QPushButton *btnUserDefineConfig = nullptr; ///< opens the fan curve
    QCheckBox *LinkCheckBox = nullptr;

    AdjustPageLayout rects;
    QPixmap background; ///< the frame
    const QColor frameColor = Reds::glass();
    const QColor fillColor = Reds::glass(60);
    qint32 editingCurve = 0; ///< 0 the rows are shown, 1 the fan curve
    QString applyPrompt;
    LanguageType language = kLanguageEnglish;

    OverClockingParam current; ///< last read or applied; what the rows start from
    OverClockingParam applied; ///< what Cancel returns to
    /// The rows' numbers for the settings file, each as it was read, ordered or found in the file last; negative
    /// where there is none.
    std::array<qint32, AdjustRowCount> kept;
    OverClockingParam beforeHighPerformance; ///< what the card goes back to when the mode is switched off
    bool highPerformance = false;
    QList<QPoint> nodes; ///< the fan curve in force: degrees Celsius, percent; empty until one was set
    const QMap<quint32, qint32> highPerformanceClocks; ///< MHz by board
};
