#include "update/FileExchange.h"
#include "update/InstallationPath.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>

/// \file
/// Any bytes as the journal of an exchange that was broken off, with a few files that it may name: nothing outside
/// the installation changes, nor the settings in it, and a second look finds nothing to do or the same.

namespace
{

void require(bool condition, const char *what)
{
    if (!condition)
        qFatal("%s", what);
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    require(QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
                file.write(bytes) == bytes.size(),
            "no file to fuzz with");
}

QMap<QString, QByteArray> contentsBelow(const QString &path)
{
    QMap<QString, QByteArray> contents;
    QDirIterator entries(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString entry = entries.next();
        QFile file(entry);
        contents[entry] = QFileInfo(entry).isSymLink() ? QFileInfo(entry).symLinkTarget().toUtf8()
                          : QFileInfo(entry).isFile() && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                                        : QByteArray();
    }
    return contents;
}

} // namespace

/// The first byte says whether the exchange goes forward or back.
extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, size_t size)
{
    if (size == 0)
        return 0;
    static const QTemporaryDir world;
    static const QString root = QDir(world.path()).canonicalPath();
    const QString installation = root + QStringLiteral("/installation");
    const QString outside = root + QStringLiteral("/outside");
    const QString work = installation + QStringLiteral("/temp/exchange");
    write(outside + QStringLiteral("/a"), "somebody's");
    write(outside + QStringLiteral("/new/0"), "somebody's");
    write(installation + QStringLiteral("/a"), "old");
    write(installation + QStringLiteral("/f/b"), "old");
    write(installation + QStringLiteral("/config.xml"), "settings");
    QFile::link(outside, installation + QStringLiteral("/link"));
    write(work + QStringLiteral("/new/0"), "new");
    write(work + QStringLiteral("/new/1"), "new");
    write(work + QStringLiteral("/old/0"), "old");
    write(work + QStringLiteral("/old/1"), "old");
    write(work + ((data[0] & 1) != 0 ? QStringLiteral("/journal.back") : QStringLiteral("/journal.forward")),
          QByteArray(reinterpret_cast<const char *>(data + 1), int(size) - 1));
    const auto before = contentsBelow(outside);

    FileExchange exchange(installation);
    const ExchangeOutcome outcome = exchange.resume();
    require(outcome != ExchangeOutcome::Nothing, "there was a journal");
    require(exchange.isUnfinished() == (outcome == ExchangeOutcome::Unfinished), "it says whether it is at an end");
    const ExchangeOutcome again = exchange.resume();
    require(outcome != ExchangeOutcome::Completed || again == ExchangeOutcome::CompletedBefore,
            "completed is completed");
    require(outcome != ExchangeOutcome::WentBack || again == ExchangeOutcome::Nothing, "gone back is gone back");
    require(outcome != ExchangeOutcome::Unfinished || again == ExchangeOutcome::Unfinished,
            "nothing has changed since");
    exchange.forget();

    require(contentsBelow(outside) == before, "nothing outside the installation changed");
    QFile settings(installation + QStringLiteral("/config.xml"));
    require(settings.open(QIODevice::ReadOnly) && settings.readAll() == "settings", "the settings are the program's");
    for (const QString &path : contentsBelow(installation).keys())
        require(path.startsWith(work) || path == installation + QStringLiteral("/temp") ||
                    mayBeInstalled(path.mid(installation.size() + 1)) || path.endsWith(QLatin1String("config.xml")),
                "every file lies where it may");
    QFile::remove(installation + QStringLiteral("/link"));
    require(QDir(installation).removeRecursively(), "the folder can be emptied");
    return 0;
}
