#pragma once

#include "device/nvapi/NvApiRecords.h"

#include <cstring>

namespace simulated
{

// The entries of the oldest record are beginnings of the newest ones, without the flags.
constexpr std::size_t kThermalStatusEntrySize1 = 8;
constexpr std::size_t kThermalStatusOffset = offsetof(NvApiThermalPoliciesStatus, entries);

inline std::size_t thermalStatusStride(quint32 version)
{
    return version == kThermalPoliciesStatusVersion1 ? kThermalStatusEntrySize1
                                                     : sizeof(NvApiThermalPoliciesStatus::Entry);
}

/// An entry of a record of that version; flags that the version does not have are 0.
inline NvApiThermalPoliciesStatus::Entry thermalStatusEntry(const NvApiThermalPoliciesStatus &record, quint32 version,
                                                            std::size_t index)
{
    const std::size_t stride = thermalStatusStride(version);
    NvApiThermalPoliciesStatus::Entry entry{};
    std::memcpy(&entry, reinterpret_cast<const char *>(&record) + kThermalStatusOffset + index * stride, stride);
    return entry;
}

} // namespace simulated
