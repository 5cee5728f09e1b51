#include "monitor/graphs/Ovryn_GPUInfoWidget.h"

#include "monitor/WidgetPainting.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"

#include <QCheckBox>
#include <QSignalSpy>
#include <QtTest>

/// The rows view of the monitor page.
class TestGpuInfoWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useProgramFonts(); }

    void titles_data();
    void titles();
    void values();
    void masks_data();
    void masks();
    void tickTellsWhetherAnyIsTicked();
    void rowsFillTheView_data();
    void rowsFillTheView();
    void redLinesPartTheRows();
    void sampleIsPaintedAtOnce();
};

void TestGpuInfoWidget::titles_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("Chinese") << kLanguageChinese << QStringList{"核心频率", "风扇转速",   "温     度",
                                                                "显存频率", "显存使用率", "GPU使用率"};
    QTest::newRow("English") << kLanguageEnglish
                             << QStringList{"GPU Clock", "Fan Speed", "Temp", "Mem Clock", "Mem Usage", "GPU Usage"};
}

void TestGpuInfoWidget::titles()
{
    QFETCH(LanguageType, language);
    Ovryn_GPUInfoWidget view;
    if (language != kLanguageChinese) { // it starts with the Chinese texts
        Ovryn_LanguageTable table;
        table.setLanguage(language);
        view.setLanguage(table.monitor, language);
    }
    QStringList titles;
    for (int i = 0; i < 6; ++i)
        titles.append(view.row(i)->titleText());
    QTEST(titles, "titles");
}

void TestGpuInfoWidget::values()
{
    NvCardBaseInfo info;
    info.gpuClock = {1800, 139, 1607, 2000, 0};
    info.memoryClock = {4100, 405, 4004, 5000, 0};
    info.fanSpeed = {1400, 0, 1200, 3000, 0};
    info.temperature = {71, -3, 52, 104, 0};
    info.memoryUsagePercent = {37, 12, 25, 100, 0};
    info.gpuUsage = {99, 1, 41, 100, 0};
    info.memoryUsage = {3072, 1024, 2048, 8192, 0};
    Ovryn_GPUInfoWidget view;
    view.receiveNvCardBaseInfo(info);
    QStringList texts;
    for (int i = 0; i < 6; ++i) {
        const Ovryn_BaseInfoRow *row = view.row(i);
        texts.append(row->currentValueText() + '/' + row->maxValueText() + '/' + row->minValueText());
    }
    QCOMPARE(texts,
             (QStringList{"1607/1800/139", "1200/1400/0", "52/71/-3", "4004/4100/405", "25%/37%/12%", "41%/99%/1%"}));
}

void TestGpuInfoWidget::masks_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("taken");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("GPU clock alone") << 1 << 1;
    QTest::newRow("GPU usage alone") << 32 << 32;
    QTest::newRow("every second") << 0x2A << 0x2A;
    QTest::newRow("all") << 63 << 63;
    QTest::newRow("bits above 5 are ignored") << 0xFFC4 << 4;
    QTest::newRow("only bits above 5") << 64 << 0;
    QTest::newRow("all bits") << -1 << 63;
}

void TestGpuInfoWidget::masks()
{
    QFETCH(int, given);
    QFETCH(int, taken);
    Ovryn_GPUInfoWidget view;
    view.setSelectOption(given);
    QCOMPARE(view.selectOption(), taken);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(view.row(i)->isChecked(), (taken & (1 << i)) != 0);
    view.setSelectOption(0); // unticks too
    QCOMPARE(view.selectOption(), 0);
}

void TestGpuInfoWidget::tickTellsWhetherAnyIsTicked()
{
    Ovryn_GPUInfoWidget view;
    QSignalSpy have(&view, SIGNAL(isHaveChecked(bool)));
    view.row(2)->setChecked(true);
    view.row(5)->setChecked(true);
    view.row(2)->setChecked(false);
    view.row(5)->setChecked(false);
    QList<bool> told;
    for (const QList<QVariant> &arguments : have)
        told.append(arguments.at(0).toBool());
    QCOMPARE(told, (QList<bool>{true, true, true, false}));
}

void TestGpuInfoWidget::rowsFillTheView_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("first");
    QTest::addColumn<QRect>("last");
    QTest::newRow("as in the window") << QSize(382, 316) << QRect(19, 0, 344, 52) << QRect(19, 260, 344, 52);
    QTest::newRow("divisions truncate") << QSize(399, 305) << QRect(19, 0, 361, 50) << QRect(19, 250, 361, 50);
}

void TestGpuInfoWidget::rowsFillTheView()
{
    QFETCH(QSize, size);
    Ovryn_GPUInfoWidget view;
    view.resize(size);
    view.grab(); // delivers the resize
    QTEST(view.row(0)->geometry(), "first");
    QTEST(view.row(5)->geometry(), "last");
}

void TestGpuInfoWidget::redLinesPartTheRows()
{
    Ovryn_GPUInfoWidget view;
    view.resize(382, 316);
    const QImage image = paintingOf(view);
    for (int line = 1; line <= 5; ++line) {
        const QColor color = image.pixelColor(2, 52 * line);
        QVERIFY2(color.alpha() > 100 && color.red() > 250 && color.green() == 0, qPrintable(QString::number(line)));
        QCOMPARE(qAlpha(image.pixel(2, 52 * line - 10)), 0);
    }
    QCOMPARE(paintedPixels(image, QRect(0, 0, 19, 10)), 0);
    QCOMPARE(paintedPixels(image, QRect(0, 300, 19, 16)), 0); // five lines, none below the last row
}

void TestGpuInfoWidget::sampleIsPaintedAtOnce()
{
    Ovryn_GPUInfoWidget view;
    view.resize(382, 316);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCoreApplication::processEvents();
    const PaintCounter counter(view);
    view.receiveNvCardBaseInfo(NvCardBaseInfo());
    QCOMPARE(counter.painted, QRegion(view.rect())); // and not its rows alone
}

QTEST_MAIN(TestGpuInfoWidget)
#include "TestGpuInfoWidget.moc"
