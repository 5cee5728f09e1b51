#include "app/MainDialogTest.h"
#include "config/Ovryn_ConfigFile.h"
#include "overclock/AdjustRows.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "support/ModalAnswer.h"

#include <QSlider>

/// The main dialog's switch of the high-performance mode. Its prompt comes once in a process, so the test that needs
/// it is the first.
class TestMainDialogHighPerformance : public MainDialogTest
{
    Q_OBJECT

private slots:
    void tickIsLostWithoutAnOrderlyEnd();
    void switchIsShown_data();
    void switchIsShown();
    void onAndOff();
    void refusedCardLeavesItOff_data();
    void refusedCardLeavesItOff();
    void endedByTheAdjustPage_data();
    void endedByTheAdjustPage();

private:
    static Ovryn_OverClockingWidget *adjustPage(const OvrynDeck2 &dialog, int card = 0)
    {
        return dialog.findChildren<Ovryn_OverClockingWidget *>().value(card);
    }

    static QPushButton *modeSwitch(const OvrynDeck2 &dialog) { return button(dialog, "btnHighPerformance"); }

    /// Every call that changes the card's clocks.
    [[nodiscard]] QStringList clockWrites() const { return driver->calls(Operation::NvAPI_GPU_SetPstates20); }
};

void TestMainDialogHighPerformance::tickIsLostWithoutAnOrderlyEnd()
{
    const auto promptIsOff = [] {
        Ovryn_ConfigFile config;
        bool notPrompt = false;
        return config.load() && config.getNotPromptHPS(notPrompt) && notPrompt;
    };
    {
        OvrynDeck2 dialog;
        dialog.show();
        ModalAnswer answer({QStringLiteral("msgBoxYesBtn")}, QStringLiteral("msgBoxCheckBox"));
        dialog.afterShow();
        QCOMPARE(answer.problems(), QStringList());
        QCOMPARE(answer.texts().size(), 1);
        QVERIFY(!promptIsOff());
    } // deleted without a close
    QVERIFY(!promptIsOff());
}

void TestMainDialogHighPerformance::switchIsShown_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<bool>("shown");

    QTest::newRow("1070 Ti of the maker, variant 13") << "GeForce GTX 1070 Ti" << 0x111D7377u << true;
    QTest::newRow("variant 2") << "GeForce GTX 1070 Ti" << 0x11127377u << false;
    QTest::newRow("foreign GTX 1080") << "GeForce GTX 1080" << 0x85AA1043u << false;
}

void TestMainDialogHighPerformance::switchIsShown()
{
    QFETCH(QString, name);
    QFETCH(quint32, subSystemId);
    driver->card().fullName = name.toStdString();
    driver->card().subSystemId = subSystemId;
    OvrynDeck2 dialog;
    dialog.show();
    QTEST(modeSwitch(dialog)->isVisible(), "shown");
}

void TestMainDialogHighPerformance::onAndOff()
{
    OvrynDeck2 dialog;
    dialog.show();
    QVERIFY(modeSwitch(dialog)->isVisible());
    driver->forgetCalls();
    modeSwitch(dialog)->click();
    QVERIFY(modeSwitch(dialog)->isChecked());
    QVERIFY(adjustPage(dialog)->isHighPerformance());
    QCOMPARE(clockWrites().value(0), QStringLiteral("GPU_SetPstates20 gpu0 graphics offset 126000 kHz"));

    modeSwitch(dialog)->click();
    QVERIFY(!modeSwitch(dialog)->isChecked());
    QVERIFY(!adjustPage(dialog)->isHighPerformance());
}

void TestMainDialogHighPerformance::refusedCardLeavesItOff_data()
{
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<bool>("readable"); // the name, when the switch is pressed

    QTest::newRow("board that shows the switch and has no clock in the table") << 0x11187377u << true;
    QTest::newRow("board of the table whose name can't be read any more") << 0x111D7377u << false;
}

void TestMainDialogHighPerformance::refusedCardLeavesItOff()
{
    QFETCH(quint32, subSystemId);
    QFETCH(bool, readable);

    driver->card().subSystemId = subSystemId;
    OvrynDeck2 dialog;
    dialog.show();
    QVERIFY(modeSwitch(dialog)->isVisible());
    if (!readable)
        driver->fails(Operation::NvAPI_GPU_GetFullName, NVAPI_ERROR);
    driver->forgetCalls();
    QTest::mouseClick(modeSwitch(dialog), Qt::LeftButton);
    QVERIFY(!modeSwitch(dialog)->isChecked());
    QVERIFY(!adjustPage(dialog)->isHighPerformance());
    QCOMPARE(clockWrites(), QStringList());
}

void TestMainDialogHighPerformance::endedByTheAdjustPage_data()
{
    QTest::addColumn<bool>("apply");
    QTest::newRow("Apply") << true;
    QTest::newRow("Default") << false;
}

void TestMainDialogHighPerformance::endedByTheAdjustPage()
{
    QFETCH(bool, apply);

    OvrynDeck2 dialog;
    dialog.show();
    modeSwitch(dialog)->click();
    QVERIFY(modeSwitch(dialog)->isChecked());

    Ovryn_OverClockingWidget *page = adjustPage(dialog);
    if (apply) {
        auto *row = page->findChild<Ovryn_SliderWidget *>(QLatin1String(kAdjustRows[RowGpuClock].objectName));
        row->findChild<QSlider *>()->setValue(1700);
        ModalAnswer answer({QStringLiteral("msgBoxYesBtn")});
        driver->forgetCalls();
        page->onBtnApplyClick();
        QCOMPARE(answer.problems(), QStringList());
        // The values of the rows, not those from before the mode.
        QCOMPARE(clockWrites().value(0), QStringLiteral("GPU_SetPstates20 gpu0 graphics offset 93000 kHz"));
    } else {
        page->onBtnDefaultClick();
    }
    QVERIFY(!modeSwitch(dialog)->isChecked());
    QVERIFY(!page->isHighPerformance());

    // The switch stays off: the values from before the mode are not restored, and the next press switches on.
    driver->forgetCalls();
    QVERIFY(page->setHighPerformance(false));
    QCOMPARE(clockWrites(), QStringList());
    modeSwitch(dialog)->click();
    QVERIFY(modeSwitch(dialog)->isChecked());
}

QTEST_MAIN(TestMainDialogHighPerformance)

#include "TestMainDialogHighPerformance.moc"
