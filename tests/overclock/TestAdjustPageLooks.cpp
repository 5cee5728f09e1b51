#include "overclock/AdjustPageWorld.h"
#include "overclock/Ovryn_UserDefineFanSpeed.h"
#include "support/ModalAnswer.h"
#include "ui/Fonts.h"

#include <QStyleFactory>
#include <QtTest>

/// The page to look at: texts and fonts of both languages, where the widgets lie, and the glass.
class TestAdjustPageLooks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void language_data();
    void language();
    void geometry();
    void frame();
    void buttonsOverTheCurve();
};

void TestAdjustPageLooks::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    substituteFontFamilies();
    registerApplicationFonts();
}

void TestAdjustPageLooks::language_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QStringList>("captions");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("prompt");

    QTest::newRow("Chinese") << 0 << QStringList({"应用", "取消", "默认"}) << "微软雅黑"
                             << "确定应用当前设置？";
    QTest::newRow("English") << 1 << QStringList({"Apply", "Cancel", "Default"}) << "Arial"
                             << "Apply these settings ?";
    QTest::newRow("any other number is English") << 7 << QStringList({"Apply", "Cancel", "Default"}) << "Arial"
                                                 << "Apply these settings ?";
}

void TestAdjustPageLooks::language()
{
    QFETCH(int, number);
    QFETCH(QStringList, captions);
    QFETCH(QString, family);
    AdjustPageWorld world;
    world.open();
    Ovryn_LanguageTable table;
    table.setLanguage(number);
    world.page->setLanguage(table.overClock, number);

    const char *const names[] = {"btnApply", "btnCancel", "btnDefault"};
    for (int index = 0; index < 3; ++index) {
        const QPushButton *button = world.button(names[index]);
        QCOMPARE(button->text(), captions.at(index));
        QCOMPARE(button->font().family(), family);
        QCOMPARE(button->font().weight(), 57);
        QCOMPARE(button->font().pixelSize(), button->height() - 3);
    }
    for (int index = 0; index < AdjustRowCount; ++index)
        QCOMPARE(world.row(static_cast<AdjustRowIndex>(index))->font().family(), family);
    for (const char *name : {"btnFanAuto", "btnFanManual", "btnFanUserDefined"}) {
        const QPushButton *button = world.button(name);
        QCOMPARE(button->font().family(), QString("Arial"));
        QCOMPARE(button->font().weight(), 50);
        QCOMPARE(button->font().pixelSize(), button->height() - 1);
    }
    ModalAnswer answers({"msgBoxNoBtn"});
    world.page->onBtnApplyClick();
    QTEST(answers.texts().value(0), "prompt");
}

void TestAdjustPageLooks::geometry()
{
    AdjustPageWorld world;
    world.open();
    for (const QSize &size : {QSize(382, 394), QSize(500, 600)}) {
        world.page->resize(size);
        const AdjustPageLayout rects = adjustPageLayoutFor(size);
        for (int index = 0; index < AdjustRowCount; ++index)
            QCOMPARE(world.row(static_cast<AdjustRowIndex>(index))->geometry(),
                     rects.rows[static_cast<std::size_t>(index)]);
        QCOMPARE(world.find<Ovryn_UserDefineFanSpeed>("fanCurveEditor")->geometry(), rects.editor);
        QCOMPARE(world.button("btnApply")->geometry(), rects.applyButton);
        QCOMPARE(world.button("btnCancel")->geometry(), rects.cancelButton);
        QCOMPARE(world.button("btnDefault")->geometry(), rects.defaultButton);
        QCOMPARE(world.button("btnFanAuto")->geometry(), rects.autoButton);
        QCOMPARE(world.button("btnFanManual")->geometry(), rects.manualButton);
        QCOMPARE(world.button("btnFanUserDefined")->geometry(), rects.userDefinedButton);
        QCOMPARE(world.button("btnUserDefineConfig")->geometry(), rects.configButton);
        QCOMPARE(world.linkBox()->geometry(), rects.linkBox);
    }
    world.page->resize(0, 0); // nothing to paint, and no harm
    QCOMPARE(world.row(RowGpuClock)->height(), 0);
}

void TestAdjustPageLooks::frame()
{
    AdjustPageWorld world;
    world.open();
    QImage image(world.page->size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    world.page->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    const QColor glass(252, 10, 53, 60);
    const QColor edge(252, 10, 53, 255);
    const auto isNear = [&image](int x, int y, const QColor &wanted) {
        const QColor found = image.pixelColor(x, y);
        return qAbs(found.alpha() - wanted.alpha()) <= 1 && qAbs(found.red() - wanted.red()) <= 4 &&
               qAbs(found.green() - wanted.green()) <= 4 && qAbs(found.blue() - wanted.blue()) <= 4;
    };
    QVERIFY(isNear(20, 350, glass));
    QVERIFY(isNear(2, 200, edge));
    QVERIFY(isNear(150, 2, edge));
    QVERIFY(isNear(363, 374, edge)); // on the cut, halfway
    QCOMPARE(image.pixelColor(380, 392).alpha(), 0);
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
}

void TestAdjustPageLooks::buttonsOverTheCurve()
{
    AdjustPageWorld world;
    world.open();
    world.click("btnUserDefineConfig");
    for (const char *name : {"btnApply", "btnCancel", "btnDefault"}) {
        const QPushButton *button = world.button(name);
        QCOMPARE(world.page->childAt(button->geometry().center()), static_cast<const QWidget *>(button));
    }
}

QTEST_MAIN(TestAdjustPageLooks)
#include "TestAdjustPageLooks.moc"
