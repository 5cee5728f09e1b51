#include "overclock/Ovryn_OverClockingWidget.h"

#include "device/CoolerPolicies.h"
#include "device/NvGpuControl.h"
#include "overclock/CardWrites.h"
#include "overclock/Ovryn_SetUserDefineFanSpeedThread.h"
#include "overclock/Ovryn_SliderWidget.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QThread>

// The road between the snapshot, the widgets and the card, from start-up to the end.

namespace
{

/// Every negative number in a settings file means "never adjusted".
bool isSaved(qint32 number)
{
    return number >= 0;
}

} // namespace

void Ovryn_OverClockingWidget::startFromCard()
{
    current.fanMode = current.cooler.currentPolicy == kCoolerPolicyManual ? FanManual : FanAuto;
    applied = current;
    showParam(current);
}

void Ovryn_OverClockingWidget::startFromSaved(const AdjustModuleInfo &saved)
{
    if (saved.EnableHighPerformance) {
        startInHighPerformance();
        return;
    }
    const QSignalBlocker silent(LinkCheckBox);
    LinkCheckBox->setChecked(saved.LinkOfPowerWithTemperature);
    current.linkOfPowerWithTemperature = saved.LinkOfPowerWithTemperature;
    current.fanMode = saved.FanMode;
    nodes = saved.Nodes;

    for (std::size_t index = 0; index < kAdjustRows.size(); ++index) {
        const qint32 number = saved.*kAdjustRows[index].saved;
        if (isSaved(number))
            kAdjustRows[index].value(current) = kept[index] = number;
    }
    applyParam();
}

Ovryn_OverClockingWidget::~Ovryn_OverClockingWidget()
{
    handFanBack();
}

void Ovryn_OverClockingWidget::requestEnd()
{
    if (fanThread)
        fanThread->requestEnd();
}

void Ovryn_OverClockingWidget::handFanBack()
{
    if (!fanThread)
        return;
    const bool threadEnded =
        WorkerThread::endAndDelete(fanThread); // first, or its next cycle would take the fan again
    fanThread = nullptr;
    // A settings file may hold any mode, and every one but the first two runs the curve.
    const bool modeOfCurve = current.fanMode != FanAuto && current.fanMode != FanManual;
    if (!gpuControl || !(modeOfCurve || curveDrivesFan))
        return;
    const bool handedBack = gpuControl->setCoolerAuto();
    // The order of a worker that was left behind may still reach the card: the watch over that fan goes on.
    if (handedBack && threadEnded && curveDrivesFan)
        fanLeftCurve(true);
}

void Ovryn_OverClockingWidget::getParameter(AdjustModuleInfo &out) const
{
    out.FanMode = current.fanMode;
    out.Nodes = nodes;
    out.LinkOfPowerWithTemperature = current.linkOfPowerWithTemperature;
    for (std::size_t index = 0; index < kAdjustRows.size(); ++index)
        out.*kAdjustRows[index].saved = kept[index];
    out.EnableHighPerformance = highPerformance;
}

void Ovryn_OverClockingWidget::readDevice()
{
    if (!gpuControl)
        return;
    OverClockingParam read = readSnapshot(*gpuControl);
    read.linkOfPowerWithTemperature = current.linkOfPowerWithTemperature;
    read.fanMode = current.fanMode;
    current = read;
    keepNumbers(current);
}

void Ovryn_OverClockingWidget::keepNumbers(OverClockingParam param)
{
    for (std::size_t index = 0; index < kAdjustRows.size(); ++index) {
        if (kAdjustRows[index].wasRead(param))
            kept[index] = kAdjustRows[index].value(param);
    }
}

void Ovryn_OverClockingWidget::showParam(OverClockingParam param)
{
    {
        const QSignalBlocker silent(LinkCheckBox); // the rows come from the snapshot, not from the link
        LinkCheckBox->setChecked(param.linkOfPowerWithTemperature);
    }
    for (AdjustRowIndex index : {RowGpuClock, RowMemoryClock, RowFan, RowTemperature, RowPower, RowVoltage}) {
        const AdjustRow &row = kAdjustRows[index];
        const AdjustRange range = row.range(param);
        rows[index]->setRange(range.minimum, range.maximum);
        rows[index]->setValue(row.value(param));
        rows[index]->setEnabled(row.editable(param));
    }

    const bool controllable = isFanControllable(param);
    if (!controllable || param.fanMode == FanAuto)
        btnFanAuto->setChecked(true);
    else if (param.fanMode == FanManual)
        btnFanManual->setChecked(true);
    else
        btnFanUserDefined->setChecked(true);
    for (QPushButton *button : {btnFanAuto, btnFanManual, btnFanUserDefined})
        button->setEnabled(controllable);
}

void Ovryn_OverClockingWidget::readSliders()
{
    for (std::size_t index = 0; index < rows.size(); ++index)
        kAdjustRows[index].value(current) = rows[index]->value();
    current.linkOfPowerWithTemperature = LinkCheckBox->isChecked();
    if (btnFanManual->isChecked())
        current.fanMode = FanManual;
    else if (btnFanUserDefined->isChecked())
        current.fanMode = FanUserDefined;
    else
        current.fanMode = FanAuto;
}

void Ovryn_OverClockingWidget::applyParam()
{
    applyParam(current);
}

void Ovryn_OverClockingWidget::applyParam(OverClockingParam param)
{
    if (!gpuControl)
        return;
    if (param.fanMode == FanAuto || param.fanMode == FanManual) {
        stopFanThread();
    } else {
        startFanThread();
    }
    // Should the card not be readable afterwards, the file gets what was ordered: what was read before could be
    // higher.
    keepNumbers(limitedToRows(param));
    for (const CardWrite &write : writesFor(param)) {
        const bool taken = send(write, *gpuControl);
        if (write.operation == CardWrite::CoolerLevel)
            fanLeftCurve(taken);
    }
    QThread::msleep(timings.settleMs);

    readDevice();
    showParam(current);
    applied = current;
}

void Ovryn_OverClockingWidget::startFanThread()
{
    if (!curveDrivesFan && fanWatch)
        fanWatch(true);
    curveDrivesFan = true;
    fanThread->setTemperatureToFanSpeedData(nodes);
    fanThread->startWork();
}

void Ovryn_OverClockingWidget::stopFanThread()
{
    fanThread->stopWork();
    fanThread->wait();
}

void Ovryn_OverClockingWidget::fanLeftCurve(bool orderTaken)
{
    if (!curveDrivesFan)
        return;
    // Refused, the fan would stay at the last level of a curve that nobody follows any more.
    if (!orderTaken && !gpuControl->setCoolerAuto())
        return;
    curveDrivesFan = false;
    if (fanWatch)
        fanWatch(false);
}

void Ovryn_OverClockingWidget::restoreDefaults()
{
    stopFanThread();
    gpuControl->restoreDefaults();
    kept.fill(AdjustModuleInfo::kNeverAdjusted); // what was adjusted before must not come back with the next start
    QThread::msleep(timings.settleMs);

    current.fanMode = FanAuto;
    current.linkOfPowerWithTemperature = false;
    readDevice();
    // The operation says nothing of its order to the fan, the card does.
    fanLeftCurve(kAdjustRows[RowFan].wasRead(current) && current.cooler.currentPolicy != kCoolerPolicyManual);
    showParam(current);
    applied = current;
    hideApplyAndCancel();
    endHighPerformance();
}
