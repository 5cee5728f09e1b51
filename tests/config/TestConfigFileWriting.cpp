#include "config/ConfigFileTest.h"
#include "config/SampleConfig.h"

#include <QtTest>

namespace
{

const QStringList kSections = {"GeneralSetting", "UpdateSetting", "GpuSettings",    "LastCloseDate",
                               "LastStartDate",  "LastCheckDate", "LastUpdateDate", "OtherSetting"};
const QStringList kModules = {"MonitorModule", "AdjustModule", "LedModule", "LcdModule"};

QMap<QString, QString> attributesOf(const QDomElement &element)
{
    QMap<QString, QString> found;
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        found[attribute.name()] = attribute.value();
    }
    return found;
}

/// The element with all below it as one text in which attributes are sorted, for comparison.
QString canonical(const QDomElement &element)
{
    QString text = "<" + element.tagName();
    const QMap<QString, QString> attributes = attributesOf(element);
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute)
        text += " " + attribute.key() + "=[" + attribute.value() + "]";
    text += ">";
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling())
        text += child.isElement() ? canonical(child.toElement()) : child.nodeName() + "[" + child.nodeValue() + "]";
    return text + "</>";
}

/// "name id" of every card in the file.
QStringList cardsIn(const ConfigFolder &folder)
{
    QStringList found;
    for (const QDomElement &gpu : folder.gpus())
        found.append(gpu.attribute("GpuName") + " " + gpu.attribute("SubSystemId"));
    return found;
}

/// The texts of the attribute `Foreign` of every card in the file, "-" where it has none.
QString foreignIn(const ConfigFolder &folder)
{
    QString found;
    for (const QDomElement &gpu : folder.gpus())
        found += gpu.attribute("Foreign", "-");
    return found;
}

/// A card for each letter, named by it and with its place as the attribute `Foreign`; a comment for each #.
QByteArray oldCards(const QByteArray &letters)
{
    QByteArray old;
    for (int place = 0; place < letters.size(); ++place) {
        if (letters.at(place) == '#')
            old += "<!-- comment -->";
        else
            old += "<GPU GpuName='" + letters.mid(place, 1) + "' SubSystemId='7' Foreign='" +
                   QByteArray::number(place) + "'/>";
    }
    return old;
}

/// The result of `foreignIn` after a save by the simplest form of the rule: every card searches all old cards that
/// are left, index by index, for one that equals the list's card of that index.
QString reusedByTheRule(const QByteArray &letters, const QByteArray &list)
{
    QList<int> left;
    for (int place = 0; place < letters.size(); ++place)
        left.append(place);
    QString reused;
    for (int card = 0; card < list.size(); ++card) {
        int found = 0;
        while (found < left.size() && (found >= list.size() || letters.at(left.at(found)) != list.at(found)))
            ++found;
        reused += found < left.size() ? QString::number(left.takeAt(found)) : QStringLiteral("-");
    }
    return reused;
}

} // namespace

class TestConfigFileWriting : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void keepsEveryValue();
    void setValuesReachTheFile();
    void ordersSections();
    void ordersModulesOfAReusedCard();
    void form();
    void replacesOnlyTheDatesFirstChild();
    void rootCommentSurvives();
    void unknownSectionStaysAhead();
    void nodesAroundTheRootSurvive();
    void unknownAttributesSurviveOnReusedElements();
    void unknownChildOfACardGoesAhead();
    void reusesOldCards_data();
    void reusesOldCards();
    void reusesOldCardsByTheRule();
    void commentBetweenCardsLosesTheRest();
    void cardsAreNeverIndexedBeyondTheList();
    void unpluggedCardStays();
    void newCardsGoToTheEnd();
    void newCardGetsDefaultsInOtherModules();
    void equalCardsShareTheFirstEntry();
    void savesTwice();
    void specialCharactersInNames();
    void saveWithoutLoad();
    void manyCards();
};

void TestConfigFileWriting::keepsEveryValue()
{
    load(kSampleConfig);
    const QString before = canonical(folder->root());
    QVERIFY(before.contains("Nodes=[0,0|30,40|60,80|100,100|]"));
    QVERIFY(loaded->save());
    QCOMPARE(canonical(folder->root()), before);
    QVERIFY(loaded->load());
    QVERIFY(loaded->save());
    QCOMPARE(canonical(folder->root()), before);
}

void TestConfigFileWriting::setValuesReachTheFile()
{
    Ovryn_ConfigFile file(folder->path());
    QVERIFY(file.load());
    file.setGeneralSetting({false, true, false, "lang_en", 5, "advanced"});
    file.setUpdateSetting({30, 2, 3});
    file.setNotPromptHPS(true);
    file.setLastCloseDate(QDate(2021, 3, 4));
    file.setLastStartDate(QDate(2021, 3, 5));
    file.setLastCheckDate(QDate(2021, 2, 28));
    file.setLastUpdateDate(QDate(2020, 12, 31));
    AdjustModuleInfo adjust;
    adjust.GpuFreClock = 1900;
    adjust.FanSpeedLevel = 70;
    adjust.Voltage = 1050;
    adjust.MemoryFreClock = 4100;
    adjust.Power = 110;
    adjust.Temperature = 88;
    adjust.LinkOfPowerWithTemperature = true;
    adjust.FanMode = 2;
    adjust.Nodes = {{0, 0}, {30, 40}, {60, 80}, {100, 100}};
    adjust.EnableHighPerformance = true;
    const QString first = "GeForce GTX 1070 Ti";
    file.setAdjustModule(first, 286094199, adjust);
    file.setLedModule(first, 286094199, {4, 6, 129, 9, {1, 2, 3, 4, 5, 6, 4294967295U}});
    file.setLcdModule(first, 286094199, {false, 15, 18, 65, false});
    file.setMonitorModule(first, 286094199, 21);
    const QString second = "Quadro \"P&4000\" <2>";
    file.setAdjustModule(second, 4294967295U, {1000, 1, 2, 3, 4, 5, false, 1, {}, false});
    file.setLedModule(second, 4294967295U, {2, 2, 4, 3, {11, 12, 13, 14, 15, 16, 17}});
    file.setLcdModule(second, 4294967295U, {true, 20, 16, 66, true});
    file.setMonitorModule(second, 4294967295U, 2);
    QVERIFY(file.save());

    QDomDocument expected;
    QVERIFY(expected.setContent(kSampleConfig));
    QCOMPARE(canonical(folder->root()), canonical(expected.documentElement()));
}

void TestConfigFileWriting::ordersSections()
{
    load(document("<OtherSetting NotPromptHPS='1'/><LastUpdateDate>2020/01/02</LastUpdateDate>"
                  "<LastStartDate>2020/01/03</LastStartDate><LastCheckDate>2020/01/04</LastCheckDate>"
                  "<GpuSettings><GPU GpuName='A' SubSystemId='7'/></GpuSettings><UpdateSetting CheckInterval='90'/>"
                  "<LastCloseDate>2020/01/05</LastCloseDate><GeneralSetting Language='lang_en'/>"));
    QVERIFY(loaded->save());
    QCOMPARE(childNames(folder->root()), kSections);
    QCOMPARE(folder->section("LastUpdateDate").text(), QString("2020/01/02"));
    QCOMPARE(folder->section("LastStartDate").text(), QString("2020/01/03"));
    QCOMPARE(folder->section("LastCheckDate").text(), QString("2020/01/04"));
    QCOMPARE(folder->section("LastCloseDate").text(), QString("2020/01/05"));
    QCOMPARE(folder->section("UpdateSetting").attribute("CheckInterval"), QString("90"));
}

void TestConfigFileWriting::ordersModulesOfAReusedCard()
{
    load(cards(
        "<GPU GpuName='A' SubSystemId='7'><LcdModule/><AdjustModule/></GPU><GPU GpuName='B' SubSystemId='8'/>"));
    QVERIFY(loaded->save());
    QCOMPARE(folder->gpus().size(), 2);
    for (const QDomElement &gpu : folder->gpus())
        QCOMPARE(childNames(gpu), kModules);
}

void TestConfigFileWriting::form()
{
    load(cards("<GPU GpuName='\xE5\x8D\xA1' SubSystemId='7'/>"));
    QVERIFY(loaded->save());
    const QList<QByteArray> lines = folder->text().replace("\r\n", "\n").split('\n');
    QCOMPARE(lines.value(0), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    QCOMPARE(lines.value(1), QByteArray("<OvrynParameter>"));
    QVERIFY(lines.value(2).startsWith("    <GeneralSetting "));
    QVERIFY(lines.value(3).startsWith("    <UpdateSetting "));
    QCOMPARE(lines.value(4), QByteArray("    <GpuSettings>"));
    QVERIFY(lines.value(5).startsWith("        <GPU "));
    QVERIFY(lines.value(5).contains("GpuName=\"\xE5\x8D\xA1\"")); // UTF-8
    QVERIFY(lines.value(6).startsWith("            <MonitorModule "));
}

void TestConfigFileWriting::replacesOnlyTheDatesFirstChild()
{
    load(document("<LastCheckDate>never<!-- yet --></LastCheckDate>"));
    loaded->setLastCheckDate(QDate(2021, 3, 4));
    QVERIFY(loaded->save());
    QCOMPARE(childNames(folder->section("LastCheckDate")), QStringList({"#comment", "#text"}));
    QCOMPARE(folder->section("LastCheckDate").text(), QString("2021/03/04"));
}

void TestConfigFileWriting::rootCommentSurvives()
{
    load(document("<GeneralSetting/><!-- mine --><OtherSetting/>"));
    QVERIFY(loaded->save());
    QCOMPARE(childNames(folder->root()), QStringList("#comment") + kSections);
    QCOMPARE(folder->root().firstChild().nodeValue(), QString(" mine "));
}

void TestConfigFileWriting::unknownSectionStaysAhead()
{
    load(document("<GeneralSetting/><Second b='2'/><OtherSetting/><First a='1'><c/></First>"));
    QVERIFY(loaded->save());
    QCOMPARE(childNames(folder->root()), QStringList({"Second", "First"}) + kSections);
    QCOMPARE(canonical(folder->section("First")), QString("<First a=[1]><c></></>"));
}

void TestConfigFileWriting::nodesAroundTheRootSurvive()
{
    load("<?xml version=\"1.0\" encoding=\"UTF-8\"?><!DOCTYPE OvrynParameter><!-- before --><?OvrynParameter x?>"
         "<OvrynParameter Foreign=\"1\"/><!-- after -->");
    QVERIFY(loaded->save());
    const QByteArray text = folder->text();
    QVERIFY(text.contains("<!-- before -->") && text.contains("<!-- after -->"));
    QVERIFY(text.contains("<?OvrynParameter x?>"));
    QCOMPARE(text.count("<?xml "), 1);
    QCOMPARE(folder->root().attribute("Foreign"), QString("1"));
    QVERIFY(loaded->load());
}

void TestConfigFileWriting::unknownAttributesSurviveOnReusedElements()
{
    load(document(
        "<GeneralSetting Theme='dark' Language='lang_en'/><LastStartDate zone='UTC'>2021/01/02</LastStartDate>"
        "<GpuSettings note='gone'><GPU GpuName='A' SubSystemId='7' Slot='3'><LedModule Glow='9'/></GPU>"
        "</GpuSettings>"));
    QVERIFY(loaded->save());
    QCOMPARE(folder->section("GeneralSetting").attribute("Theme"), QString("dark"));
    QCOMPARE(folder->section("GeneralSetting").attribute("Language"), QString("lang_en"));
    QCOMPARE(folder->section("LastStartDate").attribute("zone"), QString("UTC"));
    QVERIFY(!folder->section("GpuSettings").hasAttribute("note")); // this element alone is always a new one
    QCOMPARE(folder->gpus().value(0).attribute("Slot"), QString("3"));
    QCOMPARE(folder->gpus().value(0).firstChildElement("LedModule").attribute("Glow"), QString("9"));
}

void TestConfigFileWriting::unknownChildOfACardGoesAhead()
{
    load(cards("<GPU GpuName='A' SubSystemId='7'><MonitorModule SelectOption='5'/><!-- c --><AdjustModule "
               "Power='9'/></GPU>"));
    QVERIFY(loaded->save());
    QCOMPARE(childNames(folder->gpus().value(0)), QStringList("#comment") + kModules);
    QCOMPARE(folder->gpus().value(0).firstChildElement("AdjustModule").attribute("Power"), QString("-1"));
}

void TestConfigFileWriting::reusesOldCards_data()
{
    QTest::addColumn<QByteArray>("old");
    QTest::addColumn<QString>("added"); // a card that is set before the save
    QTest::addColumn<QString>("foreign");
    const auto row = [](const char *name, const QByteArray &letters, const QString &added, const QString &foreign) {
        QTest::newRow(name) << oldCards(letters) << added << foreign;
    };
    row("none", "", "", "");
    row("one", "A", "", "0");
    row("only the first of many", "ABCD", "", "0---");
    row("equal ones", "AAA", "", "012");
    row("two equal ones ahead", "AAB", "", "01-");
    row("two equal ones after the first", "XAAB", "", "02--");
    row("two pairs", "AABB", "", "01--");
    row("apart", "ABA", "", "0--");
    row("with a new card after", "AB", "Z", "0--");
    row("new card alone", "", "Z", "-");
    row("lost cards after a comment", "A#BC", "", "0");
    row("comment ahead, nothing is read", "#AB", "", "");
    row("comment ahead, first card set anew", "#AB", "A", "-");
}

void TestConfigFileWriting::reusesOldCards()
{
    QFETCH(QByteArray, old);
    QFETCH(QString, added);
    QFETCH(QString, foreign);
    load(cards(old));
    if (!added.isEmpty())
        loaded->setMonitorModule(added, 7, 1);
    QVERIFY(loaded->save());
    QCOMPARE(foreignIn(*folder), foreign);
}

void TestConfigFileWriting::reusesOldCardsByTheRule()
{
    QRandomGenerator random(1);
    bool reusedAfterTheFirst = false;
    for (int round = 0; round < 300; ++round) {
        QByteArray letters;
        for (int place = random.bounded(9); place > 0; --place)
            letters += "AAABBC#"[random.bounded(7)];
        QByteArray list = letters.left(letters.contains('#') ? letters.indexOf('#') : letters.size());
        load(cards(oldCards(letters)));
        if (random.bounded(2) == 1) {
            loaded->setMonitorModule("Z", 7, 1);
            list += 'Z';
        }
        QVERIFY(loaded->save());
        QCOMPARE(foreignIn(*folder), reusedByTheRule(letters, list));
        reusedAfterTheFirst = reusedAfterTheFirst || foreignIn(*folder).mid(1).contains(QRegularExpression("[0-9]"));
    }
    QVERIFY(reusedAfterTheFirst);
}

void TestConfigFileWriting::commentBetweenCardsLosesTheRest()
{
    load(cards("<GPU GpuName='A' SubSystemId='1'/><!-- mine --><GPU GpuName='B' SubSystemId='2'/>"));
    QVERIFY(loaded->save());
    QCOMPARE(childNames(folder->section("GpuSettings")), QStringList("GPU"));
    QCOMPARE(cardsIn(*folder), QStringList("A 1"));
}

void TestConfigFileWriting::cardsAreNeverIndexedBeyondTheList()
{
    // Reading ends at once, so that the list is shorter than what the old element holds.
    load(cards("text" + QByteArray("<GPU GpuName='A' SubSystemId='1'/>").repeated(50)));
    loaded->setMonitorModule("B", 2, 1);
    loaded->setMonitorModule("C", 3, 1);
    QVERIFY(loaded->save());
    QCOMPARE(cardsIn(*folder), QStringList({"B 2", "C 3"}));
}

void TestConfigFileWriting::unpluggedCardStays()
{
    load(kSampleConfig);
    const QString before = canonical(folder->gpus().value(1));
    for (int run = 0; run < 3; ++run) {
        loaded->setMonitorModule("GeForce GTX 1070 Ti", 286094199, quint32(run)); // the one card seen in this run
        QVERIFY(loaded->save());
        QVERIFY(loaded->load());
    }
    QCOMPARE(folder->gpus().size(), 2);
    QCOMPARE(canonical(folder->gpus().value(1)), before);
}

void TestConfigFileWriting::newCardsGoToTheEnd()
{
    load(cards("<GPU GpuName='B' SubSystemId='2'/>"));
    loaded->setLcdModule("C", 3, {});
    loaded->setLedModule("A", 1, {});
    loaded->setMonitorModule("C", 3, 1);
    loaded->setAdjustModule("B", 2, {});
    loaded->setAdjustModule("B", 4, {}); // another card by its identifier alone
    QVERIFY(loaded->save());
    QCOMPARE(cardsIn(*folder), QStringList({"B 2", "C 3", "A 1", "B 4"}));
}

void TestConfigFileWriting::newCardGetsDefaultsInOtherModules()
{
    load(document(""));
    loaded->setMonitorModule("A", 1, 9);
    AdjustModuleInfo adjust = {1, 1, 1, 1, 1, 1, true, 1, {{1, 1}}, true};
    LedModuleInfo led = {};
    led.LedMode = 9;
    LcdModuleInfo lcd;
    lcd.NormalKey = 0;
    quint32 selectOption = 0;
    QVERIFY(loaded->getAdjustModule("A", 1, adjust) && loaded->getLedModule("A", 1, led));
    QVERIFY(loaded->getLcdModule("A", 1, lcd) && loaded->getMonitorModule("A", 1, selectOption));
    QCOMPARE(selectOption, 9U);
    QCOMPARE(adjust.GpuFreClock, -1);
    QVERIFY(adjust.Nodes.isEmpty());
    QCOMPARE(led.LedMode, 1);
    QCOMPARE(lcd.NormalKey, 49U);
}

void TestConfigFileWriting::equalCardsShareTheFirstEntry()
{
    load(cards("<GPU GpuName='A' SubSystemId='7'/><GPU GpuName='A' SubSystemId='7'/>"));
    loaded->setMonitorModule("A", 7, 1);
    loaded->setMonitorModule("A", 7, 2); // the second card at close
    quint32 selectOption = 0;
    QVERIFY(loaded->getMonitorModule("A", 7, selectOption));
    QCOMPARE(selectOption, 2U);
    QVERIFY(loaded->save());
    QCOMPARE(folder->gpus().size(), 2);
    QCOMPARE(folder->gpus().value(0).firstChildElement("MonitorModule").attribute("SelectOption"), QString("2"));
    QCOMPARE(folder->gpus().value(1).firstChildElement("MonitorModule").attribute("SelectOption"), QString("0"));
}

void TestConfigFileWriting::savesTwice()
{
    load(kSampleConfig);
    loaded->setMonitorModule("New", 1, 4);
    QVERIFY(loaded->save());
    const QString before = canonical(folder->root());
    QVERIFY(loaded->save());
    QCOMPARE(canonical(folder->root()), before);
    QCOMPARE(folder->gpus().size(), 3);
    QCOMPARE(folder->gpus().value(2).attribute("GpuName"), QString("New"));
}

void TestConfigFileWriting::specialCharactersInNames()
{
    const QString name = QStringLiteral("<a> & \"b\" 'c'\t\n 显卡 \U0001F5A5 é");
    Ovryn_ConfigFile file(folder->path());
    file.setMonitorModule(name, 1, 77);
    QVERIFY(file.save());
    QVERIFY(file.load());
    quint32 selectOption = 0;
    QVERIFY(file.getMonitorModule(name, 1, selectOption));
    QCOMPARE(selectOption, 77U);
}

void TestConfigFileWriting::saveWithoutLoad()
{
    folder->write(kSampleConfig);
    Ovryn_ConfigFile file(folder->path());
    QVERIFY(file.save()); // the former content is lost: only a load reads it
    QCOMPARE(childNames(folder->root()), kSections);
    QVERIFY(folder->gpus().isEmpty());
    GeneralSettingInfo general;
    QVERIFY(!file.getGeneralSetting(general)); // still not loaded
}

void TestConfigFileWriting::manyCards()
{
    constexpr int kCards = 20000; // enough for the test to run out of time if each card walked all old ones
    QByteArray children;
    for (int card = 0; card < kCards; ++card)
        children += "<GPU GpuName='card' SubSystemId='" + QByteArray::number(card) + "'/>";
    load(cards(children));
    QVERIFY(loaded->save());
    QVERIFY(loaded->load());
    quint32 selectOption = 5;
    QVERIFY(loaded->getMonitorModule("card", kCards - 1, selectOption));
    QCOMPARE(selectOption, 0U);
}

QTEST_APPLESS_MAIN(TestConfigFileWriting)
#include "TestConfigFileWriting.moc"
