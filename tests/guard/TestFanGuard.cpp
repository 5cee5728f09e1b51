#include "guard/FanGuard.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// The fan guard's executable on simulated cards, and the program's side of it.
class TestFanGuard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void deathOfTheProgram_data();
    void deathOfTheProgram();
    void driverThatRefusesAtFirst();
    void driverThatIsGone();
    void guardLivesWhileACardIsWatched();
    void guardThatCannotBeStarted();

private:
    /// Cooler orders that the simulated driver got.
    [[nodiscard]] QStringList coolerOrders() const;
    [[nodiscard]] QProcessEnvironment environment() const;
    void useScenario(const QByteArray &json);

    std::unique_ptr<QTemporaryDir> folder;
};

void TestFanGuard::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    useScenario(R"({ "cards": [{}, {}, {}] })");
}

void TestFanGuard::useScenario(const QByteArray &json)
{
    QFile file(folder->filePath(QStringLiteral("scene.json")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(json) == json.size());
}

QProcessEnvironment TestFanGuard::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral(OVRYN_SIMULATED_DRIVER_FOLDER));
    environment.insert(QStringLiteral("NVAPI_SIM_SCENARIO"), folder->filePath(QStringLiteral("scene.json")));
    environment.insert(QStringLiteral("NVAPI_SIM_JOURNAL"), folder->filePath(QStringLiteral("journal")));
    return environment;
}

QStringList TestFanGuard::coolerOrders() const
{
    QStringList orders;
    QFile journal(folder->filePath(QStringLiteral("journal")));
    if (!journal.open(QIODevice::ReadOnly))
        return orders;
    for (const QByteArray &line : journal.readAll().split('\n')) {
        const QJsonObject call = QJsonDocument::fromJson(line).object();
        if (call.value(QStringLiteral("op")).toString() != QLatin1String("NvAPI_GPU_SetCoolerLevels"))
            continue;
        const QJsonObject arguments = call.value(QStringLiteral("args")).toObject();
        const QJsonObject level = arguments.value(QStringLiteral("levels")).toArray().at(0).toObject();
        orders << QStringLiteral("%1 policy %2 status %3")
                      .arg(call.value(QStringLiteral("gpu")).toInt(-1))
                      .arg(level.value(QStringLiteral("policy")).toInt(-1))
                      .arg(call.value(QStringLiteral("status")).toInt(1));
    }
    return orders;
}

void TestFanGuard::deathOfTheProgram_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("orders");
    QTest::newRow("no card") << QByteArray() << QStringList();
    QTest::newRow("a card") << QByteArray("watch 1\n") << QStringList{"1 policy 32 status 0"};
    QTest::newRow("two cards") << QByteArray("watch 2\nwatch 0\n")
                               << QStringList{"0 policy 32 status 0", "2 policy 32 status 0"};
    QTest::newRow("released") << QByteArray("watch 1\nrelease 1\n") << QStringList();
    QTest::newRow("line that was cut off") << QByteArray("watch 0\nwatch 1") << QStringList{"0 policy 32 status 0"};
}

void TestFanGuard::deathOfTheProgram()
{
    QFETCH(QByteArray, lines);
    QFETCH(QStringList, orders);
    QProcess guard;
    guard.setProcessEnvironment(environment());
    guard.start(QStringLiteral(OVRYN_FAN_GUARD), QStringList());
    QVERIFY(guard.waitForStarted());
    guard.write(lines);
    while (guard.bytesToWrite() > 0)
        QVERIFY(guard.waitForBytesWritten());
    QVERIFY(!QFile::exists(folder->filePath(QStringLiteral("journal")))); // the driver isn't loaded while it waits
    guard.closeWriteChannel();
    QVERIFY(guard.waitForFinished());
    QCOMPARE(guard.exitStatus(), QProcess::NormalExit);
    QCOMPARE(guard.exitCode(), 0);
    QCOMPARE(coolerOrders(), orders);
}

void TestFanGuard::driverThatRefusesAtFirst()
{
    useScenario(R"({ "cards": [{}], "faults": [
        { "operation": "NvAPI_GPU_SetCoolerLevels", "status": -1, "count": 2 }] })");
    QProcess guard;
    guard.setProcessEnvironment(environment());
    guard.start(QStringLiteral(OVRYN_FAN_GUARD), QStringList());
    guard.write("watch 0\n");
    guard.closeWriteChannel();
    QVERIFY(guard.waitForFinished());
    QCOMPARE(guard.exitCode(), 0);
    QCOMPARE(coolerOrders().last(), QStringLiteral("0 policy 32 status 0"));
}

void TestFanGuard::driverThatIsGone()
{
    useScenario(R"({ "cards": [] })");
    QProcess guard;
    guard.setProcessEnvironment(environment());
    guard.start(QStringLiteral(OVRYN_FAN_GUARD), QStringList());
    guard.write("watch 0\n");
    guard.closeWriteChannel();
    QVERIFY(guard.waitForFinished());
    QCOMPARE(guard.exitStatus(), QProcess::NormalExit);
    QVERIFY(guard.exitCode() != 0);
}

void TestFanGuard::guardLivesWhileACardIsWatched()
{
    FanGuard guard(QStringLiteral(OVRYN_FAN_GUARD));
    QCOMPARE(guard.processId(), qint64(0));
    guard.watch(0);
    const qint64 first = guard.processId();
    QVERIFY(first != 0);
    guard.watch(1);
    QCOMPARE(guard.processId(), first);
    guard.release(0);
    QCOMPARE(guard.processId(), first);
    guard.release(1);
    QCOMPARE(guard.processId(), qint64(0));
    QVERIFY(!QFile::exists(QStringLiteral("/proc/%1").arg(first)));
    guard.release(1); // it is not watched
    guard.watch(2);
    QVERIFY(guard.processId() != 0);
    guard.release(2);
}

void TestFanGuard::guardThatCannotBeStarted()
{
    FanGuard guard(folder->filePath(QStringLiteral("no such program")));
    guard.watch(0);
    guard.watch(1);
    guard.release(0);
    guard.release(1);
    QCOMPARE(guard.processId(), qint64(0));
}

QTEST_GUILESS_MAIN(TestFanGuard)
#include "TestFanGuard.moc"
