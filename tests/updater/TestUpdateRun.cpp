#include "updater/UpdateWorld.h"

#include <QScopeGuard>
#include <QTest>

#include <functional>
#include <memory>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#include <unistd.h>
#endif

using Stage = UpdateRun::Stage;
using Change = std::function<void(UpdateWorld &)>;
Q_DECLARE_METATYPE(UpdateFailure)
Q_DECLARE_METATYPE(Change)

/// An update from the check to the exchange, against servers and installations of every kind. Whatever fails leaves
/// the installation as it was, but for the folder temp.
class TestUpdateRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void installsTheNewVersion();
    void programsCopyOfTheManifestIsUsed();
    void fetchesWhatChangedAlone();
    void archivesOfAnotherServer();
    void leavesTheNewUpdaterToTheProgram();
    void withoutAListOfTheInstalledRelease();
    void foreignListOfTheInstalledRelease();
    void onTwoVersions();
    void refused_data();
    void refused();
    void withoutAKey();
    void secondKey();
    void manifestExchangedOnTheServer();
    void manifestAndSignatureNeverAgree();
    void changedDuringTheRun_data();
    void changedDuringTheRun();
    void retryAfterTheServerWasGone();
    void retryAfterADamagedFile();
    void cancelledInEachStage_data();
    void cancelledInEachStage();
    void notCancelledInTheExchange();
    void cancelledThenAgain();
    void deletedInEachStage_data();
    void deletedInEachStage();
    void waitsForTheProgram();
    void programThatDoesNotEnd();
    void programCannotStartMeanwhile();
    void unfinishedExchangeThatCannotBeRead();
    void fullDisk();

private:
    /// Starts and waits for the end, Done or Failed.
    void runToTheEnd()
    {
        makeRun();
        run->start();
        QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    }
    void makeRun() { makeRun(current->site()); }
    void makeRun(const UpdateSite &site)
    {
        stages.clear();
        run = std::make_unique<UpdateRun>(site);
        connect(run.get(), &UpdateRun::stageChanged, this, [this] {
            stages.append(run->stage());
            const std::function<void()> what = atStage.take(run->stage());
            if (what)
                what();
        });
    }
    [[nodiscard]] bool hasEnded() const
    {
        return !stages.isEmpty() && (stages.constLast() == Stage::Done || stages.constLast() == Stage::Failed);
    }
    [[nodiscard]] FileTree installedFiles() const
    {
        FileTree files = current->installedFiles();
        files.remove("release.xml.minisig");
        return files;
    }

    std::unique_ptr<UpdateWorld> current;
    std::unique_ptr<UpdateRun> run;
    QList<Stage> stages;
    QMap<Stage, std::function<void()>> atStage; ///< is called once
};

namespace
{

const QList<Stage> kWholeWay{Stage::Checking,          Stage::Fetching,   Stage::Preparing,
                             Stage::WaitingForProgram, Stage::Exchanging, Stage::Done};

} // namespace

#define COMPARE_DONE()                                                                                               \
    QCOMPARE(run->failure(), UpdateFailure::None);                                                                   \
    QCOMPARE(run->stage(), Stage::Done);                                                                             \
    QCOMPARE(installedFiles(), current->expectedInstallation())

void TestUpdateRun::init()
{
    current = std::make_unique<UpdateWorld>();
    atStage.clear();
}

void TestUpdateRun::cleanup()
{
    run.reset();
    current.reset();
}

void TestUpdateRun::installsTheNewVersion()
{
    current->publish();
    const FileTree outside = current->outsideFiles();
    qint64 reached = 0;
    makeRun();
    connect(run.get(), &UpdateRun::progressed, this, [this, &reached] {
        QVERIFY(run->bytesFetched() >= reached);
        reached = run->bytesFetched();
        QVERIFY(reached <= run->bytesToFetch());
    });
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    COMPARE_DONE();
    QCOMPARE(stages, kWholeWay);
    QCOMPARE(reached, run->bytesToFetch());
    QCOMPARE(current->outsideFiles(), outside);
    QVERIFY(UpdateWorld::key().accepts(current->installedFiles().value("release.xml"),
                                       current->installedFiles().value("release.xml.minisig")));
#ifndef Q_OS_WIN
    QVERIFY(QFileInfo(current->inInstallation("OvrynDeck2")).isExecutable());
    QVERIFY(!QFileInfo(current->inInstallation("lib/changed.so")).isExecutable());
    QVERIFY(!QFileInfo(current->inInstallation("new/deep/file")).isExecutable());
#endif
    // the program reads it at its return
    QFile manifest(current->inInstallation("temp/update_info.xml"));
    QVERIFY(manifest.open(QIODevice::ReadOnly));
    QCOMPARE(manifest.readAll(), current->offered.manifest());
}

void TestUpdateRun::programsCopyOfTheManifestIsUsed()
{
    current->publish();
    current->programHasFetched(current->offered.manifest());
    runToTheEnd();
    COMPARE_DONE();
    QCOMPARE(current->server.requestsFor(UpdateWorld::kManifest), 0);
    QCOMPARE(current->server.requestsFor(UpdateWorld::kSignature), 1);
}

void TestUpdateRun::fetchesWhatChangedAlone()
{
    current->publish();
    runToTheEnd();
    COMPARE_DONE();
    QCOMPARE(current->server.requestsFor(current->archivePath("lib/same.so")), 0);
    for (const char *file : {"OvrynDeck2", "lib/changed.so", "new/deep/file"})
        QCOMPARE(current->server.requestsFor(current->archivePath(file)), 1);
}

void TestUpdateRun::archivesOfAnotherServer()
{
    ScriptedHttpServer other;
    for (auto file = current->offered.files.cbegin(); file != current->offered.files.cend(); ++file) {
        const QByteArray archive = current->offered.archive(file.key());
        other.serve("/mirror/" + WorldRelease::archiveName(archive), archive);
    }
    current->offered.server = other.address().toLatin1() + "/mirror/";
    const QByteArray manifest = current->offered.manifest();
    current->server.serve(UpdateWorld::kManifest, manifest);
    current->server.serve(UpdateWorld::kSignature, UpdateWorld::key().sign(manifest));
    runToTheEnd();
    COMPARE_DONE();
    QCOMPARE(other.requests().size(), 3);
}

void TestUpdateRun::leavesTheNewUpdaterToTheProgram()
{
    current->offered.files["OvrynUpdate.exe"] = "the new updater";
    current->offered.executables << "OvrynUpdate.exe";
    current->publish();
    runToTheEnd();
    COMPARE_DONE();
    QFile left(current->inInstallation("temp/1.0.2.5.zip"));
    QVERIFY(left.open(QIODevice::ReadOnly));
    QCOMPARE(left.readAll(), current->offered.archive("OvrynUpdate.exe"));
}

void TestUpdateRun::withoutAListOfTheInstalledRelease()
{
    QFile::remove(current->inInstallation("release.xml"));
    QFile::remove(current->inInstallation("release.xml.minisig"));
    current->publish();
    runToTheEnd();
    QCOMPARE(run->stage(), Stage::Done);
    FileTree expected = current->expectedInstallation();
    expected.remove("gone");
    expected["gone/gone.txt"] = "not needed any more"; // it may be the user's
    QCOMPARE(installedFiles(), expected);
}

/// Otherwise whoever can write that one file could have files removed, or newer versions be refused.
void TestUpdateRun::foreignListOfTheInstalledRelease()
{
    WorldRelease foreign = current->installed;
    foreign.version = "9.9";
    foreign.files["config.xml2"] = "x";
    const MinisignKey other;
    UpdateWorld::writeTree(current->installation(), {{"release.xml", foreign.manifest()},
                                                     {"release.xml.minisig", other.sign(foreign.manifest())},
                                                     {"config.xml2", "x"}});
    current->publish();
    runToTheEnd();
    QCOMPARE(run->stage(), Stage::Done);
    FileTree expected = current->expectedInstallation();
    expected.remove("gone");
    expected["gone/gone.txt"] = "not needed any more";
    expected["config.xml2"] = "x";
    QCOMPARE(installedFiles(), expected);
}

void TestUpdateRun::onTwoVersions()
{
    current->publish();
    runToTheEnd();
    COMPARE_DONE();
    run.reset();
    current->offered.version = "1.0.2.6";
    current->offered.files["OvrynDeck2"] = "newer still";
    current->offered.files.remove("new/deep/file");
    current->publish();
    runToTheEnd(); // by the same updater, that of 1.0.2.4: the list says what is installed
    QCOMPARE(run->stage(), Stage::Done);
    FileTree expected = current->expectedInstallation();
    expected["new/deep"] = "(folder)";
    QCOMPARE(installedFiles(), expected);

    // the release in between is no way back
    run.reset();
    const FileTree before = current->installedFiles();
    current->offered.version = "1.0.2.5";
    current->publish();
    runToTheEnd();
    QCOMPARE(run->failure(), UpdateFailure::NotNewer);
    QCOMPARE(current->installedFiles(), before);
}

void TestUpdateRun::refused_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<UpdateFailure>("failure");
    const auto row = [](const char *name, UpdateFailure failure, const Change &change) {
        QTest::newRow(name) << change << failure;
    };
    using Failure = UpdateFailure;
    const auto publishedWith = [](void (*change)(WorldRelease &)) {
        return [change](UpdateWorld &world) {
            change(world.offered);
            world.publish();
        };
    };

    row("nothing on the server", Failure::NoServer, [](UpdateWorld &) {});
    row("no signature", Failure::NoServer, [](UpdateWorld &world) {
        world.publish();
        world.server.remove(UpdateWorld::kSignature);
    });
    row("no manifest", Failure::NoServer, [](UpdateWorld &world) {
        world.publish();
        world.server.remove(UpdateWorld::kManifest);
    });
    row("no server", Failure::NoServer, [](UpdateWorld &world) { world.server.stop(); });

    row("empty signature", Failure::NotSigned, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(UpdateWorld::kSignature, {});
    });
    row("huge signature", Failure::Damaged, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(UpdateWorld::kSignature, QByteArray(5 << 20, 'A'));
    });
    row("altered manifest", Failure::NotSigned, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(UpdateWorld::kManifest,
                           world.offered.manifest().replace("Executable=\"0\"", "Executable=\"1\""));
    });
    row("altered manifest, fetched by the program", Failure::NotSigned, [](UpdateWorld &world) {
        world.publish();
        const QByteArray altered = world.offered.manifest().replace("1.0.2.5", "1.0.2.6");
        world.programHasFetched(altered);
        world.server.serve(UpdateWorld::kManifest, altered);
    });
    row("one byte after the manifest", Failure::NotSigned, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(UpdateWorld::kManifest, world.offered.manifest() + '\n');
    });
    row("another key", Failure::NotSigned, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(UpdateWorld::kSignature, MinisignKey().sign(world.offered.manifest()));
    });
    row("signature of another file", Failure::NotSigned, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(UpdateWorld::kSignature, UpdateWorld::key().sign(world.installed.manifest()));
    });
    row("former form of signature", Failure::NotSigned,
        [](UpdateWorld &world) { world.publish(world.offered.manifest(), {"-l"}); });

    row("signed, cut short", Failure::BadManifest, [](UpdateWorld &world) {
        const QByteArray manifest = world.offered.manifest();
        world.publish(manifest.left(manifest.size() - 20));
    });
    row("signed, no manifest", Failure::BadManifest, [](UpdateWorld &world) { world.publish("a letter\n"); });
    row("signed, empty", Failure::BadManifest, [](UpdateWorld &world) { world.publish(QByteArray()); });
    row("a million entries", Failure::Damaged, [](UpdateWorld &world) {
        world.publish(world.offered.manifest().replace("</FileInfos>",
                                                       QByteArray("<FileInfo/>").repeated(1000000) + "</FileInfos>"));
    });
    row("as many entries as fit", Failure::BadManifest, [](UpdateWorld &world) {
        world.publish(world.offered.manifest().replace("</FileInfos>",
                                                       QByteArray("<FileInfo/>").repeated(180000) + "</FileInfos>"));
    });
    row("a file twice", Failure::BadManifest,
        [](UpdateWorld &world) { world.publish(world.offered.manifest().replace("same.so", "changed.so")); });
    row("path above", Failure::BadManifest,
        publishedWith([](WorldRelease &release) { release.files["../outside/file"] = "new"; }));
    row("path above, inside", Failure::BadManifest,
        publishedWith([](WorldRelease &release) { release.files["lib/../../outside/file"] = "new"; }));
    row("absolute path", Failure::BadManifest,
        publishedWith([](WorldRelease &release) { release.files["/tmp/file"] = "new"; }));
    row("the settings", Failure::BadManifest,
        publishedWith([](WorldRelease &release) { release.files["Config.xml"] = "new"; }));
    row("into temp", Failure::BadManifest, publishedWith([](WorldRelease &release) {
            release.files["temp/exchange/journal.forward"] = "{\"files\": []}";
        }));

    row("another product", Failure::OtherProduct,
        publishedWith([](WorldRelease &release) { release.product = "OvrynDeck3"; }));
    row("another platform", Failure::OtherProduct,
        publishedWith([](WorldRelease &release) { release.platform = "windows-arm64"; }));
    row("the same version", Failure::NotNewer,
        publishedWith([](WorldRelease &release) { release.version = "1.0.2.4"; }));
    row("an older version", Failure::NotNewer,
        publishedWith([](WorldRelease &release) { release.version = "1.0.2.3"; }));
    row("older than the installed list", Failure::NotNewer, [](UpdateWorld &world) {
        world.installed.version = "1.0.2.7";
        world.setInstalledList(world.installed.manifest());
        world.offered.version = "1.0.2.6";
        world.publish();
    });
    row("to be fetched by hand", Failure::NeedsHands, publishedWith([](WorldRelease &release) {
            release.version = "1.0.2.6";
            release.manual = "1.0.2.5";
        }));

    row("no archive", Failure::NoServer, [](UpdateWorld &world) {
        world.publish();
        world.server.remove(world.archivePath("lib/changed.so"));
    });
    row("altered archive", Failure::Damaged, [](UpdateWorld &world) {
        world.publish();
        QByteArray archive = world.offered.archive("lib/changed.so");
        archive[40] = char(archive.at(40) ^ 1);
        world.server.serve(world.archivePath("lib/changed.so"), archive);
    });
    row("archive of another file", Failure::Damaged, [](UpdateWorld &world) {
        world.publish();
        QByteArray archive = world.offered.archive("new/deep/file");
        archive.resize(world.offered.archive("lib/changed.so").size());
        world.server.serve(world.archivePath("lib/changed.so"), archive);
    });
    row("archive cut short", Failure::NoServer, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(world.archivePath("lib/changed.so"), world.offered.archive("lib/changed.so").left(50));
    });
    row("archive with more at its end", Failure::Damaged, [](UpdateWorld &world) {
        world.publish();
        world.server.serve(world.archivePath("lib/changed.so"), world.offered.archive("lib/changed.so") + 'x');
    });
    // below, archives that are signed so
    row("archive with other content", Failure::Damaged, publishedWith([](WorldRelease &release) {
            release.archives["lib/changed.so"] = zipOf({{"changed.so", "a library, bad"}});
        }));
    row("archive that is none", Failure::Damaged, publishedWith([](WorldRelease &release) {
            release.archives["lib/changed.so"] = release.files.value("lib/changed.so");
        }));
    row("archive with a link", Failure::Damaged, publishedWith([](WorldRelease &release) {
            release.archives["lib/changed.so"] =
                zipOf({{"changed.so", release.files.value("lib/changed.so"), false, 0120777u << 16}});
        }));
    row("archive with two files", Failure::Damaged, publishedWith([](WorldRelease &release) {
            const QByteArray content = release.files.value("lib/changed.so");
            release.archives["lib/changed.so"] = zipOf({{"changed.so", content}, {"../../file", content}});
        }));
    row("archive with a path", Failure::Damaged, publishedWith([](WorldRelease &release) {
            release.archives["lib/changed.so"] =
                zipOf({{"../../outside/changed.so", release.files.value("lib/changed.so")}});
        }));
    row("archive with another name", Failure::Damaged, publishedWith([](WorldRelease &release) {
            release.archives["lib/changed.so"] = zipOf({{"other.so", release.files.value("lib/changed.so")}});
        }));
    row("archive that grows", Failure::Damaged, publishedWith([](WorldRelease &release) {
            ZipEntry bomb{"changed.so", QByteArray(4 << 20, '\0')};
            bomb.announcedSize = release.files.value("lib/changed.so").size();
            release.archives["lib/changed.so"] = zipOf({bomb});
        }));
    row("archive of a bad updater", Failure::Damaged, publishedWith([](WorldRelease &release) {
            release.files["OvrynUpdate.exe"] = "the new updater";
            release.archives["OvrynUpdate.exe"] = zipOf({{"OvrynUpdate.exe", "the bad updater"}});
        }));

    row("a folder in a file's place", Failure::ExchangeFailed, [](UpdateWorld &world) {
        UpdateWorld::writeTree(world.installation(), {{"new/deep/file/x", "the user's"}});
        world.publish();
    });
    row("a file in a folder's place", Failure::ExchangeFailed, [](UpdateWorld &world) {
        UpdateWorld::writeTree(world.installation(), {{"new", "the user's"}});
        world.publish();
    });
#ifndef Q_OS_WIN
    row("a link in a file's place", Failure::ExchangeFailed, [](UpdateWorld &world) {
        UpdateWorld::replaceByLink(world.inInstallation("lib/changed.so"), world.outside() + "/file");
        world.publish();
    });
    row("a link in a folder's place", Failure::ExchangeFailed, [](UpdateWorld &world) {
        UpdateWorld::replaceByLink(world.inInstallation("new"), world.outside());
        world.publish();
    });
    row("a link within the installation", Failure::ExchangeFailed, [](UpdateWorld &world) {
        UpdateWorld::replaceByLink(world.inInstallation("new"), world.inInstallation("lib"));
        world.publish();
    });
    row("temp is a link", Failure::DiskFull, [](UpdateWorld &world) {
        UpdateWorld::writeTree(world.outside(), {{"update_info.xml.minisig", "somebody's"},
                                                 {"update_info.xml.minisig.part", "somebody's"},
                                                 {"exchange/new/0", "somebody's"}});
        UpdateWorld::replaceByLink(world.inInstallation("temp"), world.outside());
        world.publish();
    });
    row("temp/packets is a link", Failure::DiskFull, [](UpdateWorld &world) {
        UpdateWorld::replaceByLink(world.inInstallation("temp/packets"), world.outside());
        world.publish();
    });
    row("temp/exchange is a link to a broken off exchange", Failure::DiskFull, [](UpdateWorld &world) {
        UpdateWorld::writeTree(world.outside(), {{"journal.forward", R"({"files": [{"path": "OvrynDeck2"}]})"},
                                                 {"old/0", "somebody's"}});
        UpdateWorld::replaceByLink(world.inInstallation("temp/exchange"), world.outside());
        world.publish();
    });
    row("temp/exchange is a link", Failure::DiskFull, [](UpdateWorld &world) {
        UpdateWorld::writeTree(world.outside(), {{"new/0", "somebody's"}, {"old/0", "somebody's"}});
        UpdateWorld::replaceByLink(world.inInstallation("temp/exchange"), world.outside());
        world.publish();
    });
#endif
}

void TestUpdateRun::refused()
{
    QFETCH(Change, change);
    change(*current);
    const FileTree before = current->installedFiles();
    const FileTree outside = current->outsideFiles();
    runToTheEnd();
    QTEST(run->failure(), "failure");
    QCOMPARE(run->stage(), Stage::Failed);
    QCOMPARE(current->installedFiles(), before);
    QCOMPARE(current->outsideFiles(), outside);
    QVERIFY(!QFileInfo::exists("/tmp/file"));
    QVERIFY(!QFileInfo::exists(current->inInstallation("temp/1.0.2.5.zip")));
}

void TestUpdateRun::withoutAKey()
{
    current->publish();
    UpdateSite site = current->site();
    site.keys.clear();
    makeRun(site);
    run->start();
    QTRY_VERIFY(hasEnded());
    QCOMPARE(run->failure(), UpdateFailure::NoKey);
    QCOMPARE(current->server.requests().size(), 0);
}

/// While keys change, old releases are signed by the one and new ones by the other.
void TestUpdateRun::secondKey()
{
    current->publish();
    UpdateSite site = current->site();
    site.keys.prepend(*releaseKeyOf(MinisignKey().publicText()));
    makeRun(site);
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    COMPARE_DONE();
}

/// A release came out between the program's check and the updater's start.
void TestUpdateRun::manifestExchangedOnTheServer()
{
    current->programHasFetched(current->offered.manifest());
    current->offered.version = "1.0.2.6";
    current->publish();
    runToTheEnd();
    COMPARE_DONE();
    QCOMPARE(current->server.requestsFor(UpdateWorld::kManifest), 1);
    QCOMPARE(current->server.requestsFor(UpdateWorld::kSignature), 2);
}

void TestUpdateRun::manifestAndSignatureNeverAgree()
{
    current->publish();
    current->programHasFetched(current->offered.manifest() + ' ');
    current->server.serve(UpdateWorld::kManifest, current->offered.manifest() + ' ');
    runToTheEnd();
    QCOMPARE(run->failure(), UpdateFailure::NotSigned);
    QCOMPARE(current->server.requestsFor(UpdateWorld::kManifest), 1);
    QCOMPARE(current->server.requestsFor(UpdateWorld::kSignature), 2);
}

void TestUpdateRun::changedDuringTheRun_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, Stage stage, const Change &change) {
        QTest::newRow(name) << stage << change;
    };
    // the new files in the order of the manifest: OvrynDeck2, lib/changed.so, new/deep/file
    const auto staged = [](const UpdateWorld &world) {
        return world.inInstallation("temp/exchange/new/1");
    };
    row("a staged file is altered", Stage::WaitingForProgram, [staged](UpdateWorld &world) {
        QVERIFY(QFileInfo::exists(staged(world)));
        QFile file(staged(world));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("a library, bad") > 0);
    });
    row("a staged file is gone", Stage::WaitingForProgram,
        [staged](UpdateWorld &world) { QVERIFY(QFile::remove(staged(world))); });
#ifndef Q_OS_WIN
    row("a staged file becomes a link", Stage::WaitingForProgram, [staged](UpdateWorld &world) {
        UpdateWorld::writeTree(world.outside(), {{"twin", world.offered.files.value("lib/changed.so")}});
        UpdateWorld::replaceByLink(staged(world), world.outside() + "/twin");
    });
    row("a folder becomes a link", Stage::WaitingForProgram,
        [](UpdateWorld &world) { UpdateWorld::replaceByLink(world.inInstallation("new"), world.outside()); });
    row("a folder becomes a link before the files are fetched", Stage::Fetching,
        [](UpdateWorld &world) { UpdateWorld::replaceByLink(world.inInstallation("new"), world.outside()); });
    row("a file becomes a link", Stage::WaitingForProgram, [](UpdateWorld &world) {
        UpdateWorld::replaceByLink(world.inInstallation("lib/changed.so"), world.outside() + "/file");
    });
    row("the folder of old files becomes a link", Stage::WaitingForProgram, [](UpdateWorld &world) {
        UpdateWorld::replaceByLink(world.inInstallation("temp/exchange/old"), world.outside());
    });
    row("the folder of the exchange becomes a link", Stage::WaitingForProgram, [](UpdateWorld &world) {
        const QString moved = world.outside() + "/exchange";
        QVERIFY(QDir().rename(world.inInstallation("temp/exchange"), moved));
        QVERIFY(QFile::link(moved, world.inInstallation("temp/exchange")));
    });
    row("the folder of archives becomes a link", Stage::Fetching, [](UpdateWorld &world) {
        UpdateWorld::replaceByLink(world.inInstallation("temp/packets"), world.outside());
    });
#endif
}

/// Somebody changes the installation's folders while the update runs.
void TestUpdateRun::changedDuringTheRun()
{
    QFETCH(Stage, stage);
    QFETCH(Change, change);
    current->publish();
    FileTree before;
    FileTree outside;
    atStage[stage] = [&] {
        change(*current);
        before = current->installedFiles();
        outside = current->outsideFiles();
    };
    runToTheEnd();
    QCOMPARE(run->stage(), Stage::Failed);
    QVERIFY(!before.isEmpty());
    QCOMPARE(current->installedFiles(), before);
    QCOMPARE(current->outsideFiles(), outside);
}

void TestUpdateRun::retryAfterTheServerWasGone()
{
    current->publish();
    const FileTree before = current->installedFiles();
    const QString first = current->archivePath("OvrynDeck2");
    const QString second = current->archivePath("lib/changed.so");
    current->server.onRequest([this, &second](const QString &path) {
        if (path == second)
            current->server.stop();
    });
    runToTheEnd();
    QCOMPARE(run->failure(), UpdateFailure::NoServer);
    QCOMPARE(run->failedPath(), QString("lib/changed.so"));
    QCOMPARE(current->installedFiles(), before);
    QCOMPARE(current->server.requestsFor(first), 1);

    current->server.onRequest({});
    current->server.resume();
    stages.clear();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    COMPARE_DONE();
    QCOMPARE(stages, kWholeWay);
    QCOMPARE(current->server.requestsFor(first), 1); // was there already
    QCOMPARE(run->bytesFetched(), run->bytesToFetch());
}

void TestUpdateRun::retryAfterADamagedFile()
{
    current->publish();
    const QString path = current->archivePath("lib/changed.so");
    current->server.serve(path, QByteArray(current->offered.archive("lib/changed.so").size(), 'x'));
    runToTheEnd();
    QCOMPARE(run->failure(), UpdateFailure::Damaged);
    QCOMPARE(run->failedPath(), QString("lib/changed.so"));
    current->publish();
    stages.clear();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    COMPARE_DONE();
}

void TestUpdateRun::cancelledInEachStage_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::newRow("Checking") << Stage::Checking;
    QTest::newRow("Fetching") << Stage::Fetching;
    QTest::newRow("Preparing") << Stage::Preparing;
    QTest::newRow("WaitingForProgram") << Stage::WaitingForProgram;
}

void TestUpdateRun::cancelledInEachStage()
{
    QFETCH(Stage, stage);
    current->publish();
    const FileTree before = current->installedFiles();
    SingleInstanceChannel program(current->programId); // else the last stage would not last
    QVERIFY(program.isFirst());
    makeRun();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(stages.contains(stage), 60000);
    const bool isOver = run->stage() != stage; // a fast machine has gone on; it still can be cancelled
    QVERIFY(!isOver || run->stage() < Stage::Exchanging);
    QVERIFY(run->cancel());
    const int reached = stages.size();
    for (int i = 0; i < 20; ++i)
        QTest::qWait(5); // gives what may still be under way its turn; nothing is expected
    QCOMPARE(stages.size(), reached);
    QCOMPARE(current->installedFiles(), before);
    run.reset();
    QCOMPARE(current->installedFiles(), before);
}

void TestUpdateRun::notCancelledInTheExchange()
{
    current->publish();
    bool wasCancelled = true;
    atStage[Stage::Exchanging] = [&] {
        wasCancelled = run->cancel();
    };
    runToTheEnd();
    QVERIFY(!wasCancelled);
    QVERIFY(!run->cancel()); // nor once it is installed
    COMPARE_DONE();
}

void TestUpdateRun::cancelledThenAgain()
{
    current->publish();
    HttpTurn stalls;
    stalls.sentBytes = 100;
    stalls.stalls = true;
    current->server.answerNext(current->archivePath("OvrynDeck2"), stalls);
    makeRun();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(run->bytesFetched() == 100, 60000);
    QVERIFY(run->cancel());
    runToTheEnd(); // another start of the updater
    COMPARE_DONE();
    QCOMPARE(current->server.requestsFor(current->archivePath("OvrynDeck2")), 2);
    QByteArrayList ranges;
    for (const ScriptedHttpServer::Request &request : current->server.requests()) {
        if (request.path == current->archivePath("OvrynDeck2"))
            ranges.append(request.range);
    }
    QCOMPARE(ranges, (QByteArrayList{"", "bytes=100-"}));
}

void TestUpdateRun::deletedInEachStage_data()
{
    cancelledInEachStage_data();
    QTest::newRow("Exchanging") << Stage::Exchanging;
}

/// The window is gone, or the process ends in an orderly way.
void TestUpdateRun::deletedInEachStage()
{
    QFETCH(Stage, stage);
    current->publish();
    const FileTree before = current->installedFiles();
    auto program = std::make_unique<SingleInstanceChannel>(current->programId);
    QVERIFY(program->isFirst());
    if (stage == Stage::Exchanging)
        program.reset();
    makeRun();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(stages.contains(stage), 60000);
    run.reset();
    if (stage == Stage::Exchanging)
        QCOMPARE(installedFiles(), current->expectedInstallation()); // is never broken off
    else
        QCOMPARE(current->installedFiles(), before);
}

void TestUpdateRun::waitsForTheProgram()
{
    current->publish();
    const FileTree before = current->installedFiles();
    auto program = std::make_unique<SingleInstanceChannel>(current->programId);
    QVERIFY(program->isFirst());
    makeRun();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(stages.contains(Stage::WaitingForProgram), 60000);
    for (int i = 0; i < 20; ++i)
        QTest::qWait(5); // several looks at the lock
    QCOMPARE(run->stage(), Stage::WaitingForProgram);
    QCOMPARE(current->installedFiles(), before);
    program.reset();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    COMPARE_DONE();
}

void TestUpdateRun::programThatDoesNotEnd()
{
    current->publish();
    const FileTree before = current->installedFiles();
    auto program = std::make_unique<SingleInstanceChannel>(current->programId);
    QVERIFY(program->isFirst());
    UpdateSite site = current->site();
    site.programPatienceMs = 50;
    makeRun(site);
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    QCOMPARE(run->failure(), UpdateFailure::ProgramRuns);
    QCOMPARE(current->installedFiles(), before);

    program.reset();
    stages.clear();
    const int requests = current->server.requests().size();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), 60000);
    COMPARE_DONE();
    QCOMPARE(current->server.requests().size(), requests + 1); // the signature; all files were there
}

void TestUpdateRun::programCannotStartMeanwhile()
{
    current->publish();
    bool startsInTheExchange = true;
    atStage[Stage::Exchanging] = [&] {
        startsInTheExchange = SingleInstanceChannel(current->programId).isFirst();
    };
    runToTheEnd();
    COMPARE_DONE();
    QVERIFY(!startsInTheExchange);
    QVERIFY(!SingleInstanceChannel(current->programId).isFirst());
    run->releaseProgram();
    QVERIFY(SingleInstanceChannel(current->programId).isFirst());
}

void TestUpdateRun::unfinishedExchangeThatCannotBeRead()
{
    current->publish();
    UpdateWorld::writeTree(current->installation(), {{"temp/exchange/journal.forward", "no journal"}});
    const FileTree before = current->installedFiles();
    runToTheEnd();
    QCOMPARE(run->failure(), UpdateFailure::HalfDone);
    QCOMPARE(current->server.requests().size(), 0);
    QCOMPARE(current->installedFiles(), before);
}

void TestUpdateRun::fullDisk()
{
#ifdef Q_OS_LINUX
    QVERIFY(QDir().mkpath(current->inInstallation("temp")));
    if (geteuid() != 0 || mount("none", qPrintable(current->inInstallation("temp")), "tmpfs", 0, "size=64k") != 0)
        QSKIP("only root can mount a small disk");
    const auto unmount = qScopeGuard([this] {
        run.reset();
        umount(qPrintable(current->inInstallation("temp")));
    });
    QByteArray large; // that no packing makes small
    for (int i = 0; large.size() < 300000; ++i)
        large += WorldRelease::hash(QByteArray::number(i));
    current->offered.files["OvrynDeck2"] = large;
    current->publish();
    const FileTree before = current->installedFiles();
    runToTheEnd();
    QCOMPARE(run->failure(), UpdateFailure::DiskFull);
    QCOMPARE(current->installedFiles(), before);
#else
    QSKIP("a small disk is made on Linux alone");
#endif
}

QTEST_GUILESS_MAIN(TestUpdateRun)
#include "TestUpdateRun.moc"
