#include "app/MainDialogTest.h"
#include "board/lcd/Ovryn_LCDControllorWidget.h"
#include "board/lcd/Ovryn_SendNvInfoToLCDThread.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"

#include <QComboBox>
#include <QStackedWidget>

namespace
{

constexpr quint8 kLcdAddress = 0xAC;

} // namespace

/// The main dialog and its LCD pages: their stored settings, their connections and what is saved.
class TestMainDialogLcd : public MainDialogTest
{
    Q_OBJECT

private slots:
    void storedLcdSettingsAreUsed_data();
    void storedLcdSettingsAreUsed();
    void gaugeChoosesThePageOfTheLcd();
    void lcdPageComesUp();
    void everyCardHasItsWorker();
};

void TestMainDialogLcd::storedLcdSettingsAreUsed_data()
{
    QTest::addColumn<bool>("apply");
    QTest::addColumn<QByteArray>("gpuName");
    QTest::addColumn<quint32>("seconds");
    QTest::newRow("applied") << true << QByteArray("GeForce GTX 1070 Ti") << 25u;
    QTest::newRow("not applied") << false << QByteArray("GeForce GTX 1070 Ti") << 10u;
    QTest::newRow("of another card") << true << QByteArray("GeForce GTX 1080") << 10u;
}

void TestMainDialogLcd::storedLcdSettingsAreUsed()
{
    QFETCH(bool, apply);
    QFETCH(QByteArray, gpuName);
    QFETCH(quint32, seconds);
    {
        Ovryn_ConfigFile config;
        config.load();
        GeneralSettingInfo general;
        general.ApplyLastParamOnStart = apply;
        config.setGeneralSetting(general);
        config.setLcdModule(QString::fromLatin1(gpuName), 0x111D7377, {false, 25, 18, 'K', false});
        QVERIFY(config.save());
    }
    const bool isStored = seconds == 25;
    OvrynDeck2 dialog;
    LcdModuleInfo shown;
    dialog.findChild<Ovryn_LCDControllorWidget *>()->getLcdModuleInfo(shown);
    QCOMPARE(shown.SwitchTime, seconds);
    QCOMPARE(shown.AutoSwitch, !isStored);
    QCOMPARE(shown.EnableLcd, !isStored);
    dialog.close();

    Ovryn_ConfigFile config;
    QVERIFY(config.load());
    LcdModuleInfo kept;
    QVERIFY(config.getLcdModule(QStringLiteral("GeForce GTX 1070 Ti"), 0x111D7377, kept));
    QCOMPARE(kept.SwitchTime, seconds);
    QCOMPARE(kept.ModifierKey, isStored ? 18u : 17u);
    QCOMPARE(kept.NormalKey, isStored ? quint32('K') : 49u);
    QCOMPARE(kept.EnableLcd, !isStored);
}

void TestMainDialogLcd::gaugeChoosesThePageOfTheLcd()
{
    OvrynDeck2 dialog;
    dialog.show();
    const auto lastCommand = [this] {
        return driver->frames(kLcdAddress).last().section(QLatin1Char(' '), 3, 3);
    };
    auto *gauge = dialog.findChild<Ovryn_GpuInfoCircleBox *>();
    gauge->btnMemory_MouseClick();
    QCOMPARE(lastCommand(), QStringLiteral("20")); // at once
    gauge->btnTemperature_MouseClick();
    QCOMPARE(lastCommand(), QStringLiteral("40"));
    gauge->btnFreClock_MouseClick();
    QCOMPARE(lastCommand(), QStringLiteral("80"));
}

void TestMainDialogLcd::lcdPageComesUp()
{
    OvrynDeck2 dialog;
    dialog.show();
    button(dialog, "btnSecondSlot")->click();
    finishSlide(dialog);
    auto *page = dialog.findChild<Ovryn_LCDControllorWidget *>();
    QVERIFY(page->isVisible());
    QVERIFY(qobject_cast<Ovryn_GpuInfoCircleBox *>(
        dialog.findChild<QStackedWidget *>(QStringLiteral("circleStack"))->currentWidget()));
    const auto *apply = page->findChild<QPushButton *>(QStringLiteral("btnConfirm"));
    QCOMPARE(apply->text(), QStringLiteral("确定"));
    dialog.findChild<QComboBox *>(QStringLiteral("cmb_language"))->setCurrentIndex(1);
    QCOMPARE(apply->text(), QStringLiteral("Apply"));
    QVERIFY(!page->findChild<Ovryn_SendNvInfoToLCDThread *>()->isStopped());
}

/// Also a card without an LCD. After the dialog's end no worker calls a card that is gone.
void TestMainDialogLcd::everyCardHasItsWorker()
{
    driver->cards.resize(2);
    driver->card(1).i2cListeners.clear();
    {
        OvrynDeck2 dialog;
        const QList<Ovryn_SendNvInfoToLCDThread *> workers = dialog.findChildren<Ovryn_SendNvInfoToLCDThread *>();
        QCOMPARE(workers.size(), 2);
        driver->forgetCalls();
        QTRY_VERIFY(!driver->frames(kLcdAddress, 0).isEmpty());
        QTRY_VERIFY(!driver->frames(kLcdAddress, 1).isEmpty());
    }
    QCOMPARE(driver->strayCalls(), 0);
}

QTEST_MAIN(TestMainDialogLcd)
#include "TestMainDialogLcd.moc"
