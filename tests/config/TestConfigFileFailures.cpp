#include "config/ConfigFileTest.h"
#include "config/NoMoreFiles.h"
#include "config/SampleConfig.h"
#include "support/CurrentFolder.h"

#include <QDir>
#include <QtTest>

namespace
{

const QString kName = QStringLiteral("GeForce GTX 1070 Ti");
constexpr quint32 kId = 286094199;

/// True when every getter returns what the outcome of `load` demands, and none changed its output when it returned
/// false.
bool gettersAnswer(const Ovryn_ConfigFile &config, bool loaded, bool cardKnown)
{
    GeneralSettingInfo general;
    general.Language = QStringLiteral("untouched");
    UpdateSettingInfo update;
    update.CheckInterval = 12345;
    AdjustModuleInfo adjust;
    adjust.Power = 12345;
    LedModuleInfo led;
    led.LedMode = 12345;
    LcdModuleInfo lcd;
    lcd.NormalKey = 12345;
    quint32 selectOption = 12345;
    const QDate past(1999, 1, 1);
    QDate checked = past;
    bool notPrompt = true;
    bool prompt = false;
    return config.getGeneralSetting(general) == loaded && (general.Language != "untouched") == loaded &&
           config.getUpdateSetting(update) == loaded && (update.CheckInterval != 12345) == loaded &&
           config.getLastCheckDate(checked) == loaded && (checked != past) == loaded &&
           config.getNotPromptHPS(notPrompt) == loaded && config.getNotPromptHPS(prompt) == loaded &&
           (notPrompt == prompt) == loaded && config.getAdjustModule(kName, kId, adjust) == cardKnown &&
           (adjust.Power != 12345) == cardKnown && config.getLedModule(kName, kId, led) == cardKnown &&
           (led.LedMode != 12345) == cardKnown && config.getLcdModule(kName, kId, lcd) == cardKnown &&
           (lcd.NormalKey != 12345) == cardKnown && config.getMonitorModule(kName, kId, selectOption) == cardKnown &&
           (selectOption != 12345) == cardKnown;
}

} // namespace

class TestConfigFileFailures : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void nothingIsLoadedBeforeLoad();
    void missingFileBecomesAFreshOne();
    void freshFileHoldsTheDefaults();
    void brokenTextBecomesAFreshFile_data();
    void brokenTextBecomesAFreshFile();
    void cutAtEveryByte();
    void foreignRootIsLeftAlone_data();
    void foreignRootIsLeftAlone();
    void saveBesideAForeignRoot();
    void fileThatCannotBeOpened();
    void fileThatCannotBeRead();
    void fileThatCannotBeRemoved();
    void folderThatDoesNotExist();
    void fileIsGoneWhenItCannotBeWritten();
    void settersWorkUnloaded();
    void failedLoadForgetsTheOldState();
    void defaultFileName();
};

void TestConfigFileFailures::nothingIsLoadedBeforeLoad()
{
    folder->write(kSampleConfig);
    const Ovryn_ConfigFile config(folder->path());
    QVERIFY(gettersAnswer(config, false, false));
    QCOMPARE(folder->text(), kSampleConfig);
}

void TestConfigFileFailures::missingFileBecomesAFreshOne()
{
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(!folder->exists());
    QVERIFY(config.load());
    QVERIFY(folder->exists());
    QVERIFY(gettersAnswer(config, true, false));
}

void TestConfigFileFailures::freshFileHoldsTheDefaults()
{
    const QDate before = QDate::currentDate();
    Ovryn_ConfigFile config(folder->path());
    config.setGeneralSetting({false, true, false, "lang_en", 9, "advanced"});
    config.setUpdateSetting({1, 2, 3});
    config.setMonitorModule("A", 1, 1);
    config.setNotPromptHPS(true);
    config.setLastCheckDate(QDate(1999, 1, 1));
    config.setLastCloseDate(QDate(1999, 1, 1));
    config.setLastStartDate(QDate(1999, 1, 1));
    config.setLastUpdateDate(QDate(1999, 1, 1));
    QVERIFY(config.load()); // nothing that was set survives

    QCOMPARE(childNames(folder->root()),
             QStringList({"GeneralSetting", "UpdateSetting", "GpuSettings", "LastCloseDate", "LastStartDate",
                          "LastCheckDate", "LastUpdateDate", "OtherSetting"}));
    const QDomElement general = folder->section("GeneralSetting");
    QCOMPARE(general.attributes().count(), 6);
    QCOMPARE(general.attribute("StartOnBoot"), QString("1"));
    QCOMPARE(general.attribute("MinimizeOnStart"), QString("0"));
    QCOMPARE(general.attribute("ApplyLastParamOnStart"), QString("1"));
    QCOMPARE(general.attribute("Language"), QString("lang_ch"));
    QCOMPARE(general.attribute("RefreshTimeOfMonitor"), QString("1"));
    QCOMPARE(general.attribute("PageEffects"), QString("normal"));
    const QDomElement update = folder->section("UpdateSetting");
    QCOMPARE(update.attributes().count(), 3);
    QCOMPARE(update.attribute("CheckInterval"), QString("7"));
    QCOMPARE(update.attribute("UpdateMode"), QString("0"));
    QCOMPARE(update.attribute("UpdateStatus"), QString("1"));
    QVERIFY(!folder->section("GpuSettings").hasChildNodes());
    QVERIFY(!folder->section("GpuSettings").hasAttributes());
    QCOMPARE(folder->section("OtherSetting").attribute("NotPromptHPS"), QString("0"));
    for (const char *name : {"LastCloseDate", "LastStartDate", "LastCheckDate", "LastUpdateDate"}) {
        const QDate date = QDate::fromString(folder->section(name).text(), "yyyy/MM/dd");
        QVERIFY(date >= before && date <= QDate::currentDate());
    }
}

void TestConfigFileFailures::brokenTextBecomesAFreshFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one zero") << QByteArray(1, '\0');
    QTest::newRow("many zeros") << QByteArray(100000, '\0');
    QTest::newRow("no XML") << QByteArray("[General]\nStartOnBoot=1\n");
    QTest::newRow("declaration alone") << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    QTest::newRow("root not closed") << QByteArray("<OvrynParameter>");
    QTest::newRow("two roots") << QByteArray("<OvrynParameter/><OvrynParameter/>");
    QTest::newRow("good root, rubbish after it") << kSampleConfig + "x";
    QTest::newRow("attribute without quotes") << QByteArray("<OvrynParameter a=1/>");
    QTest::newRow("no encoding of any kind") << QByteArray("<OvrynParameter a='\xFF\xFE'/>");
    QTest::newRow("nested without end") << QByteArray("<OvrynParameter>") + QByteArray("<a>").repeated(1000000);
    QTest::newRow("nested a million levels") << "<OvrynParameter>" + QByteArray("<a>").repeated(1000000) +
                                                    QByteArray("</a>").repeated(1000000) + "</OvrynParameter>";
    QTest::newRow("a million cards") << "<OvrynParameter><GpuSettings>" +
                                            QByteArray("<GPU GpuName='x'/>").repeated(1000000) +
                                            "</GpuSettings></OvrynParameter>";
    QTest::newRow("a million references to an entity")
        << "<!DOCTYPE a [<!ENTITY e '" + QByteArray(4000, 'x') + "'>]><OvrynParameter><LastCheckDate>" +
               QByteArray("&e;").repeated(1000000) + "</LastCheckDate></OvrynParameter>";
}

void TestConfigFileFailures::brokenTextBecomesAFreshFile()
{
    QFETCH(QByteArray, text);
    folder->write(text);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    QVERIFY(gettersAnswer(config, true, false));
    QCOMPARE(folder->root().tagName(), QString("OvrynParameter"));
    QCOMPARE(folder->section("GeneralSetting").attribute("Language"), QString("lang_ch"));
}

void TestConfigFileFailures::cutAtEveryByte()
{
    const int wholeSize = kSampleConfig.lastIndexOf('>') + 1;
    for (int size = 0; size <= kSampleConfig.size(); ++size) {
        folder->write(kSampleConfig.left(size));
        Ovryn_ConfigFile config(folder->path());
        QVERIFY2(config.load(), qPrintable(QString::number(size)));
        QVERIFY2(gettersAnswer(config, true, size >= wholeSize), qPrintable(QString::number(size)));
    }
}

void TestConfigFileFailures::foreignRootIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("other name") << QByteArray("<Other><GeneralSetting Language='lang_en'/></Other>");
    QTest::newRow("name in other letters") << QByteArray("<ovrynparameter/>");
    QTest::newRow("name with a prefix") << QByteArray("<x:OvrynParameter/>");
    QTest::newRow("ours one level down") << "<Other>" + document("").mid(document("").indexOf("<Ovryn")) + "</Other>";
    QTest::newRow("other settings file") << QByteArray("<?xml version='1.0'?><!DOCTYPE OvrynParameter><html/>");
}

void TestConfigFileFailures::foreignRootIsLeftAlone()
{
    QFETCH(QByteArray, text);
    folder->write(text);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(!config.load());
    QVERIFY(gettersAnswer(config, false, false));
    QCOMPARE(folder->text(), text);
}

void TestConfigFileFailures::saveBesideAForeignRoot()
{
    folder->write("<Other/>");
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(!config.load());
    config.setMonitorModule(kName, kId, 3);
    QVERIFY(config.save());
    QVERIFY(folder->text().contains("<Other/>")); // two roots now
    QVERIFY(folder->root().isNull());
    QVERIFY(config.load()); // so that the next load makes a fresh file
    QVERIFY(gettersAnswer(config, true, false));
    QVERIFY(!folder->text().contains("<Other/>"));
}

void TestConfigFileFailures::fileThatCannotBeOpened()
{
    QVERIFY(QDir().mkpath(folder->path())); // a folder of that name can't be opened, not even by root
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(!config.load());
    QVERIFY(gettersAnswer(config, false, false));
    QVERIFY(QFileInfo(folder->path()).isDir());
}

void TestConfigFileFailures::fileThatCannotBeRead()
{
    const QString unreadable = QStringLiteral("/proc/self/mem"); // opens, and fails at the first byte
    if (!QFile::exists(unreadable))
        QSKIP("no file here that opens and cannot be read");
    QVERIFY(QFile::link(unreadable, folder->path()));
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(!config.load());
    QVERIFY(gettersAnswer(config, false, false));
    QCOMPARE(QFile::symLinkTarget(folder->path()), unreadable);
}

void TestConfigFileFailures::fileThatCannotBeRemoved()
{
    folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    QVERIFY(QFile::remove(folder->path()));
    QVERIFY(QDir().mkpath(folder->path() + "/inside"));
    config.setMonitorModule(kName, kId, 99);
    QVERIFY(!config.save());
    QVERIFY(QFileInfo(folder->path() + "/inside").isDir());
    quint32 selectOption = 0;
    QVERIFY(config.getMonitorModule(kName, kId, selectOption));
    QCOMPARE(selectOption, 99U); // memory keeps the change
}

void TestConfigFileFailures::folderThatDoesNotExist()
{
    Ovryn_ConfigFile config(folder->path() + ".d/none/config.xml");
    QVERIFY(!config.load()); // the fresh file cannot be written
    QVERIFY(gettersAnswer(config, false, false));
    QVERIFY(!config.save());
}

void TestConfigFileFailures::fileIsGoneWhenItCannotBeWritten()
{
#ifdef Q_OS_UNIX
    folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    {
        const NoMoreFiles limit;
        QVERIFY(!config.save());
    }
    QVERIFY(!folder->exists());
    QVERIFY(gettersAnswer(config, true, true)); // memory keeps everything
    QVERIFY(config.save());
    QVERIFY(folder->text().contains("GTX 1070 Ti"));
#else
    QSKIP("needs a limit of open files");
#endif
}

void TestConfigFileFailures::settersWorkUnloaded()
{
    QVERIFY(QDir().mkpath(folder->path()));
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(!config.load());
    config.setMonitorModule(kName, kId, 3);
    config.setLastCheckDate(QDate(2020, 2, 3));
    QVERIFY(gettersAnswer(config, false, false)); // the getters keep returning false
    QVERIFY(QDir().rmdir(folder->path()));
    QVERIFY(config.save());
    QCOMPARE(folder->gpus().value(0).attribute("GpuName"), kName);
    QCOMPARE(folder->section("LastCheckDate").text(), QString("2020/02/03"));
}

void TestConfigFileFailures::failedLoadForgetsTheOldState()
{
    folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    folder->write("<Other/>");
    QVERIFY(!config.load());
    QVERIFY(gettersAnswer(config, false, false));
}

void TestConfigFileFailures::defaultFileName()
{
    const CurrentFolder current;
    Ovryn_ConfigFile config;
    QVERIFY(config.load());
    QVERIFY(QFile::exists("config.xml"));
}

QTEST_APPLESS_MAIN(TestConfigFileFailures)
#include "TestConfigFileFailures.moc"
