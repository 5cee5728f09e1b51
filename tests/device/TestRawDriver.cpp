#include "support/RawDriver.h"

#include <QtTest>

#include <cstring>

/// What the stand-in itself promises: no byte beyond the version's size, older entry sizes, no hidden success.
class TestRawDriver : public QObject
{
    Q_OBJECT

private slots:
    void writesWithinTheVersion_data();
    void writesWithinTheVersion();
    void unknownVersionWritesNothing();
    void olderEntrySizes();
    void textWithoutAnEnd();
    void failuresByCallNumber();
    void statusesInTurn();
    void failureThatFillsTheRecord();
    void ownDecisionComesFirst();
    void hookSeesEachCall();
    void loadsAndReleases();
    void unknownHandle();
    void callsWhileNotLoadedAreCounted();
};

namespace
{

constexpr quint8 kUntouched = 0xC7;

/// A record with room behind it, all of it marked.
struct Guarded
{
    explicit Guarded(quint32 version)
    {
        std::memset(bytes, kUntouched, sizeof bytes);
        std::memcpy(bytes, &version, sizeof version);
    }
    template <typename Record>
    Record *as()
    {
        return reinterpret_cast<Record *>(bytes);
    }
    [[nodiscard]] bool untouchedFrom(std::size_t offset) const
    {
        return std::all_of(bytes + offset, bytes + sizeof bytes, [](quint8 byte) { return byte == kUntouched; });
    }
    alignas(8) quint8 bytes[8192];
};

using Call = std::function<NvAPI_Status(NvPhysicalGpuHandle, Guarded &)>;

} // namespace

Q_DECLARE_METATYPE(Call)

void TestRawDriver::writesWithinTheVersion_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<quint32>("version");
    const auto rows = [](const char *name, std::initializer_list<quint32> versions, const Call &call) {
        for (const quint32 version : versions)
            QTest::addRow("%s 0x%X", name, version) << call << version;
    };
    rows("chipset", {0x400E8, 0x300D8, 0x20090}, [](NvPhysicalGpuHandle, Guarded &record) {
        return NvAPI_SYS_GetChipSetInfo(record.as<NvApiChipsetInfo>());
    });
    rows("memory", {0x30020, 0x20018, 0x10014}, [](NvPhysicalGpuHandle gpu, Guarded &record) {
        return NvAPI_GPU_GetMemoryInfo(gpu, record.as<NvApiMemoryInfo>());
    });
    rows("coolers", {0x40558, 0x30508, 0x203C8, 0x103C8, 0x10098}, [](NvPhysicalGpuHandle gpu, Guarded &record) {
        return NvAPI_GPU_GetCoolerSettings(gpu, 7, record.as<NvApiCoolerSettings>());
    });
    rows("states", {0x31CF8, 0x21CF8, 0x11C94}, [](NvPhysicalGpuHandle gpu, Guarded &record) {
        return NvAPI_GPU_GetPstates20(gpu, record.as<NV_GPU_PERF_PSTATES20_INFO>());
    });
    rows("thermal policies", {0x20068, 0x10058}, [](NvPhysicalGpuHandle gpu, Guarded &record) {
        return NvAPI_GPU_ClientThermalPoliciesGetInfo(gpu, record.as<NvApiThermalPoliciesInfo>());
    });
    rows("thermal status", {0x20038, 0x10028}, [](NvPhysicalGpuHandle gpu, Guarded &record) {
        return NvAPI_GPU_ClientThermalPoliciesGetStatus(gpu, record.as<NvApiThermalPoliciesStatus>());
    });
    rows("power policies", {0x100B8}, [](NvPhysicalGpuHandle gpu, Guarded &record) {
        return NvAPI_GPU_ClientPowerPoliciesGetInfo(gpu, record.as<NvApiPowerPoliciesInfo>());
    });
}

void TestRawDriver::writesWithinTheVersion()
{
    QFETCH(Call, call);
    QFETCH(quint32, version);
    RawDriver driver;
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    Guarded record(version);
    QCOMPARE(call(driver.handle(0), record), NVAPI_OK);
    QVERIFY(record.untouchedFrom(nvApiRecordSize(version)));
    QVERIFY(!record.untouchedFrom(nvApiRecordSize(version) - 1));
    quint32 versionNow = 0;
    std::memcpy(&versionNow, record.bytes, sizeof versionNow);
    QCOMPARE(versionNow, version);
    NvAPI_Unload();
}

void TestRawDriver::unknownVersionWritesNothing()
{
    RawDriver driver;
    driver.knows(Operation::NvAPI_GPU_GetMemoryInfo, {0x10014});
    NvAPI_Initialize();
    for (const quint32 version : {0x30020u, 0x20018u, 0u, 0x3FFFFu}) {
        Guarded record(version);
        QCOMPARE(NvAPI_GPU_GetMemoryInfo(driver.handle(0), record.as<NvApiMemoryInfo>()),
                 NVAPI_INCOMPATIBLE_STRUCT_VERSION);
        QVERIFY(record.untouchedFrom(sizeof(quint32)));
    }
    NvAPI_Unload();
}

void TestRawDriver::olderEntrySizes()
{
    RawDriver driver;
    driver.card().coolers.cooler[1].defaultMin = 0x1111;
    driver.card().thermalPolicies.entries[1].policyId = 0x2222;
    driver.card().thermalStatus.entries[1].policyId = 0x3333;
    NvAPI_Initialize();
    const auto wordAt = [](const Guarded &record, std::size_t offset) {
        quint32 word = 0;
        std::memcpy(&word, record.bytes + offset, sizeof word);
        return word;
    };
    const QVector<QPair<quint32, std::size_t>> strides = {
        {0x40558, 68}, {0x30508, 64}, {0x203C8, 48}, {0x103C8, 48}, {0x10098, 48}};
    for (const auto &[version, stride] : strides) {
        Guarded record(version);
        QCOMPARE(NvAPI_GPU_GetCoolerSettings(driver.handle(0), 7, record.as<NvApiCoolerSettings>()), NVAPI_OK);
        QCOMPARE(wordAt(record, 8 + stride + 8), 0x1111u);
    }
    Guarded info(0x10058);
    QCOMPARE(NvAPI_GPU_ClientThermalPoliciesGetInfo(driver.handle(0), info.as<NvApiThermalPoliciesInfo>()), NVAPI_OK);
    QCOMPARE(wordAt(info, 8 + 20), 0x2222u);
    Guarded status(0x10028);
    QCOMPARE(NvAPI_GPU_ClientThermalPoliciesGetStatus(driver.handle(0), status.as<NvApiThermalPoliciesStatus>()),
             NVAPI_OK);
    QCOMPARE(wordAt(status, 8 + 8), 0x3333u);
    NvAPI_Unload();
}

void TestRawDriver::textWithoutAnEnd()
{
    RawDriver driver;
    driver.card().fullName = std::string(200, 'x');
    NvAPI_Initialize();
    Guarded text(0);
    QCOMPARE(NvAPI_GPU_GetFullName(driver.handle(0), text.as<char>()), NVAPI_OK);
    QVERIFY(std::all_of(text.bytes, text.bytes + 64, [](quint8 byte) { return byte == 'x'; }));
    QVERIFY(text.untouchedFrom(64));
    NvAPI_Unload();
}

void TestRawDriver::failuresByCallNumber()
{
    RawDriver driver;
    NvAPI_Initialize();
    driver.fails(Operation::NvAPI_GPU_GetTachReading, -7, 2, 2);
    QVector<NvAPI_Status> statuses;
    for (int i = 0; i < 5; ++i) {
        quint32 rpm = 0;
        statuses << NvAPI_GPU_GetTachReading(driver.handle(0), &rpm);
    }
    QCOMPARE(statuses, (QVector<NvAPI_Status>{0, -7, -7, 0, 0}));
    NvAPI_Unload();
}

void TestRawDriver::statusesInTurn()
{
    RawDriver driver;
    NvAPI_Initialize();
    driver.fails(Operation::NvAPI_GPU_GetTachReading, -5);
    driver.clearFaults();
    driver.answersInTurn(Operation::NvAPI_GPU_GetTachReading, {-9, 0, -1});
    QVector<NvAPI_Status> statuses;
    for (int i = 0; i < 4; ++i) {
        quint32 rpm = 0;
        statuses << NvAPI_GPU_GetTachReading(driver.handle(0), &rpm);
    }
    QCOMPARE(statuses, (QVector<NvAPI_Status>{-9, 0, -1, 0}));
    NvAPI_Unload();
}

void TestRawDriver::failureThatFillsTheRecord()
{
    RawDriver driver;
    NvAPI_Initialize();
    const auto fan = [&driver](quint32 version) {
        NvApiCoolerSettings record{};
        record.version = version;
        const NvAPI_Status status = NvAPI_GPU_GetCoolerSettings(driver.handle(0), 7, &record);
        return QPair<NvAPI_Status, qint32>(status, record.cooler[0].currentLevel);
    };
    using Answer = QPair<NvAPI_Status, qint32>;
    driver.fails(Operation::NvAPI_GPU_GetCoolerSettings, -7);
    QCOMPARE(fan(0x40558), Answer(-7, 0));
    driver.fillsDespiteFailure(Operation::NvAPI_GPU_GetCoolerSettings);
    QCOMPARE(fan(0x40558), Answer(-7, 33));
    driver.clearFaults();
    driver.knows(Operation::NvAPI_GPU_GetCoolerSettings, {0x30508});
    QCOMPARE(fan(0x40558), Answer(-9, 33)); // the version does exist
    QCOMPARE(fan(0x40000), Answer(-9, 0));
    NvAPI_Unload();
}

void TestRawDriver::ownDecisionComesFirst()
{
    RawDriver driver;
    NvAPI_Initialize();
    driver.fails(Operation::NvAPI_GPU_GetTachReading, -7);
    bool decides = true;
    driver.decides = [&decides]() -> std::optional<NvAPI_Status> {
        if (decides)
            return -104;
        return std::nullopt;
    };
    quint32 rpm = 5;
    QCOMPARE(NvAPI_GPU_GetTachReading(nullptr, &rpm), -104);
    decides = false;
    QCOMPARE(NvAPI_GPU_GetTachReading(driver.handle(0), &rpm), -7);
    QCOMPARE(rpm, 5u);
    NvAPI_Unload();
}

void TestRawDriver::hookSeesEachCall()
{
    RawDriver driver;
    NvAPI_Initialize();
    int calls = 0;
    driver.onCall(Operation::NvAPI_GPU_GetTachReading, [&] {
        driver.card().tachRpm = 100 + quint32(++calls); // the answer comes after it
        if (calls == 2)
            driver.fails(Operation::NvAPI_GPU_GetTachReading, -1);
    });
    quint32 rpm = 0;
    QCOMPARE(NvAPI_GPU_GetTachReading(driver.handle(0), &rpm), NVAPI_OK);
    QCOMPARE(rpm, 101u);
    QCOMPARE(NvAPI_GPU_GetTachReading(driver.handle(0), &rpm), -1);
    quint32 type = 0;
    QCOMPARE(NvAPI_GPU_GetRamType(driver.handle(0), &type), NVAPI_OK);
    QCOMPARE(calls, 2);
    NvAPI_Unload();
}

void TestRawDriver::loadsAndReleases()
{
    RawDriver driver;
    bool releasing = false;
    driver.onRelease = [&] {
        releasing = driver.releases() == 0;
    };
    driver.libraryExists = false;
    QCOMPARE(NvAPI_Initialize(), NVAPI_LIBRARY_NOT_FOUND);
    QCOMPARE(driver.loads(), 0);
    driver.libraryExists = true;
    QCOMPARE(NvAPI_Initialize(), NVAPI_OK);
    QCOMPARE(driver.loads(), 1);
    NvAPI_Unload();
    QCOMPARE(driver.releases(), 0);
    NvAPI_Unload();
    QCOMPARE(driver.releases(), 1);
    QVERIFY(releasing);
}

void TestRawDriver::unknownHandle()
{
    RawDriver driver;
    NvAPI_Initialize();
    driver.forgetCalls();
    quint32 rpm = 5;
    QCOMPARE(NvAPI_GPU_GetTachReading(nullptr, &rpm), NVAPI_INVALID_HANDLE);
    QCOMPARE(NvAPI_GPU_GetTachReading(driver.handle(1), &rpm), NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE);
    QCOMPARE(rpm, 5u);
    QCOMPARE(driver.rawCalls(),
             (QStringList{"GPU_GetTachReading null -> -10", "GPU_GetTachReading unknown -> -101"}));
    NvAPI_Unload();
}

void TestRawDriver::callsWhileNotLoadedAreCounted()
{
    RawDriver driver;
    constexpr quint32 tachReading = 0x5F608315;
    using TachReading = NvAPI_Status(OVRYN_NVAPI_CALL *)(NvPhysicalGpuHandle, quint32 *);
    const auto entry = reinterpret_cast<TachReading>(driver.queryInterface()(tachReading));
    quint32 rpm = 0;
    entry(driver.handle(0), &rpm);
    QCOMPARE(driver.strayCalls(), 1);
    NvAPI_Initialize();
    entry(driver.handle(0), &rpm);
    QCOMPARE(driver.strayCalls(), 1);
    NvAPI_Unload();
    entry(driver.handle(0), &rpm);
    QCOMPARE(driver.strayCalls(), 2);
}

QTEST_APPLESS_MAIN(TestRawDriver)
#include "TestRawDriver.moc"
