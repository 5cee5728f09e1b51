#include "app/OvrynDeck2.h"

#include "app/MainDialogStyle.h"
#include "board/Ovryn_BoardInfoMainWidget.h"
#include "board/Ovryn_ColorPaletteBox.h"
#include "board/Ovryn_LCDControllorWidget.h"
#include "board/Ovryn_LEDControlWidget.h"
#include "device/NvGpuControl.h"
#include "device/WorkerThread.h"
#include "guard/FanGuard.h"
#include "monitor/Ovryn_BackgroundEffects.h"
#include "monitor/Ovryn_GpuFixedInfo.h"
#include "monitor/Ovryn_GpuInfoCircleBox.h"
#include "monitor/Ovryn_NvCardInfoWidget.h"
#include "monitor/Ovryn_SendNvCardInfoThread.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "platform/EndSignals.h"
#include "platform/FileSync.h"
#include "ui/Ovryn_ComboBox.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "ui/RollStackWidget.h"
#include "update/Ovryn_DownloadUpdateFileInfo.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>

namespace
{

constexpr int kSlideIntervalMs = 15;
constexpr QSize kSizeWithoutPicture(600, 435);
const char *const kFanGuardProgram = "ovryn-fan-guard";
const char *const kBackgroundPicture = ":/images/images/BKImage.png";

} // namespace

OvrynDeck2::OvrynDeck2(QWidget *parent, const PageTimings &pauses)
    : QDialog(parent),
      pageTimings(pauses),
      fanGuard(new FanGuard(
          QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(kFanGuardProgram), this)),
      updateDownloader(new Ovryn_DownloadUpdateFileInfo(this)),
      configFile(Ovryn_ConfigFile::usualPath(), syncToDisk)
{
    // First, since the start shows a box and takes its time.
    connect(new EndSignals(this), SIGNAL(endDemanded()), this, SLOT(onEndDemanded()));
    setObjectName(QStringLiteral("OvrynDeck2"));
    buildWidgets();
    registerDeviceMetaTypes();
    buildButtons();

    {
        NvGpuControl control;
        detectedCards = int(control.gpuCount());
        cardInfos = detectCards(control);
    }

    configFile.load(); // a file that can't be used leaves the defaults
    configFile.getGeneralSetting(generalSetting);
    configFile.getUpdateSetting(updateSetting);
    languageTable.setLanguage(languageNumberOf(generalSetting.Language));

    for (const GpuCardInfo &card : qAsConst(cardInfos))
        buildCardPages(card);
    settingPanel = new Ovryn_SettingParentWidget(generalSetting, updateSetting, this);
    settingPanel->hide();

    buildTray();
    applyLanguage();
    if (!cardInfos.isEmpty())
        showCard(0);
    connectWidgets();

    resize(background.isNull() ? kSizeWithoutPicture : background.size());
    checkUpdateOnStart();
}

OvrynDeck2::~OvrynDeck2()
{
    endWorkers();
    for (CardPageSet &pages : cardPageSets) {
        WorkerThread::endAndDelete(pages.infoWorker); // one that hangs in the driver stays
        delete pages.lcdPage;
        delete pages.ledPage;
        delete pages.adjustPage;
        pages.gpuControl.reset();
    }
}

void OvrynDeck2::endWork()
{
    if (!closedOnce)
        keepEverything();
    closedOnce = true;
    endWorkers();
}

void OvrynDeck2::endWorkers()
{
    for (const CardPageSet &pages : qAsConst(cardPageSets)) {
        pages.infoWorker->requestEnd();
        pages.lcdPage->requestEnd();
        pages.ledPage->requestEnd();
        pages.adjustPage->requestEnd();
    }
    for (const CardPageSet &pages : qAsConst(cardPageSets))
        pages.adjustPage->handFanBack();
}

void OvrynDeck2::buildWidgets()
{
    background.load(QString::fromLatin1(kBackgroundPicture));

    backgroundEffects = new Ovryn_BackgroundEffects(this);

    circleStack = new QStackedWidget(this);
    circleStack->setObjectName(QStringLiteral("circleStack"));
    pageStack = new RollStackWidget(this);
    pageStack->setObjectName(QStringLiteral("pageStack"));
    pageStack->hide();

    cmbGpu = new Ovryn_ComboBox(this);
    cmbGpu->setObjectName(QStringLiteral("cmbGpu"));

    moveCircleWidgetTimer.setInterval(kSlideIntervalMs);
}

void OvrynDeck2::buildButtons()
{
    const auto newButton = [this](const char *name, const QString &styleSheet, bool checkable) {
        auto *button = new QPushButton(this);
        button->setObjectName(QString::fromLatin1(name));
        button->setStyleSheet(styleSheet);
        button->setCheckable(checkable);
        button->setFocusPolicy(Qt::NoFocus);
        return button;
    };
    btnSetting = newButton("btnSetting", MainDialogStyle::pictureButton(QStringLiteral("setting")), false);
    btnMinimize = newButton("btnMinimize", MainDialogStyle::pictureButton(QStringLiteral("minimize")), false);
    btnClose = newButton("btnClose", MainDialogStyle::pictureButton(QStringLiteral("close")), false);
    btnGpuFixedInfo = newButton("btnGpuFixedInfo", MainDialogStyle::pictureButton(QStringLiteral("info")), true);
    btnMonitor = newButton("btnMonitor", MainDialogStyle::textButton(), true);
    btnAdjust = newButton("btnAdjust", MainDialogStyle::textButton(), true);
    btnBoardTempInfo = newButton("btnBoardTempInfo", MainDialogStyle::textButton(), true);
    btnHighPerformance = newButton("btnHighPerformance", MainDialogStyle::highPerformanceSwitch(), true);
    btnFirstSlot = newButton("btnFirstSlot", MainDialogStyle::slotButton(QStringLiteral("first")), true);
    btnSecondSlot = newButton("btnSecondSlot", MainDialogStyle::slotButton(QStringLiteral("second")), true);

    btnHighPerformance->hide();
    btnBoardTempInfo->hide();
    btnFirstSlot->hide();
    btnSecondSlot->hide();
    pageButtons = {btnMonitor, btnAdjust, btnBoardTempInfo, btnGpuFixedInfo, btnFirstSlot, btnSecondSlot};
}

void OvrynDeck2::connectWidgets()
{
    connect(btnMonitor, SIGNAL(clicked(bool)), this, SLOT(onBtnMonitorClicked(bool)));
    connect(btnAdjust, SIGNAL(clicked(bool)), this, SLOT(onBtnAdjustClicked(bool)));
    connect(btnGpuFixedInfo, SIGNAL(clicked(bool)), this, SLOT(onBtnGpuFixedClicked(bool)));
    connect(btnHighPerformance, SIGNAL(clicked(bool)), this, SLOT(onBtnHighPerformanceClicked(bool)));
    connect(btnSetting, SIGNAL(released()), this, SLOT(onBtnSettingClick()));
    connect(btnClose, SIGNAL(released()), this, SLOT(onBtnCloseClick()));
    connect(btnMinimize, SIGNAL(released()), this, SLOT(onBtnMinimizeClick()));
    connect(cmbGpu, SIGNAL(currentIndexChanged(int)), this, SLOT(onGpuComboxCurrentIndexChanged(int)));
    connect(settingPanel, SIGNAL(languageChanged()), this, SLOT(onSettingWidgetLanguageChanged()));
    connect(settingPanel, SIGNAL(pageEffectChanged()), this, SLOT(onSettingWidgetPageEffectChanged()));
    connect(settingPanel, SIGNAL(refreshTimeChanged()), this, SLOT(onSettingWidgetRefreshTimeChanged()));
    connect(settingPanel, SIGNAL(detectUpdate()), this, SLOT(manualDetectUpdate()));
    connect(&moveCircleWidgetTimer, SIGNAL(timeout()), this, SLOT(onMoveCircleWidgetTimerTimeout()));
    // btnBoardTempInfo stays unconnected: no button leads to the board temperatures.
}

void OvrynDeck2::buildCardPages(const GpuCardInfo &card)
{
    CardPageSet pages;
    pages.gpuControl = std::make_shared<NvGpuControl>();
    pages.gpuControl->setCurrentGpu(card.gpuIndex);

    NvGpuControl *const control = pages.gpuControl.get();
    pages.ledPage = newLedPage(card, control);
    pages.lcdPage = newLcdPage(card, control);
    pages.monitorPage = newMonitorPage(card, control);
    pages.adjustPage = newAdjustPage(card, control);
    pages.boardInfoPage = new Ovryn_BoardInfoMainWidget(this);
    pages.circleBox = new Ovryn_GpuInfoCircleBox(this);
    applyPageEffects(card, pages.circleBox);
    pages.colorPalette = new Ovryn_ColorPaletteBox(this);
    pages.fixedInfoPage = new Ovryn_GpuFixedInfo(this);
    pages.infoWorker = new Ovryn_SendNvCardInfoThread(control, this, pageTimings.sampleIntervalMs);

    connectCardPages(pages);
    pages.infoWorker->startSampling();

    const QList<QWidget *> rollingPages = {pages.monitorPage, pages.adjustPage,    pages.ledPage,
                                           pages.lcdPage,     pages.fixedInfoPage, pages.boardInfoPage};
    for (QWidget *page : rollingPages)
        pageStack->addWidget(page);
    circleStack->addWidget(pages.circleBox);
    circleStack->addWidget(pages.colorPalette);

    cardPageSets.append(pages);
    cmbGpu->addItem(card.displayName, card.gpuIndex);
}

void OvrynDeck2::connectCardPages(const CardPageSet &pages)
{
    connect(pages.ledPage, SIGNAL(colorButtonHasDoubleClick(QColor)), pages.colorPalette, SLOT(adjustColor(QColor)));
    connect(pages.colorPalette, SIGNAL(colorChanged(QColor)), pages.ledPage,
            SLOT(setCurrentBindColorCircleButtonColor(QColor)));
    connect(pages.adjustPage, SIGNAL(adjustChanged(QString, QString, int)), pages.circleBox,
            SLOT(setAdjustInfo(QString, QString, int)));
    connect(pages.adjustPage, SIGNAL(closeDisplayAdjustInfo()), pages.circleBox, SLOT(closeDisplayInfo()));
    connect(pages.adjustPage, SIGNAL(highPerformanceModeChanged(bool)), this,
            SLOT(onHighPerformanceModeChanged(bool)));
    connect(pages.infoWorker, SIGNAL(sendNvCardInfo(NvCardBaseInfo)), pages.monitorPage,
            SLOT(recvNvCardInfo(NvCardBaseInfo)));
    connect(pages.infoWorker, SIGNAL(sendNvCardInfo(NvCardBaseInfo)), pages.circleBox,
            SLOT(recvNvCardInfo(NvCardBaseInfo)));
    connect(pages.infoWorker, SIGNAL(sendNVCardFixedInfo(NvInfo)), pages.fixedInfoPage,
            SLOT(recvGpuFixedInfo(NvInfo)));
    connect(pages.circleBox, SIGNAL(setLcdDisplayMode(LCDDisplayMode)), pages.lcdPage,
            SLOT(setLCDCurrentDisplayMode(LCDDisplayMode)));
    // sendBoardTempCompleteInfo stays unconnected, as btnBoardTempInfo does.
}

Ovryn_LEDControlWidget *OvrynDeck2::newLedPage(const GpuCardInfo &card, NvGpuControl *control)
{
    LedModuleInfo saved;
    if (generalSetting.ApplyLastParamOnStart && configFile.getLedModule(card.gpuName, card.subSystemId, saved))
        return new Ovryn_LEDControlWidget(saved, control, this, pageTimings.led);
    return new Ovryn_LEDControlWidget(control, this, pageTimings.led);
}

Ovryn_LCDControllorWidget *OvrynDeck2::newLcdPage(const GpuCardInfo &card, NvGpuControl *control)
{
    LcdModuleInfo saved;
    if (generalSetting.ApplyLastParamOnStart && configFile.getLcdModule(card.gpuName, card.subSystemId, saved))
        return new Ovryn_LCDControllorWidget(saved, control, this, pageTimings.lcdFrameIntervalMs);
    return new Ovryn_LCDControllorWidget(control, this, pageTimings.lcdFrameIntervalMs);
}

Ovryn_NvCardInfoWidget *OvrynDeck2::newMonitorPage(const GpuCardInfo &card, NvGpuControl *control)
{
    unsigned int selectOption = 0;
    if (generalSetting.ApplyLastParamOnStart &&
        configFile.getMonitorModule(card.gpuName, card.subSystemId, selectOption))
        return new Ovryn_NvCardInfoWidget(selectOption, control, this);
    return new Ovryn_NvCardInfoWidget(control, this);
}

Ovryn_OverClockingWidget *OvrynDeck2::newAdjustPage(const GpuCardInfo &card, NvGpuControl *control)
{
    const FanWatch fanWatch = [this, gpuIndex = card.gpuIndex](bool followsCurve) {
        if (followsCurve)
            fanGuard->watch(gpuIndex);
        else
            fanGuard->release(gpuIndex);
    };
    AdjustModuleInfo saved;
    if (generalSetting.ApplyLastParamOnStart && configFile.getAdjustModule(card.gpuName, card.subSystemId, saved))
        return new Ovryn_OverClockingWidget(saved, control, this, pageTimings.adjust, fanWatch);
    return new Ovryn_OverClockingWidget(control, this, pageTimings.adjust, fanWatch);
}

const GpuCardInfo *OvrynDeck2::shownCardInfo() const
{
    return currentCard >= 0 && currentCard < cardInfos.size() ? &cardInfos.at(currentCard) : nullptr;
}

const CardPageSet *OvrynDeck2::shownPages() const
{
    return currentCard >= 0 && currentCard < cardPageSets.size() ? &cardPageSets.at(currentCard) : nullptr;
}

void OvrynDeck2::showCard(int index)
{
    currentCard = index;
    const GpuCardInfo *card = shownCardInfo();
    if (!card)
        return;
    assignSlotButtons(*card);
    backgroundEffects->setVisible(card->family == kFamilyOvryn);
    btnHighPerformance->setVisible(offersHighPerformance(*card));
    btnHighPerformance->setChecked(shownPages()->adjustPage->isHighPerformance());
}

void OvrynDeck2::assignSlotButtons(const GpuCardInfo &card)
{
    for (QPushButton *button : {btnFirstSlot, btnSecondSlot}) {
        disconnect(button, SIGNAL(clicked(bool)), this, SLOT(onBtnLEDClicked(bool)));
        disconnect(button, SIGNAL(clicked(bool)), this, SLOT(onBtnLCDClicked(bool)));
        button->hide();
    }
    QPushButton *next = btnFirstSlot;
    if (card.hasLed) {
        next->setText(QStringLiteral("LED"));
        connect(next, SIGNAL(clicked(bool)), this, SLOT(onBtnLEDClicked(bool)));
        next->show();
        next = btnSecondSlot;
    }
    if (card.hasLcd) {
        next->setText(QStringLiteral("LCD"));
        connect(next, SIGNAL(clicked(bool)), this, SLOT(onBtnLCDClicked(bool)));
        next->show();
    }
}

void OvrynDeck2::onGpuComboxCurrentIndexChanged(int index)
{
    showCard(index);
    selectPage();
    afterShow();
}

void OvrynDeck2::keyPressEvent(QKeyEvent *event)
{
    // A dialog rejects itself on Escape, which would end the program without saving.
    if (event->key() != Qt::Key_Escape)
        QDialog::keyPressEvent(event);
}

void OvrynDeck2::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    dragging = true;
    // From the event, not from pos(): some window managers place the window without telling the toolkit.
    dragOffset = event->pos();
}

void OvrynDeck2::mouseMoveEvent(QMouseEvent *event)
{
    if (dragging && (event->buttons() & Qt::LeftButton))
        move(event->globalPos() - dragOffset);
}

void OvrynDeck2::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        dragging = false;
}

void OvrynDeck2::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source); // nothing lies under it: a copy is cheaper
    painter.drawPixmap(0, 0, background);
}

void OvrynDeck2::resizeEvent(QResizeEvent *)
{
    layoutRects = mainDialogLayout(size());
    const QList<QPair<QWidget *, QRect>> places = {
        {cmbGpu, layoutRects.selector},
        {btnMonitor, layoutRects.monitorButton},
        {btnAdjust, layoutRects.adjustButton},
        {btnBoardTempInfo, layoutRects.boardTempButton},
        {btnHighPerformance, layoutRects.highPerformanceButton},
        {btnGpuFixedInfo, layoutRects.fixedInfoButton},
        {btnSetting, layoutRects.settingButton},
        {btnMinimize, layoutRects.minimizeButton},
        {btnClose, layoutRects.closeButton},
        {btnFirstSlot, layoutRects.firstSlotButton},
        {btnSecondSlot, layoutRects.secondSlotButton},
        {circleStack, pagePanelShown ? layoutRects.gaugeShown : layoutRects.gaugeHome},
        {pageStack, layoutRects.pagePanel},
    };
    for (const auto &place : places)
        place.first->setGeometry(place.second);
    settingPanel->move(settingPanelPosition(size(), settingPanel->size()));
    MainDialogStyle::setCaptionFonts({btnMonitor, btnAdjust, btnBoardTempInfo, btnHighPerformance}, {});
    MainDialogStyle::setCaptionFonts({btnFirstSlot, btnSecondSlot}, QStringLiteral("Space Age"));
}
