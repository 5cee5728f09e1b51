#include "overclock/CardAdjustment.h"

#include "device/Arithmetic.h"
#include "device/NvGpuControl.h"
#include "overclock/CardWrites.h"
#include "overclock/HighPerformancePreset.h"
#include "overclock/Ovryn_SetUserDefineFanSpeedThread.h"

#include <QThread>

#include <utility>

namespace
{

/// Every negative number in a settings file means "never adjusted".
bool isSaved(qint32 number)
{
    return number >= 0;
}

quint32 policyNumber(qint32 policyId)
{
    return static_cast<quint32>(policyId);
}

} // namespace

CardAdjustment::CardAdjustment(NvGpuControl *control, const AdjustTimings &pauses, FanWatch watch)
    : timings(pauses),
      gpuControl(control),
      fanWatch(std::move(watch)),
      fanThread(new Ovryn_SetUserDefineFanSpeedThread(control, nullptr, pauses.fanIntervalMs)),
      highPerformanceClocks(highPerformanceClockTable())
{
    kept.fill(AdjustModuleInfo::kNeverAdjusted);
    readDevice();
}

CardAdjustment::~CardAdjustment()
{
    returnFanToDriver();
}

void CardAdjustment::startFromCard()
{
    current.fanMode = current.cooler.currentPolicy == kCoolerPolicyManual ? FanManual : FanAuto;
    applied = current;
    emit snapshotRead();
}

void CardAdjustment::startFromSaved(const AdjustModuleInfo &info)
{
    if (info.EnableHighPerformance) {
        startInHighPerformance();
        return;
    }
    current.linkOfPowerWithTemperature = info.LinkOfPowerWithTemperature;
    current.fanMode = info.FanMode;
    nodes = info.Nodes;

    for (std::size_t index = 0; index < kAdjustRows.size(); ++index) {
        const qint32 number = info.*kAdjustRows[index].saved;
        if (isSaved(number))
            kAdjustRows[index].value(current) = kept[index] = number;
    }
    applyParam(current);
}

void CardAdjustment::startInHighPerformance()
{
    if (setHighPerformance(true)) {
        // The values from before the mode aren't known after a restart: the end of the mode restores the card's
        // defaults.
        beforeHighPerformance = withCardDefaults(beforeHighPerformance);
    } else {
        // `applied` stays empty, so a card that lost the mode shows empty rows from the next showing on, until
        // Apply or Default. That is known, and kept.
        emit snapshotRead();
    }
}

// ---- the snapshots ---------------------------------------------------------------------------------------

void CardAdjustment::readDevice()
{
    if (!gpuControl)
        return;
    OverClockingParam read = readSnapshot(*gpuControl);
    read.linkOfPowerWithTemperature = current.linkOfPowerWithTemperature;
    read.fanMode = current.fanMode;
    current = read;
    keepNumbers(current);
}

void CardAdjustment::keepNumbers(OverClockingParam param)
{
    for (std::size_t index = 0; index < kAdjustRows.size(); ++index) {
        if (kAdjustRows[index].wasRead(param))
            kept[index] = kAdjustRows[index].value(param);
    }
}

void CardAdjustment::returnToApplied()
{
    current = applied;
}

void CardAdjustment::getParameter(AdjustModuleInfo &out) const
{
    out.FanMode = current.fanMode;
    out.Nodes = nodes;
    out.LinkOfPowerWithTemperature = current.linkOfPowerWithTemperature;
    for (std::size_t index = 0; index < kAdjustRows.size(); ++index)
        out.*kAdjustRows[index].saved = kept[index];
    out.EnableHighPerformance = highPerformance;
}

std::optional<qint32> CardAdjustment::temperatureForPower(qint32 powerPercent) const
{
    NvLimitPair pair;
    if (!gpuControl ||
        !gpuControl->powerToTemperature(policyNumber(current.power.policyId), policyNumber(current.thermal.policyId),
                                        static_cast<float>(powerPercent), pair))
        return std::nullopt;
    return cutToInt(static_cast<double>(pair.temperature));
}

std::optional<qint32> CardAdjustment::powerForTemperature(qint32 temperature, qint32 presentPowerPercent) const
{
    NvLimitPair pair;
    if (!gpuControl || !gpuControl->temperatureToPower(
                           policyNumber(current.power.policyId), policyNumber(current.thermal.policyId),
                           static_cast<float>(temperature), static_cast<float>(presentPowerPercent), pair))
        return std::nullopt;
    return cutToInt(static_cast<double>(pair.power));
}

// ---- the orders ------------------------------------------------------------------------------------------

void CardAdjustment::apply(const OverClockingParam &wanted)
{
    current = wanted;
    applyParam(current);
    endHighPerformance();
}

void CardAdjustment::applyParam(OverClockingParam param)
{
    if (!gpuControl)
        return;
    if (param.fanMode == FanAuto || param.fanMode == FanManual) {
        stopFanThread();
    } else {
        startFanThread();
    }
    // If the card can't be read afterwards, the file gets the ordered values: those that were read before could be
    // higher.
    keepNumbers(limitedToRows(param));
    for (const CardWrite &write : writesFor(param)) {
        const bool taken = send(write, *gpuControl);
        if (write.operation == CardWrite::CoolerLevel)
            fanLeftCurve(taken);
    }
    QThread::msleep(timings.settleMs);

    readDevice();
    applied = current;
    emit snapshotRead();
}

void CardAdjustment::restoreDefaults()
{
    if (!gpuControl)
        return;
    stopFanThread();
    gpuControl->restoreDefaults();
    kept.fill(AdjustModuleInfo::kNeverAdjusted); // what was adjusted before must not come back with the next start
    QThread::msleep(timings.settleMs);

    current.fanMode = FanAuto;
    current.linkOfPowerWithTemperature = false;
    readDevice();
    // The operation doesn't report its order to the fan; the card shows it.
    fanLeftCurve(kAdjustRows[RowFan].wasRead(current) && current.cooler.currentPolicy != kCoolerPolicyManual);
    applied = current;
    emit snapshotRead();
    endHighPerformance();
}

// ---- the fan ---------------------------------------------------------------------------------------------

void CardAdjustment::setCurve(const QList<QPoint> &newCurve)
{
    nodes = newCurve;
    fanThread->setTemperatureToFanSpeedData(nodes);
}

void CardAdjustment::startFanThread()
{
    if (!curveDrivesFan && fanWatch)
        fanWatch(true);
    curveDrivesFan = true;
    fanThread->setTemperatureToFanSpeedData(nodes);
    fanThread->startWork();
}

void CardAdjustment::stopFanThread()
{
    fanThread->stopWork();
    fanThread->wait();
}

void CardAdjustment::fanLeftCurve(bool orderTaken)
{
    if (!curveDrivesFan)
        return;
    // After a refusal the fan would stay at the last level of a curve that no longer drives it.
    if (!orderTaken && !gpuControl->setCoolerAuto())
        return;
    curveDrivesFan = false;
    if (fanWatch)
        fanWatch(false);
}

void CardAdjustment::requestEnd()
{
    if (fanThread)
        fanThread->requestEnd();
}

void CardAdjustment::returnFanToDriver()
{
    if (!fanThread)
        return;
    // The worker ends first: its next cycle would order a level again.
    const bool threadEnded = WorkerThread::endAndDelete(fanThread);
    fanThread = nullptr;
    // A settings file may hold any mode, and every one but the first two runs the curve.
    const bool modeOfCurve = current.fanMode != FanAuto && current.fanMode != FanManual;
    if (!gpuControl || !(modeOfCurve || curveDrivesFan))
        return;
    const bool handedBack = gpuControl->setCoolerAuto();
    // The order of a worker that did not end may still reach the card, so the guard keeps watching that fan.
    if (handedBack && threadEnded && curveDrivesFan)
        fanLeftCurve(true);
}

// ---- the high-performance mode: a preset of ordinary settings; nothing on the card is unlocked -------------

bool CardAdjustment::setHighPerformance(bool enable)
{
    NvPciIds ids;
    bool eligible = false;
    if (gpuControl) {
        gpuControl->getPciIdentifiers(ids);
        eligible = isHighPerformanceModel(gpuControl->getGpuName(), ids);
    }
    const auto clock = highPerformanceClocks.constFind(subSystemDevice(ids));
    if (!eligible || (enable && clock == highPerformanceClocks.constEnd())) {
        if (highPerformance)
            keepNumbers(beforeHighPerformance); // the preset must not come back as the user's own values
        endHighPerformance();
        return false;
    }

    if (enable == highPerformance) {
        if (!enable)
            endHighPerformance();
        return true;
    }
    if (enable) {
        beforeHighPerformance = current;
        applyParam(withHighPerformance(current, *clock));
        highPerformance = true;
        emit highPerformanceModeChanged(true);
    } else {
        applyParam(beforeHighPerformance);
        endHighPerformance();
    }
    return true;
}

void CardAdjustment::endHighPerformance()
{
    highPerformance = false;
    emit highPerformanceModeChanged(false);
}
