#include "config/Ovryn_ConfigFile.h"

#include "config/ConfigFolder.h"
#include "config/SampleConfig.h"

#include <QtTest>

namespace
{

const QString kName = QStringLiteral("A");
constexpr quint32 kId = 7;

/// Everything that the getters give of a card; `found` tells whether they all know it.
struct Card : GpuSettingInfo
{
    bool found = false;
};

Card cardOf(const Ovryn_ConfigFile &config, const QString &name = kName, quint32 id = kId)
{
    Card card;
    card.found = config.getMonitorModule(name, id, card.SelectOption) &&
                 config.getAdjustModule(name, id, card.adjust) && config.getLedModule(name, id, card.led) &&
                 config.getLcdModule(name, id, card.lcd);
    return card;
}

QByteArray gpu(const QByteArray &children)
{
    return "<GPU GpuName=\"A\" SubSystemId=\"7\">" + children + "</GPU>";
}

using CardValue = qint64 (*)(const GpuSettingInfo &);

#define FIELD(field)                                                                                                 \
    [](const GpuSettingInfo &card) -> qint64 {                                                                       \
        return card.field;                                                                                           \
    }

/// What one attribute of a card's module reads as.
struct NumberCase
{
    const char *what;
    const char *module;
    const char *attribute;
    const char *text;
    CardValue value;
    qint64 expected;
};

// clang-format off
const NumberCase kNumberCases[] = {
    { "signed",                               "AdjustModule", "GpuFreClock", "1900", FIELD(adjust.GpuFreClock), 1900 },
    { "signed, negative",                     "AdjustModule", "GpuFreClock", "-1", FIELD(adjust.GpuFreClock), -1 },
    { "signed, smallest",                     "AdjustModule", "Voltage", "-2147483648", FIELD(adjust.Voltage), -2147483648LL },
    { "signed, largest",                      "AdjustModule", "Power", "2147483647", FIELD(adjust.Power), 2147483647 },
    { "signed, one too large",                "AdjustModule", "Power", "2147483648", FIELD(adjust.Power), 0 },
    { "signed, no number",                    "AdjustModule", "Temperature", "hot", FIELD(adjust.Temperature), 0 },
    { "signed, number and more",              "AdjustModule", "Temperature", "88C", FIELD(adjust.Temperature), 0 },
    { "signed, with a point",                 "AdjustModule", "FanSpeedLevel", "70.5", FIELD(adjust.FanSpeedLevel), 0 },
    { "signed, hexadecimal",                  "AdjustModule", "MemoryFreClock", "0x10", FIELD(adjust.MemoryFreClock), 0 },
    { "signed, empty",                        "AdjustModule", "FanMode", "", FIELD(adjust.FanMode), 0 },
    { "signed, leading zeros",                "AdjustModule", "FanMode", "002", FIELD(adjust.FanMode), 2 },
    { "signed bool, 1",                       "AdjustModule", "LinkOfPowerWithTemperature", "1", FIELD(adjust.LinkOfPowerWithTemperature), 1 },
    { "signed bool, 0",                       "AdjustModule", "LinkOfPowerWithTemperature", "0", FIELD(adjust.LinkOfPowerWithTemperature), 0 },
    { "signed bool, any number",              "AdjustModule", "LinkOfPowerWithTemperature", "256", FIELD(adjust.LinkOfPowerWithTemperature), 1 },
    { "signed bool, negative",                "AdjustModule", "LinkOfPowerWithTemperature", "-1", FIELD(adjust.LinkOfPowerWithTemperature), 1 },
    { "signed bool, too large",               "AdjustModule", "LinkOfPowerWithTemperature", "4294967295", FIELD(adjust.LinkOfPowerWithTemperature), 0 },
    { "signed bool, word",                    "AdjustModule", "LinkOfPowerWithTemperature", "true", FIELD(adjust.LinkOfPowerWithTemperature), 0 },
    { "unsigned bool, 1",                     "AdjustModule", "EnableHighPerformance", "1", FIELD(adjust.EnableHighPerformance), 1 },
    { "unsigned bool, any number",            "AdjustModule", "EnableHighPerformance", "256", FIELD(adjust.EnableHighPerformance), 1 },
    { "unsigned bool, negative",              "AdjustModule", "EnableHighPerformance", "-1", FIELD(adjust.EnableHighPerformance), 0 },
    { "unsigned bool, largest",               "AdjustModule", "EnableHighPerformance", "4294967295", FIELD(adjust.EnableHighPerformance), 1 },
    { "AutoSwitch is unsigned",               "LcdModule", "AutoSwitch", "-1", FIELD(lcd.AutoSwitch), 0 },
    { "EnableLcd is unsigned",                "LcdModule", "EnableLcd", "-1", FIELD(lcd.EnableLcd), 0 },
    { "unsigned, largest",                    "LcdModule", "SwitchTime", "4294967295", FIELD(lcd.SwitchTime), 4294967295LL },
    { "unsigned, one too large",              "LcdModule", "SwitchTime", "4294967296", FIELD(lcd.SwitchTime), 0 },
    { "unsigned, negative",                   "LcdModule", "ModifierKey", "-1", FIELD(lcd.ModifierKey), 0 },
    { "unsigned, no number",                  "LcdModule", "NormalKey", "A", FIELD(lcd.NormalKey), 0 },
    { "mask, largest",                        "MonitorModule", "SelectOption", "4294967295", FIELD(SelectOption), 4294967295LL },
    { "mask, negative",                       "MonitorModule", "SelectOption", "-1", FIELD(SelectOption), 0 },
    { "LedMode is signed",                    "LedModule", "LedMode", "-3", FIELD(led.LedMode), -3 },
    { "8 bits, largest",                      "LedModule", "CheckedColorButtonStatic", "255", FIELD(led.CheckedColorButtonStatic), 255 },
    { "8 bits, cut",                          "LedModule", "CheckedColorButtonStatic", "258", FIELD(led.CheckedColorButtonStatic), 2 },
    { "8 bits, cut to nothing",               "LedModule", "CheckedColorButtonDynamic", "256", FIELD(led.CheckedColorButtonDynamic), 0 },
    { "8 bits, cut of the largest",           "LedModule", "CheckedColorButtonDynamic", "4294967295", FIELD(led.CheckedColorButtonDynamic), 255 },
    { "8 bits, negative is no unsigned",      "LedModule", "CheckedColorButtonDynamic", "-1", FIELD(led.CheckedColorButtonDynamic), 0 },
    { "Interval is read as signed",           "LedModule", "Interval", "-2", FIELD(led.Interval), -2 },
    { "Interval written from a negative one", "LedModule", "Interval", "4294967295", FIELD(led.Interval), 0 },
    { "colour, default",                      "LedModule", "Color1", "16777215", FIELD(led.Colors[0]), 0xFFFFFF },
    { "colour, wider than 24 bits",           "LedModule", "Color7", "4294967295", FIELD(led.Colors[6]), 4294967295LL },
    { "colour, negative",                     "LedModule", "Color4", "-1", FIELD(led.Colors[3]), 0 },
};
// clang-format on

#undef FIELD

/// The entry that a card's `SubSystemId` text makes.
struct IdCase
{
    const char *what;
    const char *text;
    quint32 id;
};

const IdCase kIdCases[] = {
    {"largest", "4294967295", 4294967295U},
    {"the sign bit", "2147483648", 2147483648U},
    {"negative", "-1", 0},
    {"no number", "x", 0},
    {"empty", "", 0},
};

} // namespace

class TestConfigFileReading : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder.reset(new ConfigFolder); }

    void readsEveryValue();
    void readsNumbers_data();
    void readsNumbers();
    void readsSubSystemIds_data();
    void readsSubSystemIds();
    void readsDates_data();
    void readsDates();
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

private:
    /// A configuration that has read the text.
    Ovryn_ConfigFile *load(const QByteArray &text)
    {
        folder->write(text);
        config.reset(new Ovryn_ConfigFile(folder->path()));
        if (!config->load())
            qFatal("the text was not loaded");
        return config.data();
    }

    QScopedPointer<ConfigFolder> folder;
    QScopedPointer<Ovryn_ConfigFile> config;
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

    const Card card = cardOf(*file, "GeForce GTX 1070 Ti", 286094199);
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

    const Card second = cardOf(*file, "Quadro \"P&4000\" <2>", 4294967295U);
    QVERIFY(second.found);
    QCOMPARE(second.adjust.GpuFreClock, 1000);
    QVERIFY(second.adjust.Nodes.isEmpty());
    QCOMPARE(second.lcd.NormalKey, 66U);
}

void TestConfigFileReading::readsNumbers_data()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const NumberCase &number : kNumberCases)
        QTest::newRow(number.what) << row++;
}

void TestConfigFileReading::readsNumbers()
{
    QFETCH(int, row);
    const NumberCase &number = kNumberCases[row];
    const QByteArray module = QByteArray("<") + number.module + " " + number.attribute + "=\"" + number.text + "\"/>";
    const Card card = cardOf(*load(cards(gpu(module))));
    QVERIFY(card.found);
    QCOMPARE(number.value(card), number.expected);
}

void TestConfigFileReading::readsSubSystemIds_data()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const IdCase &id : kIdCases)
        QTest::newRow(id.what) << row++;
}

void TestConfigFileReading::readsSubSystemIds()
{
    QFETCH(int, row);
    const IdCase &id = kIdCases[row];
    load(cards(QByteArray("<GPU GpuName=\"A\" SubSystemId=\"") + id.text + "\"/>"));
    QVERIFY(cardOf(*config, kName, id.id).found);
    QVERIFY(!cardOf(*config, kName, id.id + 1).found);
}

void TestConfigFileReading::readsDates_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<QDate>("date");
    QTest::newRow("date") << QByteArray("<LastCheckDate>2021/02/28</LastCheckDate>") << QDate(2021, 2, 28);
    QTest::newRow("no such day") << QByteArray("<LastCheckDate>2021/02/29</LastCheckDate>") << QDate();
    QTest::newRow("other separator") << QByteArray("<LastCheckDate>2021-02-28</LastCheckDate>") << QDate();
    QTest::newRow("day first") << QByteArray("<LastCheckDate>28/02/2021</LastCheckDate>") << QDate();
    QTest::newRow("word") << QByteArray("<LastCheckDate>never</LastCheckDate>") << QDate();
    QTest::newRow("empty text") << QByteArray("<LastCheckDate></LastCheckDate>") << QDate();
    QTest::newRow("no text") << QByteArray("<LastCheckDate/>") << QDate();
}

void TestConfigFileReading::readsDates()
{
    QFETCH(QByteArray, element);
    QFETCH(QDate, date);
    QDate checked(1999, 1, 1);
    QVERIFY(load(document(element))->getLastCheckDate(checked));
    QCOMPARE(checked, date);
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

    const Card card = cardOf(*file);
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

    const Card card = cardOf(*file);
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

    const Card nameless = cardOf(*file, QString(), 0);
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
    QVERIFY(cardOf(*config, "A", 1).found);
    QCOMPARE(cardOf(*config, "B", 2).found, secondIsRead);
}

void TestConfigFileReading::stopsAtForeignModules_data()
{
    QTest::addColumn<QByteArray>("between");
    QTest::addColumn<bool>("behindIsRead");
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
    QFETCH(bool, behindIsRead);
    load(cards(gpu("<MonitorModule SelectOption='5'/>" + between + "<AdjustModule Power='110'/>") +
               "<GPU GpuName='B' SubSystemId='2'/>"));
    const Card card = cardOf(*config);
    QVERIFY(card.found); // what was read so far is kept
    QCOMPARE(card.SelectOption, 5U);
    QCOMPARE(card.adjust.Power, behindIsRead ? 110 : -1);
    QVERIFY(cardOf(*config, "B", 2).found); // only the walk of this card's children ends
}

void TestConfigFileReading::skipsForeignSections()
{
    load(document("text<!-- comment --><Other><GeneralSetting Language='no'/></Other><?pi x?>"
                  "<GeneralSetting Language='lang_en'/><GPU GpuName='A' SubSystemId='7'/>"));
    GeneralSettingInfo general;
    QVERIFY(config->getGeneralSetting(general));
    QCOMPARE(general.Language, QString("lang_en"));
    QVERIFY(!cardOf(*config).found);
}

void TestConfigFileReading::sectionsInAnyOrder()
{
    load(document("<OtherSetting NotPromptHPS='1'/><LastCheckDate>2021/02/28</LastCheckDate><GpuSettings>" + gpu("") +
                  "</GpuSettings><UpdateSetting CheckInterval='90'/><GeneralSetting Language='lang_en'/>"));
    GeneralSettingInfo general;
    UpdateSettingInfo update;
    QDate checked;
    bool notPrompt = false;
    QVERIFY(config->getGeneralSetting(general) && config->getUpdateSetting(update));
    QVERIFY(config->getLastCheckDate(checked) && config->getNotPromptHPS(notPrompt));
    QCOMPARE(general.Language, QString("lang_en"));
    QCOMPARE(update.CheckInterval, 90);
    QCOMPARE(checked, QDate(2021, 2, 28));
    QVERIFY(notPrompt);
    QVERIFY(cardOf(*config).found);
}

void TestConfigFileReading::repeatedSections()
{
    load(document("<UpdateSetting CheckInterval='30'/><UpdateSetting CheckInterval='90'/>"
                  "<GpuSettings><GPU GpuName='A' SubSystemId='1'/></GpuSettings>"
                  "<GpuSettings><GPU GpuName='B' SubSystemId='2'/></GpuSettings>"));
    UpdateSettingInfo update;
    QVERIFY(config->getUpdateSetting(update));
    QCOMPARE(update.CheckInterval, 90); // the last one wins
    QVERIFY(cardOf(*config, "A", 1).found);
    QVERIFY(cardOf(*config, "B", 2).found);
}

void TestConfigFileReading::findsCardsExactly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<quint32>("id");
    QTest::addColumn<bool>("found");
    QTest::newRow("the card") << "GeForce GTX 1070 Ti" << 286094199U << true;
    QTest::newRow("name in other letters") << "GEFORCE GTX 1070 TI" << 286094199U << false;
    QTest::newRow("part of the name") << "GeForce GTX 1070" << 286094199U << false;
    QTest::newRow("blank behind the name") << "GeForce GTX 1070 Ti " << 286094199U << false;
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
    QCOMPARE(config->getAdjustModule(name, id, adjust), found);
    QCOMPARE(config->getLedModule(name, id, led), found);
    QCOMPARE(config->getLcdModule(name, id, lcd), found);
    QCOMPARE(config->getMonitorModule(name, id, selectOption), found);
    QCOMPARE(selectOption == 12345, !found); // untouched where there is no such card
    QCOMPARE(adjust.GpuFreClock == -1, !found);
}

void TestConfigFileReading::firstOfEqualCardsCounts()
{
    load(cards(gpu("<MonitorModule SelectOption='1'/>") + gpu("<MonitorModule SelectOption='2'/>")));
    QCOMPARE(cardOf(*config).SelectOption, 1U);
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
    QVERIFY(config->load());
    GeneralSettingInfo general;
    QVERIFY(config->getGeneralSetting(general));
    QCOMPARE(general.Language, QString("lang_ch"));
    QVERIFY(!cardOf(*config, "GeForce GTX 1070 Ti", 286094199).found);
    QVERIFY(cardOf(*config).found);
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
    QCOMPARE(cardOf(*config).adjust.Nodes, nodes);
}

void TestConfigFileReading::manyCards()
{
    constexpr int kCards = 100000; // more than a text of accepted size holds once it has been saved
    QByteArray children;
    for (int card = 1; card < kCards; ++card)
        children += "<GPU GpuName='card' SubSystemId='" + QByteArray::number(card) + "'/>\n";
    load(cards(children + gpu("<MonitorModule SelectOption='3'/>")));
    QVERIFY(cardOf(*config, "card", 1).found);
    QVERIFY(cardOf(*config, "card", kCards - 1).found);
    QCOMPARE(cardOf(*config).SelectOption, 3U);
}

void TestConfigFileReading::remarksAboutEntities_data()
{
    QTest::addColumn<QByteArray>("remark");
    QTest::newRow("comment") << QByteArray("<!-- <!ENTITY e 'x'> -->");
    QTest::newRow("character data") << QByteArray("<Note><![CDATA[<!ENTITY e 'x'>]]></Note>");
    QTest::newRow("comment with a document type") << QByteArray("<!-- <!DOCTYPE a [<!ENTITY e 'x'>]> -->");
}

/// What only speaks of entities declares none, also in a file so large that it may not.
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
