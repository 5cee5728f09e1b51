#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"

#include "device/NvGpuControl.h"

#include <QMutexLocker>

Ovryn_SendNvCardInfoThread::Ovryn_SendNvCardInfoThread(NvGpuControl *card, QObject *parent, quint32 pauseMs)
    : WorkerThread(parent), control(card), cardShare(shareOf(card)), sleepMs(pauseMs)
{
}

Ovryn_SendNvCardInfoThread::~Ovryn_SendNvCardInfoThread()
{
    endThread();
}

void Ovryn_SendNvCardInfoThread::startSampling()
{
    startThread();
}

void Ovryn_SendNvCardInfoThread::setRefreshTime(unsigned int ms)
{
    QMutexLocker held(&mutex);
    sleepMs = ms;
}

void Ovryn_SendNvCardInfoThread::run()
{
    QMutexLocker held(&mutex);
    while (control != nullptr) {
        sampleOnce();
        if (stopped || !pause(held, sleepMs))
            break;
    }
    leaveLoop();
}

void Ovryn_SendNvCardInfoThread::sampleOnce()
{
    // Results of the reads are not looked at: a failed one has left zeros, and those are shown.
    CardReadings readings;
    NvThermalPolicyInfo thermalPolicy; // read with each sample, shown nowhere
    NvClockSet baseClocks;             // read with each sample, shown nowhere
    control->getThermalPolicyInfo(thermalPolicy);
    control->getMemoryInfo(readings.memory);
    control->getThermalSensor(readings.thermal);
    control->getCurrentClocks(readings.clocks);
    control->getBaseClocks(baseClocks, false);
    control->getCoolerInfo(readings.cooler);
    control->getGpuUsage(readings.usage);
    control->getExtremes(readings.extremes);
    emit sendNvCardInfo(cardBaseInfoOf(readings, latches));

    NvInfo fixedInfo;
    control->getFixedInfo(fixedInfo);
    emit sendNVCardFixedInfo(fixedInfo);

    NvBoardTemperatures boardTemperatures;
    NvExtremes extremesWithSensors; // the sensors were read after the first copy
    control->getBoardTemperatures(boardTemperatures);
    control->getExtremes(extremesWithSensors);
    emit sendBoardTempCompleteInfo(boardTempInfoOf(boardTemperatures, extremesWithSensors));
}
