#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

/// One file that an exchange brings or removes.
struct ExchangedFile
{
    QString path;      ///< below the installation, see mayBeInstalled
    QByteArray sha256; ///< of the new content, 32 bytes; empty where the file is removed
    qint64 size = 0;   ///< of the new content, bytes
    bool executable = false;

    [[nodiscard]] bool isRemoved() const { return sha256.isEmpty(); }
};

/// How an exchange ended, or what was found of an earlier one.
enum class ExchangeOutcome
{
    Nothing,         ///< there was none
    CompletedBefore, ///< the new version stands and stood before this call
    Completed,       ///< the new version stands
    WentBack,        ///< the old version stands, as it was
    Unfinished,      ///< neither: a file can't be moved now; a later call tries again
};

/// Exchanges the files of an installation, all or none, so that an end at any moment, of the process or of the whole
/// machine, leaves what the next start of either program completes or takes back.
///
/// It works in the folder temp/exchange of the installation, on the same file system: new files wait in `new`, the
/// old ones are kept in `old`, and a journal says what belongs where. The journal's name is the state: before
/// "journal.forward" stands nothing was touched; from then on every file is moved to its place; a failure renames it
/// to "journal.back", and what was moved is taken back; "journal.done" stands until the program has seen its new
/// version. The moves need no room on the disk. A working folder that a link leads to is never looked into.
///
/// Any thread, one object at a time for an installation, and only while no program of that installation can start:
/// the caller holds the program's single-instance lock.
class FileExchange
{
public:
    /// `installation` is the canonical path of the folder.
    explicit FileExchange(const QString &installation);

    /// Empties the working folder and makes it anew. False where that fails or an exchange is unfinished.
    [[nodiscard]] bool begin();

    /// Where the new content of the file with that index is to be written before `exchange`.
    [[nodiscard]] QString stagedPath(int index) const;

    /// Exchanges the files, whose new contents are staged. Each is checked once more as it lies on the disk. Files
    /// whose path is not allowed or stands twice, or whose place is a link or a folder, fail the whole exchange.
    [[nodiscard]] ExchangeOutcome exchange(const QVector<ExchangedFile> &files);

    /// Completes an exchange that was broken off, or takes it back where it can't be completed.
    [[nodiscard]] ExchangeOutcome resume();

    /// True between the first move and the end of an exchange: the working folder must stay as it is.
    [[nodiscard]] bool isUnfinished() const;

    /// Forgets a completed exchange and what was kept for it.
    void forget();

    /// The file that the last failure is about, below the installation; empty where it is about none.
    [[nodiscard]] QString failedPath() const { return failure; }

private:
    struct Entry
    {
        ExchangedFile file;
        QByteArray formerSha256; ///< of the content before; empty where there was no file
    };
    struct Journal
    {
        QVector<Entry> entries;
        QStringList newFolders; ///< made for the new files, parents first
    };

    [[nodiscard]] bool hasPlainWork() const;
    [[nodiscard]] QString inWork(const char *name) const;
    [[nodiscard]] QString keptPath(int index) const;
    [[nodiscard]] QString sparePath(int index, const char *purpose) const;
    [[nodiscard]] QString target(const QString &path) const;
    [[nodiscard]] bool describe(const ExchangedFile &file, int index, Journal &journal);
    [[nodiscard]] bool keepOld(const Journal &journal);
    [[nodiscard]] bool writeJournal(const Journal &journal);
    [[nodiscard]] bool readJournal(const char *name, Journal &journal) const;
    [[nodiscard]] bool setState(const char *from, const char *to);
    [[nodiscard]] bool placeNew(const Entry &entry, int index);
    [[nodiscard]] bool placeOld(const Entry &entry, int index);
    [[nodiscard]] bool syncFoldersOf(const Journal &journal) const;
    [[nodiscard]] ExchangeOutcome goForward(const Journal &journal);
    [[nodiscard]] ExchangeOutcome goBack(const Journal &journal);

    QString root; ///< the installation
    QString work; ///< temp/exchange in it
    QString failure;
};

/// The SHA-256 of a plain file's content, 32 bytes; empty where it can't be read, or is a link or no file.
[[nodiscard]] QByteArray sha256OfFile(const QString &path);

/// Waits until the file's content lies on the disk, where a power cut leaves it.
[[nodiscard]] bool syncFileAt(const QString &path);
