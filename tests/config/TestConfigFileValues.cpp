#include "config/ConfigFileTest.h"
#include "config/SampleConfig.h"

#include <QtTest>

namespace
{

const QString kDefaultsCard = QStringLiteral("as a new card"); ///< nothing is set but its mask
const QString kExtremesCard = QStringLiteral("with numbers of any size");
constexpr quint32 kDefaultsId = 0x7FFFFFFF;
constexpr quint32 kExtremesId = 0xFFFFFFFF;

} // namespace

/// The text that each value has in the file.
class TestConfigFileValues : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void attributes_data();
    void attributes();
    void identifierIsReadBack();
    void dates_data();
    void dates();
};

void TestConfigFileValues::attributes_data()
{
    QTest::addColumn<bool>("isNewCard");
    QTest::addColumn<QString>("module"); // empty for the card's element itself
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("identifier")                    << true  << "" << "SubSystemId" << "2147483647";
    QTest::newRow("identifier, largest")           << false << "" << "SubSystemId" << "4294967295";
    QTest::newRow("mask")                          << true  << "MonitorModule" << "SelectOption" << "5";
    QTest::newRow("mask is written signed")        << false << "MonitorModule" << "SelectOption" << "-2147483647";
    QTest::newRow("graphics clock never set")      << true  << "AdjustModule" << "GpuFreClock" << "-1";
    QTest::newRow("graphics clock, smallest")      << false << "AdjustModule" << "GpuFreClock" << "-2147483648";
    QTest::newRow("memory clock never set")        << true  << "AdjustModule" << "MemoryFreClock" << "-1";
    QTest::newRow("voltage never set")             << true  << "AdjustModule" << "Voltage" << "-1";
    QTest::newRow("fan mode by default")           << true  << "AdjustModule" << "FanMode" << "0";
    QTest::newRow("high performance by default")   << true  << "AdjustModule" << "EnableHighPerformance" << "0";
    QTest::newRow("no nodes")                      << true  << "AdjustModule" << "Nodes" << "";
    QTest::newRow("LED mode, negative")            << false << "LedModule" << "LedMode" << "-5";
    QTest::newRow("static button")                 << false << "LedModule" << "CheckedColorButtonStatic" << "255";
    QTest::newRow("dynamic buttons, sign bit")     << false << "LedModule" << "CheckedColorButtonDynamic" << "128";
    QTest::newRow("interval is written unsigned")  << false << "LedModule" << "Interval" << "4294967294";
    QTest::newRow("first colour by default")       << true  << "LedModule" << "Color1" << "16777215";
    QTest::newRow("last colour by default")        << true  << "LedModule" << "Color7" << "16777215";
    QTest::newRow("colour wider than 24 bits")     << false << "LedModule" << "Color7" << "4294967295";
    QTest::newRow("true")                          << false << "LcdModule" << "AutoSwitch" << "1";
    QTest::newRow("false")                         << false << "LcdModule" << "EnableLcd" << "0";
    QTest::newRow("switch time, largest")          << false << "LcdModule" << "SwitchTime" << "4294967295";
    QTest::newRow("modifier, the sign bit")        << false << "LcdModule" << "ModifierKey" << "2147483648";
    // clang-format on
}

void TestConfigFileValues::attributes()
{
    QFETCH(bool, isNewCard);
    QFETCH(QString, module);
    QFETCH(QString, attribute);

    Ovryn_ConfigFile file(folder->path());
    file.setMonitorModule(kDefaultsCard, kDefaultsId, 5);
    AdjustModuleInfo adjust;
    adjust.GpuFreClock = std::numeric_limits<qint32>::min();
    file.setAdjustModule(kExtremesCard, kExtremesId, adjust);
    file.setLedModule(kExtremesCard, kExtremesId, {-5, 255, 128, -2, {0, 0, 0, 0, 0, 0, 0xFFFFFFFF}});
    file.setLcdModule(kExtremesCard, kExtremesId, {true, 4294967295U, 2147483648U, 0, false});
    file.setMonitorModule(kExtremesCard, kExtremesId, 0x80000001);
    QVERIFY(file.save());

    const QDomElement gpu = folder->gpus().value(isNewCard ? 0 : 1);
    QCOMPARE(gpu.attribute("GpuName"), isNewCard ? kDefaultsCard : kExtremesCard);
    const QDomElement element = module.isEmpty() ? gpu : gpu.firstChildElement(module);
    QVERIFY(element.hasAttribute(attribute));
    QTEST(element.attribute(attribute), "text");
}

void TestConfigFileValues::identifierIsReadBack()
{
    Ovryn_ConfigFile file(folder->path());
    file.setMonitorModule(kExtremesCard, kExtremesId, 3);
    QVERIFY(file.save());

    Ovryn_ConfigFile again(folder->path());
    QVERIFY(again.load());
    quint32 mask = 0;
    QVERIFY(again.getMonitorModule(kExtremesCard, 4294967295U, mask));
    QCOMPARE(mask, 3U);
    QVERIFY(!again.getMonitorModule(kExtremesCard, kDefaultsId, mask)); // as a signed number it would end there
}

void TestConfigFileValues::dates_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QString>("text");
    QTest::newRow("two digits each") << QDate(2021, 3, 4) << "2021/03/04";
    QTest::newRow("end of a year") << QDate(1999, 12, 31) << "1999/12/31";
    QTest::newRow("invalid") << QDate() << "";
}

void TestConfigFileValues::dates()
{
    QFETCH(QDate, date);
    QFETCH(QString, text);

    folder->write(kSampleConfig);
    Ovryn_ConfigFile file(folder->path());
    QVERIFY(file.load());
    file.setLastUpdateDate(date);
    QVERIFY(file.save());
    QVERIFY(!folder->section("LastUpdateDate").isNull());
    QCOMPARE(folder->section("LastUpdateDate").text(), text);
    QCOMPARE(folder->section("LastStartDate").text(), QString("2021/03/05")); // the others stay
}

QTEST_APPLESS_MAIN(TestConfigFileValues)

#include "TestConfigFileValues.moc"
