#pragma once

#include "simulated/CardParameters.h"
#include "simulated/OperationList.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace simulated
{

/// Which calls fail, and how. A call is counted for a fault when operation and card match.
struct Fault
{
    std::optional<Operation> operation; ///< none: every operation
    std::optional<quint32> card;        ///< index of the card; none: any card, and calls without a card
    std::optional<NvAPI_Status> status; ///< returned without any effect; none: the call is only late
    quint64 from = 1;                   ///< number of the first call that goes wrong, counted from 1
    quint64 count = 0;                  ///< how many calls go wrong; 0: all from there on
    quint64 every = 0;                  ///< repeat `from` and `count` after this many calls; 0: never
    qint64 delayMs = 0;                 ///< real time that the call takes
};

/// What the driver knows of an operation.
struct OperationKnowledge
{
    bool missing = false;             ///< the library has no such entry point
    std::vector<quint32> versions;    ///< version words that it accepts; any other gets -9
    bool fillsDespiteFailure = false; ///< a call that fails fills its record all the same
};

/// Ways in which a broken driver could harm a careless caller.
struct Hostility
{
    quint32 count = 0;              ///< replaces every count in a result; 0: counts are true
    bool unterminatedTexts = false; ///< texts fill their 64 bytes without a terminating zero
};

struct ChipsetParameters
{
    quint32 vendorId = 0x8086;
    quint32 deviceId = 0x1918;
    std::string vendorName = "Simulated";
    std::string chipsetName = "Simulated board";
    quint32 subSysVendorId = 0x5A5A;
    quint32 subSysDeviceId = 0x0001;
    std::string subSysVendorName = "Simulated";
};

/// What the driver knows of all its operations; made to know everything.
class DriverKnowledge
{
public:
    DriverKnowledge() { keepAllRecords(); }

    void keepAllRecords();    ///< every version that the records ever had
    void keepNewestRecords(); ///< the newest version of each record only
    void keepOldestRecords(); ///< the oldest version of each record only

    OperationKnowledge &of(Operation operation) { return operations[static_cast<std::size_t>(operation)]; }
    [[nodiscard]] const OperationKnowledge &of(Operation operation) const
    {
        return operations[static_cast<std::size_t>(operation)];
    }

private:
    std::array<OperationKnowledge, kOperationCount> operations;
};

/// What the driver answers about itself, and how it treats its cards.
struct DriverParameters
{
    quint32 version = 38532; ///< the driver's integer: 385.32
    std::string branch = "r385_00";
    ChipsetParameters chipset;
    double timeScale = 1; ///< simulated milliseconds in a real one
    Hostility hostility;
};

/// A whole simulated machine.
struct Scenario
{
    DriverKnowledge knowledge;
    DriverParameters driver;
    std::vector<CardParameters> cards; ///< at most 64
    std::vector<Fault> faults;
};

} // namespace simulated
