#include "board/led/Ovryn_SendColorToLed.h"

#include "board/led/LedEffects.h"
#include "device/NvGpuControl.h"

#include <QMutexLocker>

Ovryn_SendColorToLed::Ovryn_SendColorToLed(NvGpuControl *card, QObject *parent, unsigned int pauseMs)
    : WorkerThread(parent), control(card), cardShare(shareOf(card)), sleepMs(pauseMs)
{
}

Ovryn_SendColorToLed::~Ovryn_SendColorToLed()
{
    endThread();
}

void Ovryn_SendColorToLed::startStateDisplay()
{
    // One hold for both: a pass between them would already spend the reset colour.
    QMutexLocker held(&mutex);
    lastColor = QColor(0, 0, 0); // the colour of no band
    startThreadUnderMutex();
}

void Ovryn_SendColorToLed::stopStateDisplay()
{
    stopThread();
}

void Ovryn_SendColorToLed::run()
{
    QMutexLocker held(&mutex);
    while (control != nullptr) {
        if (!showStateOnce()) {
            giveUpLoop(); // so that a dead controller isn't asked again by the next start
            return;
        }
        if (stopped || !pause(held, sleepMs))
            break;
    }
    leaveLoop();
}

bool Ovryn_SendColorToLed::showStateOnce()
{
    NvThermalInfo thermal;
    control->getThermalSensor(thermal); // a failed read leaves 0 degrees
    const LedStateBand band = ledStateBandFor(thermal.currentTemp);
    if (band.color.rgb() == lastColor.rgb())
        return true;
    lastColor = band.color;
    const LedCommand command = ledStateCommandFor(band);
    return control->i2cWriteFramed(command.colors.data(), qint32(command.colors.size()), command.effect,
                                   command.level, command.interval, false);
}
