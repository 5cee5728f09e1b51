#include "support/MinisignKey.h"
#include "updater/DetachedSignature.h"
#include "updater/ReleaseManifest.h"
#include "updater/ReleasePacket.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using FileTree = QMap<QString, QByteArray>;

/// The tool that makes releases, read by the updater that follows them.
class TestMakeRelease : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void makesARelease_data();
    void makesARelease();
    void filesOfTheUserAreLeftOut();
    void theBuiltFolderGetsItsList();
    void serverAndManualDownload();
    void unchangedFilesAreTakenOver();
    void whatEarlierVersionsFetch();
    void sameFilesGiveTheSameArchives();
    void dryRunWritesNothing();
    void refuses_data();
    void refuses();
    void refusesALink_data();
    void refusesALink();
    void namesThatAnUpdaterRefuses_data();
    void namesThatAnUpdaterRefuses();
    void tooManyFiles();
    void tooLargeAFile();
    void aKeyThatIsNone();

private:
    [[nodiscard]] QString at(const QString &name) const { return folder->filePath(name); }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
            file.write(bytes) != bytes.size())
            qFatal("can't write %s", qPrintable(path));
    }
    [[nodiscard]] static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    [[nodiscard]] static FileTree tree(const QString &root)
    {
        FileTree files;
        QDirIterator entries(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            files[path.mid(root.size() + 1)] = content(path);
        }
        return files;
    }
    /// Runs the tool; true where it says that it has succeeded.
    bool make(const QString &version, const QString &out, const QStringList &more = {}, bool withKey = true)
    {
        QStringList arguments{OVRYN_MAKE_RELEASE, "--version", version, "--built", at("built"), "--out", at(out)};
        if (!more.contains("--platform"))
            arguments << "--platform"
                      << "linux-x86_64";
        if (withKey)
            arguments << "--key" << key.secretPath();
        QProcess tool;
        tool.start("/usr/bin/python3", arguments + more);
        if (!tool.waitForFinished(120000))
            qFatal("the tool does not end: %s", qPrintable(tool.errorString()));
        printed = QString::fromUtf8(tool.readAllStandardOutput());
        errors = QString::fromUtf8(tool.readAllStandardError());
        return tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0;
    }
    [[nodiscard]] std::optional<ReleaseManifest> release(const QString &out) const
    {
        return releaseManifestOf(content(at(out + "/update_info.xml")));
    }
    [[nodiscard]] static QMap<QString, ReleaseFile> filesOf(const ReleaseManifest &manifest)
    {
        QMap<QString, ReleaseFile> files;
        for (const ReleaseFile &file : manifest.files)
            files[file.path] = file;
        return files;
    }

    const MinisignKey key;
    std::unique_ptr<QTemporaryDir> folder;
    QString printed;
    QString errors;
};

void TestMakeRelease::init()
{
    folder = std::make_unique<QTemporaryDir>();
    write(at("built/OvrynDeck2"), QByteArray("the program\n").repeated(1000));
    write(at("built/OvrynUpdate"), "the updater");
    write(at("built/lib/with blank.so.1"), "a library");
    write(at("built/empty"), "");
    for (const char *name : {"OvrynDeck2", "OvrynUpdate"})
        QFile::setPermissions(at("built/") + name,
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup);
}

void TestMakeRelease::cleanup()
{
    folder.reset();
}

void TestMakeRelease::makesARelease_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QString>("updater");
    QTest::newRow("Linux") << "linux-x86_64"
                           << "OvrynUpdate";
    QTest::newRow("Windows") << "windows-x86"
                             << "OvrynUpdate.exe";
}

void TestMakeRelease::makesARelease()
{
    QFETCH(QString, platform);
    QFETCH(QString, updater);
    if (updater != "OvrynUpdate")
        QVERIFY(QFile::rename(at("built/OvrynUpdate"), at("built/") + updater));
    const FileTree built = tree(at("built"));
    QVERIFY2(make("1.0.2.5", "out", {"--platform", platform}), qPrintable(errors));

    const QByteArray bytes = content(at("out/update_info.xml"));
    const QByteArray signature = content(at("out/update_info.xml.minisig"));
    const auto trusted = releaseKeyOf(key.publicText());
    QVERIFY(trusted && isSignedBy(*trusted, bytes, signature));
    QVERIFY(signature.contains("OvrynDeck2 1.0.2.5"));
    QVERIFY(!isSignedBy(*releaseKeyOf(MinisignKey().publicText()), bytes, signature));
    const auto manifest = releaseManifestOf(bytes);
    QVERIFY(manifest);
    QCOMPARE(manifest->product, QString(kProductName));
    QCOMPARE(manifest->platform, platform);
    QCOMPARE(manifest->version, QString("1.0.2.5"));
    QVERIFY(manifest->serverAddress.isEmpty());
    QVERIFY(manifest->manualDownloadVersion.isEmpty());

    FileTree unpacked;
    for (const ReleaseFile &file : manifest->files) {
        QCOMPARE(file.version, QString("1.0.2.5"));
        const QString archive = at("out/" + file.archive);
        QCOMPARE(QFileInfo(archive).size(), file.archiveSize);
        QCOMPARE(QCryptographicHash::hash(content(archive), QCryptographicHash::Sha256), file.archiveSha256);
        QVERIFY2(unpackReleaseFile(archive, file, at("unpacked")), qPrintable(file.path));
        unpacked[file.isUpdater() ? updater : file.path] = content(at("unpacked"));
        QCOMPARE(QCryptographicHash::hash(content(at("unpacked")), QCryptographicHash::Sha256), file.sha256);
        QCOMPARE(file.executable, file.isUpdater() || file.path == "OvrynDeck2");
    }
    QCOMPARE(unpacked, built);
    QCOMPARE(tree(at("out")).size(), 2 + built.size());
}

void TestMakeRelease::filesOfTheUserAreLeftOut()
{
    write(at("built/config.xml"), "<Config/>");
    write(at("built/temp/update_info.xml"), "x");
    write(at("built/TEMP2/file"), "of the program");
    QVERIFY2(make("1.0.2.5", "out"), qPrintable(errors));
    const auto files = filesOf(*release("out"));
    QCOMPARE(QStringList(files.keys()),
             QStringList({"OvrynDeck2", "OvrynUpdate.exe", "TEMP2/file", "empty", "lib/with blank.so.1"}));
    // once more on the folder that now has its list
    QVERIFY2(make("1.0.2.6", "out2"), qPrintable(errors));
    QCOMPARE(filesOf(*release("out2")).keys(), files.keys());
}

void TestMakeRelease::theBuiltFolderGetsItsList()
{
    QVERIFY2(make("1.0.2.5", "out"), qPrintable(errors));
    QCOMPARE(content(at("built/release.xml")), content(at("out/update_info.xml")));
    QCOMPARE(content(at("built/release.xml.minisig")), content(at("out/update_info.xml.minisig")));
}

void TestMakeRelease::serverAndManualDownload()
{
    QVERIFY2(make("1.0.2.5", "out", {"--server", "https://files.example/packets/", "--manual-download", "1.0.2.3"}),
             qPrintable(errors));
    QCOMPARE(release("out")->serverAddress, QString("https://files.example/packets/"));
    QCOMPARE(release("out")->manualDownloadVersion, QString("1.0.2.3"));
}

void TestMakeRelease::unchangedFilesAreTakenOver()
{
    QVERIFY2(make("1.0.2.5", "first"), qPrintable(errors));
    write(at("built/OvrynDeck2"), "the next program");
    write(at("built/new"), "new");
    QFile::remove(at("built/empty"));
    QVERIFY2(make("1.0.2.6", "second", {"--earlier", at("first")}), qPrintable(errors));
    write(at("built/OvrynUpdate"), "the next updater");
    QVERIFY2(make("1.0.2.7", "third", {"--earlier", at("second"), at("first")}), qPrintable(errors));

    const auto first = filesOf(*release("first"));
    const auto third = filesOf(*release("third"));
    QCOMPARE(QStringList(third.keys()), QStringList({"OvrynDeck2", "OvrynUpdate.exe", "lib/with blank.so.1", "new"}));
    QCOMPARE(third["OvrynDeck2"].version, QString("1.0.2.6"));
    QCOMPARE(third["OvrynUpdate.exe"].version, QString("1.0.2.7"));
    QCOMPARE(third["lib/with blank.so.1"].version, QString("1.0.2.5"));
    QCOMPARE(third["lib/with blank.so.1"].archiveSha256, first["lib/with blank.so.1"].archiveSha256);
    QCOMPARE(third["new"].version, QString("1.0.2.6"));
    for (const ReleaseFile &file : third) // each release can be served alone
        QVERIFY2(unpackReleaseFile(at("third/" + file.archive), file, at("unpacked")), qPrintable(file.path));
}

void TestMakeRelease::whatEarlierVersionsFetch()
{
    QVERIFY2(make("1.0.2.5", "first"), qPrintable(errors));
    write(at("built/OvrynDeck2"), "the next program");
    QVERIFY2(make("1.0.2.6", "second", {"--earlier", at("first")}), qPrintable(errors));
    write(at("built/lib/with blank.so.1"), "the next library");
    QFile::remove(at("built/empty"));
    QVERIFY2(make("1.0.2.7", "third", {"--earlier", at("second"), at("first")}), qPrintable(errors));
    const auto sectionOf = [this](const QString &version) {
        const QStringList lines = printed.split('\n');
        QStringList section;
        for (int i = 0; i < lines.size(); ++i) {
            if (!lines.at(i).startsWith(version + " fetches"))
                continue;
            section.append(lines.at(i));
            while (++i < lines.size() && lines.at(i).startsWith(' '))
                section.append(lines.at(i).trimmed().section("  ", 0, 0));
        }
        return section;
    };
    const QStringList fromFirst = sectionOf("1.0.2.5");
    QCOMPARE(fromFirst.mid(1), QStringList({"OvrynDeck2", "lib/with blank.so.1", "empty"}));
    QVERIFY(fromFirst.constFirst().contains("2 of 3 files"));
    const QStringList fromSecond = sectionOf("1.0.2.6");
    QCOMPARE(fromSecond.mid(1), QStringList({"lib/with blank.so.1", "empty"}));
    const auto third = filesOf(*release("third"));
    QVERIFY(
        fromSecond.constFirst().contains(QStringLiteral(" %1 bytes").arg(third["lib/with blank.so.1"].archiveSize)));
}

void TestMakeRelease::sameFilesGiveTheSameArchives()
{
    QVERIFY2(make("1.0.2.5", "first"), qPrintable(errors));
    QVERIFY2(make("1.0.2.6", "second"), qPrintable(errors));
    QCOMPARE(tree(at("second/archives")), tree(at("first/archives")));
}

void TestMakeRelease::dryRunWritesNothing()
{
    QVERIFY2(make("1.0.2.5", "first"), qPrintable(errors));
    write(at("built/OvrynDeck2"), "the next program");
    const FileTree before = tree(folder->path());
    QVERIFY2(make("1.0.2.6", "second", {"--earlier", at("first"), "--dry-run"}, false), qPrintable(errors));
    QVERIFY(printed.contains("1.0.2.5 fetches 1 of 4 files"));
    QVERIFY(printed.contains("\n  OvrynDeck2  "));
    QVERIFY(!printed.contains("\n  empty"));
    QCOMPARE(tree(folder->path()), before);
    QVERIFY(!QFileInfo::exists(at("second")));
}

void TestMakeRelease::refuses_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QStringList>("more");
    QTest::addColumn<bool>("withKey");
    const QStringList none;
    QTest::newRow("the same version") << "1.0.2.5" << none << true;
    QTest::newRow("an older version") << "1.0.2.4" << none << true;
    QTest::newRow("older as a text") << "1.0.10.0" << none << true;
    QTest::newRow("no version") << "new" << none << true;
    QTest::newRow("version with a path") << "../9" << none << true;
    QTest::newRow("empty version") << "" << none << true;
    QTest::newRow("version with one number") << "9" << none << true;
    QTest::newRow("no key") << "1.0.2.6" << none << false;
    QTest::newRow("unknown platform") << "1.0.2.6" << QStringList{"--platform", "amiga"} << true;
    QTest::newRow("server without a slash at the end")
        << "1.0.2.6" << QStringList{"--server", "http://files.example/a"} << true;
    QTest::newRow("server that is a file") << "1.0.2.6" << QStringList{"--server", "file:///tmp/"} << true;
    QTest::newRow("by hand from no version") << "1.0.2.6" << QStringList{"--manual-download", "old"} << true;
}

/// Whatever the tool made of these, no updater would follow it.
void TestMakeRelease::refuses()
{
    QFETCH(QString, version);
    QFETCH(QStringList, more);
    QFETCH(bool, withKey);
    QVERIFY2(make("1.0.2.5", "first"), qPrintable(errors));
    write(at("built/OvrynDeck2"), "the next program");
    const FileTree before = tree(folder->path());
    QVERIFY(!make(version, "second", QStringList{"--earlier", at("first")} + more, withKey));
    QVERIFY(!errors.isEmpty());
    QVERIFY2(!errors.contains("Traceback"), qPrintable(errors));
    QVERIFY(!QFileInfo::exists(at("second")));
    QCOMPARE(tree(folder->path()), before);
    // the folder is never written over
    QVERIFY(!make("1.0.2.6", "first"));
    QCOMPARE(tree(folder->path()), before);
}

void TestMakeRelease::refusesALink_data()
{
    QTest::addColumn<QString>("linksTo");
    QTest::newRow("a file") << "OvrynDeck2";
    QTest::newRow("a folder") << "lib";
    QTest::newRow("a file elsewhere") << "/etc/passwd";
    QTest::newRow("a folder elsewhere") << "/etc";
    QTest::newRow("nothing") << "missing";
}

void TestMakeRelease::refusesALink()
{
    QFETCH(QString, linksTo);
    QVERIFY(QFile::link(linksTo, at("built/link")));
    QVERIFY(!make("1.0.2.5", "out"));
    QVERIFY2(errors.contains("link"), qPrintable(errors));
    QVERIFY(!QFileInfo::exists(at("out")));
}

void TestMakeRelease::namesThatAnUpdaterRefuses_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name :
         {"umläut.txt", "file.", "file ", "a~b", "a:b", "a\\b", "con.txt", "lib/nul", "AUX.so.1", "com1", "lpt9.txt",
          "ovryndeck2", "LIB/file", "OvrynUpdate.exe", "ovrynupdate.exe", "release.xml/file"})
        QTest::newRow(name) << QString::fromUtf8(name);
    QTest::newRow("too long") << QString(121, 'a');
}

void TestMakeRelease::namesThatAnUpdaterRefuses()
{
    QFETCH(QString, name);
    write(at("built/" + name), "x");
    if (make("1.0.2.5", "out")) {
        // what is let through must be a release that can be followed, without that file
        const auto manifest = release("out");
        QVERIFY2(manifest, qPrintable(printed));
        QVERIFY(!filesOf(*manifest).contains(name) || name.startsWith("LIB/"));
    } else {
        QVERIFY(!QFileInfo::exists(at("out")));
        QVERIFY2(!errors.contains("Traceback"), qPrintable(errors));
    }
}

void TestMakeRelease::tooManyFiles()
{
    for (int i = 4; i < kReleaseFilesMax; ++i)
        write(at("built/many/") + QString::number(i), "x");
    QVERIFY2(make("1.0.2.5", "most"), qPrintable(errors));
    QVERIFY(release("most"));
    write(at("built/many/more"), "x");
    QVERIFY(!make("1.0.2.6", "out"));
    QVERIFY(!QFileInfo::exists(at("out")));
}

void TestMakeRelease::tooLargeAFile()
{
    QFile large(at("built/large"));
    QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(kReleaseFileBytesMax + 1));
    large.close();
    QVERIFY(!make("1.0.2.5", "out"));
    QVERIFY(!QFileInfo::exists(at("out")));
}

void TestMakeRelease::aKeyThatIsNone()
{
    write(at("letter"), "no key\n");
    const FileTree before = tree(folder->path());
    QVERIFY(!make("1.0.2.5", "out", {"--key", at("letter")}, false));
    QVERIFY2(!errors.contains("Traceback"), qPrintable(errors));
    QCOMPARE(tree(folder->path()), before);
    QVERIFY(!QFileInfo::exists(at("out"))); // nothing unsigned that somebody might serve
}

QTEST_GUILESS_MAIN(TestMakeRelease)
#include "TestMakeRelease.moc"
