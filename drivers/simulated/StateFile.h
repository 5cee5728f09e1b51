#pragma once

#include "simulated/Card.h"

#include <chrono>
#include <string>
#include <vector>

namespace simulated
{

/// The state of all cards in one file, replaced as a whole so that a reader never sees half of it.
class StateFile
{
public:
    explicit StateFile(const std::string &statePath) : path(statePath) {}
    /// False without a file, and within 100 ms of the last write unless `evenIfRecent` is set.
    [[nodiscard]] bool isDue(bool evenIfRecent) const;
    void write(const std::string &text);

private:
    std::string path;
    bool written = false;
    std::chrono::steady_clock::time_point writtenAt;
};

/// The JSON text of the state file.
std::string stateText(const std::vector<Card> &cards, qint64 timeMs);

} // namespace simulated
