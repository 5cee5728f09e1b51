# For the preset `windows`: Debian's cross compiler, and the toolkit that tools/windows/toolkit.sh builds.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686) # the card driver's records have the sizes of a 32-bit process

# The folder of tools/windows/common.sh.
if(DEFINED ENV{OVRYN_WINDOWS_CACHE})
    set(ovryn_windows_cache "$ENV{OVRYN_WINDOWS_CACHE}")
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(ovryn_windows_cache "$ENV{XDG_CACHE_HOME}/ovryndeck-windows")
else()
    set(ovryn_windows_cache "$ENV{HOME}/.cache/ovryndeck-windows")
endif()
set(ovryn_windows_toolkit "${ovryn_windows_cache}/toolkit")

# The kind with POSIX threads: the other one has no std::thread.
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

# The x87 unit computes with 80 bits and rounds otherwise than the 64-bit build. Windows aligns a stack to 4 bytes
# only, and SSE2 wants 16.
set(ovryn_arithmetic "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_C_FLAGS_INIT "${ovryn_arithmetic}")
set(CMAKE_CXX_FLAGS_INIT "${ovryn_arithmetic}")

set(CMAKE_FIND_ROOT_PATH "${ovryn_windows_toolkit}" /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_PREFIX_PATH "${ovryn_windows_toolkit}")
set(ZLIB_LIBRARY /usr/i686-w64-mingw32/lib/libz.a CACHE FILEPATH "static, so that no library is shipped for it")

# The tests are run by tools/windows/test.sh, where Wine is.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../tools/windows/wine.sh")
