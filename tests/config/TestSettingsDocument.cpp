#include "config/ConfigFileTest.h"
#include "config/Ovryn_ConfigFile.h"

#include <QDomDocument>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QtTest>

#include <iterator>

namespace
{

/// The values of a loaded file with one card.
struct Settings
{
    GeneralSettingInfo general;
    UpdateSettingInfo update;
    bool notPrompt = false;
    GpuSettingInfo card; ///< the records' defaults where the card is not found
};

/// One row of a table of the document, by column.
using Row = QMap<QString, QString>;

/// The tables of the document by the name in their heading: "GeneralSetting", "Dates".
using Tables = QMap<QString, QList<Row>>;

/// One attribute, and the field that it fills, as text: a number in decimal digits, a switch as 0 or 1.
struct Field
{
    const char *element;
    const char *attribute;
    QString (*text)(const Settings &settings);
};

template <typename Value>
QString textOf(const Value &value)
{
    return QString::number(value);
}
QString textOf(const QString &value)
{
    return value;
}
QString textOf(const QList<QPoint> &nodes)
{
    QString text;
    for (const QPoint &node : nodes)
        text += QStringLiteral("%1,%2|").arg(node.x()).arg(node.y());
    return text;
}

#define FIELD(path)                                                                                                  \
    [](const Settings &settings) {                                                                                   \
        return textOf(settings.path);                                                                                \
    }

// clang-format off
const Field kFields[] = {
    // element           attribute                     field
    { "GeneralSetting",  "StartOnBoot",                FIELD(general.StartOnBoot) },
    { "GeneralSetting",  "MinimizeOnStart",            FIELD(general.MinimizeOnStart) },
    { "GeneralSetting",  "ApplyLastParamOnStart",      FIELD(general.ApplyLastParamOnStart) },
    { "GeneralSetting",  "Language",                   FIELD(general.Language) },
    { "GeneralSetting",  "RefreshTimeOfMonitor",       FIELD(general.RefreshTimeOfMonitor) },
    { "GeneralSetting",  "PageEffects",                FIELD(general.PageEffects) },
    { "UpdateSetting",   "CheckInterval",              FIELD(update.CheckInterval) },
    { "UpdateSetting",   "UpdateMode",                 FIELD(update.UpdateMode) },
    { "UpdateSetting",   "UpdateStatus",               FIELD(update.UpdateStatus) },
    { "OtherSetting",    "NotPromptHPS",               FIELD(notPrompt) },
    { "MonitorModule",   "SelectOption",               FIELD(card.SelectOption) },
    { "AdjustModule",    "GpuFreClock",                FIELD(card.adjust.GpuFreClock) },
    { "AdjustModule",    "FanSpeedLevel",              FIELD(card.adjust.FanSpeedLevel) },
    { "AdjustModule",    "Voltage",                    FIELD(card.adjust.Voltage) },
    { "AdjustModule",    "MemoryFreClock",             FIELD(card.adjust.MemoryFreClock) },
    { "AdjustModule",    "Power",                      FIELD(card.adjust.Power) },
    { "AdjustModule",    "Temperature",                FIELD(card.adjust.Temperature) },
    { "AdjustModule",    "LinkOfPowerWithTemperature", FIELD(card.adjust.LinkOfPowerWithTemperature) },
    { "AdjustModule",    "FanMode",                    FIELD(card.adjust.FanMode) },
    { "AdjustModule",    "EnableHighPerformance",      FIELD(card.adjust.EnableHighPerformance) },
    { "AdjustModule",    "Nodes",                      FIELD(card.adjust.Nodes) },
    { "LedModule",       "Interval",                   FIELD(card.led.Interval) },
    { "LedModule",       "LedMode",                    FIELD(card.led.LedMode) },
    { "LedModule",       "CheckedColorButtonStatic",   FIELD(card.led.CheckedColorButtonStatic) },
    { "LedModule",       "CheckedColorButtonDynamic",  FIELD(card.led.CheckedColorButtonDynamic) },
    { "LedModule",       "Color1",                     FIELD(card.led.Colors[0]) },
    { "LedModule",       "Color2",                     FIELD(card.led.Colors[1]) },
    { "LedModule",       "Color3",                     FIELD(card.led.Colors[2]) },
    { "LedModule",       "Color4",                     FIELD(card.led.Colors[3]) },
    { "LedModule",       "Color5",                     FIELD(card.led.Colors[4]) },
    { "LedModule",       "Color6",                     FIELD(card.led.Colors[5]) },
    { "LedModule",       "Color7",                     FIELD(card.led.Colors[6]) },
    { "LcdModule",       "AutoSwitch",                 FIELD(card.lcd.AutoSwitch) },
    { "LcdModule",       "SwitchTime",                 FIELD(card.lcd.SwitchTime) },
    { "LcdModule",       "ModifierKey",                FIELD(card.lcd.ModifierKey) },
    { "LcdModule",       "NormalKey",                  FIELD(card.lcd.NormalKey) },
    { "LcdModule",       "EnableLcd",                  FIELD(card.lcd.EnableLcd) },
};

/// The values that the document's types read from texts.
struct Probe
{
    const char *type;
    const char *text;
    const char *read;
};
const Probe kProbes[] = {
    // type       text           read as
    { "switch",   "0",           "0" },
    { "switch",   "1",           "1" },
    { "switch",   "7",           "1" },
    { "switch",   "on",          "0" },
    { "signed",   "-2147483648", "-2147483648" },
    { "signed",   "2147483647",  "2147483647" },
    { "signed",   "2147483648",  "0" },
    { "unsigned", "4294967295",  "4294967295" },
    { "unsigned", "-1",          "0" },
    { "byte",     "255",         "255" },
    { "byte",     "257",         "1" },
    { "byte",     "-1",          "0" },
    { "text",     "any words",   "any words" },
    { "curve",    "30,40|60,80|", "30,40|60,80|" },
    { "curve",    "30,40|20,80|", "" },
};
// clang-format on

/// A cell without the marks of Markdown; "(empty)" stands for the empty text.
QString plain(const QString &cell)
{
    QString text = cell.trimmed();
    text.remove(QLatin1Char('`'));
    text.replace(QLatin1String("\\|"), QLatin1String("|"));
    return text == QLatin1String("(empty)") ? QString() : text;
}

QStringList cellsOf(const QString &line)
{
    QStringList cells = line.split(QRegularExpression(QStringLiteral("(?<!\\\\)\\|")));
    cells.removeFirst(); // outside the table, as the last one
    cells.removeLast();
    return cells;
}

Tables tablesOf(const QString &document)
{
    Tables tables;
    QString heading;
    QStringList columns;
    for (const QString &line : document.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1Char('#'))) {
            heading = plain(line.section(QLatin1Char(' '), 1));
        } else if (!line.startsWith(QLatin1Char('|'))) {
            columns.clear();
        } else if (columns.isEmpty()) {
            for (const QString &cell : cellsOf(line))
                columns.append(plain(cell));
        } else if (!line.startsWith(QLatin1String("|--"))) {
            const QStringList cells = cellsOf(line);
            Row row;
            for (int i = 0; i < columns.size(); ++i)
                row.insert(columns.at(i), plain(cells.value(i)));
            tables[heading].append(row);
        }
    }
    return tables;
}

/// "GeneralSetting StartOnBoot=0" for each attribute, "LastCloseDate 2021/03/04" for each date, in the elements'
/// order and by name within an element.
QStringList contentOf(const QDomElement &element)
{
    QStringList content = {element.tagName()};
    QStringList attributes;
    for (int i = 0; i < element.attributes().count(); ++i) {
        const QDomAttr attribute = element.attributes().item(i).toAttr();
        attributes.append(element.tagName() + QLatin1Char(' ') + attribute.name() + QLatin1Char('=') +
                          attribute.value());
    }
    attributes.sort();
    content += attributes;
    if (element.firstChild().isText())
        content.append(element.tagName() + QLatin1Char(' ') + element.text());
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement())
        content += contentOf(child);
    return content;
}

} // namespace

/// Compares the tables and the example of docs/settings-file.md with Ovryn_ConfigFile.
class TestSettingsDocument : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tablesAreComplete();
    void exampleIsAsWritten();
    void attributes_data();
    void attributes();
    void types_data();
    void types();
    void cardIsKnownByItsPair();
    void dates_data();
    void dates();
    void lastCheckDate();

private:
    [[nodiscard]] QString cell(const char *element, const char *attribute, const char *column) const;
    [[nodiscard]] QDomElement elementOf(QDomDocument &document, const QString &name) const;
    [[nodiscard]] Settings settingsOf(const QDomDocument &document) const;
    [[nodiscard]] QDomDocument parsedExample() const;

    Tables tables;
    QByteArray example;
};

void TestSettingsDocument::initTestCase()
{
    QFile file(QStringLiteral(OVRYN_SETTINGS_DOCUMENT));
    QVERIFY2(file.open(QIODevice::ReadOnly), OVRYN_SETTINGS_DOCUMENT);
    const QString document = QString::fromUtf8(file.readAll());
    tables = tablesOf(document);
    example = document.section(QStringLiteral("```xml\n"), 1, 1).section(QStringLiteral("```\n"), 0, 0).toUtf8();
    QVERIFY(QDomDocument().setContent(example));
}

QString TestSettingsDocument::cell(const char *element, const char *attribute, const char *column) const
{
    for (const Row &row : tables.value(QLatin1String(element))) {
        if (row.value(QStringLiteral("Attribute")) == QLatin1String(attribute) && row.contains(QLatin1String(column)))
            return row.value(QLatin1String(column));
    }
    qFatal("no cell %s of %s %s", column, element, attribute);
    return {};
}

QDomDocument TestSettingsDocument::parsedExample() const
{
    QDomDocument document;
    document.setContent(example);
    return document;
}

QDomElement TestSettingsDocument::elementOf(QDomDocument &document, const QString &name) const
{
    return document.elementsByTagName(name).at(0).toElement();
}

Settings TestSettingsDocument::settingsOf(const QDomDocument &document) const
{
    folder->write(document.toByteArray());
    Ovryn_ConfigFile config(folder->path());
    Settings settings;
    if (!config.load() || !config.getGeneralSetting(settings.general) || !config.getUpdateSetting(settings.update) ||
        !config.getNotPromptHPS(settings.notPrompt))
        qFatal("the example does not load");
    GpuSettingInfo &card = settings.card;
    const QString name = cell("GPU", "GpuName", "Example");
    const quint32 id = cell("GPU", "SubSystemId", "Example").toUInt();
    if (!config.getMonitorModule(name, id, card.SelectOption) || !config.getAdjustModule(name, id, card.adjust) ||
        !config.getLedModule(name, id, card.led) || !config.getLcdModule(name, id, card.lcd))
        qFatal("the example has no such card");
    return settings;
}

/// Every attribute that the program writes has a row of the document and of the table above, and the other way round.
void TestSettingsDocument::tablesAreComplete()
{
    Ovryn_ConfigFile config(folder->path());
    config.setAdjustModule(QStringLiteral("A"), 1, {});
    QVERIFY(config.save());
    QStringList written;
    for (const QString &line : contentOf(folder->root())) {
        if (line.contains(QLatin1Char('=')))
            written.append(line.section(QLatin1Char('='), 0, 0));
    }
    QStringList documented;
    for (auto table = tables.cbegin(); table != tables.cend(); ++table) {
        for (const Row &row : *table) {
            if (row.contains(QStringLiteral("Attribute")))
                documented.append(table.key() + QLatin1Char(' ') + row.value(QStringLiteral("Attribute")));
        }
    }
    QStringList tested = {QStringLiteral("GPU GpuName"), QStringLiteral("GPU SubSystemId")};
    for (const Field &field : kFields)
        tested.append(QLatin1String(field.element) + QLatin1Char(' ') + QLatin1String(field.attribute));
    for (QStringList *list : {&written, &documented, &tested})
        list->sort();
    QCOMPARE(documented, written);
    QCOMPARE(tested, written);
}

void TestSettingsDocument::exampleIsAsWritten()
{
    folder->write(example);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    QVERIFY(config.save());
    QCOMPARE(contentOf(folder->root()), contentOf(parsedExample().documentElement()));
}

void TestSettingsDocument::attributes_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(std::size(kFields)); ++i)
        QTest::addRow("%s %s", kFields[i].element, kFields[i].attribute) << i;
}

/// The value of the example, and the two kinds of defaults.
void TestSettingsDocument::attributes()
{
    QFETCH(int, index);
    const Field &field = kFields[index];
    const QString name = QLatin1String(field.element);

    QDomDocument whole = parsedExample();
    QCOMPARE(field.text(settingsOf(whole)), cell(field.element, field.attribute, "Example"));

    QVERIFY(elementOf(whole, name).hasAttribute(QLatin1String(field.attribute)));
    elementOf(whole, name).removeAttribute(QLatin1String(field.attribute));
    const QString read = field.text(settingsOf(whole));
    QCOMPARE(read, cell(field.element, field.attribute, "No attribute"));

    QDomElement element = elementOf(whole, name);
    element.parentNode().removeChild(element);
    QCOMPARE(field.text(settingsOf(whole)), cell(field.element, field.attribute, "No element"));
}

void TestSettingsDocument::types_data()
{
    attributes_data();
}

void TestSettingsDocument::types()
{
    QFETCH(int, index);
    const Field &field = kFields[index];
    const QString type = cell(field.element, field.attribute, "Type");
    int probes = 0;
    for (const Probe &probe : kProbes) {
        if (type != QLatin1String(probe.type))
            continue;
        ++probes;
        QDomDocument document = parsedExample();
        elementOf(document, QLatin1String(field.element))
            .setAttribute(QLatin1String(field.attribute), QLatin1String(probe.text));
        QCOMPARE(field.text(settingsOf(document)), QString::fromLatin1(probe.read));
    }
    QVERIFY2(probes > 0, qPrintable(type));
}

void TestSettingsDocument::cardIsKnownByItsPair()
{
    folder->write("<OvrynParameter><GpuSettings><GPU><MonitorModule SelectOption=\"3\"/></GPU></GpuSettings>"
                  "</OvrynParameter>");
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    quint32 selectOption = 0;
    QVERIFY(config.getMonitorModule(cell("GPU", "GpuName", "No attribute"),
                                    cell("GPU", "SubSystemId", "No attribute").toUInt(), selectOption));
    QCOMPARE(selectOption, 3u);
}

void TestSettingsDocument::dates_data()
{
    QTest::addColumn<QString>("element");
    for (const char *element : {"LastCloseDate", "LastStartDate", "LastCheckDate", "LastUpdateDate"})
        QTest::newRow(element) << QString::fromLatin1(element);
}

void TestSettingsDocument::dates()
{
    QFETCH(QString, element);
    Row row;
    for (const Row &candidate : tables.value(QStringLiteral("Dates"))) {
        if (candidate.value(QStringLiteral("Element")) == element)
            row = candidate;
    }
    QDomDocument document = parsedExample();
    QCOMPARE(elementOf(document, element).text(), row.value(QStringLiteral("Example")));

    QCOMPARE(row.value(QStringLiteral("No element")), QStringLiteral("today"));
    document.documentElement().removeChild(elementOf(document, element));
    folder->write(document.toByteArray());
    const QDate before = QDate::currentDate(); // the day may change meanwhile
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    QVERIFY(config.save());
    const QDate after = QDate::currentDate();
    const QDate written =
        QDate::fromString(folder->section(qPrintable(element)).text(), QStringLiteral("yyyy/MM/dd"));
    QVERIFY2(before <= written && written <= after, qPrintable(written.toString()));
}

/// The one date that the program reads.
void TestSettingsDocument::lastCheckDate()
{
    folder->write(example);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    QDate date;
    QVERIFY(config.getLastCheckDate(date));
    QCOMPARE(date.toString(QStringLiteral("yyyy/MM/dd")),
             parsedExample().documentElement().firstChildElement(QStringLiteral("LastCheckDate")).text());
}

QTEST_APPLESS_MAIN(TestSettingsDocument)
#include "TestSettingsDocument.moc"
