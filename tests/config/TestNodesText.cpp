#include "config/NodesText.h"

#include <QtTest>

using Nodes = QList<QPoint>;

class TestNodesText : public QObject
{
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void writes_data();
    void writes();
    void readsBackWhatItWrote();
    void longTextIsNoBurden();
};

void TestNodesText::reads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Nodes>("nodes");
    QTest::newRow("two rising nodes") << "30,40|60,80|" << Nodes{{30, 40}, {60, 80}};
    QTest::newRow("no bar after the last node") << "30,40|60,80" << Nodes{{30, 40}, {60, 80}};
    QTest::newRow("falling x empties all") << "30,40|20,80|" << Nodes{};
    QTest::newRow("falling y empties all") << "30,80|40,20|" << Nodes{};
    QTest::newRow("last of three falls") << "0,0|50,50|49,100|" << Nodes{};
    QTest::newRow("what follows a falling node is not read") << "30,40|20,80|90,90|" << Nodes{};
    QTest::newRow("equal nodes") << "30,40|30,40|" << Nodes{{30, 40}, {30, 40}};
    QTest::newRow("flat") << "30,40|90,40|" << Nodes{{30, 40}, {90, 40}};
    QTest::newRow("steep") << "30,0|30,100|" << Nodes{{30, 0}, {30, 100}};
    QTest::newRow("corners of the scale") << "0,0|100,100|" << Nodes{{0, 0}, {100, 100}};
    QTest::newRow("x above the scale") << "101,50|" << Nodes{};
    QTest::newRow("x below the scale") << "-1,50|" << Nodes{};
    QTest::newRow("y above the scale") << "50,101|" << Nodes{};
    QTest::newRow("y below the scale") << "50,-1|" << Nodes{};
    QTest::newRow("off the scale after good nodes") << "10,10|20,20|30,101|" << Nodes{};
    QTest::newRow("part without a comma is skipped") << "30|60,80|" << Nodes{{60, 80}};
    QTest::newRow("part with three fields is skipped") << "30,40,50|60,80|" << Nodes{{60, 80}};
    QTest::newRow("empty parts are skipped") << "||30,40||60,80||" << Nodes{{30, 40}, {60, 80}};
    QTest::newRow("field that is no number is 0") << "x,40|" << Nodes{{0, 40}};
    QTest::newRow("number that is no integer is 0") << "1.5,40|" << Nodes{{0, 40}};
    QTest::newRow("number too large for an integer is 0") << "99999999999,40|" << Nodes{{0, 40}};
    QTest::newRow("no number after a node falls to 0") << "30,40|60,x|" << Nodes{};
    QTest::newRow("both fields empty") << ",|" << Nodes{{0, 0}};
    QTest::newRow("blanks around numbers") << " 30 , 40 |" << Nodes{{30, 40}};
    QTest::newRow("empty text") << "" << Nodes{};
    QTest::newRow("bar alone") << "|" << Nodes{};
    QTest::newRow("semicolons") << "30;40|" << Nodes{};
    QTest::newRow("more nodes than the editor allows") << QStringLiteral("5,5|").repeated(12) << []() {
        Nodes nodes;
        for (int i = 0; i < 12; ++i)
            nodes.append({5, 5});
        return nodes;
    }();
}

void TestNodesText::reads()
{
    QFETCH(QString, text);
    QFETCH(Nodes, nodes);
    QCOMPARE(nodesFromText(text), nodes);
}

void TestNodesText::writes_data()
{
    QTest::addColumn<Nodes>("nodes");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << Nodes{} << "";
    QTest::newRow("one") << Nodes{{30, 40}} << "30,40|";
    QTest::newRow("two") << Nodes{{30, 40}, {60, 80}} << "30,40|60,80|";
    QTest::newRow("what reading would refuse is written all the same") << Nodes{{101, -1}, {0, 0}} << "101,-1|0,0|";
}

void TestNodesText::writes()
{
    QFETCH(Nodes, nodes);
    QFETCH(QString, text);
    QCOMPARE(textFromNodes(nodes), text);
}

void TestNodesText::readsBackWhatItWrote()
{
    const QString text = QStringLiteral("30,40|60,80|");
    QCOMPARE(textFromNodes(nodesFromText(text)), text);
}

void TestNodesText::longTextIsNoBurden()
{
    constexpr int kNodes = 200000;
    QCOMPARE(nodesFromText(QStringLiteral("7,7|").repeated(kNodes)).size(), kNodes);
}

QTEST_APPLESS_MAIN(TestNodesText)
#include "TestNodesText.moc"
