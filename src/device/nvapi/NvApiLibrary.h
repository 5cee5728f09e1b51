#pragma once

#include "device/nvapi/NvApi.h"

#include <functional>

/// \file
/// Finding and loading the system's driver library; one implementation for each system.

/// A loaded library; without an entry point no library is loaded.
struct NvApiLibrary
{
    NvApiQueryInterface queryInterface = nullptr;
    std::function<void()> unload;    ///< may be empty
    bool wantsNativeI2cSize = false; ///< see NvApiLibrarySource
};

/// Loads the system's library. Never throws; a library without the entry point is not used.
[[nodiscard]] NvApiLibrary openSystemNvApiLibrary();
