#include "updater/RemainingTime.h"

#include <QTest>

#include <limits>

/// How long a transfer still takes.
class TestRemainingTime : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsKnownFirst();
    void evenRate_data();
    void evenRate();
    void followsTheRateOfTheLastSeconds();
    void standstill();
    void atLeastASecondWhileSomethingIsLeft();
    void restart();
    void extremes();
};

void TestRemainingTime::nothingIsKnownFirst()
{
    RemainingTime time;
    QCOMPARE(time.secondsFor(1000), 0);
    time.add(0, 0);
    QCOMPARE(time.secondsFor(1000), 0);
    time.add(0, 500); // no time has passed: no rate
    QCOMPARE(time.secondsFor(1000), 0);
}

void TestRemainingTime::evenRate_data()
{
    QTest::addColumn<int>("bytesPerSecond");
    QTest::addColumn<int>("total");
    QTest::addColumn<int>("seconds");
    QTest::newRow("a minute") << 1000 << 65000 << 60;
    QTest::newRow("three seconds") << 1000 << 8000 << 3;
    QTest::newRow("half a second counts as one") << 1000 << 5500 << 1;
    QTest::newRow("complete") << 1000 << 5000 << 0;
    QTest::newRow("more than announced") << 1000 << 4000 << 0;
}

void TestRemainingTime::evenRate()
{
    QFETCH(int, bytesPerSecond);
    QFETCH(int, total);
    RemainingTime time;
    for (int second = 0; second <= 5; ++second)
        time.add(second * 1000, qint64(second) * bytesPerSecond);
    QTEST(time.secondsFor(total), "seconds");
}

void TestRemainingTime::followsTheRateOfTheLastSeconds()
{
    RemainingTime time;
    qint64 bytes = 0;
    qint64 ms = 0;
    for (; ms <= 60000; ms += 1000, bytes += 100000)
        time.add(ms, bytes);
    const int fast = time.secondsFor(bytes + 100000);
    QVERIFY2(fast >= 1 && fast <= 3, qPrintable(QString::number(fast)));
    for (; ms <= 180000; ms += 1000, bytes += 1000)
        time.add(ms, bytes);
    const int slow = time.secondsFor(bytes + 100000);
    QVERIFY2(slow >= 95 && slow <= 105, qPrintable(QString::number(slow)));
}

void TestRemainingTime::standstill()
{
    RemainingTime time;
    for (int second = 0; second <= 60; ++second)
        time.add(second * 1000, 5000);
    QCOMPARE(time.secondsFor(10000), 0);
}

void TestRemainingTime::atLeastASecondWhileSomethingIsLeft()
{
    RemainingTime time;
    time.add(0, 0);
    time.add(10000, 1000000000);
    QCOMPARE(time.secondsFor(1000000001), 1);
}

void TestRemainingTime::restart()
{
    RemainingTime time;
    time.add(0, 0);
    time.add(5000, 5000);
    QVERIFY(time.secondsFor(10000) > 0);
    time.restart();
    QCOMPARE(time.secondsFor(10000), 0);
    time.add(6000, 0);
    time.add(8000, 200);
    QCOMPARE(time.secondsFor(1200), 10);
}

void TestRemainingTime::extremes()
{
    RemainingTime time;
    time.add(0, 0);
    time.add(9000, 1);
    QVERIFY(time.secondsFor(std::numeric_limits<qint64>::max()) >= 0);
    QVERIFY(time.secondsFor(-1) == 0);
    time.add(std::numeric_limits<qint64>::max() / 2, 2);
    QVERIFY(time.secondsFor(std::numeric_limits<qint64>::max()) >= 0);
}

QTEST_GUILESS_MAIN(TestRemainingTime)
#include "TestRemainingTime.moc"
