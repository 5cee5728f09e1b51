#include "app/CardPageSet.h"

#include "app/PageTimings.h"
#include "board/led/Ovryn_ColorPaletteBox.h"
#include "board/temperatures/Ovryn_BoardInfoMainWidget.h"
#include "config/Ovryn_ConfigFile.h"
#include "device/NvGpuControl.h"
#include "guard/FanGuard.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"
#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"
#include "monitor/information/Ovryn_GpuFixedInfo.h"
#include "ui/Ovryn_LanguageTable.h"

namespace
{

Ovryn_LEDControlWidget *newLedPage(const GpuCardInfo &card, const Ovryn_ConfigFile *saved, NvGpuControl *control,
                                   QWidget *window, const LedTimings &timings)
{
    LedModuleInfo values;
    if (saved && saved->getLedModule(card.gpuName, card.subSystemId, values))
        return new Ovryn_LEDControlWidget(values, control, window, timings);
    return new Ovryn_LEDControlWidget(control, window, timings);
}

Ovryn_LCDControllorWidget *newLcdPage(const GpuCardInfo &card, const Ovryn_ConfigFile *saved, NvGpuControl *control,
                                      QWidget *window, quint32 frameIntervalMs)
{
    LcdModuleInfo values;
    if (saved && saved->getLcdModule(card.gpuName, card.subSystemId, values))
        return new Ovryn_LCDControllorWidget(values, control, window, frameIntervalMs);
    return new Ovryn_LCDControllorWidget(control, window, frameIntervalMs);
}

Ovryn_NvCardInfoWidget *newMonitorPage(const GpuCardInfo &card, const Ovryn_ConfigFile *saved, NvGpuControl *control,
                                       QWidget *window)
{
    unsigned int selectOption = 0;
    if (saved && saved->getMonitorModule(card.gpuName, card.subSystemId, selectOption))
        return new Ovryn_NvCardInfoWidget(selectOption, control, window);
    return new Ovryn_NvCardInfoWidget(control, window);
}

Ovryn_OverClockingWidget *newAdjustPage(const GpuCardInfo &card, const Ovryn_ConfigFile *saved, NvGpuControl *control,
                                        QWidget *window, const AdjustTimings &timings, const FanWatch &fanWatch)
{
    AdjustModuleInfo values;
    if (saved && saved->getAdjustModule(card.gpuName, card.subSystemId, values))
        return new Ovryn_OverClockingWidget(values, control, window, timings, fanWatch);
    return new Ovryn_OverClockingWidget(control, window, timings, fanWatch);
}

} // namespace

CardPageSet::CardPageSet(const GpuCardInfo &card, const Ovryn_ConfigFile *saved, const PageTimings &timings,
                         FanGuard &fanGuard, QWidget *window)
    : cardInfo(card), gpuControl(std::make_shared<NvGpuControl>())
{
    NvGpuControl *const control = gpuControl.get();
    control->setCurrentGpu(card.gpuIndex);
    const FanWatch fanWatch = [&fanGuard, gpuIndex = card.gpuIndex](bool followsCurve) {
        if (followsCurve)
            fanGuard.watch(gpuIndex);
        else
            fanGuard.release(gpuIndex);
    };

    // In this order: each of them talks to the card as soon as it is made.
    ledPage = newLedPage(card, saved, control, window, timings.led);
    lcdPage = newLcdPage(card, saved, control, window, timings.lcdFrameIntervalMs);
    monitorPage = newMonitorPage(card, saved, control, window);
    adjustPage = newAdjustPage(card, saved, control, window, timings.adjust, fanWatch);
    boardInfoPage = new Ovryn_BoardInfoMainWidget(window);
    circleBox = new Ovryn_GpuInfoCircleBox(window);
    colorPalette = new Ovryn_ColorPaletteBox(window);
    fixedInfoPage = new Ovryn_GpuFixedInfo(window);
    infoWorker = new Ovryn_SendNvCardInfoThread(control, window, timings.sampleIntervalMs);

    connectPages();
    infoWorker->startSampling();
}

CardPageSet::~CardPageSet()
{
    WorkerThread::endAndDelete(infoWorker); // one that hangs in the driver stays
    delete lcdPage;
    delete ledPage;
    delete adjustPage;
}

void CardPageSet::connectPages()
{
    QObject::connect(ledPage, SIGNAL(colorButtonHasDoubleClick(QColor)), colorPalette, SLOT(adjustColor(QColor)));
    QObject::connect(colorPalette, SIGNAL(colorChanged(QColor)), ledPage,
                     SLOT(setCurrentBindColorCircleButtonColor(QColor)));
    QObject::connect(adjustPage, SIGNAL(adjustChanged(QString, QString, int)), circleBox,
                     SLOT(setAdjustInfo(QString, QString, int)));
    QObject::connect(adjustPage, SIGNAL(closeDisplayAdjustInfo()), circleBox, SLOT(closeDisplayInfo()));
    QObject::connect(infoWorker, SIGNAL(sendNvCardInfo(NvCardBaseInfo)), monitorPage,
                     SLOT(recvNvCardInfo(NvCardBaseInfo)));
    QObject::connect(infoWorker, SIGNAL(sendNvCardInfo(NvCardBaseInfo)), circleBox,
                     SLOT(recvNvCardInfo(NvCardBaseInfo)));
    QObject::connect(infoWorker, SIGNAL(sendNVCardFixedInfo(NvInfo)), fixedInfoPage, SLOT(recvGpuFixedInfo(NvInfo)));
    QObject::connect(circleBox, SIGNAL(setLcdDisplayMode(LCDDisplayMode)), lcdPage,
                     SLOT(setLCDCurrentDisplayMode(LCDDisplayMode)));
    // sendBoardTempCompleteInfo stays unconnected, as no button leads to the board temperatures.
}

QList<QWidget *> CardPageSet::rollingPages() const
{
    return {monitorPage, adjustPage, ledPage, lcdPage, fixedInfoPage, boardInfoPage};
}

QList<QWidget *> CardPageSet::gaugeWidgets() const
{
    return {circleBox, colorPalette};
}

CardPageSet::View CardPageSet::view(Page page) const
{
    switch (page) {
    case HomePage:
        break;
    case MonitorPage:
        return {monitorPage, circleBox};
    case AdjustPage:
        return {adjustPage, circleBox};
    case LedPage:
        return cardInfo.hasLed ? View{ledPage, colorPalette} : view(FixedInfoPage);
    case LcdPage:
        return cardInfo.hasLcd ? View{lcdPage, circleBox} : view(FixedInfoPage);
    case FixedInfoPage:
        return {fixedInfoPage, circleBox};
    case BoardTempPage:
        return {boardInfoPage, circleBox};
    }
    return {nullptr, circleBox};
}

void CardPageSet::setLanguage(const Ovryn_LanguageTable &texts)
{
    const LanguageType language = texts.language();
    monitorPage->setLanguage(texts.monitor, language);
    adjustPage->setLanguage(texts.overClock, language);
    ledPage->setLanguage(texts.led, language);
    lcdPage->setLanguage(texts.lcd, language);
    fixedInfoPage->setLanguage(texts.gpuFixedInfo, language);
    circleBox->setLanguage(texts.breathCircle, language);
    boardInfoPage->setLanguage(texts.boardInfo, language);
}

void CardPageSet::setAdvancedEffects(bool advanced)
{
    circleBox->setEnableBreathingCircle(advanced && cardInfo.variantCode != 0);
    circleBox->setEnableWave(advanced);
}

void CardPageSet::setRefreshTime(unsigned int ms)
{
    infoWorker->setRefreshTime(ms);
}

void CardPageSet::keepSettings(Ovryn_ConfigFile &file) const
{
    LcdModuleInfo lcd;
    lcdPage->getLcdModuleInfo(lcd);
    file.setLcdModule(cardInfo.gpuName, cardInfo.subSystemId, lcd);
    AdjustModuleInfo adjustValues;
    adjustPage->getParameter(adjustValues);
    file.setAdjustModule(cardInfo.gpuName, cardInfo.subSystemId, adjustValues);
    int selectOption = 0;
    monitorPage->getSelectOption(&selectOption);
    file.setMonitorModule(cardInfo.gpuName, cardInfo.subSystemId, quint32(selectOption));
    LedModuleInfo led;
    ledPage->getLedModuleInfo(led);
    file.setLedModule(cardInfo.gpuName, cardInfo.subSystemId, led);
}

void CardPageSet::requestEnd()
{
    infoWorker->requestEnd();
    lcdPage->requestEnd();
    ledPage->requestEnd();
    adjustPage->requestEnd();
}

void CardPageSet::handFanBack()
{
    adjustPage->handFanBack();
}
