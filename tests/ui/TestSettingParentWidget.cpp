#include "support/ConnectWarnings.h"
#include "ui/Fonts.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "ui/Ovryn_SettingWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

namespace
{

constexpr int kTicksAcross = 16; // 470 pixels at 30 a tick, the last one cut short

} // namespace

/// The panel that slides the settings page in from the right, stepped by hand.
class TestSettingParentWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void startsHiddenAtTheRightEdge();
    void slideIn_data();
    void slideIn();
    void slideOut_data();
    void slideOut();
    void reversal_data();
    void reversal();
    void otherWidths_data();
    void otherWidths();
    void hidingAHiddenPanel();
    void timerRunsTheSlideToItsEnd();
    void storedSettingsAreShown();
    void userChoicesComeOut_data();
    void userChoicesComeOut();
    void slotsHandOn_data();
    void slotsHandOn();
    void languageReachesThePage();
    void sizeAndMask();
    void everyConnectionExists();

private:
    void tick(int times)
    {
        for (int i = 0; i < times; ++i)
            panel->onSettingTimerTimeout();
    }
    /// Without an event loop the timer that this starts never fires: the test alone makes the steps.
    void order(bool show)
    {
        panel->setShowSettingWidget(show);
        QVERIFY(timer->isActive());
        QCOMPARE(panel->isShowing(), show);
    }

    std::unique_ptr<QWidget> window;
    Ovryn_SettingParentWidget *panel = nullptr;
    Ovryn_SettingWidget *page = nullptr;
    QTimer *timer = nullptr;
};

void TestSettingParentWidget::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
}

void TestSettingParentWidget::init()
{
    window = std::make_unique<QWidget>();
    window->resize(600, 500);
    panel = new Ovryn_SettingParentWidget({}, {}, window.get());
    page = panel->findChild<Ovryn_SettingWidget *>();
    timer = panel->findChild<QTimer *>();
    QVERIFY(page);
    QVERIFY(timer);
    window->show();
}

void TestSettingParentWidget::cleanup()
{
    window.reset();
}

void TestSettingParentWidget::startsHiddenAtTheRightEdge()
{
    QVERIFY(!panel->isShowing());
    QVERIFY(panel->isHidden());
    QVERIFY(!page->isVisible());
    QCOMPARE(page->pos(), QPoint(470, 0));
    QVERIFY(!timer->isActive());
    QCOMPARE(timer->interval(), 15);
}

void TestSettingParentWidget::slideIn_data()
{
    QTest::addColumn<int>("ticks");
    QTest::addColumn<int>("x");
    QTest::addColumn<bool>("running");
    QTest::newRow("first step shows the panel") << 1 << 440 << true;
    QTest::newRow("second step") << 2 << 410 << true;
    QTest::newRow("last step but one") << 15 << 20 << true;
    QTest::newRow("the last step clamps to 0") << kTicksAcross << 0 << false;
}

void TestSettingParentWidget::slideIn()
{
    QFETCH(int, ticks);
    order(true);
    QVERIFY(panel->isHidden());
    tick(ticks);
    QVERIFY(panel->isVisible());
    QVERIFY(page->isVisible());
    QTEST(page->x(), "x");
    QCOMPARE(page->y(), 0);
    QTEST(timer->isActive(), "running");
}

void TestSettingParentWidget::slideOut_data()
{
    QTest::addColumn<int>("ticks");
    QTest::addColumn<int>("x");
    QTest::addColumn<bool>("visible");
    QTest::newRow("first step") << 1 << 30 << true;
    QTest::newRow("last step but one") << 15 << 450 << true;
    QTest::newRow("the last step clamps to the width and hides") << kTicksAcross << 470 << false;
}

void TestSettingParentWidget::slideOut()
{
    QFETCH(int, ticks);
    QFETCH(bool, visible);
    order(true);
    tick(kTicksAcross);
    order(false);
    QVERIFY(panel->isVisible());
    tick(ticks);
    QTEST(page->x(), "x");
    QCOMPARE(panel->isVisible(), visible);
    QCOMPARE(timer->isActive(), visible);
}

void TestSettingParentWidget::reversal_data()
{
    QTest::addColumn<int>("ticksIn");
    QTest::addColumn<int>("xAtTurn");
    QTest::addColumn<int>("ticksBack");
    QTest::newRow("after one step") << 1 << 440 << 1;
    QTest::newRow("in the middle") << 5 << 320 << 5;
    QTest::newRow("one step before the end") << 15 << 20 << 15;
}

void TestSettingParentWidget::reversal()
{
    QFETCH(int, ticksIn);
    QFETCH(int, xAtTurn);
    QFETCH(int, ticksBack);
    order(true);
    tick(ticksIn);
    QCOMPARE(page->x(), xAtTurn);
    order(false);
    tick(ticksBack - 1);
    QVERIFY(panel->isVisible());
    tick(1);
    QCOMPARE(page->x(), 470);
    QVERIFY(panel->isHidden());
    QVERIFY(!timer->isActive());

    order(true); // and in again from there
    tick(1);
    QCOMPARE(page->x(), 440);
    QVERIFY(panel->isVisible());
}

void TestSettingParentWidget::otherWidths_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("ticks");
    QTest::newRow("a multiple of 30") << 300 << 10;
    QTest::newRow("one pixel more") << 301 << 11;
    QTest::newRow("one pixel less") << 299 << 10;
    QTest::newRow("less than a step") << 20 << 1;
}

void TestSettingParentWidget::otherWidths()
{
    QFETCH(int, width);
    QFETCH(int, ticks);
    panel->resize(width, 200);
    order(true);
    tick(ticks - 1);
    QVERIFY(timer->isActive());
    tick(1);
    QCOMPARE(page->x(), 0);
    QVERIFY(!timer->isActive());
    order(false);
    tick(ticks);
    QCOMPARE(page->x(), width);
    QVERIFY(panel->isHidden());
    QVERIFY(!timer->isActive());
}

void TestSettingParentWidget::hidingAHiddenPanel()
{
    order(false);
    tick(1);
    QVERIFY(panel->isHidden());
    QVERIFY(!timer->isActive());
    QCOMPARE(page->x(), 470);
}

void TestSettingParentWidget::timerRunsTheSlideToItsEnd()
{
    panel->setShowSettingWidget(true);
    QTRY_COMPARE(page->x(), 0);
    QVERIFY(!timer->isActive());
    panel->setShowSettingWidget(false);
    QTRY_VERIFY(panel->isHidden());
    QCOMPARE(page->x(), 470);
}

void TestSettingParentWidget::storedSettingsAreShown()
{
    GeneralSettingInfo general;
    general.StartOnBoot = false;
    general.MinimizeOnStart = true;
    general.ApplyLastParamOnStart = false;
    general.Language = QStringLiteral("lang_en");
    general.RefreshTimeOfMonitor = 5;
    general.PageEffects = QStringLiteral("advanced");
    UpdateSettingInfo update;
    update.CheckInterval = 90;
    update.UpdateMode = 2;
    update.UpdateStatus = 4;
    Ovryn_SettingParentWidget stored(general, update, nullptr);

    GeneralSettingInfo readGeneral;
    UpdateSettingInfo readUpdate;
    stored.getSettings(readGeneral, readUpdate);
    QCOMPARE(readGeneral.StartOnBoot, false);
    QCOMPARE(readGeneral.MinimizeOnStart, true);
    QCOMPARE(readGeneral.ApplyLastParamOnStart, false);
    QCOMPARE(readGeneral.Language, QStringLiteral("lang_en"));
    QCOMPARE(readGeneral.RefreshTimeOfMonitor, 5);
    QCOMPARE(readGeneral.PageEffects, QStringLiteral("advanced"));
    QCOMPARE(readUpdate.CheckInterval, 90);
    QCOMPARE(readUpdate.UpdateMode, 2);
    QCOMPARE(readUpdate.UpdateStatus, 4);
}

void TestSettingParentWidget::userChoicesComeOut_data()
{
    QTest::addColumn<QByteArray>("signalName");
    QTest::newRow("cmb_language") << QByteArray(SIGNAL(languageChanged()));
    QTest::newRow("cmb_PageEffect") << QByteArray(SIGNAL(pageEffectChanged()));
    QTest::newRow("cmb_RefreshTime") << QByteArray(SIGNAL(refreshTimeChanged()));
    QTest::newRow("btnDetectUpdate") << QByteArray(SIGNAL(detectUpdate()));
}

void TestSettingParentWidget::userChoicesComeOut()
{
    QFETCH(QByteArray, signalName);
    order(true);
    tick(kTicksAcross);
    QSignalSpy spy(panel, signalName.constData());
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    if (auto *box = panel->findChild<QComboBox *>(name))
        QTest::keyClick(box, Qt::Key_Down);
    else
        QTest::mouseClick(panel->findChild<QPushButton *>(name), Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
}

void TestSettingParentWidget::slotsHandOn_data()
{
    QTest::addColumn<QByteArray>("signalName");
    QTest::newRow("onDetectButtonClick") << QByteArray(SIGNAL(detectUpdate()));
    QTest::newRow("_languageChanged") << QByteArray(SIGNAL(languageChanged()));
    QTest::newRow("_pageEffectChanged") << QByteArray(SIGNAL(pageEffectChanged()));
    QTest::newRow("_refreshTimeChanged") << QByteArray(SIGNAL(refreshTimeChanged()));
}

void TestSettingParentWidget::slotsHandOn()
{
    QFETCH(QByteArray, signalName);
    QSignalSpy spy(panel, signalName.constData());
    QVERIFY(QMetaObject::invokeMethod(panel, QTest::currentDataTag()));
    QCOMPARE(spy.count(), 1);
}

void TestSettingParentWidget::languageReachesThePage()
{
    Ovryn_LanguageTable table;
    table.setLanguage(kLanguageEnglish);
    panel->setLanguage(table.setting, kLanguageEnglish);
    QCOMPARE(panel->findChild<QLabel *>("lbl_Setting")->text(), QStringLiteral("Settings"));
}

void TestSettingParentWidget::sizeAndMask()
{
    const QImage background(QStringLiteral(":/images/images/SettingBKImage.png"));
    QCOMPARE(panel->size(), background.size());
    QVERIFY(panel->mask().contains(QPoint(235, 220)));
    QCOMPARE(panel->mask().contains(QPoint(0, 0)), qAlpha(background.pixel(0, 0)) > 0);
    QCOMPARE(panel->mask().contains(QPoint(469, 439)), qAlpha(background.pixel(469, 439)) > 0);
    QVERIFY(!panel->mask().isEmpty());
}

void TestSettingParentWidget::everyConnectionExists()
{
    ConnectWarnings warnings;
    Ovryn_SettingParentWidget another({}, {}, nullptr);
    QCOMPARE(warnings.list(), QStringList());
}

QTEST_MAIN(TestSettingParentWidget)
#include "TestSettingParentWidget.moc"
