#include "monitor/Ovryn_GpuFixedInfo.h"

#include "monitor/Ovryn_SendNvCardInfoThread.h"
#include "monitor/WidgetPainting.h"
#include "support/FakeDriver.h"
#include "ui/Fonts.h"
#include "ui/PageFrame.h"
#include "ui/ProgramVersion.h"
#include "ui/ReadonlyLineEdit.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <QtTest>

#include <limits>
#include <memory>

namespace
{

constexpr QSize kPage(382, 394);

/// The widest of what cards tell.
NvInfo wideInfo()
{
    NvInfo info;
    info.memType = "GDDR5X";
    info.memSize = "24576MB";
    info.memBitWidth = "4096BIT";
    info.memBandWidth = "1008.4GB/s";
    info.gpuFreClock = "2607MHz";
    info.memFreClock = "10004MHz";
    info.customGpuFreClock = "Unknown";
    info.customMemFreClock = "10204MHz";
    info.gpuFreClockChanged = -1607;
    info.memFreClockChanged = 10204;
    info.biosVersion = "86.04.85.00.C1-WWWWWW";
    return info;
}

/// A shown page with its texts at hand.
struct Page
{
    explicit Page(LanguageType language = kLanguageEnglish, QSize size = kPage)
    {
        speak(language);
        widget.resize(size);
        widget.show();
        if (!QTest::qWaitForWindowExposed(&widget))
            qFatal("the page was not exposed");
    }

    void speak(LanguageType language)
    {
        Ovryn_LanguageTable table;
        table.setLanguage(language);
        widget.setLanguage(table.gpuFixedInfo, language);
    }

    QLabel *label(const char *name) const { return widget.findChild<QLabel *>(QLatin1String(name)); }
    ReadonlyLineEdit *line(const char *name) const
    {
        return widget.findChild<ReadonlyLineEdit *>(QLatin1String(name));
    }
    /// Text of a value, line or label.
    QString value(const char *name) const { return line(name) ? line(name)->text() : label(name)->text(); }

    Ovryn_GpuFixedInfo widget;
};

QRect inPage(const QWidget *part, const QWidget &page)
{
    return QRect(part->mapTo(&page, QPoint(0, 0)), part->size());
}

const char *const kLines[] = {"let_MemType",     "let_MemSize",     "let_MemBitWidth",       "let_MemBandWidth",
                              "let_GpuFreClock", "let_MemFreClock", "let_CustomGpuFreClock", "let_CustomMemFreClock"};
const char *const kValueLabels[] = {"lbl_GpuFreClockChangedValue", "lbl_MemFreClockChangedValue",
                                    "lbl_BiosVersionValue"};
const char *const kCaptions[] = {"lbl_MemType",           "lbl_MemSize",
                                 "lbl_MemBitWidth",       "lbl_MemBandWidth",
                                 "lbl_GpuFreClock",       "lbl_MemFreClock",
                                 "lbl_CustomGpuFreClock", "lbl_GpuFreClockChanged",
                                 "lbl_CustomMemFreClock", "lbl_MemFreClockChanged",
                                 "lbl_BiosVersion"};

} // namespace

class TestGpuFixedInfo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { driver = std::make_unique<FakeDriver>(); }
    void cleanup() { driver.reset(); }

    void versionIsTheProjects();
    void treeOfTheUi();
    void rowsOfTheUi_data();
    void rowsOfTheUi();
    void pageStyle();
    void captions_data();
    void captions();
    void captionFonts_data();
    void captionFonts();
    void fieldsStartEmpty();
    void everyFieldOfARecord();
    void clockDifference_data();
    void clockDifference();
    void unreadFieldsAreUnknown();
    void driverTextIsNoMarkup();
    void labelsAndLinesBeginInOneColumn();
    void languageLeavesTheValues();
    void markedTextStaysMarked();
    void longTextShowsItsBeginning();
    void valuesCannotBeEdited();
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
    void holdsTheDriverAndReadsNothing();
    void emptySizes_data();
    void emptySizes();
    void workerFeedsThePage();

private:
    std::unique_ptr<FakeDriver> driver;
};

void TestGpuFixedInfo::initTestCase()
{
    useProgramFonts();
    registerApplicationFonts();
    registerDeviceMetaTypes();
}

void TestGpuFixedInfo::versionIsTheProjects()
{
    QCOMPARE(kProgramVersion, OVRYN_PROJECT_VERSION);
}

void TestGpuFixedInfo::treeOfTheUi()
{
    const Page page;
    QCOMPARE(page.widget.objectName(), QStringLiteral("Ovryn_GpuFixedInfoWidget"));
    auto *container = page.widget.findChild<QWidget *>(QStringLiteral("verticalLayoutWidget"));
    QVERIFY(container);
    QCOMPARE(container->parentWidget(), &page.widget);
    QVERIFY(qobject_cast<QVBoxLayout *>(container->layout()));
    QCOMPARE(container->layout()->objectName(), QStringLiteral("mainLayout"));
    for (const char *name : kLines)
        QVERIFY2(page.line(name), name);
    for (const char *name : kValueLabels)
        QVERIFY2(page.label(name), name);
    for (const char *name : kCaptions)
        QVERIFY2(page.label(name), name);
    QCOMPARE(page.widget.findChildren<ReadonlyLineEdit *>().size(), int(std::size(kLines)));
    QCOMPARE(page.widget.findChildren<QLabel *>().size(), int(std::size(kValueLabels) + std::size(kCaptions)));
}

void TestGpuFixedInfo::rowsOfTheUi_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QStringList>("names");
    const auto row = [](const char *name, const QStringList &names) {
        QTest::newRow(name) << QString::fromLatin1(name) << names;
    };
    row("horizontalLayout", {"lbl_MemType", "let_MemType", "lbl_MemSize", "let_MemSize"});
    row("horizontalLayout_2", {"lbl_MemBitWidth", "let_MemBitWidth", "lbl_MemBandWidth", "let_MemBandWidth"});
    row("horizontalLayout_3", {"lbl_GpuFreClock", "let_GpuFreClock", "lbl_MemFreClock", "let_MemFreClock"});
    row("horizontalLayout_4",
        {"lbl_CustomGpuFreClock", "let_CustomGpuFreClock", "lbl_GpuFreClockChanged", "lbl_GpuFreClockChangedValue"});
    row("horizontalLayout_5",
        {"lbl_CustomMemFreClock", "let_CustomMemFreClock", "lbl_MemFreClockChanged", "lbl_MemFreClockChangedValue"});
    row("horizontalLayout_6", {"lbl_BiosVersion", "lbl_BiosVersionValue"});
}

void TestGpuFixedInfo::rowsOfTheUi()
{
    QFETCH(QString, row);
    const Page page;
    const auto *layout = page.widget.findChild<QHBoxLayout *>(row);
    QVERIFY(layout);
    QStringList names;
    for (int i = 0; i < layout->count(); ++i) {
        if (const QWidget *part = layout->itemAt(i)->widget())
            names << part->objectName();
    }
    QTEST(names, "names");
}

void TestGpuFixedInfo::pageStyle()
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

void TestGpuFixedInfo::captions_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("English, a double blank in one") // the order of kCaptions
        << kLanguageEnglish << QStringList{"Mem Type",           "Mem Size",  "Bus Width",           "Band Width",
                                           "GPU Clock",          "Mem Clock", "Customized GPU  Clk", "Inc",
                                           "Customized Mem Clk", "Inc",       "BIOS Version"};
    QTest::newRow("Chinese") << kLanguageChinese
                             << QStringList{"显存类型",       "显存容量", "显存位宽",       "显存带宽",
                                            "核心频率",       "显存频率", "自定义核心频率", "增加",
                                            "自定义显存频率", "增加",     "BIOS版本号"};
}

void TestGpuFixedInfo::captions()
{
    QFETCH(LanguageType, language);
    const Page page(language);
    QStringList texts;
    for (const char *name : kCaptions)
        texts << page.label(name)->text();
    QTEST(texts, "texts");
}

void TestGpuFixedInfo::captionFonts_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::addColumn<QString>("family");
    QTest::newRow("English") << kLanguageEnglish << "Arial";
    QTest::newRow("Chinese") << kLanguageChinese << QStringLiteral("微软雅黑");
    QTest::newRow("any other number is English") << 7 << "Arial";
}

void TestGpuFixedInfo::captionFonts()
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

void TestGpuFixedInfo::fieldsStartEmpty()
{
    const Page page;
    for (const char *name : kLines)
        QCOMPARE(page.value(name), QString());
    for (const char *name : kValueLabels)
        QCOMPARE(page.value(name), QString());
}

void TestGpuFixedInfo::everyFieldOfARecord()
{
    NvInfo info;
    info.gpuName = "shown elsewhere";
    info.driverVersion = "shown elsewhere";
    info.memType = "type";
    info.memSize = "size";
    info.memBitWidth = "width";
    info.memBandWidth = "bandwidth";
    info.gpuFreClock = "gpu";
    info.memFreClock = "mem";
    info.customGpuFreClock = "custom gpu";
    info.customMemFreClock = "custom mem";
    info.gpuFreClockChanged = 11;
    info.memFreClockChanged = 22;
    info.biosVersion = "bios ü"; // UTF-8
    Page page;
    page.widget.recvGpuFixedInfo(info);
    QStringList texts;
    for (const char *name : kLines)
        texts << page.value(name);
    for (const char *name : kValueLabels)
        texts << page.value(name);
    QCOMPARE(texts, (QStringList{"type", "size", "width", "bandwidth", "gpu", "mem", "custom gpu", "custom mem", "11",
                                 "22", QStringLiteral("bios ü")}));
}

void TestGpuFixedInfo::clockDifference_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::addColumn<int>("difference");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("number");
    QTest::newRow("0 reads as a rise") << kLanguageEnglish << 0 << "Inc"
                                       << "0";
    QTest::newRow("0 reads as a rise, Chinese") << kLanguageChinese << 0 << "增加"
                                                << "0";
    QTest::newRow("+100") << kLanguageEnglish << 100 << "Inc"
                          << "100";
    QTest::newRow("-100 tells its sign twice") << kLanguageEnglish << -100 << "Dec"
                                               << "-100";
    QTest::newRow("-100, Chinese") << kLanguageChinese << -100 << "减少"
                                   << "-100";
    QTest::newRow("-1") << kLanguageEnglish << -1 << "Dec"
                        << "-1";
    QTest::newRow("lowest") << kLanguageEnglish << std::numeric_limits<qint32>::min() << "Dec"
                            << "-2147483648";
}

void TestGpuFixedInfo::clockDifference()
{
    QFETCH(LanguageType, language);
    QFETCH(int, difference);
    QFETCH(QString, word);
    QFETCH(QString, number);
    Page page(language);
    const QString rise = page.label("lbl_MemFreClockChanged")->text();

    NvInfo info;
    info.gpuFreClockChanged = difference;
    page.widget.recvGpuFixedInfo(info);
    QCOMPARE(page.label("lbl_GpuFreClockChanged")->text(), word);
    QCOMPARE(page.value("lbl_GpuFreClockChangedValue"), number);
    QCOMPARE(page.label("lbl_MemFreClockChanged")->text(), rise); // each clock has its own word
    QCOMPARE(page.value("lbl_MemFreClockChangedValue"), QStringLiteral("0"));

    info.gpuFreClockChanged = 0;
    info.memFreClockChanged = difference;
    page.widget.recvGpuFixedInfo(info);
    QCOMPARE(page.label("lbl_MemFreClockChanged")->text(), word);
    QCOMPARE(page.value("lbl_MemFreClockChangedValue"), number);
    QCOMPARE(page.label("lbl_GpuFreClockChanged")->text(), rise);
}

void TestGpuFixedInfo::unreadFieldsAreUnknown()
{
    for (const char *operation :
         {"NvAPI_GPU_GetRamType", "NvAPI_GPU_GetFBWidthAndLocation", "NvAPI_GPU_GetVbiosVersionString"})
        driver->fails(operation, NVAPI_ERROR);
    NvGpuControl control;
    NvInfo info;
    control.getFixedInfo(info);
    Page page(kLanguageChinese);
    page.widget.recvGpuFixedInfo(info);
    for (const char *name : {"let_MemType", "let_MemBitWidth", "lbl_BiosVersionValue"})
        QCOMPARE(page.value(name), QStringLiteral("Unknown")); // in every language
    QCOMPARE(page.value("let_MemSize"), QStringLiteral("8192MB"));
}

void TestGpuFixedInfo::labelsAndLinesBeginInOneColumn()
{
    NvInfo info;
    info.memType = "8";
    info.biosVersion = "8";
    Page page;
    page.widget.recvGpuFixedInfo(info);
    const auto firstLitColumn = [&page](const char *name) {
        const QImage picture = page.widget.findChild<QWidget *>(QLatin1String(name))->grab().toImage();
        for (int x = 1; x < picture.width() - 1; ++x) { // within the frame
            for (int y = 1; y < picture.height() - 1; ++y) {
                if (picture.pixelColor(x, y).lightness() > 150)
                    return x;
            }
        }
        return -1;
    };
    const int line = firstLitColumn("let_MemType");
    QVERIFY(line > 0);
    // the label's font is two pixels larger, so its figure begins up to one later
    QVERIFY2(qAbs(firstLitColumn("lbl_BiosVersionValue") - line) <= 1, "the label is set in");
}

void TestGpuFixedInfo::driverTextIsNoMarkup()
{
    NvInfo info;
    info.biosVersion = "<B>1&AMP;2</B>";
    Page page;
    page.widget.recvGpuFixedInfo(info);
    QCOMPARE(page.label("lbl_BiosVersionValue")->textFormat(), Qt::PlainText);
    QCOMPARE(page.value("lbl_BiosVersionValue"), QStringLiteral("<B>1&AMP;2</B>"));
}

void TestGpuFixedInfo::languageLeavesTheValues()
{
    Page page(kLanguageEnglish);
    NvInfo info = wideInfo();
    page.widget.recvGpuFixedInfo(info);
    QCOMPARE(page.label("lbl_GpuFreClockChanged")->text(), QStringLiteral("Dec"));

    page.speak(kLanguageChinese);
    QCOMPARE(page.value("let_MemSize"), QStringLiteral("24576MB"));
    QCOMPARE(page.value("lbl_GpuFreClockChangedValue"), QStringLiteral("-1607"));
    QCOMPARE(page.label("lbl_GpuFreClockChanged")->text(), QStringLiteral("增加")); // until the next record
    page.widget.recvGpuFixedInfo(info);
    QCOMPARE(page.label("lbl_GpuFreClockChanged")->text(), QStringLiteral("减少"));
    QCOMPARE(page.label("lbl_MemFreClockChanged")->text(), QStringLiteral("增加"));
}

void TestGpuFixedInfo::markedTextStaysMarked()
{
    Page page;
    page.widget.recvGpuFixedInfo(wideInfo());
    page.line("let_MemSize")->selectAll();
    page.widget.recvGpuFixedInfo(wideInfo()); // the same again, a second later
    QCOMPARE(page.line("let_MemSize")->selectedText(), QStringLiteral("24576MB"));
}

void TestGpuFixedInfo::longTextShowsItsBeginning()
{
    Page page;
    NvInfo info;
    info.memType = std::string(63, 'W');
    page.widget.recvGpuFixedInfo(info);
    QCOMPARE(page.line("let_MemType")->cursorPosition(), 0);
}

void TestGpuFixedInfo::valuesCannotBeEdited()
{
    Page page;
    page.widget.recvGpuFixedInfo(wideInfo());
    for (const char *name : kLines) {
        const QString before = page.value(name);
        QTest::keyClicks(page.line(name), QStringLiteral("7"));
        QTest::keyClick(page.line(name), Qt::Key_Backspace);
        QCOMPARE(page.value(name), before);
        QCOMPARE(page.line(name)->contextMenuPolicy(), Qt::NoContextMenu);
    }
}

void TestGpuFixedInfo::layout_data()
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

void TestGpuFixedInfo::layout()
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

void TestGpuFixedInfo::contentTakesItsPlace()
{
    const Page page;
    QCOMPARE(page.widget.findChild<QWidget *>(QStringLiteral("verticalLayoutWidget"))->geometry(),
             QRect(25, 39, 332, 316));
}

void TestGpuFixedInfo::nothingIsClipped_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::newRow("English") << kLanguageEnglish;
    QTest::newRow("Chinese") << kLanguageChinese;
}

void TestGpuFixedInfo::nothingIsClipped()
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

void TestGpuFixedInfo::columnsAndRowsAlign_data()
{
    nothingIsClipped_data();
}

void TestGpuFixedInfo::columnsAndRowsAlign()
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

void TestGpuFixedInfo::columnsFollowTheLanguage()
{
    Page page(kLanguageChinese);
    const int chinese = page.label("lbl_MemType")->width();
    page.speak(kLanguageEnglish);
    QTRY_VERIFY(page.label("lbl_MemType")->width() > chinese);
    page.speak(kLanguageChinese);
    QTRY_COMPARE(page.label("lbl_MemType")->width(), chinese); // and back
}

void TestGpuFixedInfo::background_data()
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

void TestGpuFixedInfo::background()
{
    QFETCH(QPoint, at);
    QFETCH(int, least);
    QFETCH(int, most);
    Page page;
    const int alpha = qAlpha(paintingOf(page.widget).pixel(at));
    QVERIFY2(alpha >= least && alpha <= most, qPrintable(QString::number(alpha)));
}

void TestGpuFixedInfo::versionStandsInTheBand()
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

void TestGpuFixedInfo::titleFollowsTheLanguage()
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

void TestGpuFixedInfo::holdsTheDriverAndReadsNothing()
{
    QCOMPARE(nvApiLoadCount(), 0);
    {
        Page page;
        QCOMPARE(nvApiLoadCount(), 1);
        driver->forgetCalls();
        page.widget.recvGpuFixedInfo(wideInfo());
        page.speak(kLanguageChinese);
        paintingOf(page.widget);
        QCOMPARE(driver->calls(), QStringList());
    }
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(driver->calls(), QStringList{"Unload"});
}

void TestGpuFixedInfo::emptySizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("flat") << QSize(382, 1);
    QTest::newRow("narrow") << QSize(1, 394);
}

void TestGpuFixedInfo::emptySizes()
{
    QFETCH(QSize, size);
    Ovryn_GpuFixedInfo page;
    page.resize(size);
    page.recvGpuFixedInfo(wideInfo());
    page.grab();
    QCOMPARE(page.size(), size);
}

void TestGpuFixedInfo::workerFeedsThePage()
{
    NvGpuControl control;
    Page page;
    Ovryn_SendNvCardInfoThread worker(&control);
    QVERIFY(connect(&worker, SIGNAL(sendNVCardFixedInfo(NvInfo)), &page.widget, SLOT(recvGpuFixedInfo(NvInfo))));
    worker.startSampling();
    QTRY_COMPARE(page.value("let_MemSize"), QStringLiteral("8192MB"));
    QCOMPARE(page.value("let_MemType"), QStringLiteral("GDDR5"));
    QCOMPARE(page.value("lbl_BiosVersionValue"), QStringLiteral("86.04.85.00.AB"));
    QCOMPARE(page.value("lbl_GpuFreClockChangedValue"), QStringLiteral("0"));
}

QTEST_MAIN(TestGpuFixedInfo)
#include "TestGpuFixedInfo.moc"
