#include "monitor/GpuFixedInfoPage.h"
#include "monitor/WidgetPainting.h"
#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"
#include "support/CheckedDriver.h"
#include "ui/Fonts.h"
#include "ui/ProgramVersion.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <limits>
#include <memory>

using Page = GpuFixedInfoPage;

/// The card information page: what it is made of and what of a record it shows.
class TestGpuFixedInfo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { driver = std::make_unique<CheckedDriver>(); }
    void cleanup() { driver.reset(); }

    void versionIsTheProjects();
    void treeOfTheUi();
    void rowsOfTheUi_data();
    void rowsOfTheUi();
    void captions_data();
    void captions();
    void fieldsStartEmpty();
    void everyFieldOfARecord();
    void clockDifference_data();
    void clockDifference();
    void unreadFieldsAreUnknown_data();
    void unreadFieldsAreUnknown();
    void driverTextIsNoMarkup();
    void labelsAndLinesBeginInOneColumn();
    void languageLeavesTheValues();
    void markedTextStaysMarked();
    void longTextShowsItsBeginning();
    void valuesCannotBeEdited();
    void holdsTheDriverAndReadsNothing();
    void workerFeedsThePage();

private:
    std::unique_ptr<CheckedDriver> driver;
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

void TestGpuFixedInfo::unreadFieldsAreUnknown_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("field");
    QTest::newRow("memory type") << Operation::NvAPI_GPU_GetRamType << "let_MemType";
    QTest::newRow("memory size") << Operation::NvAPI_GPU_GetMemoryInfo << "let_MemSize";
    QTest::newRow("bus width") << Operation::NvAPI_GPU_GetFBWidthAndLocation << "let_MemBitWidth";
    QTest::newRow("BIOS version") << Operation::NvAPI_GPU_GetVbiosVersionString << "lbl_BiosVersionValue";
}

void TestGpuFixedInfo::unreadFieldsAreUnknown()
{
    QFETCH(Operation, operation);
    QFETCH(QString, field);
    driver->fails(operation);
    NvGpuControl control;
    NvInfo info;
    control.getFixedInfo(info);
    Page page(kLanguageChinese);
    page.widget.recvGpuFixedInfo(info);
    for (const char *name : {"let_MemType", "let_MemSize", "let_MemBitWidth", "lbl_BiosVersionValue"}) // any language
        QCOMPARE(page.value(name) == QLatin1String("Unknown"), field == QLatin1String(name));
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

void TestGpuFixedInfo::workerFeedsThePage()
{
    NvGpuControl control;
    Page page;
    Ovryn_SendNvCardInfoThread worker(&control);
    QVERIFY(connect(&worker, SIGNAL(sendNVCardFixedInfo(NvInfo)), &page.widget, SLOT(recvGpuFixedInfo(NvInfo))));
    worker.startSampling();
    QTRY_COMPARE(page.value("let_MemSize"), QStringLiteral("8192MB"));
    QCOMPARE(page.value("let_MemType"), QStringLiteral("GDDR5"));
    QCOMPARE(page.value("lbl_BiosVersionValue"), QStringLiteral("86.04.85.00.C1"));
    QCOMPARE(page.value("lbl_GpuFreClockChangedValue"), QStringLiteral("0"));
}

QTEST_MAIN(TestGpuFixedInfo)
#include "TestGpuFixedInfo.moc"
