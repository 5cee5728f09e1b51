#include "config/FileSizeLimit.h"
#include "config/NoMoreFiles.h"
#include "support/CurrentFolder.h"
#include "support/LoopbackHttpServer.h"
#include "support/UpdateManifest.h"
#include "update/ForeignFolder.h"
#include "update/Ovryn_DownloadUpdateFileInfo.h"
#include "update/Ovryn_UpdateInfoReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The download of the manifest from a web server on the loopback address, in a current folder of the test's own.
class TestDownloadUpdateFileInfo : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void newDownloader();
    void endings_data();
    void endings();
    void answerLargerThanAllowed_data();
    void answerLargerThanAllowed();
    void fullDisk_data();
    void fullDisk();
    void noServer();
    void noHost();
    void dataGoToTheDiskAsTheyArrive();
    void secondStartWhileRunning();
    void startsAgain_data();
    void startsAgain();
    void failureLeavesNoEarlierManifest();
    void folderThatCannotBeMade();
    void earlierManifestThatCannotBeRemoved();
    void earlierManifestThatCouldOnlyBeWritten();
    void fileThatCannotBeOpened();
    void earlierManifestIsALink_data();
    void earlierManifestIsALink();
    void endsInTheMiddle();

private:
    static QByteArray saved()
    {
        QFile file(QStringLiteral("temp/update_info.xml"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    static void write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    /// How many requests the server gets until the downloader's next one is answered: one that it sent before has
    /// arrived by then.
    int requestsUntilTheNextIsAnswered(Ovryn_DownloadUpdateFileInfo &downloader)
    {
        QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
        downloader.startDownload();
        return spy.wait(kPatienceMs) ? server->requests().size() : -1;
    }

    static constexpr int kPatienceMs = 30000;
    std::unique_ptr<LoopbackHttpServer> server;
    std::unique_ptr<CurrentFolder> folder;
};

namespace
{

const char *const kRequest = "GET /update_packets/OvrynDeck2_UpdateFiles/update_info.xml";

/// The results that the downloader reported, in order.
QList<bool> reported(const QSignalSpy &spy)
{
    QList<bool> results;
    for (const QList<QVariant> &arguments : spy)
        results.append(arguments.at(0).toBool());
    return results;
}

} // namespace

void TestDownloadUpdateFileInfo::init()
{
    folder = std::make_unique<CurrentFolder>();
    server = std::make_unique<LoopbackHttpServer>();
    qputenv("OVRYN_TEST_UPDATE_SERVER", server->address().toLatin1());
}

void TestDownloadUpdateFileInfo::cleanup()
{
    server.reset();
    folder.reset();
}

void TestDownloadUpdateFileInfo::newDownloader()
{
    const Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QCOMPARE(downloader.currentState(), 0);
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp")));
    QCOMPARE(server->requests(), QStringList());
}

void TestDownloadUpdateFileInfo::endings_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("headers");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("missing"); ///< bytes promised and not sent
    QTest::addColumn<bool>("complete");
    const QByteArray ok = "200 OK";
    const QByteArray none;
    QTest::newRow("new version") << ok << none << updateManifest("1.1") << 0 << true;
    QTest::newRow("nothing new") << ok << none << updateManifest("1.0.2.4") << 0 << true;
    QTest::newRow("too old") << ok << none << updateManifest("1.1", "1.1") << 0 << true;
    QTest::newRow("no manifest at all") << ok << none << QByteArray("<html/>") << 0 << true;
    QTest::newRow("empty body") << ok << none << none << 0 << true;
    QTest::newRow("as large as allowed") << ok << none << QByteArray(int(kManifestBytesMax), 'x') << 0 << true;
    QTest::newRow("redirect is an answer like any other")
        << QByteArray("302 Found") << QByteArray("Location: /elsewhere.xml\r\n") << QByteArray("moved") << 0 << true;
    QTest::newRow("not found") << QByteArray("404 Not Found") << none << QByteArray("no such page") << 0 << false;
    QTest::newRow("error of the server")
        << QByteArray("500 Internal Server Error") << none << QByteArray("sorry") << 0 << false;
    QTest::newRow("wants a password") << QByteArray("401 Unauthorized")
                                      << QByteArray("WWW-Authenticate: Basic realm=\"x\"\r\n") << none << 0 << false;
    QTest::newRow("drops in mid-body") << ok << none << updateManifest("1.1") << 1000 << false;
    QTest::newRow("drops before the body") << ok << none << none << 10 << false;
    QTest::newRow("drops late in a large body") << ok << none << QByteArray(3000000, 'x') << 1 << false;
}

void TestDownloadUpdateFileInfo::endings()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, headers);
    QFETCH(QByteArray, body);
    QFETCH(int, missing);
    QFETCH(bool, complete);
    server->answerWith(body, status, headers, body.size() + missing);
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QCOMPARE(downloader.currentState(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{complete}, kPatienceMs);
    QCOMPARE(downloader.currentState(), complete ? 3 : 2);
    QCOMPARE(server->requests(), QStringList{QString::fromLatin1(kRequest)});
    QCOMPARE(QFileInfo::exists(QStringLiteral("temp/update_info.xml")), complete);
    if (complete)
        QVERIFY(saved() == body);
}

void TestDownloadUpdateFileInfo::answerLargerThanAllowed_data()
{
    QTest::addColumn<bool>("endless");
    QTest::newRow("one byte too many") << false;
    QTest::newRow("without an end") << true;
}

void TestDownloadUpdateFileInfo::answerLargerThanAllowed()
{
    QFETCH(bool, endless);
    if (endless)
        server->answerWithoutEnd();
    else
        server->answerWith(QByteArray(int(kManifestBytesMax) + 1, ' '));
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{false}, kPatienceMs);
    QCOMPARE(downloader.currentState(), 2);
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp/update_info.xml")));
    QTRY_COMPARE_WITH_TIMEOUT(server->connections(), 0, kPatienceMs); // cut off

    server->answerWith(updateManifest("1.1"));
    downloader.startDownload(); // no failure for good
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), (QList<bool>{false, true}), kPatienceMs);
    QCOMPARE(saved(), updateManifest("1.1"));
}

void TestDownloadUpdateFileInfo::fullDisk_data()
{
    QTest::addColumn<int>("bodySize");
    QTest::addColumn<int>("room"); ///< bytes
    QTest::newRow("nothing of a small answer fits") << 300 << 0;
    QTest::newRow("a part of a small answer fits") << 300 << 299;
    QTest::newRow("a part of a large answer fits") << 3000000 << 1000000;
    QTest::newRow("all but the last byte fits") << 3000000 << 2999999;
}

void TestDownloadUpdateFileInfo::fullDisk()
{
#ifdef Q_OS_UNIX
    QFETCH(int, bodySize);
    QFETCH(int, room);
    server->answerWith(QByteArray(bodySize, ' '));
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    {
        const FileSizeLimit limit(room);
        downloader.startDownload();
        QTRY_VERIFY_WITH_TIMEOUT(!spy.isEmpty(), kPatienceMs);
    }
    QCOMPARE(reported(spy), QList<bool>{false});
    QCOMPARE(downloader.currentState(), 2);
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp/update_info.xml")));
    QTRY_COMPARE_WITH_TIMEOUT(server->connections(), 0, kPatienceMs);
#else
    QSKIP("needs a limit of file sizes");
#endif
}

void TestDownloadUpdateFileInfo::noServer()
{
    server->stop();
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{false}, kPatienceMs);
    QCOMPARE(downloader.currentState(), 2);
    QVERIFY(QFileInfo::exists(QStringLiteral("temp")));
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp/update_info.xml")));
}

void TestDownloadUpdateFileInfo::noHost()
{
    qputenv("OVRYN_TEST_UPDATE_SERVER", "");
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{false}, kPatienceMs);
    QCOMPARE(downloader.currentState(), 2);
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp/update_info.xml")));
}

void TestDownloadUpdateFileInfo::dataGoToTheDiskAsTheyArrive()
{
    constexpr int kFirstPart = 500000;
    constexpr int kHeldBack = 64 * 1024; // at most, by the file's own buffer
    const QByteArray body(1000000, 'x');
    server->answerWith(body);
    server->pauseAfter(kFirstPart);
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(QStringLiteral("temp/update_info.xml")).size() >= kFirstPart - kHeldBack,
                             kPatienceMs);
    QVERIFY(spy.isEmpty());
    server->release();
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{true}, kPatienceMs);
    QVERIFY(saved() == body);
}

void TestDownloadUpdateFileInfo::secondStartWhileRunning()
{
    server->answerWith(updateManifest("1.1"));
    server->hold();
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(server->requests().size(), 1, kPatienceMs);
    downloader.startDownload();
    downloader.startDownload();
    QCOMPARE(downloader.currentState(), 1);
    server->release();
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{true}, kPatienceMs);
    QCOMPARE(server->requests().size(), 1);
    QCOMPARE(saved(), updateManifest("1.1"));
}

void TestDownloadUpdateFileInfo::startsAgain_data()
{
    QTest::addColumn<QByteArray>("firstStatus");
    QTest::newRow("after a success") << QByteArray("200 OK");
    QTest::newRow("after a failure") << QByteArray("404 Not Found");
}

void TestDownloadUpdateFileInfo::startsAgain()
{
    QFETCH(QByteArray, firstStatus);
    server->answerWith(updateManifest("1.0.2.4", "", QByteArray(5000, ' ')), firstStatus);
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(spy.size(), 1, kPatienceMs);
    server->answerWith(updateManifest("1.1"));
    downloader.startDownload();
    QCOMPARE(downloader.currentState(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(spy.size(), 2, kPatienceMs);
    QCOMPARE(reported(spy).last(), true);
    QCOMPARE(saved(), updateManifest("1.1")); // nothing of the longer one is left
}

void TestDownloadUpdateFileInfo::failureLeavesNoEarlierManifest()
{
    QVERIFY(QDir().mkdir(QStringLiteral("temp")));
    write(QStringLiteral("temp/update_info.xml"), "earlier");
    write(QStringLiteral("temp/other.zip"), "stays");
    server->stop();
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{false}, kPatienceMs);
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp/update_info.xml")));
    QVERIFY(QFileInfo::exists(QStringLiteral("temp/other.zip")));
}

void TestDownloadUpdateFileInfo::folderThatCannotBeMade()
{
    write(QStringLiteral("temp"), "a file of that name");
    server->answerWith(updateManifest("1.1"));
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QCOMPARE(reported(spy), QList<bool>{false}); // at once
    QCOMPARE(downloader.currentState(), 1);      // permanently: later checks do nothing

    QVERIFY(QFile::remove(QStringLiteral("temp")));
    downloader.startDownload();
    QVERIFY(!QFileInfo::exists(QStringLiteral("temp")));

    Ovryn_DownloadUpdateFileInfo ofTheNextStart(nullptr);
    QSignalSpy nextSpy(&ofTheNextStart, SIGNAL(downloadFinished(bool)));
    ofTheNextStart.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(reported(nextSpy), QList<bool>{true}, kPatienceMs);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(server->requests().size(), 1); // only of the last downloader
}

void TestDownloadUpdateFileInfo::earlierManifestThatCannotBeRemoved()
{
    const QString inTheWay = QStringLiteral("temp/update_info.xml/a folder with something in it");
    QVERIFY(QDir().mkpath(inTheWay));
    server->answerWith(updateManifest("1.1"));
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QCOMPARE(reported(spy), QList<bool>{false});
    QCOMPARE(downloader.currentState(), 2);
    QVERIFY(QFileInfo::exists(inTheWay));

    QVERIFY(QDir(QStringLiteral("temp/update_info.xml")).removeRecursively());
    downloader.startDownload(); // no failure for good
    QTRY_COMPARE_WITH_TIMEOUT(spy.size(), 2, kPatienceMs);
    QCOMPARE(reported(spy).last(), true);
    QCOMPARE(server->requests().size(), 1); // none of the failed start
}

void TestDownloadUpdateFileInfo::earlierManifestThatCouldOnlyBeWritten()
{
#ifdef Q_OS_LINUX
    QVERIFY(QDir().mkdir(QStringLiteral("temp")));
    write(QStringLiteral("temp/update_info.xml"), "earlier");
    server->answerWith(updateManifest("1.1"));
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    {
        const ForeignFolder foreign(QStringLiteral("temp"), QStringLiteral("temp/update_info.xml"));
        QFile file(QStringLiteral("temp/update_info.xml"));
        QVERIFY(!file.remove());
        QVERIFY(file.open(QIODevice::ReadWrite)); // there is no other obstacle
        file.close();
        downloader.startDownload();
    }
    QCOMPARE(reported(spy), QList<bool>{false});
    QCOMPARE(downloader.currentState(), 2);
    QCOMPARE(saved(), QByteArray("earlier"));
    QCOMPARE(requestsUntilTheNextIsAnswered(downloader), 1);
#else
    QSKIP("only one platform lets a file be written that cannot be removed");
#endif
}

void TestDownloadUpdateFileInfo::fileThatCannotBeOpened()
{
#ifdef Q_OS_UNIX
    server->answerWith(updateManifest("1.1"));
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    {
        const NoMoreFiles noMoreFiles;
        downloader.startDownload();
    }
    QCOMPARE(reported(spy), QList<bool>{false});
    QCOMPARE(downloader.currentState(), 2);
    QCOMPARE(requestsUntilTheNextIsAnswered(downloader), 1);
#else
    QSKIP("only one platform has a limit of open files");
#endif
}

void TestDownloadUpdateFileInfo::earlierManifestIsALink_data()
{
    QTest::addColumn<bool>("dangling");
    QTest::newRow("to a file outside") << false;
    QTest::newRow("to a file that is not there") << true;
}

void TestDownloadUpdateFileInfo::earlierManifestIsALink()
{
    QFETCH(bool, dangling);
    const QTemporaryDir outside;
    const QString target = outside.filePath(QStringLiteral("somebody's"));
    if (!dangling)
        write(target, "untouched");
    QVERIFY(QDir().mkdir(QStringLiteral("temp")));
    QVERIFY(QFile::link(target, QStringLiteral("temp/update_info.xml")));
    server->answerWith(updateManifest("1.1"));
    Ovryn_DownloadUpdateFileInfo downloader(nullptr);
    QSignalSpy spy(&downloader, SIGNAL(downloadFinished(bool)));
    downloader.startDownload();
    QTRY_COMPARE_WITH_TIMEOUT(reported(spy), QList<bool>{true}, kPatienceMs);
    QVERIFY(!QFileInfo(QStringLiteral("temp/update_info.xml")).isSymLink());
    QCOMPARE(saved(), updateManifest("1.1"));
    QCOMPARE(QFileInfo::exists(target), !dangling);
    QFile file(target);
    if (!dangling)
        QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == "untouched");
}

void TestDownloadUpdateFileInfo::endsInTheMiddle()
{
    server->hold();
    {
        Ovryn_DownloadUpdateFileInfo downloader(nullptr);
        downloader.startDownload();
        QTRY_COMPARE_WITH_TIMEOUT(server->requests().size(), 1, kPatienceMs);
    }
    server->release();
    QTRY_COMPARE_WITH_TIMEOUT(server->connections(), 0, kPatienceMs);
    QCOMPARE(saved(), QByteArray());
}

QTEST_GUILESS_MAIN(TestDownloadUpdateFileInfo)
#include "TestDownloadUpdateFileInfo.moc"
