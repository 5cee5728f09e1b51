#include "update/UpdateFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// What the update does to files. Each test's world is a folder with the installation, the current folder, in it;
/// nothing beside the installation may ever change.
class TestUpdateFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void returnIsRecognised_data();
    void returnIsRecognised();
    void updaterBesideTheProgram();
    void updaterElsewhere_data();
    void updaterElsewhere();
    void clearingEmptiesTheFolder();
    void clearingDoesNotFollowLinks();
    void clearingALink_data();
    void clearingALink();
    void clearingAMissingFolder();
    void clearingAFile();
    void takesTheUpdaterOut_data();
    void takesTheUpdaterOut();
    void onlyTheFirstEntryCounts();
    void otherFilesAreNoUpdater();
    void withoutAnArchiveNothingHappens();
    void whatIsTakenFromTheArchive_data();
    void whatIsTakenFromTheArchive();
    void linkInTheArchive();
    void folderInPlaceOfTheTarget();
    void targetIsALink_data();
    void targetIsALink();
    void hostileEntries_data();
    void hostileEntries();
    void tempMayBeALink();

private:
    static void write(const QString &path, const QByteArray &content)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    static void copyArchive(const QString &name, const QString &path)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QVERIFY(QFile::copy(QStringLiteral(OVRYN_TEST_ARCHIVES "/") + name, path));
    }
    /// Every file beside the installation, with its content or the place that it links to.
    [[nodiscard]] QStringList outside() const;

    std::unique_ptr<QTemporaryDir> world;
    QString formerFolder;
};

namespace
{

const QString kUpdater = QStringLiteral("OvrynUpdate.exe");

QByteArray newUpdater()
{
    return QByteArray("the new updater\n").repeated(64);
}

UpdateFileInfo updaterEntry(const QString &dir, const QString &version)
{
    return {kUpdater, dir, version};
}

} // namespace

void TestUpdateFiles::init()
{
    formerFolder = QDir::currentPath();
    world = std::make_unique<QTemporaryDir>();
    const QString installation = world->filePath(QStringLiteral("installation"));
    QVERIFY(QDir().mkpath(installation + QStringLiteral("/temp")));
    QVERIFY(QDir::setCurrent(installation));
    write(world->filePath(QStringLiteral("other/OvrynUpdate.exe")), "somebody's updater");
    write(world->filePath(QStringLiteral("OvrynUpdate.exe")), "somebody's updater");
    write(world->filePath(QStringLiteral("installation2/OvrynUpdate.exe")), "somebody's updater");
    copyArchive(QStringLiteral("updater.zip"), world->filePath(QStringLiteral("other/1.zip")));
    copyArchive(QStringLiteral("updater.zip"), world->filePath(QStringLiteral("1.zip")));
}

void TestUpdateFiles::cleanup()
{
    QDir::setCurrent(formerFolder);
    world.reset();
}

QStringList TestUpdateFiles::outside() const
{
    QStringList found;
    QDirIterator entries(world->path(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        if (path.startsWith(world->filePath(QStringLiteral("installation/"))))
            continue;
        const QFileInfo info(path);
        const QString what = info.isSymLink() ? info.symLinkTarget()
                             : info.isDir()   ? QStringLiteral("folder")
                                              : QString::fromLatin1(content(path).toHex());
        found.append(path + QLatin1Char(' ') + what);
    }
    found.sort();
    return found;
}

void TestUpdateFiles::returnIsRecognised_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("isReturn");
    QTest::newRow("by the updater") << QStringList{"OvrynDeck2", "_OvrynUpdate"} << true;
    QTest::newRow("with more after it") << QStringList{"OvrynDeck2", "_OvrynUpdate", "x"} << true;
    QTest::newRow("by the user") << QStringList{"OvrynDeck2"} << false;
    QTest::newRow("another argument") << QStringList{"OvrynDeck2", "_OvrynDeck2"} << false;
    QTest::newRow("other case") << QStringList{"OvrynDeck2", "_ovrynupdate"} << false;
    QTest::newRow("second, not first argument") << QStringList{"OvrynDeck2", "x", "_OvrynUpdate"} << false;
    QTest::newRow("program of that name") << QStringList{"_OvrynUpdate"} << false;
    QTest::newRow("no arguments at all") << QStringList() << false;
}

void TestUpdateFiles::returnIsRecognised()
{
    QFETCH(QStringList, arguments);
    QTEST(isReturnFromUpdater(arguments), "isReturn");
}

void TestUpdateFiles::updaterBesideTheProgram()
{
#ifdef Q_OS_WIN
    const QString name = kUpdater;
#else
    const QString name = QStringLiteral("OvrynUpdate");
#endif
    write(name, "#!/bin/sh\n");
    QVERIFY(QFile::setPermissions(name, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(updaterProgram(QDir::currentPath()), QDir::current().absoluteFilePath(name));
}

void TestUpdateFiles::updaterElsewhere_data()
{
    QTest::addColumn<bool>("folderOfThatName");
    QTest::newRow("nothing beside the program") << false;
    QTest::newRow("a folder of that name") << true;
}

void TestUpdateFiles::updaterElsewhere()
{
    QFETCH(bool, folderOfThatName);
    if (folderOfThatName)
        QVERIFY(QDir().mkdir(QStringLiteral("OvrynUpdate")));
    QCOMPARE(updaterProgram(QDir::currentPath()), QStringLiteral("OvrynUpdate"));
}

void TestUpdateFiles::clearingEmptiesTheFolder()
{
    write(QStringLiteral("temp/update_info.xml"), "x");
    write(QStringLiteral("temp/1.zip"), "x");
    write(QStringLiteral("temp/.hidden"), "x");
    write(QStringLiteral("temp/a/b/c/d.dll"), "x");
    write(QStringLiteral("temp/a/.hidden/e"), "x");
    QVERIFY(QDir().mkdir(QStringLiteral("temp/empty")));
    write(QStringLiteral("beside.txt"), "stays");
    clearFolder(QStringLiteral("temp"));
    QVERIFY(QFileInfo(QStringLiteral("temp")).isDir());
    QVERIFY(
        QDir(QStringLiteral("temp")).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
    QCOMPARE(content(QStringLiteral("beside.txt")), QByteArray("stays"));
}

void TestUpdateFiles::clearingDoesNotFollowLinks()
{
    const QStringList before = outside();
    const QString other = world->filePath(QStringLiteral("other"));
    write(QStringLiteral("kept/file"), "stays");
    QVERIFY(QFile::link(other, QStringLiteral("temp/link to a folder")));
    QVERIFY(QFile::link(other + QStringLiteral("/1.zip"), QStringLiteral("temp/link to a file")));
    QVERIFY(QFile::link(other + QStringLiteral("/gone"), QStringLiteral("temp/link to nothing")));
    QVERIFY(QDir().mkdir(QStringLiteral("temp/sub")));
    QVERIFY(QFile::link(QDir::currentPath() + QStringLiteral("/kept"), QStringLiteral("temp/sub/link")));
    QVERIFY(QFile::link(QDir::currentPath() + QStringLiteral("/temp"), QStringLiteral("temp/sub/round in a circle")));
    clearFolder(QStringLiteral("temp"));
    QVERIFY(
        QDir(QStringLiteral("temp")).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
    QCOMPARE(content(QStringLiteral("kept/file")), QByteArray("stays"));
    QCOMPARE(outside(), before);
}

void TestUpdateFiles::clearingALink_data()
{
    QTest::addColumn<QString>("target"); ///< in the world
    QTest::addColumn<QString>("path");
    QTest::newRow("to a folder outside") << "other"
                                         << "temp";
    QTest::newRow("with a slash after it") << "other"
                                           << "temp/";
    QTest::newRow("to a folder of the installation") << "installation/kept"
                                                     << "temp";
    QTest::newRow("to nothing") << "nothing"
                                << "temp";
}

void TestUpdateFiles::clearingALink()
{
    QFETCH(QString, target);
    QFETCH(QString, path);
    const QStringList before = outside();
    write(QStringLiteral("kept/file"), "stays");
    QVERIFY(QDir().rmdir(QStringLiteral("temp")));
    QVERIFY(QFile::link(world->filePath(target), QStringLiteral("temp")));
    clearFolder(path);
    QCOMPARE(outside(), before);
    QCOMPARE(content(QStringLiteral("kept/file")), QByteArray("stays"));
    QVERIFY(QFileInfo(QStringLiteral("temp")).isSymLink());
}

void TestUpdateFiles::clearingAMissingFolder()
{
    QVERIFY(QDir().rmdir(QStringLiteral("temp")));
    write(QStringLiteral("beside.txt"), "stays");
    clearFolder(QStringLiteral("temp"));
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp")));
    QCOMPARE(content(QStringLiteral("beside.txt")), QByteArray("stays"));
}

void TestUpdateFiles::clearingAFile()
{
    QVERIFY(QDir().rmdir(QStringLiteral("temp")));
    write(QStringLiteral("temp"), "a file");
    clearFolder(QStringLiteral("temp"));
    QCOMPARE(content(QStringLiteral("temp")), QByteArray("a file"));
}

void TestUpdateFiles::takesTheUpdaterOut_data()
{
    QTest::addColumn<QString>("dir");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("target"); ///< in the installation
    QTest::addColumn<bool>("hasOldOne");
    QTest::newRow("in place of the old one") << ""
                                             << "2.0"
                                             << "OvrynUpdate.exe" << true;
    QTest::newRow("where none was") << ""
                                    << "2.0"
                                    << "OvrynUpdate.exe" << false;
    QTest::newRow("into a folder") << "sub/"
                                   << "2.0"
                                   << "sub/OvrynUpdate.exe" << true;
    QTest::newRow("into a folder that is not there") << "a/b/"
                                                     << "2.0"
                                                     << "a/b/OvrynUpdate.exe" << false;
    QTest::newRow("dir without its slash is part of the name") << "sub"
                                                               << "2.0"
                                                               << "subOvrynUpdate.exe" << false;
    QTest::newRow("round about") << "sub/../"
                                 << "2.0"
                                 << "OvrynUpdate.exe" << true;
    QTest::newRow("dot") << "./"
                         << "2.0"
                         << "OvrynUpdate.exe" << true;
    QTest::newRow("archive in a folder of temp") << ""
                                                 << "sub/2.0"
                                                 << "OvrynUpdate.exe" << true;
    QTest::newRow("empty version") << ""
                                   << ""
                                   << "OvrynUpdate.exe" << true;
    QTest::newRow("version of other characters") << "" << QStringLiteral("版本 2") << "OvrynUpdate.exe" << true;
}

void TestUpdateFiles::takesTheUpdaterOut()
{
    QFETCH(QString, dir);
    QFETCH(QString, version);
    QFETCH(QString, target);
    QFETCH(bool, hasOldOne);
    const QStringList before = outside();
    const QString zip = QStringLiteral("temp/") + version + QStringLiteral(".zip");
    copyArchive(QStringLiteral("updater.zip"), zip);
    if (hasOldOne)
        write(target, "old");
    extractUpdater({{QStringLiteral("OvrynDeck2.exe"), QString(), QStringLiteral("9")}, updaterEntry(dir, version)});
    QCOMPARE(content(target), newUpdater());
    QVERIFY(!QFileInfo::exists(zip));
    QCOMPARE(outside(), before);
}

void TestUpdateFiles::onlyTheFirstEntryCounts()
{
    copyArchive(QStringLiteral("updater.zip"), QStringLiteral("temp/2.zip"));
    extractUpdater({updaterEntry(QString(), QStringLiteral("1")), updaterEntry(QString(), QStringLiteral("2"))});
    QVERIFY(!QFileInfo::exists(kUpdater));
    QVERIFY(QFileInfo::exists(QStringLiteral("temp/2.zip")));
}

void TestUpdateFiles::otherFilesAreNoUpdater()
{
    copyArchive(QStringLiteral("updater.zip"), QStringLiteral("temp/2.zip"));
    extractUpdater({});
    extractUpdater({{QStringLiteral("OvrynUpdate"), QString(), QStringLiteral("2")},
                    {QStringLiteral("ovrynupdate.exe"), QString(), QStringLiteral("2")},
                    {QStringLiteral("sub/OvrynUpdate.exe"), QString(), QStringLiteral("2")}});
    QVERIFY(QFileInfo::exists(QStringLiteral("temp/2.zip")));
    QCOMPARE(QDir().entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{QStringLiteral("temp")});
}

void TestUpdateFiles::withoutAnArchiveNothingHappens()
{
    write(kUpdater, "old");
    extractUpdater({updaterEntry(QString(), QStringLiteral("2"))});
    QCOMPARE(content(kUpdater), QByteArray("old"));
}

void TestUpdateFiles::whatIsTakenFromTheArchive_data()
{
    QTest::addColumn<QString>("archive");
    QTest::addColumn<bool>("updaterThere"); ///< afterwards
    QTest::newRow("deflated") << "updater.zip" << true;
    QTest::newRow("stored, not the first entry") << "updater-stored.zip" << true;
    QTest::newRow("beside entries that point elsewhere") << "hostile-names.zip" << true;
    QTest::newRow("no such entry") << "without-updater.zip" << false;
    QTest::newRow("cut off") << "cut-off.zip" << false;
    QTest::newRow("content does not match its sum") << "damaged-content.zip" << false;
    QTest::newRow("no archive") << "make.py" << false;
}

void TestUpdateFiles::whatIsTakenFromTheArchive()
{
    QFETCH(QString, archive);
    QFETCH(bool, updaterThere);
    const QStringList before = outside();
    copyArchive(archive, QStringLiteral("temp/2.zip"));
    write(kUpdater, "old");
    extractUpdater({updaterEntry(QString(), QStringLiteral("2"))});
    // The old one goes before the archive is opened, so that a bad archive leaves none.
    QCOMPARE(QFileInfo::exists(kUpdater), updaterThere);
    if (updaterThere)
        QCOMPARE(content(kUpdater), newUpdater());
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp/2.zip")));
    QCOMPARE(outside(), before);
    QStringList left = QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    left.removeAll(kUpdater);
    QCOMPARE(left, QStringList{QStringLiteral("temp")}); // nothing else came out of the archive
    QVERIFY(!QFileInfo::exists(QStringLiteral("/ovryn-evil")));
}

void TestUpdateFiles::linkInTheArchive()
{
    write(world->filePath(QStringLiteral("evil")), "untouched");
    const QStringList before = outside();
    for (int i = 0; i < 2; ++i) { // the second time over what the first one left
        copyArchive(QStringLiteral("updater-is-a-link.zip"), QStringLiteral("temp/2.zip"));
        extractUpdater({updaterEntry(QString(), QStringLiteral("2"))});
        QCOMPARE(outside(), before);
        QVERIFY(!QFileInfo::exists(kUpdater) && !QFileInfo(kUpdater).isSymLink()); // refused
        QVERIFY(!QFileInfo::exists(QStringLiteral("temp/2.zip")));
    }
    copyArchive(QStringLiteral("updater.zip"), QStringLiteral("temp/2.zip"));
    extractUpdater({updaterEntry(QString(), QStringLiteral("2"))});
    QCOMPARE(content(kUpdater), newUpdater());
    QCOMPARE(outside(), before);
}

void TestUpdateFiles::folderInPlaceOfTheTarget()
{
    write(kUpdater + QStringLiteral("/file"), "stays");
    copyArchive(QStringLiteral("updater.zip"), QStringLiteral("temp/2.zip"));
    extractUpdater({updaterEntry(QString(), QStringLiteral("2"))});
    QCOMPARE(content(kUpdater + QStringLiteral("/file")), QByteArray("stays"));
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp/2.zip")));
}

void TestUpdateFiles::targetIsALink_data()
{
    QTest::addColumn<QString>("place"); ///< in the world
    QTest::newRow("to a file outside") << "other/OvrynUpdate.exe";
    QTest::newRow("to a file outside that is not there") << "other/nothing";
}

void TestUpdateFiles::targetIsALink()
{
    QFETCH(QString, place);
    const QStringList before = outside();
    QVERIFY(QFile::link(world->filePath(place), kUpdater));
    copyArchive(QStringLiteral("updater.zip"), QStringLiteral("temp/2.zip"));
    extractUpdater({updaterEntry(QString(), QStringLiteral("2"))});
    QVERIFY(!QFileInfo(kUpdater).isSymLink());
    QCOMPARE(content(kUpdater), newUpdater());
    QCOMPARE(outside(), before);
}

void TestUpdateFiles::hostileEntries_data()
{
    QTest::addColumn<QString>("dir"); ///< %1 is the world
    QTest::addColumn<QString>("version");
    QTest::newRow("dir above") << "../"
                               << "2";
    QTest::newRow("dir far above") << "../../../../../../../../"
                                   << "2";
    QTest::newRow("dir beside with the same beginning") << "../installation2/"
                                                        << "2";
    QTest::newRow("dir beside by its name") << "../installation2"
                                            << "2";
    QTest::newRow("absolute dir") << "%1/other/"
                                  << "2";
    QTest::newRow("absolute dir that is not there") << "%1/other/new/"
                                                    << "2";
    QTest::newRow("absolute dir, back in through a link") << "%1/back/"
                                                          << "2";
    QTest::newRow("root") << "/"
                          << "2";
    QTest::newRow("in and out again") << "sub/../../other/"
                                      << "2";
    QTest::newRow("through a link") << "out/"
                                    << "2";
    QTest::newRow("below a link, into a new folder") << "out/new/deep/"
                                                     << "2";
    QTest::newRow("through a link to nothing") << "nowhere/"
                                               << "2";
    QTest::newRow("through a link of the archive's folder") << "temp/out/"
                                                            << "2";
    QTest::newRow("version above temp") << ""
                                        << "../1";
    QTest::newRow("version above the installation") << ""
                                                    << "../../1";
    QTest::newRow("version beside the installation") << ""
                                                     << "../../other/1";
    QTest::newRow("version through a link") << ""
                                            << "out/1";
    QTest::newRow("archive is a link") << ""
                                       << "linked";
}

void TestUpdateFiles::hostileEntries()
{
    QFETCH(QString, dir);
    QFETCH(QString, version);
    const QString other = world->filePath(QStringLiteral("other"));
    write(kUpdater, "old");
    copyArchive(QStringLiteral("updater.zip"), QStringLiteral("temp/2.zip"));
    copyArchive(QStringLiteral("updater.zip"),
                QStringLiteral("1.zip")); // in the installation folder, but not in temp
    QVERIFY(QFile::link(other, QStringLiteral("out")));
    QVERIFY(QFile::link(other, QStringLiteral("temp/out")));
    QVERIFY(QFile::link(world->filePath(QStringLiteral("nothing")), QStringLiteral("nowhere")));
    QVERIFY(QFile::link(other + QStringLiteral("/1.zip"), QStringLiteral("temp/linked.zip")));
    QVERIFY(QFile::link(QDir::currentPath(), world->filePath(QStringLiteral("back"))));
    const QStringList before = outside();
    extractUpdater({updaterEntry(dir.contains(QLatin1Char('%')) ? dir.arg(world->path()) : dir, version)});
    QCOMPARE(outside(), before);
    QVERIFY(!QFileInfo::exists(QStringLiteral("/OvrynUpdate.exe")));
    // the entry is passed over as a whole
    QCOMPARE(content(kUpdater), QByteArray("old"));
    QVERIFY(QFileInfo::exists(QStringLiteral("temp/2.zip")));
    QVERIFY(QFileInfo::exists(QStringLiteral("1.zip")));
}

void TestUpdateFiles::tempMayBeALink()
{
    const QTemporaryDir roomy;
    QVERIFY(QDir().rmdir(QStringLiteral("temp")));
    QVERIFY(QFile::link(roomy.path(), QStringLiteral("temp")));
    copyArchive(QStringLiteral("updater.zip"), QStringLiteral("temp/2.zip"));
    extractUpdater({updaterEntry(QDir::currentPath() + QLatin1Char('/'), QStringLiteral("2"))});
    QCOMPARE(content(kUpdater), newUpdater());
    QVERIFY(QDir(roomy.path()).isEmpty());
}

QTEST_GUILESS_MAIN(TestUpdateFiles)
#include "TestUpdateFiles.moc"
