#include "app/MainDialogTest.h"
#include "config/Ovryn_ConfigFile.h"
#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"
#include "overclock/StockCard.h"
#include "support/ModalAnswer.h"

#include <QAction>
#include <QCheckBox>
#include <QDate>
#include <QFileInfo>
#include <QMenu>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSystemTrayIcon>

/// The main dialog's close event and destruction: what is saved, the order of the end, and the orders to the cards.
class TestMainDialogEnd : public MainDialogTest
{
    Q_OBJECT

private slots:
    void everyWayOutSavesOnce_data();
    void everyWayOutSavesOnce();
    void everyPageOfEveryCardIsKept();
    void settingsAreReadAtClose();
    void lastCloseDateIsToday();
    void autoStartFollowsTheCheckBox_data();
    void autoStartFollowsTheCheckBox();
    void autoStartWaitsForTheClose();
    void failedWritesGoUnnoticed();
    void endOfTheLoopWithoutACloseSaves();
    void sessionThatMayEndSaves();
    void destructionAloneSavesNothing();
    void allWorkersEndSideBySide();
    void partsGoCardByCard();
    void fanAtTheEnd_data();
    void fanAtTheEnd();
};

namespace
{

QByteArray configWith(const QByteArray &generalAttributes, const QByteArray &cardSections = QByteArray())
{
    return "<OvrynParameter><GeneralSetting " + generalAttributes + "/><GpuSettings>" + cardSections +
           "</GpuSettings><OtherSetting NotPromptHPS=\"1\"/></OvrynParameter>";
}

QByteArray cardSection(const QByteArray &name, const QByteArray &adjust, const QByteArray &monitor,
                       const QByteArray &led)
{
    return "<GPU GpuName=\"" + name + "\" SubSystemId=\"" + QByteArray::number(0x111D7377u) + "\"><MonitorModule " +
           monitor + "/><AdjustModule " + adjust + "/><LedModule " + led + "/></GPU>";
}

void endBy(OvrynDeck2 &dialog, const QString &way)
{
    if (way == QLatin1String("close button")) {
        ModalAnswer answer({QStringLiteral("msgBoxYesBtn")});
        QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("btnClose")), Qt::LeftButton);
        QCOMPARE(answer.problems(), QStringList());
    } else if (way == QLatin1String("tray menu")) {
        dialog.findChild<QSystemTrayIcon *>()->contextMenu()->actions().last()->trigger();
    } else {
        dialog.close();
    }
}

} // namespace

void TestMainDialogEnd::everyWayOutSavesOnce_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<bool>("hidden");
    QTest::newRow("close button") << "close button" << false;
    QTest::newRow("tray menu") << "tray menu" << false;
    QTest::newRow("tray menu while hidden") << "tray menu" << true;
    QTest::newRow("the system closes the window") << "window" << false;
    QTest::newRow("the system closes the hidden window") << "window" << true;
}

void TestMainDialogEnd::everyWayOutSavesOnce()
{
    QFETCH(QString, way);
    QFETCH(bool, hidden);
    writeConfig(configWith("StartOnBoot=\"1\" ApplyLastParamOnStart=\"1\" Language=\"lang_en\""));
    OvrynDeck2 dialog(nullptr, kQuickPages);
    QSignalSpy closed(&dialog, SIGNAL(closed()));
    dialog.show();
    if (hidden)
        dialog.hide();
    QVERIFY(!savedText().contains(QLatin1String("GeForce")));
    endBy(dialog, way);
    QCOMPARE(closed.count(), 1);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(savedText().count(QLatin1String("GpuName=\"GeForce GTX 1070 Ti\"")), 1);
    QVERIFY(QFileInfo(autoStartEntry()).isFile());
}

void TestMainDialogEnd::everyPageOfEveryCardIsKept()
{
    driver->cards.resize(2);
    const QByteArray first = cardSection("GeForce GTX 1070 Ti", "GpuFreClock=\"1700\" Power=\"90\" FanMode=\"1\"",
                                         "SelectOption=\"5\"", "LedMode=\"3\" Interval=\"4\" Color2=\"65280\"");
    const QByteArray second = cardSection("GeForce GTX 1070 Ti 1", "GpuFreClock=\"1650\" Power=\"80\" FanMode=\"0\"",
                                          "SelectOption=\"2\"", "LedMode=\"6\" Interval=\"7\" Color2=\"255\"");
    writeConfig(configWith("ApplyLastParamOnStart=\"1\" Language=\"lang_en\"", first + second));
    {
        OvrynDeck2 dialog(nullptr, kQuickPages);
        dialog.close();
    }
    Ovryn_ConfigFile file;
    QVERIFY(file.load());
    const struct
    {
        const char *name;
        unsigned int selectOption;
        qint32 fanMode;
        qint32 ledMode;
        qint32 interval;
        quint32 color2;
    } cards[] = {{"GeForce GTX 1070 Ti", 5, 1, 3, 4, 0xFF00FF00}, {"GeForce GTX 1070 Ti 1", 2, 0, 6, 7, 0xFF0000FF}};
    for (const auto &card : cards) {
        const QString name = QString::fromLatin1(card.name);
        unsigned int selectOption = 0;
        AdjustModuleInfo adjust;
        LedModuleInfo led;
        LcdModuleInfo lcd;
        QVERIFY(file.getMonitorModule(name, 0x111D7377, selectOption));
        QVERIFY(file.getAdjustModule(name, 0x111D7377, adjust));
        QVERIFY(file.getLedModule(name, 0x111D7377, led));
        QVERIFY(file.getLcdModule(name, 0x111D7377, lcd));
        QCOMPARE(selectOption, card.selectOption);
        QCOMPARE(adjust.FanMode, card.fanMode);
        QCOMPARE(adjust.GpuFreClock, 1607); // the card's present clock: this driver keeps no offset
        QCOMPARE(qint32(led.LedMode), card.ledMode);
        QCOMPARE(qint32(led.Interval), card.interval);
        QCOMPARE(quint32(led.Colors[1]), card.color2);
    }
}

void TestMainDialogEnd::settingsAreReadAtClose()
{
    writeConfig(configWith("StartOnBoot=\"1\" MinimizeOnStart=\"0\" ApplyLastParamOnStart=\"1\" Language=\"lang_en\" "
                           "RefreshTimeOfMonitor=\"2\" PageEffects=\"advanced\""));
    OvrynDeck2 dialog(nullptr, kQuickPages);
    for (const char *box : {"ckb_StartOnBoot", "ckb_MinimizeOnStart", "ckb_ApplyLastSettingOnStart"})
        dialog.findChild<QCheckBox *>(QString::fromLatin1(box))->click();
    QVERIFY(savedText().contains(QLatin1String("MinimizeOnStart=\"0\"")));
    dialog.close();
    Ovryn_ConfigFile file;
    QVERIFY(file.load());
    GeneralSettingInfo general;
    QVERIFY(file.getGeneralSetting(general));
    QVERIFY(!general.StartOnBoot);
    QVERIFY(general.MinimizeOnStart);
    QVERIFY(!general.ApplyLastParamOnStart);
    QCOMPARE(general.Language, QStringLiteral("lang_en"));
    QCOMPARE(general.PageEffects, QStringLiteral("advanced"));
    QCOMPARE(general.RefreshTimeOfMonitor, 1); // the list has no entry for 2
}

void TestMainDialogEnd::lastCloseDateIsToday()
{
    writeConfig("<OvrynParameter><LastCloseDate>2020/02/29</LastCloseDate>"
                "<LastStartDate>2020/03/01</LastStartDate></OvrynParameter>");
    OvrynDeck2 dialog(nullptr, kQuickPages);
    dialog.close();
    QVERIFY(savedText().contains(
        QDate::currentDate().toString(QStringLiteral("'<LastCloseDate>'yyyy/MM/dd'</LastCloseDate>'"))));
    QVERIFY(savedText().contains(QLatin1String("<LastStartDate>2020/03/01</LastStartDate>")));
}

void TestMainDialogEnd::autoStartFollowsTheCheckBox_data()
{
    QTest::addColumn<bool>("stored");
    QTest::addColumn<bool>("clicked");
    QTest::addColumn<bool>("entryBefore");
    QTest::addColumn<bool>("entryAfter");
    QTest::newRow("on: written") << true << false << false << true;
    QTest::newRow("on: written anew") << true << false << true << true;
    QTest::newRow("off: nothing there") << false << false << false << false;
    QTest::newRow("off: what was there is removed") << false << false << true << false;
    QTest::newRow("unticked: removed") << true << true << true << false;
    QTest::newRow("ticked: written") << false << true << false << true;
}

void TestMainDialogEnd::autoStartFollowsTheCheckBox()
{
    QFETCH(bool, stored);
    QFETCH(bool, clicked);
    QFETCH(bool, entryBefore);
    QFETCH(bool, entryAfter);
    writeConfig(configWith(QByteArray("StartOnBoot=\"") + (stored ? '1' : '0') + "\" Language=\"lang_en\""));
    if (entryBefore) {
        QVERIFY(QDir().mkpath(QFileInfo(autoStartEntry()).path()));
        QFile entry(autoStartEntry());
        QVERIFY(entry.open(QIODevice::WriteOnly));
        entry.write("[Desktop Entry]\nExec=/elsewhere\n");
    }
    OvrynDeck2 dialog(nullptr, kQuickPages);
    if (clicked)
        dialog.findChild<QCheckBox *>(QStringLiteral("ckb_StartOnBoot"))->click();
    dialog.close();
    QFile entry(autoStartEntry());
    QCOMPARE(entry.open(QIODevice::ReadOnly), entryAfter);
    if (entryAfter)
        QVERIFY(QString::fromUtf8(entry.readAll()).contains(QCoreApplication::applicationFilePath()));
}

void TestMainDialogEnd::autoStartWaitsForTheClose()
{
    writeConfig(configWith("StartOnBoot=\"0\" Language=\"lang_en\""));
    OvrynDeck2 dialog(nullptr, kQuickPages);
    dialog.show();
    dialog.findChild<QCheckBox *>(QStringLiteral("ckb_StartOnBoot"))->click();
    dialog.onSettingWidgetLanguageChanged(); // reads the settings without an end
    dialog.hide();
    QVERIFY(!QFileInfo::exists(autoStartEntry()));
}

void TestMainDialogEnd::failedWritesGoUnnoticed()
{
    QVERIFY(QDir().mkpath(autoStartEntry() + QStringLiteral("/in the way")));
    ModalAnswer answer({});
    OvrynDeck2 dialog(nullptr, kQuickPages);
    QVERIFY(QFile::remove(QStringLiteral("config.xml")));
    QVERIFY(QDir().mkpath(QStringLiteral("config.xml/in the way")));
    QSignalSpy closed(&dialog, SIGNAL(closed()));
    dialog.show();
    dialog.close();
    QCOMPARE(closed.count(), 1);
    QCOMPARE(answer.texts(), QStringList());
    QVERIFY(QFileInfo(QStringLiteral("config.xml/in the way")).isDir());
    QVERIFY(QFileInfo(autoStartEntry() + QStringLiteral("/in the way")).isDir());
}

void TestMainDialogEnd::endOfTheLoopWithoutACloseSaves()
{
    OvrynDeck2 dialog(nullptr, kQuickPages);
    dialog.endWork();
    QVERIFY(savedText().contains(QLatin1String("GpuName=\"GeForce GTX 1070 Ti\"")));
    QVERIFY(dialog.wasClosed());

    // After a close there is nothing to save: the file is not written again.
    writeConfig("kept");
    dialog.endWork();
    QCOMPARE(savedText(), QStringLiteral("kept"));
}

void TestMainDialogEnd::sessionThatMayEndSaves()
{
    OvrynDeck2 dialog(nullptr, kQuickPages);
    QSignalSpy closed(&dialog, SIGNAL(closed()));
    dialog.show();
    dialog.onCommitDataRequest();
    QVERIFY(savedText().contains(QLatin1String("GpuName=\"GeForce GTX 1070 Ti\"")));
    QVERIFY(dialog.isVisible()); // another program may still cancel the end of the session
    QCOMPARE(closed.count(), 0);
}

void TestMainDialogEnd::destructionAloneSavesNothing()
{
    {
        OvrynDeck2 dialog(nullptr, kQuickPages);
    }
    QVERIFY(!savedText().contains(QLatin1String("GpuName")));
}

void TestMainDialogEnd::allWorkersEndSideBySide()
{
    constexpr int kCards = 4;
    driver->cards.resize(kCards);
    auto dialog = std::make_unique<OvrynDeck2>(nullptr, kQuickPages);
    const auto workers = dialog->findChildren<Ovryn_SendNvCardInfoThread *>();
    QCOMPARE(workers.size(), kCards);
    dialog->endWork();
    for (Ovryn_SendNvCardInfoThread *worker : workers)
        QTRY_VERIFY(worker->isFinished()); // none of them is deleted yet
}

void TestMainDialogEnd::partsGoCardByCard()
{
    driver->cards.resize(2);
    constexpr int kPagesOfACard = 6;
    constexpr int kAdjust = 1, kLed = 2, kLcd = 3; // among the pages of a card
    QStringList gone;
    auto dialog = std::make_unique<OvrynDeck2>(nullptr, kQuickPages);
    const auto watch = [&gone](const QObject *object, const QString &name) {
        QVERIFY(object);
        connect(object, &QObject::destroyed,
                [&gone, name] { gone << QStringLiteral("%1, %2").arg(name).arg(nvApiLoadCount()); });
    };
    const auto workers = dialog->findChildren<Ovryn_SendNvCardInfoThread *>();
    const auto pages = dialog->findChild<QWidget *>(QStringLiteral("pageStack"))
                           ->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(workers.size(), 2);
    QCOMPARE(pages.size(), 2 * kPagesOfACard);
    for (int i = 0; i < 2; ++i) {
        const QString card = QString::number(i);
        watch(workers.at(i), "worker" + card);
        watch(pages.at(i * kPagesOfACard + kLcd), "LCD" + card);
        watch(pages.at(i * kPagesOfACard + kLed), "LED" + card);
        watch(pages.at(i * kPagesOfACard + kAdjust), "adjust" + card);
        watch(pages.at(i * kPagesOfACard), "monitor" + card);
    }
    watch(dialog->findChild<QSystemTrayIcon *>(), QStringLiteral("tray"));
    dialog.reset();

    // Each entry has the number of device objects that still hold the driver. Each card's information page has one of
    // its own, which is deleted with the widget tree.
    const QStringList byHand = {"worker0, 4", "LCD0, 4", "LED0, 4", "adjust0, 4",
                                "worker1, 3", "LCD1, 3", "LED1, 3", "adjust1, 3"};
    QCOMPARE(QStringList(gone.mid(0, byHand.size())), byHand);
    QStringList withTheTree = gone.mid(byHand.size()).replaceInStrings(QRegularExpression(QStringLiteral(",.*")), {});
    withTheTree.sort();
    QCOMPARE(withTheTree, QStringList({"monitor0", "monitor1", "tray"}));
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(driver->strayCalls(), 0);
}

void TestMainDialogEnd::fanAtTheEnd_data()
{
    QTest::addColumn<int>("fanMode");
    QTest::addColumn<QStringList>("orders");
    QTest::newRow("automatic: not touched") << 0 << QStringList();
    QTest::newRow("by hand: the level stays") << 1 << QStringList();
    QTest::newRow("by the curve: handed back") << 2 << QStringList(kFanHandedBack);
}

void TestMainDialogEnd::fanAtTheEnd()
{
    QFETCH(int, fanMode);
    const QByteArray adjust = "FanMode=\"" + QByteArray::number(fanMode) + "\" FanSpeedLevel=\"50\" Nodes=\"\"";
    writeConfig(configWith("ApplyLastParamOnStart=\"1\"",
                           cardSection("GeForce GTX 1070 Ti", adjust, "SelectOption=\"0\"", "LedMode=\"1\"")));
    auto dialog = std::make_unique<OvrynDeck2>(nullptr, kQuickPages);
    const auto levels = [this] {
        return driver->orders().filter(QStringLiteral("fan "));
    };
    QTRY_VERIFY(!levels().isEmpty());
    dialog->close();
    QVERIFY(!levels().contains(kFanHandedBack)); // the close event itself changes nothing
    const int before = levels().size();
    dialog.reset();
    QStringList after = levels().mid(before);
    if (fanMode == 2)
        after = after.mid(after.size() - 1); // the curve's thread may have ordered its level once more
    QTEST(after, "orders");
}

QTEST_MAIN(TestMainDialogEnd)
#include "TestMainDialogEnd.moc"
