#include "app/OvrynDeck2.h"

#include "app/MainDialogStyle.h"
#include "app/Ovryn_BackgroundEffects.h"
#include "app/Tray.h"
#include "app/UpdateFlow.h"
#include "device/NvGpuControl.h"
#include "guard/FanGuard.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "platform/EndSignals.h"
#include "platform/FileSync.h"
#include "ui/Ovryn_ComboBox.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "ui/RollStackWidget.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardPaths>

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
      // found with the suffix that the system gives its executables
      fanGuard(new FanGuard(QStandardPaths::findExecutable(QString::fromLatin1(kFanGuardProgram),
                                                           {QCoreApplication::applicationDirPath()}),
                            this)),
      configFile(Ovryn_ConfigFile::usualPath(), syncToDisk)
{
    // First, since the start shows a box and takes its time.
    connect(new EndSignals(this), SIGNAL(endDemanded()), this, SLOT(onEndDemanded()));
    setObjectName(QStringLiteral("OvrynDeck2"));
    buildWidgets();
    registerDeviceMetaTypes();
    buildButtons();

    QList<GpuCardInfo> cards;
    {
        NvGpuControl control;
        detectedCards = int(control.gpuCount());
        cards = detectCards(control);
    }

    configFile.load(); // a file that can't be used leaves the defaults
    configFile.getGeneralSetting(generalSetting);
    configFile.getUpdateSetting(updateSetting);
    languageTable.setLanguage(languageNumberOf(generalSetting.Language));

    buildCardPages(cards);
    settingPanel = new Ovryn_SettingParentWidget(generalSetting, updateSetting, this);
    settingPanel->hide();

    tray = new Tray(this);
    updateFlow = new UpdateFlow(configFile, generalSetting, updateSetting, languageTable, this);
    applyLanguage();
    if (!cardPageSets.empty())
        showCard(0);
    connectWidgets();

    resize(background.isNull() ? kSizeWithoutPicture : background.size());
    updateFlow->checkOnStart(SLOT(onDownloadUpdateFileFinished(bool)));
}

OvrynDeck2::~OvrynDeck2()
{
    endWorkers();
    for (std::unique_ptr<CardPageSet> &pages : cardPageSets) // card by card, in their order
        pages.reset();
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
    btnHighPerformance = newButton("btnHighPerformance", MainDialogStyle::highPerformanceSwitch(), true);
    for (std::size_t index = 0; index < kPageButtons.size(); ++index)
        pageButtons[index] = newButton(kPageButtons[index].objectName, kPageButtons[index].styleSheet(), true);

    for (QPushButton *button : {btnHighPerformance, pageButtons[BoardTempButton], pageButtons[FirstSlotButton],
                                pageButtons[SecondSlotButton]})
        button->hide();
}

void OvrynDeck2::connectWidgets()
{
    for (std::size_t index = 0; index < kPageButtons.size(); ++index) {
        if (kPageButtons[index].slot)
            connect(pageButtons[index], SIGNAL(clicked(bool)), this, kPageButtons[index].slot);
    }
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
    connect(tray, SIGNAL(activated(QSystemTrayIcon::ActivationReason)), this,
            SLOT(onActivatedSysTrayIcon(QSystemTrayIcon::ActivationReason)));
    connect(tray, SIGNAL(displayChosen()), this, SLOT(onShowMainAction()));
    connect(tray, SIGNAL(exitChosen()), this, SLOT(onExitAppAction()));
}

void OvrynDeck2::buildCardPages(const QList<GpuCardInfo> &cards)
{
    const Ovryn_ConfigFile *const saved = generalSetting.ApplyLastParamOnStart ? &configFile : nullptr;
    for (const GpuCardInfo &card : cards) {
        auto pages = std::make_unique<CardPageSet>(card, saved, pageTimings, *fanGuard, this);
        connect(pages->adjust(), SIGNAL(highPerformanceModeChanged(bool)), this,
                SLOT(onHighPerformanceModeChanged(bool)));
        for (QWidget *page : pages->rollingPages())
            pageStack->addWidget(page);
        for (QWidget *widget : pages->gaugeWidgets())
            circleStack->addWidget(widget);
        cmbGpu->addItem(card.displayName, card.gpuIndex);
        cardPageSets.push_back(std::move(pages));
    }
    applyPageEffects();
}

QList<GpuCardInfo> OvrynDeck2::cards() const
{
    QList<GpuCardInfo> list;
    for (const std::unique_ptr<CardPageSet> &pages : cardPageSets)
        list << pages->card();
    return list;
}

CardPageSet *OvrynDeck2::shownPages() const
{
    const auto index = std::size_t(currentCard);
    return currentCard >= 0 && index < cardPageSets.size() ? cardPageSets[index].get() : nullptr;
}

void OvrynDeck2::showCard(int index)
{
    currentCard = index;
    const CardPageSet *const pages = shownPages();
    if (!pages)
        return;
    assignSlotButtons(pages->card());
    backgroundEffects->setVisible(pages->card().family == kFamilyOvryn);
    btnHighPerformance->setVisible(offersHighPerformance(pages->card()));
    btnHighPerformance->setChecked(pages->adjust()->isHighPerformance());
}

void OvrynDeck2::assignSlotButtons(const GpuCardInfo &card)
{
    for (QPushButton *button : {pageButtons[FirstSlotButton], pageButtons[SecondSlotButton]}) {
        disconnect(button, SIGNAL(clicked(bool)), this, SLOT(onBtnLEDClicked(bool)));
        disconnect(button, SIGNAL(clicked(bool)), this, SLOT(onBtnLCDClicked(bool)));
        button->hide();
    }
    QPushButton *next = pageButtons[FirstSlotButton];
    if (card.hasLed) {
        next->setText(QStringLiteral("LED"));
        connect(next, SIGNAL(clicked(bool)), this, SLOT(onBtnLEDClicked(bool)));
        next->show();
        next = pageButtons[SecondSlotButton];
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
    for (std::size_t index = 0; index < kPageButtons.size(); ++index)
        pageButtons[index]->setGeometry(layoutRects.*kPageButtons[index].place);
    const QList<QPair<QWidget *, QRect>> places = {
        {cmbGpu, layoutRects.selector},
        {btnHighPerformance, layoutRects.highPerformanceButton},
        {btnSetting, layoutRects.settingButton},
        {btnMinimize, layoutRects.minimizeButton},
        {btnClose, layoutRects.closeButton},
        {circleStack, pagePanelShown ? layoutRects.gaugeShown : layoutRects.gaugeHome},
        {pageStack, layoutRects.pagePanel},
    };
    for (const auto &place : places)
        place.first->setGeometry(place.second);
    settingPanel->move(settingPanelPosition(size(), settingPanel->size()));
    MainDialogStyle::setCaptionFonts(
        {pageButtons[MonitorButton], pageButtons[AdjustButton], pageButtons[BoardTempButton], btnHighPerformance},
        {});
    MainDialogStyle::setCaptionFonts({pageButtons[FirstSlotButton], pageButtons[SecondSlotButton]},
                                     QStringLiteral("Space Age"));
}
