#pragma once

#include "simulated/Answers.h"
#include "simulated/Scenario.h"

#include <cstring>

namespace simulated
{

/// The answers of cards that behave: what is written changes what is read next, and time passes.
class Operations final : public Answers
{
public:
    explicit Operations(const Scenario &scenario);

    DriverParameters driver;
    std::vector<Card> cards;

    [[nodiscard]] std::size_t cardCount() const override { return cards.size(); }
    [[nodiscard]] bool isLost(std::size_t index) const override { return cards.at(index).lost; }
    [[nodiscard]] CallContext contextOf(std::optional<quint32> index) const override;
    [[nodiscard]] std::string stateText(qint64 elapsedMs) const override;
    void catchUp(qint64 elapsedMs) override;

    // clang-format off
#define OVRYN_SIMULATED_OPERATION(identifier, name, parameters, arguments) NvAPI_Status name parameters override;
    OVRYN_NVAPI_OPERATIONS(OVRYN_SIMULATED_OPERATION)
#undef OVRYN_SIMULATED_OPERATION
    // clang-format on

private:
    [[nodiscard]] Card &card()
    {
        return cards.at(call().card.value());
    }
    [[nodiscard]] quint32 displayCount() const;
    [[nodiscard]] quint32 version() const
    {
        return call().version.value();
    }

    /// A refusal with its reason for the journal.
    NvAPI_Status refuse(NvAPI_Status status, const std::string &reason)
    {
        call().note = reason;
        return status;
    }

    /// A count as the driver answers it: true, or far too large when the driver is hostile.
    template <class Word>
    [[nodiscard]] Word answeredCount(std::size_t count) const
    {
        const quint32 hostile = driver.hostility.count;
        return static_cast<Word>(hostile > 0 ? hostile : count);
    }

    /// Fills a text buffer of 64 bytes, cut to fit.
    void writeText(char *buffer, const std::string &text) const;

    /// Copies a whole answer of the newest layout into the caller's record, cut to its version's size.
    template <class Record>
    void writeAnswer(Record *record, Record answer) const
    {
        answer.version = version();
        const std::size_t size = nvApiRecordSize(version());
        std::memcpy(record, &answer, size < sizeof(Record) ? size : sizeof(Record));
    }

    /// Lists the cards of one kind for the two enumerations.
    NvAPI_Status enumerate(bool tcc, NvPhysicalGpuHandle *gpus, quint32 *count);

    NvAPI_Status checkTransfer(const NV_I2C_INFO &record);
    NvAPI_Status readBus(NV_I2C_INFO *record);
    NvAPI_Status writeBus(NV_I2C_INFO *record);
};

} // namespace simulated
