#include "board/lcd/Ovryn_HotKeyEdit.h"
#include "platform/NativeKeyCode.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMap>
#include <QSignalSpy>
#include <QtTest>

/// The field in which a key of the hot key is chosen.
class TestHotKeyEdit : public QObject
{
    Q_OBJECT

private slots:
    void starts_data();
    void starts();
    void takesNoTextInput();
    void shows_data();
    void shows();
    void everyOtherCodeIsRefused_data();
    void everyOtherCodeIsRefused();
    void pressTakesTheKey_data();
    void pressTakesTheKey();
    void pressIsIgnored_data();
    void pressIsIgnored();
    void sameKeyIsNoChange();
    void changeIsToldBeforeTheCode();
    void editingKeysEditNothing_data();
    void editingKeysEditNothing();
    void middleButtonKeepsTheText();
    void styleSheetFindsIt();

private:
    static QMap<quint32, QString> normalKeys();
    static QMap<quint32, QString> modifierKeys();
    static void press(Ovryn_HotKeyEdit &edit, quint32 nativeKey, int qtKey = Qt::Key_unknown,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString &text = {});
};

QMap<quint32, QString> TestHotKeyEdit::modifierKeys()
{
    return {{0x10, "Shift"}, {0x11, "Ctrl"}, {0x12, "Alt"}};
}

QMap<quint32, QString> TestHotKeyEdit::normalKeys()
{
    QMap<quint32, QString> keys = {
        {0x20, "Space"},      {0x21, "PageUp"},    {0x22, "PageDown"}, {0x25, "LeftArrow"}, {0x26, "UpArrow"},
        {0x27, "RightArrow"}, {0x28, "DownArrow"}, {0x6A, "Num *"},    {0x6B, "Num + "},    {0x6D, "Num - "},
        {0x6E, "Num ."},      {0x6F, "Num / "},    {0xBA, "; : "},     {0xBB, " = +"},      {0xBD, " - _"},
        {0xBF, " / ? "},      {0xC0, "`~"},        {0xDB, "[{"},       {0xDC, "\\ | "},     {0xDD, "] } "},
        {0xDE, "'\""},
    };
    for (quint32 i = 0; i < 10; ++i) {
        keys.insert(0x30 + i, QString::number(i));
        keys.insert(0x60 + i, QStringLiteral("Num %1").arg(i));
    }
    for (quint32 code = 0x41; code <= 0x5A; ++code)
        keys.insert(code, code == 0x49 ? QStringLiteral("l") : QString(QChar(code)));
    for (quint32 i = 0; i < 12; ++i)
        keys.insert(0x70 + i, QStringLiteral("F%1").arg(i + 1));
    return keys;
}

void TestHotKeyEdit::press(Ovryn_HotKeyEdit &edit, quint32 nativeKey, int qtKey, Qt::KeyboardModifiers modifiers,
                           const QString &text)
{
    QKeyEvent event(QEvent::KeyPress, qtKey, modifiers, 0, nativeKey, 0, text);
    QApplication::sendEvent(&edit, &event);
}

void TestHotKeyEdit::starts_data()
{
    QTest::addColumn<bool>("modifierMode");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("modifier") << true << 0x11U << "Ctrl";
    QTest::newRow("ordinary key") << false << 0x30U << "0";
}

void TestHotKeyEdit::starts()
{
    QFETCH(bool, modifierMode);
    const Ovryn_HotKeyEdit edit(modifierMode);
    QTEST(edit.key(), "code");
    QTEST(edit.text(), "text");
}

void TestHotKeyEdit::takesNoTextInput()
{
    const Ovryn_HotKeyEdit edit(false);
    QVERIFY(!edit.testAttribute(Qt::WA_InputMethodEnabled));
    QCOMPARE(edit.contextMenuPolicy(), Qt::NoContextMenu);
    QVERIFY(!edit.acceptDrops());
}

void TestHotKeyEdit::shows_data()
{
    QTest::addColumn<bool>("modifierMode");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QString>("text");

    QCOMPARE(normalKeys().size(), 79);
    const auto addRows = [](bool modifierMode, const QMap<quint32, QString> &keys) {
        for (auto key = keys.cbegin(); key != keys.cend(); ++key)
            QTest::addRow("0x%02X \"%s\"", key.key(), qPrintable(key.value()))
                << modifierMode << key.key() << key.value();
    };
    addRows(true, modifierKeys());
    addRows(false, normalKeys());
}

void TestHotKeyEdit::shows()
{
    QFETCH(bool, modifierMode);
    QFETCH(quint32, code);
    Ovryn_HotKeyEdit edit(modifierMode);
    QVERIFY(edit.setKey(code));
    QCOMPARE(edit.key(), code);
    QTEST(edit.text(), "text");
}

void TestHotKeyEdit::everyOtherCodeIsRefused_data()
{
    QTest::addColumn<bool>("modifierMode");
    QTest::newRow("modifier") << true;
    QTest::newRow("ordinary key") << false;
}

void TestHotKeyEdit::everyOtherCodeIsRefused()
{
    QFETCH(bool, modifierMode);
    Ovryn_HotKeyEdit edit(modifierMode);
    QVERIFY(edit.setKey(modifierMode ? 0x12 : 0x4B));
    const quint32 code = edit.key();
    const QString text = edit.text();
    const QSignalSpy changed(&edit, SIGNAL(textChanged(QString)));
    const QMap<quint32, QString> keys = modifierMode ? modifierKeys() : normalKeys();
    for (quint32 other = 0; other <= 0x10000; ++other) {
        if (!keys.contains(other))
            QVERIFY2(!edit.setKey(other), qPrintable(QString::number(other, 16)));
    }
    QVERIFY(!edit.setKey(0xFFFFFFFF));
    QCOMPARE(edit.key(), code);
    QCOMPARE(edit.text(), text);
    QCOMPARE(changed.size(), 0);
}

void TestHotKeyEdit::pressTakesTheKey_data()
{
    shows_data();
}

void TestHotKeyEdit::pressTakesTheKey()
{
    QFETCH(bool, modifierMode);
    QFETCH(quint32, code);
    Ovryn_HotKeyEdit edit(modifierMode);
    press(edit, nativeKeyFor(code), Qt::Key_unknown, Qt::NoModifier, QStringLiteral("typed"));
    QCOMPARE(edit.key(), code);
    QTEST(edit.text(), "text");
}

void TestHotKeyEdit::pressIsIgnored_data()
{
    QTest::addColumn<bool>("modifierMode");
    QTest::addColumn<quint32>("nativeKey");
    QTest::addColumn<int>("qtKey");
    QTest::addColumn<QString>("text");

    QTest::newRow("Escape") << false << nativeKeyFor(0x1B) << int(Qt::Key_Escape) << QStringLiteral("\x1B");
    QTest::newRow("Return") << false << nativeKeyFor(0x0D) << int(Qt::Key_Return) << QStringLiteral("\r");
    QTest::newRow("Delete") << false << nativeKeyFor(0x2E) << int(Qt::Key_Delete) << QString();
    QTest::newRow("Backspace") << false << nativeKeyFor(0x08) << int(Qt::Key_Backspace) << QStringLiteral("\b");
    QTest::newRow("End") << false << nativeKeyFor(0x23) << int(Qt::Key_End) << QString();
    QTest::newRow("F13") << false << nativeKeyFor(0x7C) << int(Qt::Key_F13) << QString();
    QTest::newRow("comma") << false << nativeKeyFor(0xBC) << int(Qt::Key_Comma) << QStringLiteral(",");
    QTest::newRow("full stop") << false << nativeKeyFor(0xBE) << int(Qt::Key_Period) << QStringLiteral(".");
    QTest::newRow("left Super") << false << nativeKeyFor(0x5B) << int(Qt::Key_Super_L) << QString();
    // a keysym on the one system, and no key at all on the other
    QTest::newRow("key of another layout") << false << 0x6C1U << 0x410 << QString(QChar(0x430));
    QTest::newRow("key without a code") << false << 0U << int(Qt::Key_B) << QStringLiteral("b");
    QTest::newRow("modifier in an ordinary field") << false << nativeKeyFor(0x10) << int(Qt::Key_Shift) << QString();
    QTest::newRow("ordinary key in a modifier field")
        << true << nativeKeyFor(0x4B) << int(Qt::Key_K) << QStringLiteral("k");
    QTest::newRow("Super in a modifier field") << true << nativeKeyFor(0x5B) << int(Qt::Key_Super_L) << QString();
    QTest::newRow("Escape in a modifier field")
        << true << nativeKeyFor(0x1B) << int(Qt::Key_Escape) << QStringLiteral("\x1B");
}

void TestHotKeyEdit::pressIsIgnored()
{
    QFETCH(bool, modifierMode);
    QFETCH(quint32, nativeKey);
    QFETCH(int, qtKey);
    QFETCH(QString, text);
    Ovryn_HotKeyEdit edit(modifierMode);
    const quint32 code = edit.key();
    const QString shown = edit.text();
    const QSignalSpy changed(&edit, SIGNAL(textChanged(QString)));
    press(edit, nativeKey, qtKey, Qt::NoModifier, text);
    QCOMPARE(edit.key(), code);
    QCOMPARE(edit.text(), shown);
    QCOMPARE(changed.size(), 0);
}

void TestHotKeyEdit::sameKeyIsNoChange()
{
    Ovryn_HotKeyEdit edit(false);
    const QSignalSpy changed(&edit, SIGNAL(textChanged(QString)));
    press(edit, nativeKeyFor(0x4B));
    QCOMPARE(changed.size(), 1);
    press(edit, nativeKeyFor(0x4B));
    QVERIFY(edit.setKey(0x4B));
    QCOMPARE(changed.size(), 1);
}

void TestHotKeyEdit::changeIsToldBeforeTheCode()
{
    Ovryn_HotKeyEdit edit(false);
    QList<quint32> codes;
    connect(&edit, &QLineEdit::textChanged, this, [&] { codes << edit.key(); });
    QVERIFY(edit.setKey(0x4B));
    QCOMPARE(codes, QList<quint32>{0x30});
    QCOMPARE(edit.key(), 0x4BU);
}

void TestHotKeyEdit::editingKeysEditNothing_data()
{
    QTest::addColumn<int>("qtKey");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("paste takes the V") << int(Qt::Key_V) << 0x56U << "V";
    QTest::newRow("cut takes the X") << int(Qt::Key_X) << 0x58U << "X";
    QTest::newRow("undo takes the Z") << int(Qt::Key_Z) << 0x5AU << "Z";
}

void TestHotKeyEdit::editingKeysEditNothing()
{
    QFETCH(int, qtKey);
    QFETCH(quint32, code);
    Ovryn_HotKeyEdit edit(false);
    QApplication::clipboard()->setText(QStringLiteral("elsewhere"));
    edit.selectAll();
    press(edit, nativeKeyFor(code), qtKey, Qt::ControlModifier);
    QCOMPARE(edit.key(), code);
    QTEST(edit.text(), "text");
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("elsewhere"));
}

void TestHotKeyEdit::middleButtonKeepsTheText()
{
    Ovryn_HotKeyEdit edit(false);
    QApplication::clipboard()->setText(QStringLiteral("elsewhere"), QClipboard::Selection);
    QTest::mouseClick(&edit, Qt::MiddleButton);
    QCOMPARE(edit.text(), QStringLiteral("0"));
}

void TestHotKeyEdit::styleSheetFindsIt()
{
    QWidget page;
    page.setStyleSheet(QStringLiteral("Ovryn_HotKeyEdit{font-size:13px;}"));
    Ovryn_HotKeyEdit edit(false, &page);
    edit.ensurePolished();
    QCOMPARE(edit.font().pixelSize(), 13);
}

QTEST_MAIN(TestHotKeyEdit)
#include "TestHotKeyEdit.moc"
