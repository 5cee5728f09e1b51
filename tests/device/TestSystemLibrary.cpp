#include "device/NvGpuControl.h"

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

#include <cstdio>

namespace
{

constexpr const char *kProbe = "--probe";

/// The other process, whose library path is the test's: which driver does it find, and does a bus transfer reach it?
int probe()
{
    NvGpuControl gpu;
    int degrees = 0;
    const bool read = gpu.readBoardSensor(0x9E, degrees);
    std::printf("%s, sensor %s %d", gpu.getGpuName().c_str(), read ? "reads" : "fails at", degrees);
    return 0;
}

} // namespace

/// Which file the driver library is, and in what size its own library gets the record of a bus transfer.
class TestSystemLibrary : public QObject
{
    Q_OBJECT

private slots:
    void found_data();
    void found();
};

void TestSystemLibrary::found_data()
{
    QTest::addColumn<QString>("libraryPath");
    QTest::addColumn<QString>("versionsRefused");
    QTest::addColumn<QByteArray>("answer");
    const QString own = QStringLiteral(OVRYN_TEST_LIBRARIES "/card-driver");
    const QString standIn = QStringLiteral(OVRYN_TEST_LIBRARIES "/stand-in");
    const QString hollow = QStringLiteral(OVRYN_TEST_LIBRARIES "/without-entry");
    // clang-format off
    QTest::newRow("the card driver's own, transfer of version 3")    << own << "0" << QByteArray("card driver of its own, sensor reads 30");
    QTest::newRow("the card driver's own, transfer of version 2")    << own << "1" << QByteArray("card driver of its own, sensor reads 31");
    QTest::newRow("the card driver's own, transfer of version 1")    << own << "2" << QByteArray("card driver of its own, sensor reads 32");
    QTest::newRow("the card driver's own, no version")               << own << "3" << QByteArray("card driver of its own, sensor fails at 0");
    QTest::newRow("a stand-in goes before it")                       << own + ":" + standIn << "0" << QByteArray("stand-in, sensor reads 30");
    QTest::newRow("a stand-in alone, transfer of version 1")         << standIn << "2" << QByteArray("stand-in, sensor reads 32");
    QTest::newRow("a stand-in without the entry point is no driver") << hollow + ":" + own << "0" << QByteArray("card driver of its own, sensor reads 30");
    // clang-format on
}

void TestSystemLibrary::found()
{
    QFETCH(QString, libraryPath);
    QFETCH(QString, versionsRefused);
    QFETCH(QByteArray, answer);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_LIBRARY_PATH", libraryPath);
    environment.insert("OVRYN_TEST_VERSIONS_REFUSED", versionsRefused);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {kProbe});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardOutput(), answer);
    QCOMPARE(process.exitCode(), 0);
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == kProbe)
        return probe();
    TestSystemLibrary test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestSystemLibrary.moc"
