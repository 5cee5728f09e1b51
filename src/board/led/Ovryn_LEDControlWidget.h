#pragma once

#include "board/led/LedEffects.h"
#include "board/led/LedPageLayout.h"
#include "config/ConfigRecords.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QColor>
#include <QPixmap>
#include <QWidget>

#include <array>

class ModifySpinBox;
class NvGpuControl;
class Ovryn_ColorButton;
class Ovryn_ColorButtonGroup;
class Ovryn_SendColorToLed;
class QLabel;
class QPushButton;
class QRadioButton;
class QTimer;

/// How long the page and its worker pause, in milliseconds. The pauses stand on the GUI thread.
struct LedTimings
{
    unsigned int beforeDefaultsMs = 50;    ///< before a page without saved values is filled
    unsigned int afterStatusMs = 100;      ///< after the status read
    unsigned int beforeSleepFrameMs = 100; ///< the controller must be at rest when it is switched off
    int colorChangedMs = 500;              ///< from the last movement of a dragged colour to its frame
    unsigned int workerSleepMs = 1000;     ///< between two passes of the State-Display effect
};

/// The page on which one card's lighting is chosen. Each change goes to the card at once; there is no Apply.
///
/// Owned by the main dialog, which lends it the card; without a card it sends nothing. GUI thread: leaving the
/// State-Display effect blocks it until the worker has ended. Every write may fail, silently.
class Ovryn_LEDControlWidget : public QWidget
{
    Q_OBJECT

public:
    /// One colour, breathing, red. Sends nothing.
    explicit Ovryn_LEDControlWidget(NvGpuControl *card, QWidget *parent = nullptr, const LedTimings &pauses = {});
    /// Shows the saved values. Sends nothing, except where the saved gradient isn't known to the controller.
    Ovryn_LEDControlWidget(const LedModuleInfo &info, NvGpuControl *card, QWidget *parent = nullptr,
                           const LedTimings &pauses = {});
    /// Sends the effect to a controller of type 3 once more, with the closing flag.
    ~Ovryn_LEDControlWidget() override;

    void requestEnd(); ///< asks the worker to end; waits for nothing

    void getLedModuleInfo(LedModuleInfo &out) const;
    void setLanguage(const Lang_LED &words, LanguageType newLanguage);
    /// The one place that sends colours. Waits for the worker unless the State-Display effect is chosen.
    void sendCurrentEffect(bool closing);

public slots:
    void onRdbStateToggled(bool checked);
    void onRdbSingleToggled(bool checked);
    void onRdbMultipleToggled(bool checked);
    void onRdbSleepToggled(bool checked);
    void onRdbGradientToggled(bool checked);
    void onColorButtonDuobleClick(Ovryn_ColorButton *sender);
    void onColorButtonClick(Ovryn_ColorButton *sender);
    void onColorChangedTimerout();
    void onResetButtonClick();
    void onSpinBoxIntervalValueChanged(int value);
    void setCurrentBindColorCircleButtonColor(QColor color);

signals:
    /// The colour that the palette is to show. Despite the name a single click on a custom button, or Reset.
    void colorButtonHasDoubleClick(QColor color);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    Ovryn_LEDControlWidget(const LedModuleInfo *saved, NvGpuControl *card, QWidget *parent, const LedTimings &pauses);

    void build();
    void connectAll();
    void showDefaults();
    void showSaved(const LedModuleInfo &info);
    void readController();
    void enableColorControls(bool enable);
    void useGroupMode(int mode);
    void send(const LedCommand &command, bool closing);
    [[nodiscard]] QRadioButton *radioOf(LedMode mode) const;
    [[nodiscard]] LedMode checkedMode() const;
    [[nodiscard]] bool isCustom(const Ovryn_ColorButton *button) const;
    void setFonts();
    void drawBackground();

    const LedTimings timings;
    NvGpuControl *const control; ///< borrowed; may be null

    QRadioButton *rdbSingleBreath = nullptr; ///< this and the next are never shown; saved modes and Reset check them
    QRadioButton *rdbSingleBright = nullptr;
    QRadioButton *rdbMultipleBreath = nullptr;
    QRadioButton *rdbMultipleBright = nullptr;
    QRadioButton *rdbState = nullptr;
    QRadioButton *rdbGradient = nullptr; ///< hidden unless the controller is of type 3
    QRadioButton *rdbSleep = nullptr;
    std::array<Ovryn_ColorButton *, LedPageLayout::colorCount> presetButtons{};
    std::array<Ovryn_ColorButton *, LedPageLayout::colorCount> customButtons{};
    ModifySpinBox *spinInterval = nullptr;
    QLabel *lblInterval = nullptr;
    QPushButton *btnReset = nullptr;
    Ovryn_ColorButtonGroup *colorGroup = nullptr;
    QTimer *colorChangedTimer = nullptr;
    Ovryn_SendColorToLed *sendColorThread = nullptr;

    Ovryn_ColorButton *currentBoundButton = nullptr; ///< the custom button that the palette edits
    qint32 interval = kMinLedInterval;
    quint8 controllerType = 0;
    LedPageLayout rects;
    QPixmap background;
    Lang_LED texts;
    LanguageType languageType = kLanguageChinese;
};
