#pragma once

#include "board/lcd/LcdPageLayout.h"
#include "board/lcd/Ovryn_SendNvInfoToLCDThread.h"
#include "config/ConfigRecords.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QPixmap>
#include <QPointer>
#include <QWidget>

class ModifySpinBox;
class NvGpuControl;
class Ovryn_GlobalShortCut;
class Ovryn_HotKeyEdit;
class QCheckBox;
class QPushButton;
class QRadioButton;

/// The page on which one card's LCD is set up: on or off, pages that rotate by themselves or by a hot key, and the
/// time of a page. Changes take effect by Apply and a confirmation; Cancel returns to what was applied last.
///
/// Owned by the main dialog, which lends it the card; it owns the card's LCD worker, which it starts with its
/// construction, and the hot key. GUI thread: every call into the worker may wait for a frame under way. No failure
/// of the card or of the hot key's registration is shown.
class Ovryn_LCDControllorWidget : public QWidget
{
    Q_OBJECT

public:
    /// `frameIntervalMs` is the worker's pause between two frames.
    explicit Ovryn_LCDControllorWidget(NvGpuControl *card, QWidget *parent = nullptr,
                                       quint32 frameIntervalMs = Ovryn_SendNvInfoToLCDThread::kSleepMs);
    /// Begins with saved settings, as if they had been applied.
    Ovryn_LCDControllorWidget(const LcdModuleInfo &info, NvGpuControl *card, QWidget *parent = nullptr,
                              quint32 frameIntervalMs = Ovryn_SendNvInfoToLCDThread::kSleepMs);

    ~Ovryn_LCDControllorWidget() override;

    void requestEnd(); ///< asks the worker to end; waits for nothing

    void getLcdModuleInfo(LcdModuleInfo &out) const; ///< what was applied, whatever stands on the screen
    void setLanguage(const Lang_LCD &words, LanguageType newLanguage);

public slots:
    void onAutoSwitchToggled(bool bChecked);
    void onEnableLCDToggled(bool bChecked);
    void onConfirmClick();
    void onCancelClick();
    void onSendNvDataToLCDSuccess(bool bSuccess); ///< a card without an LCD refuses every frame: nothing to tell
    void onHotKeyActivated();
    void onLineEditTextChanged(const QString &text);
    void onSpinBoxValueChanged(int value);
    void initWidget(); ///< once, by the constructors
    void showParam();  ///< the applied settings into the controls
    /// The card's LCD shows a page at once. No setting of the page: nothing to apply.
    void setLCDCurrentDisplayMode(LCDDisplayMode displayMode);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void build();
    void connectAll();
    Ovryn_SendNvInfoToLCDThread *newWorker();
    void showButtons(bool show); ///< they show while there may be something to apply
    [[nodiscard]] QFont fontOf(int pixels) const;
    [[nodiscard]] LcdTextWidths textWidths() const;
    void setFonts();
    void drawBackground();

    NvGpuControl *const control; ///< borrowed; may be null
    const quint32 intervalMs;    ///< the worker's
    LcdModuleInfo applied;

    QRadioButton *rdbAutoSwitch = nullptr;
    QRadioButton *rdbManualSwitch = nullptr;
    Ovryn_HotKeyEdit *hotKeyModifier = nullptr;
    Ovryn_HotKeyEdit *hotKeyNormal = nullptr;
    ModifySpinBox *spinSwitchTime = nullptr; ///< seconds
    QCheckBox *cbLcd = nullptr;
    QPushButton *btnConfirm = nullptr;
    QPushButton *btnCancel = nullptr;
    Ovryn_GlobalShortCut *globalShortCut = nullptr;
    QPointer<Ovryn_SendNvInfoToLCDThread> sendNvInfoThread;

    LcdPageLayout rects;
    QPixmap background; ///< with the captions
    Lang_LCD texts;
    LanguageType languageType = kLanguageChinese;
};
