#include "updater/RemainingTime.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr qint64 kSpanMs = 10000;       // long enough for an even number, short enough for a change of the rate
constexpr qint64 kShortestSpanMs = 500; // below it a rate says nothing
constexpr int kMillisecondsInSecond = 1000;
constexpr double kSecondsMax = 24.0 * 3600.0;

} // namespace

void RemainingTime::add(qint64 ms, qint64 bytes)
{
    samples.push_back({ms, bytes});
    while (samples.size() > 2 && ms - samples.front().ms > kSpanMs)
        samples.pop_front();
}

int RemainingTime::secondsFor(qint64 total) const
{
    if (samples.size() < 2 || total <= samples.back().bytes)
        return 0;
    const qint64 span = samples.back().ms - samples.front().ms;
    const qint64 arrived = samples.back().bytes - samples.front().bytes;
    if (span < kShortestSpanMs || arrived <= 0)
        return 0;
    const double left = double(total - samples.back().bytes) * double(span) / double(arrived) / kMillisecondsInSecond;
    return left > kSecondsMax ? 0 : std::max(1, int(std::ceil(left)));
}
