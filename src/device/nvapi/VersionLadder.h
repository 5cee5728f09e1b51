#pragma once

#include "device/nvapi/NvApiRecords.h"

#include <array>
#include <cstddef>

/// \file
/// The ladder of record versions. A driver knows some versions of each record and refuses the others, so
/// an operation is tried version by version. Between two attempts only the version word changes; the rest
/// of the record stays as the last attempt left it.

/// The end of a ladder.
struct LadderResult
{
    NvAPI_Status status = NVAPI_ERROR; ///< of the last attempt
    quint32 version = 0;               ///< version word of the last attempt; on success the accepted one

    [[nodiscard]] bool succeeded() const { return status == NVAPI_OK; }
};

/// Most operations: after any failure the next version is tried.
inline bool descendOnAnyFailure(NvAPI_Status status)
{
    return status != NVAPI_OK;
}

/// The next version is tried only when the driver refuses the version itself.
inline bool descendOnRefusedVersion(NvAPI_Status status)
{
    return status == NVAPI_INCOMPATIBLE_STRUCT_VERSION;
}

/// Tries `operation(arguments..., &record)` with each version word in the order of `versions`, as long as
/// `descends(status)`.
template <typename Policy, std::size_t versionCount, typename Record, typename Operation, typename... Arguments>
LadderResult descendWhile(Policy descends, const std::array<quint32, versionCount> &versions, Record &record,
                          Operation operation, Arguments... arguments)
{
    static_assert(versionCount > 0, "a ladder has a version");
    LadderResult result;
    for (const quint32 version : versions) {
        record.version = version;
        result.version = version;
        result.status = operation(arguments..., &record);
        if (!descends(result.status))
            break;
    }
    return result;
}

/// The form of nearly every call: versions, record, operation, card, and what the operation takes between card and
/// record.
template <std::size_t versionCount, typename Record, typename Operation, typename... Arguments>
LadderResult descend(const std::array<quint32, versionCount> &versions, Record &record, Operation operation,
                     NvPhysicalGpuHandle gpu, Arguments... arguments)
{
    return descendWhile(descendOnAnyFailure, versions, record, operation, gpu, arguments...);
}

/// The I2C form, for operations that exist as a plain and as an extended call. A refused version goes one version
/// down with the same call. After any other failure the extended call is tried with the same version; when that
/// version is refused, it goes one version down too. Each version below the newest is one such round, and each round
/// begins with the status before it.
template <std::size_t versionCount, typename Record, typename PlainCall, typename ExtendedCall>
LadderResult descendWithExtendedCall(const std::array<quint32, versionCount> &versions, Record &record,
                                     PlainCall plainCall, ExtendedCall extendedCall, NvPhysicalGpuHandle gpu)
{
    static_assert(versionCount > 0, "a ladder has a version");
    LadderResult result;
    const auto attempt = [&](quint32 version, auto call) {
        record.version = version;
        result.version = version;
        result.status = call(gpu, &record);
    };

    attempt(versions[0], plainCall);
    for (std::size_t next = 1; next < versionCount && !result.succeeded(); ++next) {
        if (descendOnRefusedVersion(result.status)) {
            attempt(versions[next], plainCall);
            continue;
        }
        attempt(result.version, extendedCall);
        if (descendOnRefusedVersion(result.status))
            attempt(versions[next], extendedCall);
    }
    return result;
}
