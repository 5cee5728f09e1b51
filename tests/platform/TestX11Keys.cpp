#include "platform/NativeKeyCode.h"
#include "platform/X11Keys.h"

#include <QKeyEvent>
#include <QtTest>

/// The keysyms of a keyboard as virtual-key codes. The keysyms are written as numbers: the table itself uses the
/// names.
class TestX11Keys : public QObject
{
    Q_OBJECT

private slots:
    void translates_data();
    void translates();
    void everyVirtualKeyHasItsPlainKeysym_data();
    void everyVirtualKeyHasItsPlainKeysym();
    void everyOtherCodeHasNoKeysym();
    void thereAndBack();
};

void TestX11Keys::translates_data()
{
    QTest::addColumn<quint32>("keysym");
    QTest::addColumn<quint32>("virtualKey");

    QTest::newRow("Break") << 0xFF6BU << 0x03U;
    QTest::newRow("Backspace") << 0xFF08U << 0x08U;
    QTest::newRow("Tab") << 0xFF09U << 0x09U;
    QTest::newRow("Shift and Tab") << 0xFE20U << 0x09U;
    QTest::newRow("Clear") << 0xFF0BU << 0x0CU;
    QTest::newRow("Return") << 0xFF0DU << 0x0DU;
    QTest::newRow("left Shift") << 0xFFE1U << 0x10U;
    QTest::newRow("right Shift") << 0xFFE2U << 0x10U;
    QTest::newRow("left Ctrl") << 0xFFE3U << 0x11U;
    QTest::newRow("right Ctrl") << 0xFFE4U << 0x11U;
    QTest::newRow("left Alt") << 0xFFE9U << 0x12U;
    QTest::newRow("right Alt") << 0xFFEAU << 0x12U;
    QTest::newRow("left Alt with Shift") << 0xFFE7U << 0x12U;
    QTest::newRow("right Alt with Shift") << 0xFFE8U << 0x12U;
    QTest::newRow("right Alt of a third level") << 0xFE03U << 0x12U;
    QTest::newRow("Pause") << 0xFF13U << 0x13U;
    QTest::newRow("Caps Lock") << 0xFFE5U << 0x14U;
    QTest::newRow("Escape") << 0xFF1BU << 0x1BU;
    QTest::newRow("Space") << 0x20U << 0x20U;
    QTest::newRow("Page Up") << 0xFF55U << 0x21U;
    QTest::newRow("Page Down") << 0xFF56U << 0x22U;
    QTest::newRow("End") << 0xFF57U << 0x23U;
    QTest::newRow("Home") << 0xFF50U << 0x24U;
    QTest::newRow("left arrow") << 0xFF51U << 0x25U;
    QTest::newRow("up arrow") << 0xFF52U << 0x26U;
    QTest::newRow("right arrow") << 0xFF53U << 0x27U;
    QTest::newRow("down arrow") << 0xFF54U << 0x28U;
    QTest::newRow("Select") << 0xFF60U << 0x29U;
    QTest::newRow("Execute") << 0xFF62U << 0x2BU;
    QTest::newRow("Print") << 0xFF61U << 0x2CU;
    QTest::newRow("Alt and Print") << 0xFF15U << 0x2CU;
    QTest::newRow("Insert") << 0xFF63U << 0x2DU;
    QTest::newRow("Delete") << 0xFFFFU << 0x2EU;
    QTest::newRow("Help") << 0xFF6AU << 0x2FU;
    for (quint32 i = 0; i < 10; ++i)
        QTest::addRow("digit %u", i) << 0x30U + i << 0x30U + i;
    const char shiftedDigits[] = ")!@#$%^&*(";
    for (quint32 i = 0; i < 10; ++i)
        QTest::addRow("Shift and digit %u", i) << quint32(shiftedDigits[i]) << 0x30U + i;
    for (quint32 i = 0; i < 26; ++i) {
        QTest::addRow("small letter %c", char('a' + i)) << 'a' + i << 0x41U + i;
        QTest::addRow("capital letter %c", char('A' + i)) << 'A' + i << 0x41U + i;
    }
    QTest::newRow("left Super") << 0xFFEBU << 0x5BU;
    QTest::newRow("right Super") << 0xFFECU << 0x5CU;
    QTest::newRow("Menu") << 0xFF67U << 0x5DU;
    for (quint32 i = 0; i < 10; ++i)
        QTest::addRow("keypad %u", i) << 0xFFB0U + i << 0x60U + i;
    QTest::newRow("keypad *") << 0xFFAAU << 0x6AU;
    QTest::newRow("keypad +") << 0xFFABU << 0x6BU;
    QTest::newRow("keypad -") << 0xFFADU << 0x6DU;
    QTest::newRow("keypad point") << 0xFFAEU << 0x6EU;
    QTest::newRow("keypad comma") << 0xFFACU << 0x6EU;
    QTest::newRow("keypad /") << 0xFFAFU << 0x6FU;
    QTest::newRow("keypad Enter") << 0xFF8DU << 0x0DU;
    QTest::newRow("keypad Home") << 0xFF95U << 0x24U;
    QTest::newRow("keypad left") << 0xFF96U << 0x25U;
    QTest::newRow("keypad up") << 0xFF97U << 0x26U;
    QTest::newRow("keypad right") << 0xFF98U << 0x27U;
    QTest::newRow("keypad down") << 0xFF99U << 0x28U;
    QTest::newRow("keypad Page Up") << 0xFF9AU << 0x21U;
    QTest::newRow("keypad Page Down") << 0xFF9BU << 0x22U;
    QTest::newRow("keypad End") << 0xFF9CU << 0x23U;
    QTest::newRow("keypad 5 without Num Lock") << 0xFF9DU << 0x0CU;
    QTest::newRow("keypad Insert") << 0xFF9EU << 0x2DU;
    QTest::newRow("keypad Delete") << 0xFF9FU << 0x2EU;
    for (quint32 i = 0; i < 24; ++i)
        QTest::addRow("F%u", i + 1) << 0xFFBEU + i << 0x70U + i;
    QTest::newRow("Num Lock") << 0xFF7FU << 0x90U;
    QTest::newRow("Scroll Lock") << 0xFF14U << 0x91U;
    const struct
    {
        char plain;
        char shifted;
        quint32 virtualKey;
    } punctuation[] = {{';', ':', 0xBA},  {'=', '+', 0xBB}, {',', '<', 0xBC}, {'-', '_', 0xBD},
                       {'.', '>', 0xBE},  {'/', '?', 0xBF}, {'`', '~', 0xC0}, {'[', '{', 0xDB},
                       {'\\', '|', 0xDC}, {']', '}', 0xDD}, {'\'', '"', 0xDE}};
    for (const auto &key : punctuation) {
        QTest::addRow("punctuation %c", key.plain) << quint32(key.plain) << key.virtualKey;
        QTest::addRow("punctuation %c", key.shifted) << quint32(key.shifted) << key.virtualKey;
    }

    QTest::newRow("nothing") << 0U << 0U;
    QTest::newRow("letter of another alphabet") << 0x6C1U << 0U;
    QTest::newRow("letter with an accent") << 0xE9U << 0U;
    QTest::newRow("dead accent") << 0xFE51U << 0U;
    QTest::newRow("after F24") << 0xFFD6U << 0U;
    QTest::newRow("before the keypad's digits") << 0xFFA9U << 0U;
    QTest::newRow("after the keypad's digits") << 0xFFBAU << 0U;
    QTest::newRow("a character beyond the tables") << 0x01002022U << 0U;
    QTest::newRow("a key for loudness") << 0x1008FF11U << 0U;
    QTest::newRow("all bits") << 0xFFFFFFFFU << 0U;
}

void TestX11Keys::translates()
{
    QFETCH(quint32, keysym);
    QTEST(virtualKeyForKeysym(keysym), "virtualKey");
    const QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, 10, keysym, 0);
    QTEST(virtualKeyOf(event), "virtualKey");
}

void TestX11Keys::everyVirtualKeyHasItsPlainKeysym_data()
{
    QTest::addColumn<quint32>("virtualKey");
    QTest::addColumn<quint32>("keysym");

    QTest::newRow("Tab, not that with Shift") << 0x09U << 0xFF09U;
    QTest::newRow("Clear, not the keypad's") << 0x0CU << 0xFF0BU;
    QTest::newRow("Return, not the keypad's") << 0x0DU << 0xFF0DU;
    QTest::newRow("left Shift") << 0x10U << 0xFFE1U;
    QTest::newRow("left Ctrl") << 0x11U << 0xFFE3U;
    QTest::newRow("left Alt") << 0x12U << 0xFFE9U;
    QTest::newRow("Page Up, not the keypad's") << 0x21U << 0xFF55U;
    QTest::newRow("Home, not the keypad's") << 0x24U << 0xFF50U;
    QTest::newRow("down arrow, not the keypad's") << 0x28U << 0xFF54U;
    QTest::newRow("Print") << 0x2CU << 0xFF61U;
    QTest::newRow("Delete, not the keypad's") << 0x2EU << 0xFFFFU;
    QTest::newRow("1, not its exclamation mark") << 0x31U << 0x31U;
    QTest::newRow("9") << 0x39U << 0x39U;
    QTest::newRow("small letter") << 0x4BU << quint32('k');
    QTest::newRow("keypad 0") << 0x60U << 0xFFB0U;
    QTest::newRow("keypad point, not the comma") << 0x6EU << 0xFFAEU;
    QTest::newRow("F24") << 0x87U << 0xFFD5U;
    QTest::newRow("semicolon, not the colon") << 0xBAU << quint32(';');
    QTest::newRow("apostrophe") << 0xDEU << quint32('\'');
}

void TestX11Keys::everyVirtualKeyHasItsPlainKeysym()
{
    QFETCH(quint32, virtualKey);
    QTEST(keysymForVirtualKey(virtualKey), "keysym");
    QTEST(nativeKeyFor(virtualKey), "keysym");
}

void TestX11Keys::everyOtherCodeHasNoKeysym()
{
    for (const quint32 code : {0U,    1U,    0x07U, 0x0AU, 0x15U, 0x1CU, 0x2AU, 0x3AU, 0x40U,  0x5EU,
                               0x6CU, 0x88U, 0x92U, 0xB9U, 0xC1U, 0xDAU, 0xDFU, 0xFFU, 0x100U, 0xFFFFFFFFU})
        QVERIFY2(keysymForVirtualKey(code) == 0, qPrintable(QString::number(code, 16)));
}

void TestX11Keys::thereAndBack()
{
    int keys = 0;
    for (quint32 code = 1; code <= 0xFF; ++code) {
        const quint32 keysym = keysymForVirtualKey(code);
        if (keysym == 0)
            continue;
        QCOMPARE(virtualKeyForKeysym(keysym), code);
        ++keys;
    }
    QCOMPARE(keys, 117);
}

QTEST_APPLESS_MAIN(TestX11Keys)
#include "TestX11Keys.moc"
