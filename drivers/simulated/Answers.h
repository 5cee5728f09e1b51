#pragma once

#include "simulated/Call.h"
#include "simulated/CallRules.h"

#include <array>

namespace simulated
{

/// Who answers the calls: one function for each operation of the driver. The core makes one call at a time, within
/// its mutex, and only calls that it has not refused: no pointer is null, the card exists, and the record has the
/// size of its version word, which the driver knows.
class Answers
{
public:
    Answers() = default;
    virtual ~Answers() = default;
    Answers(const Answers &) = delete;
    Answers &operator=(const Answers &) = delete;

    // clang-format off
#define OVRYN_SIMULATED_ANSWER(identifier, name, parameters, arguments) virtual NvAPI_Status name parameters = 0;
    OVRYN_NVAPI_OPERATIONS(OVRYN_SIMULATED_ANSWER)
#undef OVRYN_SIMULATED_ANSWER
    // clang-format on

    [[nodiscard]] virtual std::size_t cardCount() const = 0;
    /// The driver has forgotten the card: its handle is unknown from now on.
    [[nodiscard]] virtual bool isLost(std::size_t) const
    {
        return false;
    }
    /// What the rules know of a call for this card, besides its version word.
    [[nodiscard]] virtual CallContext contextOf(std::optional<quint32>) const
    {
        return {};
    }
    /// What the cards do and show now, for the state file.
    [[nodiscard]] virtual std::string stateText(qint64) const
    {
        return {};
    }
    /// Lets the cards run up to this time since the driver was loaded.
    virtual void catchUp(qint64) {}

    [[nodiscard]] NvPhysicalGpuHandle cardHandle(std::size_t index)
    {
        return &handlePlaces.at(index);
    }
    [[nodiscard]] std::optional<quint32> cardOf(const void *handle) const; ///< also for a lost card

    /// Display handles are never followed, only told apart.
    [[nodiscard]] static NvDisplayHandle displayHandle(quint32 index);
    [[nodiscard]] static quintptr displayOf(NvDisplayHandle display); ///< any number for a handle that is none

    /// The call that the next operation answers; it may leave a note in it.
    void begin(Call &nextCall)
    {
        currentCall = &nextCall;
    }

protected:
    [[nodiscard]] Call &call() const
    {
        return *currentCall;
    }

private:
    Call *currentCall = nullptr;
    /// The address of each is a card's handle. Each of the two enumerations may list as many cards as there are at most.
    std::array<char, 2 * kNvApiMaxGpus> handlePlaces{};
};

} // namespace simulated
