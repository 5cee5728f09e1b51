#include "board/lcd/Ovryn_GlobalShortCut.h"
#include "board/lcd/Ovryn_HotKeyEdit.h"
#include "e2e/OtherClient.h"
#include "e2e/VirtualScreen.h"
#include "platform/GlobalHotKeys.h"
#include "platform/HotKeyMessage.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QtTest>

#include <X11/keysym.h>

#include <memory>

namespace
{

constexpr quint16 kCapsLock = XCB_MOD_MASK_LOCK;
constexpr quint16 kNumLock = XCB_MOD_MASK_2; // where the server's own layout has it
constexpr quint16 kLocks = kCapsLock | kNumLock;

/// Writes down each press of a hot key: "0x31 mods 2 id 0x33".
class PressLog final : public QAbstractNativeEventFilter
{
public:
    QStringList presses;

    bool nativeEventFilter(const QByteArray &eventType, void *message, long *) override
    {
        if (eventType != kWindowMessageType)
            return false;
        if (const std::optional<HotKeyPress> press = hotKeyPressOf(message)) {
            presses << QStringLiteral("0x%1 mods %2 id 0x%3")
                           .arg(press->virtualKey, 0, 16)
                           .arg(press->modifiers)
                           .arg(static_cast<WindowMessage *>(message)->wordParameter, 0, 16);
        }
        return false;
    }
};

QStringList warnings;

void collectWarning(QtMsgType, const QMessageLogContext &, const QString &text)
{
    warnings << text;
}

} // namespace

/// Hot keys on a real X server. The test program is the one that registers them; another client has the focus.
class TestHotKeyX11 : public QObject
{
    Q_OBJECT

public:
    explicit TestHotKeyX11(const VirtualScreen &virtualScreen) : screen(virtualScreen) {}

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void firesWhileAnotherHasTheFocus_data();
    void firesWhileAnotherHasTheFocus();
    void otherKeysGoToTheWindow_data();
    void otherKeysGoToTheWindow();
    void heldKeyRepeats();
    void unregisteredKeyGoesToTheWindow();
    void keyOfAnotherClientIsRefused_data();
    void keyOfAnotherClientIsRefused();
    void heldKeysAreRefused_data();
    void heldKeysAreRefused();
    void twoKeys();
    void keyNotOnTheKeyboard_data();
    void keyNotOnTheKeyboard();
    void shortCutIsActivated();
    void refusedShortCutIsSilent();
    void fieldTakesRealKeys_data();
    void fieldTakesRealKeys();
    void middleButtonPastesNothing();

private:
    static constexpr quint32 kCtrl = GlobalHotKeys::Control;
    static constexpr quint32 kKey1 = 0x31;
    static constexpr quint32 kDefaultId = kCtrl ^ kKey1;

    bool add(quint32 identifier, quint32 modifiers, quint32 virtualKey);
    void press(const QStringList &keys) const;
    void setLocks(quint16 locks) const;
    void settle();

    const VirtualScreen &screen;
    std::unique_ptr<OtherClient> other;
    std::unique_ptr<PressLog> log;
    QList<quint32> identifiers; ///< to be unregistered after the test
};

void TestHotKeyX11::initTestCase()
{
    other = std::make_unique<OtherClient>(screen.display());
    QVERIFY(other->isConnected());
    const QStringList question = {QStringLiteral("-id"), QString::number(other->windowId()),
                                  QStringLiteral("WM_STATE")};
    QTRY_VERIFY(screen.run(QStringLiteral("xprop"), question).contains(QLatin1String("Normal")));
}

void TestHotKeyX11::init()
{
    screen.activate(other->windowId());
    QTRY_VERIFY(other->hasFocus());
    other->forgetPresses();
    log = std::make_unique<PressLog>();
    QCoreApplication::instance()->installNativeEventFilter(log.get());
}

void TestHotKeyX11::cleanup()
{
    setLocks(0);
    for (const quint32 identifier : qAsConst(identifiers))
        GlobalHotKeys::current().unregisterKey(identifier);
    identifiers.clear();
    other->releaseGrabs();
    log.reset();
}

bool TestHotKeyX11::add(quint32 identifier, quint32 modifiers, quint32 virtualKey)
{
    const bool registered = GlobalHotKeys::current().registerKey(identifier, modifiers, virtualKey);
    if (registered)
        identifiers << identifier;
    return registered;
}

void TestHotKeyX11::press(const QStringList &keys) const
{
    (void)screen.run(QStringLiteral("xdotool"), QStringList(QStringLiteral("key")) + keys);
}

void TestHotKeyX11::setLocks(quint16 locks) const
{
    const quint16 wrong = (other->keyboardState() & kLocks) ^ locks;
    if (wrong & kCapsLock)
        press({QStringLiteral("Caps_Lock")});
    if (wrong & kNumLock)
        press({QStringLiteral("Num_Lock")});
}

/// All earlier presses are handled once a last key, which takes the same way, has arrived.
void TestHotKeyX11::settle()
{
    constexpr quint32 kLastId = 0xBFFF;
    constexpr quint32 kF8 = 0x77;
    QVERIFY(GlobalHotKeys::current().registerKey(kLastId, 0, kF8));
    press({QStringLiteral("F8")});
    const QString last = QStringLiteral("0x77 mods 0 id 0xbfff");
    const bool came = QTest::qWaitFor([&] { return log->presses.contains(last); });
    QVERIFY(GlobalHotKeys::current().unregisterKey(kLastId));
    QVERIFY(came);
    log->presses.removeAll(last);
}

void TestHotKeyX11::firesWhileAnotherHasTheFocus_data()
{
    QTest::addColumn<quint32>("modifiers");
    QTest::addColumn<quint32>("virtualKey");
    QTest::addColumn<quint16>("locks");
    QTest::addColumn<QString>("keys");

    const quint16 none = 0;
    QTest::newRow("no lock") << kCtrl << kKey1 << none << "ctrl+1";
    QTest::newRow("Num Lock") << kCtrl << kKey1 << kNumLock << "ctrl+1";
    QTest::newRow("Caps Lock") << kCtrl << kKey1 << kCapsLock << "ctrl+1";
    QTest::newRow("both locks") << kCtrl << kKey1 << kLocks << "ctrl+1";
    QTest::newRow("letter with Caps Lock") << kCtrl << 0x4BU << kCapsLock << "ctrl+k";
    QTest::newRow("letter with both locks") << kCtrl << 0x4BU << kLocks << "ctrl+k";
    QTest::newRow("Space") << kCtrl << 0x20U << none << "ctrl+space";
    QTest::newRow("Alt") << 1U << 0x4BU << none << "alt+k";
    QTest::newRow("Shift") << 4U << 0x4BU << none << "shift+k";
    QTest::newRow("Super") << 8U << 0x4BU << none << "super+k";
    QTest::newRow("all modifiers with both locks") << 15U << 0x4BU << kLocks << "ctrl+alt+shift+super+k";
    QTest::newRow("no modifier") << 0U << 0x4BU << none << "k";
    QTest::newRow("function key") << kCtrl << 0x7BU << none << "ctrl+F12";
    QTest::newRow("keypad *") << kCtrl << 0x6AU << kNumLock << "ctrl+KP_Multiply";
    QTest::newRow("semicolon") << kCtrl << 0xBAU << none << "ctrl+semicolon";
}

void TestHotKeyX11::firesWhileAnotherHasTheFocus()
{
    QFETCH(quint32, modifiers);
    QFETCH(quint32, virtualKey);
    QFETCH(quint16, locks);
    QFETCH(QString, keys);
    const quint32 identifier = modifiers ^ virtualKey;
    QVERIFY(add(identifier, modifiers, virtualKey));
    setLocks(locks);
    QCOMPARE(quint16(other->keyboardState() & kLocks), locks);
    QVERIFY(other->hasFocus());
    press({keys});
    settle();
    QCOMPARE(
        log->presses,
        QStringList{
            QStringLiteral("0x%1 mods %2 id 0x%3").arg(virtualKey, 0, 16).arg(modifiers).arg(identifier, 0, 16)});
    const QByteArray symbol = keys.section(QLatin1Char('+'), -1).toLatin1();
    if (symbol.size() == 1) { // a key named by what it writes
        const xcb_keycode_t key = other->keyWith(quint8(symbol.at(0)));
        QVERIFY(key != 0);
        QCOMPARE(other->takePresses(key), 0);
    }
}

void TestHotKeyX11::otherKeysGoToTheWindow_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<quint32>("keysym");
    QTest::newRow("without the modifier") << "1" << quint32(XK_1);
    QTest::newRow("another modifier") << "alt+1" << quint32(XK_1);
    QTest::newRow("one modifier more") << "ctrl+shift+1" << quint32(XK_1);
    QTest::newRow("another key") << "ctrl+2" << quint32(XK_2);
    QTest::newRow("the keypad's key") << "ctrl+KP_End" << quint32(XK_KP_End);
}

void TestHotKeyX11::otherKeysGoToTheWindow()
{
    QFETCH(QString, keys);
    QFETCH(quint32, keysym);
    QVERIFY(add(kDefaultId, kCtrl, kKey1));
    press({keys});
    settle();
    QCOMPARE(log->presses, QStringList());
    QCOMPARE(other->takePresses(other->keyWith(keysym)), 1);
}

void TestHotKeyX11::heldKeyRepeats()
{
    QVERIFY(add(kDefaultId, kCtrl, kKey1));
    (void)screen.run(QStringLiteral("xdotool"), {QStringLiteral("keydown"), QStringLiteral("ctrl"),
                                                 QStringLiteral("keydown"), QStringLiteral("1")});
    const bool repeated = QTest::qWaitFor([this] { return log->presses.size() >= 3; });
    (void)screen.run(QStringLiteral("xdotool"),
                     {QStringLiteral("keyup"), QStringLiteral("1"), QStringLiteral("keyup"), QStringLiteral("ctrl")});
    QVERIFY(repeated);
    settle();
    QCOMPARE(other->takePresses(other->keyWith(XK_1)), 0);
}

void TestHotKeyX11::unregisteredKeyGoesToTheWindow()
{
    QVERIFY(add(kDefaultId, kCtrl, kKey1));
    press({QStringLiteral("ctrl+1")});
    settle();
    QCOMPARE(log->presses.size(), 1);
    QVERIFY(GlobalHotKeys::current().unregisterKey(kDefaultId));
    for (const quint16 locks : {quint16(0), kCapsLock, kNumLock, kLocks}) {
        setLocks(locks);
        press({QStringLiteral("ctrl+1")});
        settle();
        QCOMPARE(log->presses.size(), 1);
        QCOMPARE(other->takePresses(other->keyWith(XK_1)), 1);
    }
    QVERIFY(!GlobalHotKeys::current().unregisterKey(kDefaultId));
}

void TestHotKeyX11::keyOfAnotherClientIsRefused_data()
{
    QTest::addColumn<quint16>("locks");
    QTest::newRow("without locks") << quint16(0);
    QTest::newRow("with Caps Lock") << kCapsLock;
    QTest::newRow("with Num Lock") << kNumLock;
    QTest::newRow("with both locks") << kLocks;
}

void TestHotKeyX11::keyOfAnotherClientIsRefused()
{
    QFETCH(quint16, locks);
    const xcb_keycode_t key = other->keyWith(XK_1);
    QVERIFY(other->grab(key, XCB_MOD_MASK_CONTROL | locks));
    QVERIFY(!add(kDefaultId, kCtrl, kKey1));
    press({QStringLiteral("ctrl+1")});
    settle();
    QCOMPARE(log->presses, QStringList());
    // No part of it was kept: the other client can grab all of the key.
    for (const quint16 states : {quint16(0), kCapsLock, kNumLock, kLocks})
        QVERIFY(other->grab(key, XCB_MOD_MASK_CONTROL | states));
    other->releaseGrabs();
    QVERIFY(add(kDefaultId, kCtrl, kKey1));
    press({QStringLiteral("ctrl+1")});
    settle();
    QCOMPARE(log->presses.size(), 1);
}

void TestHotKeyX11::heldKeysAreRefused_data()
{
    QTest::addColumn<quint32>("identifier");
    QTest::addColumn<quint32>("virtualKey");
    QTest::newRow("the same once more") << kDefaultId << kKey1;
    QTest::newRow("the keys under another identifier") << 0x99U << kKey1;
    QTest::newRow("the identifier for other keys") << kDefaultId << 0x4BU;
}

void TestHotKeyX11::heldKeysAreRefused()
{
    QFETCH(quint32, identifier);
    QFETCH(quint32, virtualKey);
    QVERIFY(add(kDefaultId, kCtrl, kKey1));
    QVERIFY(!add(identifier, kCtrl, virtualKey));
    press({QStringLiteral("ctrl+1"), QStringLiteral("ctrl+k")});
    settle();
    QCOMPARE(log->presses, QStringList{QStringLiteral("0x31 mods 2 id 0x33")});
    QVERIFY(GlobalHotKeys::current().unregisterKey(kDefaultId));
    press({QStringLiteral("ctrl+1")});
    settle();
    QCOMPARE(log->presses.size(), 1);
}

void TestHotKeyX11::twoKeys()
{
    QVERIFY(add(kDefaultId, kCtrl, kKey1));
    QVERIFY(add(0x49, kCtrl, 0x4B));
    press({QStringLiteral("ctrl+k"), QStringLiteral("ctrl+1")});
    settle();
    QCOMPARE(log->presses,
             (QStringList{QStringLiteral("0x4b mods 2 id 0x49"), QStringLiteral("0x31 mods 2 id 0x33")}));
    QVERIFY(GlobalHotKeys::current().unregisterKey(0x49));
    press({QStringLiteral("ctrl+k"), QStringLiteral("ctrl+1")});
    settle();
    QCOMPARE(log->presses.mid(2), QStringList{QStringLiteral("0x31 mods 2 id 0x33")});
}

void TestHotKeyX11::keyNotOnTheKeyboard_data()
{
    QTest::addColumn<quint32>("virtualKey");
    QTest::newRow("no key") << 0U;
    QTest::newRow("code without a keysym") << 0xE8U;
    QTest::newRow("keysym that no key gives") << 0x29U;
    QTest::newRow("beyond all codes") << 0xFFFFFFFFU;
}

void TestHotKeyX11::keyNotOnTheKeyboard()
{
    QFETCH(quint32, virtualKey);
    QVERIFY(!add(kDefaultId, kCtrl, virtualKey));
    QVERIFY(!GlobalHotKeys::current().unregisterKey(kDefaultId));
    press({QStringLiteral("ctrl+1")});
    settle();
    QCOMPARE(log->presses, QStringList());
    QCOMPARE(other->takePresses(other->keyWith(XK_1)), 1);
}

void TestHotKeyX11::shortCutIsActivated()
{
    constexpr int kCtrlCode = 17;
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, 49);
    press({QStringLiteral("ctrl+1")});
    QTRY_COMPARE(activated.size(), 1);
    shortCut.setShortcut(kCtrlCode, 75);
    press({QStringLiteral("ctrl+k"), QStringLiteral("ctrl+1")});
    QTRY_COMPARE(activated.size(), 3);
    shortCut.unsetShortcut();
    press({QStringLiteral("ctrl+k")});
    settle();
    QCOMPARE(activated.size(), 3);
    QCOMPARE(other->takePresses(other->keyWith(XK_k)), 1);
    identifiers << kDefaultId; // the first key is still the object's
}

void TestHotKeyX11::refusedShortCutIsSilent()
{
    QVERIFY(other->grab(other->keyWith(XK_1), XCB_MOD_MASK_CONTROL));
    warnings.clear();
    const QtMessageHandler before = qInstallMessageHandler(collectWarning);
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(17, 49);
    press({QStringLiteral("ctrl+1")});
    settle();
    qInstallMessageHandler(before);
    QCOMPARE(warnings, QStringList());
    QCOMPARE(activated.size(), 0);
    QCOMPARE(shortCut.registeredFor(kKey1, kCtrl), &shortCut);
}

void TestHotKeyX11::fieldTakesRealKeys_data()
{
    QTest::addColumn<bool>("modifierMode");
    QTest::addColumn<quint16>("locks");
    QTest::addColumn<QString>("keys"); // a number is a key code, whatever the key writes
    QTest::addColumn<QString>("text");

    const quint16 none = 0;
    QTest::newRow("letter") << false << none << "k"
                            << "K";
    QTest::newRow("letter with Shift") << false << none << "shift+k"
                                       << "K";
    QTest::newRow("letter with Ctrl") << false << none << "ctrl+v"
                                      << "V";
    QTest::newRow("letter with Caps Lock") << false << kCapsLock << "k"
                                           << "K";
    QTest::newRow("I shows as a small L") << false << none << "i"
                                          << "l";
    QTest::newRow("digit") << false << none << "1"
                           << "1";
    QTest::newRow("digit with Shift") << false << none << "shift+7"
                                      << "7";
    QTest::newRow("Space") << false << none << "space"
                           << "Space";
    QTest::newRow("Page Up") << false << none << "Prior"
                             << "PageUp";
    QTest::newRow("left arrow") << false << none << "Left"
                                << "LeftArrow";
    QTest::newRow("F12") << false << none << "F12"
                         << "F12";
    QTest::newRow("punctuation") << false << none << "semicolon"
                                 << "; : ";
    QTest::newRow("punctuation with Shift") << false << none << "shift+slash"
                                            << " / ? ";
    QTest::newRow("keypad 7 with Num Lock") << false << kNumLock << "79"
                                            << "Num 7";
    QTest::newRow("keypad 8 without Num Lock") << false << none << "80"
                                               << "UpArrow";
    QTest::newRow("keypad 7 without Num Lock is Home") << false << none << "79"
                                                       << "0";
    QTest::newRow("keypad point with Num Lock") << false << kNumLock << "91"
                                                << "Num .";
    QTest::newRow("keypad /") << false << none << "KP_Divide"
                              << "Num / ";
    QTest::newRow("Escape") << false << none << "Escape"
                            << "0";
    QTest::newRow("Return") << false << none << "Return"
                            << "0";
    QTest::newRow("modifier in an ordinary field") << false << none << "Control_L"
                                                   << "0";
    QTest::newRow("left Shift") << true << none << "Shift_L"
                                << "Shift";
    QTest::newRow("right Shift") << true << none << "Shift_R"
                                 << "Shift";
    QTest::newRow("left Alt") << true << none << "Alt_L"
                              << "Alt";
    QTest::newRow("right Alt") << true << none << "Alt_R"
                               << "Alt";
    QTest::newRow("right Ctrl after Alt") << true << none << "Alt_L Control_R"
                                          << "Ctrl";
    QTest::newRow("letter in a modifier field") << true << none << "k"
                                                << "Ctrl";
}

void TestHotKeyX11::fieldTakesRealKeys()
{
    QFETCH(bool, modifierMode);
    QFETCH(quint16, locks);
    QFETCH(QString, keys);
    setLocks(locks);
    Ovryn_HotKeyEdit edit(modifierMode);
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));
    screen.activate(qint64(edit.winId()));
    QVERIFY(QTest::qWaitForWindowActive(&edit));
    QTRY_VERIFY(edit.hasFocus());
    press(keys.split(QLatin1Char(' ')));
    settle();
    QTEST(edit.text(), "text");
}

void TestHotKeyX11::middleButtonPastesNothing()
{
    QVERIFY(QApplication::clipboard()->supportsSelection());
    QApplication::clipboard()->setText(QStringLiteral("elsewhere"), QClipboard::Selection);
    QLineEdit ordinary;
    QTest::mouseClick(&ordinary, Qt::MiddleButton);
    QCOMPARE(ordinary.text(), QStringLiteral("elsewhere"));
    Ovryn_HotKeyEdit edit(false);
    QTest::mouseClick(&edit, Qt::MiddleButton);
    QCOMPARE(edit.text(), QStringLiteral("0"));
}

int main(int argc, char **argv)
{
    // The server first: the application joins it.
    VirtualScreen screen;
    if (!screen.start()) {
        qCritical("%s", qPrintable(screen.error()));
        return 1;
    }
    qputenv("DISPLAY", screen.display().toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QApplication application(argc, argv);
    TestHotKeyX11 test(screen);
    return QTest::qExec(&test, argc, argv);
}

#include "TestHotKeyX11.moc"
