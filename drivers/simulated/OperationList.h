#pragma once

#include "device/nvapi/NvApiOperations.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace simulated
{

/// The operations of the driver library, in the order of OVRYN_NVAPI_OPERATIONS.
enum class Operation
{
#define OVRYN_SIMULATED_ENUMERATOR(identifier, name, parameters, arguments) name,
    OVRYN_NVAPI_OPERATIONS(OVRYN_SIMULATED_ENUMERATOR)
#undef OVRYN_SIMULATED_ENUMERATOR
        Count
};

constexpr std::size_t kOperationCount = static_cast<std::size_t>(Operation::Count);

/// The published name, "NvAPI_Initialize" and so on.
const char *operationName(Operation operation);

/// The operation of that name; Operation::Count when there is none.
Operation operationNamed(std::string_view name);

/// Every version word that the operation's record ever had, newest first; empty without a record.
const std::vector<quint32> &recordVersions(Operation operation);

} // namespace simulated
