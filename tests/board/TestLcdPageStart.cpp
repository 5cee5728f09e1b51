#include "board/LcdPageWorld.h"
#include "support/ConnectWarnings.h"
#include "ui/Fonts.h"

#include <QPainter>

/// The LCD page as it comes up, how it looks and how it goes.
class TestLcdPageStart : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void connectionsAreGood();
    void startsDirty_data();
    void startsDirty();
    void startsWithItsWorker();
    void savedOffSendsOneFrame();
    void savedManualRegistersItsPair();
    void savedSwitchTimeOutsideTheRange_data();
    void savedSwitchTimeOutsideTheRange();
    void savedKeysThatTheFieldsDoNotKnow();
    void withoutACard();
    void closing_data();
    void closing();
    void styleSheetOfThePage();
    void words_data();
    void words();
    void geometry_data();
    void geometry();
    void painting();
    void captionsHaveTheirFonts_data();
    void captionsHaveTheirFonts();
    void fieldsShowWholeNames_data();
    void fieldsShowWholeNames();
    void longNamesShowTheirBeginning();
};

void TestLcdPageStart::initTestCase()
{
    substituteFontFamilies();
}

void TestLcdPageStart::connectionsAreGood()
{
    const ConnectWarnings warnings;
    LcdPageWorld world;
    world.open();
    QCOMPARE(warnings.list(), QStringList());
}

void TestLcdPageStart::startsDirty_data()
{
    QTest::addColumn<bool>("saved");
    QTest::addColumn<LcdModuleInfo>("info");
    QTest::addColumn<QString>("enabled");

    const QString kAutomatic = QStringLiteral("auto manual spin");
    const QString kAll = QStringLiteral("auto manual spin modifier normal");
    QTest::newRow("without saved settings") << false << LcdModuleInfo() << kAutomatic;
    QTest::newRow("the same, saved") << true << LcdModuleInfo() << kAutomatic;
    // Nothing takes a control away while neither radio has been toggled.
    QTest::newRow("manual") << true << LcdModuleInfo{false, 20, 0x12, 'K', true} << kAll;
    QTest::newRow("off") << true << LcdModuleInfo{true, 20, 17, 49, false} << kAutomatic;
    QTest::newRow("off, manual") << true << LcdModuleInfo{false, 20, 17, 49, false} << kAll;
    QTest::newRow("as the controls come from the shelf") << true << LcdModuleInfo{false, 1, 17, '0', false} << kAll;
}

void TestLcdPageStart::startsDirty()
{
    QFETCH(bool, saved);
    QFETCH(LcdModuleInfo, info);
    LcdPageWorld world;
    if (saved)
        world.open(info);
    else
        world.open();
    QVERIFY(world.isDirty());
    QVERIFY(world.shown() == info);
    QVERIFY(world.info() == info);
    QTEST(world.enabledControls(), "enabled");
    QCOMPARE(world.cancelButton()->isEnabled(), true);
    world.cancel();
    QVERIFY(!world.isDirty());
}

void TestLcdPageStart::startsWithItsWorker()
{
    LcdPageWorld world;
    world.open();
    QVERIFY(!world.worker()->isStopped());
    QTRY_VERIFY(world.commands().size() > 2);
    QCOMPARE(world.commands().first(), 0x80);
    QCOMPARE(world.hotKeys.takeCalls(), QStringList());
}

void TestLcdPageStart::savedOffSendsOneFrame()
{
    LcdPageWorld world;
    world.open({true, 10, 17, 49, false});
    QVERIFY(world.worker()->wait(10000));
    QCOMPARE(world.commands(), QList<int>{LcdPageWorld::kOff});
}

void TestLcdPageStart::savedManualRegistersItsPair()
{
    LcdPageWorld world;
    world.open({false, 10, 0x12, 'K', true});
    QCOMPARE(world.registeredKeys(), QStringLiteral("K")); // every modifier registers as Ctrl
    world.close();
    QCOMPARE(world.registeredKeys(), QString());
}

void TestLcdPageStart::savedSwitchTimeOutsideTheRange_data()
{
    QTest::addColumn<quint32>("saved");
    QTest::addColumn<int>("shown");
    QTest::addColumn<int>("told");
    QTest::newRow("0") << 0u << 1 << 1;
    QTest::newRow("1") << 1u << 1 << 1;
    QTest::newRow("30") << 30u << 30 << 30;
    QTest::newRow("31") << 31u << 30 << 30;
    QTest::newRow("a thousand") << 1000u << 30 << 30;
    QTest::newRow("the largest, negative to the box") << 0xFFFFFFFFu << 1 << 30;
}

void TestLcdPageStart::savedSwitchTimeOutsideTheRange()
{
    QFETCH(quint32, saved);
    LcdPageWorld world;
    world.open({true, saved, 17, 49, false}, Ovryn_SendNvInfoToLCDThread::kSleepMs);
    QTEST(world.spin()->value(), "shown");
    QTEST(world.toldSwitchSeconds(), "told");
    QCOMPARE(world.info().SwitchTime, saved); // until something is applied
    QVERIFY(world.apply());
    QTEST(int(world.info().SwitchTime), "shown");
}

void TestLcdPageStart::savedKeysThatTheFieldsDoNotKnow()
{
    LcdPageWorld world;
    world.open({true, 10, 0x99, 0x1B, true});
    QCOMPARE(world.modifierKey()->text(), QStringLiteral("Ctrl"));
    QCOMPARE(world.normalKey()->text(), QStringLiteral("0"));
    QVERIFY(world.info() == LcdModuleInfo({true, 10, 0x99, 0x1B, true}));
}

void TestLcdPageStart::withoutACard()
{
    LcdPageWorld world;
    const Ovryn_LCDControllorWidget page(nullptr);
    auto *worker = page.findChild<Ovryn_SendNvInfoToLCDThread *>();
    QVERIFY(worker->wait(10000));
    QVERIFY(worker->isStopped());
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestLcdPageStart::closing_data()
{
    QTest::addColumn<bool>("enable");
    QTest::newRow("while frames go out") << true;
    QTest::newRow("with the LCD off") << false;
}

void TestLcdPageStart::closing()
{
    QFETCH(bool, enable);
    LcdPageWorld world;
    world.open({false, 10, 17, 49, enable});
    QTRY_VERIFY(!world.commands().isEmpty());
    world.close();
    const int sent = world.commands().size();
    world.control.reset();
    QCOMPARE(world.commands().size(), sent); // nothing tells the controller good-bye
    QCOMPARE(world.driver.strayCalls(), 0);
    QCOMPARE(world.registeredKeys(), QString());
}

void TestLcdPageStart::styleSheetOfThePage()
{
    LcdPageWorld world;
    world.open();
    QCOMPARE(world.page->styleSheet(), QString());
    const int pixels = world.normalKey()->fontInfo().pixelSize();
    world.open(LcdModuleInfo());
    QCOMPARE(world.page->styleSheet(),
             QStringLiteral("Ovryn_HotKeyEdit{font-size:13px;}\t\t\t\t\t\tModifySpinBox{font-size:13px;}"));
    QCOMPARE(pixels, 13); // both look alike
    for (QWidget *field : std::initializer_list<QWidget *>{world.normalKey(), world.modifierKey(), world.spin()})
        QCOMPARE(field->fontInfo().pixelSize(), 13);
}

void TestLcdPageStart::words_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("Chinese") << int(kLanguageChinese) << QStringLiteral("微软雅黑")
                             << QStringList{QStringLiteral("开启/关闭LCD"), QStringLiteral("自动切换"),
                                            QStringLiteral("手动切换"), QStringLiteral("确定"),
                                            QStringLiteral("取消")};
    QTest::newRow("English") << int(kLanguageEnglish) << QStringLiteral("Arial")
                             << QStringList{QStringLiteral("Turn on/off LCD"), QStringLiteral("Switch Automatically"),
                                            QStringLiteral("Switch Manually"), QStringLiteral("Apply"),
                                            QStringLiteral("Cancel")};
}

void TestLcdPageStart::words()
{
    QFETCH(int, language);
    QFETCH(QString, family);
    QFETCH(QStringList, texts);
    LcdPageWorld world;
    world.open();
    const auto shown = [&world] {
        return QStringList{world.lcdSwitch()->toolTip(), world.automatic()->text(), world.manual()->text(),
                           world.confirmButton()->text(), world.cancelButton()->text()};
    };
    if (language == kLanguageChinese)
        QCOMPARE(shown(), texts); // the table that a page starts with
    Ovryn_LanguageTable table;
    table.setLanguage(1 - language);
    world.page->setLanguage(table.lcd, 1 - language);
    const QImage other = world.page->grab().toImage();
    const int spinLeft = world.spin()->x();
    table.setLanguage(language);
    world.page->setLanguage(table.lcd, language);
    QCOMPARE(shown(), texts);
    QVERIFY(world.lcdSwitch()->text().isEmpty());
    QCOMPARE(world.automatic()->font().family(), family);
    QCOMPARE(world.confirmButton()->font().family(), family);
    QVERIFY(world.spin()->x() != spinLeft); // laid out anew behind the other caption
    const LcdPageLayout layout = lcdPageLayoutFor(LcdPageWorld::kPageSize, {});
    for (const QRect &painted :
         {QRect(0, 0, 382, 39), layout.timeCaption.adjusted(0, 0, 60, 0), layout.hotkeyCaption.adjusted(0, 0, 40, 0)})
        QVERIFY(world.page->grab(painted).toImage() != other.copy(painted));
}

void TestLcdPageStart::geometry_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QSize>("size");
    QTest::newRow("Chinese") << int(kLanguageChinese) << LcdPageWorld::kPageSize;
    QTest::newRow("English") << int(kLanguageEnglish) << LcdPageWorld::kPageSize;
    QTest::newRow("another size") << int(kLanguageEnglish) << QSize(511, 617);
}

void TestLcdPageStart::geometry()
{
    QFETCH(int, language);
    QFETCH(QSize, size);
    LcdPageWorld world;
    world.open();
    Ovryn_LanguageTable table;
    table.setLanguage(language);
    world.page->setLanguage(table.lcd, language);
    world.page->resize(size);

    QFont font(language == kLanguageChinese ? QStringLiteral("微软雅黑") : QStringLiteral("Arial"));
    font.setPixelSize(18);
    const QFontMetrics radio(font);
    font.setPixelSize(15);
    const QFontMetrics caption(font);
    const LcdPageLayout layout = lcdPageLayoutFor(
        size, {radio.horizontalAdvance(table.lcd.autoSwitch), radio.horizontalAdvance(table.lcd.manualSwitch),
               caption.horizontalAdvance(table.lcd.time), caption.horizontalAdvance(table.lcd.hotkey)});
    QCOMPARE(world.automatic()->geometry(), layout.autoSwitch);
    QCOMPARE(world.manual()->geometry(), layout.manualSwitch);
    QCOMPARE(world.spin()->geometry(), layout.switchTime);
    QCOMPARE(world.modifierKey()->geometry(), layout.modifierKey);
    QCOMPARE(world.normalKey()->geometry(), layout.normalKey);
    QCOMPARE(world.lcdSwitch()->geometry(), layout.enableLcd);
    QCOMPARE(world.confirmButton()->geometry(), layout.confirm);
    QCOMPARE(world.cancelButton()->geometry(), layout.cancel);
    QCOMPARE(world.automatic()->font().pixelSize(), 18);
    QCOMPARE(world.confirmButton()->font().pixelSize(), layout.buttonPixels);
    QVERIFY(world.automatic()->sizeHint().width() <= layout.autoSwitch.width()); // no text is cut
    QVERIFY(world.manual()->sizeHint().width() <= layout.manualSwitch.width());
}

void TestLcdPageStart::painting()
{
    LcdPageWorld world;
    world.openClean();
    QImage image(LcdPageWorld::kPageSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    world.page->render(&image, QPoint(), QRegion(), QWidget::RenderFlags(QWidget::DrawChildren));
    QCOMPARE(image.pixelColor(5, 380).alpha(), 60);
    QVERIFY(std::abs(image.pixelColor(5, 5).alpha() - 106) <= 1); // 60 over 60
    QCOMPARE(image.pixelColor(380, 392).alpha(), 0);              // the cut corner
    QCOMPARE(image.pixelColor(5, 39).alpha(), 60);                // no rule under the title

    // captions and plus are white, and stand where the layout says
    const auto whitePixels = [&image](const QRect &place) {
        int count = 0;
        for (int y = place.top(); y <= place.bottom(); ++y)
            for (int x = place.left(); x <= place.right(); ++x)
                count += qGreen(image.pixel(x, y)) > 150 && qBlue(image.pixel(x, y)) > 150;
        return count;
    };
    const QRect plus(world.modifierKey()->geometry().right() + 1, world.modifierKey()->y(), 15, 16);
    QVERIFY(whitePixels(plus) > 8);
    const LcdPageLayout layout = lcdPageLayoutFor(LcdPageWorld::kPageSize, {0, 0, 105, 60});
    QVERIFY(whitePixels(layout.timeCaption) > 50);
    QVERIFY(whitePixels(layout.hotkeyCaption) > 30);
    QVERIFY(whitePixels(layout.title.intersected(image.rect())) > 100);

    // the switch shows its state
    const QRect screen(layout.enableLcd.left(), layout.enableLcd.top() + 6, 92, 26);
    const QImage on = image.copy(screen);
    LcdPageWorld::clickLeft(world.lcdSwitch());
    QVERIFY(world.page->grab(screen).toImage() != on);
}

void TestLcdPageStart::fieldsShowWholeNames_data()
{
    QTest::addColumn<quint32>("key");
    QTest::newRow("1") << quint32('1');
    QTest::newRow("Space") << 0x20u;
    QTest::newRow("F12") << 0x7Bu;
    QTest::newRow("Num 9") << 0x69u;
}

void TestLcdPageStart::fieldsShowWholeNames()
{
    QFETCH(quint32, key);
    LcdPageWorld world;
    world.open();
    QVERIFY(world.normalKey()->setKey(key));
    const QFontMetrics metrics(world.normalKey()->font());
    // the toolkit keeps 2 pixels free at both sides of the text, the frame takes 1
    QVERIFY(metrics.horizontalAdvance(world.normalKey()->text()) <= world.normalKey()->width() - 6);
}

void TestLcdPageStart::longNamesShowTheirBeginning()
{
    LcdPageWorld world;
    world.open({false, 10, 17, 0x28, true});
    QCOMPARE(world.normalKey()->text(), QStringLiteral("DownArrow"));
    QCOMPARE(world.normalKey()->cursorPosition(), 0);
    QCOMPARE(world.normalKey()->toolTip(), QStringLiteral("DownArrow"));
    LcdPageWorld::press(world.normalKey(), 0x22);
    QCOMPARE(world.normalKey()->cursorPosition(), 0);
    QCOMPARE(world.normalKey()->toolTip(), QStringLiteral("PageDown"));
}

void TestLcdPageStart::captionsHaveTheirFonts_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("family");
    QTest::newRow("Chinese") << int(kLanguageChinese) << QStringLiteral("微软雅黑");
    QTest::newRow("English") << int(kLanguageEnglish) << QStringLiteral("Arial");
}

void TestLcdPageStart::captionsHaveTheirFonts()
{
    QFETCH(int, language);
    QFETCH(QString, family);
    LcdPageWorld world;
    world.openClean();
    Ovryn_LanguageTable table;
    table.setLanguage(language);
    world.page->setLanguage(table.lcd, language);
    QImage page(LcdPageWorld::kPageSize, QImage::Format_ARGB32_Premultiplied);
    page.fill(Qt::transparent);
    world.page->render(&page, QPoint(), QRegion(), QWidget::RenderFlags()); // without the controls

    QFont font(family);
    font.setPixelSize(15);
    font.setWeight(50);
    const QFontMetrics metrics(font);
    const LcdPageLayout layout =
        lcdPageLayoutFor(LcdPageWorld::kPageSize, {0, 0, metrics.horizontalAdvance(table.lcd.time),
                                                   metrics.horizontalAdvance(table.lcd.hotkey)});
    const auto glassWith = [](const QRect &place, const QFont &captionFont, int flags, const QString &text) {
        QImage image(LcdPageWorld::kPageSize, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.fillRect(image.rect(), QColor(252, 10, 53, 60));
        painter.setFont(captionFont);
        painter.setPen(Qt::white);
        painter.drawText(place, flags, text);
        return image.copy(place);
    };
    constexpr int kCaption = Qt::AlignLeft | Qt::AlignVCenter;
    QFont heavier = font;
    heavier.setWeight(63);
    QFont plusFont = font;
    plusFont.setFamily(QStringLiteral("Arial"));
    QCOMPARE(page.copy(layout.timeCaption), glassWith(layout.timeCaption, font, kCaption, table.lcd.time));
    if (language == kLanguageEnglish) // the Chinese font has one face for both
        QVERIFY(page.copy(layout.timeCaption) != glassWith(layout.timeCaption, heavier, kCaption, table.lcd.time));
    QCOMPARE(page.copy(layout.hotkeyCaption), glassWith(layout.hotkeyCaption, font, kCaption, table.lcd.hotkey));
    QCOMPARE(page.copy(layout.plus), glassWith(layout.plus, plusFont, Qt::AlignCenter, QStringLiteral("+")));
}

QTEST_MAIN(TestLcdPageStart)
#include "TestLcdPageStart.moc"
