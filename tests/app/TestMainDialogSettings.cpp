#include "app/MainDialogTest.h"
#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"
#include "support/ModalAnswer.h"
#include "ui/Ovryn_MessageBox.h"
#include "ui/Ovryn_SettingParentWidget.h"

#include <QAbstractEventDispatcher>
#include <QComboBox>
#include <QResizeEvent>
#include <QStackedWidget>

/// The main dialog's settings panel and what its choices do at once; the slide of the gauge; the boxes' windows.
class TestMainDialogSettings : public MainDialogTest
{
    Q_OBJECT

private slots:
    void effectsFollowTheSetting_data();
    void effectsFollowTheSetting();
    void storedEffects();
    void settingsButtonOpensAndCloses();
    void pageButtonAndTheOpenPanel_data();
    void pageButtonAndTheOpenPanel();
    void pageButtonLeavesAClosedPanel_data();
    void pageButtonLeavesAClosedPanel();
    void gaugeSlidesEvery15Milliseconds();
    void boxesHaveTheirWindowFlags();
};

namespace
{

QByteArray configWithEffects(const char *effects)
{
    return QByteArray("<OvrynParameter><GeneralSetting PageEffects=\"") + effects +
           "\"/><OtherSetting NotPromptHPS=\"1\"/></OvrynParameter>";
}

/// The gauge and its animation, of a dialog that isn't shown: only the test asks for frames.
struct Gauge
{
    explicit Gauge(Ovryn_GpuInfoCircleBox *gauge)
        : box(gauge), renderer(box->findChild<CreateBreathCircleAndWaveCircleThread *>())
    {
        box->resize(400, 400);                      // the ring lies 80 to 120 pixels around (200, 200)
        QResizeEvent resized(box->size(), QSize()); // comes by itself to what is shown only
        QCoreApplication::sendEvent(box, &resized);
    }

    [[nodiscard]] bool glows() const { return qAlpha(renderer->renderFrame().pixel(200, 77)) > 0; }

    [[nodiscard]] bool hasWater() const
    {
        renderer->setWaveLevel(0.5); // no sample comes between: the test's own thread takes them
        return qAlpha(renderer->renderFrame().pixel(200, 272)) > 100;
    }

    Ovryn_GpuInfoCircleBox *box;
    CreateBreathCircleAndWaveCircleThread *renderer;
};

void chooseEffects(const OvrynDeck2 &dialog, const char *effects)
{
    auto *list = dialog.findChild<QComboBox *>(QStringLiteral("cmb_PageEffect"));
    list->setCurrentIndex(list->findData(QString::fromLatin1(effects)));
}

} // namespace

void TestMainDialogSettings::effectsFollowTheSetting_data()
{
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<bool>("glows");
    QTest::newRow("card of the maker with a variant") << 0x111D7377u << true;
    QTest::newRow("card of the maker without one") << 0x11107377u << false;
    QTest::newRow("foreign card") << 0x85AA1043u << false;
}

void TestMainDialogSettings::effectsFollowTheSetting()
{
    QFETCH(quint32, subSystemId);
    QFETCH(bool, glows);
    driver->card().subSystemId = subSystemId;
    driver->cards.resize(2, driver->card()); // every card's gauge, not only the one shown
    writeConfig(configWithEffects("normal"));
    const OvrynDeck2 dialog(nullptr, kQuickPages);
    const QList<Ovryn_GpuInfoCircleBox *> boxes = dialog.findChildren<Ovryn_GpuInfoCircleBox *>();
    QCOMPARE(boxes.size(), 2);
    for (Ovryn_GpuInfoCircleBox *box : boxes)
        box->btnMemory_MouseClick(); // the readout with the water
    const auto everyGauge = [&boxes](bool glow, bool water) {
        for (Ovryn_GpuInfoCircleBox *box : boxes) {
            const Gauge gauge(box);
            QCOMPARE(gauge.glows(), glow);
            QCOMPARE(gauge.hasWater(), water);
        }
    };
    everyGauge(false, false);
    chooseEffects(dialog, "advanced");
    everyGauge(glows, true);
    chooseEffects(dialog, "normal");
    everyGauge(false, false);
}

void TestMainDialogSettings::storedEffects()
{
    writeConfig(configWithEffects("advanced"));
    const OvrynDeck2 dialog(nullptr, kQuickPages);
    const Gauge gauge(dialog.findChild<Ovryn_GpuInfoCircleBox *>());
    QVERIFY(gauge.glows());
    QVERIFY(!gauge.hasWater()); // the memory readout alone has it
    gauge.box->btnMemory_MouseClick();
    QVERIFY(gauge.hasWater());
}

void TestMainDialogSettings::settingsButtonOpensAndCloses()
{
    OvrynDeck2 dialog(nullptr, kCalmPages);
    dialog.show();
    const auto *panel = dialog.findChild<Ovryn_SettingParentWidget *>();
    QPushButton *settings = button(dialog, "btnSetting");
    for (int round = 0; round < 2; ++round) {
        QTest::mouseClick(settings, Qt::LeftButton);
        QVERIFY(panel->isShowing());
        QTRY_VERIFY(panel->isVisible());
        QTest::mouseClick(settings, Qt::LeftButton);
        QVERIFY(!panel->isShowing());
        QTRY_VERIFY(!panel->isVisible());
    }
}

void TestMainDialogSettings::pageButtonAndTheOpenPanel_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("staysOpen");
    QTest::newRow("LED closes it") << QByteArray("btnFirstSlot") << false;
    QTest::newRow("LCD closes it") << QByteArray("btnSecondSlot") << false;
    QTest::newRow("monitor leaves it") << QByteArray("btnMonitor") << true;
    QTest::newRow("card information leaves it") << QByteArray("btnGpuFixedInfo") << true;
}

void TestMainDialogSettings::pageButtonAndTheOpenPanel()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, staysOpen);
    OvrynDeck2 dialog(nullptr, kCalmPages);
    dialog.show();
    const auto *panel = dialog.findChild<Ovryn_SettingParentWidget *>();
    button(dialog, "btnSetting")->click();
    QVERIFY(panel->isShowing());
    QTRY_VERIFY(panel->isVisible());
    button(dialog, name.constData())->click();
    QCOMPARE(panel->isShowing(), staysOpen);
    if (!staysOpen)
        QTRY_VERIFY(!panel->isVisible());
}

void TestMainDialogSettings::pageButtonLeavesAClosedPanel_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("LED") << QByteArray("btnFirstSlot");
    QTest::newRow("LCD") << QByteArray("btnSecondSlot");
}

void TestMainDialogSettings::pageButtonLeavesAClosedPanel()
{
    QFETCH(QByteArray, name);
    OvrynDeck2 dialog(nullptr, kQuickPages);
    button(dialog, name.constData())->click();
    QVERIFY(!dialog.findChild<Ovryn_SettingParentWidget *>()->isShowing());
}

namespace
{

/// Finds out which timer it is that moves a widget, and its interval.
class TimerOfMoves : public QObject
{
public:
    explicit TimerOfMoves(QWidget *moved) : watched(moved) { qApp->installEventFilter(this); }

    int intervalMs = 0; ///< 0 until a timer has moved the widget

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        if (event->type() == QEvent::Timer) {
            lastTimer = receiver;
        } else if (event->type() == QEvent::Move && receiver == watched && lastTimer) {
            for (const auto &timer : QAbstractEventDispatcher::instance()->registeredTimers(lastTimer))
                intervalMs = timer.interval;
        } else if (event->type() == QEvent::MetaCall) {
            lastTimer = nullptr;
        }
        return false;
    }

private:
    QObject *watched;
    QPointer<QObject> lastTimer; ///< the one whose turn it is
};

} // namespace

void TestMainDialogSettings::gaugeSlidesEvery15Milliseconds()
{
    OvrynDeck2 dialog(nullptr, kCalmPages);
    dialog.show();
    const TimerOfMoves moves(dialog.findChild<QStackedWidget *>(QStringLiteral("circleStack")));
    button(dialog, "btnMonitor")->click();
    QTRY_VERIFY(moves.intervalMs != 0);
    QCOMPARE(moves.intervalMs, 15);
}

namespace
{

/// The window flags of each box that comes up.
class BoxFlags : public QObject
{
public:
    BoxFlags() { qApp->installEventFilter(this); }

    QList<Qt::WindowFlags::Int> seen;

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        if (event->type() == QEvent::Show) {
            if (const auto *box = qobject_cast<Ovryn_MessageBox *>(receiver))
                seen << Qt::WindowFlags::Int(box->windowFlags());
        }
        return false;
    }
};

} // namespace

void TestMainDialogSettings::boxesHaveTheirWindowFlags()
{
    OvrynDeck2 dialog(nullptr, kQuickPages);
    dialog.show();
    const BoxFlags flags;
    const ModalAnswer answer(
        {QStringLiteral("msgBoxYesBtn"), QStringLiteral("msgBoxNoBtn"), QStringLiteral("msgBoxNoBtn")});
    dialog.afterShow();                   // the high-performance mode
    button(dialog, "btnAdjust")->click(); // the warning
    dialog.onBtnCloseClick();             // the end
    QCOMPARE(answer.problems(), QStringList());
    // The callers' 0x2001000, a frameless window, and a dialog.
    constexpr Qt::WindowFlags::Int kExpected = 0x2001000 | 0x800 | 0x3;
    QCOMPARE(flags.seen, QList<Qt::WindowFlags::Int>({kExpected, kExpected, kExpected}));
}

QTEST_MAIN(TestMainDialogSettings)
#include "TestMainDialogSettings.moc"
