#include "guard/WatchList.h"

#include <QtTest>

/// The lines between the program and its fan guard.
class TestWatchList : public QObject
{
    Q_OBJECT

private slots:
    void lines();
    void applies_data();
    void applies();
};

void TestWatchList::lines()
{
    QCOMPARE(WatchList::watchLine(0), std::string("watch 0"));
    QCOMPARE(WatchList::releaseLine(63), std::string("release 63"));
}

void TestWatchList::applies_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QList<qint32>>("cards");
    const auto row = [](const char *name, const QStringList &lines, const QList<qint32> &cards) {
        QTest::newRow(name) << lines << cards;
    };
    row("nothing yet", {}, {});
    row("a card", {"watch 0"}, {0});
    row("two cards", {"watch 3", "watch 1"}, {1, 3});
    row("the same card twice", {"watch 2", "watch 2"}, {2});
    row("released", {"watch 2", "watch 3", "release 2"}, {3});
    row("released without a watch", {"release 2"}, {});
    row("watched again", {"watch 2", "release 2", "watch 2"}, {2});
    row("other words", {"watch 2", "unwatch 2", "", "watch", "watch x", "release"}, {2});
    row("no card of that number", {"watch -1", "watch 99999999999"}, {});
}

void TestWatchList::applies()
{
    QFETCH(QStringList, lines);
    QFETCH(QList<qint32>, cards);
    WatchList list;
    for (const QString &line : lines)
        list.apply(line.toStdString());
    QCOMPARE(QList<qint32>(list.cards().begin(), list.cards().end()), cards);
}

QTEST_APPLESS_MAIN(TestWatchList)
#include "TestWatchList.moc"
