#include "overclock/Ovryn_SetUserDefineFanSpeedThread.h"

#include "device/NvGpuControl.h"
#include "overclock/FanCurve.h"

#include <QMutexLocker>

Ovryn_SetUserDefineFanSpeedThread::Ovryn_SetUserDefineFanSpeedThread(NvGpuControl *card, QObject *parent,
                                                                     unsigned int intervalMs)
    : WorkerThread(parent),
      gpuControl(card),
      cardShare(shareOf(card)),
      interval(intervalMs),
      nodes(FanCurve::defaultCurve())
{
}

Ovryn_SetUserDefineFanSpeedThread::~Ovryn_SetUserDefineFanSpeedThread()
{
    endThread();
}

void Ovryn_SetUserDefineFanSpeedThread::setTemperatureToFanSpeedData(const QList<QPoint> &curve)
{
    QMutexLocker held(&mutex);
    nodes = FanCurve::hasValidEnds(curve) ? curve : FanCurve::defaultCurve();
}

void Ovryn_SetUserDefineFanSpeedThread::startWork()
{
    startThread();
}

void Ovryn_SetUserDefineFanSpeedThread::stopWork()
{
    stopThread();
}

void Ovryn_SetUserDefineFanSpeedThread::run()
{
    QMutexLocker held(&mutex);
    while (gpuControl != nullptr) {
        followCurveOnce();
        if (stopped || !pause(held, interval))
            break;
    }
    leaveLoop();
}

void Ovryn_SetUserDefineFanSpeedThread::followCurveOnce()
{
    NvThermalInfo thermal;
    if (!gpuControl->getThermalSensor(thermal)) {
        // A failed read leaves 0 degrees, and the level for 0 degrees could stop the fan of a hot card. The driver
        // knows the temperature, so it controls the fan until the next reading.
        gpuControl->setCoolerAuto();
        return;
    }
    // A worker whose call hung at its owner's end continues here after the fan was returned to the driver. It must
    // not take the fan again.
    if (isAbandoned())
        return;
    // Ordered every time, also unchanged: the driver may have taken the fan back meanwhile. A refused level
    // is ordered again by the next cycle.
    gpuControl->setCoolerLevel(FanCurve::levelFor(nodes, thermal.currentTemp), kCoolerPolicyManual);
    if (isAbandoned())
        gpuControl->setCoolerAuto(); // the call that hung was the order itself
}
