#pragma once

#include <QtGlobal>

#include <chrono>

namespace simulated
{

/// Time since the driver was loaded. It runs with the wall clock, or only when it is advanced.
class SimulatedClock
{
public:
    enum Kind
    {
        Wall,
        Manual,
    };

    explicit SimulatedClock(Kind clockKind) : kind(clockKind) {}

    [[nodiscard]] qint64 elapsedMs() const
    {
        using namespace std::chrono;
        const auto run = kind == Wall ? steady_clock::now() - start : steady_clock::duration::zero();
        return duration_cast<milliseconds>(run).count() + pushedMs;
    }

    void push(qint64 milliseconds) { pushedMs += milliseconds; }

private:
    Kind kind;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    qint64 pushedMs = 0;
};

} // namespace simulated
