#include "monitor/graphs/Ovryn_BaseInfoRow.h"

#include "monitor/WidgetPainting.h"
#include "ui/PaintedTexts.h"

#include <QCheckBox>
#include <QSignalSpy>
#include <QtTest>

/// The caption row: its rectangles, what it paints where, and its check box.
class TestBaseInfoRow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useProgramFonts(); }

    void layout_data();
    void layout();
    void checkBoxTakesTitleAndColumns();
    void clickTellsTheNewState();
    void valuesStandInTheirSlots();
    void titleIsPaintedOnlyWithoutTheCheckBox();
    void loneTitleStandsAtTheLeftAtTwelvePixels();
    void fontsOfItsTexts();
    void paintsAtOnce();
    void tinyRowsPaintWithoutComplaint_data();
    void tinyRowsPaintWithoutComplaint();
};

void TestBaseInfoRow::layout_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("check");
    QTest::addColumn<QRect>("name");
    QTest::addColumn<QRect>("value");
    QTest::addColumn<QRect>("box");
    QTest::addColumn<QRect>("loneTitle");
    QTest::addColumn<QRect>("thirdSlot");
    QTest::addColumn<int>("valueFontPixels");
    QTest::newRow("row of the monitor page")
        << QSize(344, 52) << QRect(0, 0, 28, 52) << QRect(28, 0, 114, 52) << QRect(172, 0, 172, 52)
        << QRect(0, 0, 142, 52) << QRect(0, 0, 114, 52) << QRect(240, 0, 34, 52) << 14;
    QTest::newRow("caption of a graph") << QSize(315, 30) << QRect(0, 0, 26, 30) << QRect(26, 0, 105, 30)
                                        << QRect(157, 0, 157, 30) << QRect(0, 0, 131, 30) << QRect(0, 0, 105, 30)
                                        << QRect(219, 0, 31, 30) << 12;
    QTest::newRow("every division truncates")
        << QSize(23, 7) << QRect(0, 0, 1, 7) << QRect(1, 0, 7, 7) << QRect(11, 0, 11, 7) << QRect(0, 0, 8, 7)
        << QRect(0, 0, 7, 7) << QRect(15, 0, 2, 7) << 1;
}

void TestBaseInfoRow::layout()
{
    QFETCH(QSize, size);
    const InfoRowLayout rects = infoRowLayoutFor(size);
    QTEST(rects.checkRect, "check");
    QTEST(rects.nameRect, "name");
    QTEST(rects.valueRect, "value");
    QTEST(rects.checkBoxRect(), "box");
    QTEST(rects.loneTitleRect(), "loneTitle");
    QTEST(rects.slotRect(2), "thirdSlot");
    QTEST(rects.valueFontPixels(), "valueFontPixels");
}

void TestBaseInfoRow::checkBoxTakesTitleAndColumns()
{
    Ovryn_BaseInfoRow row;
    row.resize(344, 52);
    row.setText(QStringLiteral("GPU Clock"));
    row.grab(); // delivers the resize
    const auto *checkBox = row.findChild<QCheckBox *>();
    QCOMPARE(checkBox->text(), QStringLiteral("GPU Clock"));
    QCOMPARE(checkBox->geometry(), QRect(0, 0, 142, 52));
    QCOMPARE(checkBox->font().pixelSize(), 14);
}

void TestBaseInfoRow::clickTellsTheNewState()
{
    Ovryn_BaseInfoRow row;
    row.resize(344, 52);
    row.show();
    QVERIFY(QTest::qWaitForWindowExposed(&row));
    QSignalSpy checked(&row, SIGNAL(onChecked(bool)));
    auto *checkBox = row.findChild<QCheckBox *>();
    QTest::mouseClick(checkBox, Qt::LeftButton, Qt::NoModifier, QPoint(8, 26));
    QVERIFY(row.isChecked());
    row.setChecked(true); // no change, no signal
    row.setChecked(false);
    QVERIFY(!row.isChecked());
    QCOMPARE(checked.size(), 2);
    QCOMPARE(checked.at(0).at(0).toBool(), true);
    QCOMPARE(checked.at(1).at(0).toBool(), false);
}

void TestBaseInfoRow::valuesStandInTheirSlots()
{
    Ovryn_BaseInfoRow row;
    row.setCheckBoxVisible(false);
    row.resize(600, 40);
    const InfoRowLayout rects = infoRowLayoutFor(row.size());
    const auto usedSlots = [&] {
        const QImage image = paintingOf(row);
        QString used;
        for (int slot = 0; slot < 5; ++slot)
            used += whiteBounds(image, rects.slotRect(slot)).isEmpty() ? QLatin1Char('-') : QLatin1Char('#');
        return used;
    };
    QCOMPARE(usedSlots(), QStringLiteral("-#-#-")); // "MAX:" and "MIN:" alone
    row.setValues(QStringLiteral("1"), QString(), QString());
    QCOMPARE(usedSlots(), QStringLiteral("##-#-"));
    row.setValues(QString(), QStringLiteral("1"), QString());
    QCOMPARE(usedSlots(), QStringLiteral("-###-"));
    row.setValues(QString(), QString(), QStringLiteral("1"));
    QCOMPARE(usedSlots(), QStringLiteral("-#-##"));
    // Left-aligned and vertically centred.
    const QRect slot = rects.slotRect(4);
    const QRect ink = whiteBounds(paintingOf(row), slot);
    QVERIFY(ink.left() - slot.left() < slot.width() / 4);
    QVERIFY(qAbs(ink.center().y() - slot.center().y()) <= 2);
}

void TestBaseInfoRow::titleIsPaintedOnlyWithoutTheCheckBox()
{
    Ovryn_BaseInfoRow row;
    row.setText(QStringLiteral("HHH"));
    row.resize(344, 30);
    row.setCheckBoxVisible(false);
    const QRect left(0, 0, 172, 30);
    const QRect lone = whiteBounds(paintingOf(row), left);
    QVERIFY(lone.left() <= 2);    // at the far left
    QVERIFY(lone.height() <= 10); // capitals of 12 pixels
    QVERIFY(lone.height() >= 7);

    row.setCheckBoxVisible(true);
    const QRect beside = whiteBounds(paintingOf(row), left);
    QVERIFY(beside.left() >= 14); // the box's own text, behind its mark
    row.findChild<QCheckBox *>()->setText(QString());
    QVERIFY(whiteBounds(paintingOf(row), left.adjusted(24, 0, 0, 0)).isEmpty()); // the row itself paints no title
}

void TestBaseInfoRow::loneTitleStandsAtTheLeftAtTwelvePixels()
{
    Ovryn_BaseInfoRow row;
    row.resize(344, 30);
    row.setText(QStringLiteral("GPU Clock"));
    row.setCheckBoxVisible(false);
    QVERIFY(row.findChild<QCheckBox *>()->isHidden());
    const QRect left(0, 0, 172, 30); // the values stand right of it
    const QImage shown = paintingOf(row).copy(left);

    const auto titleAt = [&](int pixels, int x) {
        QImage image(row.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        QFont font = row.font();
        font.setPixelSize(pixels);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRect(x, 0, 114, 30), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("GPU Clock"));
        painter.end();
        return image.copy(left);
    };
    QCOMPARE(shown, titleAt(12, 0));
    QVERIFY(shown != titleAt(14, 0)); // the check box's size
    QVERIFY(shown != titleAt(12, 1));
}

void TestBaseInfoRow::fontsOfItsTexts()
{
    Ovryn_BaseInfoRow row;
    row.setFont(QFont(QStringLiteral("DS-Digital")));
    row.resize(344, 52);
    row.setText(QStringLiteral("GPU Clock"));
    row.setValues(QStringLiteral("1607"), QStringLiteral("1800"), QStringLiteral("139"));
    row.setCheckBoxVisible(false);
    PaintedTexts device(row.size());
    row.render(&device, QPoint(), QRegion(), QWidget::RenderFlags());
    QList<PaintedText> expected;
    for (const char *value : {"1607", "MAX:", "1800", "MIN:", "139"})
        expected.append({value, "Arial", 14, 50, false});
    expected.append({"GPU Clock", "DS-Digital", 12, 50, false}); // the row's own family
    QVERIFY2(device.texts == expected, qPrintable(described(device.texts)));
}

void TestBaseInfoRow::paintsAtOnce()
{
    Ovryn_BaseInfoRow row;
    row.resize(344, 52);
    row.show();
    QVERIFY(QTest::qWaitForWindowExposed(&row));
    QCoreApplication::processEvents();
    PaintCounter counter(row);
    row.setText(QStringLiteral("GPU Clock"));
    QCOMPARE(counter.paints, 1);
    row.setValues(QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"));
    QCOMPARE(counter.paints, 2);
    row.setCheckBoxVisible(false);
    QCOMPARE(counter.paints, 3);
}

void TestBaseInfoRow::tinyRowsPaintWithoutComplaint_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("no size") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("slot of no width") << QSize(9, 30);
}

void TestBaseInfoRow::tinyRowsPaintWithoutComplaint()
{
    QFETCH(QSize, size);
    Ovryn_BaseInfoRow row;
    row.resize(size);
    row.setCheckBoxVisible(false);
    row.setValues(QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"));
    QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    row.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    QCOMPARE(infoRowLayoutFor(size).valueFontPixels(), 1);
}

QTEST_MAIN(TestBaseInfoRow)
#include "TestBaseInfoRow.moc"
