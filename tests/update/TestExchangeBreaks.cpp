#include "FailingDisk.h"
#include "update/FileExchange.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

#include <sys/wait.h>
#include <unistd.h>

using FailingDisk::Way;

namespace
{

/// Every file of an installation but those in temp: content, and "x" where it may be run.
using Tree = QMap<QString, QByteArray>;

constexpr int kChangedFiles = 22;
constexpr int kPlacesAtLeast = 200; // at which the exchange is broken off

Tree oldTree()
{
    Tree tree{{"OvrynDeck2", "xthe old program"},
              {"config.xml", " the user's own"},
              {"updateLog/english.txt", " old log"},
              {"obsolete.dll", " of the old version alone"},
              {"plugins/obsolete/old.dll", " of the old version alone"},
              {"unchanged.dll", " the same in both"}};
    for (int i = 0; i < kChangedFiles; ++i)
        tree.insert(QStringLiteral("library%1.dll").arg(i), " old content " + QByteArray::number(i));
    return tree;
}

Tree newTree()
{
    Tree tree = oldTree();
    tree["OvrynDeck2"] = "xthe new program, longer than the old one";
    tree["updateLog/english.txt"] = " new log";
    tree.remove("obsolete.dll");
    tree.remove("plugins/obsolete/old.dll");
    tree["plugins/platforms/deep/new.dll"] = " in folders that were not there";
    tree["plugins/platforms/second.dll"] = " in one of them";
    tree["new.dll"] = " beside the program";
    tree["empty.txt"] = " ";
    for (int i = 0; i < kChangedFiles; ++i)
        tree[QStringLiteral("library%1.dll").arg(i)] = " new content " + QByteArray::number(i).repeated(500);
    return tree;
}

void write(const QString &path, const QByteArray &content, bool executable)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
    if (executable)
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
}

Tree treeIn(const QString &installation)
{
    Tree tree;
    QDirIterator files(installation, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = QDir(installation).relativeFilePath(files.next());
        if (path.startsWith(QLatin1String("temp/")))
            continue;
        QFile file(files.filePath());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("cannot read %s", qPrintable(path));
        tree.insert(path, (files.fileInfo().isExecutable() ? 'x' : ' ') + file.readAll());
    }
    return tree;
}

/// Runs something in a process of its own and gives its exit status.
int statusOf(const std::function<int()> &work)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        qFatal("a child process did not end by itself");
    return WEXITSTATUS(status);
}

/// An installation of the old version with the new one's files staged.
class World
{
public:
    World()
    {
        const Tree before = oldTree();
        for (auto file = before.cbegin(); file != before.cend(); ++file)
            write(path() + QLatin1Char('/') + file.key(), file.value().mid(1), file.value().startsWith('x'));
        FileExchange exchange(path());
        if (!exchange.begin())
            qFatal("no working folder");
        const Tree after = newTree();
        for (auto file = after.cbegin(); file != after.cend(); ++file) {
            if (before.value(file.key()) == file.value())
                continue;
            const QByteArray content = file.value().mid(1);
            write(exchange.stagedPath(files.size()), content, false);
            files.append({file.key(), QCryptographicHash::hash(content, QCryptographicHash::Sha256), content.size(),
                          file.value().startsWith('x')});
        }
        for (auto file = before.cbegin(); file != before.cend(); ++file) {
            if (!after.contains(file.key()))
                files.append({file.key(), {}, 0});
        }
    }

    [[nodiscard]] QString path() const { return QFileInfo(folder.path()).canonicalFilePath(); }

    /// In a process of its own, while the disk fails; the outcome, or FailingDisk::kEndedByDisk.
    [[nodiscard]] int exchange(Way way, int call) const
    {
        return statusOf([=] {
            FileExchange exchange(path());
            FailingDisk::arm(way, call);
            return int(exchange.exchange(files));
        });
    }
    [[nodiscard]] int resume(Way way = Way::CountOnly, int call = 0) const
    {
        return statusOf([=] {
            FileExchange exchange(path());
            FailingDisk::arm(way, call);
            return int(exchange.resume());
        });
    }
    /// How many calls of the disk an exchange without a failure makes.
    [[nodiscard]] int callsOfAnExchange() const
    {
        int ends[2];
        if (pipe(ends) != 0)
            qFatal("no pipe");
        statusOf([&] {
            FileExchange exchange(path());
            FailingDisk::arm(Way::CountOnly, 0);
            const auto outcome = exchange.exchange(files);
            const int calls = FailingDisk::calls();
            const bool passed = outcome == ExchangeOutcome::Completed && ::write(ends[1], &calls, sizeof calls) > 0;
            return passed ? 0 : 1;
        });
        int calls = 0;
        close(ends[1]);
        if (read(ends[0], &calls, sizeof calls) != int(sizeof calls))
            calls = 0;
        close(ends[0]);
        return calls;
    }

private:
    // In memory where the system has such a folder: each world waits for the disk some hundred times.
    QTemporaryDir folder{QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                             ? QStringLiteral("/dev/shm/ovryn-XXXXXX")
                             : QDir::tempPath() + QStringLiteral("/XXXXXX")};
    QVector<ExchangedFile> files;
};

bool isUnfinished(const World &world)
{
    return FileExchange(world.path()).isUnfinished();
}

} // namespace

/// The exchange of an update's files, broken off at each call that changes something on the disk: what the next start
/// completes or takes back is the old version or the new one, never a mixture.
class TestExchangeBreaks : public QObject
{
    Q_OBJECT

private slots:
    void undisturbed();
    void endAtEachCall_data();
    void endAtEachCall();
    void endOfTheResume();
    void failureAtEachCall_data();
    void failureAtEachCall();
};

void TestExchangeBreaks::undisturbed()
{
    const World world;
    QCOMPARE(world.exchange(Way::CountOnly, 0), int(ExchangeOutcome::Completed));
    QCOMPARE(treeIn(world.path()), newTree());
    QCOMPARE(world.resume(), int(ExchangeOutcome::CompletedBefore));
    QVERIFY2(World().callsOfAnExchange() >= kPlacesAtLeast, qPrintable(QString::number(World().callsOfAnExchange())));
}

void TestExchangeBreaks::endAtEachCall_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("before the call") << int(Way::EndProcess);
    QTest::newRow("in the middle of a write") << int(Way::EndInWriting);
}

void TestExchangeBreaks::endAtEachCall()
{
    QFETCH(int, way);
    const int calls = World().callsOfAnExchange();
    int oldVersions = 0;
    for (int call = 1; call <= calls; ++call) {
        const World world;
        QCOMPARE(world.exchange(Way(way), call), FailingDisk::kEndedByDisk);
        const int outcome = world.resume();
        QVERIFY2(!isUnfinished(world), qPrintable(QStringLiteral("call %1").arg(call)));
        const Tree tree = treeIn(world.path());
        const bool isNew = tree == newTree();
        if (!isNew)
            QCOMPARE(tree, oldTree());
        const bool saysNew =
            outcome == int(ExchangeOutcome::Completed) || outcome == int(ExchangeOutcome::CompletedBefore);
        QCOMPARE(saysNew, isNew);
        oldVersions += isNew ? 0 : 1;
    }
    // Both have to come: before the journal stands nothing was touched, after it everything is completed.
    QVERIFY(oldVersions > 0);
    QVERIFY(oldVersions < calls);
}

/// A resume that is broken off itself is resumed like the first exchange.
void TestExchangeBreaks::endOfTheResume()
{
    const int calls = World().callsOfAnExchange();
    int broken = 0;
    for (int call = calls / 2; call <= calls; call += 25) {
        for (int later = 1;; later += 9) {
            const World world;
            QCOMPARE(world.exchange(Way::EndProcess, call), FailingDisk::kEndedByDisk);
            const bool wasBroken = world.resume(Way::EndProcess, later) == FailingDisk::kEndedByDisk;
            broken += wasBroken ? 1 : 0;
            static_cast<void>(world.resume());
            const Tree tree = treeIn(world.path());
            if (tree != newTree())
                QCOMPARE(tree, oldTree());
            if (!wasBroken)
                break;
        }
    }
    QVERIFY(broken > 0);
}

void TestExchangeBreaks::failureAtEachCall_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("one call fails") << int(Way::FailOnce);
    QTest::newRow("the disk is full from then on") << int(Way::DiskFull);
    QTest::newRow("nothing can be written from then on") << int(Way::ReadOnly);
}

void TestExchangeBreaks::failureAtEachCall()
{
    QFETCH(int, way);
    const int calls = World().callsOfAnExchange();
    for (int call = 1; call <= calls; ++call) {
        const World world;
        const auto outcome = ExchangeOutcome(world.exchange(Way(way), call));
        if (outcome == ExchangeOutcome::Unfinished) {
            QVERIFY(Way(way) != Way::DiskFull); // the moves need no room
            static_cast<void>(world.resume());
        } else if (outcome == ExchangeOutcome::Completed) {
            QCOMPARE(treeIn(world.path()), newTree());
        } else {
            QCOMPARE(outcome, ExchangeOutcome::WentBack);
            QCOMPARE(treeIn(world.path()), oldTree());
        }
        QVERIFY(!isUnfinished(world));
        const Tree tree = treeIn(world.path());
        if (tree != newTree())
            QCOMPARE(tree, oldTree());
    }
}

QTEST_GUILESS_MAIN(TestExchangeBreaks)
#include "TestExchangeBreaks.moc"
