#include "device/nvapi/NvApi.h"

#include "device/nvapi/NvApiLibrary.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>

namespace
{

// A call during an unload polls this often before it gives up.
constexpr int kUnloadPolls = 10;
constexpr std::chrono::milliseconds kUnloadPollInterval(100);

// An unload waits for the running calls, so that their code is not unmapped. It does not wait for ever: a thread that
// was terminated inside a call never returns from it.
constexpr std::chrono::milliseconds kDrainTimeout(1000);
constexpr std::chrono::milliseconds kDrainInterval(1);

// clang-format off
#define OVRYN_NVAPI_INDEX(identifier, name, parameters, arguments) Operation_##name,
enum Operation : std::size_t
{
    OVRYN_NVAPI_OPERATIONS(OVRYN_NVAPI_INDEX)
    OperationCount
};
#undef OVRYN_NVAPI_INDEX

#define OVRYN_NVAPI_IDENTIFIER(identifier, name, parameters, arguments) identifier,
constexpr std::array<quint32, OperationCount> kIdentifiers = {
    OVRYN_NVAPI_OPERATIONS(OVRYN_NVAPI_IDENTIFIER)
};
#undef OVRYN_NVAPI_IDENTIFIER
// clang-format on

/// The table's value for an identifier that the library was asked for and does not know.
const char kUnknownOperation = 0;

/// The state of the boundary. The library stays loaded after a failed NvAPI_Initialize, so that the error text can be
/// read and enumeration can be tried, until the NvAPI_Unload of that start.
struct Boundary
{
    std::mutex lifecycle;      ///< serialises NvAPI_Initialize and NvAPI_Unload
    NvApiLibrarySource source; ///< guarded by lifecycle; where the next library comes from
    NvApiLibrary library;      ///< guarded by lifecycle; the one that is loaded

    bool initialised = false; ///< guarded by lifecycle; the library's NvAPI_Initialize has succeeded

    std::atomic<int> startCount{0}; ///< starts that have not been ended, those that failed included
    std::atomic<NvApiQueryInterface> queryInterface{nullptr};
    std::atomic<bool> wantsNativeI2cSize{false};
    std::atomic<bool> unloading{false};
    std::atomic<int> callsInFlight{0};
    std::array<std::atomic<const void *>, OperationCount> functions{}; ///< null until first asked for
};

/// Never destroyed: a worker's thread may still call while the process is ending.
Boundary &boundary()
{
    static Boundary *const instance = new Boundary;
    return *instance;
}

/// False when an unload is still under way after the last poll.
bool waitForUnload()
{
    for (int poll = 0; boundary().unloading; ++poll) {
        if (poll == kUnloadPolls)
            return false;
        std::this_thread::sleep_for(kUnloadPollInterval);
    }
    return true;
}

/// Keeps the library loaded while a call is inside it.
class CallInFlight
{
public:
    CallInFlight()
    {
        while (waitForUnload()) {
            // First count the call, then check for an unload. An unload first sets its mark, then checks the count.
            // So at least one of the two sees the other.
            ++boundary().callsInFlight;
            if (!boundary().unloading) {
                admitted = true;
                return;
            }
            --boundary().callsInFlight;
        }
    }
    ~CallInFlight()
    {
        if (admitted)
            --boundary().callsInFlight;
    }
    CallInFlight(const CallInFlight &) = delete;
    CallInFlight &operator=(const CallInFlight &) = delete;

    [[nodiscard]] bool isAdmitted() const { return admitted; }

private:
    bool admitted = false;
};

/// The version word of the I2C record with the size of a 64-bit process; other words stay unchanged.
quint32 nativeI2cVersion(quint32 tableVersion)
{
    const quint32 number = tableVersion & 0xFFFF0000u;
    switch (tableVersion) {
    case kI2cInfoVersion3:
        return number | quint32(kI2cInfoSize3);
    case kI2cInfoVersion2:
        return number | quint32(kI2cInfoSize2);
    case kI2cInfoVersion1:
        return number | quint32(kI2cInfoSize1);
    default:
        return tableVersion;
    }
}

/// Gives the I2C record the version word that the card driver of a 64-bit process expects, for the time of one call.
/// Afterwards the record has the table's word again, the only one that the caller knows.
class NativeI2cVersionScope
{
public:
    explicit NativeI2cVersionScope(NV_I2C_INFO *i2cRecord)
        : record(boundary().wantsNativeI2cSize ? i2cRecord : nullptr)
    {
        if (record) {
            tableVersion = record->version;
            record->version = nativeI2cVersion(tableVersion);
        }
    }
    ~NativeI2cVersionScope()
    {
        if (record)
            record->version = tableVersion;
    }
    NativeI2cVersionScope(const NativeI2cVersionScope &) = delete;
    NativeI2cVersionScope &operator=(const NativeI2cVersionScope &) = delete;

private:
    NV_I2C_INFO *record;
    quint32 tableVersion = 0;
};

NV_I2C_INFO *asI2cRecord(NV_I2C_INFO *record)
{
    return record;
}
template <typename Other>
NV_I2C_INFO *asI2cRecord(Other)
{
    return nullptr;
}

/// Calls the library's own function. The caller keeps the library loaded.
template <typename Function, typename... Arguments>
NvAPI_Status callLibrary(Operation operation, Arguments... arguments)
{
    const NvApiQueryInterface queryInterface = boundary().queryInterface;
    if (!queryInterface)
        return NVAPI_LIBRARY_NOT_FOUND;

    // Two threads may resolve one operation at once; both get the same result.
    const void *function = boundary().functions[operation];
    if (!function) {
        function = queryInterface(kIdentifiers[operation]);
        if (!function)
            function = &kUnknownOperation;
        boundary().functions[operation] = function;
    }
    if (function == &kUnknownOperation)
        return NVAPI_NO_IMPLEMENTATION;

    NV_I2C_INFO *i2cRecord = nullptr;
    ((i2cRecord = i2cRecord ? i2cRecord : asI2cRecord(arguments)), ...);
    const NativeI2cVersionScope scope(i2cRecord);
    return reinterpret_cast<Function>(const_cast<void *>(function))(arguments...);
}

template <typename Function, typename... Arguments>
NvAPI_Status callDriver(Operation operation, Arguments... arguments)
{
    const CallInFlight call;
    if (!call.isAdmitted())
        return NVAPI_ERROR;
    return callLibrary<Function>(operation, arguments...);
}

using PlainFunction = NvAPI_Status(OVRYN_NVAPI_CALL *)();

/// Under `lifecycle`.
void openLibrary()
{
    Boundary &state = boundary();
    if (state.library.queryInterface)
        return;
    if (state.source.load)
        state.library = {state.source.load(), state.source.unload, state.source.wantsNativeI2cSize};
    else
        state.library = openSystemNvApiLibrary();
    state.wantsNativeI2cSize = state.library.wantsNativeI2cSize && sizeof(void *) == 8;
    state.queryInterface = state.library.queryInterface;
}

/// Called with `lifecycle` held and a library loaded. After a successful NvAPI_Initialize it calls the library's
/// NvAPI_Unload and returns the result.
NvAPI_Status closeLibrary()
{
    Boundary &state = boundary();
    state.unloading = true;
    const auto deadline = std::chrono::steady_clock::now() + kDrainTimeout;
    while (state.callsInFlight > 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(kDrainInterval);

    NvAPI_Status status = NVAPI_ERROR;
    if (state.initialised)
        status = callLibrary<PlainFunction>(Operation_NvAPI_Unload);
    state.initialised = false;
    state.queryInterface = nullptr;
    for (std::atomic<const void *> &function : state.functions)
        function = nullptr;
    // While a call is still inside, its code has to stay mapped.
    if (state.library.unload && state.callsInFlight == 0)
        state.library.unload();
    state.library = {};
    state.unloading = false;
    return status;
}

/// Every start calls the driver, to detect one that does not work any more. Only the last end calls it: the library
/// serves the whole process, and a driver need not count.
NvAPI_Status initialise()
{
    Boundary &state = boundary();
    // A failed start counts too, because the caller ends it by an NvAPI_Unload of its own. That end would otherwise
    // take the count of another start, and with the last count unload the driver.
    ++state.startCount;
    if (!waitForUnload())
        return NVAPI_ERROR;
    const std::lock_guard<std::mutex> guard(state.lifecycle);
    openLibrary();
    const NvAPI_Status status = callLibrary<PlainFunction>(Operation_NvAPI_Initialize);
    if (status == NVAPI_OK)
        state.initialised = true;
    return status;
}

/// A surplus call is harmless: it fails.
NvAPI_Status unload()
{
    if (!waitForUnload())
        return NVAPI_ERROR;
    Boundary &state = boundary();
    const std::lock_guard<std::mutex> guard(state.lifecycle);
    if (state.startCount > 0)
        --state.startCount;
    if (!state.library.queryInterface)
        return NVAPI_LIBRARY_NOT_FOUND;
    return state.startCount == 0 ? closeLibrary() : NVAPI_OK;
}

template <Operation operation, typename Function, typename... Arguments>
NvAPI_Status dispatch(Arguments... arguments)
{
    if constexpr (operation == Operation_NvAPI_Initialize)
        return initialise();
    else if constexpr (operation == Operation_NvAPI_Unload)
        return unload();
    else
        return callDriver<Function>(operation, arguments...);
}

} // namespace

// clang-format off
// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are lists in parentheses already
#define OVRYN_NVAPI_DEFINE(identifier, name, parameters, arguments)   \
    NvAPI_Status name parameters                                      \
    {                                                                 \
        using Function = NvAPI_Status(OVRYN_NVAPI_CALL *) parameters; \
        return dispatch<Operation_##name, Function> arguments;        \
    }
OVRYN_NVAPI_OPERATIONS(OVRYN_NVAPI_DEFINE)
#undef OVRYN_NVAPI_DEFINE
// NOLINTEND(bugprone-macro-parentheses)
// clang-format on

void setNvApiLibrarySource(NvApiLibrarySource source)
{
    Boundary &state = boundary();
    const std::lock_guard<std::mutex> guard(state.lifecycle);
    state.source = std::move(source);
}

int nvApiLoadCount()
{
    return boundary().startCount;
}
