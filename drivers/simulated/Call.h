#pragma once

#include "simulated/OperationList.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace simulated
{

/// One call that the driver was told, as the journal keeps it.
struct Call
{
    /// What stands in the place of the card's handle.
    enum class Handle
    {
        None, ///< the operation has none
        Known,
        Null,
        Unknown
    };

    qint64 timeMs = 0; ///< since the driver was loaded
    int thread = 0;    ///< small number of the calling thread, from 1 in the order of their first calls
    Operation operation = Operation::Count;
    Handle handle = Handle::None;
    std::optional<quint32> card;      ///< index of the card; none without a known handle
    std::optional<quint32> version;   ///< version word of the record
    nlohmann::ordered_json arguments; ///< what matters of the arguments, by name; null when nothing does
    std::string note;                 ///< why the driver refused, where a status alone would not say it
    std::string violation;            ///< what no card would be asked in it; empty when the call is in order
    NvAPI_Status status = NVAPI_OK;
    /// The record as it came in, without the zeros at its end; only kept for who asks for each call, and empty where
    /// the version word does not say how large the record is.
    std::vector<quint8> record;

    [[nodiscard]] std::string name() const { return operationName(operation); }
};

/// The call as one line of JSON, without a line end.
std::string journalLine(const Call &call);

} // namespace simulated
