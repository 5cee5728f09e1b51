#pragma once

#include <QtGlobal>

#include <set>
#include <string>

/// What the program and its fan guard say to each other, and what the guard remembers of it: the cards whose fans
/// follow a curve that somebody must watch. The lines go one way, over the guard's standard input; its end without an
/// empty list is the program's death.
class WatchList
{
public:
    /// The line that puts a card on the list; `gpuIndex` as NvGpuControl::setCurrentGpu takes it.
    [[nodiscard]] static std::string watchLine(qint32 gpuIndex);
    /// The line that takes it off.
    [[nodiscard]] static std::string releaseLine(qint32 gpuIndex);

    /// One line without its end. Any other text changes nothing.
    void apply(const std::string &line);

    [[nodiscard]] const std::set<qint32> &cards() const { return watched; }

private:
    std::set<qint32> watched;
};
