#include "board/lcd/Ovryn_SendNvInfoToLCDThread.h"
#include "device/NvGpuControl.h"
#include "support/CheckedDriver.h"

#include <QtTest>

#include <memory>

/// The LCD worker on a card whose LCD controller checks what it gets.
class TestLcdWorkerOnCards : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everyFrameIsTaken();
    void theScreenFollowsTheRotation();
    void offAndOn();
    void slowDriver();

private:
    [[nodiscard]] simulated::LcdController lcd() const { return driver->card(0).lcd.value(); }

    std::unique_ptr<CheckedDriver> driver; ///< the built-in scene: card 0 has an LCD
    std::unique_ptr<NvGpuControl> control;
};

void TestLcdWorkerOnCards::init()
{
    driver = std::make_unique<CheckedDriver>();
    control = std::make_unique<NvGpuControl>();
    control->setCurrentGpu(0);
}

void TestLcdWorkerOnCards::cleanup()
{
    control.reset();
    driver.reset();
}

void TestLcdWorkerOnCards::everyFrameIsTaken()
{
    Ovryn_SendNvInfoToLCDThread worker(control.get());
    for (int second = 0; second < 300; ++second) {
        worker.sendFrameOnce();
        driver->advance(1000);
    }
    QCOMPARE(lcd().acceptedFrames, 300);
    QCOMPARE(lcd().refusedFrames, 0);
    const simulated::LcdController::Frame shown = lcd().shown;
    QCOMPARE(int(shown.modelTi), 1); // a GeForce GTX 1070 Ti
    QCOMPARE(int(shown.modelDigits[0]), 1);
    QCOMPARE(int(shown.modelDigits[2]), 7);
    NvMemoryInfo memory;
    QVERIFY(control->getMemoryInfo(memory));
    QCOMPARE(shown.memoryTotalKB, quint32(memory.totalKB));
}

void TestLcdWorkerOnCards::theScreenFollowsTheRotation()
{
    Ovryn_SendNvInfoToLCDThread worker(control.get());
    worker.setAutoSwitch(true, 2);
    QList<int> shown;
    for (int second = 0; second < 12; ++second) {
        worker.sendFrameOnce();
        shown << int(lcd().shown.command);
    }
    QCOMPARE(shown, QList<int>({0x80, 0x80, 0x40, 0x40, 0x40, 0x20, 0x20, 0x20, 0x10, 0x10, 0x10, 0x80}));
    worker.setLCDCurrentDisplayMode(LcdDisplayMemory);
    QCOMPARE(int(lcd().shown.command), 0x20);
}

void TestLcdWorkerOnCards::offAndOn()
{
    Ovryn_SendNvInfoToLCDThread worker(control.get(), nullptr, 1);
    worker.startSending();
    QTRY_COMPARE(int(lcd().shown.command), 0x80);
    worker.setEnableLCD(false);
    QVERIFY(worker.wait(10000));
    QCOMPARE(int(lcd().shown.command), 0xF0);
    worker.setEnableLCD(true);
    worker.startSending();
    QTRY_COMPARE(int(lcd().shown.command), 0x80);
    QCOMPARE(lcd().refusedFrames, 0);
}

void TestLcdWorkerOnCards::slowDriver()
{
    // The bus takes two seconds for a frame: a slot that comes meanwhile waits for this frame, and for no other.
    simulated::Fault slow;
    slow.operation = Operation::NvAPI_I2CWrite;
    slow.delayMs = 2000;
    slow.count = 1;
    driver->addFault(slow);
    Ovryn_SendNvInfoToLCDThread worker(control.get());
    worker.startSending();
    QTRY_VERIFY(!driver->calls(Operation::NvAPI_GPU_GetPCIIdentifiers).isEmpty()); // the last read before it
    worker.setAutoSwitch(false);
    QCOMPARE(lcd().acceptedFrames, 1);
    QTRY_VERIFY(lcd().acceptedFrames >= 2); // and the loop goes on
}

QTEST_GUILESS_MAIN(TestLcdWorkerOnCards)
#include "TestLcdWorkerOnCards.moc"
