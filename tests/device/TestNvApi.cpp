#include "device/NvGpuControl.h"
#include "device/nvapi/NvApi.h"

#include "support/RawDriver.h"

#include <QElapsedTimer>
#include <QtTest>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <thread>

namespace
{

/// Calls an operation with all arguments 0, which is safe only where no driver gets the call.
template <typename... Arguments>
NvAPI_Status callWithZeros(NvAPI_Status (*operation)(Arguments...))
{
    return operation(Arguments{}...);
}

struct Entry
{
    const char *name;
    quint32 identifier;
    std::function<NvAPI_Status()> callWithZeros;
};

const std::vector<Entry> &entries()
{
    static const std::vector<Entry> table = {
#define OVRYN_TEST_ROW(identifier, name, parameters, arguments)                                                      \
    {#name, identifier, [] {                                                                                         \
         return callWithZeros(&name);                                                                                \
     }},
        OVRYN_NVAPI_OPERATIONS(OVRYN_TEST_ROW)
#undef OVRYN_TEST_ROW
    };
    return table;
}

/// Holds a thread until the test opens it.
class Gate
{
public:
    ~Gate() { open(); }
    void wait()
    {
        std::unique_lock<std::mutex> guard(mutex);
        reached = true;
        changed.wait(guard, [this] { return opened; });
    }
    void open()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        opened = true;
        changed.notify_all();
    }
    bool isReached()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return reached;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool reached = false;
    bool opened = false;
};

NvAPI_Status fullName(const RawDriver &driver)
{
    char name[kNvApiShortTextSize] = {};
    return NvAPI_GPU_GetFullName(driver.handle(0), name);
}

constexpr int kPollMs = 100;
constexpr int kPolls = 10;

} // namespace

/// The driver boundary: identifiers, loading and counting, missing entries, calls during an unload, threads.
class TestNvApi : public QObject
{
    Q_OBJECT

private slots:
    void identifiers_data();
    void identifiers();
    void withoutLibrary();
    void missingEntries();
    void loadCount();
    void tooManyUnloads();
    void failedLoadIsTriedAgain();
    void entriesAreAskedForOnce();
    void entriesAreForgottenWithTheLibrary();
    void argumentsAndStatusPassThrough();
    void callDuringUnload_data();
    void callDuringUnload();
    void callOutlivesAShortUnload();
    void manyThreads();
    void i2cSizeForTheCardDriver();
    void i2cSizeForStandIns();
};

void TestNvApi::identifiers_data()
{
    QTest::addColumn<quint32>("identifier");
    // clang-format off
    const struct { const char *name; quint32 identifier; } published[] = {
        {"NvAPI_Initialize",                         0x0150E828},
        {"NvAPI_Unload",                             0xD22BDD7E},
        {"NvAPI_GetErrorMessage",                    0x6C2D048C},
        {"NvAPI_EnumNvidiaDisplayHandle",            0x9ABDD40D},
        {"NvAPI_GetAssociatedDisplayOutputId",       0xD995937E},
        {"NvAPI_EnumPhysicalGPUs",                   0xE5AC921F},
        {"NvAPI_EnumTCCPhysicalGPUs",                0xD9930B07},
        {"NvAPI_SYS_GetDriverAndBranchVersion",      0x2926AAAD},
        {"NvAPI_SYS_GetChipSetInfo",                 0x53DABBCA},
        {"NvAPI_GPU_GetFullName",                    0xCEEE8E9F},
        {"NvAPI_GPU_GetPCIIdentifiers",              0x2DDFB66E},
        {"NvAPI_GPU_GetVbiosVersionString",          0xA561FD7D},
        {"NvAPI_GPU_GetRamType",                     0x57F7CAAC},
        {"NvAPI_GPU_GetFBWidthAndLocation",          0x11104158},
        {"NvAPI_GPU_GetMemoryInfo",                  0x07F9B368},
        {"NvAPI_GPU_GetAllClockFrequencies",         0xDCB616C3},
        {"NvAPI_GPU_GetDynamicPstatesInfoEx",        0x60DED2ED},
        {"NvAPI_GPU_GetThermalSettings",             0xE3640A56},
        {"NvAPI_GPU_GetCoolerSettings",              0xDA141340},
        {"NvAPI_GPU_SetCoolerLevels",                0x891FA0AE},
        {"NvAPI_GPU_GetTachReading",                 0x5F608315},
        {"NvAPI_GPU_GetPstates20",                   0x6FF81213},
        {"NvAPI_GPU_SetPstates20",                   0x0F4DAE6B},
        {"NvAPI_DriverEntry_B23B70EE",               0xB23B70EE},
        {"NvAPI_GPU_ClientPowerTopologyGetInfo",     0xA4DFD3F2},
        {"NvAPI_GPU_ClientPowerTopologyGetStatus",   0xEDCF624E},
        {"NvAPI_GPU_ClientPowerPoliciesGetInfo",     0x34206D86},
        {"NvAPI_GPU_ClientPowerPoliciesGetStatus",   0x70916171},
        {"NvAPI_GPU_ClientPowerPoliciesSetStatus",   0xAD95F5ED},
        {"NvAPI_GPU_ClientThermalPoliciesGetInfo",   0x0D258BB5},
        {"NvAPI_GPU_ClientThermalPoliciesGetStatus", 0xE9C425A1},
        {"NvAPI_GPU_ClientThermalPoliciesSetStatus", 0x34C0B13D},
        {"NvAPI_I2CRead",                            0x2FDE12C5},
        {"NvAPI_I2CReadEx",                          0x4D7B0709},
        {"NvAPI_I2CWrite",                           0xE812EB07},
        {"NvAPI_I2CWriteEx",                         0x283AC65A},
    };
    // clang-format on
    static_assert(std::size(published) == 36, "one row for each operation of the driver's interface");
    for (const auto &row : published)
        QTest::newRow(row.name) << row.identifier;
}

void TestNvApi::identifiers()
{
    QFETCH(quint32, identifier);
    QCOMPARE(entries().size(), std::size_t(36));
    const auto row = std::find_if(entries().begin(), entries().end(), [](const Entry &entry) {
        return QByteArray(entry.name) == QTest::currentDataTag();
    });
    QVERIFY(row != entries().end());
    QCOMPARE(row->identifier, identifier);
}

void TestNvApi::withoutLibrary()
{
    RawDriver driver;
    driver.libraryExists = false;
    const auto allAreRefused = [] {
        for (const Entry &entry : entries()) {
            const QByteArray name = entry.name;
            if (name != "NvAPI_Initialize" && name != "NvAPI_Unload" &&
                entry.callWithZeros() != NVAPI_LIBRARY_NOT_FOUND)
                return name;
        }
        return QByteArray();
    };
    QCOMPARE(allAreRefused(), QByteArray());
    QCOMPARE(NvAPI_Initialize(), NVAPI_LIBRARY_NOT_FOUND);
    QCOMPARE(allAreRefused(), QByteArray());
    QCOMPARE(NvAPI_Unload(), NVAPI_LIBRARY_NOT_FOUND);
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(allAreRefused(), QByteArray());

    // and again once the library has gone
    driver.libraryExists = true;
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    QCOMPARE(fullName(driver), NVAPI_OK);
    QCOMPARE(NvAPI_Unload(), NVAPI_OK);
    QCOMPARE(allAreRefused(), QByteArray());
    QCOMPARE(driver.strayCalls(), 0);
}

void TestNvApi::missingEntries()
{
    RawDriver driver;
    for (const Entry &entry : entries()) {
        const QByteArray name = entry.name;
        if (name != "NvAPI_Initialize" && name != "NvAPI_Unload")
            driver.lacks(simulated::operationNamed(entry.name));
    }
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    for (const Entry &entry : entries()) {
        const QByteArray name = entry.name;
        if (name != "NvAPI_Initialize" && name != "NvAPI_Unload")
            QVERIFY2(entry.callWithZeros() == NVAPI_NO_IMPLEMENTATION, entry.name);
    }
    NvAPI_Unload();
    QCOMPARE(nvApiLoadCount(), 0);
}

void TestNvApi::loadCount()
{
    RawDriver driver;
    QCOMPARE(nvApiLoadCount(), 0);
    for (int count = 1; count <= 3; ++count) {
        QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
        QCOMPARE(nvApiLoadCount(), count);
        QCOMPARE(driver.loads(), 1);
    }
    for (int count = 2; count >= 0; --count) {
        QCOMPARE(fullName(driver), NVAPI_OK);
        QCOMPARE(driver.releases(), 0);
        QCOMPARE(NvAPI_Unload(), NVAPI_OK);
        QCOMPARE(nvApiLoadCount(), count);
    }
    QCOMPARE(driver.releases(), 1);

    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    QCOMPARE(driver.loads(), 2);
    QCOMPARE(fullName(driver), NVAPI_OK);
    NvAPI_Unload();
    QCOMPARE(driver.releases(), 2);
}

void TestNvApi::tooManyUnloads()
{
    RawDriver driver;
    NvAPI_Unload();
    NvAPI_Initialize();
    NvAPI_Unload();
    NvAPI_Unload();
    QCOMPARE(driver.releases(), 1);
    QCOMPARE(driver.strayCalls(), 0);
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    QCOMPARE(nvApiLoadCount(), 1);
    QCOMPARE(fullName(driver), NVAPI_OK);
    NvAPI_Unload();
}

void TestNvApi::failedLoadIsTriedAgain()
{
    RawDriver driver;
    driver.libraryExists = false;
    QCOMPARE(NvAPI_Initialize(), NVAPI_LIBRARY_NOT_FOUND);
    driver.libraryExists = true;
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    QCOMPARE(fullName(driver), NVAPI_OK);
    NvAPI_Unload();
    QCOMPARE(driver.releases(), 0); // each start has its end, the failed one too
    NvAPI_Unload();
    QCOMPARE(driver.releases(), 1);
    QCOMPARE(nvApiLoadCount(), 0);
}

void TestNvApi::entriesAreAskedForOnce()
{
    RawDriver driver;
    NvAPI_Initialize();
    for (int i = 0; i < 5; ++i)
        fullName(driver);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_GetFullName).size(), 5);
    QCOMPARE(driver.queries(Operation::NvAPI_GPU_GetFullName), 1);
    NvAPI_Unload();
}

void TestNvApi::entriesAreForgottenWithTheLibrary()
{
    {
        RawDriver driver;
        NvAPI_Initialize();
        QCOMPARE(fullName(driver), NVAPI_OK);
        NvAPI_Unload();
    }
    RawDriver driver;
    driver.lacks(Operation::NvAPI_GPU_GetFullName);
    NvAPI_Initialize();
    QCOMPARE(fullName(driver), NVAPI_NO_IMPLEMENTATION);
    NvAPI_Unload();
}

void TestNvApi::argumentsAndStatusPassThrough()
{
    RawDriver driver;
    driver.fails(Operation::NvAPI_GPU_GetTachReading, -104);
    NvAPI_Initialize();
    driver.forgetCalls();
    quint32 rpm = 7;
    QCOMPARE(NvAPI_GPU_GetTachReading(driver.handle(0), &rpm), -104);
    QCOMPARE(rpm, 7u);
    QCOMPARE(NvAPI_DriverEntry_B23B70EE(driver.handle(0), 42), NVAPI_OK);
    quint32 width = 0;
    quint32 location = 0;
    QCOMPARE(NvAPI_GPU_GetFBWidthAndLocation(driver.handle(0), &width, &location), NVAPI_OK);
    QCOMPARE(width, 256u);
    QCOMPARE(driver.rawCalls(), (QStringList{"GPU_GetTachReading gpu0 -> -104", "DriverEntry_B23B70EE gpu0 value=42",
                                             "GPU_GetFBWidthAndLocation gpu0"}));
    NvAPI_Unload();
}

void TestNvApi::callDuringUnload_data()
{
    QTest::addColumn<bool>("inDriver");
    QTest::newRow("the driver is taking its leave") << true;
    QTest::newRow("the library is being released") << false;
}

void TestNvApi::callDuringUnload()
{
    QFETCH(bool, inDriver);
    RawDriver driver;
    Gate gate;
    if (inDriver)
        driver.onCall(Operation::NvAPI_Unload, [&] { gate.wait(); });
    else
        driver.onRelease = [&] {
            gate.wait();
        };
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    std::thread unloading([] { NvAPI_Unload(); });
    QTRY_VERIFY(gate.isReached());

    QElapsedTimer timer;
    timer.start();
    const NvAPI_Status status = fullName(driver);
    const qint64 elapsed = timer.elapsed();
    gate.open();
    unloading.join();
    QCOMPARE(status, NVAPI_ERROR);
    // nine or ten pauses, by whether one stands behind the last look
    QVERIFY2(elapsed >= kPollMs * (kPolls - 1), qPrintable(QString::number(elapsed)));
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_GetFullName), QStringList{});
    QCOMPARE(fullName(driver), NVAPI_LIBRARY_NOT_FOUND);
    QCOMPARE(nvApiLoadCount(), 0);
}

void TestNvApi::callOutlivesAShortUnload()
{
    RawDriver driver;
    Gate gate;
    driver.onCall(Operation::NvAPI_Unload, [&] { gate.wait(); });
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    std::thread unloading([] { NvAPI_Unload(); });
    QTRY_VERIFY(gate.isReached());

    std::atomic<bool> returned{false};
    NvAPI_Status status = NVAPI_OK;
    std::thread calling([&] {
        status = fullName(driver);
        returned = true;
    });
    gate.open();
    unloading.join();
    QTRY_VERIFY(returned.load());
    calling.join();
    // The library has gone by the time that the call gets through.
    QCOMPARE(status, NVAPI_LIBRARY_NOT_FOUND);
    QCOMPARE(driver.strayCalls(), 0);
}

void TestNvApi::manyThreads()
{
    RawDriver driver;
    std::atomic<int> wrong{0};
    const auto useTheDriver = [&] {
        for (int round = 0; round < 50; ++round) {
            NvGpuControl gpu;
            NvThermalInfo thermal;
            if (!gpu.isReady() || gpu.gpuCount() != 1 || !gpu.getThermalSensor(thermal) || thermal.currentTemp != 52)
                ++wrong;
        }
    };
    {
        NvGpuControl keepsTheLibrary;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back(useTheDriver);
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(nvApiLoadCount(), 1);
        QCOMPARE(driver.loads(), 1);
    }
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(nvApiLoadCount(), 0);

    // Loading and unloading against each other: a call may find no library, but never a released one.
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                if (NvAPI_Initialize() != NVAPI_OK || fullName(driver) != NVAPI_OK)
                    ++wrong;
                NvAPI_Unload();
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(driver.loads(), driver.releases());
    QCOMPARE(driver.strayCalls(), 0);
}

void TestNvApi::i2cSizeForTheCardDriver()
{
    RawDriver driver(RawDriver::I2cRecordSize::OfThisProcess);
    NvGpuControl gpu;
    driver.forgetCalls();
    int degrees = 0;
    QVERIFY(gpu.readBoardSensor(0x9E, degrees));
    QCOMPARE(degrees, 25);
    quint8 data[2] = {1, 2};
    QVERIFY(gpu.i2cWrite(0xAC, 0, 0, data, 2));

    // every version on every path
    const auto word = [](quint32 version, std::size_t size) {
        return "0x" + QString::number(version << 16 | quint32(size), 16).toUpper();
    };
    const QStringList words = {word(3, kI2cInfoSize3), word(2, kI2cInfoSize2), word(1, kI2cInfoSize1)};
    if (sizeof(void *) == 8)
        QCOMPARE(words, (QStringList{"0x30040", "0x20038", "0x10030"}));
    QCOMPARE(driver.versionsTried(Operation::NvAPI_I2CRead), words.mid(0, 1));
    QCOMPARE(driver.versionsTried(Operation::NvAPI_I2CWrite), words.mid(0, 1));
    driver.answersInTurn(Operation::NvAPI_I2CRead, {-9, -9, -9});
    driver.answersInTurn(Operation::NvAPI_I2CWrite, {-1});
    driver.answersInTurn(Operation::NvAPI_I2CWriteEx, {-9, -1, -9, -1});
    driver.forgetCalls();
    QVERIFY(!gpu.i2cRead(0x9E, 0, 1, data, 2));
    QCOMPARE(driver.versionsTried(Operation::NvAPI_I2CRead), words);
    QVERIFY(!gpu.i2cWrite(0xAC, 0, 0, data, 2));
    QCOMPARE(driver.versionsTried(Operation::NvAPI_I2CWriteEx),
             (QStringList{words[0], words[1], words[1], words[2]}));
}

void TestNvApi::i2cSizeForStandIns()
{
    RawDriver driver;
    NvGpuControl gpu;
    quint8 data[2] = {1, 2};
    driver.answersInTurn(Operation::NvAPI_I2CRead, {-9, -9});
    driver.forgetCalls();
    QVERIFY(gpu.i2cRead(0x9E, 0, 1, data, 2));
    QCOMPARE(driver.versionsTried(Operation::NvAPI_I2CRead), (QStringList{"0x3002C", "0x20024", "0x10020"}));
}

QTEST_APPLESS_MAIN(TestNvApi)
#include "TestNvApi.moc"
