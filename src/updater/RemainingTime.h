#pragma once

#include <QtGlobal>

#include <deque>

/// Estimates how long a transfer still takes, from its rate over the last seconds. Any thread, one object at a time.
class RemainingTime
{
public:
    void restart() { samples.clear(); }
    /// `bytes` have arrived at the time `ms`, which never goes back.
    void add(qint64 ms, qint64 bytes);
    /// Seconds for the rest of `total`, at least 1 while something is left; 0 where nothing can be said.
    [[nodiscard]] int secondsFor(qint64 total) const;

private:
    struct Sample
    {
        qint64 ms;
        qint64 bytes;
    };
    std::deque<Sample> samples; ///< of the last kSpanMs
};
