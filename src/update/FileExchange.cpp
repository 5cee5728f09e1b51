#include "update/FileExchange.h"

#include "platform/FileReplacement.h"
#include "platform/FileSync.h"
#include "update/InstallationPath.h"
#include "update/UpdateFiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace
{

const char *const kForward = "journal.forward";
const char *const kBack = "journal.back";
const char *const kDone = "journal.done";
const char *const kBeingWritten = "journal.part";

constexpr qint64 kJournalBytesMax = 4 * 1024 * 1024;
constexpr int kJournalFilesMax = 4096;

bool exists(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink(); // also a link into nothing
}

bool isPlainFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && !info.isSymLink();
}

bool holds(const QString &path, const QByteArray &sha256)
{
    return !sha256.isEmpty() && sha256OfFile(path) == sha256;
}

bool setPermissions(const QString &path, bool executable)
{
    QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther |
                                     QFile::ReadUser | QFile::WriteUser;
    if (executable)
        permissions |= QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther | QFile::ExeUser;
    return QFile::setPermissions(path, permissions);
}

QString folderOf(const QString &path)
{
    return QFileInfo(path).path();
}

} // namespace

QByteArray sha256OfFile(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!isPlainFile(path) || !file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return hash.result();
}

bool syncFileAt(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && syncToDisk(file);
}

FileExchange::FileExchange(const QString &installation)
    : root(installation),
      work(installation + QLatin1Char('/') + QLatin1String(kUpdateFolder) + QStringLiteral("/exchange"))
{
}

QString FileExchange::inWork(const char *name) const
{
    return work + QLatin1Char('/') + QLatin1String(name);
}

QString FileExchange::stagedPath(int index) const
{
    return inWork("new/") + QString::number(index);
}

QString FileExchange::keptPath(int index) const
{
    return inWork("old/") + QString::number(index);
}

QString FileExchange::sparePath(int index, const char *purpose) const
{
    return inWork("old/") + QString::number(index) + QLatin1Char('.') + QLatin1String(purpose);
}

QString FileExchange::target(const QString &path) const
{
    return root + QLatin1Char('/') + path;
}

/// False where a link leads elsewhere: what lies there is not this exchange's, and may be anybody's.
bool FileExchange::hasPlainWork() const
{
    return leadsThroughPlainFolders(root, QStringLiteral("temp/exchange/new/0")) &&
           leadsThroughPlainFolders(root, QStringLiteral("temp/exchange/old/0"));
}

bool FileExchange::isUnfinished() const
{
    return hasPlainWork() && (exists(inWork(kForward)) || exists(inWork(kBack)));
}

bool FileExchange::begin()
{
    failure.clear();
    if (isUnfinished() || !hasPlainWork())
        return false;
    forget();
    return QDir().mkpath(inWork("new")) && QDir().mkpath(inWork("old"));
}

void FileExchange::forget()
{
    if (isUnfinished() || !hasPlainWork())
        return;
    clearFolder(inWork("new"));
    clearFolder(inWork("old"));
    QFile::remove(inWork(kDone)); // last, so that a further call finds what an end in between has left
    clearFolder(work);
    QDir().rmdir(work);
}

ExchangeOutcome FileExchange::exchange(const QVector<ExchangedFile> &files)
{
    failure.clear();
    Journal journal;
    if (isUnfinished() || !hasPlainWork() || files.size() > kJournalFilesMax)
        return ExchangeOutcome::WentBack;
    QSet<QString> paths;
    for (int i = 0; i < files.size(); ++i) {
        const QString path = files.at(i).path.toLower(); // some file systems take both for one
        if (paths.contains(path) || !describe(files.at(i), i, journal)) {
            failure = files.at(i).path;
            return ExchangeOutcome::WentBack;
        }
        paths.insert(path);
    }
    if (keepOld(journal) && writeJournal(journal))
        return goForward(journal);
    // Nothing was moved yet; a journal that might not last is taken away.
    if (exists(inWork(kForward)) && !QFile::remove(inWork(kForward)))
        return ExchangeOutcome::Unfinished;
    return ExchangeOutcome::WentBack;
}

ExchangeOutcome FileExchange::resume()
{
    failure.clear();
    if (!hasPlainWork())
        return ExchangeOutcome::Nothing;
    Journal journal;
    if (exists(inWork(kBack)))
        return readJournal(kBack, journal) ? goBack(journal) : ExchangeOutcome::Unfinished;
    if (exists(inWork(kForward)))
        return readJournal(kForward, journal) ? goForward(journal) : ExchangeOutcome::Unfinished;
    return exists(inWork(kDone)) ? ExchangeOutcome::CompletedBefore : ExchangeOutcome::Nothing;
}

/// Checks one file and its place, makes its staged content ready for the move, and notes what stands there now.
bool FileExchange::describe(const ExchangedFile &file, int index, Journal &journal)
{
    const QString place = target(file.path);
    if (!mayBeInstalled(file.path) || !leadsThroughPlainFolders(root, file.path) ||
        (exists(place) && !isPlainFile(place)))
        return false;
    if (!file.isRemoved()) {
        const QString staged = stagedPath(index);
        if (QFileInfo(staged).size() != file.size || !setPermissions(staged, file.executable) ||
            !syncFileAt(staged) || !holds(staged, file.sha256))
            return false;
        QStringList missing;
        for (QString folder = file.path.section(QLatin1Char('/'), 0, -2); !folder.isEmpty();
             folder = folder.section(QLatin1Char('/'), 0, -2)) {
            if (!exists(target(folder)) && !journal.newFolders.contains(folder))
                missing.prepend(folder);
        }
        journal.newFolders += missing;
    }
    const QByteArray former = sha256OfFile(place);
    if (exists(place) && former.isEmpty()) // unreadable
        return false;
    journal.entries.append({file, former});
    return true;
}

bool FileExchange::keepOld(const Journal &journal)
{
    for (int i = 0; i < journal.entries.size(); ++i) {
        const Entry &entry = journal.entries.at(i);
        if (!entry.formerSha256.isEmpty() &&
            (!keepUnderSecondName(target(entry.file.path), keptPath(i)) || !syncFileAt(keptPath(i)))) {
            failure = entry.file.path;
            return false;
        }
    }
    return syncFolderToDisk(inWork("old")) && syncFolderToDisk(inWork("new"));
}

bool FileExchange::writeJournal(const Journal &journal)
{
    QJsonArray files;
    for (const Entry &entry : journal.entries) {
        files.append(QJsonObject{{"path", entry.file.path},
                                 {"sha256", QString::fromLatin1(entry.file.sha256.toHex())},
                                 {"size", double(entry.file.size)},
                                 {"executable", entry.file.executable},
                                 {"formerSha256", QString::fromLatin1(entry.formerSha256.toHex())}});
    }
    const QJsonObject content{{"files", files}, {"newFolders", QJsonArray::fromStringList(journal.newFolders)}};
    QFile file(inWork(kBeingWritten));
    const QByteArray text = QJsonDocument(content).toJson();
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush() && syncToDisk(file) &&
           (file.close(), setState(kBeingWritten, kForward));
}

/// False for a journal that is damaged, or names a place where no update may write.
bool FileExchange::readJournal(const char *name, Journal &journal) const
{
    QFile file(inWork(name));
    if (!file.open(QIODevice::ReadOnly) || file.size() > kJournalBytesMax)
        return false;
    const QJsonObject content = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray files = content.value("files").toArray();
    if (!content.contains("files") || files.size() > kJournalFilesMax)
        return false;
    for (const QJsonValue &value : files) {
        const QJsonObject object = value.toObject();
        const auto hash = [&object](const char *key) {
            return QByteArray::fromHex(object.value(QLatin1String(key)).toString().toLatin1());
        };
        const ExchangedFile exchanged{object.value("path").toString(), hash("sha256"),
                                      qint64(object.value("size").toDouble()), object.value("executable").toBool()};
        if (!mayBeInstalled(exchanged.path))
            return false;
        journal.entries.append({exchanged, hash("formerSha256")});
    }
    for (const QJsonValue &value : content.value("newFolders").toArray()) {
        if (!mayBeInstalled(value.toString()))
            return false;
        journal.newFolders.append(value.toString());
    }
    return true;
}

bool FileExchange::setState(const char *from, const char *to)
{
    return replaceFile(inWork(from), inWork(to), inWork("journal.spare")) && syncFolderToDisk(work);
}

ExchangeOutcome FileExchange::goForward(const Journal &journal)
{
    for (int i = 0; i < journal.entries.size(); ++i) {
        const Entry &entry = journal.entries.at(i);
        if (placeNew(entry, i))
            continue;
        failure = entry.file.path;
        return setState(kForward, kBack) ? goBack(journal) : ExchangeOutcome::Unfinished;
    }
    if (!syncFoldersOf(journal) || !setState(kForward, kDone))
        return ExchangeOutcome::Unfinished;
    clearFolder(inWork("new"));
    clearFolder(inWork("old"));
    return ExchangeOutcome::Completed;
}

ExchangeOutcome FileExchange::goBack(const Journal &journal)
{
    for (int i = journal.entries.size() - 1; i >= 0; --i) {
        if (!placeOld(journal.entries.at(i), i)) {
            failure = journal.entries.at(i).file.path;
            return ExchangeOutcome::Unfinished;
        }
    }
    for (auto folder = journal.newFolders.crbegin(); folder != journal.newFolders.crend(); ++folder) {
        if (leadsThroughPlainFolders(root, *folder + QStringLiteral("/x")))
            QDir().rmdir(target(*folder)); // stays where it is not empty
    }
    if (!syncFoldersOf(journal) || !QFile::remove(inWork(kBack)))
        return ExchangeOutcome::Unfinished;
    forget();
    return ExchangeOutcome::WentBack;
}

bool FileExchange::placeNew(const Entry &entry, int index)
{
    const QString place = target(entry.file.path);
    if (!leadsThroughPlainFolders(root, entry.file.path))
        return false;
    if (entry.file.isRemoved())
        return !exists(place) || QFile::remove(place);
    const QString staged = stagedPath(index);
    if (!exists(staged)) // moved before a break
        return holds(place, entry.file.sha256);
    return holds(staged, entry.file.sha256) && QDir().mkpath(folderOf(place)) &&
           leadsThroughPlainFolders(root, entry.file.path) && replaceFile(staged, place, sparePath(index, "new"));
}

bool FileExchange::placeOld(const Entry &entry, int index)
{
    const QString place = target(entry.file.path);
    if (!leadsThroughPlainFolders(root, entry.file.path))
        return false;
    if (entry.formerSha256.isEmpty())
        return !holds(place, entry.file.sha256) || QFile::remove(place);
    if (holds(place, entry.formerSha256))
        return true;
    return holds(keptPath(index), entry.formerSha256) && replaceFile(keptPath(index), place, sparePath(index, "old"));
}

bool FileExchange::syncFoldersOf(const Journal &journal) const
{
    QStringList folders;
    for (const Entry &entry : journal.entries) {
        const QString folder = folderOf(target(entry.file.path));
        if (!folders.contains(folder) && QFileInfo(folder).isDir())
            folders.append(folder);
    }
    for (const QString &folder : qAsConst(folders)) {
        if (!syncFolderToDisk(folder))
            return false;
    }
    return true;
}
