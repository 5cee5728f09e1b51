#pragma once

#include "device/nvapi/NvApiOperations.h"

/// Every operation of a driver library as a function pointer; null where the library has none.
struct DriverCalls
{
    using QueryInterface = void *(OVRYN_NVAPI_CALL *)(quint32 identifier);

    explicit DriverCalls(QueryInterface query)
    {
#define OVRYN_RESOLVE(identifier, name, parameters, arguments)                                                       \
    name = reinterpret_cast<decltype(name)>(query(identifier));
        OVRYN_NVAPI_OPERATIONS(OVRYN_RESOLVE)
#undef OVRYN_RESOLVE
    }

#define OVRYN_POINTER(identifier, name, parameters, arguments)                                                       \
    NvAPI_Status(OVRYN_NVAPI_CALL *name) parameters = nullptr;
    OVRYN_NVAPI_OPERATIONS(OVRYN_POINTER)
#undef OVRYN_POINTER
};
