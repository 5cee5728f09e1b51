#include "overclock/AdjustRows.h"
#include "overclock/CardWrites.h"
#include "overclock/HighPerformancePreset.h"

#include <QtTest>

#include <functional>
#include <limits>

using Change = std::function<void(OverClockingParam &)>;
Q_DECLARE_METATYPE(Change)

namespace
{

constexpr qint32 kLowest = std::numeric_limits<qint32>::min();
constexpr qint32 kHighest = std::numeric_limits<qint32>::max();

OverClockingParam sampleParam()
{
    OverClockingParam param;
    param.clocks = {1707, 4106, 1450};
    param.gpuRange = {1607, -200, 1000, true};
    param.memoryRange = {4006, -502, 1000, true};
    param.cooler.defaultMinLevel = 27;
    param.cooler.defaultMaxLevel = 100;
    param.cooler.currentLevel = 60;
    param.voltage = {1162, 962, 1062, 1061, 1072, true};
    param.power = {50, 120, 100, 115, 45, 2, true};
    param.thermal = {60, 90, 83, 85, false, 3, true};
    param.fanMode = FanManual;
    return param;
}

const QString kSampleOrders = "gpu 100, memory 100, thermal 3=85, power 2=115, voltage 10000";

/// The orders of a snapshot in one line.
QString ordersFor(const OverClockingParam &param)
{
    QStringList texts;
    for (const CardWrite &write : writesFor(param)) {
        const QString value = QString::number(write.value);
        const QString numbered = QStringLiteral("%1=%2").arg(write.id).arg(value);
        switch (write.operation) {
        case CardWrite::CoolerLevel:
            texts << "cooler " + numbered;
            break;
        case CardWrite::GpuClockOffset:
            texts << "gpu " + value;
            break;
        case CardWrite::MemoryClockOffset:
            texts << "memory " + value;
            break;
        case CardWrite::ThermalLimit:
            texts << "thermal " + numbered;
            break;
        case CardWrite::PowerLimit:
            texts << "power " + numbered;
            break;
        case CardWrite::VoltageOffset:
            texts << "voltage " + value;
            break;
        }
    }
    return texts.join(", ");
}

} // namespace

/// What is decided before a card is told: the orders of a snapshot, the rows' ranges, and the preset.
class TestCardWrites : public QObject
{
    Q_OBJECT

private slots:
    void zeroedSnapshot();
    void orders_data();
    void orders();
    void rows_data();
    void rows();
    void model_data();
    void model();
    void presetClock_data();
    void presetClock();
    void preset();
};

void TestCardWrites::zeroedSnapshot()
{
    const OverClockingParam param;
    QCOMPARE(param.cooler.currentPolicy, 0x20);
    QCOMPARE(param.fanMode, 0);
    QVERIFY(!param.linkOfPowerWithTemperature);
    QCOMPARE(ordersFor(param), QString("cooler 32=0, gpu 0, memory 0"));
}

void TestCardWrites::orders_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("orders");

    const auto row = [](const char *name, const QString &orders, const Change &change) {
        QTest::newRow(name) << change << orders;
    };
    row("fan by hand", "cooler 1=60, " + kSampleOrders, [](OverClockingParam &) {});
    row("fan by the driver", "cooler 32=60, " + kSampleOrders, [](OverClockingParam &p) { p.fanMode = FanAuto; });
    row("fan by the curve gets no level", kSampleOrders, [](OverClockingParam &p) { p.fanMode = FanUserDefined; });
    row("an unknown fan mode is the curve", kSampleOrders, [](OverClockingParam &p) { p.fanMode = 7; });
    row("a negative fan mode is the curve", kSampleOrders, [](OverClockingParam &p) { p.fanMode = -1; });
    row("clocks below their base", "cooler 1=60, gpu -107, memory -6, thermal 3=85, power 2=115, voltage 10000",
        [](OverClockingParam &p) {
            p.clocks = {1500, 4000, 0};
        });
    row("clocks that can't be edited are written all the same", "cooler 1=60, " + kSampleOrders,
        [](OverClockingParam &p) { p.gpuRange.editable = p.memoryRange.editable = false; });
    row("no power policy", "cooler 1=60, gpu 100, memory 100, thermal 3=85, voltage 10000",
        [](OverClockingParam &p) { p.power.present = false; });
    row("no thermal policy", "cooler 1=60, gpu 100, memory 100, power 2=115, voltage 10000",
        [](OverClockingParam &p) { p.thermal.present = false; });
    row("a voltage that can't be edited", "cooler 1=60, gpu 100, memory 100, thermal 3=85, power 2=115",
        [](OverClockingParam &p) { p.voltage.editable = false; });
    row("voltage below its base", "cooler 1=60, gpu 100, memory 100, thermal 3=85, power 2=115, voltage -62000",
        [](OverClockingParam &p) { p.voltage.currentVoltage = 1000; });

    // What was not read is no base.
    row("graphics base unread", "cooler 1=60, gpu 0, memory 100, thermal 3=85, power 2=115, voltage 10000",
        [](OverClockingParam &p) { p.gpuRange = {}; });
    row("graphics base unread, its range known",
        "cooler 1=60, gpu 0, memory 100, thermal 3=85, power 2=115, voltage 10000",
        [](OverClockingParam &p) { p.gpuRange.baseClock = 0; });
    row("memory base unread", "cooler 1=60, gpu 100, memory 0, thermal 3=85, power 2=115, voltage 10000",
        [](OverClockingParam &p) { p.memoryRange = {}; });
    row("thermal policy without figures", "cooler 1=60, gpu 100, memory 100, power 2=115, voltage 10000",
        [](OverClockingParam &p) { p.thermal = {0, 0, 0, 0, false, 0, true}; });
    row("power policy without figures", "cooler 1=60, gpu 100, memory 100, thermal 3=85, voltage 10000",
        [](OverClockingParam &p) { p.power = {0, 0, 0, 0, 0, 0, true}; });
    row("voltage without a base", "cooler 1=60, gpu 100, memory 100, thermal 3=85, power 2=115",
        [](OverClockingParam &p) { p.voltage.baseVoltage = 0; });
    row("cooler unread: the driver gets the fan", "cooler 32=0, " + kSampleOrders,
        [](OverClockingParam &p) { p.cooler.defaultMinLevel = p.cooler.defaultMaxLevel = 0; });
    row("a cooler's highest below its lowest counts as unread", "cooler 32=27, " + kSampleOrders,
        [](OverClockingParam &p) { p.cooler.defaultMaxLevel = 0; });

    // What a row's box can't show is not ordered.
    row("above every range", "cooler 1=100, gpu 1000, memory 1000, thermal 3=90, power 2=120, voltage 100000",
        [](OverClockingParam &p) {
            p.clocks = {kHighest, kHighest, 0};
            p.cooler.currentLevel = p.voltage.currentVoltage = kHighest;
            p.power.currentPower = p.thermal.currentTemp = kHighest;
        });
    row("below every range", "cooler 1=27, gpu -200, memory -502, thermal 3=60, power 2=50, voltage -100000",
        [](OverClockingParam &p) {
            p.clocks = {kLowest, kLowest, 0};
            p.cooler.currentLevel = p.voltage.currentVoltage = kLowest;
            p.power.currentPower = p.thermal.currentTemp = kLowest;
        });
    row("one beyond each range", "cooler 1=100, gpu 1000, memory 1000, thermal 3=90, power 2=120, voltage 100000",
        [](OverClockingParam &p) {
            p.clocks = {2608, 5007, 0};
            p.cooler.currentLevel = 101;
            p.voltage.currentVoltage = 1163;
            p.power.currentPower = 121;
            p.thermal.currentTemp = 91;
        });
    row("a lowest above the highest wins",
        "cooler 1=60, gpu 300, memory 100, thermal 3=95, power 2=130, voltage 200000", [](OverClockingParam &p) {
            p.gpuRange.minOffset = 300;
            p.gpuRange.maxOffset = -300;
            p.voltage.minVoltage = 1262;
            p.power.minPower = 130;
            p.thermal.minTemp = 95;
        });
    row("figures at the ends of the integers",
        QString("cooler 1=60, gpu 1, memory %1, thermal 3=85, power 2=115, voltage 1000").arg(kLowest),
        [](OverClockingParam &p) {
            p.clocks = {kHighest, kHighest, 0};
            p.gpuRange = {kHighest - 1, 0, 1, true};
            p.memoryRange = {-1, kLowest + 1, kLowest, true};
            p.voltage = {kLowest + 1, kLowest, kLowest, kLowest, kHighest, true};
        });
}

void TestCardWrites::orders()
{
    QFETCH(Change, change);
    OverClockingParam param = sampleParam();
    change(param);
    QTEST(ordersFor(param), "orders");
}

void TestCardWrites::rows_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<bool>("editable");

    const Change none = [](OverClockingParam &) {
    };
    const auto row = [](const char *name, AdjustRowIndex index, int value, int minimum, int maximum, bool editable,
                        const Change &change) {
        QTest::newRow(name) << change << int(index) << value << minimum << maximum << editable;
    };
    row("graphics clock", RowGpuClock, 1707, 1407, 2607, true, none);
    row("graphics clock fixed", RowGpuClock, 1707, 1407, 2607, false,
        [](OverClockingParam &p) { p.gpuRange.editable = false; });
    row("graphics clock beyond 32 bits", RowGpuClock, 1707, kHighest, kLowest, true, [](OverClockingParam &p) {
        p.gpuRange = {kHighest, 0, 1, true};
    });
    row("memory clock", RowMemoryClock, 4106, 3504, 5006, true, none);
    row("memory clock fixed", RowMemoryClock, 4106, 3504, 5006, false,
        [](OverClockingParam &p) { p.memoryRange.editable = false; });
    row("fan by hand", RowFan, 60, 27, 100, true, none);
    row("fan by the driver", RowFan, 60, 27, 100, false, [](OverClockingParam &p) { p.fanMode = FanAuto; });
    row("fan by the curve", RowFan, 60, 27, 100, false, [](OverClockingParam &p) { p.fanMode = FanUserDefined; });
    row("fan of one level", RowFan, 60, 40, 40, false,
        [](OverClockingParam &p) { p.cooler.defaultMinLevel = p.cooler.defaultMaxLevel = 40; });
    row("voltage", RowVoltage, 1072, 962, 1162, true, none);
    row("voltage fixed", RowVoltage, 1072, 962, 1162, false,
        [](OverClockingParam &p) { p.voltage.editable = false; });
    row("power", RowPower, 115, 50, 120, true, none);
    row("power without a policy", RowPower, 115, 50, 120, false,
        [](OverClockingParam &p) { p.power.present = false; });
    row("temperature", RowTemperature, 85, 60, 90, true, none);
    row("temperature without a policy", RowTemperature, 85, 60, 90, false,
        [](OverClockingParam &p) { p.thermal.present = false; });
}

void TestCardWrites::rows()
{
    QFETCH(Change, change);
    QFETCH(int, row);
    OverClockingParam param = sampleParam();
    change(param);
    const AdjustRow &tested = kAdjustRows.at(static_cast<std::size_t>(row));
    const AdjustRange range = tested.range(param);
    QTEST(range.minimum, "minimum");
    QTEST(range.maximum, "maximum");
    QTEST(tested.editable(param), "editable");
    QTEST(tested.value(param), "value");
}

void TestCardWrites::model_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<bool>("eligible");

    QTest::newRow("model and maker") << QString("GeForce GTX 1070 Ti") << 0x111D7377U << true;
    QTest::newRow("a board outside the table is the model too")
        << QString("GeForce GTX 1070 Ti") << 0x11187377U << true;
    QTest::newRow("another maker") << QString("GeForce GTX 1070 Ti") << 0x111D7378U << false;
    QTest::newRow("maker in the other half") << QString("GeForce GTX 1070 Ti") << 0x7377111DU << false;
    QTest::newRow("another model") << QString("GeForce GTX 1080") << 0x111D7377U << false;
    QTest::newRow("name with something behind it") << QString("GeForce GTX 1070 Ti 1") << 0x111D7377U << false;
    QTest::newRow("name in another case") << QString("GEFORCE GTX 1070 Ti") << 0x111D7377U << false;
    QTest::newRow("no name") << QString() << 0x111D7377U << false;
}

void TestCardWrites::model()
{
    QFETCH(QString, name);
    QFETCH(quint32, subSystemId);
    NvPciIds ids;
    ids.subSystemId = subSystemId;
    QTEST(isHighPerformanceModel(name.toStdString(), ids), "eligible");
}

void TestCardWrites::presetClock_data()
{
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<int>("clock"); // 0 for none

    QTest::newRow("0x111E") << 0x111E7377U << 1759;
    QTest::newRow("0x111D") << 0x111D7377U << 1733;
    QTest::newRow("0x11DC") << 0x11DC7377U << 1708;
    QTest::newRow("0x112B") << 0x112B7377U << 1683;
    QTest::newRow("a board without an entry") << 0x11187377U << 0;
}

void TestCardWrites::presetClock()
{
    QFETCH(quint32, subSystemId);
    NvPciIds ids;
    ids.subSystemId = subSystemId;
    QTEST(highPerformanceClockTable().value(subSystemDevice(ids)), "clock");
    QCOMPARE(highPerformanceClockTable().size(), 4);
}

void TestCardWrites::preset()
{
    OverClockingParam param = sampleParam();
    param.fanMode = FanUserDefined;
    param.linkOfPowerWithTemperature = true;

    const OverClockingParam defaults = withCardDefaults(param);
    QCOMPARE(ordersFor(defaults), QString("cooler 32=60, gpu 0, memory 0, thermal 3=83, power 2=100, voltage -1000"));
    QVERIFY(!defaults.linkOfPowerWithTemperature);

    const OverClockingParam preset = withHighPerformance(param, 1733);
    QCOMPARE(ordersFor(preset), QString("cooler 32=60, gpu 126, memory 0, thermal 3=83, power 2=120, voltage -1000"));
    QVERIFY(!preset.linkOfPowerWithTemperature);
}

QTEST_APPLESS_MAIN(TestCardWrites)
#include "TestCardWrites.moc"
