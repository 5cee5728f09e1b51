#include "app/MainDialogTest.h"
#include "app/Ovryn_BackgroundEffects.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"
#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"
#include "monitor/information/Ovryn_GpuFixedInfo.h"
#include "support/ConnectWarnings.h"
#include "support/ModalAnswer.h"
#include "ui/Ovryn_ComboBox.h"
#include "ui/RollStackWidget.h"

#include <QLabel>
#include <QRegularExpression>
#include <QStackedWidget>

/// The main dialog's cards and pages. Two questions are asked once in a process, so their tests come first, in the
/// order of a run.
class TestMainDialogPages : public MainDialogTest
{
    Q_OBJECT

private slots:
    void promptOfTheHighPerformanceModeComesOnce();
    void adjustWarningComesOnce();
    void everyConnectionExists();
    void detectionOfTwoCards();
    void noCard();
    void cardWithoutAName();
    void hostileNameLosesNoSettings();
    void identicalCardsHaveTheirOwnSections();
    void slotButtons_data();
    void slotButtons();
    void lcdAloneUnchecksItsOwnButton();
    void pageButtons_data();
    void pageButtons();
    void secondClickClosesThePage();
    void pageToPageKeepsThePanelOpen();
    void ledPageTakesTheGaugesPlace();
    void gaugeSlidesTenPixelsATick();
    void changeOfCardKeepsThePage();
    void effectsShowForTheMakersCards_data();
    void effectsShowForTheMakersCards();
    void storedSelectionIsUsed_data();
    void storedSelectionIsUsed();
    void boardTemperatureButtonLeadsNowhere();
    void eachCardsInformationReachesItsPage();
    void cardInformationReplacesAMissingPage_data();
    void cardInformationReplacesAMissingPage();
};

namespace
{

constexpr quint8 kLedAddress = 0xA0;
constexpr quint8 kLcdAddress = 0xAC;

void makeForeign(RawCard &card, const char *name)
{
    card.fullName = name;
    card.subSystemId = 0x85AA1043;
    card.i2cListeners.clear();
}

QStackedWidget *circleStack(const OvrynDeck2 &dialog)
{
    return dialog.findChild<QStackedWidget *>(QStringLiteral("circleStack"));
}

} // namespace

void TestMainDialogPages::promptOfTheHighPerformanceModeComesOnce()
{
    // a card without the switch leaves the question for a later card
    driver->cards.resize(2);
    makeForeign(driver->card(0), "GeForce GTX 1080");
    OvrynDeck2 dialog;
    dialog.show();
    ModalAnswer answer({QStringLiteral("msgBoxYesBtn")}, QStringLiteral("msgBoxCheckBox"));
    dialog.afterShow();
    QCOMPARE(answer.texts(), QStringList());

    dialog.findChild<Ovryn_ComboBox *>()->setCurrentIndex(1);
    QCOMPARE(answer.problems(), QStringList());
    QCOMPARE(answer.texts(), QStringList({QStringLiteral("检测到GeForce GTX 1070 Ti，可激活高性能模式。")}));
    dialog.findChild<Ovryn_ComboBox *>()->setCurrentIndex(0);
    dialog.findChild<Ovryn_ComboBox *>()->setCurrentIndex(1);
    dialog.afterShow();
    QCOMPARE(answer.texts().size(), 1);

    QVERIFY(savedText().contains(QLatin1String("NotPromptHPS=\"0\""))); // in memory only until the close
    dialog.close();
    QVERIFY(savedText().contains(QLatin1String("NotPromptHPS=\"1\"")));
}

void TestMainDialogPages::adjustWarningComesOnce()
{
    OvrynDeck2 dialog;
    dialog.show();
    QPushButton *adjust = button(dialog, "btnAdjust");
    ModalAnswer answer({QStringLiteral("msgBoxNoBtn"), QStringLiteral("msgBoxYesBtn")});

    adjust->click(); // refused: the next click asks again
    QVERIFY(!adjust->isChecked());
    QCOMPARE(dialog.shownPage(), int(HomePage));

    adjust->click(); // accepted
    QVERIFY(adjust->isChecked());
    QCOMPARE(dialog.shownPage(), int(AdjustPage));

    adjust->click(); // the click that closes the page asks nothing
    QCOMPARE(dialog.shownPage(), int(HomePage));
    adjust->click(); // nor does a later opening
    QCOMPARE(dialog.shownPage(), int(AdjustPage));

    QCOMPARE(answer.problems(), QStringList());
    QCOMPARE(answer.texts().size(), 2);
    QCOMPARE(answer.texts().at(0), QStringLiteral("不正当的调节可能造成系统不稳定，严重可能损坏显卡，是否继续?"));
}

void TestMainDialogPages::everyConnectionExists()
{
    driver->cards.resize(2);
    ConnectWarnings warnings;
    OvrynDeck2 dialog;
    dialog.show();
    dialog.findChild<Ovryn_ComboBox *>()->setCurrentIndex(1);
    QStringList found;
    for (const QString &warning : warnings.list())
        if (!warning.contains(QLatin1String("systemTrayWindowChanged"))) // the toolkit's own, off a real screen
            found << warning;
    QCOMPARE(found, QStringList());
}

void TestMainDialogPages::detectionOfTwoCards()
{
    driver->cards.resize(2);
    makeForeign(driver->card(1), "GeForce GTX 1080");
    OvrynDeck2 dialog;
    QCOMPARE(dialog.cardCount(), 2);

    const QStringList calls = driver->calls();
    QStringList begin;
    for (const QString &call : calls.mid(0, 8))
        begin << call.section(QLatin1Char(' '), 0, 1);
    QCOMPARE(begin.at(0), QStringLiteral("Initialize"));

    // Each card in turn: identifiers, name, the frame of five bytes to its LEDs, the LCD's frame of 35 bytes.
    const QStringList identity = calls.filter(QStringLiteral("GPU_GetPCIIdentifiers"));
    QVERIFY(identity.size() >= 2);
    const int first = calls.indexOf(identity.at(0));
    QVERIFY2(calls.at(first + 1).startsWith(QLatin1String("GPU_GetFullName gpu0")), qPrintable(calls.at(first + 1)));
    QCOMPARE(calls.at(first + 2), QStringLiteral("I2CWrite gpu0 port 1 0xA0: 05 0A 00 00 F0"));
    const QStringList lcdFrames = calls.filter(QStringLiteral("I2CWrite gpu0 port 1 0xAC"));
    QVERIFY(!lcdFrames.isEmpty());
    // The LCD is on and changes its page every ten seconds.
    const QStringList probe = lcdFrames.at(0).section(QStringLiteral(": "), 1).split(QLatin1Char(' '));
    QCOMPARE(probe.size(), 35);
    QCOMPARE(QStringList(probe.mid(0, 2) << probe.at(3)), QStringList({"AA", "88", "F6"}));
    const int second = calls.indexOf(QRegularExpression(QStringLiteral("^GPU_GetPCIIdentifiers gpu1.*")));
    QVERIFY(second > calls.indexOf(lcdFrames.at(0)));

    const GpuCardInfo maker = dialog.cards().at(0);
    QCOMPARE(maker.displayName, QStringLiteral("Ovryn 1070 Ti"));
    QVERIFY(maker.hasLed);
    QVERIFY(maker.hasLcd);
    const GpuCardInfo foreign = dialog.cards().at(1);
    QCOMPARE(foreign.displayName, QStringLiteral("GTX 1080"));
    QVERIFY(!foreign.hasLed);
    QVERIFY(!foreign.hasLcd);
    QCOMPARE(dialog.findChild<Ovryn_ComboBox *>()->itemText(1), QStringLiteral("GTX 1080"));
    QCOMPARE(dialog.findChild<Ovryn_ComboBox *>()->itemData(1).toInt(), 1);
}

void TestMainDialogPages::noCard()
{
    driver->libraryExists = false;
    OvrynDeck2 dialog;
    QCOMPARE(dialog.cardCount(), 0);
    QVERIFY(dialog.cards().isEmpty());
    QCOMPARE(dialog.findChild<Ovryn_ComboBox *>()->count(), 0);
    dialog.show();
    button(dialog, "btnMonitor")->click(); // no page to show, and no failure
    finishSlide(dialog);
    dialog.afterShow();
}

void TestMainDialogPages::cardWithoutAName()
{
    driver->fails(Operation::NvAPI_GPU_GetFullName, NVAPI_ERROR);
    OvrynDeck2 dialog;
    QCOMPARE(dialog.cardCount(), 1);
    QCOMPARE(dialog.cards().at(0).gpuName, QString());
}

void TestMainDialogPages::hostileNameLosesNoSettings()
{
    driver->card().fullName =
        std::string("GeForce\x01\x0B GTX\x1F 1080") + std::string(80, 'x'); // no terminating zero
    writeConfig("<OvrynParameter><OtherSetting NotPromptHPS=\"1\"/></OvrynParameter>");
    {
        OvrynDeck2 dialog;
        QVERIFY2(dialog.cards().at(0).gpuName.startsWith(QLatin1String("GeForce GTX 1080xxx")),
                 qPrintable(dialog.cards().at(0).gpuName));
        dialog.close();
    }
    Ovryn_ConfigFile config;
    QVERIFY(config.load());
    bool notPrompt = false;
    QVERIFY(config.getNotPromptHPS(notPrompt));
    QVERIFY(notPrompt); // the file could be read again
}

void TestMainDialogPages::identicalCardsHaveTheirOwnSections()
{
    driver->cards.resize(2);
    {
        OvrynDeck2 dialog;
        QCOMPARE(dialog.cards().at(1).gpuName, QStringLiteral("GeForce GTX 1070 Ti 1"));
        QCOMPARE(dialog.cards().at(1).displayName, QStringLiteral("Ovryn 1070 Ti 1"));
        const QList<Ovryn_NvCardInfoWidget *> pages = dialog.findChildren<Ovryn_NvCardInfoWidget *>();
        QCOMPARE(pages.size(), 2);
        dialog.close();
    }
    Ovryn_ConfigFile config;
    QVERIFY(config.load());
    quint32 option = 0;
    QVERIFY(config.getMonitorModule(QStringLiteral("GeForce GTX 1070 Ti"), 0x111D7377, option));
    QVERIFY(config.getMonitorModule(QStringLiteral("GeForce GTX 1070 Ti 1"), 0x111D7377, option));
    QVERIFY(!config.getMonitorModule(QStringLiteral("GeForce GTX 1070 Ti 2"), 0x111D7377, option));
}

void TestMainDialogPages::slotButtons_data()
{
    QTest::addColumn<bool>("led");
    QTest::addColumn<bool>("lcd");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");

    QTest::newRow("LED and LCD") << true << true << "LED"
                                 << "LCD";
    QTest::newRow("LED alone") << true << false << "LED"
                               << "";
    QTest::newRow("LCD alone stands first") << false << true << "LCD"
                                            << "";
    QTest::newRow("neither") << false << false << ""
                             << "";
}

void TestMainDialogPages::slotButtons()
{
    QFETCH(bool, led);
    QFETCH(bool, lcd);
    driver->card().i2cListeners.clear();
    if (led)
        driver->card().i2cListeners.insert(kLedAddress);
    if (lcd)
        driver->card().i2cListeners.insert(kLcdAddress);
    OvrynDeck2 dialog;
    dialog.show();
    const auto caption = [&](const char *name) {
        return button(dialog, name)->isVisible() ? button(dialog, name)->text() : QString();
    };
    QTEST(caption("btnFirstSlot"), "first");
    QTEST(caption("btnSecondSlot"), "second");
}

void TestMainDialogPages::lcdAloneUnchecksItsOwnButton()
{
    driver->card().i2cListeners = {kLcdAddress};
    OvrynDeck2 dialog;
    dialog.show();
    button(dialog, "btnFirstSlot")->click();
    QVERIFY(!button(dialog, "btnFirstSlot")->isChecked());
    QCOMPARE(dialog.shownPage(), int(LcdPage));
    QVERIFY(dialog.findChild<RollStackWidget *>()->isVisible());
}

void TestMainDialogPages::pageButtons_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("page");

    QTest::newRow("monitor") << QByteArray("btnMonitor") << int(MonitorPage);
    QTest::newRow("LED") << QByteArray("btnFirstSlot") << int(LedPage);
    QTest::newRow("LCD") << QByteArray("btnSecondSlot") << int(LcdPage);
    QTest::newRow("card information") << QByteArray("btnGpuFixedInfo") << int(FixedInfoPage);
}

void TestMainDialogPages::pageButtons()
{
    QFETCH(QByteArray, name);
    OvrynDeck2 dialog;
    dialog.show();
    auto *roll = dialog.findChild<RollStackWidget *>();
    QVERIFY(!roll->isVisible());

    QTest::mouseClick(button(dialog, name.constData()), Qt::LeftButton);
    QTEST(dialog.shownPage(), "page");
    QVERIFY(roll->isVisible());
    QVERIFY(!roll->isShown()); // it opens after the gauge's slide
    finishSlide(dialog);
    QVERIFY(roll->isShown());
    QCOMPARE(circleStack(dialog)->geometry(), mainDialogLayout(dialog.size()).gaugeShown);

    QTest::mouseClick(button(dialog, name.constData()), Qt::LeftButton);
    QCOMPARE(dialog.shownPage(), int(HomePage));
    QVERIFY(!roll->isVisible());
    finishSlide(dialog);
    QCOMPARE(circleStack(dialog)->geometry(), mainDialogLayout(dialog.size()).gaugeHome);
    QVERIFY(qobject_cast<Ovryn_GpuInfoCircleBox *>(circleStack(dialog)->currentWidget()));
}

void TestMainDialogPages::secondClickClosesThePage()
{
    OvrynDeck2 dialog;
    dialog.show();
    button(dialog, "btnMonitor")->click();
    button(dialog, "btnMonitor")->click();
    for (const char *name : {"btnMonitor", "btnAdjust", "btnGpuFixedInfo", "btnFirstSlot", "btnSecondSlot"})
        QVERIFY2(!button(dialog, name)->isChecked(), name);
    QCOMPARE(dialog.shownPage(), int(HomePage));
}

void TestMainDialogPages::pageToPageKeepsThePanelOpen()
{
    OvrynDeck2 dialog;
    dialog.show();
    button(dialog, "btnMonitor")->click();
    finishSlide(dialog);
    button(dialog, "btnGpuFixedInfo")->click();
    QVERIFY(!button(dialog, "btnMonitor")->isChecked());
    QVERIFY(button(dialog, "btnGpuFixedInfo")->isChecked());
    QCOMPARE(dialog.shownPage(), int(FixedInfoPage));
    dialog.onMoveCircleWidgetTimerTimeout(); // the gauge is in its place: the first tick selects the page
    QCOMPARE(circleStack(dialog)->x(), mainDialogLayout(dialog.size()).gaugeShown.x());
    QVERIFY(dialog.findChild<RollStackWidget *>()->isShown());
}

void TestMainDialogPages::ledPageTakesTheGaugesPlace()
{
    OvrynDeck2 dialog;
    dialog.show();
    button(dialog, "btnFirstSlot")->click();
    finishSlide(dialog);
    QVERIFY(!qobject_cast<Ovryn_GpuInfoCircleBox *>(circleStack(dialog)->currentWidget()));
    button(dialog, "btnMonitor")->click();
    finishSlide(dialog);
    QVERIFY(qobject_cast<Ovryn_GpuInfoCircleBox *>(circleStack(dialog)->currentWidget()));
}

void TestMainDialogPages::gaugeSlidesTenPixelsATick()
{
    OvrynDeck2 dialog;
    dialog.show();
    const MainDialogLayout layout = mainDialogLayout(dialog.size());
    const int y = circleStack(dialog)->y();
    button(dialog, "btnMonitor")->click();
    dialog.onMoveCircleWidgetTimerTimeout();
    QCOMPARE(circleStack(dialog)->x(), layout.gaugeHome.x() - 10);
    dialog.onMoveCircleWidgetTimerTimeout();
    QCOMPARE(circleStack(dialog)->x(), layout.gaugeHome.x() - 20);
    button(dialog, "btnMonitor")->click(); // turns back in mid-slide
    dialog.onMoveCircleWidgetTimerTimeout();
    QCOMPARE(circleStack(dialog)->x(), layout.gaugeHome.x() - 10);
    QCOMPARE(circleStack(dialog)->y(), y);
}

void TestMainDialogPages::changeOfCardKeepsThePage()
{
    driver->cards.resize(2);
    makeForeign(driver->card(1), "GeForce GTX 1080");
    OvrynDeck2 dialog;
    dialog.show();
    QWidget *firstGauge = circleStack(dialog)->currentWidget();
    button(dialog, "btnMonitor")->click();
    finishSlide(dialog);
    const QList<Ovryn_NvCardInfoWidget *> pages = dialog.findChildren<Ovryn_NvCardInfoWidget *>();
    QVERIFY(pages.at(0)->isVisible());
    QVERIFY(!pages.at(1)->isVisible());

    dialog.findChild<Ovryn_ComboBox *>()->setCurrentIndex(1);
    QCOMPARE(dialog.shownCard(), 1);
    QCOMPARE(dialog.shownPage(), int(MonitorPage));
    QVERIFY(pages.at(1)->isVisible());
    QVERIFY(circleStack(dialog)->currentWidget() != firstGauge);
    QVERIFY(!button(dialog, "btnFirstSlot")->isVisible());
}

void TestMainDialogPages::effectsShowForTheMakersCards_data()
{
    QTest::addColumn<bool>("makersFirst");
    QTest::newRow("from the start on the maker's card") << true;
    QTest::newRow("not from the start on a foreign card") << false;
}

void TestMainDialogPages::effectsShowForTheMakersCards()
{
    QFETCH(bool, makersFirst);
    driver->cards.resize(2);
    makeForeign(driver->card(makersFirst ? 1 : 0), "GeForce GTX 1080");
    OvrynDeck2 dialog;
    dialog.show();
    auto *effects = dialog.findChild<Ovryn_BackgroundEffects *>();
    QCOMPARE(effects->isVisible(), makersFirst);
    auto *selector = dialog.findChild<Ovryn_ComboBox *>();
    selector->setCurrentIndex(1);
    QCOMPARE(effects->isVisible(), !makersFirst);
    selector->setCurrentIndex(0);
    QCOMPARE(effects->isVisible(), makersFirst);
}

void TestMainDialogPages::storedSelectionIsUsed_data()
{
    QTest::addColumn<bool>("apply");
    QTest::addColumn<int>("mask");
    QTest::newRow("applied") << true << 37;
    QTest::newRow("not applied") << false << 0;
}

void TestMainDialogPages::storedSelectionIsUsed()
{
    QFETCH(bool, apply);
    {
        Ovryn_ConfigFile config;
        config.load();
        GeneralSettingInfo general;
        general.ApplyLastParamOnStart = apply;
        config.setGeneralSetting(general);
        config.setMonitorModule(QStringLiteral("GeForce GTX 1070 Ti"), 0x111D7377, 37);
        QVERIFY(config.save());
    }
    OvrynDeck2 dialog;
    int mask = -1;
    dialog.findChild<Ovryn_NvCardInfoWidget *>()->getSelectOption(&mask);
    QTEST(mask, "mask");
}

void TestMainDialogPages::boardTemperatureButtonLeadsNowhere()
{
    OvrynDeck2 dialog;
    dialog.show();
    QVERIFY(!button(dialog, "btnBoardTempInfo")->isVisible());
    button(dialog, "btnBoardTempInfo")->click();
    QCOMPARE(dialog.shownPage(), int(HomePage));
}

void TestMainDialogPages::eachCardsInformationReachesItsPage()
{
    driver->cards.resize(2);
    driver->card(1).vbiosVersion = "11.22.33";
    OvrynDeck2 dialog;
    dialog.show();
    const QList<Ovryn_GpuFixedInfo *> pages = dialog.findChildren<Ovryn_GpuFixedInfo *>();
    QCOMPARE(pages.size(), 2);
    const auto biosVersion = [&](int card) {
        return pages.at(card)->findChild<QLabel *>(QStringLiteral("lbl_BiosVersionValue"))->text();
    };
    QTRY_COMPARE(biosVersion(0), QStringLiteral("86.04.85.00.AB"));
    QTRY_COMPARE(biosVersion(1), QStringLiteral("11.22.33"));
}

void TestMainDialogPages::cardInformationReplacesAMissingPage_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("LED") << QByteArray("btnFirstSlot");
    QTest::newRow("LCD") << QByteArray("btnSecondSlot");
}

void TestMainDialogPages::cardInformationReplacesAMissingPage()
{
    QFETCH(QByteArray, button);
    driver->cards.resize(2);
    makeForeign(driver->card(1), "GeForce GTX 1080");
    OvrynDeck2 dialog;
    dialog.show();
    this->button(dialog, button.constData())->click();
    finishSlide(dialog);
    dialog.findChild<Ovryn_ComboBox *>()->setCurrentIndex(1); // a card without such a page
    const QList<Ovryn_GpuFixedInfo *> pages = dialog.findChildren<Ovryn_GpuFixedInfo *>();
    QVERIFY(pages.at(1)->isVisible());
    QVERIFY(qobject_cast<Ovryn_GpuInfoCircleBox *>(circleStack(dialog)->currentWidget()));
}

QTEST_MAIN(TestMainDialogPages)
#include "TestMainDialogPages.moc"
