#include "support/ZipBytes.h"
#include "updater/ReleasePacket.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#include <unistd.h>
#endif

/// What of an archive reaches the disk.
class TestReleasePacket : public QObject
{
    Q_OBJECT

private slots:
    void unpacks_data();
    void unpacks();
    void unpacksWhatAToolHasPacked();
    void refuses_data();
    void refuses();
    void everyLengthCutOff();
    void neverWritesMoreThanAnnounced_data();
    void neverWritesMoreThanAnnounced();
    void noArchive();
    void targetExists();
    void targetIsALink();
    void targetIsAFolder();
    void noFolderForTheTarget();
    void noModeIsTakenFromTheArchive();
    void fullDisk();

private:
    [[nodiscard]] static ReleaseFile listed(const QString &path, qint64 size)
    {
        ReleaseFile file;
        file.path = path;
        file.size = size;
        return file;
    }
    static void write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
};

namespace
{

QByteArray sample()
{
    return QByteArray("the new version\n").repeated(5000);
}

const QString kName = QStringLiteral("OvrynDeck2");

} // namespace

void TestReleasePacket::unpacks_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("deflated");
    QTest::newRow("packed") << sample() << true;
    QTest::newRow("stored") << sample() << false;
    QTest::newRow("empty, packed") << QByteArray() << true;
    QTest::newRow("empty, stored") << QByteArray() << false;
    QTest::newRow("one byte") << QByteArray("x") << false;
    QTest::newRow("exactly a chunk") << QByteArray(64 * 1024, 'x') << true;
    QTest::newRow("two megabytes of zeros") << QByteArray(2 << 20, '\0') << true;
}

void TestReleasePacket::unpacks()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, deflated);
    const QTemporaryDir folder;
    const QString archive = folder.filePath("a.zip");
    const QString target = folder.filePath("target");
    write(archive, zipOf({{"OvrynDeck2", bytes, deflated}}));
    QVERIFY(unpackReleaseFile(archive, listed(kName, bytes.size()), target));
    QCOMPARE(content(target), bytes);
    // the archive knows the name alone, the manifest the folder
    QVERIFY(unpackReleaseFile(archive, listed("platforms/x/" + kName, bytes.size()), target));
    QCOMPARE(content(target), bytes);
}

void TestReleasePacket::unpacksWhatAToolHasPacked()
{
    const QTemporaryDir folder;
    write(folder.filePath(kName), sample());
    QProcess python;
    python.setWorkingDirectory(folder.path());
    python.start("/usr/bin/python3", {"-m", "zipfile", "-c", "a.zip", kName});
    if (!python.waitForStarted())
        QSKIP("this system has no Python to pack with");
    QVERIFY(python.waitForFinished() && python.exitCode() == 0);
    QVERIFY(unpackReleaseFile(folder.filePath("a.zip"), listed(kName, sample().size()), folder.filePath("target")));
    QCOMPARE(content(folder.filePath("target")), sample());
}

void TestReleasePacket::refuses_data()
{
    const QByteArray bytes = sample();
    const QByteArray good = zipOf({{"OvrynDeck2", bytes}});
    const auto entry = [&bytes](const QByteArray &name) {
        return ZipEntry{name, bytes};
    };
    const auto with = [&entry](void (*change)(ZipEntry &)) {
        ZipEntry changed = entry("OvrynDeck2");
        change(changed);
        return zipOf({changed});
    };
    QTest::addColumn<QByteArray>("archive");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("no archive") << bytes;
    QTest::newRow("no entry") << zipOf({});
    QTest::newRow("two entries") << zipOf({entry("OvrynDeck2"), entry("other")});
    QTest::newRow("two entries, the right one second") << zipOf({entry("other"), entry("OvrynDeck2")});
    QTest::newRow("the same entry twice") << zipOf({entry("OvrynDeck2"), entry("OvrynDeck2")});
    QTest::newRow("another name") << zipOf({entry("OvrynDeck3")});
    QTest::newRow("name in another case") << zipOf({entry("ovryndeck2")});
    QTest::newRow("no name") << zipOf({entry("")});
    QTest::newRow("in a folder") << zipOf({entry("folder/OvrynDeck2")});
    QTest::newRow("above") << zipOf({entry("../OvrynDeck2")});
    QTest::newRow("absolute") << zipOf({entry("/tmp/OvrynDeck2")});
    QTest::newRow("folder of Windows") << zipOf({entry("folder\\OvrynDeck2")});
    QTest::newRow("drive") << zipOf({entry("C:OvrynDeck2")});
    QTest::newRow("a folder") << zipOf({{"OvrynDeck2/", {}, false, 0040755u << 16}});
    QTest::newRow("a link") << with([](ZipEntry &link) { link.attributes = 0120777u << 16; });
    QTest::newRow("one byte less") << zipOf({{"OvrynDeck2", bytes.left(bytes.size() - 1)}});
    QTest::newRow("one byte more") << zipOf({{"OvrynDeck2", bytes + 'x'}});
    QTest::newRow("announces less") << with([](ZipEntry &lie) { lie.announcedSize = 10; });
    QTest::newRow("announces more") << with([](ZipEntry &lie) { lie.announcedSize = 1 << 30; });
    QTest::newRow("announces the right size, has more") << [&] {
        ZipEntry lie{"OvrynDeck2", bytes + bytes};
        lie.announcedSize = bytes.size();
        return zipOf({lie});
    }();
    QTest::newRow("announces the right size, has less") << [&] {
        ZipEntry lie{"OvrynDeck2", bytes.left(100)};
        lie.announcedSize = bytes.size();
        return zipOf({lie});
    }();
    QTest::newRow("packed size too small") << with([](ZipEntry &lie) { lie.announcedPackedSize = 3; });
    QTest::newRow("packed stream damaged") << [&] {
        QByteArray damaged = good;
        for (int i = 60; i < 90; ++i)
            damaged[i] = '\xFF';
        return damaged;
    }();
    QTest::newRow("directory damaged") << QByteArray(good).replace("PK\1\2", "PK\1\3");
    QTest::newRow("no end") << good.left(good.indexOf("PK\5\6"));
    QTest::newRow("directory lies beyond the file") << [&] {
        QByteArray damaged = good;
        damaged.replace(damaged.size() - 6, 4, "\xFF\xFF\xFF\x7F", 4);
        return damaged;
    }();
}

void TestReleasePacket::refuses()
{
    QFETCH(QByteArray, archive);
    const QTemporaryDir world;
    QVERIFY(QDir(world.path()).mkpath("in/deeper"));
    const QString path = world.filePath("in/deeper/a.zip");
    const QString target = world.filePath("in/deeper/target");
    write(path, archive);
    QVERIFY(!unpackReleaseFile(path, listed(kName, sample().size()), target));
    QVERIFY(QFileInfo(target).size() <= sample().size());
    QDir().remove(target);
    QCOMPARE(QDir(world.filePath("in/deeper")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("a.zip"));
    QCOMPARE(QDir(world.filePath("in")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("deeper"));
    QVERIFY(!QFileInfo::exists("/tmp/OvrynDeck2"));
}

void TestReleasePacket::everyLengthCutOff()
{
    const QTemporaryDir folder;
    const QByteArray bytes = "a short file";
    const QByteArray archive = zipOf({{"OvrynDeck2", bytes}});
    for (int length = 0; length < archive.size(); ++length) {
        write(folder.filePath("a.zip"), archive.left(length));
        // only the last bytes say nothing that is needed
        QVERIFY2(
            !unpackReleaseFile(folder.filePath("a.zip"), listed(kName, bytes.size()), folder.filePath("target")) ||
                (length > archive.indexOf("PK\5\6") && content(folder.filePath("target")) == bytes),
            qPrintable(QString::number(length)));
    }
}

void TestReleasePacket::neverWritesMoreThanAnnounced_data()
{
    QTest::addColumn<qint64>("announced");
    QTest::newRow("its size") << qint64(4 << 20);
    QTest::newRow("the listed size") << qint64(1000);
    QTest::newRow("nothing") << qint64(0);
    QTest::newRow("one more") << qint64(1001);
}

/// An archive of some KB that unpacks to 4 MB.
void TestReleasePacket::neverWritesMoreThanAnnounced()
{
    QFETCH(qint64, announced);
    const QTemporaryDir folder;
    ZipEntry bomb{"OvrynDeck2", QByteArray(4 << 20, '\0')};
    bomb.announcedSize = announced;
    write(folder.filePath("a.zip"), zipOf({bomb}));
    QVERIFY(QFileInfo(folder.filePath("a.zip")).size() < 10 * 1024);
    QVERIFY(!unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 1000), folder.filePath("target")));
    QVERIFY(QFileInfo(folder.filePath("target")).size() <= 1000);
}

void TestReleasePacket::noArchive()
{
    const QTemporaryDir folder;
    QVERIFY(!unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 3), folder.filePath("target")));
    QVERIFY(QDir(folder.path()).mkdir("a.zip"));
    QVERIFY(!unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 3), folder.filePath("target")));
    QVERIFY(!QFileInfo::exists(folder.filePath("target")));
}

void TestReleasePacket::targetExists()
{
    const QTemporaryDir folder;
    write(folder.filePath("a.zip"), zipOf({{"OvrynDeck2", "new"}}));
    write(folder.filePath("target"), "what was there before and is longer");
    QVERIFY(unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 3), folder.filePath("target")));
    QCOMPARE(content(folder.filePath("target")), QByteArray("new"));
}

void TestReleasePacket::targetIsALink()
{
#ifdef Q_OS_WIN
    QSKIP("a link of this system needs a right that a test does not have");
#endif
    const QTemporaryDir folder;
    write(folder.filePath("a.zip"), zipOf({{"OvrynDeck2", "new"}}));
    write(folder.filePath("somebody's"), "kept");
    QVERIFY(QFile::link(folder.filePath("somebody's"), folder.filePath("target")));
    QVERIFY(unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 3), folder.filePath("target")));
    QCOMPARE(content(folder.filePath("somebody's")), QByteArray("kept"));
    QVERIFY(!QFileInfo(folder.filePath("target")).isSymLink());
    QCOMPARE(content(folder.filePath("target")), QByteArray("new"));
}

void TestReleasePacket::targetIsAFolder()
{
    const QTemporaryDir folder;
    write(folder.filePath("a.zip"), zipOf({{"OvrynDeck2", "new"}}));
    QVERIFY(QDir(folder.path()).mkpath("target/kept"));
    QVERIFY(!unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 3), folder.filePath("target")));
    QVERIFY(QFileInfo(folder.filePath("target/kept")).isDir());
}

void TestReleasePacket::noFolderForTheTarget()
{
    const QTemporaryDir folder;
    write(folder.filePath("a.zip"), zipOf({{"OvrynDeck2", "new"}}));
    QVERIFY(!unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 3), folder.filePath("missing/target")));
    QVERIFY(!QFileInfo::exists(folder.filePath("missing")));
}

/// Whether a file can be run is the signed list's to say.
void TestReleasePacket::noModeIsTakenFromTheArchive()
{
    const QTemporaryDir folder;
    write(folder.filePath("a.zip"), zipOf({{"OvrynDeck2", "new", true, 0106777u << 16}}));
    QVERIFY(unpackReleaseFile(folder.filePath("a.zip"), listed(kName, 3), folder.filePath("target")));
    const QFile::Permissions executable = QFile::ExeOwner | QFile::ExeUser | QFile::ExeGroup | QFile::ExeOther;
#ifdef Q_OS_WIN
    Q_UNUSED(executable)
#else
    QVERIFY(!(QFileInfo(folder.filePath("target")).permissions() & executable));
    QVERIFY(!(QFileInfo(folder.filePath("target")).permissions() & QFile::WriteOther));
#endif
}

void TestReleasePacket::fullDisk()
{
#ifdef Q_OS_LINUX
    const QTemporaryDir folder;
    const QString disk = folder.filePath("disk");
    QVERIFY(QDir().mkdir(disk));
    if (geteuid() != 0 || mount("none", qPrintable(disk), "tmpfs", 0, "size=64k") != 0)
        QSKIP("only root can mount a small disk");
    const auto unmount = qScopeGuard([&disk] { umount(qPrintable(disk)); });
    const QByteArray bytes(1 << 20, 'x');
    write(folder.filePath("a.zip"), zipOf({{"OvrynDeck2", bytes}}));
    QVERIFY(!unpackReleaseFile(folder.filePath("a.zip"), listed(kName, bytes.size()), disk + "/target"));
    const QByteArray fits(30 * 1024, 'x');
    write(folder.filePath("a.zip"), zipOf({{"OvrynDeck2", fits}}));
    QVERIFY(unpackReleaseFile(folder.filePath("a.zip"), listed(kName, fits.size()), disk + "/target"));
#else
    QSKIP("a small disk is made on Linux alone");
#endif
}

QTEST_GUILESS_MAIN(TestReleasePacket)
#include "TestReleasePacket.moc"
