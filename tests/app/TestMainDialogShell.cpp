#include "app/MainDialogTest.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "support/ModalAnswer.h"

#include <QAction>
#include <QComboBox>
#include <QDate>
#include <QMenu>
#include <QRegularExpression>
#include <QSpinBox>

/// The main dialog's tray, settings, language and end.
class TestMainDialogShell : public MainDialogTest
{
    Q_OBJECT

private slots:
    void trayIcon();
    void trayIconBringsTheWindowBack_data();
    void trayIconBringsTheWindowBack();
    void minimizeHidesTheWindow();
    void fieldOutOfSightMarksNoOther_data();
    void fieldOutOfSightMarksNoOther();
    void bringingBackAsksWhatTheStartDidNot();
    void bringingBackAppliesNothing_data();
    void bringingBackAppliesNothing();
    void trayExitAsksNothing();
    void storedRefreshTimeWaitsForAChange();
    void languageOfTheFile_data();
    void languageOfTheFile();
    void changeOfLanguageReachesTheButtons();
    void closingWritesTheFile();
    void escapeKeepsTheDialog();
    void everythingEndsWithTheDialog();

private:
    static QSystemTrayIcon *trayIconOf(const OvrynDeck2 &dialog) { return dialog.findChild<QSystemTrayIcon *>(); }
};

void TestMainDialogShell::trayIcon()
{
    OvrynDeck2 dialog;
    const QSystemTrayIcon *icon = trayIconOf(dialog);
    QVERIFY(!icon->icon().isNull());
    QCOMPARE(icon->toolTip(), QStringLiteral("OvrynDeck2"));

    const QMenu *menu = icon->contextMenu();
    QCOMPARE(menu->minimumWidth(), 150);
    QCOMPARE(menu->font().family(), QStringLiteral("微软雅黑"));
    const QList<QAction *> actions = menu->actions();
    QCOMPARE(actions.size(), 3);
    QCOMPARE(actions.at(0)->text(), QStringLiteral("显示"));
    QVERIFY(actions.at(1)->isSeparator());
    QCOMPARE(actions.at(2)->text(), QStringLiteral("退出"));

    dialog.findChild<QComboBox *>(QStringLiteral("cmb_language"))->setCurrentIndex(1);
    QCOMPARE(actions.at(0)->text(), QStringLiteral("Display"));
    QCOMPARE(actions.at(2)->text(), QStringLiteral("Exit"));
}

void TestMainDialogShell::trayIconBringsTheWindowBack_data()
{
    QTest::addColumn<int>("reason");
    QTest::addColumn<bool>("shown");

    QTest::newRow("click") << int(QSystemTrayIcon::Trigger) << true;
    QTest::newRow("double click") << int(QSystemTrayIcon::DoubleClick) << false;
    QTest::newRow("middle button") << int(QSystemTrayIcon::MiddleClick) << false;
    QTest::newRow("menu") << int(QSystemTrayIcon::Context) << false;
    QTest::newRow("unknown") << int(QSystemTrayIcon::Unknown) << false;
}

void TestMainDialogShell::trayIconBringsTheWindowBack()
{
    QFETCH(int, reason);
    driver->card().fullName = "GeForce GTX 1080"; // no question when the window comes back
    OvrynDeck2 dialog;
    emit trayIconOf(dialog)->activated(QSystemTrayIcon::ActivationReason(reason));
    QTEST(dialog.isVisible(), "shown");
}

void TestMainDialogShell::minimizeHidesTheWindow()
{
    OvrynDeck2 dialog;
    dialog.show();
    QTest::mouseClick(button(dialog, "btnMinimize"), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    QVERIFY(!dialog.isMinimized()); // it is in the tray, not in the task bar
    QVERIFY(
        savedText().contains(QLatin1String("<GpuSettings/>"))); // hiding is no close: no page's settings were saved
}

void TestMainDialogShell::fieldOutOfSightMarksNoOther_data()
{
    QTest::addColumn<QString>("next");
    QTest::newRow("another page") << "btnMonitor";
    QTest::newRow("the card information") << "btnGpuFixedInfo";
    QTest::newRow("home") << "btnAdjust";
    QTest::newRow("the settings") << "btnSetting";
}

void TestMainDialogShell::fieldOutOfSightMarksNoOther()
{
    QFETCH(QString, next);
    OvrynDeck2 dialog(nullptr, kCalmPages);
    dialog.show();
    {
        const ModalAnswer yes({QStringLiteral("msgBoxYesBtn")}); // the warning, once a run
        button(dialog, "btnAdjust")->click();
    }
    finishSlide(dialog);
    auto *page = dialog.findChild<Ovryn_OverClockingWidget *>();
    auto *field = page->findChild<QSpinBox *>();
    QTRY_COMPARE(page->x(), 0); // the page has rolled in
    QApplication::setActiveWindow(&dialog);
    field->setFocus();
    QVERIFY(field->hasFocus());

    button(dialog, qPrintable(next))->click();
    if (next != QLatin1String("btnSetting")) {
        finishSlide(dialog);
        QTRY_VERIFY(!page->isVisible());
    }
    QCOMPARE(dialog.focusWidget(), &dialog);
}

void TestMainDialogShell::bringingBackAsksWhatTheStartDidNot()
{
    ModalAnswer answer({QStringLiteral("msgBoxYesBtn")}); // the prompt of the high-performance mode, once a run
    OvrynDeck2 dialog(nullptr, kQuickPages);
    trayIconOf(dialog)->contextMenu()->actions().first()->trigger();
    QVERIFY(dialog.isVisible());
    QCOMPARE(answer.texts().size(), 1);
}

void TestMainDialogShell::bringingBackAppliesNothing_data()
{
    QTest::addColumn<bool>("byTheIcon");
    QTest::newRow("by a click on the icon, with values applied at the start") << true;
    QTest::newRow("by the menu, with values applied at the start") << false;
}

void TestMainDialogShell::bringingBackAppliesNothing()
{
    QFETCH(bool, byTheIcon);
    writeConfig("<OvrynParameter><GeneralSetting ApplyLastParamOnStart=\"1\"/><GpuSettings>"
                "<GPU GpuName=\"GeForce GTX 1070 Ti\" SubSystemId=\"" +
                QByteArray::number(0x111D7377u) +
                "\"><AdjustModule GpuFreClock=\"1707\" MemoryFreClock=\"4106\" Power=\"100\" Temperature=\"85\" "
                "FanMode=\"1\" FanSpeedLevel=\"60\"/><LedModule LedMode=\"1\"/></GPU></GpuSettings><OtherSetting "
                "NotPromptHPS=\"1\"/></OvrynParameter>");
    // the LCD's frames of live readings are sent all the time
    const auto orders = [this] {
        constexpr quint8 kLedAddress = 0xA0;
        return driver->orders() + driver->frames(kLedAddress);
    };
    ModalAnswer answer({});
    OvrynDeck2 dialog(nullptr, kQuickPages);
    QVERIFY(orders().filter(QStringLiteral("offset")).size() > 1); // there is something to be applied
    dialog.show();
    dialog.hide();
    driver->forgetCalls();
    if (byTheIcon)
        emit trayIconOf(dialog)->activated(QSystemTrayIcon::Trigger);
    else
        trayIconOf(dialog)->contextMenu()->actions().first()->trigger();
    QVERIFY(dialog.isVisible());
    // time for a late order
    QTRY_VERIFY_WITH_TIMEOUT(driver->calls(Operation::NvAPI_GPU_GetDynamicPstatesInfoEx).size() > 20, 8000);
    QCOMPARE(orders(), QStringList());
    QCOMPARE(answer.texts(), QStringList());
}

void TestMainDialogShell::trayExitAsksNothing()
{
    ModalAnswer answer({});
    OvrynDeck2 dialog;
    dialog.show();
    trayIconOf(dialog)->contextMenu()->actions().last()->trigger();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(answer.texts(), QStringList());
    QVERIFY(savedText().contains(QLatin1String("GpuName=\"GeForce GTX 1070 Ti\"")));
}

void TestMainDialogShell::storedRefreshTimeWaitsForAChange()
{
#ifdef __SANITIZE_THREAD__
    QSKIP("the thread sanitizer ends the program when a thread is ended by force, as the one with five seconds is");
#endif
    writeConfig("<OvrynParameter><GeneralSetting RefreshTimeOfMonitor=\"10\"/></OvrynParameter>");
    OvrynDeck2 dialog;
    auto *refreshTime = dialog.findChild<QComboBox *>(QStringLiteral("cmb_RefreshTime"));
    QCOMPARE(refreshTime->currentText(), QStringLiteral("10"));
    const auto cycles = [this] {
        return driver->calls(Operation::NvAPI_GPU_GetDynamicPstatesInfoEx).size();
    };
    QTRY_VERIFY_WITH_TIMEOUT(cycles() >= 3, 8000); // far more often than every ten seconds

    refreshTime->setCurrentIndex(2); // 5 s
    driver->forgetCalls();
    QTRY_VERIFY_WITH_TIMEOUT(cycles() >= 1, 8000); // the running pause was still the old one
    driver->forgetCalls();
    QVERIFY(!QTest::qWaitFor([&] { return cycles() > 0; }, 2500));
}

void TestMainDialogShell::languageOfTheFile_data()
{
    QTest::addColumn<QByteArray>("language");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("item"); // of the settings page's list
    QTest::newRow("Chinese") << QByteArray("lang_ch") << QStringLiteral("监控窗口") << 0;
    QTest::newRow("English") << QByteArray("lang_en") << "Monitor" << 1;
    QTest::newRow("any other text is English, with the list on its first item")
        << QByteArray("klingon") << "Monitor" << 0;
    QTest::newRow("no text is English too") << QByteArray() << "Monitor" << 0;
    QTest::newRow("other letters are another text") << QByteArray("LANG_CH") << "Monitor" << 0;
}

void TestMainDialogShell::languageOfTheFile()
{
    QFETCH(QByteArray, language);
    writeConfig("<OvrynParameter><GeneralSetting Language=\"" + language + "\"/></OvrynParameter>");
    OvrynDeck2 dialog;
    QTEST(button(dialog, "btnMonitor")->text(), "caption");
    QTEST(dialog.findChild<QComboBox *>(QStringLiteral("cmb_language"))->currentIndex(), "item");
}

void TestMainDialogShell::changeOfLanguageReachesTheButtons()
{
    OvrynDeck2 dialog;
    dialog.show();
    QCOMPARE(button(dialog, "btnAdjust")->text(), QStringLiteral("调节选项"));
    auto *language = dialog.findChild<QComboBox *>(QStringLiteral("cmb_language"));
    QVERIFY(language);
    language->setCurrentIndex(1);
    QCOMPARE(button(dialog, "btnMonitor")->text(), QStringLiteral("Monitor"));
    QCOMPARE(button(dialog, "btnAdjust")->text(), QStringLiteral("Adjust"));
    QCOMPARE(button(dialog, "btnBoardTempInfo")->text(), QStringLiteral("Temp"));
    QCOMPARE(button(dialog, "btnHighPerformance")->text(), QStringLiteral("On   Off"));
    QVERIFY(!savedText().contains(QLatin1String("lang_en"))); // only the close writes the file
    dialog.close();
    QVERIFY(savedText().contains(QLatin1String("Language=\"lang_en\"")));
}

void TestMainDialogShell::closingWritesTheFile()
{
    writeConfig("<OvrynParameter><GeneralSetting Language=\"lang_ch\"/>"
                "<LastCloseDate>2020/02/29</LastCloseDate></OvrynParameter>");
    OvrynDeck2 dialog;
    dialog.show();
    QPushButton *close = button(dialog, "btnClose");
    {
        ModalAnswer answer({QStringLiteral("msgBoxNoBtn")});
        QTest::mouseClick(close, Qt::LeftButton);
        QCOMPARE(answer.texts(), QStringList({QStringLiteral("确定退出程序吗?")}));
        QVERIFY(dialog.isVisible());
        QVERIFY(!savedText().contains(QLatin1String("GeForce")));
    }
    ModalAnswer answer({QStringLiteral("msgBoxYesBtn")});
    QTest::mouseClick(close, Qt::LeftButton);
    QCOMPARE(answer.problems(), QStringList());
    QVERIFY(!dialog.isVisible());
    QVERIFY(savedText().contains(QLatin1String("GpuName=\"GeForce GTX 1070 Ti\"")));
    QVERIFY(savedText().contains(
        QDate::currentDate().toString(QStringLiteral("'<LastCloseDate>'yyyy/MM/dd'</LastCloseDate>'"))));
}

void TestMainDialogShell::escapeKeepsTheDialog()
{
    OvrynDeck2 dialog;
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QVERIFY(dialog.isVisible());
}

void TestMainDialogShell::everythingEndsWithTheDialog()
{
    driver->cards.resize(2);
    {
        OvrynDeck2 dialog;
        dialog.show();
        QTRY_VERIFY(driver->calls(Operation::NvAPI_GPU_GetTachReading).size() > 4);
    }
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(driver->releases(), driver->loads());
    QCOMPARE(driver->strayCalls(), 0); // no worker outlived its card
}

QTEST_MAIN(TestMainDialogShell)
#include "TestMainDialogShell.moc"
