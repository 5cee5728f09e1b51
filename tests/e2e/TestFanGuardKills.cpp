#include "e2e/AdjustTest.h"

#include <QRandomGenerator>
#include <QTest>
#include <QThread>

/// A hundred kills of the real executable while it drives a fan along a curve: whatever the moment, the driver gets
/// the fan back, and no guard stays.
class TestFanGuardKills : public AdjustTest
{
    Q_OBJECT

private slots:
    void hundredKills();
    void guardThatDiesIsReplaced();
    void noGuardWithoutACurve();
    void guardIsSmall();
};

namespace
{

constexpr int kKills = 100;
constexpr quint32 kSeed = 20260301;
constexpr int kStartMs = 1500; ///< the curve's first order comes within this
constexpr int kCloseMs = 100;  ///< the fan is returned within this
constexpr qint64 kOwnMemoryMaxKB = 5 * 1024;

/// Memory of a process that it shares with no other, in KB.
qint64 ownMemoryKB(qint64 processId)
{
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(processId));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    qint64 sum = 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("Private_Clean:") || line.startsWith("Private_Dirty:"))
            sum += line.simplified().split(' ').value(1).toLongLong();
    }
    return sum;
}

/// Whether a process ignores SIGHUP, SIGINT and SIGTERM; a new one does so only after its first steps.
bool ignoresTheSession(qint64 processId)
{
    constexpr qulonglong wanted = 1ull << 0 | 1ull << 1 | 1ull << 14; // by signal number less one
    QFile file(QStringLiteral("/proc/%1/status").arg(processId));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("SigIgn:"))
            return (line.mid(7).trimmed().toULongLong(nullptr, 16) & wanted) == wanted;
    }
    return false;
}

} // namespace

void TestFanGuardKills::hundredKills()
{
    QRandomGenerator random(kSeed);
    int drivenBefore = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        const QByteArray round = "kill " + QByteArray::number(kill);
        InstalledProgram program(screen);
        program.useScenario(sceneOf({kSteadyCard}));
        program.writeConfig(configWith(cardSection(kUsualBoard, "FanMode=\"2\"")));
        QVERIFY2(program.start(), round);
        if (kill % 4 == 0) { // in its orderly end
            QTRY_VERIFY_WITH_TIMEOUT(!coolerWrites(program, 0).isEmpty(), kPatienceMs);
            QVERIFY2(program.signal("TERM"), round);
            QThread::msleep(random.bounded(kCloseMs));
        } else {
            QThread::msleep(random.bounded(kStartMs));
        }
        program.kill();
        QTRY_COMPARE_WITH_TIMEOUT(program.guards(), QList<qint64>(), kPatienceMs);
        const QStringList orders = coolerWrites(program, 0);
        if (orders.isEmpty())
            continue; // killed before the first
        ++drivenBefore;
        QVERIFY2(orders.last() == kFanToDriver, round + ": " + orders.join(", ").toUtf8());
    }
    qInfo("the curve had given orders before %d of %d kills", drivenBefore, kKills);
    QVERIFY(drivenBefore > kKills / 2);
}

void TestFanGuardKills::guardThatDiesIsReplaced()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    program.writeConfig(configWith(cardSection(kUsualBoard, "FanMode=\"2\"")));
    QVERIFY(startedWindow(program) != 0);
    QTRY_COMPARE_WITH_TIMEOUT(program.guards().size(), 1, kPatienceMs);
    const qint64 first = program.guards().constFirst();
    QCOMPARE(QProcess::execute(QStringLiteral("kill"), {QStringLiteral("-KILL"), QString::number(first)}), 0);
    QTRY_VERIFY_WITH_TIMEOUT(program.guards().size() == 1 && program.guards().constFirst() != first, kPatienceMs);
    // The signals that a session sends to all of its processes leave the new one alone.
    const qint64 next = program.guards().constFirst();
    QTRY_VERIFY_WITH_TIMEOUT(ignoresTheSession(next), kPatienceMs);
    const QString second = QString::number(next);
    for (const char *signal : {"-TERM", "-HUP", "-INT"})
        QCOMPARE(QProcess::execute(QStringLiteral("kill"), {QLatin1String(signal), second}), 0);
    QVERIFY(program.kill());
    QTRY_COMPARE_WITH_TIMEOUT(program.guards(), QList<qint64>(), kPatienceMs);
    QCOMPARE(coolerWrites(program, 0).last(), kFanToDriver);
}

void TestFanGuardKills::noGuardWithoutACurve()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    program.writeConfig(configWith(cardSection(kUsualBoard, "FanMode=\"1\" FanSpeedLevel=\"60\"")));
    QVERIFY(startedWindow(program) != 0);
    QTRY_VERIFY_WITH_TIMEOUT(!coolerWrites(program, 0).isEmpty(), kPatienceMs);
    QCOMPARE(program.guards(), QList<qint64>());
    const QStringList orders = coolerWrites(program, 0);
    QVERIFY(program.kill());
    QCOMPARE(coolerWrites(program, 0), orders); // the user's level stays
}

void TestFanGuardKills::guardIsSmall()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    program.writeConfig(configWith(cardSection(kUsualBoard, "FanMode=\"2\"")));
    QVERIFY(startedWindow(program) != 0);
    QTRY_COMPARE_WITH_TIMEOUT(program.guards().size(), 1, kPatienceMs);
    const qint64 memory = ownMemoryKB(program.guards().constFirst());
    qInfo("own memory of the guard: %lld KB", memory);
    QVERIFY(memory > 0 && memory < kOwnMemoryMaxKB);
}

int main(int argc, char **argv)
{
    return runProgramTest<TestFanGuardKills>(argc, argv);
}

#include "TestFanGuardKills.moc"
