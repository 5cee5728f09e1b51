#pragma once

#include "simulated/DriverCore.h"

#include <cstring>

namespace simulated
{

/// What the driver does for each operation. One object serves one call, within the core's mutex.
///
/// The core has already refused null pointers, unknown handles and unknown version words, so the record
/// is there, in the size of its version word, and the card exists.
class Operations
{
public:
    Operations(DriverCore &driverCore, Call &currentCall) : core(driverCore), call(currentCall) {}

#define OVRYN_SIMULATED_OPERATION(identifier, name, parameters, arguments) NvAPI_Status name parameters;
    OVRYN_NVAPI_OPERATIONS(OVRYN_SIMULATED_OPERATION)
#undef OVRYN_SIMULATED_OPERATION

private:
    [[nodiscard]] Card &card() const
    {
        return core.cards.at(call.card.value());
    }
    [[nodiscard]] quint32 version() const
    {
        return call.version.value();
    }

    /// A refusal with its reason for the journal.
    NvAPI_Status refuse(NvAPI_Status status, const std::string &reason)
    {
        call.note = reason;
        return status;
    }

    /// A count as the driver answers it: true, or far too large when the driver is hostile.
    template <class Word>
    [[nodiscard]] Word answeredCount(std::size_t count) const
    {
        const quint32 hostile = core.driver.hostility.count;
        return static_cast<Word>(hostile > 0 ? hostile : count);
    }

    /// Fills a text buffer of 64 bytes, cut to fit.
    void writeText(char *buffer, const std::string &text) const;

    /// Copies a whole answer of the newest layout into the caller's record, cut to its version's size.
    template <class Record>
    void writeAnswer(Record *record, Record answer) const
    {
        answer.version = version();
        const std::size_t size = nvApiRecordSize(version());
        std::memcpy(record, &answer, size < sizeof(Record) ? size : sizeof(Record));
    }

    /// Lists the cards of one kind for the two enumerations.
    NvAPI_Status enumerate(bool tcc, NvPhysicalGpuHandle *gpus, quint32 *count);

    NvAPI_Status checkTransfer(const NV_I2C_INFO &record);
    NvAPI_Status readBus(NV_I2C_INFO *record);
    NvAPI_Status writeBus(NV_I2C_INFO *record);

    DriverCore &core;
    Call &call;
};

} // namespace simulated
