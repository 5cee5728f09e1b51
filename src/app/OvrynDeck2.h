#pragma once

#include "app/CardDetection.h"
#include "app/CardPageSet.h"
#include "app/MainDialogLayout.h"
#include "app/PageTimings.h"
#include "config/ConfigRecords.h"
#include "config/Ovryn_ConfigFile.h"
#include "ui/Ovryn_LanguageTable.h"
#include "update/UpdateDecision.h"

#include <QDialog>
#include <QList>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

class FanGuard;
class Ovryn_BackgroundEffects;
class Ovryn_ComboBox;
class Ovryn_DownloadUpdateFileInfo;
class Ovryn_SettingParentWidget;
class QAction;
class QMenu;
class QPushButton;
class QStackedWidget;
class RollStackWidget;

/// The program's one main window: frameless, translucent, dragged by any free spot.
///
/// Its constructor finds the cards, makes one set of pages and one sampling worker for each and starts
/// the workers, so that `main` can ask it for the number of cards. It owns the page sets and the device
/// objects; its destructor stops the workers before it deletes the device objects that they read.
/// GUI thread only; a failing card or driver shows as zeros, never as an error of this class.
class OvrynDeck2 : public QDialog
{
    Q_OBJECT

public:
    /// Values of `currentPage`.
    enum Page
    {
        HomePage = 0, ///< the gauge box alone
        MonitorPage = 1,
        AdjustPage = 2,
        LedPage = 3,
        LcdPage = 4,
        FixedInfoPage = 5,
        BoardTempPage = 6,
    };

    explicit OvrynDeck2(QWidget *parent = nullptr, const PageTimings &pauses = {});
    ~OvrynDeck2() override;

    [[nodiscard]] int cardCount() const { return detectedCards; }
    [[nodiscard]] const QList<GpuCardInfo> &cards() const { return cardInfos; }
    [[nodiscard]] int shownCard() const { return currentCard; } ///< index into cards()
    [[nodiscard]] int shownPage() const { return currentPage; } ///< a value of Page
    /// True once `closed` was emitted. The constructor shows the update log, and the tray can close the program then.
    [[nodiscard]] bool wasClosed() const { return closedOnce; }

    /// To be run after the window came up: the one-time prompt of the high-performance mode.
    void afterShow();

public slots:
    /// The end of everything that outlives the window, whoever ended the program: keeps the settings where no close
    /// has done so, ends the workers of all cards side by side and hands the fans back. Touches nothing of the
    /// screen, so that it serves a process that has lost its display, too. Nothing the second time.
    void endWork();
    void manualDetectUpdate();
    void onBtnMonitorClicked(bool bChecked);
    void onBtnAdjustClicked(bool bChecked);
    void onBtnLEDClicked(bool bChecked);
    void onBtnLCDClicked(bool bChecked);
    void onBtnGpuFixedClicked(bool bChecked);
    void onBtnBoardTempInfoClicked(bool bChecked);
    void onBtnHighPerformanceClicked(bool checked);
    void onHighPerformanceModeChanged(bool bEnable);
    void onBtnSettingClick();
    void onBtnCloseClick();
    void onBtnMinimizeClick();
    void onActivatedSysTrayIcon(QSystemTrayIcon::ActivationReason reason);
    void onShowMainAction();
    void onExitAppAction();
    void onGpuComboxCurrentIndexChanged(int index);
    void onMoveCircleWidgetTimerTimeout();
    void onSettingWidgetLanguageChanged();
    void onSettingWidgetPageEffectChanged();
    void onSettingWidgetRefreshTimeChanged();
    void onDownloadUpdateFileFinished(bool resut);
    void onDownloadUpdateFileFinished1(bool resut);
    void onEndDemanded();                               ///< by the system, which gives little time for it
    void onCommitDataRequest(); ///< the session may end; the program goes on until it does

signals:
    /// The close event has saved everything, whoever closed the window: the program is to end.
    void closed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    // construction
    void buildWidgets();
    void buildButtons();
    void buildTray();
    void connectWidgets();
    void buildCardPages(const GpuCardInfo &card);
    void connectCardPages(const CardPageSet &pages);
    void endWorkers(); ///< of all cards side by side, then hands the fans back; nothing the second time
    [[nodiscard]] Ovryn_LEDControlWidget *newLedPage(const GpuCardInfo &card, NvGpuControl *control);
    [[nodiscard]] Ovryn_LCDControllorWidget *newLcdPage(const GpuCardInfo &card, NvGpuControl *control);
    [[nodiscard]] Ovryn_NvCardInfoWidget *newMonitorPage(const GpuCardInfo &card, NvGpuControl *control);
    [[nodiscard]] Ovryn_OverClockingWidget *newAdjustPage(const GpuCardInfo &card, NvGpuControl *control);

    // the card shown
    void showCard(int index);
    void assignSlotButtons(const GpuCardInfo &card);
    [[nodiscard]] const GpuCardInfo *shownCardInfo() const; ///< null without a card
    [[nodiscard]] const CardPageSet *shownPages() const;    ///< null without a card

    // pages
    void openPage(int page, QPushButton *button);
    void changePage(QPushButton *clicked);
    void selectPage();
    void leaveFields();
    void rollTo(QWidget *page);

    // settings and language
    void pullSettings();
    void applyLanguage(); ///< hands the words in force to the dialog, the panel and every page
    void handWordsTo(const CardPageSet &pages);
    void applyPageEffects(const GpuCardInfo &card, Ovryn_GpuInfoCircleBox *circleBox);
    void keepEverything(); ///< settings and pages, into config.xml and the auto-start value
    void bringBack();      ///< from the tray

    // update
    void checkUpdateOnStart();
    void startUpdateCheck(const char *answeringSlot);
    void answerUpdateCheck(bool manifestStands, UpdateRoad road);
    void handOverToUpdater();
    void returnFromUpdater();
    int showUpdateBox(int flags, const QString &text); ///< gives the box's result

    const PageTimings pageTimings;
    int detectedCards = 0;
    QList<GpuCardInfo> cardInfos;    ///< in detection order
    QList<CardPageSet> cardPageSets; ///< the same order
    int currentCard = 0;
    int currentPage = HomePage;
    bool pagePanelShown = false; ///< a page slides over the gauge
    bool closedOnce = false;

    FanGuard *fanGuard;                             ///< knows from the adjust pages which fans follow a curve
    Ovryn_DownloadUpdateFileInfo *updateDownloader; ///< only its connection to this dialog changes
    Ovryn_ConfigFile configFile;
    GeneralSettingInfo generalSetting;
    UpdateSettingInfo updateSetting;
    Ovryn_LanguageTable languageTable;

    MainDialogLayout layoutRects;
    QPixmap background;
    QTimer moveCircleWidgetTimer;
    bool dragging = false;
    QPoint dragOffset; ///< of the pointer from the window's corner

    QPushButton *btnClose = nullptr;
    QPushButton *btnSetting = nullptr;
    QPushButton *btnMinimize = nullptr;
    QPushButton *btnGpuFixedInfo = nullptr;
    QPushButton *btnHighPerformance = nullptr;
    QPushButton *btnMonitor = nullptr;
    QPushButton *btnAdjust = nullptr;
    QPushButton *btnBoardTempInfo = nullptr;
    QPushButton *btnFirstSlot = nullptr;
    QPushButton *btnSecondSlot = nullptr;
    QList<QPushButton *> pageButtons; ///< in the order of the row
    Ovryn_ComboBox *cmbGpu = nullptr;
    QStackedWidget *circleStack = nullptr; ///< gauge boxes and colour palettes
    RollStackWidget *pageStack = nullptr;
    Ovryn_BackgroundEffects *backgroundEffects = nullptr;
    Ovryn_SettingParentWidget *settingPanel = nullptr;

    QSystemTrayIcon *trayIcon = nullptr;
    QMenu *trayMenu = nullptr;
    QAction *showMainAction = nullptr;
    QAction *exitAppAction = nullptr;
};
