#pragma once

#include "simulated/DriverSettings.h"
#include "simulated/Scenario.h"

#include "device/nvapi/NvApi.h"

#include <QMetaType>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulated
{
class Answers;
class DriverCore;
} // namespace simulated

using simulated::Operation;
Q_DECLARE_METATYPE(Operation)

/// The driver library of a test. While it exists, the operations of `device/nvapi` reach it; make it at the head of
/// the test, before the device object. `CheckedDriver` has cards that behave, `RawDriver` answers with records that
/// the test writes.
///
/// Its clock stands still unless a setting says otherwise. Calls may come from any thread; so may whoever uses this.
class StandInDriver
{
public:
    static constexpr int kForever = 0;

    StandInDriver(const StandInDriver &) = delete;
    StandInDriver &operator=(const StandInDriver &) = delete;

    [[nodiscard]] NvApiQueryInterface queryInterface() const; ///< for who does without `device/nvapi`
    [[nodiscard]] NvPhysicalGpuHandle handle(std::size_t card) const;
    void advance(qint64 milliseconds); ///< lets the time pass at once

    // ---- what the driver knows ----
    void knows(Operation operation, std::vector<quint32> versions); ///< these version words and no others
    void knowsOldestRecords();
    void knowsAllRecords();
    void lacks(Operation operation); ///< the library has no such entry point
    bool libraryExists = true;

    // ---- what goes wrong ----
    /// From the `fromCall`-th call from now on (1 is the next), `count` calls give `status`.
    void fails(Operation operation, NvAPI_Status status = NVAPI_ERROR, int fromCall = 1, int count = kForever);
    /// The next calls give these statuses, one each; a 0 in the list is answered as usual.
    void answersInTurn(Operation operation, const std::vector<NvAPI_Status> &statuses);
    /// A failing call fills its record all the same.
    void fillsDespiteFailure(Operation operation);
    void addFault(const simulated::Fault &fault);
    void clearFaults();
    /// Decides a call's status where it gives one. Set while no call is under way.
    std::function<std::optional<NvAPI_Status>()> decides;

    /// Called at the head of each call of the operation, on the caller's thread.
    void onCall(Operation operation, const std::function<void()> &hook);
    /// Called while the library is being released.
    std::function<void()> onRelease;

    // ---- what the driver was asked ----
    [[nodiscard]] QStringList calls() const; ///< with names and units, see `callText`
    [[nodiscard]] QStringList calls(Operation operation) const;
    /// What the cards were ordered to change, the bus left aside: "graphics offset 100000 kHz", "fan 60 % manual".
    /// Each try counts, a refused one ends with "-> -1".
    [[nodiscard]] QStringList orders() const;
    [[nodiscard]] QStringList rawCalls() const; ///< byte for byte, see `rawCallText`
    [[nodiscard]] QStringList rawCalls(Operation operation) const;
    [[nodiscard]] std::vector<simulated::Call> callRecords() const;
    [[nodiscard]] std::vector<simulated::Call> callRecords(Operation operation) const;
    [[nodiscard]] QStringList versionsTried(Operation operation) const; ///< "0x30020" each
    /// The bytes of the writes to an I2C address, "05 0A 00 00 F0" each, for one card or for all. What a refused
    /// write was tried with again is left out.
    [[nodiscard]] QStringList frames(quint8 address, std::optional<quint32> card = std::nullopt) const;
    void forgetCalls();
    [[nodiscard]] int queries(Operation operation) const; ///< how often the entry point was asked for
    [[nodiscard]] int loads() const;
    [[nodiscard]] int releases() const;
    [[nodiscard]] int strayCalls() const; ///< calls that reached the driver while it was not loaded

    /// Every operation in the order of the list.
    static std::vector<Operation> operations();

protected:
    /// `wantsNativeI2cSize`: as the card driver's own library. The settings' own receivers of calls are replaced.
    StandInDriver(const simulated::Scenario &scenario, const std::shared_ptr<simulated::Answers> &answers,
                  simulated::DriverSettings settings, bool wantsNativeI2cSize = false);
    ~StandInDriver();

    /// Changes answers while no call is under way.
    void whileNoCall(const std::function<void()> &change) const;
    /// The calls that no card would be asked since the last time, as "operation: what is wrong".
    QStringList takeViolationTexts();

private:
    struct Journal;

    void plugIn(bool wantsNativeI2cSize);
    std::optional<NvAPI_Status> meet(Operation operation);

    std::unique_ptr<Journal> journal;
    std::shared_ptr<simulated::Answers> answers;
    std::shared_ptr<simulated::DriverCore> core;
};
