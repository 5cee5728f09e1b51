#include "device/NvGpuControl.h"
#include "device/nvapi/NvApi.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "support/CheckedDriver.h"
#include "support/ModalAnswer.h"

#include <QPushButton>
#include <QSlider>
#include <QtTest>

#include <memory>

/// The page on cards that take what they are told: what was applied is read back and shown.
class TestAdjustOnSimulatedCards : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void applyThenDefault();
    void highPerformanceOnAndOff();

private:
    [[nodiscard]] Ovryn_SliderWidget *row(AdjustRowIndex index) const
    {
        return page->findChild<Ovryn_SliderWidget *>(QLatin1String(kAdjustRows[index].objectName));
    }
    [[nodiscard]] QVector<int> clocksAndTargets() const
    {
        return {row(RowGpuClock)->value(), row(RowMemoryClock)->value(), row(RowVoltage)->value(),
                row(RowPower)->value(), row(RowTemperature)->value()};
    }
    void move(AdjustRowIndex index, int value) const { row(index)->findChild<QSlider *>()->setValue(value); }
    void click(const char *name) const
    {
        QTest::mouseClick(page->findChild<QPushButton *>(QLatin1String(name)), Qt::LeftButton);
    }

    std::unique_ptr<CheckedDriver> driver; ///< the built-in scene: card 0 is one of the maker's own
    std::unique_ptr<NvGpuControl> control;
    std::unique_ptr<Ovryn_OverClockingWidget> page;
};

void TestAdjustOnSimulatedCards::init()
{
    driver = std::make_unique<CheckedDriver>();
    NvApiLibrarySource source;
    source.load = [this] {
        return driver->queryInterface();
    };
    source.unload = [] {
    };
    setNvApiLibrarySource(source);
    control = std::make_unique<NvGpuControl>();
    control->setCurrentGpu(0);
    page = std::make_unique<Ovryn_OverClockingWidget>(control.get(), nullptr, AdjustTimings{1, 5});
    page->resize(382, 394);
    page->show();
}

void TestAdjustOnSimulatedCards::cleanup()
{
    page.reset();
    control.reset();
    setNvApiLibrarySource({});
    driver.reset();
}

void TestAdjustOnSimulatedCards::applyThenDefault()
{
    const QVector<int> atStart = clocksAndTargets();
    const QVector<int> wanted = {atStart.at(0) + 100, atStart.at(1) + 100, atStart.at(2) + 10, 110, 80};
    move(RowGpuClock, wanted.at(0));
    move(RowMemoryClock, wanted.at(1));
    move(RowVoltage, wanted.at(2));
    move(RowPower, wanted.at(3));
    move(RowTemperature, wanted.at(4));
    ModalAnswer answers({"msgBoxYesBtn"});
    click("btnApply");
    QCOMPARE(answers.problems(), QStringList());
    QCOMPARE(clocksAndTargets(), wanted);

    click("btnDefault");
    QCOMPARE(clocksAndTargets(), atStart);
}

void TestAdjustOnSimulatedCards::highPerformanceOnAndOff()
{
    const QVector<int> atStart = clocksAndTargets();
    QVERIFY(page->setHighPerformance(true));
    QCOMPARE(clocksAndTargets(), QVector<int>({1733, atStart.at(1), atStart.at(2), 120, 83}));
    QVERIFY(page->setHighPerformance(false));
    QCOMPARE(clocksAndTargets(), atStart);
}

QTEST_MAIN(TestAdjustOnSimulatedCards)
#include "TestAdjustOnSimulatedCards.moc"
