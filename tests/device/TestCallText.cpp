#include "simulated/Call.h"
#include "support/CallText.h"
#include "support/RawDriver.h"

#include <QtTest>

#include <cstring>
#include <functional>

using Words = QVector<QPair<int, qint32>>; ///< byte offset in the record and the word there
using Invoke = std::function<NvAPI_Status(NvPhysicalGpuHandle, void *)>;
Q_DECLARE_METATYPE(Invoke)

/// The two texts of a call, from records that are written word by word.
class TestCallText : public QObject
{
    Q_OBJECT

private slots:
    void orders_data();
    void orders();
    void transfers();
    void callsWithoutARecord();
    void unknownVersion();
};

void TestCallText::orders_data()
{
    QTest::addColumn<Invoke>("invoke");
    QTest::addColumn<quint32>("version");
    QTest::addColumn<Words>("words");
    QTest::addColumn<QString>("named");
    QTest::addColumn<QString>("raw"); // the text of the words is added
    const auto row = [](const char *name, const char *operation, quint32 version, const Words &words,
                        const char *order, const Invoke &invoke) {
        QTest::newRow(name) << invoke << version << words << QString(order) << QString(operation);
    };
    const Invoke pstates = [](NvPhysicalGpuHandle gpu, void *record) {
        return NvAPI_GPU_SetPstates20(gpu, static_cast<NV_GPU_PERF_PSTATES20_INFO *>(record));
    };
    const Invoke coolers = [](NvPhysicalGpuHandle gpu, void *record) {
        return NvAPI_GPU_SetCoolerLevels(gpu, 7, static_cast<NvApiCoolerLevels *>(record));
    };
    const Invoke power = [](NvPhysicalGpuHandle gpu, void *record) {
        return NvAPI_GPU_ClientPowerPoliciesSetStatus(gpu, static_cast<NvApiPowerPoliciesStatus *>(record));
    };
    const Invoke thermal = [](NvPhysicalGpuHandle gpu, void *record) {
        return NvAPI_GPU_ClientThermalPoliciesSetStatus(gpu, static_cast<NvApiThermalPoliciesStatus *>(record));
    };
    // clang-format off
    row("graphics",          "GPU_SetPstates20 gpu0 0x31CF8", 0x31CF8, {{8, 1}, {12, 1}, {40, 100000}},          "graphics offset 100000 kHz", pstates);
    row("memory",            "GPU_SetPstates20 gpu0 0x11C94", 0x11C94, {{8, 1}, {12, 1}, {28, 4}, {40, -500}},   "memory offset -500 kHz", pstates);
    row("another domain",    "GPU_SetPstates20 gpu0 0x21CF8", 0x21CF8, {{8, 1}, {12, 1}, {28, 7}, {40, 1}},      "clock 7 offset 1 kHz", pstates);
    row("another state",     "GPU_SetPstates20 gpu0 0x31CF8", 0x31CF8, {{8, 1}, {12, 1}, {20, 8}, {40, 1}},      "P8 graphics offset 1 kHz", pstates);
    row("two clocks",        "GPU_SetPstates20 gpu0 0x31CF8", 0x31CF8, {{8, 1}, {12, 2}, {40, 1}, {72, 4}, {84, 2}}, "graphics offset 1 kHz, memory offset 2 kHz", pstates);
    row("voltage",           "GPU_SetPstates20 gpu0 0x31CF8", 0x31CF8, {{8, 1}, {16, 1}, {392, 10000}},          "voltage offset 10000 uV", pstates);
    row("over-voltage",      "GPU_SetPstates20 gpu0 0x31CF8", 0x31CF8, {{7316, 1}, {7332, 5000}},                "over-voltage 5000 uV", pstates);
    row("fan by hand",       "GPU_SetCoolerLevels gpu0 cooler=7 0x100A4", 0x100A4, {{4, 60}, {8, 1}},            "fan 60 % manual", coolers);
    row("fan by the driver", "GPU_SetCoolerLevels gpu0 cooler=7 0x1001C", 0x1001C, {{8, 32}},                    "fan 0 % automatic", coolers);
    row("another policy",    "GPU_SetCoolerLevels gpu0 cooler=7 0x100A4", 0x100A4, {{4, 1}, {8, 8}},             "fan 1 % policy 8", coolers);
    row("power",             "GPU_ClientPowerPoliciesSetStatus gpu0 0x10048", 0x10048, {{4, 1}, {8, 2}, {16, 115500}}, "power limit 115.5 %", power);
    row("temperature",       "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038", 0x20038, {{4, 1}, {8, 3}, {12, 21760}, {16, 1}}, "temperature limit 85 C first", thermal);
    row("its older record",  "GPU_ClientThermalPoliciesSetStatus gpu0 0x10028", 0x10028, {{4, 1}, {8, 3}, {12, 21760}}, "temperature limit 85 C", thermal);
    // clang-format on
}

void TestCallText::orders()
{
    QFETCH(Invoke, invoke);
    QFETCH(quint32, version);
    QFETCH(Words, words);
    QFETCH(QString, named);
    QFETCH(QString, raw);
    RawDriver driver;
    NvAPI_Initialize();
    driver.forgetCalls();
    alignas(8) quint8 record[8192] = {};
    std::memcpy(record, &version, sizeof version);
    for (const auto &[offset, word] : words) {
        std::memcpy(record + offset, &word, sizeof word);
        raw += QString(" [%1]=%2").arg(offset).arg(word);
    }
    const QString operation = raw.section(' ', 0, 0);
    QCOMPARE(invoke(driver.handle(0), record), NVAPI_OK);
    driver.fails(driver.callRecords().back().operation, -104);
    QCOMPARE(invoke(driver.handle(0), record), -104);

    QCOMPARE(driver.orders(), QStringList({named, named + " -> -104"}));
    QCOMPARE(driver.calls(), QStringList({operation + " gpu0 " + named, operation + " gpu0 " + named + " -> -104"}));
    QCOMPARE(driver.rawCalls(), QStringList({raw, raw + " -> -104"}));
    NvAPI_Unload();
}

void TestCallText::transfers()
{
    RawDriver driver;
    NvAPI_Initialize();
    driver.forgetCalls();
    quint8 reg = 0x1A;
    quint8 data[3] = {0x05, 0x0A, 0xF0};
    quint32 words[2] = {0, 9};
    NV_I2C_INFO info{};
    info.version = 0x3002C;
    info.displayMask = 2;
    info.bIsDDCPort = 1;
    info.i2cDevAddress = 0xA0;
    info.pbI2cRegAddress = &reg;
    info.regAddrSize = 1;
    info.pbData = data;
    info.cbSize = 3;
    info.i2cSpeed = 0xFFFF;
    info.i2cSpeedKhz = NVAPI_I2C_SPEED_400KHZ;
    info.portId = 4;
    info.bIsPortIdSet = 1;
    NvAPI_I2CWriteEx(driver.handle(0), &info, words);
    info.version = 0x10020;
    info.i2cDevAddress = 0x9E;
    info.displayMask = info.bIsDDCPort = 0;
    info.cbSize = 2;
    NvAPI_I2CRead(driver.handle(0), &info);
    QCOMPARE(driver.calls(), QStringList({"I2CWriteEx gpu0 port 4 0xA0: 05 0A F0", "I2CRead gpu0 0x9E 2 bytes"}));
    QCOMPARE(driver.rawCalls(),
             QStringList({"I2CWriteEx gpu0 0x3002C addr=A0 reg=1A regSize=1 size=3 speed=FFFF/6 port=4/1 mask=2 "
                          "ddc=1 words=0,9 data=05 0A F0",
                          "I2CRead gpu0 0x10020 addr=9E reg=1A regSize=1 size=2 speed=FFFF"}));
    QCOMPARE(driver.frames(0xA0), QStringList()); // an extended write is a second try
    info.i2cDevAddress = 0xA0;
    info.pbData = data;
    NvAPI_I2CWrite(driver.handle(0), &info);
    QCOMPARE(driver.frames(0xA0), QStringList("19 00")); // what the sensor gave
    QCOMPARE(driver.frames(0xA0, 1), QStringList());
    QCOMPARE(driver.frames(0xAC), QStringList());
    NvAPI_Unload();
}

void TestCallText::callsWithoutARecord()
{
    RawDriver driver;
    NvAPI_Initialize();
    driver.forgetCalls();
    char text[kNvApiShortTextSize] = {};
    NvAPI_GetErrorMessage(-5, text);
    NvAPI_DriverEntry_B23B70EE(driver.handle(0), 1);
    NvDisplayHandle display = nullptr;
    NvAPI_EnumNvidiaDisplayHandle(3, &display);
    QCOMPARE(driver.calls(), QStringList({"GetErrorMessage status -5", "DriverEntry_B23B70EE gpu0 restore entry 1",
                                          "EnumNvidiaDisplayHandle index 3 -> -7"}));
    QCOMPARE(driver.rawCalls(), QStringList({"GetErrorMessage status=-5", "DriverEntry_B23B70EE gpu0 value=1",
                                             "EnumNvidiaDisplayHandle index=3 -> -7"}));
    QCOMPARE(driver.orders(), QStringList("restore entry 1"));
    QCOMPARE(driver.versionsTried(Operation::NvAPI_GetErrorMessage), QStringList("none"));
    NvAPI_Unload();
}

/// Nothing of the record is shown, since nobody knows how long it is.
void TestCallText::unknownVersion()
{
    RawDriver driver;
    NvAPI_Initialize();
    driver.forgetCalls();
    NvApiCoolerLevels record{};
    record.version = 0x3FFFF;
    record.levels[0] = {60, 1};
    QCOMPARE(NvAPI_GPU_SetCoolerLevels(driver.handle(0), 7, &record), NVAPI_INCOMPATIBLE_STRUCT_VERSION);
    QCOMPARE(driver.calls(), QStringList("GPU_SetCoolerLevels gpu0 -> -9"));
    QCOMPARE(driver.rawCalls(), QStringList("GPU_SetCoolerLevels gpu0 0x3FFFF -> -9"));
    NvAPI_Unload();
}

QTEST_APPLESS_MAIN(TestCallText)
#include "TestCallText.moc"
