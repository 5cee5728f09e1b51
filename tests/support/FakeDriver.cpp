#include "support/FakeDriver.h"

#include <QByteArray>

#include <algorithm>
#include <atomic>
#include <cstring>

namespace
{

struct RecordVersions
{
    const char *operation;
    std::vector<quint32> versions;
};

/// The versions of each record as the driver's interface publishes them, newest first.
const std::vector<RecordVersions> &recordVersions()
{
    // clang-format off
    static const std::vector<RecordVersions> table = {
        {"NvAPI_SYS_GetChipSetInfo",                    {0x400E8, 0x300D8, 0x20090}},
        {"NvAPI_GPU_GetMemoryInfo",                     {0x30020, 0x20018, 0x10014}},
        {"NvAPI_GPU_GetAllClockFrequencies",            {0x30108, 0x20108, 0x10108}},
        {"NvAPI_GPU_GetDynamicPstatesInfoEx",           {0x10048}},
        {"NvAPI_GPU_GetThermalSettings",                {0x20044, 0x10044}},
        {"NvAPI_GPU_GetCoolerSettings",                 {0x40558, 0x30508, 0x203C8, 0x103C8, 0x10098}},
        {"NvAPI_GPU_SetCoolerLevels",                   {0x100A4, 0x1001C}},
        {"NvAPI_GPU_GetPstates20",                      {0x31CF8, 0x21CF8, 0x11C94}},
        {"NvAPI_GPU_SetPstates20",                      {0x31CF8, 0x21CF8, 0x11C94}},
        {"NvAPI_GPU_ClientPowerTopologyGetInfo",        {0x10018}},
        {"NvAPI_GPU_ClientPowerTopologyGetStatus",      {0x10048}},
        {"NvAPI_GPU_ClientPowerPoliciesGetInfo",        {0x100B8}},
        {"NvAPI_GPU_ClientPowerPoliciesGetStatus",      {0x10048}},
        {"NvAPI_GPU_ClientPowerPoliciesSetStatus",      {0x10048}},
        {"NvAPI_GPU_ClientThermalPoliciesGetInfo",      {0x20068, 0x10058}},
        {"NvAPI_GPU_ClientThermalPoliciesGetStatus",    {0x20038, 0x10028}},
        {"NvAPI_GPU_ClientThermalPoliciesSetStatus",    {0x20038, 0x10028}},
        {"NvAPI_I2CRead",                               {0x3002C, 0x20024, 0x10020}},
        {"NvAPI_I2CReadEx",                             {0x3002C, 0x20024, 0x10020}},
        {"NvAPI_I2CWrite",                              {0x3002C, 0x20024, 0x10020}},
        {"NvAPI_I2CWriteEx",                            {0x3002C, 0x20024, 0x10020}},
    };
    // clang-format on
    return table;
}

constexpr quintptr kFirstGpuHandle = 0x1000;

std::atomic<FakeDriver *> activeDriver{nullptr};

QString hexWord(quint32 word)
{
    return QStringLiteral("0x") + QString::number(word, 16).toUpper();
}

QString hexByte(uint byte)
{
    return QString::number(byte, 16).toUpper().rightJustified(2, QLatin1Char('0'));
}

quint32 wordAt(const void *record, std::size_t offset)
{
    quint32 word;
    std::memcpy(&word, static_cast<const quint8 *>(record) + offset, sizeof word);
    return word;
}

/// Every word behind the version word that is not 0.
QString wordsText(const void *record, std::size_t size)
{
    QString text;
    for (std::size_t offset = sizeof(quint32); offset + sizeof(quint32) <= size; offset += sizeof(quint32)) {
        if (const quint32 word = wordAt(record, offset))
            text += QStringLiteral(" [%1]=%2").arg(offset).arg(static_cast<qint32>(word));
    }
    return text;
}

} // namespace

struct FakeDriverEntries
{
    // clang-format off
#define OVRYN_FAKE_ENTRY(identifier, name, parameters, arguments)                                                      \
    static NvAPI_Status OVRYN_NVAPI_CALL name parameters { return activeDriver.load()->name arguments; }
    OVRYN_NVAPI_OPERATIONS(OVRYN_FAKE_ENTRY)
#undef OVRYN_FAKE_ENTRY
    // clang-format on

    struct Row
    {
        quint32 identifier;
        const char *operation;
        void *entry;
    };
    static const std::vector<Row> &rows()
    {
        static const std::vector<Row> table = {
#define OVRYN_FAKE_ROW(identifier, name, parameters, arguments) {identifier, #name, reinterpret_cast<void *>(&name)},
            OVRYN_NVAPI_OPERATIONS(OVRYN_FAKE_ROW)
#undef OVRYN_FAKE_ROW
        };
        return table;
    }

    static void *OVRYN_NVAPI_CALL queryInterface(quint32 identifier)
    {
        return activeDriver.load()->entryPoint(identifier);
    }
};

FakeDriver::FakeDriver(I2cRecordSize recordSize) : i2cRecordSize(recordSize)
{
    for (const FakeDriverEntries::Row &row : FakeDriverEntries::rows())
        behaviours[row.operation];
    for (const RecordVersions &row : recordVersions())
        behaviours.at(row.operation).versions = row.versions;
    if (i2cRecordSize == I2cRecordSize::OfThisProcess) {
        const std::vector<quint32> words = {quint32(0x30000 | kI2cInfoSize3), quint32(0x20000 | kI2cInfoSize2),
                                            quint32(0x10000 | kI2cInfoSize1)};
        for (const char *operation : {"NvAPI_I2CRead", "NvAPI_I2CReadEx", "NvAPI_I2CWrite", "NvAPI_I2CWriteEx"})
            knows(operation, words);
    }
    chipset.vendorId = 0x1234;
    std::strcpy(chipset.szVendorName, "Chipset maker");

    activeDriver = this;
    NvApiLibrarySource source;
    source.load = [this]() -> NvApiQueryInterface {
        const std::lock_guard<std::mutex> guard(mutex);
        if (!libraryExists)
            return nullptr;
        ++loadCount;
        loaded = true;
        return &FakeDriverEntries::queryInterface;
    };
    source.unload = [this] {
        if (onRelease)
            onRelease();
        const std::lock_guard<std::mutex> guard(mutex);
        ++releaseCount;
        loaded = false;
    };
    source.wantsNativeI2cSize = i2cRecordSize == I2cRecordSize::OfThisProcess;
    setNvApiLibrarySource(source);
}

FakeDriver::~FakeDriver()
{
    setNvApiLibrarySource({});
    activeDriver = nullptr;
}

NvPhysicalGpuHandle FakeDriver::handle(std::size_t cardIndex) const
{
    return reinterpret_cast<NvPhysicalGpuHandle>(kFirstGpuHandle + cardIndex);
}

FakeDriver::Behaviour &FakeDriver::behaviour(const char *operation)
{
    const auto found = behaviours.find(operation);
    if (found == behaviours.end())
        qFatal("the driver has no operation %s", operation);
    return found->second;
}

void FakeDriver::knows(const char *operation, const std::vector<quint32> &versions)
{
    behaviour(operation).versions = versions;
}

void FakeDriver::fails(const char *operation, NvAPI_Status status, int fromCall, int count)
{
    const std::lock_guard<std::mutex> guard(mutex);
    behaviour(operation).failures.push_back({status, fromCall - 1, count});
}

void FakeDriver::answersInTurn(const char *operation, const std::vector<NvAPI_Status> &statuses)
{
    behaviour(operation).inTurn = statuses;
}

void FakeDriver::fillsDespiteFailure(const char *operation)
{
    behaviour(operation).fillsDespiteFailure = true;
}

void FakeDriver::lacks(const char *operation)
{
    behaviour(operation).lacking = true;
}

void FakeDriver::onCall(const char *operation, const std::function<void()> &hook)
{
    behaviour(operation).hook = hook;
}

QStringList FakeDriver::calls() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return journal;
}

QStringList FakeDriver::calls(const char *operation) const
{
    const QString name = QString(operation).remove(QStringLiteral("NvAPI_"));
    QStringList lines;
    for (const QString &line : calls()) {
        if (line.section(QLatin1Char(' '), 0, 0) == name)
            lines << line;
    }
    return lines;
}

QStringList FakeDriver::versionsTried(const char *operation) const
{
    QStringList words;
    for (const QString &line : calls(operation)) {
        const QStringList parts = line.split(QLatin1Char(' '));
        const auto version = std::find_if(parts.begin(), parts.end(),
                                          [](const QString &part) { return part.startsWith(QLatin1String("0x")); });
        words << (version == parts.end() ? QStringLiteral("none") : *version);
    }
    return words;
}

void FakeDriver::forgetCalls()
{
    const std::lock_guard<std::mutex> guard(mutex);
    journal.clear();
}

int FakeDriver::queries(const char *operation) const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return behaviours.at(operation).queries;
}

int FakeDriver::loads() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return loadCount;
}

int FakeDriver::releases() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return releaseCount;
}

int FakeDriver::strayCalls() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return strayCallCount;
}

QStringList FakeDriver::operations()
{
    QStringList names;
    for (const FakeDriverEntries::Row &row : FakeDriverEntries::rows())
        names << QString::fromLatin1(row.operation);
    return names;
}

void *FakeDriver::entryPoint(quint32 identifier)
{
    const std::lock_guard<std::mutex> guard(mutex);
    for (const FakeDriverEntries::Row &row : FakeDriverEntries::rows()) {
        if (row.identifier != identifier)
            continue;
        Behaviour &known = behaviours.at(row.operation);
        ++known.queries;
        return known.lacking ? nullptr : row.entry;
    }
    return nullptr;
}

FakeCard *FakeDriver::cardOf(NvPhysicalGpuHandle gpu)
{
    const quintptr index = reinterpret_cast<quintptr>(gpu) - kFirstGpuHandle;
    return index < cards.size() ? &cards[index] : nullptr;
}

QString FakeDriver::cardName(NvPhysicalGpuHandle gpu) const
{
    const quintptr index = reinterpret_cast<quintptr>(gpu) - kFirstGpuHandle;
    if (index < cards.size())
        return QStringLiteral("gpu%1").arg(index);
    return gpu ? QStringLiteral("unknown") : QStringLiteral("null");
}

// ---- how a call is answered -----------------------------------------------------------------------

NvAPI_Status FakeDriver::statusOf(const Call &call)
{
    Behaviour &known = behaviours.at(call.operation);
    if (decides) {
        if (const std::optional<NvAPI_Status> status = decides())
            return *status;
    }
    if (!known.inTurn.empty()) {
        const NvAPI_Status status = known.inTurn.front();
        known.inTurn.erase(known.inTurn.begin());
        if (status != NVAPI_OK)
            return status;
    }
    NvAPI_Status failure = NVAPI_OK;
    for (Failure &rule : known.failures) {
        if (rule.skip > 0) {
            --rule.skip;
        } else if (rule.count != 0) {
            if (rule.count > 0)
                --rule.count;
            if (failure == NVAPI_OK)
                failure = rule.status;
        }
    }
    if (failure != NVAPI_OK)
        return failure;
    if (call.passesRecord &&
        std::find(known.versions.begin(), known.versions.end(), call.version) == known.versions.end())
        return NVAPI_INCOMPATIBLE_STRUCT_VERSION;
    if (call.addressesCard && !cardOf(call.gpu))
        return NVAPI_INVALID_HANDLE;
    return call.ownStatus;
}

NvAPI_Status FakeDriver::answer(const Call &call, const std::function<void()> &fill)
{
    // set before the test's threads start, so read without the lock
    if (const std::function<void()> &hook = behaviours.at(call.operation).hook)
        hook();

    const std::lock_guard<std::mutex> guard(mutex);
    if (!loaded)
        ++strayCallCount;
    const NvAPI_Status status = statusOf(call);
    const bool reachesCard = !call.addressesCard || cardOf(call.gpu);
    if (reachesCard && (status == NVAPI_OK || behaviours.at(call.operation).fillsDespiteFailure))
        fill();

    QString line = QString(call.operation).remove(QStringLiteral("NvAPI_"));
    if (call.addressesCard)
        line += QLatin1Char(' ') + cardName(call.gpu);
    if (!call.arguments.isEmpty())
        line += QLatin1Char(' ') + call.arguments;
    if (status != NVAPI_OK)
        line += QStringLiteral(" -> %1").arg(status);
    journal << line;
    return status;
}

/// Passes on a record whose versions are in the table; `imageOf` gives the whole record as the driver
/// would fill it at the version asked for.
NvAPI_Status FakeDriver::answerRecord(Call call, void *record, const std::function<QByteArray(quint32)> &imageOf)
{
    call.passesRecord = true;
    call.version = wordAt(record, 0);
    const auto row =
        std::find_if(recordVersions().begin(), recordVersions().end(), [&](const RecordVersions &candidate) {
            return std::strcmp(candidate.operation, call.operation) == 0;
        });
    const bool published = std::find(row->versions.begin(), row->versions.end(), call.version) != row->versions.end();
    const std::size_t size = published ? nvApiRecordSize(call.version) : 0;

    if (!call.arguments.isEmpty())
        call.arguments += QLatin1Char(' ');
    call.arguments += hexWord(call.version) + wordsText(record, size);
    return answer(call, [&] {
        if (!published || !imageOf)
            return;
        const QByteArray image = imageOf(call.version);
        quint8 *const content = static_cast<quint8 *>(record) + sizeof(quint32);
        const std::size_t contentSize = size - sizeof(quint32);
        std::memcpy(content, image.constData() + sizeof(quint32), contentSize);
        tamperWith(content, contentSize);
    });
}

NvAPI_Status FakeDriver::answerNumber(const Call &call, quint32 *number, const std::function<quint32()> &value)
{
    return answer(call, [&] {
        *number = value();
        tamperWith(number, sizeof *number);
    });
}

NvAPI_Status FakeDriver::answerText(const Call &call, char *text, const std::function<std::string()> &value)
{
    return answer(call, [&] {
        const std::string content = value();
        std::memcpy(text, content.c_str(), std::min(content.size() + 1, kNvApiShortTextSize));
        tamperWith(text, kNvApiShortTextSize);
    });
}

NvAPI_Status FakeDriver::answerGpus(const Call &call, NvPhysicalGpuHandle *gpus, quint32 *count, bool tcc)
{
    return answer(call, [&] {
        quint32 listed = 0;
        for (std::size_t index = 0; index < cards.size() && listed < kNvApiMaxGpus; ++index) {
            if (cards[index].tcc == tcc)
                gpus[listed++] = handle(index);
        }
        *count = (tcc ? tccGpuCountTold : gpuCountTold).value_or(listed);
    });
}

NvAPI_Status FakeDriver::transferI2c(Call call, NV_I2C_INFO *record, const quint32 *twoZeroWords, bool reading)
{
    call.passesRecord = true;
    call.addressesCard = true;
    call.version = record->version;
    const quint32 versionNumber = call.version >> 16;

    QString text = hexWord(call.version);
    text += QStringLiteral(" addr=%1 reg=%2 regSize=%3 size=%4")
                .arg(hexByte(record->i2cDevAddress),
                     record->pbI2cRegAddress ? hexByte(*record->pbI2cRegAddress) : QStringLiteral("missing"))
                .arg(record->regAddrSize)
                .arg(record->cbSize);
    text += QStringLiteral(" speed=") + QString::number(record->i2cSpeed, 16).toUpper();
    if (versionNumber >= 2)
        text += QStringLiteral("/%1").arg(record->i2cSpeedKhz);
    if (versionNumber >= 3)
        text += QStringLiteral(" port=%1/%2").arg(record->portId).arg(record->bIsPortIdSet);
    if (record->displayMask)
        text += QStringLiteral(" mask=%1").arg(record->displayMask);
    if (record->bIsDDCPort)
        text += QStringLiteral(" ddc=%1").arg(record->bIsDDCPort);
    if (twoZeroWords)
        text += QStringLiteral(" words=%1,%2").arg(twoZeroWords[0]).arg(twoZeroWords[1]);
    if (!reading) {
        const QByteArray data(reinterpret_cast<const char *>(record->pbData), static_cast<int>(record->cbSize));
        text += QStringLiteral(" data=") + QString::fromLatin1(data.toHex(' ').toUpper());
    }
    call.arguments = text;

    if (const FakeCard *card = cardOf(call.gpu)) {
        const auto held = hold();
        const bool present = reading ? card->i2cReplies.contains(record->i2cDevAddress)
                                     : card->i2cListeners.contains(record->i2cDevAddress);
        call.ownStatus = present ? NVAPI_OK : NVAPI_ERROR;
    }
    return answer(call, [&] {
        if (!reading)
            return;
        const QByteArray reply = cardOf(call.gpu)->i2cReplies.value(record->i2cDevAddress);
        for (quint32 i = 0; i < record->cbSize; ++i)
            record->pbData[i] = i < quint32(reply.size()) ? quint8(reply[int(i)]) : quint8(0);
        tamperWith(record->pbData, record->cbSize);
    });
}

void FakeDriver::tamperWith(void *bytes, std::size_t size)
{
    if (tamper)
        tamper(static_cast<quint8 *>(bytes), size);
}
