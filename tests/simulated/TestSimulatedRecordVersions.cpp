#include "DriverCalls.h"
#include "TestScenes.h"

#include <QtTest>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

using namespace simulated;

namespace
{

constexpr quint8 kGuard = 0xA5;
constexpr std::size_t kGuardSize = 64;
constexpr quint32 kUnknownVersion = 0x70007;

/// What the I2C calls of a test point to.
struct BusBuffers
{
    quint8 reg = 0;
    std::vector<quint8> data;
    quint32 words[2] = {0, 0};
};

/// Size of the record as this process passes it: the I2C record holds pointers.
std::size_t sizeInMemory(Operation operation, quint32 version)
{
    const bool bus = operation == Operation::NvAPI_I2CRead || operation == Operation::NvAPI_I2CReadEx ||
                     operation == Operation::NvAPI_I2CWrite || operation == Operation::NvAPI_I2CWriteEx;
    if (!bus)
        return nvApiRecordSize(version);
    return version == kI2cInfoVersion3 ? kI2cInfoSize3 : version == kI2cInfoVersion2 ? kI2cInfoSize2 : kI2cInfoSize1;
}

template <class Record>
void put(void *bytes, std::size_t size, const Record &record)
{
    std::memcpy(bytes, &record, std::min(size, sizeof(Record)));
}

/// Prepares a good request of the operation within `size` bytes.
void prepare(Operation operation, quint32 version, void *bytes, std::size_t size, BusBuffers &bus)
{
    std::memset(bytes, 0, size);
    switch (operation) {
    case Operation::NvAPI_GPU_GetThermalSettings: {
        NvApiThermalSettings record{};
        record.count = kThermalSensorCount;
        put(bytes, size, record);
        break;
    }
    case Operation::NvAPI_GPU_SetCoolerLevels: {
        NvApiCoolerLevels record{};
        record.levels[0] = {55, kCoolerPolicyManual};
        put(bytes, size, record);
        break;
    }
    case Operation::NvAPI_GPU_SetPstates20: {
        NV_GPU_PERF_PSTATES20_INFO record{};
        record.numPstates = 1;
        record.numClocks = 1;
        record.pstates[0].clocks[0].freqDelta_kHz.value = 25000;
        put(bytes, size, record);
        break;
    }
    case Operation::NvAPI_GPU_ClientPowerTopologyGetStatus: {
        NvApiPowerTopologyStatus record{};
        record.count = 1;
        put(bytes, size, record);
        break;
    }
    case Operation::NvAPI_GPU_ClientPowerPoliciesGetStatus:
    case Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus: {
        NvApiPowerPoliciesStatus record{};
        record.count = 1;
        record.entries[0] = {2, 0, 90000, 0};
        put(bytes, size, record);
        break;
    }
    case Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus:
    case Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus: {
        NvApiThermalPoliciesStatus record{};
        record.count = 1;
        record.entries[0] = {1, 80 * 256, 0};
        put(bytes, size, record);
        break;
    }
    case Operation::NvAPI_I2CRead:
    case Operation::NvAPI_I2CReadEx:
    case Operation::NvAPI_I2CWrite:
    case Operation::NvAPI_I2CWriteEx: {
        const bool read = operation == Operation::NvAPI_I2CRead || operation == Operation::NvAPI_I2CReadEx;
        bus.data = read ? std::vector<quint8>(2) : std::vector<quint8>{0x05, 0x0A, 0x00, 0x00, 0xF0};
        NV_I2C_INFO record{};
        record.i2cDevAddress = read ? 0x9E : 0xA0;
        record.pbI2cRegAddress = &bus.reg;
        record.regAddrSize = read ? 1 : 0;
        record.pbData = bus.data.data();
        record.cbSize = static_cast<quint32>(bus.data.size());
        record.i2cSpeed = kI2cSpeedDeprecated;
        record.i2cSpeedKhz = NVAPI_I2C_SPEED_400KHZ;
        record.portId = 1;
        record.bIsPortIdSet = 1;
        put(bytes, size, record);
        break;
    }
    default:
        break;
    }
    std::memcpy(bytes, &version, sizeof(version));
}

NvAPI_Status callWith(const DriverCalls &calls, Operation operation, void *gpu, void *record, BusBuffers &bus)
{
#define OVRYN_CASE(name, type)                                                                                       \
    case Operation::name:                                                                                            \
        return calls.name(gpu, static_cast<type *>(record));
    switch (operation) {
        OVRYN_CASE(NvAPI_GPU_GetMemoryInfo, NvApiMemoryInfo)
        OVRYN_CASE(NvAPI_GPU_GetAllClockFrequencies, NvApiClockFrequencies)
        OVRYN_CASE(NvAPI_GPU_GetDynamicPstatesInfoEx, NvApiDynamicPstates)
        OVRYN_CASE(NvAPI_GPU_GetPstates20, NV_GPU_PERF_PSTATES20_INFO)
        OVRYN_CASE(NvAPI_GPU_SetPstates20, NV_GPU_PERF_PSTATES20_INFO)
        OVRYN_CASE(NvAPI_GPU_ClientPowerTopologyGetInfo, NvApiPowerTopologyInfo)
        OVRYN_CASE(NvAPI_GPU_ClientPowerTopologyGetStatus, NvApiPowerTopologyStatus)
        OVRYN_CASE(NvAPI_GPU_ClientPowerPoliciesGetInfo, NvApiPowerPoliciesInfo)
        OVRYN_CASE(NvAPI_GPU_ClientPowerPoliciesGetStatus, NvApiPowerPoliciesStatus)
        OVRYN_CASE(NvAPI_GPU_ClientPowerPoliciesSetStatus, NvApiPowerPoliciesStatus)
        OVRYN_CASE(NvAPI_GPU_ClientThermalPoliciesGetInfo, NvApiThermalPoliciesInfo)
        OVRYN_CASE(NvAPI_GPU_ClientThermalPoliciesGetStatus, NvApiThermalPoliciesStatus)
        OVRYN_CASE(NvAPI_GPU_ClientThermalPoliciesSetStatus, NvApiThermalPoliciesStatus)
        OVRYN_CASE(NvAPI_I2CRead, NV_I2C_INFO)
        OVRYN_CASE(NvAPI_I2CWrite, NV_I2C_INFO)
    case Operation::NvAPI_SYS_GetChipSetInfo:
        return calls.NvAPI_SYS_GetChipSetInfo(static_cast<NvApiChipsetInfo *>(record));
    case Operation::NvAPI_GPU_GetThermalSettings:
        return calls.NvAPI_GPU_GetThermalSettings(gpu, 0, static_cast<NvApiThermalSettings *>(record));
    case Operation::NvAPI_GPU_GetCoolerSettings:
        return calls.NvAPI_GPU_GetCoolerSettings(gpu, kAllCoolers, static_cast<NvApiCoolerSettings *>(record));
    case Operation::NvAPI_GPU_SetCoolerLevels:
        return calls.NvAPI_GPU_SetCoolerLevels(gpu, kAllCoolers, static_cast<NvApiCoolerLevels *>(record));
    case Operation::NvAPI_I2CReadEx:
        return calls.NvAPI_I2CReadEx(gpu, static_cast<NV_I2C_INFO *>(record), bus.words);
    case Operation::NvAPI_I2CWriteEx:
        return calls.NvAPI_I2CWriteEx(gpu, static_cast<NV_I2C_INFO *>(record), bus.words);
    default:
        return NVAPI_NO_IMPLEMENTATION;
    }
#undef OVRYN_CASE
}

} // namespace

class TestSimulatedRecordVersions : public QObject
{
    Q_OBJECT

private slots:
    void everyVersion_data();
    void everyVersion();
    void otherVersionsAreRefused_data();
    void otherVersionsAreRefused();
    void onlyKnownVersionsAnswer_data() { everyVersion_data(); }
    void onlyKnownVersionsAnswer();
};

void TestSimulatedRecordVersions::otherVersionsAreRefused_data()
{
    QTest::addColumn<int>("operation");
    for (std::size_t i = 0; i < kOperationCount; ++i) {
        const auto operation = static_cast<Operation>(i);
        if (!recordVersions(operation).empty())
            QTest::newRow(operationName(operation)) << static_cast<int>(i);
    }
}

void TestSimulatedRecordVersions::everyVersion_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<quint32>("version");
    for (std::size_t i = 0; i < kOperationCount; ++i) {
        const auto operation = static_cast<Operation>(i);
        for (const quint32 version : recordVersions(operation))
            QTest::addRow("%s at 0x%X", operationName(operation), version) << static_cast<int>(i) << version;
    }
}

void TestSimulatedRecordVersions::everyVersion()
{
    QFETCH(int, operation);
    QFETCH(quint32, version);
    CheckedDriver driver(twoCoolerScene());
    const DriverCalls calls = started(driver);
    const auto what = static_cast<Operation>(operation);
    const std::size_t size = sizeInMemory(what, version);
    BusBuffers bus;

    // the bytes behind the record must stay
    std::vector<quint64> guarded((size + kGuardSize) / sizeof(quint64) + 1);
    std::memset(guarded.data(), kGuard, guarded.size() * sizeof(quint64));
    prepare(what, version, guarded.data(), size, bus);
    QCOMPARE(callWith(calls, what, driver.handle(0), guarded.data(), bus), NVAPI_OK);
    const auto *behind = reinterpret_cast<const quint8 *>(guarded.data()) + size;
    QVERIFY(std::all_of(behind, behind + kGuardSize, [](quint8 byte) { return byte == kGuard; }));
    QCOMPARE(static_cast<quint32>(guarded[0]), version);

    // and a record that ends where its memory ends: a look behind it shows under the address sanitizer
    const std::unique_ptr<char[]> exact(new char[size]);
    prepare(what, version, exact.get(), size, bus);
    QCOMPARE(callWith(calls, what, driver.handle(0), exact.get(), bus), NVAPI_OK);
    QCOMPARE(driver.callRecords(what).size(), std::size_t(2));
    QCOMPARE(driver.callRecords(what).back().version.value(), version);
}

void TestSimulatedRecordVersions::otherVersionsAreRefused()
{
    QFETCH(int, operation);
    CheckedDriver driver(twoCoolerScene());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    const auto what = static_cast<Operation>(operation);
    const quint32 newest = recordVersions(what).front();
    // right size but wrong number, right number but wrong size, nothing at all
    for (const quint32 version : {kUnknownVersion, newest + 0x10000, newest + 4, newest & 0xFFFFu, 0u}) {
        BusBuffers bus;
        std::vector<quint64> record(0x2000 / sizeof(quint64));
        prepare(what, version, record.data(), sizeInMemory(what, newest), bus);
        const std::vector<quint64> before = record;
        QCOMPARE(callWith(calls, what, driver.handle(0), record.data(), bus), NVAPI_INCOMPATIBLE_STRUCT_VERSION);
        QVERIFY(record == before);
    }
}

void TestSimulatedRecordVersions::onlyKnownVersionsAnswer()
{
    QFETCH(int, operation);
    QFETCH(quint32, version);
    CheckedDriver driver(twoCoolerScene());
    const DriverCalls calls = started(driver);
    const auto what = static_cast<Operation>(operation);
    driver.knows(what, {version});
    for (const quint32 tried : recordVersions(what)) {
        BusBuffers bus;
        std::vector<quint64> record(0x2000 / sizeof(quint64));
        prepare(what, tried, record.data(), sizeInMemory(what, tried), bus);
        const NvAPI_Status expected = tried == version ? NVAPI_OK : NVAPI_INCOMPATIBLE_STRUCT_VERSION;
        QCOMPARE(callWith(calls, what, driver.handle(0), record.data(), bus), expected);
    }
}

QTEST_APPLESS_MAIN(TestSimulatedRecordVersions)
#include "TestSimulatedRecordVersions.moc"
