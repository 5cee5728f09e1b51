#include "device/DeviceTest.h"

#include <QFile>
#include <QtTest>

#include <cstring>

namespace
{

float floatOfBits(const QString &hex)
{
    const quint32 word = hex.toUInt(nullptr, 16);
    float value;
    std::memcpy(&value, &word, sizeof value);
    return value;
}

QString bitsOfFloat(float value)
{
    quint32 word;
    std::memcpy(&word, &value, sizeof word);
    return QString("%1").arg(word, 8, 16, QLatin1Char('0')).toUpper();
}

} // namespace

/// The link between power and temperature limits.
class TestDevicePowerLink : public QObject
{
    Q_OBJECT

private slots:
    void linkTable();
    void linkRefusals_data();
    void linkRefusals();
    void linkOfUnknownThermalPolicyReadsTheEntryBehind();
    void linkAtTheDefaultGivesTheDefault();
    void linkCalls();
};

/// Every point of link_table.csv, which link_table.py works out without this program's code.
void TestDevicePowerLink::linkTable()
{
    QFile table(QStringLiteral(OVRYN_DEVICE_TEST_DATA "/link_table.csv"));
    QVERIFY(table.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromLatin1(table.readAll()).split('\n', Qt::SkipEmptyParts).mid(1);
    QVERIFY(lines.size() >= 200);

    RawDriver driver;
    NvGpuControl gpu;
    for (const QString &line : lines) {
        const QStringList column = line.split(',');
        QCOMPARE(column.size(), 12);
        NvApiPowerPoliciesInfo::Entry &power = driver.card().powerPolicies.entries[0];
        power.minPower = column[2].toUInt();
        power.defaultPower = column[3].toUInt();
        power.maxPower = column[4].toUInt();
        NvApiThermalPoliciesInfo::Entry &thermal = driver.card().thermalPolicies.entries[0];
        thermal.minTemp = column[5].toInt();
        thermal.defaultTemp = column[6].toInt();
        thermal.maxTemp = column[7].toInt();
        const float input = floatOfBits(column[8]);

        NvLimitPair out{-1, -1};
        const bool toTemperature = column[0] == "temperature";
        const bool linked = toTemperature ? gpu.powerToTemperature(2, 3, input, out)
                                          : gpu.temperatureToPower(2, 3, input, floatOfBits(column[9]), out);
        const float result = toTemperature ? out.temperature : out.power;
        QVERIFY2(linked == (column[10] != "refused"), qPrintable(line));
        if (!linked)
            continue;
        QVERIFY2(bitsOfFloat(result) == column[10], qPrintable(line + ", got " + bitsOfFloat(result)));
        QVERIFY2(int(result) == column[11].toInt(), qPrintable(line));
        QVERIFY2((toTemperature ? out.power : out.temperature) == input, qPrintable(line));
    }
}

void TestDevicePowerLink::linkRefusals_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<quint32>("powerPolicyId");
    QTest::addColumn<float>("percent");
    QTest::addColumn<bool>("toTemperature");
    QTest::addColumn<bool>("toPower");
    const auto row = [](
                         const char *name, quint32 policyId, float percent, bool toTemperature, bool toPower,
                         const Arrange &arrange = [](RawDriver &) {}) {
        QTest::newRow(name) << arrange << policyId << percent << toTemperature << toPower;
    };
    row("in range", 2, 100, true, true);
    row("above the top", 2, 120.01f, false, true);
    row("below the bottom", 2, 49.99f, false, true);
    row("above a top that is the default", 2, 101, false, true,
        [](RawDriver &driver) { driver.card().powerPolicies.entries[0].maxPower = 100000; });
    row("no such power policy", 5, 100, false, false);
    row("power policies fail", 2, 100, false, false,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo, -1); });
    row("power policies not valid", 2, 100, false, false,
        [](RawDriver &driver) { driver.card().powerPolicies.valid = 0; });
    row("thermal policies fail", 2, 100, false, false,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, -1); });
    row("thermal policies not valid", 2, 100, false, false,
        [](RawDriver &driver) { driver.card().thermalPolicies.flags = 2; });
    row("power policies beyond the record", 5, 100, false, false,
        [](RawDriver &driver) { driver.card().powerPolicies.count = 255; });
}

void TestDevicePowerLink::linkRefusals()
{
    QFETCH(Arrange, arrange);
    QFETCH(quint32, powerPolicyId);
    QFETCH(float, percent);
    QFETCH(bool, toTemperature);
    QFETCH(bool, toPower);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvLimitPair out;
    QCOMPARE(gpu.powerToTemperature(powerPolicyId, 3, percent, out), toTemperature);
    QCOMPARE(gpu.temperatureToPower(powerPolicyId, 3, 80, percent, out), toPower);
}

void TestDevicePowerLink::linkOfUnknownThermalPolicyReadsTheEntryBehind()
{
    RawDriver driver;
    driver.card().thermalPolicies.entries[1] = {99, 0, 10 * 256, 20 * 256, 30 * 256, 0};
    NvGpuControl gpu;
    NvLimitPair out;
    QVERIFY(gpu.powerToTemperature(2, 5, 120, out));
    QCOMPARE(out.temperature, 30.0f);
    QVERIFY(gpu.temperatureToPower(2, 5, 15, 100, out));
    QCOMPARE(out.power, 75.0f);

    // With the record full there is no entry behind: the call must come back, whatever it says.
    for (const quint8 count : {quint8(4), quint8(5), quint8(255)}) {
        driver.card().thermalPolicies.count = count;
        gpu.powerToTemperature(2, 5, 100, out);
        gpu.temperatureToPower(2, 5, 15, 100, out);
    }
}

void TestDevicePowerLink::linkAtTheDefaultGivesTheDefault()
{
    RawDriver driver;
    driver.card().powerPolicies.entries[0].maxPower = 100000;
    NvGpuControl gpu;
    NvLimitPair out;
    QVERIFY(gpu.powerToTemperature(2, 3, 100, out));
    QCOMPARE(out.temperature, 83.0f);
    QCOMPARE(out.power, 100.0f);
}

void TestDevicePowerLink::linkCalls()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvLimitPair out;
    const QStringList reads = {"GPU_ClientPowerPoliciesGetInfo gpu0 0x100B8", kThermalInfoRead};
    driver.forgetCalls();
    QVERIFY(gpu.powerToTemperature(2, 3, 100, out));
    QCOMPARE(driver.rawCalls(), reads);
    driver.forgetCalls();
    QVERIFY(gpu.temperatureToPower(2, 3, 80, 100, out));
    QCOMPARE(driver.rawCalls(), reads);
    driver.forgetCalls();
    QVERIFY(!gpu.powerToTemperature(2, 3, 130, out));
    QCOMPARE(driver.rawCalls(), reads.mid(0, 1));
}

QTEST_APPLESS_MAIN(TestDevicePowerLink)
#include "TestDevicePowerLink.moc"
