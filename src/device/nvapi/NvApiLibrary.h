#pragma once

#include "device/nvapi/NvApi.h"

#include <functional>

/// \file
/// Finding and loading the system's driver library; one implementation for each system.

/// A library that has been loaded. Without an entry point there is none.
struct NvApiLibrary
{
    NvApiQueryInterface queryInterface = nullptr;
    std::function<void()> unload;    ///< may be empty
    bool wantsNativeI2cSize = false; ///< see NvApiLibrarySource
};

/// Loads the library that the system has. Never raises; a library without the entry point is left alone.
[[nodiscard]] NvApiLibrary openSystemNvApiLibrary();
