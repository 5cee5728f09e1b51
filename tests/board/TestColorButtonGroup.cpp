#include "board/led/Ovryn_ColorButton.h"
#include "board/led/Ovryn_ColorButtonGroup.h"

#include <QSignalSpy>
#include <QtTest>

#include <functional>

using Buttons = QList<Ovryn_ColorButton *>;
using Steps = std::function<void(class GroupOfTen &)>;
Q_DECLARE_METATYPE(Steps)

/// A group of ten buttons, named by their numbers.
class GroupOfTen
{
public:
    GroupOfTen()
    {
        for (int i = 0; i < 10; ++i) {
            members << new Ovryn_ColorButton(&parent);
            group.addButton(members.last());
        }
        group.setLimit(7);
    }

    void ask(int number, bool wanted) { group.setButtonChecked(members.at(number), wanted); }
    void askAll(const QList<int> &numbers)
    {
        for (int number : numbers)
            ask(number, true);
    }
    void click(int number) { members.at(number)->onTimeOut(); }
    void multiple() { group.setMode(Ovryn_ColorButtonGroup::Multiple); }
    void single() { group.setMode(Ovryn_ColorButtonGroup::Single); }

    [[nodiscard]] QList<int> checkedOnes() const
    {
        QList<int> numbers;
        for (int i = 0; i < members.size(); ++i) {
            if (members.at(i)->isChecked())
                numbers << i;
        }
        return numbers;
    }
    [[nodiscard]] QList<int> selectedOnes() const
    {
        QList<int> numbers;
        for (Ovryn_ColorButton *button : group.selectedButtons())
            numbers << members.indexOf(button);
        return numbers;
    }

    QWidget parent;
    Buttons members;
    Ovryn_ColorButtonGroup group;
};

/// The rules of what is selected.
class TestColorButtonGroup : public QObject
{
    Q_OBJECT

private slots:
    void rules_data();
    void rules();
    void defaults();
    void strangersAreIgnored();
    void buttonComesInUnchecked();
    void limitBelowOneCountsAsOne_data();
    void limitBelowOneCountsAsOne();
    void otherModesAreIgnored();
};

void TestColorButtonGroup::rules_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<QList<int>>("checked");
    QTest::addColumn<QList<int>>("selected"); // oldest first

    using G = GroupOfTen;
    using L = QList<int>;
    const auto row = [](const char *name, const Steps &steps, const L &checked, const L &selected) {
        QTest::newRow(name) << steps << checked << selected;
    };
    row("fresh", [](G &) {}, {}, {});

    row("single: one", [](G &g) { g.ask(3, true); }, {3}, {3});
    row("single: the second takes over", [](G &g) { g.askAll({3, 5}); }, {5}, {5});
    row("single: the selected one again", [](G &g) { g.askAll({3, 3}); }, {3}, {3});
    row("single: a click on the selected one leaves it",
        [](G &g) {
            g.click(3);
            g.click(3);
        },
        {3}, {3});
    row("single: clearing an unselected one",
        [](G &g) {
            g.ask(3, true);
            g.ask(4, false);
        },
        {3}, {3});
    row("single: the only one stays",
        [](G &g) {
            g.ask(3, true);
            g.ask(3, false);
        },
        {3}, {3});

    row("multiple: in order of selection",
        [](G &g) {
            g.multiple();
            g.askAll({5, 2, 8});
        },
        {2, 5, 8}, {5, 2, 8});
    row("multiple: selected again keeps its place",
        [](G &g) {
            g.multiple();
            g.askAll({5, 2, 5});
        },
        {2, 5}, {5, 2});
    row("multiple: cleared",
        [](G &g) {
            g.multiple();
            g.askAll({5, 2});
            g.ask(5, false);
        },
        {2}, {2});
    row("multiple: the last one can't be cleared",
        [](G &g) {
            g.multiple();
            g.ask(5, true);
            g.ask(5, false);
        },
        {5}, {5});
    row("multiple: clearing an unselected one",
        [](G &g) {
            g.multiple();
            g.askAll({5, 2});
            g.ask(7, false);
        },
        {2, 5}, {5, 2});
    row("multiple: clearing none",
        [](G &g) {
            g.multiple();
            g.ask(7, false);
        },
        {}, {});
    row("multiple: seven",
        [](G &g) {
            g.multiple();
            g.askAll({6, 5, 4, 3, 2, 1, 0});
        },
        {0, 1, 2, 3, 4, 5, 6}, {6, 5, 4, 3, 2, 1, 0});
    row("multiple: the eighth drops the first",
        [](G &g) {
            g.multiple();
            g.askAll({6, 5, 4, 3, 2, 1, 0, 9});
        },
        {0, 1, 2, 3, 4, 5, 9}, {5, 4, 3, 2, 1, 0, 9});
    row("multiple: a lower limit drops one at a time",
        [](G &g) {
            g.multiple();
            g.askAll({1, 2, 3, 4});
            g.group.setLimit(2);
            g.ask(5, true);
        },
        {2, 3, 4, 5}, {2, 3, 4, 5});

    row("to multiple keeps the selection",
        [](G &g) {
            g.ask(4, true);
            g.multiple();
        },
        {4}, {4});
    row("to single keeps the last",
        [](G &g) {
            g.multiple();
            g.askAll({5, 2, 8});
            g.single();
        },
        {8}, {8});
    row("to single with one",
        [](G &g) {
            g.multiple();
            g.ask(5, true);
            g.single();
        },
        {5}, {5});
    row("to single with none checks the first alone", [](G &g) { g.single(); }, {0}, {});
    row("that first one can't be cleared",
        [](G &g) {
            g.single();
            g.click(0);
        },
        {0}, {});
    row("that first one gives way",
        [](G &g) {
            g.single();
            g.ask(4, true);
        },
        {4}, {4});
    row("that first one stays beside a multiple selection",
        [](G &g) {
            g.single();
            g.multiple();
            g.ask(4, true);
        },
        {0, 4}, {4});
    row("single: one of two checked is cleared and stays selected",
        [](G &g) {
            g.single();
            g.multiple();
            g.ask(4, true);
            g.single();
            g.ask(4, false);
        },
        {0}, {4});
}

void TestColorButtonGroup::rules()
{
    QFETCH(Steps, steps);
    GroupOfTen group;
    steps(group);
    QTEST(group.checkedOnes(), "checked");
    QTEST(group.selectedOnes(), "selected");
}

void TestColorButtonGroup::defaults()
{
    Ovryn_ColorButtonGroup group;
    QCOMPARE(group.mode(), 0);
    QCOMPARE(group.selectedButtons(), Buttons());
    group.setMode(Ovryn_ColorButtonGroup::Single); // no first one to check
    group.setMode(Ovryn_ColorButtonGroup::Multiple);
    QCOMPARE(group.mode(), 1);
}

void TestColorButtonGroup::strangersAreIgnored()
{
    GroupOfTen ten;
    Ovryn_ColorButton stranger;
    ten.group.setButtonChecked(&stranger, true);
    ten.group.setButtonChecked(nullptr, true);
    ten.group.addButton(nullptr);
    ten.group.addButton(ten.members.first());
    QVERIFY(!stranger.isChecked());
    QCOMPARE(ten.selectedOnes(), QList<int>());
    ten.multiple();
    ten.askAll({0, 0});
    QCOMPARE(ten.selectedOnes(), QList<int>{0}); // it is in only once
}

void TestColorButtonGroup::buttonComesInUnchecked()
{
    Ovryn_ColorButton button;
    button.setCheck(true);
    QSignalSpy changed(&button, SIGNAL(stateChanged(bool)));
    Ovryn_ColorButtonGroup group;
    group.addButton(&button);
    QVERIFY(!button.isChecked());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(group.selectedButtons(), Buttons());
}

void TestColorButtonGroup::limitBelowOneCountsAsOne_data()
{
    QTest::addColumn<int>("limit");
    QTest::newRow("0") << 0;
    QTest::newRow("-3") << -3;
    QTest::newRow("1") << 1;
}

void TestColorButtonGroup::limitBelowOneCountsAsOne()
{
    QFETCH(int, limit);
    GroupOfTen ten;
    ten.group.setLimit(limit);
    ten.multiple();
    ten.askAll({4, 6});
    QCOMPARE(ten.selectedOnes(), QList<int>{6});
    QCOMPARE(ten.checkedOnes(), QList<int>{6});
}

void TestColorButtonGroup::otherModesAreIgnored()
{
    GroupOfTen ten;
    ten.multiple();
    ten.askAll({4, 6});
    ten.group.setMode(2);
    ten.group.setMode(-1);
    QCOMPARE(ten.group.mode(), 1);
    QCOMPARE(ten.selectedOnes(), QList<int>({4, 6}));
}

QTEST_MAIN(TestColorButtonGroup)
#include "TestColorButtonGroup.moc"
