#include "device/DeviceTest.h"

#include <QtTest>

#include <limits>

/// Power and temperature limits: reading, and the exact records of the writes.
class TestDevicePower : public QObject
{
    Q_OBJECT

private slots:
    void powerInfo_data();
    void powerInfo();
    void powerInfoCalls();
    void thermalPolicyInfo_data();
    void thermalPolicyInfo();
    void thermalPolicyInfoWithoutCardKeepsTheRecord();
    void setPowerLimit_data();
    void setPowerLimit();
    void setThermalLimit_data();
    void setThermalLimit();
    void setThermalPriority_data();
    void setThermalPriority();
};

void TestDevicePower::powerInfo_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<bool>("result");
    QTest::addColumn<FieldList>("info"); // lowest, highest, default, current, drawn, policy, present
    const auto row = [](const char *name, bool result, const FieldList &info, const Arrange &arrange) {
        QTest::newRow(name) << arrange << result << info;
    };
    const auto failing = [](Operation operation) {
        return Arrange([=](RawDriver &driver) { driver.fails(operation, NVAPI_ERROR); });
    };
    const FieldList nothing = {0, 0, 0, 0, 0, 0, 0};

    row("healthy card", true, {50, 120, 100, 110, 45, 2, 1}, [](RawDriver &) {});
    row("percents are cut", true, {49, 119, 99, 109, 44, 2, 1}, [](RawDriver &driver) {
        RawCard &card = driver.card();
        card.powerPolicies.entries[0].minPower = 49999;
        card.powerPolicies.entries[0].defaultPower = 99999;
        card.powerPolicies.entries[0].maxPower = 119999;
        card.powerStatus.entries[0].power = 109999;
        card.powerTopologyStatus.entries[0].power = 44999;
    });
    row("topology info fails", false, nothing, failing(Operation::NvAPI_GPU_ClientPowerTopologyGetInfo));
    row("topology not valid", false, nothing, [](RawDriver &driver) { driver.card().powerTopology.valid = 0; });
    row("any valid byte but 0 counts", true, {50, 120, 100, 110, 45, 2, 1}, [](RawDriver &driver) {
        driver.card().powerTopology.valid = 0xFE;
        driver.card().powerPolicies.valid = 0x80;
    });
    row("topology status fails", false, {0, 0, 0, 0, 0, 0, 1},
        failing(Operation::NvAPI_GPU_ClientPowerTopologyGetStatus));
    row("policies fail", false, {0, 0, 0, 0, 0, 0, 1}, failing(Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo));
    row("policies not valid", false, nothing, [](RawDriver &driver) { driver.card().powerPolicies.valid = 0; });
    row("policy status fails", false, {50, 120, 100, 0, 0, 2, 1},
        failing(Operation::NvAPI_GPU_ClientPowerPoliciesGetStatus));
    row("no policies", true, {0, 0, 0, 0, 0, 0, 1}, [](RawDriver &driver) {
        driver.card().powerPolicies.count = 0;
        driver.card().powerStatus.count = 0;
    });
    const auto twoPolicies = [](RawDriver &driver) {
        RawCard &card = driver.card();
        card.powerPolicies.count = 2;
        card.powerPolicies.entries[1] = {7, 9, 0, 20000, {}, 80000, {}, 90000, 0};
        card.powerStatus.count = 2;
        card.powerStatus.entries[1] = {7, 0, 85000, 0};
        card.powerTopology.count = 2;
        card.powerTopology.channelId[1] = 5;
        card.powerTopologyStatus.count = 2;
        card.powerTopologyStatus.entries[1] = {5, 0, 66000, 0};
    };
    row("the last policy stands", true, {20, 90, 80, 85, 45, 7, 1}, twoPolicies);
    row("second policy matches the second channel, which takes the first draw", true, {20, 90, 80, 85, 45, 7, 1},
        [twoPolicies](RawDriver &driver) {
            twoPolicies(driver);
            driver.card().powerPolicies.entries[0].domainId = 77;
            driver.card().powerPolicies.entries[1].domainId = 5;
        });
    row("first policy matches only the second channel", true, {20, 90, 80, 85, 0, 7, 1},
        [twoPolicies](RawDriver &driver) {
            twoPolicies(driver);
            driver.card().powerPolicies.entries[0].domainId = 5;
        });
    row("no channel of the domain", true, {50, 120, 100, 110, 0, 2, 1},
        [](RawDriver &driver) { driver.card().powerPolicies.entries[0].domainId = 77; });
    row("no channels", true, {50, 120, 100, 110, 0, 2, 1}, [](RawDriver &driver) {
        driver.card().powerTopology.count = 0;
        driver.card().powerTopologyStatus.count = 0;
    });
    row("counts far beyond the records", true, {10, 40, 30, 35, 45, 44, 1}, [](RawDriver &driver) {
        RawCard &card = driver.card();
        card.powerTopology.count = 255;
        card.powerTopologyStatus.count = 255;
        card.powerPolicies.count = 255;
        card.powerStatus.count = 255;
        for (quint32 i = 1; i < kPolicyEntries; ++i) {
            card.powerPolicies.entries[i] = {41 + i, 99, 0, 10000, {}, 30000, {}, 40000, 0};
            card.powerStatus.entries[i] = {41 + i, 0, 35000, 0};
        }
    });
}

void TestDevicePower::powerInfo()
{
    QFETCH(Arrange, arrange);
    QFETCH(bool, result);
    QFETCH(FieldList, info);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvPowerInfo out{9, 9, 9, 9, 9, 9, true};
    QCOMPARE(gpu.getPowerInfo(out), result);
    QCOMPARE(fields(out), info);
}

void TestDevicePower::powerInfoCalls()
{
    RawDriver driver;
    driver.card().powerTopology.count = 2;
    driver.card().powerTopology.channelId[1] = 5;
    driver.card().powerPolicies.count = 2;
    driver.card().powerPolicies.entries[1].policyId = 7;
    NvGpuControl gpu;
    driver.forgetCalls();
    NvPowerInfo out;
    QVERIFY(gpu.getPowerInfo(out));
    QCOMPARE(driver.rawCalls(), (QStringList{"GPU_ClientPowerTopologyGetInfo gpu0 0x10018",
                                             "GPU_ClientPowerTopologyGetStatus gpu0 0x10048 [4]=2 [8]=1 [24]=5",
                                             "GPU_ClientPowerPoliciesGetInfo gpu0 0x100B8",
                                             "GPU_ClientPowerPoliciesGetStatus gpu0 0x10048 [4]=2 [8]=2 [24]=7"}));
}

void TestDevicePower::thermalPolicyInfo_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<bool>("result");
    QTest::addColumn<FieldList>("info"); // lowest, highest, default, current, priority, policy, present
    const auto row = [](const char *name, bool result, const FieldList &info, const Arrange &arrange) {
        QTest::newRow(name) << arrange << result << info;
    };
    const FieldList nothing = {0, 0, 0, 0, 0, 0, 0};

    row("healthy card", true, {60, 90, 83, 80, 0, 3, 1}, [](RawDriver &) {});
    row("priority", true, {60, 90, 83, 80, 1, 3, 1},
        [](RawDriver &driver) { driver.card().thermalStatus.entries[0].flags = 1; });
    row("other flags are no priority", true, {60, 90, 83, 80, 0, 3, 1},
        [](RawDriver &driver) { driver.card().thermalStatus.entries[0].flags = 0xFFFFFFFE; });
    row("degrees are cut towards zero", true, {0, 90, 82, -1, 0, 3, 1}, [](RawDriver &driver) {
        driver.card().thermalPolicies.entries[0].minTemp = -255;
        driver.card().thermalPolicies.entries[0].defaultTemp = 83 * 256 - 1;
        driver.card().thermalPolicies.entries[0].maxTemp = 90 * 256 + 255;
        driver.card().thermalStatus.entries[0].temperature = -511;
    });
    row("not valid", false, nothing, [](RawDriver &driver) { driver.card().thermalPolicies.flags = 0xFE; });
    row("bit 0 among others is valid", true, {60, 90, 83, 80, 0, 3, 1},
        [](RawDriver &driver) { driver.card().thermalPolicies.flags = 0xFF; });
    row("no thermal policies known", false, nothing,
        [](RawDriver &driver) { driver.lacks(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo); });
    row("status fails", false, {60, 90, 83, 0, 0, 3, 1},
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus, NVAPI_ERROR); });
    row("the last policy stands", true, {10, 30, 20, 15, 1, 8, 1}, [](RawDriver &driver) {
        driver.card().thermalPolicies.count = 2;
        driver.card().thermalPolicies.entries[1] = {8, 0, 10 * 256, 20 * 256, 30 * 256, 0};
        driver.card().thermalStatus.count = 2;
        driver.card().thermalStatus.entries[1] = {8, 15 * 256, 1};
    });
    row("no entries", true, {0, 0, 0, 0, 0, 0, 1}, [](RawDriver &driver) {
        driver.card().thermalPolicies.count = 0;
        driver.card().thermalStatus.count = 0;
    });
    row("counts far beyond the records", true, {10, 30, 20, 15, 1, 8, 1}, [](RawDriver &driver) {
        driver.card().thermalPolicies.count = 255;
        driver.card().thermalPolicies.entries[3] = {8, 0, 10 * 256, 20 * 256, 30 * 256, 0};
        driver.card().thermalStatus.count = 255;
        driver.card().thermalStatus.entries[3] = {8, 15 * 256, 1};
    });
    // The shorter entries of the older versions are still walked at the stride of the newest: the first is right.
    row("older info version", true, {60, 90, 83, 80, 0, 3, 1},
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, {0x10058}); });
    row("older status version", true, {60, 90, 83, 80, 0, 3, 1},
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus, {0x10028}); });
    row("older info version with two entries reads the second one word late", true, {20, 2, 30, 15, 1, 0, 1},
        [](RawDriver &driver) {
            driver.knows(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, {0x10058});
            driver.card().thermalPolicies.count = 2;
            driver.card().thermalPolicies.entries[1] = {8, 0, 10 * 256, 20 * 256, 30 * 256, 0};
            driver.card().thermalPolicies.entries[2].policyId = 2 * 256;
            driver.card().thermalStatus.count = 2;
            driver.card().thermalStatus.entries[1] = {8, 15 * 256, 1};
        });
}

void TestDevicePower::thermalPolicyInfo()
{
    QFETCH(Arrange, arrange);
    QFETCH(bool, result);
    QFETCH(FieldList, info);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvThermalPolicyInfo out{9, 9, 9, 9, true, 9, true};
    QCOMPARE(gpu.getThermalPolicyInfo(out), result);
    QCOMPARE(fields(out), info);
}

void TestDevicePower::thermalPolicyInfoWithoutCardKeepsTheRecord()
{
    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    NvThermalPolicyInfo out{1, 2, 3, 4, true, 5, true};
    QCOMPARE(gpu.getThermalPolicyInfo(out), false);
    QCOMPARE(fields(out), (FieldList{1, 2, 3, 4, 1, 5, 1}));
}

void TestDevicePower::setPowerLimit_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<quint32>("policyId");
    QTest::addColumn<float>("percent");
    QTest::addColumn<int>("written"); // thousandths of a percent; -1 for no write
    QTest::addColumn<bool>("result");
    const auto row = [](
                         const char *name, quint32 policyId, float percent, int written, bool result,
                         const Arrange &arrange = [](RawDriver &) {}) {
        QTest::newRow(name) << arrange << policyId << percent << written << result;
    };
    row("in range", 2, 100, 100000, true);
    row("at the top", 2, 120, 120000, true);
    row("150 on a card of 120 at most", 2, 150, 120000, true);
    row("below the bottom", 2, 10, 50000, true);
    row("negative", 2, -10, 50000, true);
    // 100.1 as a 32-bit float lies below 100.1; scaled in double precision it stays below 100100
    row("broken percent", 2, 100.1f, 100099, true);
    row("a thousandth above the top is above", 2, 120.002f, 120000, true);
    const auto brokenRange = [](RawDriver &driver) {
        driver.card().powerPolicies.entries[0].minPower = 50999;
        driver.card().powerPolicies.entries[0].maxPower = 120999;
    };
    row("broken top is cut to whole percents", 2, 150, 120000, true, brokenRange);
    row("broken bottom is cut to whole percents", 2, 10, 50000, true, brokenRange);
    row("below a broken top", 2, 120.5f, 120500, true, brokenRange);
    row("no such policy", 5, 100, -1, false);
    row("no policies", 2, 100, -1, false, [](RawDriver &driver) { driver.card().powerPolicies.count = 0; });
    row("not valid", 2, 100, -1, false, [](RawDriver &driver) { driver.card().powerPolicies.valid = 0; });
    row("read fails", 2, 100, -1, false,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo, -1); });
    row("write fails", 2, 100, 100000, false,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus, -1); });
    row("second policy", 7, 100, 90000, true, [](RawDriver &driver) {
        driver.card().powerPolicies.count = 2;
        driver.card().powerPolicies.entries[1] = {7, 9, 0, 20000, {}, 80000, {}, 90000, 0};
    });
    row("count far beyond, policy not there", 5, 100, -1, false,
        [](RawDriver &driver) { driver.card().powerPolicies.count = 255; });
}

void TestDevicePower::setPowerLimit()
{
    QFETCH(Arrange, arrange);
    QFETCH(quint32, policyId);
    QFETCH(float, percent);
    QFETCH(int, written);
    QFETCH(bool, result);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setPowerLimit(policyId, percent), result);
    QStringList writes;
    if (written >= 0)
        writes << QString("GPU_ClientPowerPoliciesSetStatus gpu0 0x10048 [4]=1 [8]=%1 [16]=%2%3")
                      .arg(policyId)
                      .arg(written)
                      .arg(result ? QString() : QString(" -> -1"));
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus), writes);
    QCOMPARE(driver.rawCalls().size(), 1 + writes.size()); // one read before it, nothing behind it
}

void TestDevicePower::setThermalLimit_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<quint32>("policyId");
    QTest::addColumn<float>("degrees");
    QTest::addColumn<bool>("priority");
    QTest::addColumn<QStringList>("writes");
    QTest::addColumn<bool>("result");
    const auto row = [](
                         const char *name, quint32 policyId, float degrees, bool priority, const QStringList &writes,
                         bool result, const Arrange &arrange = [](RawDriver &) {}) {
        QTest::newRow(name) << arrange << policyId << degrees << priority << writes << result;
    };
    const auto write = [](const char *content) {
        return QStringList{QString("GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 ") + content};
    };
    row("in range", 3, 80, false, write("[4]=1 [8]=3 [12]=20480"), true);
    row("with priority", 3, 80, true, write("[4]=1 [8]=3 [12]=20480 [16]=1"), true);
    row("at the top", 3, 90, false, write("[4]=1 [8]=3 [12]=23040"), true);
    row("half a degree", 3, 80.5f, false, write("[4]=1 [8]=3 [12]=20608"), true);
    row("a thousandth above the top is cut to the top", 3, 90.001f, false, write("[4]=1 [8]=3 [12]=23040"), true);
    row("200 on a card of 90 at most is cut to the top", 3, 200, false, write("[4]=1 [8]=3 [12]=23040"), true);
    row("just above the top", 3, 90.25f, false, write("[4]=1 [8]=3 [12]=23040"), true);
    row("above a broken top", 3, 200, false, write("[4]=1 [8]=3 [12]=23295"), true,
        [](RawDriver &driver) { driver.card().thermalPolicies.entries[0].maxTemp = 90 * 256 + 255; });
    row("the largest number", 3, std::numeric_limits<float>::max(), false, write("[4]=1 [8]=3 [12]=23040"), true);
    row("below the bottom", 3, 20, false, write("[4]=1 [8]=3 [12]=15360"), true);
    row("negative", 3, -20, true, write("[4]=1 [8]=3 [12]=15360 [16]=1"), true);
    row("below a broken bottom", 3, 20, false, write("[4]=1 [8]=3 [12]=15360"), true,
        [](RawDriver &driver) { driver.card().thermalPolicies.entries[0].minTemp = 60 * 256 + 255; });
    row("below a negative broken bottom", 3, -20, false, write("[4]=1 [8]=3 [12]=-256"), true,
        [](RawDriver &driver) { driver.card().thermalPolicies.entries[0].minTemp = -256 - 255; });
    row("bottom above the top: what took the top stays", 3, 80, false, write("[4]=1 [8]=3 [12]=17920"), true,
        [](RawDriver &driver) {
            driver.card().thermalPolicies.entries[0].minTemp = 100 * 256;
            driver.card().thermalPolicies.entries[0].maxTemp = 70 * 256;
        });
    row("no such policy", 5, 80, false, {}, false);
    row("not valid", 3, 80, false, {}, false, [](RawDriver &driver) { driver.card().thermalPolicies.flags = 2; });
    row("read fails", 3, 80, false, {}, false,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, -1); });
    row("count far beyond, policy not there", 5, 80, false, {}, false,
        [](RawDriver &driver) { driver.card().thermalPolicies.count = 255; });
    row("second policy", 8, 25, false, write("[4]=1 [8]=8 [12]=6400"), true, [](RawDriver &driver) {
        driver.card().thermalPolicies.count = 2;
        driver.card().thermalPolicies.entries[1] = {8, 0, 10 * 256, 20 * 256, 30 * 256, 0};
    });
    const QString refused = "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3 [12]=20480 -> %1";
    const QString older = "GPU_ClientThermalPoliciesSetStatus gpu0 0x10028 [4]=1 [8]=3 [12]=20480";
    row("older version of the write", 3, 80, false, {refused.arg(-9), older}, true,
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus, {0x10028}); });
    row("write fails", 3, 80, false, {refused.arg(-1), older + " -> -1"}, false,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus, -1); });
    row("older version of the read", 3, 80, false, write("[4]=1 [8]=3 [12]=20480"), true,
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, {0x10058}); });
}

void TestDevicePower::setThermalLimit()
{
    QFETCH(Arrange, arrange);
    QFETCH(quint32, policyId);
    QFETCH(float, degrees);
    QFETCH(bool, priority);
    QFETCH(QStringList, writes);
    QFETCH(bool, result);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    QCOMPARE(gpu.setThermalLimit(policyId, degrees, priority), result);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus), writes);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus), QStringList{});
}

void TestDevicePower::setThermalPriority_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<quint32>("policyId");
    QTest::addColumn<int>("value");
    QTest::addColumn<QStringList>("calls");
    const auto row = [](
                         const char *name, quint32 policyId, int value, const QStringList &calls,
                         const Arrange &arrange = [](RawDriver &) {}) {
        QTest::newRow(name) << arrange << policyId << value << calls;
    };
    const QString read = "GPU_ClientThermalPoliciesGetStatus gpu0 0x20038 [4]=1 [8]=3";
    const QString write = "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3 [12]=20480";
    row("off", 3, 0, {kThermalInfoRead, read, write});
    row("on", 3, 1, {kThermalInfoRead, read, write + " [16]=1"});
    row("on keeps the other flags", 3, 1, {kThermalInfoRead, read, write + " [16]=7"},
        [](RawDriver &driver) { driver.card().thermalStatus.entries[0].flags = 6; });
    row("off keeps the other flags", 3, 0, {kThermalInfoRead, read, write + " [16]=6"},
        [](RawDriver &driver) { driver.card().thermalStatus.entries[0].flags = 7; });
    row("a value of 2", 3, 2, {kThermalInfoRead});
    row("a value of 255", 3, 255, {kThermalInfoRead});
    row("no such policy", 9, 1, {kThermalInfoRead});
    row("not valid", 3, 1, {kThermalInfoRead}, [](RawDriver &driver) { driver.card().thermalPolicies.flags = 0; });
    row("info fails", 3, 1,
        {"GPU_ClientThermalPoliciesGetInfo gpu0 0x20068 -> -1",
         "GPU_ClientThermalPoliciesGetInfo gpu0 0x10058 -> -1"},
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, -1); });
    const QString olderRead = "GPU_ClientThermalPoliciesGetStatus gpu0 0x10028 [4]=1 [8]=3";
    row("status fails", 3, 1, {kThermalInfoRead, read + " -> -1", olderRead + " -> -1"},
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus, -1); });
    row("write goes at the version that answered", 3, 1,
        {kThermalInfoRead, read + " -> -9", olderRead,
         "GPU_ClientThermalPoliciesSetStatus gpu0 0x10028 [4]=1 [8]=3 [12]=20480 [16]=1"},
        [](RawDriver &driver) { driver.knows(Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus, {0x10028}); });
    row("write is tried once", 3, 1, {kThermalInfoRead, read, write + " [16]=1 -> -9"},
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus, -9); });

    // Both policies are read, one is written: the first entry, under the name of the policy that is meant.
    const Arrange twoPolicies = [](RawDriver &driver) {
        driver.card().thermalPolicies.count = 2;
        driver.card().thermalPolicies.entries[1] = {8, 0, 10 * 256, 20 * 256, 90 * 256, 0};
        driver.card().thermalStatus.count = 2;
        driver.card().thermalStatus.entries[0].flags = 2;
        driver.card().thermalStatus.entries[1] = {8, 25 * 256, 4};
    };
    const QString readBoth = "GPU_ClientThermalPoliciesGetStatus gpu0 0x20038 [4]=2 [8]=3 [20]=8";
    const QString writeOne = "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=%1 [12]=%2 [16]=%3 "
                             "[20]=8 [24]=6400 [28]=4";
    row("two policies, the first", 3, 1, {kThermalInfoRead, readBoth, writeOne.arg(3).arg(20480).arg(3)},
        twoPolicies);
    // its own temperature and its own other flags
    row("two policies, the second", 8, 1, {kThermalInfoRead, readBoth, writeOne.arg(8).arg(6400).arg(5)},
        twoPolicies);
    row("two policies, the second, off", 8, 0, {kThermalInfoRead, readBoth, writeOne.arg(8).arg(6400).arg(4)},
        twoPolicies);
    row("two policies, neither", 5, 1, {kThermalInfoRead}, twoPolicies);
}

void TestDevicePower::setThermalPriority()
{
    QFETCH(Arrange, arrange);
    QFETCH(quint32, policyId);
    QFETCH(int, value);
    QFETCH(QStringList, calls);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    driver.forgetCalls();
    gpu.setThermalPriority(policyId, quint8(value));
    QCOMPARE(driver.rawCalls(), calls);
}

QTEST_APPLESS_MAIN(TestDevicePower)
#include "TestDevicePower.moc"
