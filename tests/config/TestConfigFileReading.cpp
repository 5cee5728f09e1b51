#include "config/ConfigFileTest.h"
#include "config/SampleConfig.h"

/// What the getters return for a loaded file.
class TestConfigFileReading : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void readsEveryValue();
    void absentElementKeepsDefaults();
    void absentAttributesReadAsNothing();
    void stopsAtForeignCards_data();
    void stopsAtForeignCards();
    void stopsAtForeignModules_data();
    void stopsAtForeignModules();
    void skipsForeignSections();
    void sectionsInAnyOrder();
    void repeatedSections();
    void findsCardsExactly_data();
    void findsCardsExactly();
    void firstOfEqualCardsCounts();
    void keepsDatesAndPromptWhereAbsent();
    void secondLoadForgetsTheFirst();
    void nodesOfACard_data();
    void nodesOfACard();
    void manyCards();
    void remarksAboutEntities_data();
    void remarksAboutEntities();
};

void TestConfigFileReading::readsEveryValue()
{
    const Ovryn_ConfigFile *file = load(kSampleConfig);

    GeneralSettingInfo general;
    QVERIFY(file->getGeneralSetting(general));
    QCOMPARE(general.StartOnBoot, false);
    QCOMPARE(general.MinimizeOnStart, true);
    QCOMPARE(general.ApplyLastParamOnStart, false);
    QCOMPARE(general.Language, QString("lang_en"));
    QCOMPARE(general.RefreshTimeOfMonitor, 5);
    QCOMPARE(general.PageEffects, QString("advanced"));

    UpdateSettingInfo update;
    QVERIFY(file->getUpdateSetting(update));
    QCOMPARE(update.CheckInterval, 30);
    QCOMPARE(update.UpdateMode, 2);
    QCOMPARE(update.UpdateStatus, 3);

    bool notPrompt = false;
    QVERIFY(file->getNotPromptHPS(notPrompt));
    QVERIFY(notPrompt);
    QDate checked;
    QVERIFY(file->getLastCheckDate(checked));
    QCOMPARE(checked, QDate(2021, 2, 28));

    const ReadCard card = cardOf(*file, "GeForce GTX 1070 Ti", 286094199);
    QVERIFY(card.found);
    QCOMPARE(card.SelectOption, 21U);
    QCOMPARE(card.adjust.GpuFreClock, 1900);
    QCOMPARE(card.adjust.FanSpeedLevel, 70);
    QCOMPARE(card.adjust.Voltage, 1050);
    QCOMPARE(card.adjust.MemoryFreClock, 4100);
    QCOMPARE(card.adjust.Power, 110);
    QCOMPARE(card.adjust.Temperature, 88);
    QCOMPARE(card.adjust.LinkOfPowerWithTemperature, true);
    QCOMPARE(card.adjust.FanMode, 2);
    QCOMPARE(card.adjust.EnableHighPerformance, true);
    QCOMPARE(card.adjust.Nodes, (QList<QPoint>{{0, 0}, {30, 40}, {60, 80}, {100, 100}}));
    QCOMPARE(card.led.Interval, 9);
    QCOMPARE(card.led.LedMode, 4);
    QCOMPARE(card.led.CheckedColorButtonStatic, quint8(6));
    QCOMPARE(card.led.CheckedColorButtonDynamic, quint8(129));
    QVERIFY((card.led.Colors == std::array<quint32, 7>{1, 2, 3, 4, 5, 6, 4294967295U}));
    QCOMPARE(card.lcd.AutoSwitch, false);
    QCOMPARE(card.lcd.SwitchTime, 15U);
    QCOMPARE(card.lcd.ModifierKey, 18U);
    QCOMPARE(card.lcd.NormalKey, 65U);
    QCOMPARE(card.lcd.EnableLcd, false);

    const ReadCard second = cardOf(*file, "Quadro \"P&4000\" <2>", 4294967295U);
    QVERIFY(second.found);
    QCOMPARE(second.adjust.GpuFreClock, 1000);
    QVERIFY(second.adjust.Nodes.isEmpty());
    QCOMPARE(second.lcd.NormalKey, 66U);
}

void TestConfigFileReading::absentElementKeepsDefaults()
{
    const Ovryn_ConfigFile *file = load(cards(gpu("")));
    GeneralSettingInfo general;
    general.Language.clear();
    QVERIFY(file->getGeneralSetting(general));
    QCOMPARE(general.StartOnBoot, true);
    QCOMPARE(general.MinimizeOnStart, false);
    QCOMPARE(general.ApplyLastParamOnStart, true);
    QCOMPARE(general.Language, QString("lang_ch"));
    QCOMPARE(general.RefreshTimeOfMonitor, 1);
    QCOMPARE(general.PageEffects, QString("normal"));
    UpdateSettingInfo update = {0, 9, 0};
    QVERIFY(file->getUpdateSetting(update));
    QCOMPARE(update.CheckInterval, 7);
    QCOMPARE(update.UpdateMode, 0);
    QCOMPARE(update.UpdateStatus, 1);

    const ReadCard card = cardOf(*file);
    QVERIFY(card.found);
    QCOMPARE(card.SelectOption, 0U);
    QCOMPARE(card.adjust.GpuFreClock, -1);
    QCOMPARE(card.adjust.FanSpeedLevel, -1);
    QCOMPARE(card.adjust.Voltage, -1);
    QCOMPARE(card.adjust.MemoryFreClock, -1);
    QCOMPARE(card.adjust.Power, -1);
    QCOMPARE(card.adjust.Temperature, -1);
    QCOMPARE(card.adjust.LinkOfPowerWithTemperature, false);
    QCOMPARE(card.adjust.FanMode, 0);
    QVERIFY(card.adjust.Nodes.isEmpty());
    QCOMPARE(card.adjust.EnableHighPerformance, false);
    QCOMPARE(card.led.LedMode, 1);
    QCOMPARE(card.led.CheckedColorButtonStatic, quint8(1));
    QCOMPARE(card.led.CheckedColorButtonDynamic, quint8(0));
    QCOMPARE(card.led.Interval, 2);
    for (quint32 color : card.led.Colors)
        QCOMPARE(color, 16777215U);
    QCOMPARE(card.lcd.AutoSwitch, true);
    QCOMPARE(card.lcd.SwitchTime, 10U);
    QCOMPARE(card.lcd.ModifierKey, 17U);
    QCOMPARE(card.lcd.NormalKey, 49U);
    QCOMPARE(card.lcd.EnableLcd, true);
}

void TestConfigFileReading::absentAttributesReadAsNothing()
{
    const QByteArray modules = "<MonitorModule/><AdjustModule/><LedModule/><LcdModule/>";
    const Ovryn_ConfigFile *file =
        load(document("<GeneralSetting/><UpdateSetting/><OtherSetting/><GpuSettings>" + gpu(modules) +
                      "<GPU><AdjustModule Voltage=\"9\"/></GPU></GpuSettings>"));
    GeneralSettingInfo general;
    QVERIFY(file->getGeneralSetting(general));
    QCOMPARE(general.StartOnBoot, false);
    QCOMPARE(general.MinimizeOnStart, false);
    QCOMPARE(general.ApplyLastParamOnStart, false);
    QVERIFY(general.Language.isEmpty());
    QCOMPARE(general.RefreshTimeOfMonitor, 0);
    QVERIFY(general.PageEffects.isEmpty());
    UpdateSettingInfo update;
    QVERIFY(file->getUpdateSetting(update));
    QCOMPARE(update.CheckInterval, 0);
    QCOMPARE(update.UpdateMode, 0);
    QCOMPARE(update.UpdateStatus, 0);
    bool notPrompt = true;
    QVERIFY(file->getNotPromptHPS(notPrompt));
    QVERIFY(!notPrompt);

    const ReadCard card = cardOf(*file);
    QVERIFY(card.found);
    QCOMPARE(card.adjust.Voltage, 0);
    QCOMPARE(card.adjust.GpuFreClock, 0);
    QVERIFY(card.adjust.Nodes.isEmpty());
    QCOMPARE(card.led.LedMode, 0);
    QCOMPARE(card.led.CheckedColorButtonStatic, quint8(0));
    QCOMPARE(card.led.Interval, 0);
    QCOMPARE(card.led.Colors[0], 0U);
    QCOMPARE(card.led.Colors[6], 0U);
    QCOMPARE(card.lcd.AutoSwitch, false);
    QCOMPARE(card.lcd.SwitchTime, 0U);
    QCOMPARE(card.lcd.ModifierKey, 0U);
    QCOMPARE(card.lcd.NormalKey, 0U);
    QCOMPARE(card.lcd.EnableLcd, false);

    const ReadCard nameless = cardOf(*file, QString(), 0);
    QVERIFY(nameless.found);
    QCOMPARE(nameless.adjust.Voltage, 9);
    QCOMPARE(nameless.adjust.Power, 0);
    QCOMPARE(nameless.lcd.NormalKey, 49U);
}

void TestConfigFileReading::stopsAtForeignCards_data()
{
    QTest::addColumn<QByteArray>("between");
    QTest::addColumn<bool>("secondIsRead");
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("white space") << QByteArray("\n\t  \n") << true;
    QTest::newRow("comment") << QByteArray("<!-- my second card -->") << false;
    QTest::newRow("text") << QByteArray("text") << false;
    QTest::newRow("character data") << QByteArray("<![CDATA[x]]>") << false;
    QTest::newRow("other element") << QByteArray("<Gpu/>") << false;
    QTest::newRow("processing instruction of the same name") << QByteArray("<?GPU x?>") << false;
}

void TestConfigFileReading::stopsAtForeignCards()
{
    QFETCH(QByteArray, between);
    QFETCH(bool, secondIsRead);
    load(cards("<GPU GpuName='A' SubSystemId='1'/>" + between + "<GPU GpuName='B' SubSystemId='2'/>"));
    QVERIFY(cardOf(*loaded, "A", 1).found);
    QCOMPARE(cardOf(*loaded, "B", 2).found, secondIsRead);
}

void TestConfigFileReading::stopsAtForeignModules_data()
{
    QTest::addColumn<QByteArray>("between");
    QTest::addColumn<bool>("nextIsRead");
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("other module of ours") << QByteArray("<LcdModule/>") << true;
    QTest::newRow("comment") << QByteArray("<!-- tuned -->") << false;
    QTest::newRow("text") << QByteArray("text") << false;
    QTest::newRow("other element") << QByteArray("<RgbModule/>") << false;
    QTest::newRow("name in other letters") << QByteArray("<lcdmodule/>") << false;
}

void TestConfigFileReading::stopsAtForeignModules()
{
    QFETCH(QByteArray, between);
    QFETCH(bool, nextIsRead);
    load(cards(gpu("<MonitorModule SelectOption='5'/>" + between + "<AdjustModule Power='110'/>") +
               "<GPU GpuName='B' SubSystemId='2'/>"));
    const ReadCard card = cardOf(*loaded);
    QVERIFY(card.found); // what was read so far is kept
    QCOMPARE(card.SelectOption, 5U);
    QCOMPARE(card.adjust.Power, nextIsRead ? 110 : -1);
    QVERIFY(cardOf(*loaded, "B", 2).found); // only the walk of this card's children ends
}

void TestConfigFileReading::skipsForeignSections()
{
    load(document("text<!-- comment --><Other><GeneralSetting Language='no'/></Other><?pi x?>"
                  "<GeneralSetting Language='lang_en'/><GPU GpuName='A' SubSystemId='7'/>"));
    GeneralSettingInfo general;
    QVERIFY(loaded->getGeneralSetting(general));
    QCOMPARE(general.Language, QString("lang_en"));
    QVERIFY(!cardOf(*loaded).found);
}

void TestConfigFileReading::sectionsInAnyOrder()
{
    load(document("<OtherSetting NotPromptHPS='1'/><LastCheckDate>2021/02/28</LastCheckDate><GpuSettings>" + gpu("") +
                  "</GpuSettings><UpdateSetting CheckInterval='90'/><GeneralSetting Language='lang_en'/>"));
    GeneralSettingInfo general;
    UpdateSettingInfo update;
    QDate checked;
    bool notPrompt = false;
    QVERIFY(loaded->getGeneralSetting(general) && loaded->getUpdateSetting(update));
    QVERIFY(loaded->getLastCheckDate(checked) && loaded->getNotPromptHPS(notPrompt));
    QCOMPARE(general.Language, QString("lang_en"));
    QCOMPARE(update.CheckInterval, 90);
    QCOMPARE(checked, QDate(2021, 2, 28));
    QVERIFY(notPrompt);
    QVERIFY(cardOf(*loaded).found);
}

void TestConfigFileReading::repeatedSections()
{
    load(document("<UpdateSetting CheckInterval='30'/><UpdateSetting CheckInterval='90'/>"
                  "<GpuSettings><GPU GpuName='A' SubSystemId='1'/></GpuSettings>"
                  "<GpuSettings><GPU GpuName='B' SubSystemId='2'/></GpuSettings>"));
    UpdateSettingInfo update;
    QVERIFY(loaded->getUpdateSetting(update));
    QCOMPARE(update.CheckInterval, 90); // the last one wins
    QVERIFY(cardOf(*loaded, "A", 1).found);
    QVERIFY(cardOf(*loaded, "B", 2).found);
}

void TestConfigFileReading::findsCardsExactly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<quint32>("id");
    QTest::addColumn<bool>("found");
    QTest::newRow("the card") << "GeForce GTX 1070 Ti" << 286094199U << true;
    QTest::newRow("name in other letters") << "GEFORCE GTX 1070 TI" << 286094199U << false;
    QTest::newRow("part of the name") << "GeForce GTX 1070" << 286094199U << false;
    QTest::newRow("blank after the name") << "GeForce GTX 1070 Ti " << 286094199U << false;
    QTest::newRow("numbered card") << "GeForce GTX 1070 Ti 2" << 286094199U << false;
    QTest::newRow("other identifier") << "GeForce GTX 1070 Ti" << 286094198U << false;
    QTest::newRow("identifier of another card") << "GeForce GTX 1070 Ti" << 4294967295U << false;
    QTest::newRow("no name") << "" << 0U << false;
}

void TestConfigFileReading::findsCardsExactly()
{
    QFETCH(QString, name);
    QFETCH(quint32, id);
    QFETCH(bool, found);
    load(kSampleConfig);
    AdjustModuleInfo adjust;
    LedModuleInfo led;
    LcdModuleInfo lcd;
    quint32 selectOption = 12345;
    QCOMPARE(loaded->getAdjustModule(name, id, adjust), found);
    QCOMPARE(loaded->getLedModule(name, id, led), found);
    QCOMPARE(loaded->getLcdModule(name, id, lcd), found);
    QCOMPARE(loaded->getMonitorModule(name, id, selectOption), found);
    QCOMPARE(selectOption == 12345, !found); // untouched where there is no such card
    QCOMPARE(adjust.GpuFreClock == -1, !found);
}

void TestConfigFileReading::firstOfEqualCardsCounts()
{
    load(cards(gpu("<MonitorModule SelectOption='1'/>") + gpu("<MonitorModule SelectOption='2'/>")));
    QCOMPARE(cardOf(*loaded).SelectOption, 1U);
}

void TestConfigFileReading::keepsDatesAndPromptWhereAbsent()
{
    folder->write(document(""));
    Ovryn_ConfigFile file(folder->path());
    file.setLastCheckDate(QDate(2001, 2, 3));
    file.setNotPromptHPS(true);
    QVERIFY(file.load());
    QDate checked;
    bool notPrompt = false;
    QVERIFY(file.getLastCheckDate(checked) && file.getNotPromptHPS(notPrompt));
    QCOMPARE(checked, QDate(2001, 2, 3));
    QVERIFY(notPrompt);
}

void TestConfigFileReading::secondLoadForgetsTheFirst()
{
    load(kSampleConfig);
    folder->write(cards(gpu("")));
    QVERIFY(loaded->load());
    GeneralSettingInfo general;
    QVERIFY(loaded->getGeneralSetting(general));
    QCOMPARE(general.Language, QString("lang_ch"));
    QVERIFY(!cardOf(*loaded, "GeForce GTX 1070 Ti", 286094199).found);
    QVERIFY(cardOf(*loaded).found);
}

void TestConfigFileReading::nodesOfACard_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QList<QPoint>>("nodes");
    QTest::newRow("curve") << QByteArray("30,40|60,80|") << QList<QPoint>{{30, 40}, {60, 80}};
    QTest::newRow("falling curve") << QByteArray("30,40|20,80|") << QList<QPoint>{};
    QTest::newRow("written over two lines") << QByteArray("30,40|\n60,80|") << QList<QPoint>{{30, 40}, {60, 80}};
}

void TestConfigFileReading::nodesOfACard()
{
    QFETCH(QByteArray, text);
    QFETCH(QList<QPoint>, nodes);
    load(cards(gpu("<AdjustModule Nodes=\"" + text + "\"/>")));
    QCOMPARE(cardOf(*loaded).adjust.Nodes, nodes);
}

void TestConfigFileReading::manyCards()
{
    constexpr int kCards = 100000; // more than a text of accepted size holds once it has been saved
    QByteArray children;
    for (int card = 1; card < kCards; ++card)
        children += "<GPU GpuName='card' SubSystemId='" + QByteArray::number(card) + "'/>\n";
    load(cards(children + gpu("<MonitorModule SelectOption='3'/>")));
    QVERIFY(cardOf(*loaded, "card", 1).found);
    QVERIFY(cardOf(*loaded, "card", kCards - 1).found);
    QCOMPARE(cardOf(*loaded).SelectOption, 3U);
}

void TestConfigFileReading::remarksAboutEntities_data()
{
    QTest::addColumn<QByteArray>("remark");
    QTest::newRow("comment") << QByteArray("<!-- <!ENTITY e 'x'> -->");
    QTest::newRow("character data") << QByteArray("<Note><![CDATA[<!ENTITY e 'x'>]]></Note>");
    QTest::newRow("comment with a document type") << QByteArray("<!-- <!DOCTYPE a [<!ENTITY e 'x'>]> -->");
}

/// A text that only mentions entities declares none, also in a file that is too large for entities.
void TestConfigFileReading::remarksAboutEntities()
{
    QFETCH(QByteArray, remark);
    const QByteArray text =
        QByteArray(kSampleConfig).replace("<OtherSetting", remark + QByteArray(20000, '\n') + "<OtherSetting");
    const Ovryn_ConfigFile *file = load(text);
    QCOMPARE(folder->text(), text); // not replaced by a fresh one
    QVERIFY(cardOf(*file, "GeForce GTX 1070 Ti", 286094199).found);
}

QTEST_APPLESS_MAIN(TestConfigFileReading)
#include "TestConfigFileReading.moc"
