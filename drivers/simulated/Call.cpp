#include "simulated/Call.h"

#include "simulated/Hex.h"

namespace simulated
{

std::string journalLine(const Call &call)
{
    nlohmann::ordered_json line;
    line["t"] = call.timeMs;
    line["thread"] = call.thread;
    line["op"] = operationName(call.operation);
    line["gpu"] = call.card ? nlohmann::ordered_json(*call.card) : nlohmann::ordered_json();
    if (call.handle == Call::Handle::Null || call.handle == Call::Handle::Unknown)
        line["handle"] = call.handle == Call::Handle::Null ? "null" : "unknown";
    if (call.version)
        line["version"] = hexWord(*call.version);
    if (!call.arguments.is_null())
        line["args"] = call.arguments;
    if (!call.note.empty())
        line["note"] = call.note;
    if (!call.violation.empty())
        line["violation"] = call.violation;
    line["status"] = call.status;
    // texts that came from a caller need not be UTF-8
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace simulated
