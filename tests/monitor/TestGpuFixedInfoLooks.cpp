#include "monitor/GpuFixedInfoPage.h"
#include "monitor/WidgetPainting.h"
#include "support/CheckedDriver.h"
#include "ui/Fonts.h"

#include <memory>

namespace
{

using Page = GpuFixedInfoPage;

QRect inPage(const QWidget *part, const QWidget &page)
{
    return QRect(part->mapTo(&page, QPoint(0, 0)), part->size());
}

} // namespace

/// The card information page to the eye: fonts, places and painting.
class TestGpuFixedInfoLooks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { driver = std::make_unique<CheckedDriver>(); }
    void cleanup() { driver.reset(); }

    void pageStyle();
    void captionFonts_data();
    void captionFonts();
    void layout_data();
    void layout();
    void contentTakesItsPlace();
    void nothingIsClipped_data();
    void nothingIsClipped();
    void columnsAndRowsAlign_data();
    void columnsAndRowsAlign();
    void columnsFollowTheLanguage();
    void background_data();
    void background();
    void versionStandsInTheBand();
    void titleFollowsTheLanguage();
    void emptySizes_data();
    void emptySizes();

private:
    std::unique_ptr<CheckedDriver> driver;
};

void TestGpuFixedInfoLooks::initTestCase()
{
    useProgramFonts();
    registerApplicationFonts();
}

void TestGpuFixedInfoLooks::pageStyle()
{
    const Page page;
    QCOMPARE(page.widget.styleSheet(),
             QStringLiteral("QLabel{font-family: \"Arial\";font-size: 12px;}ReadonlyLineEdit{font-size: 10px;}"));
    for (const char *name : kLines)
        QCOMPARE(page.line(name)->font().pixelSize(), 10);
    for (const char *name : kValueLabels) {
        QCOMPARE(page.label(name)->font().pixelSize(), 12);
        QCOMPARE(page.label(name)->font().family(), QStringLiteral("Arial"));
    }
}

void TestGpuFixedInfoLooks::captionFonts_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::addColumn<QString>("family");
    QTest::newRow("English") << kLanguageEnglish << "Arial";
    QTest::newRow("Chinese") << kLanguageChinese << QStringLiteral("微软雅黑");
    QTest::newRow("any other number is English") << 7 << "Arial";
}

void TestGpuFixedInfoLooks::captionFonts()
{
    QFETCH(LanguageType, language);
    QFETCH(QString, family);
    Page page(language == kLanguageChinese ? kLanguageEnglish : kLanguageChinese);
    page.speak(language);
    for (const char *name : kCaptions) {
        QCOMPARE(page.label(name)->font().family(), family);
        QCOMPARE(page.label(name)->font().pixelSize(), 12);
    }
}

void TestGpuFixedInfoLooks::layout_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("margin");
    QTest::addColumn<QRect>("content");
    QTest::addColumn<QRect>("version");
    QTest::newRow("as in the window") << kPage << 39 << 25 << QRect(25, 39, 332, 316) << QRect(254, 0, 127, 39);
    QTest::newRow("divisions truncate") << QSize(599, 999) << 99 << 39 << QRect(39, 99, 521, 801)
                                        << QRect(398, 0, 199, 99);
    QTest::newRow("nothing") << QSize(0, 0) << 0 << 0 << QRect(0, 0, 0, 0) << QRect(0, 0, 0, 0);
}

void TestGpuFixedInfoLooks::layout()
{
    QFETCH(QSize, size);
    const GpuFixedInfoLayout rects = gpuFixedInfoLayoutFor(size);
    QTEST(rects.band, "band");
    QTEST(rects.margin, "margin");
    QTEST(rects.content, "content");
    QTEST(rects.versionRect, "version");
    QCOMPARE(rects.fullWidth, size.width());
    QCOMPARE(rects.titleRect, QRect(size.width() / 20, 0, size.width(), rects.band));
}

void TestGpuFixedInfoLooks::contentTakesItsPlace()
{
    const Page page;
    QCOMPARE(page.widget.findChild<QWidget *>(QStringLiteral("verticalLayoutWidget"))->geometry(),
             QRect(25, 39, 332, 316));
}

void TestGpuFixedInfoLooks::nothingIsClipped_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::newRow("English") << kLanguageEnglish;
    QTest::newRow("Chinese") << kLanguageChinese;
}

void TestGpuFixedInfoLooks::nothingIsClipped()
{
    QFETCH(LanguageType, language);
    Page page(language);
    page.widget.recvGpuFixedInfo(wideInfo());
    const QRect content = gpuFixedInfoLayoutFor(kPage).content;
    for (const auto *label : page.widget.findChildren<QLabel *>()) {
        QVERIFY2(label->sizeHint().width() <= label->width(), qPrintable(label->text()));
        QVERIFY2(label->fontMetrics().height() <= label->contentsRect().height(), qPrintable(label->text()));
        QVERIFY2(content.contains(inPage(label, page.widget)), qPrintable(label->objectName()));
    }
    for (const auto *line : page.widget.findChildren<ReadonlyLineEdit *>()) {
        // The edge, and the two pixels that a line keeps at either side of its text.
        const int room = line->width() - 2 * (1 + 2);
        QVERIFY2(
            line->fontMetrics().horizontalAdvance(line->text()) <= room,
            qPrintable(
                line->text() +
                QStringLiteral(" of %1 in %2").arg(line->fontMetrics().horizontalAdvance(line->text())).arg(room)));
        QVERIFY2(content.contains(inPage(line, page.widget)), qPrintable(line->objectName()));
    }
}

void TestGpuFixedInfoLooks::columnsAndRowsAlign_data()
{
    nothingIsClipped_data();
}

void TestGpuFixedInfoLooks::columnsAndRowsAlign()
{
    QFETCH(LanguageType, language);
    Page page(language);
    page.widget.recvGpuFixedInfo(wideInfo());
    const auto left = [&](const char *name) {
        return inPage(page.widget.findChild<QWidget *>(QLatin1String(name)), page.widget).left();
    };
    const auto right = [&](const char *name) {
        return inPage(page.widget.findChild<QWidget *>(QLatin1String(name)), page.widget).right();
    };
    const auto middle = [&](const char *name) {
        return inPage(page.widget.findChild<QWidget *>(QLatin1String(name)), page.widget).center().y();
    };
    for (const char *name :
         {"lbl_MemBitWidth", "lbl_GpuFreClock", "lbl_CustomGpuFreClock", "lbl_CustomMemFreClock", "lbl_BiosVersion"})
        QCOMPARE(left(name), left("lbl_MemType"));
    for (const char *name : {"let_MemBitWidth", "let_GpuFreClock", "let_CustomGpuFreClock", "let_CustomMemFreClock",
                             "lbl_BiosVersionValue"})
        QCOMPARE(left(name), left("let_MemType"));
    for (const char *name : {"let_MemBitWidth", "let_GpuFreClock", "let_CustomGpuFreClock", "let_CustomMemFreClock"})
        QCOMPARE(right(name), right("let_MemType"));
    for (const char *name :
         {"lbl_MemBandWidth", "lbl_MemFreClock", "lbl_GpuFreClockChanged", "lbl_MemFreClockChanged"})
        QCOMPARE(left(name), left("lbl_MemSize"));
    for (const char *name :
         {"let_MemBandWidth", "let_MemFreClock", "lbl_GpuFreClockChangedValue", "lbl_MemFreClockChangedValue"})
        QCOMPARE(left(name), left("let_MemSize"));
    for (const char *name : {"let_MemSize", "let_MemBandWidth", "let_MemFreClock", "lbl_GpuFreClockChangedValue",
                             "lbl_MemFreClockChangedValue", "lbl_BiosVersionValue"})
        QCOMPARE(right(name), 25 + 332 - 1);

    const char *const firstOfRow[] = {"let_MemType",           "let_MemBitWidth",       "let_GpuFreClock",
                                      "let_CustomGpuFreClock", "let_CustomMemFreClock", "lbl_BiosVersionValue"};
    for (int row = 0; row < 6; ++row) // six rows of the same height fill the content
        QVERIFY2(qAbs(middle(firstOfRow[row]) - (39 + (2 * row + 1) * 316 / 12)) <= 1, firstOfRow[row]);
    QCOMPARE(middle("lbl_GpuFreClockChangedValue"), middle("let_CustomGpuFreClock"));
}

void TestGpuFixedInfoLooks::columnsFollowTheLanguage()
{
    Page page(kLanguageChinese);
    const int chinese = page.label("lbl_MemType")->width();
    page.speak(kLanguageEnglish);
    QTRY_VERIFY(page.label("lbl_MemType")->width() > chinese);
    page.speak(kLanguageChinese);
    QTRY_COMPARE(page.label("lbl_MemType")->width(), chinese); // and back
}

void TestGpuFixedInfoLooks::background_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");
    QTest::newRow("glass") << QPoint(3, 380) << 60 << 60;
    QTest::newRow("the band lies over the glass") << QPoint(3, 5) << 100 << 110;
    QTest::newRow("rule under the band") << QPoint(191, 39) << 200 << 255;
    QTest::newRow("the lower right corner is cut") << QPoint(379, 391) << 0 << 0;
    QTest::newRow("above the cut") << QPoint(380, 350) << 60 << 60;
    QTest::newRow("left of the cut") << QPoint(340, 392) << 60 << 60;
}

void TestGpuFixedInfoLooks::background()
{
    QFETCH(QPoint, at);
    QFETCH(int, least);
    QFETCH(int, most);
    Page page;
    const int alpha = qAlpha(paintingOf(page.widget).pixel(at));
    QVERIFY2(alpha >= least && alpha <= most, qPrintable(QString::number(alpha)));
}

void TestGpuFixedInfoLooks::versionStandsInTheBand()
{
    Page page;
    const QImage image = paintingOf(page.widget);
    const QRect text = whiteBounds(image, QRect(254, 0, 128, 39));
    QVERIFY(!text.isEmpty());
    QVERIFY(text.left() - 254 <= 4); // left
    QVERIFY(qAbs(text.center().y() - 19) <= 3);
    QVERIFY(text.right() < 381);
    QFont font = page.widget.font();
    font.setPixelSize(39 / 2);
    const int advance = QFontMetrics(font).horizontalAdvance(QStringLiteral("V 1.0.2.4"));
    QVERIFY2(qAbs(text.width() - advance) <= 4, qPrintable(QString::number(text.width())));
}

void TestGpuFixedInfoLooks::titleFollowsTheLanguage()
{
    Page page(kLanguageChinese);
    const QRect band(0, 0, 250, 39);
    const QImage chinese = paintingOf(page.widget).copy(band);
    page.speak(kLanguageEnglish);
    const QImage english = paintingOf(page.widget).copy(band);
    QVERIFY(chinese != english);
    const QRect title = whiteBounds(english, band);
    QVERIFY2(qAbs(title.left() - 19) <= 4, qPrintable(QString::number(title.left())));
    QVERIFY(qAbs(title.center().y() - 19) <= 3);
    page.speak(kLanguageChinese);
    QCOMPARE(paintingOf(page.widget).copy(band), chinese);
}

void TestGpuFixedInfoLooks::emptySizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("flat") << QSize(382, 1);
    QTest::newRow("narrow") << QSize(1, 394);
}

void TestGpuFixedInfoLooks::emptySizes()
{
    QFETCH(QSize, size);
    Ovryn_GpuFixedInfo page;
    page.resize(size);
    page.recvGpuFixedInfo(wideInfo());
    page.grab();
    QCOMPARE(page.size(), size);
}

QTEST_MAIN(TestGpuFixedInfoLooks)
#include "TestGpuFixedInfoLooks.moc"
