#include "config/ConfigFileTest.h"

namespace
{

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

/// Numbers, identifiers and dates as the attributes and elements of a loaded file hold them.
class TestConfigFileNumbers : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void readsNumbers_data();
    void readsNumbers();
    void readsSubSystemIds_data();
    void readsSubSystemIds();
    void readsDates_data();
    void readsDates();
};

void TestConfigFileNumbers::readsNumbers_data()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const NumberCase &number : kNumberCases)
        QTest::newRow(number.what) << row++;
}

void TestConfigFileNumbers::readsNumbers()
{
    QFETCH(int, row);
    const NumberCase &number = kNumberCases[row];
    const QByteArray module = QByteArray("<") + number.module + " " + number.attribute + "=\"" + number.text + "\"/>";
    const ReadCard card = cardOf(*load(cards(gpu(module))));
    QVERIFY(card.found);
    QCOMPARE(number.value(card), number.expected);
}

void TestConfigFileNumbers::readsSubSystemIds_data()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const IdCase &id : kIdCases)
        QTest::newRow(id.what) << row++;
}

void TestConfigFileNumbers::readsSubSystemIds()
{
    QFETCH(int, row);
    const IdCase &id = kIdCases[row];
    load(cards(QByteArray("<GPU GpuName=\"A\" SubSystemId=\"") + id.text + "\"/>"));
    QVERIFY(cardOf(*loaded, "A", id.id).found);
    QVERIFY(!cardOf(*loaded, "A", id.id + 1).found);
}

void TestConfigFileNumbers::readsDates_data()
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

void TestConfigFileNumbers::readsDates()
{
    QFETCH(QByteArray, element);
    QFETCH(QDate, date);
    QDate checked(1999, 1, 1);
    QVERIFY(load(document(element))->getLastCheckDate(checked));
    QCOMPARE(checked, date);
}

QTEST_APPLESS_MAIN(TestConfigFileNumbers)
#include "TestConfigFileNumbers.moc"
