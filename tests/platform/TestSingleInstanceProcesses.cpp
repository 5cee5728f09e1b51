#include "platform/SingleInstanceChannel.h"

#include "platform/RuntimeFolder.h"

#include <QProcess>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace
{

const QString kId = QStringLiteral("processes");
constexpr int kPatienceMs = 30000; // eight starts at once on a machine that is busy otherwise
constexpr int kStarts = 8;

/// One start of the helper program. Ends with the test.
class Start : public QProcess
{
public:
    explicit Start(const QStringList &arguments = {QStringLiteral("stay")}, const QString &id = kId)
    {
        QProcess::start(QStringLiteral(SINGLE_INSTANCE_HELPER), QStringList(id) + arguments);
        if (!waitForStarted(kPatienceMs))
            qFatal("the helper program does not start");
    }
    ~Start() override
    {
        kill();
        waitForFinished(kPatienceMs);
    }

    /// The lines that it has said so far.
    QStringList said()
    {
        output += readAllStandardOutput();
        return QString::fromUtf8(output).split('\n', Qt::SkipEmptyParts);
    }

    void killNow()
    {
        kill(); // cannot be caught, so its lock and its socket remain
        waitForFinished(kPatienceMs);
    }

private:
    QByteArray output;
};

/// The output of a start that sends the text and ends.
QStringList sendFromASecond(const QString &text, int timeoutMs = kPatienceMs)
{
    Start second({QStringLiteral("send"), text, QString::number(timeoutMs)});
    second.waitForFinished(kPatienceMs);
    return second.said();
}

} // namespace

class TestSingleInstanceProcesses : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder.reset(new RuntimeFolder); }
    void cleanup() { folder.reset(); }

    void secondStartEnds();
    void messageReachesTheFirst();
    void killedFirstLeavesAStaleLock();
    void numberOfAKilledFirstIsGivenAgain();
    void stoppedFirstTimesOut();
    void orderlyEndLeavesNothing();
    void startsAtOnce_data();
    void startsAtOnce();

private:
    QScopedPointer<RuntimeFolder> folder;
};

void TestSingleInstanceProcesses::secondStartEnds()
{
    Start first;
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList("first"), kPatienceMs);
    Start second;
    QVERIFY(second.waitForFinished(kPatienceMs));
    QCOMPARE(second.exitCode(), 0);
    QCOMPARE(second.said(), QStringList("second"));
    QCOMPARE(first.state(), QProcess::Running);
}

void TestSingleInstanceProcesses::messageReachesTheFirst()
{
    Start first;
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList("first"), kPatienceMs);
    QCOMPARE(sendFromASecond("show"), QStringList("sent"));
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList({"first", "message show"}), kPatienceMs);
    QCOMPARE(sendFromASecond("again"), QStringList("sent"));
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList({"first", "message show", "message again"}), kPatienceMs);
}

void TestSingleInstanceProcesses::killedFirstLeavesAStaleLock()
{
    Start killed;
    QTRY_COMPARE_WITH_TIMEOUT(killed.said(), QStringList("first"), kPatienceMs);
    killed.killNow();
    QVERIFY(QFile::exists(SingleInstanceChannel::lockFileName(kId)));

    Start first;
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList("first"), kPatienceMs);
    QCOMPARE(sendFromASecond("show"), QStringList("sent"));
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList({"first", "message show"}), kPatienceMs);
}

/// The lock file of a killed one names a living process of the same program, which holds another lock.
void TestSingleInstanceProcesses::numberOfAKilledFirstIsGivenAgain()
{
    const QString otherId = QStringLiteral("others");
    Start other({QStringLiteral("stay")}, otherId);
    QTRY_COMPARE_WITH_TIMEOUT(other.said(), QStringList("first"), kPatienceMs);
    QFile namesTheOther(SingleInstanceChannel::lockFileName(otherId));
    QVERIFY(namesTheOther.open(QIODevice::ReadOnly));
    QFile lock(SingleInstanceChannel::lockFileName(kId));
    QVERIFY(lock.open(QIODevice::WriteOnly));
    QVERIFY(lock.write(namesTheOther.readAll()) > 0);
    lock.close();

    Start first;
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList("first"), kPatienceMs);
    Start second;
    QTRY_COMPARE_WITH_TIMEOUT(second.said(), QStringList("second"), kPatienceMs);
}

void TestSingleInstanceProcesses::stoppedFirstTimesOut()
{
#ifdef Q_OS_UNIX
    Start first;
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList("first"), kPatienceMs);
    QCOMPARE(::kill(pid_t(first.processId()), SIGSTOP), 0);
    Start second;
    QVERIFY(second.waitForFinished(kPatienceMs));
    QCOMPARE(second.said(), QStringList("second")); // it holds its lock as long as it lives
    QCOMPARE(sendFromASecond("show", 200), QStringList("not sent"));
    QCOMPARE(::kill(pid_t(first.processId()), SIGCONT), 0);
    QCOMPARE(sendFromASecond("later"), QStringList("sent"));
    QTRY_VERIFY_WITH_TIMEOUT(first.said().contains("message later"), kPatienceMs);
#else
    QSKIP("needs signals");
#endif
}

void TestSingleInstanceProcesses::orderlyEndLeavesNothing()
{
    Start first;
    QTRY_COMPARE_WITH_TIMEOUT(first.said(), QStringList("first"), kPatienceMs);
    QCOMPARE(sendFromASecond("quit"), QStringList("sent"));
    QVERIFY(first.waitForFinished(kPatienceMs));
    QVERIFY(!QFile::exists(SingleInstanceChannel::lockFileName(kId)));
    QVERIFY(!QFile::exists(SingleInstanceChannel::serverAddress(kId)));
}

void TestSingleInstanceProcesses::startsAtOnce_data()
{
    QTest::addColumn<bool>("overAStaleLock");
    QTest::newRow("on clear ground") << false;
    QTest::newRow("over the lock of a killed one") << true;
}

void TestSingleInstanceProcesses::startsAtOnce()
{
    QFETCH(bool, overAStaleLock);
    if (overAStaleLock) {
        Start killed;
        QTRY_COMPARE_WITH_TIMEOUT(killed.said(), QStringList("first"), kPatienceMs);
        killed.killNow();
    }
    QList<Start *> starts;
    for (int i = 0; i < kStarts; ++i)
        starts.append(new Start);
    QStringList all;
    const auto everybodySpoke = [&]() {
        all.clear();
        for (Start *start : qAsConst(starts))
            all += start->said();
        return all.size() == kStarts;
    };
    QTRY_VERIFY_WITH_TIMEOUT(everybodySpoke(), kPatienceMs);
    QCOMPARE(all.count("first"), 1);
    QCOMPARE(all.count("second"), kStarts - 1);
    QCOMPARE(sendFromASecond("show"), QStringList("sent"));
    qDeleteAll(starts);
}

QTEST_GUILESS_MAIN(TestSingleInstanceProcesses)
#include "TestSingleInstanceProcesses.moc"
