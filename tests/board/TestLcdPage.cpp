#include "board/LcdPageWorld.h"

/// What the user does on the LCD page, and what comes of it at the card and at the hot key.
class TestLcdPage : public QObject
{
    Q_OBJECT

private slots:
    void enabledControls_data();
    void enabledControls();
    void everyChangeBringsTheButtons_data();
    void everyChangeBringsTheButtons();
    void sameKeyIsNoChange();
    void switchTimeStaysInItsRange_data();
    void switchTimeStaysInItsRange();
    void cancelRestoresTheAppliedSettings();
    void cancelRestoresBothKeyNames();
    void cancelTellsNobody();
    void cancelWithTheLcdOffFreesTheTime();
    void confirmationAsks_data();
    void confirmationAsks();
    void answerNoLeavesEverything();
    void answerYesKeepsWhatIsShown();
    void applyTellsTheWorkerTheTime_data();
    void applyTellsTheWorkerTheTime();
    void applyOffSendsOneFrameAndEndsTheWorker();
    void applyOnRestartsTheWorker();
    void applyOffAndOnAgain();
    void applyInManualModeRegistersThePairAppliedBefore();
    void automaticUnregistersAndManualRegistersTheLastPair();
    void altAndKIsShownAndCtrlAndKWorks();
    void hotKeyTurnsThePages();
    void hotKeyDoesNothingWhileAutomatic();
    void workerThatIsGoneIsMadeAnew();
    void pageOfTheGaugeIsNoSetting();
    void cardWithoutAnLcd();

private:
    using Step = std::function<void(LcdPageWorld &)>;
    static LcdModuleInfo manualSettings()
    {
        LcdModuleInfo info;
        info.AutoSwitch = false;
        return info;
    }
};

namespace
{

constexpr quint32 kShift = 0x10;
constexpr quint32 kCtrl = 0x11;
constexpr quint32 kAlt = 0x12;
constexpr quint32 kEscape = 0x1B;

} // namespace

Q_DECLARE_METATYPE(std::function<void(LcdPageWorld &)>)

void TestLcdPage::enabledControls_data()
{
    QTest::addColumn<QList<Step>>("steps");
    QTest::addColumn<QString>("enabled");

    const Step manual = [](LcdPageWorld &world) {
        LcdPageWorld::clickLeft(world.manual());
    };
    const Step automatic = [](LcdPageWorld &world) {
        LcdPageWorld::clickLeft(world.automatic());
    };
    const Step flip = [](LcdPageWorld &world) {
        LcdPageWorld::clickLeft(world.lcdSwitch());
    };
    const QString kAutomatic = QStringLiteral("auto manual spin");
    const QString kManual = QStringLiteral("auto manual modifier normal");
    QTest::newRow("automatic") << QList<Step>{} << kAutomatic;
    QTest::newRow("manual") << QList<Step>{manual} << kManual;
    QTest::newRow("manual and back") << QList<Step>{manual, automatic} << kAutomatic;
    QTest::newRow("off") << QList<Step>{flip} << QString();
    QTest::newRow("off in manual") << QList<Step>{manual, flip} << QString();
    QTest::newRow("off and on") << QList<Step>{flip, flip} << kAutomatic;
    QTest::newRow("off and on in manual") << QList<Step>{manual, flip, flip} << kManual;
    QTest::newRow("a radio that is off takes no click") << QList<Step>{flip, manual} << QString();
}

void TestLcdPage::enabledControls()
{
    QFETCH(QList<Step>, steps);
    LcdPageWorld world;
    world.openClean();
    for (const Step &step : steps)
        step(world);
    QTEST(world.enabledControls(), "enabled");
}

void TestLcdPage::everyChangeBringsTheButtons_data()
{
    QTest::addColumn<Step>("change");
    QTest::newRow("radio") << Step([](LcdPageWorld &world) { LcdPageWorld::clickLeft(world.automatic()); });
    QTest::newRow("LCD switch") << Step([](LcdPageWorld &world) { LcdPageWorld::clickLeft(world.lcdSwitch()); });
    QTest::newRow("time") << Step([](LcdPageWorld &world) { world.spin()->stepUp(); });
    QTest::newRow("modifier") << Step([](LcdPageWorld &world) { world.press(world.modifierKey(), kAlt); });
    QTest::newRow("key") << Step([](LcdPageWorld &world) { world.press(world.normalKey(), 'K'); });
}

void TestLcdPage::everyChangeBringsTheButtons()
{
    QFETCH(Step, change);
    LcdPageWorld world;
    world.openClean(manualSettings());
    QVERIFY(!world.isDirty());
    change(world);
    QVERIFY(world.isDirty());
    QVERIFY(world.info() == manualSettings()); // nothing is applied by it
}

void TestLcdPage::sameKeyIsNoChange()
{
    LcdPageWorld world;
    world.openClean(manualSettings());
    world.press(world.modifierKey(), kCtrl);
    world.press(world.normalKey(), '1');
    world.press(world.normalKey(), kEscape); // in no table
    QVERIFY(!world.isDirty());
}

void TestLcdPage::switchTimeStaysInItsRange_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("shown");
    QTest::newRow("30") << "30" << 30;
    QTest::newRow("31 snaps to 30") << "31" << 30;
    QTest::newRow("999 snaps to 30") << "999" << 30;
    QTest::newRow("1") << "1" << 1;
    QTest::newRow("0 counts as nothing typed") << "0" << 10;
    QTest::newRow("a sign is refused") << "-5" << 5;
}

void TestLcdPage::switchTimeStaysInItsRange()
{
    QFETCH(QString, typed);
    LcdPageWorld world;
    world.openClean();
    world.spin()->setFocus();
    world.spin()->selectAll();
    QTest::keyClicks(world.spin(), typed);
    QTest::keyClick(world.spin(), Qt::Key_Return);
    QTEST(world.spin()->value(), "shown");
    QVERIFY(world.spin()->value() >= 1 && world.spin()->value() <= 30);
    world.spin()->setValue(0);
    QCOMPARE(world.spin()->value(), 1);
    world.spin()->setValue(99);
    QCOMPARE(world.spin()->value(), 30);
}

void TestLcdPage::cancelRestoresTheAppliedSettings()
{
    const LcdModuleInfo saved = {false, 12, kShift, 'B', true};
    LcdPageWorld world;
    world.openClean(saved);
    world.spin()->setValue(25);
    world.press(world.modifierKey(), kAlt);
    world.press(world.normalKey(), 'K');
    LcdPageWorld::clickLeft(world.automatic());
    LcdPageWorld::clickLeft(world.lcdSwitch());
    QVERIFY(world.shown() == LcdModuleInfo({true, 25, kAlt, 'K', false}));
    world.cancel();
    QVERIFY(world.shown() == saved);
    QVERIFY(world.info() == saved);
    QVERIFY(!world.isDirty());
    QCOMPARE(world.enabledControls(), QStringLiteral("auto manual modifier normal"));
}

void TestLcdPage::cancelRestoresBothKeyNames()
{
    LcdPageWorld world;
    world.openClean({false, 10, kAlt, 0x21, true});
    world.press(world.modifierKey(), kShift);
    world.press(world.normalKey(), 'Z');
    QCOMPARE(world.modifierKey()->text(), QStringLiteral("Shift"));
    QCOMPARE(world.normalKey()->text(), QStringLiteral("Z"));
    world.cancel();
    QCOMPARE(world.modifierKey()->text(), QStringLiteral("Alt"));
    QCOMPARE(world.normalKey()->text(), QStringLiteral("PageUp"));
}

void TestLcdPage::cancelTellsNobody()
{
    LcdPageWorld world;
    LcdModuleInfo off = manualSettings();
    off.EnableLcd = false;
    world.open(off, 1000);
    QVERIFY(world.worker()->wait(10000));
    (void)world.hotKeys.takeCalls();
    world.driver.forgetCalls();
    LcdPageWorld::clickLeft(world.lcdSwitch());
    LcdPageWorld::clickLeft(world.automatic());
    world.cancel();
    QCOMPARE(world.driver.calls(), QStringList());
    QCOMPARE(world.hotKeys.takeCalls(), QStringList());
    QVERIFY(world.worker()->isStopped());
}

void TestLcdPage::cancelWithTheLcdOffFreesTheTime()
{
    // The radio's slot comes behind the switch's and enables what it always does.
    LcdModuleInfo off;
    off.EnableLcd = false;
    LcdPageWorld world;
    world.openClean(off);
    LcdPageWorld::clickLeft(world.lcdSwitch());
    LcdPageWorld::clickLeft(world.manual());
    world.cancel();
    QVERIFY(world.shown() == off);
    QCOMPARE(world.enabledControls(), QStringLiteral("auto manual spin"));
}

void TestLcdPage::confirmationAsks_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("question");
    QTest::addColumn<QStringList>("answers");
    QTest::newRow("Chinese") << int(kLanguageChinese) << QStringLiteral("确定应用当前修改吗?")
                             << QStringList{QStringLiteral("否"), QStringLiteral("是")};
    QTest::newRow("English") << int(kLanguageEnglish) << QStringLiteral("Apply these settings?")
                             << QStringList{QStringLiteral("No"), QStringLiteral("Yes")};
}

void TestLcdPage::confirmationAsks()
{
    QFETCH(int, language);
    LcdPageWorld world;
    world.open();
    Ovryn_LanguageTable table;
    table.setLanguage(LanguageType(language));
    world.page->setLanguage(table.lcd, LanguageType(language));
    ModalAnswer answer({QStringLiteral("msgBoxNoBtn"), QStringLiteral("msgBoxYesBtn")});
    QTest::mouseClick(world.confirmButton(), Qt::LeftButton);
    QTest::mouseClick(world.confirmButton(), Qt::LeftButton);
    QCOMPARE(answer.problems(), QStringList());
    QFETCH(QString, question);
    QCOMPARE(answer.texts(), QStringList({question, question}));
    QTEST(answer.captions(), "answers");
    QVERIFY(!world.isDirty());
}

void TestLcdPage::answerNoLeavesEverything()
{
    LcdPageWorld world;
    world.openClean(manualSettings());
    (void)world.hotKeys.takeCalls();
    LcdPageWorld::clickLeft(world.automatic());
    LcdPageWorld::clickLeft(world.lcdSwitch());
    world.press(world.normalKey(), 'K');
    QVERIFY(world.apply(false));
    QVERIFY(world.isDirty());
    QVERIFY(!world.confirmButton()->isDown());
    QVERIFY(world.info() == manualSettings());
    QVERIFY(world.shown() == LcdModuleInfo({true, 10, kCtrl, '1', false})); // a disabled field takes no key
    QCOMPARE(world.hotKeys.takeCalls(), QStringList());
    const int sent = world.commands().size();
    QTRY_VERIFY(world.commands().size() > sent + 3);
    QVERIFY(!world.commands().contains(LcdPageWorld::kOff));
}

void TestLcdPage::answerYesKeepsWhatIsShown()
{
    LcdPageWorld world;
    world.openClean();
    LcdPageWorld::clickLeft(world.manual());
    world.press(world.modifierKey(), kAlt);
    world.press(world.normalKey(), 'K');
    QVERIFY(world.apply());
    QVERIFY(!world.isDirty());
    QVERIFY(world.info() == LcdModuleInfo({false, 10, kAlt, 'K', true}));
    world.spin()->setValue(20); // unapplied
    QVERIFY(world.info() == LcdModuleInfo({false, 10, kAlt, 'K', true}));
    world.cancel();
    QVERIFY(world.shown() == LcdModuleInfo({false, 10, kAlt, 'K', true}));
}

void TestLcdPage::applyTellsTheWorkerTheTime_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("told");
    QTest::newRow("1 second") << true << 1 << 1;
    QTest::newRow("17 seconds") << true << 17 << 17;
    QTest::newRow("30 seconds") << true << 30 << 30;
    QTest::newRow("manual, pages stand still") << false << 17 << 0;
}

void TestLcdPage::applyTellsTheWorkerTheTime()
{
    QFETCH(bool, automatic);
    QFETCH(int, seconds);
    LcdModuleInfo off;
    off.EnableLcd = false;
    LcdPageWorld world;
    world.open(off, Ovryn_SendNvInfoToLCDThread::kSleepMs);
    QCOMPARE(world.toldSwitchSeconds(), 10);
    world.spin()->setValue(seconds);
    if (!automatic)
        LcdPageWorld::clickLeft(world.manual());
    QVERIFY(world.apply());
    QTEST(world.toldSwitchSeconds(), "told");
    QCOMPARE(world.info().SwitchTime, quint32(seconds));
}

void TestLcdPage::applyOffSendsOneFrameAndEndsTheWorker()
{
    LcdPageWorld world;
    world.openClean();
    QTRY_VERIFY(world.commands().size() > 2);
    LcdPageWorld::clickLeft(world.lcdSwitch());
    QVERIFY(!world.commands().contains(LcdPageWorld::kOff)); // not before it is applied
    QVERIFY(world.apply());
    QVERIFY(world.worker()->wait(10000));
    QVERIFY(world.worker()->isStopped());
    QCOMPARE(world.commands().count(LcdPageWorld::kOff), 1);
    QCOMPARE(world.commands().last(), LcdPageWorld::kOff);
    QCOMPARE(world.info().EnableLcd, false);
}

void TestLcdPage::applyOnRestartsTheWorker()
{
    LcdModuleInfo off;
    off.EnableLcd = false;
    LcdPageWorld world;
    world.open(off);
    QVERIFY(world.worker()->wait(10000));
    QCOMPARE(world.commands(), QList<int>{LcdPageWorld::kOff});
    LcdPageWorld::clickLeft(world.lcdSwitch());
    QVERIFY(world.apply());
    QTRY_VERIFY(world.commands().size() > 3);
    QVERIFY(!world.worker()->isStopped());
    QCOMPARE(world.commands().mid(1, 3), QList<int>({0x80, 0x80, 0x80}));
}

void TestLcdPage::applyOffAndOnAgain()
{
    LcdPageWorld world;
    world.openClean();
    QTRY_VERIFY(world.commands().size() > 2);
    LcdPageWorld::clickLeft(world.lcdSwitch());
    QVERIFY(world.apply());
    QVERIFY(world.worker()->wait(10000));
    const int sentUntilOff = world.commands().size();
    QCOMPARE(world.commands().count(LcdPageWorld::kOff), 1);
    LcdPageWorld::clickLeft(world.lcdSwitch());
    QCOMPARE(world.commands().size(), sentUntilOff); // not before it is applied
    QVERIFY(world.apply());
    QTRY_VERIFY(world.commands().size() > sentUntilOff + 2);
    QVERIFY(!world.worker()->isStopped());
    QCOMPARE(world.commands().count(LcdPageWorld::kOff), 1);
}

void TestLcdPage::applyInManualModeRegistersThePairAppliedBefore()
{
    LcdPageWorld world;
    world.openClean();
    QCOMPARE(world.registeredKeys(), QString());
    LcdPageWorld::clickLeft(world.manual());
    world.press(world.normalKey(), 'K');
    QVERIFY(world.apply());
    QCOMPARE(world.registeredKeys(), QStringLiteral("1")); // not the new one
    QCOMPARE(world.info().NormalKey, quint32('K'));
    world.press(world.normalKey(), 'Z');
    QVERIFY(world.apply());
    QCOMPARE(world.registeredKeys(), QStringLiteral("1K")); // the earlier pair stays
}

void TestLcdPage::automaticUnregistersAndManualRegistersTheLastPair()
{
    LcdModuleInfo saved = manualSettings();
    saved.NormalKey = 'Q';
    LcdPageWorld world;
    world.openClean(saved);
    QCOMPARE(world.registeredKeys(), QStringLiteral("Q"));
    LcdPageWorld::clickLeft(world.automatic());
    QVERIFY(world.apply());
    QCOMPARE(world.registeredKeys(), QString());
    LcdPageWorld::clickLeft(world.manual());
    world.press(world.normalKey(), 'W');
    QVERIFY(world.apply());
    QCOMPARE(world.registeredKeys(), QStringLiteral("Q"));
}

void TestLcdPage::altAndKIsShownAndCtrlAndKWorks()
{
    LcdPageWorld world;
    world.openClean(manualSettings());
    world.press(world.modifierKey(), kAlt);
    world.press(world.normalKey(), 'K');
    QCOMPARE(world.modifierKey()->text(), QStringLiteral("Alt"));
    QCOMPARE(world.normalKey()->text(), QStringLiteral("K"));
    QVERIFY(world.apply());
    const LcdModuleInfo saved = world.info();
    QCOMPARE(saved.ModifierKey, 18u);
    QCOMPARE(saved.NormalKey, 75u);

    world.openClean(saved); // the next start
    QCOMPARE(world.modifierKey()->text(), QStringLiteral("Alt"));
    QTRY_VERIFY(!world.commands().isEmpty());
    QVERIFY(!world.hotKeys.press('K', GlobalHotKeys::Alt));
    QVERIFY(!world.hotKeys.press('1', GlobalHotKeys::Control));
    QVERIFY(world.hotKeys.press('K', GlobalHotKeys::Control));
    QTRY_COMPARE(world.commands().last(), 0x40);
}

void TestLcdPage::hotKeyTurnsThePages()
{
    LcdPageWorld world;
    world.openClean(manualSettings());
    QTRY_VERIFY(world.commands().size() > 1);
    for (int page : {0x40, 0x20, 0x10, 0x80, 0x40}) {
        QVERIFY(world.pressHotKey('1'));
        QTRY_COMPARE(world.commands().last(), page);
    }
    QVERIFY(!world.isDirty());
}

void TestLcdPage::hotKeyDoesNothingWhileAutomatic()
{
    LcdPageWorld world;
    world.openClean();
    world.page->onHotKeyActivated(); // as of a key that is still on its way
    const int sent = world.commands().size();
    QTRY_VERIFY(world.commands().size() > sent + 5);
    for (int command : world.commands())
        QCOMPARE(command, 0x80);
}

void TestLcdPage::workerThatIsGoneIsMadeAnew()
{
    LcdModuleInfo off;
    off.EnableLcd = false;
    LcdPageWorld world;
    world.open(off, Ovryn_SendNvInfoToLCDThread::kSleepMs);
    delete world.worker();
    const int sent = world.commands().size();
    world.page->setLCDCurrentDisplayMode(LcdDisplayMemory); // nobody to tell
    world.page->onHotKeyActivated();
    QCOMPARE(world.commands().size(), sent);

    LcdPageWorld::clickLeft(world.manual());
    world.spin()->setValue(4);
    LcdPageWorld::clickLeft(world.automatic());
    QVERIFY(world.apply());
    QVERIFY(world.worker() != nullptr);
    QCOMPARE(world.toldSwitchSeconds(), 4);
    QCOMPARE(world.hotKeys.takeCalls(), QStringList()); // the hot key is left out

    delete world.worker();
    LcdPageWorld::clickLeft(world.manual());
    QVERIFY(world.apply());
    QCOMPARE(world.toldSwitchSeconds(), 0);
    QCOMPARE(world.hotKeys.takeCalls(), QStringList());
    QVERIFY(!world.info().AutoSwitch);
}

void TestLcdPage::pageOfTheGaugeIsNoSetting()
{
    LcdPageWorld world;
    world.openClean(manualSettings());
    world.page->setLCDCurrentDisplayMode(LcdDisplayTemperature);
    const int sent = world.commands().size();
    QTRY_VERIFY(world.commands().size() > sent + 3);
    QCOMPARE(world.commands().last(), 0x40); // and it stays
    QVERIFY(!world.isDirty());
    QVERIFY(world.info() == manualSettings());
}

void TestLcdPage::cardWithoutAnLcd()
{
    LcdPageWorld world;
    world.driver.edit(0, [](simulated::Card &card) { card.lcd.reset(); });
    world.openClean();
    QTRY_VERIFY(world.commands().size() > 10); // for ever
    QVERIFY(!world.worker()->isStopped());
    QVERIFY(!world.isDirty());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    LcdPageWorld::clickLeft(world.lcdSwitch());
    QVERIFY(world.apply());
    QVERIFY(world.worker()->wait(10000));
    QCOMPARE(world.commands().last(), LcdPageWorld::kOff);
}

QTEST_MAIN(TestLcdPage)
#include "TestLcdPage.moc"
