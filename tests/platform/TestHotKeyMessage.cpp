#include "platform/HotKeyMessage.h"

#include <QAbstractNativeEventFilter>
#include <QtTest>

namespace
{

/// Keeps the messages it is given.
class Listener final : public QAbstractNativeEventFilter
{
public:
    bool takes = false;
    QList<WindowMessage> messages;

    bool nativeEventFilter(const QByteArray &eventType, void *message, long *) override
    {
        if (eventType != "windows_generic_MSG")
            return false;
        messages << *static_cast<WindowMessage *>(message);
        return takes;
    }
};

} // namespace

/// The content of a pressed hot key's message, and its way to the filters.
class TestHotKeyMessage : public QObject
{
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void readsNothingOfNoMessage();
    void reachesTheFilters();
    void newestFilterComesFirst();
    void filterThatTakesItStopsIt();
};

void TestHotKeyMessage::reads_data()
{
    QTest::addColumn<quint32>("id");
    QTest::addColumn<qint64>("longParameter");
    QTest::addColumn<bool>("isHotKey");
    QTest::addColumn<quint32>("virtualKey");
    QTest::addColumn<quint32>("modifiers");

    QTest::newRow("Ctrl and 1") << 0x312U << qint64(0x00310002) << true << 0x31U << 2U;
    QTest::newRow("all modifiers") << 0x312U << qint64(0x004B000F) << true << 0x4BU << 15U;
    QTest::newRow("no key") << 0x312U << qint64(0x00000002) << true << 0U << 2U;
    QTest::newRow("all zero") << 0x312U << qint64(0) << true << 0U << 0U;
    QTest::newRow("highest bit set") << 0x312U << qint64(qint32(0x80010002)) << true << 0x8001U << 2U;
    QTest::newRow("all bits set") << 0x312U << qint64(-1) << true << 0xFFFFU << 0xFFFFU;
    QTest::newRow("a key press") << 0x100U << qint64(0x00310002) << false << 0U << 0U;
    QTest::newRow("the message before") << 0x311U << qint64(0x00310002) << false << 0U << 0U;
    QTest::newRow("the message after") << 0x313U << qint64(0x00310002) << false << 0U << 0U;
    QTest::newRow("its number in the high word") << 0x03120000U << qint64(0x00310002) << false << 0U << 0U;
}

void TestHotKeyMessage::reads()
{
    QFETCH(quint32, id);
    QFETCH(qint64, longParameter);
    WindowMessage message;
    message.id = id;
    message.longParameter = static_cast<qintptr>(longParameter);
    message.wordParameter = 0xFFFFFFFF; // the identifier decides nothing

    for (const std::optional<HotKeyPress> &press :
         {hotKeyPressOf(id, message.longParameter), hotKeyPressOf(&message)}) {
        QTEST(press.has_value(), "isHotKey");
        QTEST(press.value_or(HotKeyPress()).virtualKey, "virtualKey");
        QTEST(press.value_or(HotKeyPress()).modifiers, "modifiers");
    }
}

void TestHotKeyMessage::readsNothingOfNoMessage()
{
    QVERIFY(!hotKeyPressOf(nullptr));
}

void TestHotKeyMessage::reachesTheFilters()
{
    Listener listener;
    QCoreApplication::instance()->installNativeEventFilter(&listener);
    QVERIFY(!dispatchHotKeyPress(0x33, {0x31, 2}));
    QCOMPARE(listener.messages.size(), 1);
    const WindowMessage message = listener.messages.first();
    QCOMPARE(message.window, nullptr);
    QCOMPARE(message.id, 0x312U);
    QCOMPARE(message.wordParameter, quintptr(0x33));
    QCOMPARE(message.longParameter, qintptr(0x00310002));
}

void TestHotKeyMessage::newestFilterComesFirst()
{
    Listener older;
    Listener newer;
    QCoreApplication::instance()->installNativeEventFilter(&older);
    QCoreApplication::instance()->installNativeEventFilter(&newer);
    older.takes = true;
    QVERIFY(dispatchHotKeyPress(0x33, {0x31, 2}));
    QCOMPARE(newer.messages.size(), 1);
    QCOMPARE(older.messages.size(), 1);
}

void TestHotKeyMessage::filterThatTakesItStopsIt()
{
    Listener older;
    Listener newer;
    QCoreApplication::instance()->installNativeEventFilter(&older);
    QCoreApplication::instance()->installNativeEventFilter(&newer);
    newer.takes = true;
    QVERIFY(dispatchHotKeyPress(0x33, {0x31, 2}));
    QCOMPARE(newer.messages.size(), 1);
    QCOMPARE(older.messages.size(), 0);
}

QTEST_MAIN(TestHotKeyMessage)
#include "TestHotKeyMessage.moc"
