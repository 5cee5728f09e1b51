#pragma once

#include "board/LcdJournal.h"
#include "board/lcd/Ovryn_SendNvInfoToLCDThread.h"
#include "device/NvGpuControl.h"
#include "simulated/ScenarioReader.h"
#include "support/CheckedDriver.h"

#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <memory>

using Worker = Ovryn_SendNvInfoToLCDThread;

constexpr int kPatienceMs = 10000;

constexpr int kClock = 0x80;
constexpr int kTemperature = 0x40;
constexpr int kMemory = 0x20;
constexpr int kOther = 0x10;
constexpr int kOff = 0xF0;

/// A worker whose sleeps end when the test says so: no second of it is waited for.
class DrivenWorker : public Worker
{
public:
    explicit DrivenWorker(NvGpuControl *device) : Worker(device)
    {
        setSleep([this](unsigned int ms) {
            pauseMs = ms;
            sleeps.release();
            ticks.acquire();
        });
    }
    ~DrivenWorker() override
    {
        ticks.release(1000000);
        endThread();
    }

    void endSleep() { ticks.release(); }
    /// Lets one sleep end and waits for the next; false when none comes.
    bool tick()
    {
        endSleep();
        return reachesSleep();
    }
    bool reachesSleep() { return sleeps.tryAcquire(1, kPatienceMs); }
    [[nodiscard]] unsigned int lastPauseMs() const { return pauseMs; }

    [[nodiscard]] quint32 switchTimeMs()
    {
        QMutexLocker held(&mutex);
        return switchMs;
    }
    [[nodiscard]] quint32 timeOnPageMs()
    {
        QMutexLocker held(&mutex);
        return elapsedMs;
    }

private:
    QSemaphore ticks;
    QSemaphore sleeps;
    std::atomic<unsigned int> pauseMs{0};
};

/// Collects what a worker tells.
class ResultReceiver : public QObject
{
    Q_OBJECT

public:
    QList<bool> results;

public slots:
    void take(bool success) { results << success; }
};

inline QList<int> times(int count, int command)
{
    QList<int> commands;
    for (int i = 0; i < count; ++i)
        commands << command;
    return commands;
}

/// What each test of the LCD worker finds: a simulated card and its device object.
class LcdWorkerTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { useScene(simulated::builtInScenario()); }

    void cleanup()
    {
        control.reset();
        driver.reset();
    }

protected:
    void useScene(const simulated::Scenario &scene)
    {
        control.reset();
        driver.reset(); // a driver goes before the next one comes
        driver = std::make_unique<CheckedDriver>(scene);
        control = std::make_unique<NvGpuControl>();
        driver->forgetCalls();
    }
    void loseController()
    {
        driver->edit(0, [](simulated::Card &card) { card.lcd.reset(); });
    }
    void returnController()
    {
        driver->edit(0, [](simulated::Card &card) { card.lcd.emplace(); });
    }
    [[nodiscard]] QList<int> commands() const { return lcdCommands(*driver); }
    QList<int> takeCommands()
    {
        const QList<int> sent = commands();
        driver->forgetCalls();
        return sent;
    }

    std::unique_ptr<CheckedDriver> driver;
    std::unique_ptr<NvGpuControl> control;
};
