#include "overclock/FanCurve.h"

#include <QTest>

#include <limits>

using Curve = QList<QPoint>;

class TestFanCurve : public QObject
{
    Q_OBJECT

private slots:
    void defaultCurve();
    void hasValidEnds_data();
    void hasValidEnds();
    void levelFor_data();
    void levelFor();
};

namespace
{

const Curve kDefault = {{0, 0}, {30, 20}, {50, 50}, {80, 90}, {100, 100}};

} // namespace

void TestFanCurve::defaultCurve()
{
    QCOMPARE(FanCurve::defaultCurve(), kDefault);
    QVERIFY(FanCurve::hasValidEnds(FanCurve::defaultCurve()));
}

void TestFanCurve::hasValidEnds_data()
{
    QTest::addColumn<Curve>("curve");
    QTest::addColumn<bool>("valid");

    QTest::newRow("no node") << Curve{} << false;
    QTest::newRow("one node") << Curve{{0, 0}} << false;
    QTest::newRow("one node, the last one") << Curve{{100, 100}} << false;
    QTest::newRow("the two ends") << Curve{{0, 0}, {100, 100}} << true;
    QTest::newRow("last node too low") << Curve{{0, 0}, {100, 90}} << false;
    QTest::newRow("last node too cool") << Curve{{0, 0}, {90, 100}} << false;
    QTest::newRow("first node too high") << Curve{{0, 1}, {100, 100}} << false;
    QTest::newRow("first node too warm") << Curve{{1, 0}, {100, 100}} << false;
    QTest::newRow("ends swapped") << Curve{{100, 100}, {0, 0}} << false;
    QTest::newRow("the nodes between are not looked at") << Curve{{0, 0}, {70, 10}, {20, 5}, {100, 100}} << true;
}

void TestFanCurve::hasValidEnds()
{
    QFETCH(Curve, curve);
    QTEST(FanCurve::hasValidEnds(curve), "valid");
}

void TestFanCurve::levelFor_data()
{
    QTest::addColumn<Curve>("curve");
    QTest::addColumn<int>("temperature");
    QTest::addColumn<int>("level");
    const int lowest = std::numeric_limits<int>::min();
    const int highest = std::numeric_limits<int>::max();

    QTest::newRow("default curve at 0") << kDefault << 0 << 0;
    QTest::newRow("default curve at the node 30") << kDefault << 30 << 20;
    QTest::newRow("default curve at 65") << kDefault << 65 << 70;
    QTest::newRow("default curve at 100") << kDefault << 100 << 100;
    QTest::newRow("40 between (30,20) and (50,50)") << kDefault << 40 << 35;
    QTest::newRow("31: 21.5 is cut, not rounded") << kDefault << 31 << 21;
    QTest::newRow("81: 90.5 is cut, not rounded") << kDefault << 81 << 90;
    // 29 / 100 lies a little below its decimal figure as a double, and so does 100 times that
    QTest::newRow("29 on the straight line: the division comes before the multiplication")
        << Curve{{0, 0}, {100, 100}} << 29 << 28;
    QTest::newRow("1: 0.67 is cut to 0") << kDefault << 1 << 0;
    QTest::newRow("120 counts as 100") << kDefault << 120 << 100;
    QTest::newRow("-5 counts as 0") << kDefault << -5 << 0;
    QTest::newRow("the largest integer counts as 100") << kDefault << highest << 100;
    QTest::newRow("the smallest integer counts as 0") << kDefault << lowest << 0;

    const Curve step = {{0, 0}, {50, 40}, {50, 60}, {100, 100}};
    QTest::newRow("a step gives its lower node at its temperature") << step << 50 << 40;
    QTest::newRow("just below a step") << step << 49 << 39;
    QTest::newRow("just above a step") << step << 51 << 60;
    QTest::newRow("a step at the start gives its upper node") << Curve{{0, 0}, {0, 30}, {100, 100}} << 0 << 30;
    QTest::newRow("two steps at the start: the first decides")
        << Curve{{0, 0}, {0, 30}, {0, 60}, {100, 100}} << 0 << 30;
    QTest::newRow("-5 counts as 0 where the curve starts with a step")
        << Curve{{0, 0}, {0, 30}, {100, 100}} << -5 << 30;
    QTest::newRow("120 counts as 100 where the curve ends with a step")
        << Curve{{0, 0}, {100, 30}, {100, 100}} << 120 << 30;
    QTest::newRow("a step at the end") << Curve{{0, 0}, {100, 30}, {100, 100}} << 100 << 30;
    QTest::newRow("a flat part") << Curve{{0, 0}, {20, 45}, {60, 45}, {100, 100}} << 37 << 45;
    QTest::newRow("the same node three times") << Curve{{0, 0}, {50, 50}, {50, 50}, {50, 50}, {100, 100}} << 50 << 50;

    QTest::newRow("no node") << Curve{} << 40 << 0;
    QTest::newRow("one node") << Curve{{40, 70}} << 40 << 0;
    QTest::newRow("below the first node") << Curve{{20, 20}, {80, 80}} << 10 << 0;
    QTest::newRow("above the last node") << Curve{{20, 20}, {80, 80}} << 90 << 0;
    QTest::newRow("falling nodes: the first segment that holds it")
        << Curve{{0, 0}, {70, 70}, {20, 5}, {100, 100}} << 50 << 50;
    QTest::newRow("nodes at the ends of the integers")
        << Curve{{0, 0}, {lowest, lowest}, {highest, highest}, {100, 100}} << 0 << 0;
}

void TestFanCurve::levelFor()
{
    QFETCH(Curve, curve);
    QFETCH(int, temperature);
    QTEST(FanCurve::levelFor(curve, temperature), "level");
}

QTEST_APPLESS_MAIN(TestFanCurve)
#include "TestFanCurve.moc"
