#pragma once

#include "app/CardDetection.h"
#include "app/CardPageSet.h"
#include "app/MainDialogLayout.h"
#include "app/PageButtons.h"
#include "app/PageTimings.h"
#include "config/ConfigRecords.h"
#include "config/Ovryn_ConfigFile.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QDialog>
#include <QList>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

#include <array>
#include <memory>
#include <vector>

class FanGuard;
class Ovryn_BackgroundEffects;
class Ovryn_ComboBox;
class Ovryn_SettingParentWidget;
class QPushButton;
class QStackedWidget;
class RollStackWidget;
class Tray;
class UpdateFlow;

/// The program's one main window: frameless, translucent, dragged by any free spot.
///
/// Its constructor finds the cards and makes a set of pages for each, so that `main` can ask it for the number of
/// cards. It owns the sets and knows their pages by number only. The dialog itself manages the window with its page
/// buttons and the card selector, the settings panel, the tray and the settings file. GUI thread only; a failing card
/// or driver shows as zeros, never as an error of this class.
class OvrynDeck2 : public QDialog
{
    Q_OBJECT

public:
    explicit OvrynDeck2(QWidget *parent = nullptr, const PageTimings &pauses = {});
    ~OvrynDeck2() override;

    [[nodiscard]] int cardCount() const { return detectedCards; }
    [[nodiscard]] QList<GpuCardInfo> cards() const;             ///< in detection order
    [[nodiscard]] int shownCard() const { return currentCard; } ///< index into cards()
    [[nodiscard]] int shownPage() const { return currentPage; } ///< a value of Page
    /// True once `closed` was emitted. The constructor shows the update log, and the tray can close the program then.
    [[nodiscard]] bool wasClosed() const { return closedOnce; }

    /// Shows the one-time prompt of the high-performance mode. To be called after the window is shown.
    void afterShow();

public slots:
    /// Ends everything that outlives the window, whoever ended the program: saves the settings unless a close event
    /// has done so, ends the workers of all cards in parallel and returns the fans to the driver. It uses nothing of
    /// the screen, so a process that has lost its display can call it too. A second call does nothing.
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
    void onEndDemanded();       ///< by the system, which gives little time for it
    void onCommitDataRequest(); ///< the session may end; the program continues until it does

signals:
    /// The close event has saved everything, whoever closed the window: the program must end now.
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
    void buildCardPages(const QList<GpuCardInfo> &cards);
    void connectWidgets();

    // the card shown
    void showCard(int index);
    void assignSlotButtons(const GpuCardInfo &card);
    [[nodiscard]] CardPageSet *shownPages() const; ///< null without a card

    // pages
    void openPage(PageButtonIndex button);
    void changePage(QPushButton *clicked);
    void selectPage();
    void leaveFields();

    // settings and language
    void pullSettings();
    void applyLanguage(); ///< gives the current texts to the dialog, the panel and every page
    void applyPageEffects();

    void bringBack();      ///< from the tray
    void keepEverything(); ///< settings and pages, into config.xml and the auto-start value
    void endWorkers();     ///< of all cards in parallel, then returns the fans; a second call does nothing

    const PageTimings pageTimings;
    int detectedCards = 0;
    std::vector<std::unique_ptr<CardPageSet>> cardPageSets; ///< in detection order
    int currentCard = 0;
    Page currentPage = HomePage;
    bool pagePanelShown = false; ///< a page slides over the gauge
    bool closedOnce = false;

    FanGuard *fanGuard; ///< knows from the adjust pages which fans follow a curve
    Ovryn_ConfigFile configFile;
    GeneralSettingInfo generalSetting;
    UpdateSettingInfo updateSetting;
    Ovryn_LanguageTable languageTable;

    MainDialogLayout layoutRects;
    QPixmap background;
    QTimer moveCircleWidgetTimer;
    bool dragging = false;
    QPoint dragOffset; ///< of the pointer from the window's corner

    std::array<QPushButton *, PageButtonCount> pageButtons{};
    QPushButton *btnClose = nullptr;
    QPushButton *btnSetting = nullptr;
    QPushButton *btnMinimize = nullptr;
    QPushButton *btnHighPerformance = nullptr;
    Ovryn_ComboBox *cmbGpu = nullptr;
    QStackedWidget *circleStack = nullptr; ///< gauge boxes and colour palettes
    RollStackWidget *pageStack = nullptr;
    Ovryn_BackgroundEffects *backgroundEffects = nullptr;
    Ovryn_SettingParentWidget *settingPanel = nullptr;

    UpdateFlow *updateFlow = nullptr;
    Tray *tray = nullptr;
};
