#pragma once

#include "simulated/front/CardFront.h"

namespace cardfront
{

/// Looks at a state file again and again. The file is small and replaced as a whole, so it is read each time and
/// compared with what was there before: neither its time nor a watcher's notice can mislead. One thread.
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
