#pragma once

#include "device/nvapi/NvApiOperations.h"

#include <functional>

/// \file
/// The driver boundary: one function for each operation of the driver library, under its published
/// name. The library is found and loaded here and nowhere else.
///
/// Every function may be called from any thread. It returns the driver's status; NVAPI_NO_IMPLEMENTATION
/// when the library does not know the operation; NVAPI_LIBRARY_NOT_FOUND when no library is loaded.
/// A call that comes while an unload is under way polls every 100 ms, up to ten times, and then gives
/// NVAPI_ERROR. NvAPI_Initialize and NvAPI_Unload count: each start, also one that failed, is ended by one
/// NvAPI_Unload, and the library is unloaded with the last of them.

// clang-format off
#define OVRYN_NVAPI_DECLARE(identifier, name, parameters, arguments) NvAPI_Status name parameters;
OVRYN_NVAPI_OPERATIONS(OVRYN_NVAPI_DECLARE)
#undef OVRYN_NVAPI_DECLARE
// clang-format on

/// The library's one export: an interface identifier in, a function pointer out, null when unknown.
using NvApiQueryInterface = void *(OVRYN_NVAPI_CALL *)(quint32 identifier);

/// The source of the driver library. The default is the system's library (nvapi.dll; on Linux libnvapi.so.1, else the
/// card driver's own libnvidia-api.so.1). Tests set a stand-in here.
struct NvApiLibrarySource
{
    std::function<NvApiQueryInterface()> load; ///< null result: there is no library
    std::function<void()> unload;              ///< may be empty
    /// True for the card driver's own library: in a 64-bit process the I2C record is larger than its version words
    /// say, and that driver expects the real size in them. Stand-ins expect the table's words.
    bool wantsNativeI2cSize = false;
};

/// Replaces the source for the next first NvAPI_Initialize. Only while nothing is loaded. An empty
/// `load` restores the system's library.
void setNvApiLibrarySource(NvApiLibrarySource source);

/// Starts that have not been ended, those that failed included; for tests.
int nvApiLoadCount();
