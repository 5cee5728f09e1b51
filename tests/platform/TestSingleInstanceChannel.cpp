#include "platform/SingleInstanceChannel.h"

#include "platform/MessageLog.h"
#include "platform/RuntimeFolder.h"
#include "platform/UserScope.h"

#include <QFileInfo>
#include <QLocalSocket>
#include <QLockFile>
#include <QThread>
#include <QtEndian>
#include <QtTest>

#include <limits>
#include <memory>
#include <thread>

namespace
{

const QString kId = QStringLiteral("test/Überlauf id");
constexpr int kSendMs = 5000;

QByteArray frame(quint32 announced, const QByteArray &text)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(announced, bytes.data());
    return bytes + text;
}

void writeFile(const QString &name, const QByteArray &text)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qPrintable(name));
}

/// What a lock file of this very process says.
QByteArray lockTextOfThisProcess()
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("lock"));
    QLockFile lock(name);
    QFile file(name);
    if (!lock.tryLock() || !file.open(QIODevice::ReadOnly))
        qFatal("cannot make a lock file");
    return file.readAll();
}

/// Sends from a thread of its own, as another process would, so that this thread can run the receiver.
class Sending : public QThread
{
public:
    explicit Sending(const QString &text, int timeout = kSendMs) : message(text), timeoutMs(timeout) { start(); }
    ~Sending() override { wait(); }

    bool sent = false;

private:
    void run() override
    {
        const SingleInstanceChannel second(kId);
        sent = second.send(message, timeoutMs);
    }

    QString message;
    int timeoutMs;
};

} // namespace

class TestSingleInstanceChannel : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder.reset(new RuntimeFolder); }
    void cleanup() { folder.reset(); }

    void firstAndSecond();
    void otherIdentifiersAreApart();
    void secondBecomesFirstWhenTheFirstEnds();
    void startWaitsForAnAnnouncedEnd();
    void noWaitWithoutAnAnnouncement();
    void firstThatEndsForEverIsNotWaitedForWithoutLimit();
    void endIsAnnouncedByTheFirstAlone();
    void namesCarryTheUser();
    void onlyTheUserMayConnect();
    void carriesMessages_data();
    void carriesMessages();
    void tooLongAMessageIsNotSent();
    void manyMessages();
    void noListener();
    void firstThatIsBusyTimesOut();
    void waitsForAServerThatComesUp();
    void lateMessageStillArrives();
    void strayLockFiles_data();
    void strayLockFiles();
    void staleSocketIsReplaced();
    void secondLeavesTheFirstsSocketAlone();
    void withoutALockFileEverybodyIsFirst();
    void hostilePeers_data();
    void hostilePeers();
    void silentPeersAreDropped();
    void manySilentPeers();

private:
    QScopedPointer<RuntimeFolder> folder;
};

void TestSingleInstanceChannel::firstAndSecond()
{
    SingleInstanceChannel first(kId);
    SingleInstanceChannel second(kId);
    QVERIFY(first.isFirst());
    QVERIFY(!second.isFirst());
    QVERIFY(!second.isFirst());
    QVERIFY(first.isFirst());
}

void TestSingleInstanceChannel::otherIdentifiersAreApart()
{
    SingleInstanceChannel one(QStringLiteral("one"));
    SingleInstanceChannel other(QStringLiteral("One"));
    SingleInstanceChannel path(QStringLiteral("../one"));
    QVERIFY(one.isFirst() && other.isFirst() && path.isFirst());
}

void TestSingleInstanceChannel::secondBecomesFirstWhenTheFirstEnds()
{
    QScopedPointer<SingleInstanceChannel> first(new SingleInstanceChannel(kId));
    SingleInstanceChannel second(kId);
    QVERIFY(!second.isFirst());
    first.reset();
    QVERIFY(!QFile::exists(SingleInstanceChannel::lockFileName(kId)));
    QVERIFY(second.isFirst());

    MessageLog log;
    connect(&second, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    const Sending sending("to the new one");
    QTRY_COMPARE(log.messages, QStringList("to the new one"));
}

void TestSingleInstanceChannel::startWaitsForAnAnnouncedEnd()
{
    auto first = std::make_unique<SingleInstanceChannel>(kId);
    SingleInstanceChannel second(kId);
    first->announceEnd();
    QVERIFY(!second.isFirst());
    QVERIFY(!second.send(QStringLiteral("show"), 50)); // there is no listener any more
    std::thread ending([&first] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100)); // so that the second one has to wait
        first.reset();
    });
    const bool inItsPlace = second.waitForEndOfFirst(kSendMs);
    ending.join();
    QVERIFY(inItsPlace);
    QVERIFY(second.isFirst());
    QVERIFY(!QFileInfo::exists(SingleInstanceChannel::endMarkName(kId)));

    // The one that waited is an ordinary first one now.
    MessageLog log;
    connect(&second, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    Sending third(QStringLiteral("show"));
    QTRY_COMPARE(log.messages, QStringList(QStringLiteral("show")));
}

void TestSingleInstanceChannel::noWaitWithoutAnAnnouncement()
{
    const SingleInstanceChannel first(kId);
    SingleInstanceChannel second(kId);
    QVERIFY(!second.waitForEndOfFirst(std::numeric_limits<int>::max()));
}

void TestSingleInstanceChannel::firstThatEndsForEverIsNotWaitedForWithoutLimit()
{
    SingleInstanceChannel first(kId);
    SingleInstanceChannel second(kId);
    first.announceEnd();
    QVERIFY(!second.waitForEndOfFirst(50));
}

void TestSingleInstanceChannel::endIsAnnouncedByTheFirstAlone()
{
    const SingleInstanceChannel first(kId);
    SingleInstanceChannel second(kId);
    second.announceEnd();
    QVERIFY(!QFileInfo::exists(SingleInstanceChannel::endMarkName(kId)));
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    Sending third(QStringLiteral("show"));
    QTRY_COMPARE(log.messages, QStringList(QStringLiteral("show")));
}

void TestSingleInstanceChannel::namesCarryTheUser()
{
    QVERIFY(!userId().isEmpty());
    QVERIFY(SingleInstanceChannel::lockFileName(kId).endsWith("-" + userId() + ".lock"));
    QVERIFY(SingleInstanceChannel::serverAddress(kId).endsWith("-" + userId()));
    QCOMPARE(QFileInfo(SingleInstanceChannel::lockFileName(kId)).path(), folder->path());
}

void TestSingleInstanceChannel::onlyTheUserMayConnect()
{
    const SingleInstanceChannel first(kId);
    const QFileInfo socket(SingleInstanceChannel::serverAddress(kId));
    if (!socket.exists())
        QSKIP("the server is no file here");
    const QFileDevice::Permissions others =
        QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther | QFileDevice::WriteOther;
    QCOMPARE(socket.permissions() & others, QFileDevice::Permissions());
    QVERIFY(socket.permission(QFileDevice::WriteOwner));
}

void TestSingleInstanceChannel::carriesMessages_data()
{
    QTest::addColumn<QString>("message");
    QTest::newRow("show") << "show";
    QTest::newRow("empty") << "";
    QTest::newRow("two languages") << QStringLiteral("zeigen, 显示 \U0001F5A5");
    QTest::newRow("with a zero inside") << QString::fromLatin1("a\0b", 3);
    QTest::newRow("longest") << QString(int(SingleInstanceChannel::kMessageBytesMax), 'x');
}

void TestSingleInstanceChannel::carriesMessages()
{
    QFETCH(QString, message);
    SingleInstanceChannel first(kId);
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    Sending sending(message);
    QTRY_COMPARE(log.messages, QStringList(message));
    sending.wait();
    QVERIFY(sending.sent);
}

void TestSingleInstanceChannel::tooLongAMessageIsNotSent()
{
    const SingleInstanceChannel first(kId);
    const SingleInstanceChannel second(kId);
    QElapsedTimer time;
    time.start();
    QVERIFY(!second.send(QString(int(SingleInstanceChannel::kMessageBytesMax) + 1, 'x'), 60000));
    QVERIFY(time.elapsed() < 60000); // at once, not for want of an answer
}

void TestSingleInstanceChannel::manyMessages()
{
    SingleInstanceChannel first(kId);
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    QList<Sending *> all;
    QStringList expected;
    for (int i = 10; i < 30; ++i) {
        expected.append(QString::number(i));
        all.append(new Sending(expected.last()));
    }
    QTRY_COMPARE(log.messages.size(), expected.size());
    log.messages.sort();
    QCOMPARE(log.messages, expected);
    for (Sending *sending : qAsConst(all)) {
        sending->wait();
        QVERIFY(sending->sent);
    }
    qDeleteAll(all);
}

void TestSingleInstanceChannel::noListener()
{
    const SingleInstanceChannel alone(QStringLiteral("alone"));
    const SingleInstanceChannel other(kId);
    QVERIFY(QFile::remove(SingleInstanceChannel::serverAddress(kId)));
    QVERIFY(!other.send("show", 50));
}

void TestSingleInstanceChannel::firstThatIsBusyTimesOut()
{
    const SingleInstanceChannel first(kId); // its event loop does not run here
    const SingleInstanceChannel second(kId);
    QElapsedTimer time;
    time.start();
    QVERIFY(!second.send("show", 100));
    QVERIFY(time.elapsed() >= 99);
    QVERIFY(time.elapsed() < kSendMs);
}

void TestSingleInstanceChannel::waitsForAServerThatComesUp()
{
    QScopedPointer<SingleInstanceChannel> first(new SingleInstanceChannel(kId));
    QVERIFY(QFile::remove(SingleInstanceChannel::serverAddress(kId))); // as before it listens
    Sending sending("show");
    QVERIFY(!sending.wait(100)); // it keeps trying
    first.reset();
    first.reset(new SingleInstanceChannel(kId));
    QVERIFY(first->isFirst());
    MessageLog log;
    connect(first.data(), SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    QTRY_COMPARE(log.messages, QStringList("show"));
    sending.wait();
    QVERIFY(sending.sent);
}

void TestSingleInstanceChannel::lateMessageStillArrives()
{
    SingleInstanceChannel first(kId);
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    const SingleInstanceChannel second(kId);
    QVERIFY(!second.send("show", 50)); // given up by its sender
    QTRY_COMPARE(log.messages, QStringList("show"));
}

void TestSingleInstanceChannel::strayLockFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty, its process was killed while making it") << QByteArray();
    QTest::newRow("rubbish") << QByteArray("rubbish\n");
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    const QByteArray programAndHost = "\nOvrynDeck2\n" + QSysInfo::machineHostName().toUtf8() + "\n";
    QTest::newRow("process that cannot exist") << "2147483646" + programAndHost;
    QTest::newRow("living process of another program")
        << QByteArray::number(QCoreApplication::applicationPid()) + programAndHost;
    QTest::newRow("killed process whose number is this one's now") << lockTextOfThisProcess();
}

void TestSingleInstanceChannel::strayLockFiles()
{
    QFETCH(QByteArray, text);
    writeFile(SingleInstanceChannel::lockFileName(kId), text);
    SingleInstanceChannel first(kId);
    QVERIFY(first.isFirst());
    SingleInstanceChannel second(kId);
    QVERIFY(!second.isFirst());
}

void TestSingleInstanceChannel::staleSocketIsReplaced()
{
    writeFile(SingleInstanceChannel::serverAddress(kId), "not a socket");
    SingleInstanceChannel first(kId);
    QVERIFY(first.isFirst());
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    const Sending sending("show");
    QTRY_COMPARE(log.messages, QStringList("show"));
}

void TestSingleInstanceChannel::secondLeavesTheFirstsSocketAlone()
{
    SingleInstanceChannel first(kId);
    {
        SingleInstanceChannel second(kId);
        QVERIFY(!second.isFirst());
    }
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    const Sending sending("show");
    QTRY_COMPARE(log.messages, QStringList("show"));
}

void TestSingleInstanceChannel::withoutALockFileEverybodyIsFirst()
{
    // A name longer than any file system takes stands in for a folder that nobody may write to.
    const QString id(300, 'x');
    SingleInstanceChannel one(id);
    SingleInstanceChannel other(id);
    QVERIFY(one.isFirst());
    QVERIFY(other.isFirst());
}

void TestSingleInstanceChannel::hostilePeers_data()
{
    constexpr quint32 kMax = SingleInstanceChannel::kMessageBytesMax;
    const QByteArray megabytes(8000000, 'x');
    const QStringList none;
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("incomplete"); // more could come: cut off when its time is up, not before
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("nothing") << QByteArray() << true << none;
    QTest::newRow("half a length") << QByteArray("\0\0", 2) << true << none;
    QTest::newRow("less than announced") << frame(100, "short") << true << none;
    QTest::newRow("one byte less than the longest") << frame(kMax, QByteArray(int(kMax) - 1, 'x')) << true << none;
    QTest::newRow("one byte more than allowed") << frame(kMax + 1, "x") << false << none;
    QTest::newRow("largest length") << frame(0xFFFFFFFF, "x") << false << none;
    QTest::newRow("sign bit") << frame(0x80000000, "x") << false << none;
    QTest::newRow("request of another protocol") << QByteArray("GET / HTTP/1.1\r\n\r\n") << false << none;
    QTest::newRow("megabytes after too large a length") << frame(0xFFFFFFFF, megabytes) << false << none;
    QTest::newRow("more than announced") << frame(2, "okmore") << false << QStringList("ok");
    QTest::newRow("two messages at once") << frame(2, "ok") + frame(2, "no") << false << QStringList("ok");
    QTest::newRow("megabytes after a message") << frame(2, "ok" + megabytes) << false << QStringList("ok");
    QTest::newRow("no UTF-8") << frame(2, "\xFF\xFE") << false
                              << QStringList(QString(2, QChar::ReplacementCharacter));
}

void TestSingleInstanceChannel::hostilePeers()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, incomplete);
    QFETCH(QStringList, messages);
    SingleInstanceChannel first(kId);
    first.setPeerTimeout(incomplete ? 100 : 600000);
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));

    QLocalSocket peer;
    peer.connectToServer(SingleInstanceChannel::serverAddress(kId));
    QVERIFY(peer.waitForConnected(kSendMs));
    peer.write(bytes);
    QTRY_COMPARE(peer.state(), QLocalSocket::UnconnectedState);
    QCOMPARE(log.messages, messages);

    const Sending sending("show"); // and the next one is received
    QTRY_COMPARE(log.messages, messages + QStringList("show"));
}

void TestSingleInstanceChannel::silentPeersAreDropped()
{
    SingleInstanceChannel first(kId);
    first.setPeerTimeout(50);
    QLocalSocket peer;
    peer.connectToServer(SingleInstanceChannel::serverAddress(kId));
    QVERIFY(peer.waitForConnected(kSendMs));
    QTRY_COMPARE(peer.state(), QLocalSocket::UnconnectedState);
}

void TestSingleInstanceChannel::manySilentPeers()
{
    SingleInstanceChannel first(kId);
    first.setPeerTimeout(1000);
    MessageLog log;
    connect(&first, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    QList<QLocalSocket *> peers;
    for (int i = 0; i < 200; ++i) {
        peers.append(new QLocalSocket(this));
        peers.last()->connectToServer(SingleInstanceChannel::serverAddress(kId));
        QCoreApplication::processEvents(); // lets the first accept
    }
    const auto connected = [&peers]() {
        return std::count_if(peers.cbegin(), peers.cend(),
                             [](const QLocalSocket *peer) { return peer->state() == QLocalSocket::ConnectedState; });
    };
    QTRY_VERIFY(connected() <= 64); // those above the bound go at once
    QTRY_COMPARE(connected(), 0);   // the others when their time is up
    const Sending sending("show");
    QTRY_COMPARE(log.messages, QStringList("show"));
    qDeleteAll(peers);
}

QTEST_GUILESS_MAIN(TestSingleInstanceChannel)
#include "TestSingleInstanceChannel.moc"
