#include "board/lcd/HotKeyCodes.h"

#include <QMap>
#include <QtTest>

/// The translation of Qt's codes, whole.
class TestHotKeyCodes : public QObject
{
    Q_OBJECT

private slots:
    void keys_data();
    void keys();
    void keysNotListedHaveNone();
    void modifiers_data();
    void modifiers();

private:
    static QMap<quint32, quint32> listedKeys();
};

QMap<quint32, quint32> TestHotKeyCodes::listedKeys()
{
    QMap<quint32, quint32> keys = {
        {0x20, 0x20},
        {0x2A, 0x6A},
        {0x2B, 0x6B},
        {0x2C, 0x6C},
        {0x2D, 0x6D},
        {0x2F, 0x6F},
        {Qt::Key_Escape, 0x1B},
        {Qt::Key_Tab, 0x09},
        {Qt::Key_Backtab, 0x09},
        {Qt::Key_Backspace, 0x08},
        {Qt::Key_Return, 0x0D},
        {Qt::Key_Enter, 0x0D},
        {Qt::Key_Insert, 0x2D},
        {Qt::Key_Delete, 0x2E},
        {Qt::Key_Pause, 0x13},
        {Qt::Key_Print, 0x2A},
        {Qt::Key_Clear, 0x0C},
        {Qt::Key_Home, 0x24},
        {Qt::Key_End, 0x23},
        {Qt::Key_Left, 0x25},
        {Qt::Key_Up, 0x26},
        {Qt::Key_Right, 0x27},
        {Qt::Key_Down, 0x28},
        {Qt::Key_PageUp, 0x21},
        {Qt::Key_PageDown, 0x22},
    };
    for (quint32 digit = 0x30; digit <= 0x39; ++digit)
        keys.insert(digit, digit);
    for (quint32 letter = 0x41; letter <= 0x5A; ++letter)
        keys.insert(letter, letter);
    for (quint32 i = 0; i < 24; ++i)
        keys.insert(Qt::Key_F1 + i, 0x70 + i);
    return keys;
}

void TestHotKeyCodes::keys_data()
{
    QTest::addColumn<quint32>("qtKey");
    QTest::addColumn<quint32>("virtualKey");
    const QMap<quint32, quint32> listed = listedKeys();
    for (auto key = listed.cbegin(); key != listed.cend(); ++key)
        QTest::addRow("%s", QMetaEnum::fromType<Qt::Key>().valueToKey(int(key.key()))) << key.key() << key.value();
}

void TestHotKeyCodes::keys()
{
    QFETCH(quint32, qtKey);
    QTEST(virtualKeyOfQtKey(qtKey), "virtualKey");
}

void TestHotKeyCodes::keysNotListedHaveNone()
{
    const QMap<quint32, quint32> listed = listedKeys();
    const auto check = [&](quint32 first, quint32 last) {
        for (quint32 code = first; code <= last; ++code) {
            if (!listed.contains(code) && virtualKeyOfQtKey(code) != 0)
                return false;
        }
        return true;
    };
    QVERIFY(check(0, 0x11FFFF));            // what writes a character
    QVERIFY(check(0x01000000, 0x0110FFFF)); // what doesn't
    QVERIFY(check(0xE1FFFF00, 0xE1FFFFFE));
    QCOMPARE(virtualKeyOfQtKey(0xFFFFFFFF), 0U);
    QCOMPARE(virtualKeyOfQtKey(Qt::Key_Period), 0U); // between two listed neighbours
    QCOMPARE(virtualKeyOfQtKey(Qt::Key_F25), 0U);
    QCOMPARE(virtualKeyOfQtKey(Qt::Key_SysReq), 0U); // between Print and Clear
}

void TestHotKeyCodes::modifiers_data()
{
    QTest::addColumn<quint32>("qtModifiers");
    QTest::addColumn<quint32>("flags");

    QTest::newRow("none") << 0U << 0U;
    QTest::newRow("Shift") << 0x02000000U << 4U;
    QTest::newRow("Ctrl") << 0x04000000U << 2U;
    QTest::newRow("Alt") << 0x08000000U << 1U;
    QTest::newRow("Meta") << 0x10000000U << 8U;
    QTest::newRow("Shift and Ctrl") << 0x06000000U << 6U;
    QTest::newRow("Shift and Alt") << 0x0A000000U << 5U;
    QTest::newRow("Ctrl and Alt") << 0x0C000000U << 3U;
    QTest::newRow("Shift and Meta") << 0x12000000U << 12U;
    QTest::newRow("Ctrl and Meta") << 0x14000000U << 10U;
    QTest::newRow("Alt and Meta") << 0x18000000U << 9U;
    QTest::newRow("all") << 0x1E000000U << 15U;
    QTest::newRow("keypad and group bits tell nothing") << 0x61FFFFFFU << 0U;
}

void TestHotKeyCodes::modifiers()
{
    QFETCH(quint32, qtModifiers);
    QTEST(hotKeyModifiersOf(qtModifiers), "flags");
}

QTEST_APPLESS_MAIN(TestHotKeyCodes)
#include "TestHotKeyCodes.moc"
