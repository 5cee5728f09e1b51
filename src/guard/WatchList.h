#pragma once

#include <QtGlobal>

#include <set>
#include <string>

/// The protocol between the program and its fan guard, and the guard's state: the cards whose fans follow a curve.
/// The program writes lines to the guard's standard input. When the input ends while the list is not empty, the
/// program has died.
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
