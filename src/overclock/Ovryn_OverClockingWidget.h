#pragma once

#include "config/ConfigRecords.h"
#include "overclock/AdjustPageLayout.h"
#include "overclock/AdjustRows.h"
#include "overclock/CardAdjustment.h"
#include "overclock/OverClockingParam.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Reds.h"

#include <QColor>
#include <QPixmap>
#include <QString>
#include <QWidget>

#include <array>

class NvGpuControl;
class Ovryn_SliderWidget;
class Ovryn_UserDefineFanSpeed;
class QCheckBox;
class QPushButton;

/// The page on which one card's clocks, voltage, targets and fan are adjusted. It has two faces, the rows and the fan
/// curve editor. Its widgets hold the edits; CardAdjustment does everything else. Nothing reaches the card until
/// Apply is confirmed; then the card is read back and the result is shown.
///
/// Owned by the main dialog, which lends it the card; without a card it shows empty rows and changes nothing. GUI
/// thread only: Apply, Default and the mode switch block it while the fan worker ends and the driver settles. Only
/// the value that is read back shows a setting that the driver refused.
class Ovryn_OverClockingWidget : public QWidget
{
    Q_OBJECT

public:
    /// Shows the card's present values and changes nothing on the card.
    explicit Ovryn_OverClockingWidget(NvGpuControl *control, QWidget *parent = nullptr,
                                      const AdjustTimings &pauses = {}, FanWatch fanWatch = {});
    /// Sets the card to the saved values first.
    Ovryn_OverClockingWidget(const AdjustModuleInfo &saved, NvGpuControl *control, QWidget *parent = nullptr,
                             const AdjustTimings &pauses = {}, FanWatch fanWatch = {});

    void setLanguage(Lang_OverClock texts, LanguageType newLanguage);

    // Operations of CardAdjustment, for the main dialog.
    void getParameter(AdjustModuleInfo &out) const { card.getParameter(out); }
    [[nodiscard]] bool isHighPerformance() const { return card.isHighPerformance(); }
    bool setHighPerformance(bool enable) { return card.setHighPerformance(enable); }
    void requestEnd() { card.requestEnd(); }
    /// The page must not be used afterwards. Its destructor does the same.
    void returnFanToDriver() { card.returnFanToDriver(); }

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
    /// A slider is being dragged: the applied value, the new value, and the second minus the first.
    void adjustChanged(QString currentValue, QString changedValue, int changedSize);
    void closeDisplayAdjustInfo(); ///< the slider was released
    void highPerformanceModeChanged(bool bChanged);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private slots:
    void showSnapshot(); ///< the card's own snapshot; then there is nothing to apply

private:
    Ovryn_OverClockingWidget(const AdjustModuleInfo *saved, NvGpuControl *control, QWidget *parent,
                             const AdjustTimings &pauses, FanWatch fanWatch);

    void build();
    void connectAll();
    void setFonts();
    void drawFrame();

    void showLink(bool linked);
    void showParam(OverClockingParam param);
    [[nodiscard]] OverClockingParam readSliders() const; ///< the card's snapshot with what the widgets show

    void returnToApplied(); ///< drops the edits that were not applied
    void applySliders();
    void applyCurve();
    void leaveCurve(); ///< to the rows
    void showActionButtons();
    void hideApplyAndCancel();

    CardAdjustment card;

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
};
