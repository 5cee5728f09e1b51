#pragma once

#include "simulated/front/CardFront.h"

namespace cardfront
{

/// Reads a state file repeatedly. The file is small and replaced as a whole, so each read compares its text with the
/// earlier one; file times and file watchers could miss a change. One thread.
class StateReader
{
public:
    explicit StateReader(const QString &statePath) : path(statePath) {}

    /// Reads the file; true when `cards` says something new. A file that is absent, unreadable or no state file
    /// changes nothing: the cards that were there last stay.
    bool read();

    [[nodiscard]] const QVector<CardFront> &cards() const { return known; }

private:
    QString path;
    QByteArray text; ///< of the file when it was last read
    QVector<CardFront> known;
};

} // namespace cardfront
