#include "board/lcd/Ovryn_GlobalShortCut.h"
#include "board/lcd/Ovryn_WinEventFilter.h"
#include "support/FakeHotKey.h"

#include <QAbstractEventDispatcher>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

/// A hot key's registration and its message, on hot keys that the test sees.
class TestGlobalShortCut : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void startsWithoutRegistration();
    void registers_data();
    void registers();
    void keysOfTheFieldThatDontSurvive();
    void pressActivates();
    void pressThatIsNotRegisteredIsHandedOn_data();
    void pressThatIsNotRegisteredIsHandedOn();
    void filterReadsOnlyTheDesktopsMessages_data();
    void filterReadsOnlyTheDesktopsMessages();
    void filterServesBeforeItIsInstalled();
    void refusalIsSilent();
    void earlierKeysGoOnFiring();
    void sameKeyAgainFiresOnce();
    void unsetStopsTheKey();
    void unsetLeavesEarlierKeys();
    void unsetTwice();
    void unsetWithoutAKey();
    void setAgainAfterUnset();
    void endUnregistersTheKeySetLast();
    void endWithoutAKey();
    void noFilterStaysBehind();
    void endDuringItsOwnSignal();
    void setDuringItsOwnSignal();
    void twoObjectsWithOneKey();
    void endOfTheRefusedObjectFreesTheKey();
    void twoObjectsWithTwoKeys();

private:
    static constexpr int kCtrlCode = 0x11; // as the page's field tells it
    static constexpr int kKey1 = 0x31;
    static constexpr int kKeyK = 0x4B;

    /// Hands a message to the application's filters, whatever is registered.
    static bool send(quint32 messageId, qintptr longParameter, const QByteArray &type = kWindowMessageType);

    std::unique_ptr<FakeHotKey> keys;
};

bool TestGlobalShortCut::send(quint32 messageId, qintptr longParameter, const QByteArray &type)
{
    WindowMessage message;
    message.id = messageId;
    message.longParameter = longParameter;
    long result = 0;
    return QAbstractEventDispatcher::instance()->filterNativeEvent(type, &message, &result);
}

void TestGlobalShortCut::init()
{
    keys = std::make_unique<FakeHotKey>();
}

void TestGlobalShortCut::cleanup()
{
    keys.reset();
}

void TestGlobalShortCut::startsWithoutRegistration()
{
    const Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    QCOMPARE(keys->takeCalls(), QStringList());
    QVERIFY(!send(0x312, 0x00310002));
    QVERIFY(!send(0x312, 0));
    QCOMPARE(activated.size(), 0);
}

void TestGlobalShortCut::registers_data()
{
    QTest::addColumn<int>("modifier");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("call");

    QTest::newRow("default pair") << 17 << 49 << "register 0x33 mods 2 key 0x31";
    QTest::newRow("Alt and K shown, Ctrl and K registered") << 18 << 75 << "register 0x49 mods 2 key 0x4b";
    QTest::newRow("Shift and A shown, Ctrl and A registered") << 16 << 65 << "register 0x43 mods 2 key 0x41";
    QTest::newRow("Ctrl and Space") << 17 << 0x20 << "register 0x22 mods 2 key 0x20";
    QTest::newRow("Ctrl and 0") << 17 << 0x30 << "register 0x32 mods 2 key 0x30";
    QTest::newRow("Ctrl and 9") << 17 << 0x39 << "register 0x3b mods 2 key 0x39";
    QTest::newRow("Ctrl and I") << 17 << 0x49 << "register 0x4b mods 2 key 0x49";
    QTest::newRow("Ctrl and Z") << 17 << 0x5A << "register 0x58 mods 2 key 0x5a";
    QTest::newRow("PageUp's code is no Qt key") << 17 << 0x21 << "register 0x2 mods 2 key 0x0";
    QTest::newRow("F1's code is no Qt key") << 17 << 0x70 << "register 0x2 mods 2 key 0x0";
    QTest::newRow("Num 1's code is no Qt key") << 17 << 0x61 << "register 0x2 mods 2 key 0x0";
    QTest::newRow("no key at all") << 17 << 0 << "register 0x2 mods 2 key 0x0";
    QTest::newRow("no modifier") << 0 << 49 << "register 0x33 mods 2 key 0x31";
    QTest::newRow("negative modifier") << -1 << 49 << "register 0x33 mods 2 key 0x31";
    QTest::newRow("Qt modifier bit is no key") << int(Qt::ShiftModifier) << 49 << "register 0x33 mods 2 key 0x31";
    QTest::newRow("Qt's Shift") << int(Qt::Key_Shift) << 49 << "register 0x35 mods 4 key 0x31";
    QTest::newRow("Qt's Ctrl") << int(Qt::Key_Control) << 49 << "register 0x33 mods 2 key 0x31";
    QTest::newRow("Qt's Meta") << int(Qt::Key_Meta) << 49 << "register 0x39 mods 8 key 0x31";
    QTest::newRow("Qt's Alt") << int(Qt::Key_Alt) << 49 << "register 0x30 mods 1 key 0x31";
    QTest::newRow("Qt's F1") << 17 << int(Qt::Key_F1) << "register 0x72 mods 2 key 0x70";
    QTest::newRow("asterisk is the keypad's") << 17 << 0x2A << "register 0x68 mods 2 key 0x6a";
    QTest::newRow("modifier bits in the key add up")
        << 17 << int(Qt::AltModifier | Qt::Key_K) << "register 0x48 mods 3 key 0x4b";
    QTest::newRow("all bits in the key") << 17 << -1 << "register 0xf mods 15 key 0x0";
}

void TestGlobalShortCut::registers()
{
    QFETCH(int, modifier);
    QFETCH(int, key);
    QFETCH(QString, call);
    Ovryn_GlobalShortCut shortCut;
    shortCut.setShortcut(modifier, key);
    QCOMPARE(keys->takeCalls(), QStringList{call});
    const QStringList words = call.split(QLatin1Char(' '));
    QCOMPARE(shortCut.registeredFor(words.at(5).toUInt(nullptr, 16), words.at(3).toUInt()), &shortCut);
}

void TestGlobalShortCut::keysOfTheFieldThatDontSurvive()
{
    QList<int> codes = {0x21, 0x22, 0x25, 0x26, 0x27, 0x28, 0x6A, 0x6B, 0x6D, 0x6E,
                        0x6F, 0xBA, 0xBB, 0xBD, 0xBF, 0xC0, 0xDB, 0xDC, 0xDD, 0xDE};
    for (int code = 0x60; code <= 0x69; ++code)
        codes << code;
    for (int code = 0x70; code <= 0x7B; ++code)
        codes << code;
    QCOMPARE(codes.size(), 79 - 1 - 10 - 26); // all but Space, the digits and the letters
    for (const int code : codes) {
        Ovryn_GlobalShortCut shortCut;
        shortCut.setShortcut(kCtrlCode, code);
        QCOMPARE(keys->takeCalls().last(), QStringLiteral("register 0x2 mods 2 key 0x0"));
    }
}

void TestGlobalShortCut::pressActivates()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, kKey1);
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(activated.size(), 1);
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control)); // the next, or its repetition while held
    QCOMPARE(activated.size(), 2);
}

void TestGlobalShortCut::pressThatIsNotRegisteredIsHandedOn_data()
{
    QTest::addColumn<qint64>("longParameter");
    QTest::newRow("another key") << qint64(0x00320002);
    QTest::newRow("another modifier") << qint64(0x00310001);
    QTest::newRow("one modifier more") << qint64(0x00310003);
    QTest::newRow("no modifier") << qint64(0x00310000);
    QTest::newRow("words exchanged") << qint64(0x00020031);
    QTest::newRow("same identifier of another pair") << qint64(0x00330000);
    QTest::newRow("nothing") << qint64(0);
    QTest::newRow("all bits") << qint64(-1);
}

void TestGlobalShortCut::pressThatIsNotRegisteredIsHandedOn()
{
    QFETCH(qint64, longParameter);
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, kKey1);
    QVERIFY(!send(0x312, static_cast<qintptr>(longParameter)));
    QCOMPARE(activated.size(), 0);
}

void TestGlobalShortCut::filterReadsOnlyTheDesktopsMessages_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<quint32>("id");
    QTest::addColumn<bool>("taken");
    QTest::newRow("hot key") << QByteArray("windows_generic_MSG") << 0x312U << true;
    QTest::newRow("key press") << QByteArray("windows_generic_MSG") << 0x100U << false;
    QTest::newRow("dispatcher's own") << QByteArray("windows_dispatcher_MSG") << 0x312U << false;
    QTest::newRow("X server's event") << QByteArray("xcb_generic_event_t") << 0x312U << false;
    QTest::newRow("longer name") << QByteArray("windows_generic_MSG2") << 0x312U << false;
    QTest::newRow("no name") << QByteArray() << 0x312U << false;
}

void TestGlobalShortCut::filterReadsOnlyTheDesktopsMessages()
{
    QFETCH(QByteArray, type);
    QFETCH(quint32, id);
    QFETCH(bool, taken);
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, kKey1);
    QCOMPARE(send(id, 0x00310002, type), taken);
    QCOMPARE(activated.size(), taken ? 1 : 0);
}

void TestGlobalShortCut::filterServesBeforeItIsInstalled()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    Ovryn_WinEventFilter filter(&shortCut);
    WindowMessage message;
    message.id = 0x312;
    message.longParameter = 0x00310002;
    long result = 0;
    QVERIFY(!filter.nativeEventFilter("windows_generic_MSG", &message, &result));
    shortCut.setShortcut(kCtrlCode, kKey1);
    QVERIFY(filter.nativeEventFilter("windows_generic_MSG", &message, &result));
    QVERIFY(!filter.nativeEventFilter("windows_generic_MSG", nullptr, &result));
    QCOMPARE(activated.size(), 1);
}

void TestGlobalShortCut::refusalIsSilent()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    keys->refuses = true;
    shortCut.setShortcut(kCtrlCode, kKey1);
    QCOMPARE(keys->takeCalls(), QStringList{QStringLiteral("register 0x33 mods 2 key 0x31 refused")});
    QVERIFY(!keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(activated.size(), 0);
    QCOMPARE(shortCut.registeredFor(0x31, 2), &shortCut); // it takes the key for its own all the same
    QVERIFY(send(0x312, 0x00310002));
    QCOMPARE(activated.size(), 1);
}

void TestGlobalShortCut::earlierKeysGoOnFiring()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, kKey1);
    shortCut.setShortcut(kCtrlCode, kKeyK);
    QCOMPARE(keys->takeCalls(), (QStringList{QStringLiteral("register 0x33 mods 2 key 0x31"),
                                             QStringLiteral("register 0x49 mods 2 key 0x4b")}));
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QVERIFY(keys->press(0x4B, GlobalHotKeys::Control));
    QCOMPARE(activated.size(), 2);
    QCOMPARE(shortCut.registeredFor(0x31, 2), &shortCut);
    QCOMPARE(shortCut.registeredFor(0x4B, 2), &shortCut);
}

void TestGlobalShortCut::sameKeyAgainFiresOnce()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    for (int i = 0; i < 3; ++i)
        shortCut.setShortcut(kCtrlCode, kKey1);
    const QString call = QStringLiteral("register 0x33 mods 2 key 0x31");
    const QString refused = call + QStringLiteral(" refused");
    QCOMPARE(keys->takeCalls(), (QStringList{call, refused, refused}));
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control)); // three filters, and the first takes it
    QCOMPARE(activated.size(), 1);
}

void TestGlobalShortCut::unsetStopsTheKey()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, kKey1);
    keys->takeCalls();
    shortCut.unsetShortcut();
    QCOMPARE(keys->takeCalls(), QStringList{QStringLiteral("unregister 0x33")});
    QCOMPARE(shortCut.registeredFor(0x31, 2), nullptr);
    QVERIFY(!keys->press(0x31, GlobalHotKeys::Control));
    QVERIFY(!send(0x312, 0x00310002)); // one that was on its way already
    QCOMPARE(activated.size(), 0);
}

void TestGlobalShortCut::unsetLeavesEarlierKeys()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, kKey1);
    shortCut.setShortcut(kCtrlCode, kKeyK);
    shortCut.unsetShortcut();
    QVERIFY(keys->holds(0x31, GlobalHotKeys::Control));
    QVERIFY(!keys->holds(0x4B, GlobalHotKeys::Control));
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(activated.size(), 1);
}

void TestGlobalShortCut::unsetTwice()
{
    Ovryn_GlobalShortCut shortCut;
    shortCut.setShortcut(kCtrlCode, kKey1);
    keys->takeCalls();
    shortCut.unsetShortcut();
    shortCut.unsetShortcut(); // the sequence stays set
    QCOMPARE(keys->takeCalls(),
             (QStringList{QStringLiteral("unregister 0x33"), QStringLiteral("unregister 0x33 unknown")}));
}

void TestGlobalShortCut::unsetWithoutAKey()
{
    Ovryn_GlobalShortCut shortCut;
    shortCut.unsetShortcut();
    QCOMPARE(keys->takeCalls(), QStringList{QStringLiteral("unregister 0x0 unknown")});
}

void TestGlobalShortCut::setAgainAfterUnset()
{
    Ovryn_GlobalShortCut shortCut;
    const QSignalSpy activated(&shortCut, SIGNAL(activated()));
    shortCut.setShortcut(kCtrlCode, kKey1);
    shortCut.unsetShortcut();
    shortCut.setShortcut(kCtrlCode, kKey1);
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(activated.size(), 1);
}

void TestGlobalShortCut::endUnregistersTheKeySetLast()
{
    {
        Ovryn_GlobalShortCut shortCut;
        shortCut.setShortcut(kCtrlCode, kKey1);
        shortCut.setShortcut(kCtrlCode, kKeyK);
        keys->takeCalls();
    }
    QCOMPARE(keys->takeCalls(), QStringList{QStringLiteral("unregister 0x49")});
    QVERIFY(keys->holds(0x31, GlobalHotKeys::Control)); // nobody asked for it back
}

void TestGlobalShortCut::endWithoutAKey()
{
    {
        const Ovryn_GlobalShortCut shortCut;
    }
    QCOMPARE(keys->takeCalls(), QStringList{QStringLiteral("unregister 0x0 unknown")});
}

void TestGlobalShortCut::noFilterStaysBehind()
{
    {
        Ovryn_GlobalShortCut shortCut;
        shortCut.setShortcut(kCtrlCode, kKey1);
        shortCut.setShortcut(kCtrlCode, kKeyK);
    }
    QVERIFY(!keys->press(0x31, GlobalHotKeys::Control)); // still held, and nobody left to tell
    QVERIFY(!send(0x312, 0x004B0002));
}

void TestGlobalShortCut::endDuringItsOwnSignal()
{
    auto *shortCut = new Ovryn_GlobalShortCut(this);
    QPointer<Ovryn_GlobalShortCut> alive = shortCut;
    shortCut->setShortcut(kCtrlCode, kKey1);
    shortCut->setShortcut(kCtrlCode, kKeyK);
    connect(shortCut, &Ovryn_GlobalShortCut::activated, this, [shortCut] { delete shortCut; });
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QVERIFY(!alive);
    QVERIFY(!keys->press(0x31, GlobalHotKeys::Control));
}

void TestGlobalShortCut::setDuringItsOwnSignal()
{
    Ovryn_GlobalShortCut shortCut;
    int times = 0;
    connect(&shortCut, &Ovryn_GlobalShortCut::activated, this, [&] {
        ++times;
        shortCut.setShortcut(kCtrlCode, kKeyK);
    });
    shortCut.setShortcut(kCtrlCode, kKey1);
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(times, 1);
    QVERIFY(keys->press(0x4B, GlobalHotKeys::Control));
    QCOMPARE(times, 2);
}

void TestGlobalShortCut::twoObjectsWithOneKey()
{
    Ovryn_GlobalShortCut first;
    Ovryn_GlobalShortCut second;
    const QSignalSpy ofFirst(&first, SIGNAL(activated()));
    const QSignalSpy ofSecond(&second, SIGNAL(activated()));
    first.setShortcut(kCtrlCode, kKey1);
    second.setShortcut(kCtrlCode, kKey1);
    QCOMPARE(keys->takeCalls().last(), QStringLiteral("register 0x33 mods 2 key 0x31 refused"));
    QCOMPARE(second.registeredFor(0x31, 2), &second);
    // The process holds the key once; its message meets the newest filter first, whose object believes in its key.
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(ofFirst.size(), 0);
    QCOMPARE(ofSecond.size(), 1);
    first.setShortcut(kCtrlCode, kKey1);
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(ofFirst.size(), 1);
    QCOMPARE(ofSecond.size(), 1);
}

void TestGlobalShortCut::endOfTheRefusedObjectFreesTheKey()
{
    Ovryn_GlobalShortCut first;
    const QSignalSpy ofFirst(&first, SIGNAL(activated()));
    first.setShortcut(kCtrlCode, kKey1);
    {
        Ovryn_GlobalShortCut second;
        second.setShortcut(kCtrlCode, kKey1);
    }
    QVERIFY(!keys->holds(0x31, GlobalHotKeys::Control)); // the identifier says nothing about whose it is
    QVERIFY(!keys->press(0x31, GlobalHotKeys::Control));
    QCOMPARE(ofFirst.size(), 0);
    QCOMPARE(first.registeredFor(0x31, 2), &first);
}

void TestGlobalShortCut::twoObjectsWithTwoKeys()
{
    Ovryn_GlobalShortCut first;
    Ovryn_GlobalShortCut second;
    const QSignalSpy ofFirst(&first, SIGNAL(activated()));
    const QSignalSpy ofSecond(&second, SIGNAL(activated()));
    first.setShortcut(kCtrlCode, kKey1);
    second.setShortcut(kCtrlCode, kKeyK);
    QVERIFY(keys->press(0x31, GlobalHotKeys::Control)); // passed on by the newer filter
    QCOMPARE(ofFirst.size(), 1);
    QCOMPARE(ofSecond.size(), 0);
    QVERIFY(keys->press(0x4B, GlobalHotKeys::Control));
    QCOMPARE(ofFirst.size(), 1);
    QCOMPARE(ofSecond.size(), 1);
}

QTEST_MAIN(TestGlobalShortCut)
#include "TestGlobalShortCut.moc"
