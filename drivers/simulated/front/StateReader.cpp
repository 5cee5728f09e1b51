#include "simulated/front/StateReader.h"

#include <QFile>

namespace cardfront
{
namespace
{

constexpr qint64 kLargestStateFile = 4 * 1024 * 1024; // bytes; a card takes about 1500

} // namespace

bool StateReader::read()
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray now = file.read(kLargestStateFile);
    if (now == text)
        return false;
    text = now;
    const std::optional<QVector<CardFront>> cards = cardFrontsOf(now);
    if (!cards || *cards == known)
        return false;
    known = *cards;
    return true;
}

} // namespace cardfront
