#include "device/DeviceTest.h"

#include <QtTest>

#include <limits>

namespace
{

const char *const kReadTach = "GPU_GetTachReading gpu0";

QString readCooler(const char *version, NvAPI_Status status = 0)
{
    return QString("GPU_GetCoolerSettings gpu0 cooler=7 %1").arg(version) +
           (status ? QString(" -> %1").arg(status) : QString());
}

/// The calls that read the cooler settings; what a failed attempt left in the record does not matter.
QStringList coolerReads(const RawDriver &driver)
{
    QStringList lines = driver.rawCalls(Operation::NvAPI_GPU_GetCoolerSettings);
    return lines.replaceInStrings(QRegularExpression(" \\[\\d+\\]=-?\\d+"), "");
}

} // namespace

/// Reading the fans and setting their level.
class TestDeviceCooler : public QObject
{
    Q_OBJECT

private slots:
    void coolerInfo_data();
    void coolerInfo();
    void coolerInfoStatuses_data();
    void coolerInfoStatuses();
    void setCoolerLevel_data();
    void setCoolerLevel();
    void levelWithinTheCoolersRange_data();
    void levelWithinTheCoolersRange();
    void setDefaultLevel_data();
    void setDefaultLevel();
    void setCoolerAuto_data();
    void setCoolerAuto();
};

void TestDeviceCooler::coolerInfo_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<FieldList>("info"); // default max and min, rpm, rpm limits, level, policy
    const auto row = [](const char *name, const FieldList &info, const Arrange &arrange) {
        QTest::newRow(name) << arrange << info;
    };
    const auto secondFan = [](RawDriver &driver) {
        NvApiCoolerSettings::Cooler &fan = driver.card().coolers.cooler[1];
        fan = driver.card().coolers.cooler[0];
        fan.defaultMin = 20;
        fan.defaultMax = 90;
        fan.currentLevel = 44;
        fan.currentPolicy = kCoolerPolicyDefault;
        fan.tachMinRpm = 200;
        fan.tachMaxRpm = 2800;
        driver.card().coolers.count = 2;
    };
    row("one fan", {100, 27, 1200, 300, 3400, 33, 1}, [](RawDriver &) {});
    row("the last fan stands", {90, 20, 1200, 200, 2800, 44, 0x20}, secondFan);
    row("no tachometer block", {100, 27, 1200, 0, 0, 33, 1},
        [](RawDriver &driver) { driver.card().coolers.cooler[0].tachPresent = 0; });
    row("any tachometer byte but 0 counts", {100, 27, 1200, 300, 3400, 33, 1},
        [](RawDriver &driver) { driver.card().coolers.cooler[0].tachPresent = 0x80; });
    row("a last fan without a block keeps the limits of the first", {90, 20, 1200, 300, 3400, 44, 0x20},
        [secondFan](RawDriver &driver) {
            secondFan(driver);
            driver.card().coolers.cooler[1].tachPresent = 0;
        });
    row("no fan", {0, 0, 1200, 0, 0, 0, 0x20}, [](RawDriver &driver) { driver.card().coolers.count = 0; });
    row("tachometer unreadable", {100, 27, 0, 300, 3400, 33, 1},
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetTachReading, -1); });
    row("tachometer missing", {100, 27, 0, 300, 3400, 33, 1},
        [](RawDriver &driver) { driver.lacks(Operation::NvAPI_GPU_GetTachReading); });
    row("count far beyond the record", {88, 22, 1200, 111, 2222, 66, 2}, [](RawDriver &driver) {
        driver.card().coolers.count = 0xFFFFFFFF;
        NvApiCoolerSettings::Cooler &last = driver.card().coolers.cooler[19];
        last.defaultMin = 22;
        last.defaultMax = 88;
        last.currentLevel = 66;
        last.currentPolicy = 2;
        last.tachPresent = 1;
        last.tachMinRpm = 111;
        last.tachMaxRpm = 2222;
    });
    row("count one beyond the record", {0, 0, 1200, 300, 3400, 0, 0},
        [](RawDriver &driver) { driver.card().coolers.count = 21; });

    // Older entries are shorter, and walked at the newest stride all the same.
    row("version 3, one fan", {100, 27, 1200, 300, 3400, 33, 1},
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {0x30508}); });
    for (const quint32 version : {0x203C8u, 0x103C8u, 0x10098u}) {
        row(qPrintable(QString("version %1, one fan").arg(version, 0, 16)), {100, 27, 1200, 0, 0, 33, 1},
            [version](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {version}); });
        // 20 bytes late: the default levels are policies, the level is "active", the policy the next controller
        row(qPrintable(QString("version %1, second fan at the wrong stride").arg(version, 0, 16)),
            {0x20, 8, 1200, 0, 0, 1, 77}, [version, secondFan](RawDriver &driver) {
                secondFan(driver);
                driver.card().coolers.cooler[2].controller = 77;
                driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {version});
            });
    }
    // 4 bytes late
    row("version 3, second fan at the wrong stride", {27, 90, 1200, 2800, 0, 8, 0x1234},
        [secondFan](RawDriver &driver) {
            secondFan(driver);
            NvApiCoolerSettings::Cooler &fan = driver.card().coolers.cooler[1];
            fan.currentMin = 27;
            fan.target = 0x1234;
            fan.tachMinRpm = 0x101; // its low byte is taken for the presence byte
            driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {0x30508});
        });
    row("smallest version, count beyond the record", {0, 0, 0, 0, 0, 0, 0}, [](RawDriver &driver) {
        driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {0x10098});
        driver.card().coolers = {};
        driver.card().coolers.count = 0xFFFFFFFF;
        driver.card().tachRpm = 0;
    });
}

void TestDeviceCooler::coolerInfo()
{
    QFETCH(Arrange, arrange);
    QFETCH(FieldList, info);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvCoolerInfo out;
    out.tachMax = 99;
    out.currentPolicy = 99;
    QCOMPARE(gpu.getCoolerInfo(out), true);
    QCOMPARE(fields(out), info);

    NvExtremes extremes;
    gpu.getExtremes(extremes);
    QCOMPARE(fields(extremes.pairs[ExtremeTachRpm]), (FieldList{info[2], info[2]}));
}

void TestDeviceCooler::coolerInfoStatuses_data()
{
    QTest::addColumn<std::vector<int>>("statuses");
    QTest::addColumn<bool>("filled"); // a failing call leaves something in the record
    QTest::addColumn<bool>("result");
    QTest::addColumn<qint32>("level");
    QTest::addColumn<qint32>("foldedRpm");
    QTest::addColumn<QStringList>("calls");
    using Statuses = std::vector<int>;
    const auto row = [](const char *name, const Statuses &statuses, bool filled, bool result, qint32 level,
                        qint32 foldedRpm, const QStringList &calls) {
        QTest::newRow(name) << statuses << filled << result << level << foldedRpm << calls;
    };
    const QStringList newest = {"0x40558"};
    const QStringList all = {"0x40558", "0x30508", "0x203C8", "0x103C8", "0x10098"};
    row("success", {0}, false, true, 33, 1200, newest);
    row("unknown version", {-9, 0}, false, true, 33, 1200, all.mid(0, 2));
    row("four unknown versions", {-9, -9, -9, -9, 0}, false, true, 33, 1200, all);
    row("any failure goes on down the ladder", {-9, -1, -5, -104, 0}, false, true, 33, 1200, all);
    row("all versions unknown", {-9, -9, -9, -9, -9}, false, false, 0, 0, all);
    row("ladder ends in another failure", {-9, -9, -9, -9, -104}, false, false, 0, 0, all);
    row("error", {-1}, false, false, 0, 0, newest);
    row("error with a filled record", {-1}, true, false, 0, 0, newest);
    row("invalid argument", {-5}, true, false, 0, 0, newest);
    row("invalid handle", {-10}, true, false, 0, 0, newest);
    row("no physical card", {-101}, true, false, 0, 0, newest);
    row("another failure, nothing filled", {-104}, false, true, 0, 1200, newest);
    row("another failure, record filled", {-104}, true, true, 33, 1200, newest);
    row("no implementation", {-3}, false, true, 0, 1200, newest);
    row("a positive status", {5}, true, true, 33, 1200, newest);
}

void TestDeviceCooler::coolerInfoStatuses()
{
    QFETCH(std::vector<int>, statuses);
    QFETCH(bool, filled);
    QFETCH(bool, result);
    QFETCH(qint32, level);
    QFETCH(qint32, foldedRpm);
    QFETCH(QStringList, calls);
    RawDriver driver;
    driver.answersInTurn(Operation::NvAPI_GPU_GetCoolerSettings, statuses);
    if (filled)
        driver.fillsDespiteFailure(Operation::NvAPI_GPU_GetCoolerSettings);
    NvGpuControl gpu;
    driver.forgetCalls();
    NvCoolerInfo out;
    QCOMPARE(gpu.getCoolerInfo(out), result);
    QCOMPARE(out.currentLevel, level);
    QCOMPARE(out.currentPolicy, level ? 1 : 0x20);
    QCOMPARE(driver.versionsTried(Operation::NvAPI_GPU_GetCoolerSettings), calls);
    QCOMPARE(driver.rawCalls().value(0), QString(kReadTach));
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_GetTachReading).size(), 1);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GetErrorMessage),
             statuses.front() == -1 ? QStringList{"GetErrorMessage status=-1"} : QStringList{});

    NvExtremes extremes;
    gpu.getExtremes(extremes);
    QCOMPARE(fields(extremes.pairs[ExtremeTachRpm]), (FieldList{foldedRpm, foldedRpm}));
}

void TestDeviceCooler::setCoolerLevel_data()
{
    QTest::addColumn<qint32>("level");
    QTest::addColumn<qint32>("policy");
    QTest::addColumn<std::vector<int>>("statuses");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("calls"); // behind the read of the settings
    using Statuses = std::vector<int>;
    const auto write = [](const char *content) {
        return QString("GPU_SetCoolerLevels gpu0 cooler=7 0x100A4%1").arg(content);
    };
    // clang-format off
    QTest::newRow("manual")                 << 50 << 1    << Statuses{} << true << QStringList{write(" [4]=50 [8]=1"), kReadTach};
    QTest::newRow("performance")            << 50 << 2    << Statuses{} << true << QStringList{write(" [4]=50 [8]=2"), kReadTach};
    QTest::newRow("discrete temperature")   << 50 << 4    << Statuses{} << true << QStringList{write(" [4]=50 [8]=4"), kReadTach};
    QTest::newRow("continuous temperature") << 50 << 8    << Statuses{} << true << QStringList{write(" [4]=50 [8]=8"), kReadTach};
    QTest::newRow("driver's default")       << 50 << 0x20 << Statuses{} << true << QStringList{write(" [4]=50 [8]=32"), kReadTach};
    QTest::newRow("policy 3 is not set")    << 50 << 3    << Statuses{} << true << QStringList{write(" [4]=50"), kReadTach};
    QTest::newRow("policy 0x21 is not set") << 50 << 0x21 << Statuses{} << true << QStringList{write(" [4]=50"), kReadTach};
    QTest::newRow("policy 16 is not set")   << 50 << 16   << Statuses{} << true << QStringList{write(" [4]=50"), kReadTach};
    QTest::newRow("negative policy")        << 50 << -1   << Statuses{} << true << QStringList{write(" [4]=50"), kReadTach};
    QTest::newRow("level 0 is raised to the card's lowest") << 0 << 1 << Statuses{} << true << QStringList{write(" [4]=27 [8]=1"), kReadTach};
    QTest::newRow("level 100")              << 100 << 1   << Statuses{} << true << QStringList{write(" [4]=100 [8]=1"), kReadTach};
    QTest::newRow("level 101 is cut")       << 101 << 1   << Statuses{} << true << QStringList{write(" [4]=100 [8]=1"), kReadTach};
    QTest::newRow("level -2 is raised")     << -2 << 1    << Statuses{} << true << QStringList{write(" [4]=27 [8]=1"), kReadTach};
    // clang-format on
    const QString smaller = "GPU_SetCoolerLevels gpu0 cooler=7 0x1001C [4]=50 [8]=1";
    QTest::newRow("smaller form") << 50 << 1 << Statuses{-9} << true
                                  << QStringList{write(" [4]=50 [8]=1 -> -9"), smaller, kReadTach};
    QTest::newRow("smaller form after any failure")
        << 50 << 1 << Statuses{-104} << true << QStringList{write(" [4]=50 [8]=1 -> -104"), smaller, kReadTach};
    QTest::newRow("both refused") << 50 << 1 << Statuses{-9, -9} << false
                                  << QStringList{write(" [4]=50 [8]=1 -> -9"), smaller + " -> -9"};
}

void TestDeviceCooler::setCoolerLevel()
{
    QFETCH(qint32, level);
    QFETCH(qint32, policy);
    QFETCH(std::vector<int>, statuses);
    QFETCH(bool, result);
    QFETCH(QStringList, calls);
    RawDriver driver;
    driver.answersInTurn(Operation::NvAPI_GPU_SetCoolerLevels, statuses);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setCoolerLevel(level, policy), result);
    QCOMPARE(driver.rawCalls(), QStringList{readCooler("0x40558")} + calls);
}

void TestDeviceCooler::levelWithinTheCoolersRange_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<qint32>("level");
    QTest::addColumn<qint32>("written");
    const auto row = [](const char *name, qint32 level, qint32 written, const Arrange &arrange) {
        QTest::newRow(name) << arrange << level << written;
    };
    const auto range = [](quint32 minimum, quint32 maximum) {
        return [=](RawDriver &driver) {
            driver.card().coolers.cooler[0].defaultMin = qint32(minimum);
            driver.card().coolers.cooler[0].defaultMax = qint32(maximum);
        };
    };
    const auto unreadable = [](RawDriver &driver) {
        driver.fails(Operation::NvAPI_GPU_GetCoolerSettings, -1);
    };
    row("above the cooler's highest", 95, 80, range(30, 80));
    row("below the cooler's lowest", 0, 30, range(30, 80));
    row("fan of one level", 70, 40, range(40, 40));
    row("a highest below the lowest tells nothing", 90, 90, range(27, 0)); // would hold the fan at its lowest
    row("the smallest number", std::numeric_limits<qint32>::min(), 30, range(30, 80));
    row("settings unreadable, level in range", 50, 50, unreadable);
    row("settings unreadable, level above 100", 101, 100, unreadable);
    row("settings unreadable, negative level", -2, 0, unreadable);
    row("no cooler listed", 101, 100, [](RawDriver &driver) { driver.card().coolers.count = 0; });
    row("cooler without a range", 50, 50, range(0, 0)); // would stop the fan for good
    row("never above 100 percent", 500, 100, range(0, 0x7FFFFFFF));
    row("never below 0 percent", -500, 0, range(0x80000000U, 100));
    row("lowest beyond 100 percent", 50, 100, range(500, 900));
    row("the first of two fans", 0, 27, [](RawDriver &driver) {
        driver.card().coolers.count = 2;
        driver.card().coolers.cooler[1].defaultMin = 55;
        driver.card().coolers.cooler[1].defaultMax = 90;
    });
    row("oldest record", 0, 27,
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {0x10098}); });
}

void TestDeviceCooler::levelWithinTheCoolersRange()
{
    QFETCH(Arrange, arrange);
    QFETCH(qint32, level);
    QFETCH(qint32, written);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    QVERIFY(gpu.setCoolerLevel(level, 1));
    const QString levelWord = written ? QString(" [4]=%1").arg(written) : QString();
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_SetCoolerLevels),
             QStringList{QString("GPU_SetCoolerLevels gpu0 cooler=7 0x100A4%1 [8]=1").arg(levelWord)});
}

void TestDeviceCooler::setDefaultLevel_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<qint32>("policy");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("reads");
    QTest::addColumn<QStringList>("writes");
    const auto row = [](
                         const char *name, qint32 policy, bool result, const QStringList &reads,
                         const QStringList &writes, const Arrange &arrange = [](RawDriver &) {}) {
        QTest::newRow(name) << arrange << policy << result << reads << writes;
    };
    const QStringList newest = {readCooler("0x40558")};
    const QStringList write = {"GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [4]=27 [8]=8"};
    row("lowest level and policy of the card", 1, true, newest, write);
    row("the policy given is not looked at", 77, true, newest, write);
    row("the current level does not matter", 1, true, newest, write, [](RawDriver &driver) {
        driver.card().coolers.cooler[0].currentLevel = 99;
        driver.card().coolers.cooler[0].currentPolicy = 0x20;
    });
    row("the first of two fans", 1, true, newest, write, [](RawDriver &driver) {
        driver.card().coolers.count = 2;
        driver.card().coolers.cooler[1].defaultMin = 55;
    });
    row("any failure goes down", 1, true,
        {readCooler("0x40558", -1), readCooler("0x30508", -1), readCooler("0x203C8")}, write,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetCoolerSettings, -1, 1, 2); });
    row("smallest version", 1, true,
        {readCooler("0x40558", -9), readCooler("0x30508", -9), readCooler("0x203C8", -9), readCooler("0x103C8", -9),
         readCooler("0x10098")},
        write, [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {0x10098}); });
    row("settings unreadable", 1, false,
        {readCooler("0x40558", -10), readCooler("0x30508", -10), readCooler("0x203C8", -10),
         readCooler("0x103C8", -10), readCooler("0x10098", -10)},
        {}, [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetCoolerSettings, -10); });
    row("no smaller form of the write", 1, false, newest, {write[0] + " -> -9"},
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_SetCoolerLevels, {0x1001C}); });
}

void TestDeviceCooler::setDefaultLevel()
{
    QFETCH(Arrange, arrange);
    QFETCH(qint32, policy);
    QFETCH(bool, result);
    QFETCH(QStringList, reads);
    QFETCH(QStringList, writes);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setCoolerLevel(-1, policy), result);
    QCOMPARE(coolerReads(driver), reads);
    QCOMPARE(driver.rawCalls().mid(reads.size()), writes + (result ? QStringList{kReadTach} : QStringList{}));
}

void TestDeviceCooler::setCoolerAuto_data()
{
    QTest::addColumn<std::vector<int>>("statuses");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("calls");
    using Statuses = std::vector<int>;
    const QString newest = "GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [8]=32";
    const QString smaller = "GPU_SetCoolerLevels gpu0 cooler=7 0x1001C [8]=32";
    QTest::newRow("taken") << Statuses{} << true << QStringList{newest};
    QTest::newRow("smaller form") << Statuses{-1} << true << QStringList{newest + " -> -1", smaller};
    QTest::newRow("refused") << Statuses{-1, -9} << false << QStringList{newest + " -> -1", smaller + " -> -9"};
}

void TestDeviceCooler::setCoolerAuto()
{
    QFETCH(std::vector<int>, statuses);
    QFETCH(bool, result);
    QFETCH(QStringList, calls);
    RawDriver driver;
    driver.answersInTurn(Operation::NvAPI_GPU_SetCoolerLevels, statuses);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setCoolerAuto(), result);
    QCOMPARE(driver.rawCalls(), calls);
}

QTEST_APPLESS_MAIN(TestDeviceCooler)
#include "TestDeviceCooler.moc"
