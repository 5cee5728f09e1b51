#include "monitor/sampling/SampleRecords.h"

#include <QtTest>

#include <functional>

using Readings = std::function<void(CardReadings &)>;
using Field = qint32 NvMonitorValue::*;
using Group = NvMonitorValue NvCardBaseInfo::*;
Q_DECLARE_METATYPE(Readings)
Q_DECLARE_METATYPE(QVector<Readings>)
Q_DECLARE_METATYPE(Group)

namespace
{
QVector<qint32> words(const NvMonitorValue &value)
{
    return {value.maxValue, value.minValue, value.currentValue, value.upperLimit, value.lowerLimit};
}

/// A card at work, with extremes that differ from each other and from the readings.
CardReadings workingCard()
{
    CardReadings readings;
    readings.clocks = {1607, 4004, 0};
    readings.cooler.tachRpm = 1200;
    readings.thermal.currentTemp = 52;
    readings.usage.gpu = 41;
    readings.memory = {2097152, 8388608, 6291456, 8126464};
    readings.extremes.pairs[ExtremeGpuClock] = {1800, 139};
    readings.extremes.pairs[ExtremeMemoryClock] = {4100, 405};
    readings.extremes.pairs[ExtremeTachRpm] = {1400, 900};
    readings.extremes.pairs[ExtremeTemperature] = {71, 33};
    readings.extremes.pairs[ExtremeMemoryUsed] = {3145728, 1048576};
    readings.extremes.pairs[ExtremeGpuUsage] = {99, 1};
    readings.extremes.pairs[ExtremeSensor9E] = {61, 21};
    readings.extremes.pairs[ExtremeSensor90] = {62, 22};
    readings.extremes.pairs[ExtremeSensor96] = {63, 23};
    readings.extremes.pairs[ExtremeSensor92] = {64, -4};
    return readings;
}

Readings gpuClock(qint32 megahertz)
{
    return [megahertz](CardReadings &readings) {
        readings.clocks.gpuClock = megahertz;
    };
}

Readings memoryClock(qint32 megahertz)
{
    return [megahertz](CardReadings &readings) {
        readings.clocks.memoryClock = megahertz;
    };
}

Readings fan(qint32 rpm)
{
    return [rpm](CardReadings &readings) {
        readings.cooler.tachRpm = rpm;
    };
}

Readings memoryKB(qint32 used, qint32 total, qint32 highest, qint32 lowest)
{
    return [=](CardReadings &readings) {
        readings.memory.usedKB = used;
        readings.memory.totalKB = total;
        readings.extremes.pairs[ExtremeMemoryUsed] = {highest, lowest};
    };
}
} // namespace

/// The records of a cycle as functions of its readings.
class TestSampleRecords : public QObject
{
    Q_OBJECT

private slots:
    void groups_data();
    void groups();
    void scales_data();
    void scales();
    void latchesAreIndependent();
    void memory_data();
    void memory();
    void boardSensors();
};

void TestSampleRecords::groups_data()
{
    QTest::addColumn<Group>("group");
    QTest::addColumn<QVector<qint32>>("expected");
    using Words = QVector<qint32>;
    QTest::newRow("GPU clock") << &NvCardBaseInfo::gpuClock << Words{1800, 139, 1607, 2000, 0};
    QTest::newRow("memory clock") << &NvCardBaseInfo::memoryClock << Words{4100, 405, 4004, 5000, 0};
    QTest::newRow("fan speed") << &NvCardBaseInfo::fanSpeed << Words{1400, 900, 1200, 3000, 0};
    QTest::newRow("temperature") << &NvCardBaseInfo::temperature << Words{71, 33, 52, 104, 0};
    QTest::newRow("memory percent") << &NvCardBaseInfo::memoryUsagePercent << Words{37, 12, 25, 100, 0};
    QTest::newRow("GPU usage") << &NvCardBaseInfo::gpuUsage << Words{99, 1, 41, 100, 0};
    QTest::newRow("memory in MB, its scale is the card's total")
        << &NvCardBaseInfo::memoryUsage << Words{3072, 1024, 2048, 8192, 0};
}

void TestSampleRecords::groups()
{
    QFETCH(Group, group);
    QFETCH(QVector<qint32>, expected);
    ScaleLatches latches;
    QCOMPARE(words(cardBaseInfoOf(workingCard(), latches).*group), expected);
}

void TestSampleRecords::scales_data()
{
    QTest::addColumn<QVector<Readings>>("cycles");
    QTest::addColumn<Group>("group");
    QTest::addColumn<QVector<qint32>>("upperLimits");
    using Cycles = QVector<Readings>;
    using Limits = QVector<qint32>;
    const Group gpu = &NvCardBaseInfo::gpuClock;
    const Group memory = &NvCardBaseInfo::memoryClock;
    const Group fanSpeed = &NvCardBaseInfo::fanSpeed;
    QTest::newRow("GPU clock of exactly 2000 keeps the scale") << Cycles{gpuClock(2000)} << gpu << Limits{2000};
    QTest::newRow("GPU clock of 2001 raises it, and it stays when the clock falls")
        << Cycles{gpuClock(2001), gpuClock(2000), gpuClock(0)} << gpu << Limits{3000, 3000, 3000};
    QTest::newRow("memory clock of exactly 5000 keeps the scale")
        << Cycles{memoryClock(5000)} << memory << Limits{5000};
    QTest::newRow("memory clock of 5001 raises it, and it stays")
        << Cycles{memoryClock(5001), memoryClock(405)} << memory << Limits{10000, 10000};
    QTest::newRow("fan speed of 1500 keeps the scale") << Cycles{fan(1500)} << fanSpeed << Limits{3000};
    QTest::newRow("fan speed of 1501 raises it although it fits, and it stays")
        << Cycles{fan(1501), fan(0)} << fanSpeed << Limits{5000, 5000};
    QTest::newRow("fan speed is compared as unsigned") << Cycles{fan(-1)} << fanSpeed << Limits{5000};
    QTest::newRow("clocks are compared as signed") << Cycles{gpuClock(-1)} << gpu << Limits{2000};
}

void TestSampleRecords::scales()
{
    QFETCH(QVector<Readings>, cycles);
    QFETCH(Group, group);
    QFETCH(QVector<qint32>, upperLimits);
    ScaleLatches latches;
    QVector<qint32> seen;
    for (const Readings &change : cycles) {
        CardReadings readings = workingCard();
        change(readings);
        seen.append((cardBaseInfoOf(readings, latches).*group).upperLimit);
    }
    QCOMPARE(seen, upperLimits);
}

void TestSampleRecords::latchesAreIndependent()
{
    ScaleLatches latches;
    CardReadings readings = workingCard();
    readings.clocks.memoryClock = 5500;
    const NvCardBaseInfo info = cardBaseInfoOf(readings, latches);
    QCOMPARE(info.gpuClock.upperLimit, 2000);
    QCOMPARE(info.memoryClock.upperLimit, 10000);
    QCOMPARE(info.fanSpeed.upperLimit, 3000);
    QVERIFY(!latches.gpuClockScaleRaised);
    QVERIFY(latches.memClockScaleRaised);
    QVERIFY(!latches.fanScaleRaised);
}

void TestSampleRecords::memory_data()
{
    QTest::addColumn<Readings>("change");
    QTest::addColumn<QVector<qint32>>("percent");
    QTest::addColumn<QVector<qint32>>("megabytes");
    using Words = QVector<qint32>;
    constexpr qint32 lowest = std::numeric_limits<qint32>::min();
    constexpr qint32 highest = std::numeric_limits<qint32>::max();
    QTest::newRow("a total of 0 gives 0 percent and no division")
        << memoryKB(5000, 0, 6000, 4000) << Words{0, 0, 0, 100, 0} << Words{5, 3, 4, 0, 0};
    QTest::newRow("nothing read at all") << memoryKB(0, 0, 0, 0) << Words{0, 0, 0, 100, 0} << Words{0, 0, 0, 0, 0};
    QTest::newRow("a TCC card's total without a figure in use")
        << memoryKB(0, 8388608, 0, 0) << Words{0, 0, 0, 100, 0} << Words{0, 0, 0, 8192, 0};
    QTest::newRow("percentages are cut, not rounded")
        << memoryKB(999, 1000, 1000, 9) << Words{100, 0, 99, 100, 0} << Words{0, 0, 0, 0, 0};
    // 29 / 100 * 100.0 is a hair below 29 in double precision
    QTest::newRow("divided first, multiplied then")
        << memoryKB(29, 100, 57, 58) << Words{56, 57, 28, 100, 0} << Words{0, 0, 0, 0, 0};
    QTest::newRow("megabytes are cut") << memoryKB(2047, 4095, 2047, 1023) << Words{49, 24, 49, 100, 0}
                                       << Words{1, 0, 1, 3, 0};
    QTest::newRow("negative extremes are cut towards zero")
        << memoryKB(1024, 102400, -1, -1025) << Words{0, -1, 1, 100, 0} << Words{0, -1, 1, 100, 0};
    QTest::newRow("used and total are unsigned words")
        << memoryKB(-1024, -1, 0, 0) << Words{0, 0, 99, 100, 0} << Words{0, 0, 4194303, 4194303, 0};
    QTest::newRow("extremes that were never fed stay what they are")
        << memoryKB(0, 1, lowest, highest) << Words{lowest, highest, 0, 100, 0}
        << Words{lowest / 1024, highest / 1024, 0, 0, 0};
    QTest::newRow("a percentage beyond 32 bits is held at the border")
        << memoryKB(highest, 1, highest, lowest) << Words{highest, lowest, highest, 100, 0}
        << Words{highest / 1024, lowest / 1024, highest >> 10, 0, 0};
}

void TestSampleRecords::memory()
{
    QFETCH(Readings, change);
    QFETCH(QVector<qint32>, percent);
    QFETCH(QVector<qint32>, megabytes);
    CardReadings readings = workingCard();
    change(readings);
    ScaleLatches latches;
    const NvCardBaseInfo info = cardBaseInfoOf(readings, latches);
    QCOMPARE(words(info.memoryUsagePercent), percent);
    QCOMPARE(words(info.memoryUsage), megabytes);
}

void TestSampleRecords::boardSensors()
{
    const BoardTempCompleteInfo info = boardTempInfoOf({51, 52, 53, -4}, workingCard().extremes);
    QCOMPARE(words(info.sensor9E), (QVector<qint32>{61, 21, 51, 100, 0}));
    QCOMPARE(words(info.sensor90), (QVector<qint32>{62, 22, 52, 100, 0}));
    QCOMPARE(words(info.sensor96), (QVector<qint32>{63, 23, 53, 100, 0}));
    QCOMPARE(words(info.sensor92), (QVector<qint32>{64, -4, -4, 100, 0}));
}

QTEST_APPLESS_MAIN(TestSampleRecords)
#include "TestSampleRecords.moc"
