#pragma once

#include "support/FakeCard.h"

#include "device/nvapi/NvApi.h"

#include <QStringList>

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

/// An in-process stand-in for the card driver's library: it answers every operation from cards that the
/// test edits, at the record versions that the test says it knows, and keeps the list of calls.
///
/// Make one at the head of a test, before the device object, and it is the library until it goes. It
/// writes no byte beyond the size that a record's version word tells, and older record versions in
/// their own entry sizes. Writes change nothing: what counts is the list of calls.
///
/// Operations are named as published, "NvAPI_GPU_GetFullName"; a wrong name ends the test program.
/// Calls may come from any thread; set the driver up while none is under way.
class FakeDriver
{
public:
    enum class I2cRecordSize
    {
        OfVersionTable, ///< as every stand-in wants the version words
        OfThisProcess,  ///< as the card driver's own library wants them
    };
    static constexpr int kForever = -1;

    explicit FakeDriver(I2cRecordSize i2cRecordSize = I2cRecordSize::OfVersionTable);
    ~FakeDriver();
    FakeDriver(const FakeDriver &) = delete;
    FakeDriver &operator=(const FakeDriver &) = delete;

    // ---- what the driver reports ----
    std::vector<FakeCard> cards{1};
    quint32 displays = 1;
    NvAPI_Status displayWalkEnd = NVAPI_END_ENUMERATION;
    std::optional<quint32> gpuCountTold;    ///< in place of the true number of ordinary cards
    std::optional<quint32> tccGpuCountTold; ///< in place of the true number of TCC cards
    quint32 driverVersion = 38532;
    NvApiChipsetInfo chipset{};

    FakeCard &card(std::size_t index = 0) { return cards.at(index); }
    /// No call is answered while the result lives: for a change of a card that other threads ask.
    [[nodiscard]] std::unique_lock<std::mutex> hold() { return std::unique_lock<std::mutex>(mutex); }
    [[nodiscard]] NvPhysicalGpuHandle handle(std::size_t cardIndex) const;

    // ---- what goes wrong ----
    bool libraryExists = true;
    /// The operation answers at these record versions only; any other version gets -9.
    void knows(const char *operation, const std::vector<quint32> &versions);
    /// From the `fromCall`-th call from now on (1 is the next), `count` calls give `status`. Any thread.
    void fails(const char *operation, NvAPI_Status status, int fromCall = 1, int count = kForever);
    /// The next calls give these statuses, one each; a 0 in the list is answered as usual.
    void answersInTurn(const char *operation, const std::vector<NvAPI_Status> &statuses);
    /// A failing call fills its record all the same.
    void fillsDespiteFailure(const char *operation);
    /// The library does not know the operation.
    void lacks(const char *operation);
    /// Called at the head of each call of the operation, on the caller's thread.
    void onCall(const char *operation, const std::function<void()> &hook);
    /// Called while the library is being released.
    std::function<void()> onRelease;
    /// Overwrites what an answer has just filled: the bytes behind a record's version word, a text, a
    /// number, or the data of an I2C read.
    std::function<void(quint8 *bytes, std::size_t size)> tamper;
    /// Decides a call's status, when set and when it gives one.
    std::function<std::optional<NvAPI_Status>()> decides;

    // ---- what the driver was told ----
    /// One line a call: operation without "NvAPI_", card or display, other arguments, version word, every
    /// word of the record that is not 0 as [byte offset]=value, and "-> status" where that is not 0.
    /// The fields of an I2C record are named instead: "I2CWrite gpu0 0x3002C addr=A0 reg=00 regSize=0
    /// size=5 speed=FFFF/6 port=1/1 data=05 0A 00 00 F0".
    [[nodiscard]] QStringList calls() const;
    [[nodiscard]] QStringList calls(const char *operation) const;
    /// The version words that the operation was called with, "0x30020" each.
    [[nodiscard]] QStringList versionsTried(const char *operation) const;
    void forgetCalls();
    [[nodiscard]] int queries(const char *operation) const; ///< how often the entry point was asked for
    [[nodiscard]] int loads() const;
    [[nodiscard]] int releases() const;
    [[nodiscard]] int strayCalls() const; ///< calls that reached the driver while it was not loaded

    /// What the library's one export gives; null for an operation that the driver lacks.
    void *entryPoint(quint32 identifier);

    /// Every operation's name in the order of the list.
    static QStringList operations();

private:
    struct Call
    {
        const char *operation;
        QString arguments;
        NvPhysicalGpuHandle gpu = nullptr;
        bool addressesCard = false;
        quint32 version = 0;
        bool passesRecord = false;
        NvAPI_Status ownStatus = NVAPI_OK; ///< what the card itself says once everything else is in order
    };
    struct Failure
    {
        NvAPI_Status status;
        int skip;  ///< calls still to be let through
        int count; ///< calls still to fail; kForever for all
    };
    struct Behaviour
    {
        std::vector<quint32> versions;
        std::vector<Failure> failures;
        std::vector<NvAPI_Status> inTurn;
        std::function<void()> hook;
        bool fillsDespiteFailure = false;
        bool lacking = false;
        int queries = 0;
    };

    Behaviour &behaviour(const char *operation);
    [[nodiscard]] FakeCard *cardOf(NvPhysicalGpuHandle gpu);
    [[nodiscard]] QString cardName(NvPhysicalGpuHandle gpu) const;
    NvAPI_Status statusOf(const Call &call);
    NvAPI_Status answer(const Call &call, const std::function<void()> &fill);
    NvAPI_Status answerRecord(Call call, void *record, const std::function<QByteArray(quint32)> &imageOf);
    NvAPI_Status answerNumber(const Call &call, quint32 *number, const std::function<quint32()> &value);
    NvAPI_Status answerText(const Call &call, char *text, const std::function<std::string()> &value);
    NvAPI_Status answerGpus(const Call &call, NvPhysicalGpuHandle *gpus, quint32 *count, bool tcc);
    NvAPI_Status transferI2c(Call call, NV_I2C_INFO *record, const quint32 *twoZeroWords, bool reading);
    void tamperWith(void *bytes, std::size_t size);

    // One function for each operation, of the published name and signature.
    // clang-format off
#define OVRYN_FAKE_DECLARE(identifier, name, parameters, arguments) NvAPI_Status name parameters;
    OVRYN_NVAPI_OPERATIONS(OVRYN_FAKE_DECLARE)
#undef OVRYN_FAKE_DECLARE
    // clang-format on
    friend struct FakeDriverEntries;

    I2cRecordSize i2cRecordSize;
    mutable std::mutex mutex; ///< guards everything below
    std::map<std::string, Behaviour> behaviours;
    QStringList journal;
    bool loaded = false;
    int loadCount = 0;
    int releaseCount = 0;
    int strayCallCount = 0;
};
