#include "support/ScriptedHttpServer.h"
#include "updater/FileFetcher.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#include <unistd.h>
#endif

Q_DECLARE_METATYPE(FetchResult)
Q_DECLARE_METATYPE(HttpTurn)

/// Fetching a file from servers that break off, lie and wait.
class TestFileFetcher : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void fetchesAFile_data();
    void fetchesAFile();
    void resultComesLater();
    void oneFileAfterTheOther();
    void asksForTheBytesAsTheyAre();
    void bytesInAnotherEncoding();
    void goesOnWhereItBroke();
    void goesOnAfterAnEarlierFetch();
    void goesOnOnlyWhereAHashIsKnown();
    void fileIsThereAlready();
    void partIsComplete();
    void partIsLargerThanTheFile();
    void partOfAnotherRelease_data();
    void partOfAnotherRelease();
    void partIsALink();
    void answersToARangeRequest_data();
    void answersToARangeRequest();
    void rangeThatWasNotAskedFor();
    void refusals_data();
    void refusals();
    void breaksOnceThenGoesOn_data();
    void breaksOnceThenGoesOn();
    void breaksEachTime_data();
    void breaksEachTime();
    void slowButGoodEnough();
    void noServer();
    void damaged_data();
    void damaged();
    void largerThanAnnounced_data();
    void largerThanAnnounced();
    void upperLimitWithoutAHash_data();
    void upperLimitWithoutAHash();
    void redirects_data();
    void redirects();
    void redirectsWithoutEnd();
    void cancelKeepsThePart();
    void cancelInThePause();
    void deletedWhileItFetches();
    void fetchFromTheSignal();
    void targetCannotBeWritten_data();
    void targetCannotBeWritten();
    void existingFileIsReplacedAtTheEndAlone();
    void fullDisk();
    void progressNeverGoesBack();

private:
    void fetch(const FetchRequest &request) { fetcher->fetch(request); }
    [[nodiscard]] FetchRequest request(const QByteArray &content, const QString &path = "/file") const
    {
        return {QUrl(server->address() + path), target(), content.size(),
                QCryptographicHash::hash(content, QCryptographicHash::Sha256)};
    }
    [[nodiscard]] QString target() const { return folder->filePath("file"); }
    [[nodiscard]] QString part() const { return folder->filePath("file.part"); }
    [[nodiscard]] static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    void useTimings(const FetchTimings &timings)
    {
        fetcher = std::make_unique<FileFetcher>(timings);
        connect(fetcher.get(), &FileFetcher::finished, this, [this](FetchResult result) { results.append(result); });
        connect(fetcher.get(), &FileFetcher::progressed, this, [this](qint64 bytes) { progress.append(bytes); });
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ScriptedHttpServer> server;
    std::unique_ptr<FileFetcher> fetcher;
    QList<FetchResult> results;
    QList<qint64> progress;
};

namespace
{

// Each sees one kind of a bad connection, and has so many tries that a busy machine does not use them up.
const FetchTimings kSeesSilence{300, 3600000, 1, 9, 1};
const FetchTimings kSeesLowRate{3600000, 600, 1024, 9, 1};
/// No time-out plays a part, so that a busy machine can't bring one about.
const FetchTimings kPatient{60000, 60000, 1, 3, 5};

QByteArray sample(int size = 300 * 1000)
{
    QByteArray bytes;
    for (int i = 0; bytes.size() < size; ++i)
        bytes += QByteArray::number(i) + '\n';
    return bytes.left(size);
}

FetchTimings timingsFor(const HttpTurn &turn)
{
    return turn.stalls ? kSeesSilence : turn.dripBytes > 0 ? kSeesLowRate : kPatient;
}

HttpTurn status(const QByteArray &text, const QByteArray &body = "an explanation")
{
    HttpTurn turn;
    turn.status = text;
    turn.body = body;
    return turn;
}

HttpTurn closesAfter(int bytes)
{
    HttpTurn turn;
    turn.sentBytes = bytes;
    return turn;
}

HttpTurn stallsAfter(int bytes)
{
    HttpTurn turn;
    turn.sentBytes = bytes;
    turn.stalls = true;
    return turn;
}

HttpTurn gives(const QByteArray &body)
{
    HttpTurn turn;
    turn.body = body;
    return turn;
}

HttpTurn redirect(const QString &where, const QByteArray &number = "302 Found")
{
    HttpTurn turn = status(number, "elsewhere");
    turn.headers = "Location: " + where.toLatin1() + "\r\n";
    return turn;
}

} // namespace

#define TRY_RESULT(result) QTRY_COMPARE_WITH_TIMEOUT(results, QList<FetchResult>{result}, 60000)

void TestFileFetcher::init()
{
    folder = std::make_unique<QTemporaryDir>();
    server = std::make_unique<ScriptedHttpServer>();
    results.clear();
    progress.clear();
    useTimings(kPatient);
}

void TestFileFetcher::cleanup()
{
    fetcher.reset();
    server.reset();
    folder.reset();
}

void TestFileFetcher::fetchesAFile_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("one byte") << 1;
    QTest::newRow("some") << 1000;
    QTest::newRow("more than a buffer") << 3000000;
}

void TestFileFetcher::fetchesAFile()
{
    QFETCH(int, size);
    const QByteArray bytes = sample(size);
    server->serve("/file", bytes);
    fetch(request(bytes));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), bytes);
    QVERIFY(!QFileInfo::exists(part()));
    QCOMPARE(server->requests().size(), 1);
    QVERIFY(server->requests().at(0).range.isEmpty());
    QCOMPARE(progress.constLast(), bytes.size());
}

void TestFileFetcher::resultComesLater()
{
    FetchRequest impossible = request("x");
    impossible.path = folder->filePath("missing/file");
    fetch(impossible);
    QVERIFY(results.isEmpty());
    TRY_RESULT(FetchResult::DiskFull);
}

void TestFileFetcher::oneFileAfterTheOther()
{
    for (int i = 0; i < 5; ++i) {
        results.clear();
        const QByteArray bytes = sample(1000 + i);
        server->serve("/file", bytes);
        fetch(request(bytes));
        TRY_RESULT(FetchResult::Complete);
        QCOMPARE(content(target()), bytes);
    }
}

void TestFileFetcher::asksForTheBytesAsTheyAre()
{
    server->serve("/file", sample());
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(server->requests().at(0).acceptEncoding, QByteArray("identity"));
}

/// A small answer must not unpack to a large one, nor may what is checked be other bytes than those announced.
void TestFileFetcher::bytesInAnotherEncoding()
{
    const QByteArray bytes(10 << 20, '\0');
    HttpTurn packed = gives(qCompress(bytes, 9).mid(4));
    packed.headers = "Content-Encoding: deflate\r\n";
    server->answerAlways("/file", packed);
    fetch(request(bytes));
    QTRY_COMPARE_WITH_TIMEOUT(results.size(), 1, 60000);
    QVERIFY(results.at(0) != FetchResult::Complete);
    for (const qint64 reached : qAsConst(progress))
        QVERIFY(reached < 1 << 20);
}

void TestFileFetcher::goesOnWhereItBroke()
{
    server->serve("/file", sample());
    server->answerNext("/file", closesAfter(100000));
    server->answerNext("/file", closesAfter(50000));
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QCOMPARE(server->requests().size(), 3);
    QCOMPARE(server->requests().at(1).range, QByteArray("bytes=100000-"));
    QCOMPARE(server->requests().at(2).range, QByteArray("bytes=150000-"));
}

void TestFileFetcher::goesOnAfterAnEarlierFetch()
{
    server->serve("/file", sample());
    write(part(), sample().left(12345));
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QCOMPARE(server->requests().size(), 1);
    QCOMPARE(server->requests().at(0).range, QByteArray("bytes=12345-"));
}

/// Otherwise the end of one release's file would be put to the beginning of another's.
void TestFileFetcher::goesOnOnlyWhereAHashIsKnown()
{
    server->serve("/file", sample());
    write(part(), "somebody else's");
    FetchRequest any = request(sample());
    any.sha256.clear();
    fetch(any);
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QVERIFY(server->requests().at(0).range.isEmpty());
}

void TestFileFetcher::fileIsThereAlready()
{
    write(target(), sample());
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(server->requests().size(), 0);
    QCOMPARE(progress, QList<qint64>{sample().size()});

    results.clear();
    write(target(), sample(1000));
    server->serve("/file", sample());
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
}

void TestFileFetcher::partIsComplete()
{
    server->serve("/file", sample());
    write(part(), sample());
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QCOMPARE(server->requests().size(), 0);
}

void TestFileFetcher::partIsLargerThanTheFile()
{
    server->serve("/file", sample());
    write(part(), sample(400000));
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QVERIFY(server->requests().at(0).range.isEmpty());
}

void TestFileFetcher::partOfAnotherRelease_data()
{
    QTest::addColumn<int>("bytes");
    QTest::newRow("a beginning") << 1000;
    QTest::newRow("one byte is missing") << 300 * 1000 - 1;
    QTest::newRow("as many as this one has") << 300 * 1000;
}

void TestFileFetcher::partOfAnotherRelease()
{
    QFETCH(int, bytes);
    server->serve("/file", sample());
    write(part(), QByteArray(bytes, 'x'));
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QVERIFY(server->requests().constLast().range.isEmpty());
}

void TestFileFetcher::partIsALink()
{
#ifdef Q_OS_WIN
    QSKIP("a link of this system needs a right that a test does not have");
#endif
    const QString outside = folder->filePath("somebody's");
    write(outside, "kept");
    QVERIFY(QFile::link(outside, part()));
    server->serve("/file", sample());
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(outside), QByteArray("kept"));
    QVERIFY(!QFileInfo(target()).isSymLink());
    QCOMPARE(content(target()), sample());
}

void TestFileFetcher::answersToARangeRequest_data()
{
    const QByteArray rest = sample().mid(100000);
    const auto partial = [](const QByteArray &range, const QByteArray &body) {
        HttpTurn turn = status("206 Partial Content", body);
        if (!range.isNull())
            turn.headers = "Content-Range: " + range + "\r\n";
        return turn;
    };
    HttpTurn whole;
    whole.ignoresRange = true;
    QTest::addColumn<HttpTurn>("turn");
    QTest::addColumn<QList<QByteArray>>("further"); // ranges that are asked for next, each empty for the whole file
    const QList<QByteArray> none;
    const QList<QByteArray> fromTheBeginning{""};
    const QList<QByteArray> onceMore{"bytes=100000-"};
    QTest::newRow("the rest") << partial("bytes 100000-299999/300000", rest) << none;
    QTest::newRow("the whole file") << whole << none;
    QTest::newRow("no range named") << partial({}, rest) << fromTheBeginning;
    QTest::newRow("from another place on") << partial("bytes 99999-299999/300000", rest) << fromTheBeginning;
    QTest::newRow("from the beginning on") << partial("bytes 0-299999/300000", sample()) << fromTheBeginning;
    QTest::newRow("to another place") << partial("bytes 100000-199999/300000", rest.left(100000)) << fromTheBeginning;
    QTest::newRow("of a file of another size") << partial("bytes 100000-299999/300001", rest) << fromTheBeginning;
    QTest::newRow("of a file of unknown size") << partial("bytes 100000-299999/*", rest) << fromTheBeginning;
    QTest::newRow("another unit") << partial("lines 100000-299999/300000", rest) << fromTheBeginning;
    QTest::newRow("huge numbers") << partial("bytes 99999999999999999999-299999/300000", rest) << fromTheBeginning;
    QTest::newRow("negative") << partial("bytes -100000-299999/300000", rest) << fromTheBeginning;
    QTest::newRow("several parts") << partial("bytes 100000-299999/300000, 0-5/300000", rest) << fromTheBeginning;
    QTest::newRow("not satisfiable") << status("416 Range Not Satisfiable") << fromTheBeginning;
    QTest::newRow("not satisfiable, no body") << status("416 Range Not Satisfiable", {}) << fromTheBeginning;
    for (const char *text : {"408 Request Timeout", "429 Too Many Requests", "500 Internal Server Error",
                             "503 Service Unavailable"}) { // which says nothing about the range
        QTest::newRow(text) << status(text) << onceMore;
        QTest::newRow(qPrintable(QString(text) + ", no body")) << status(text, {}) << onceMore;
    }
    QTest::newRow("precondition failed") << status("412 Precondition Failed", {}) << fromTheBeginning;
    QTest::newRow("not implemented") << status("501 Not Implemented", {}) << fromTheBeginning;
}

void TestFileFetcher::answersToARangeRequest()
{
    QFETCH(HttpTurn, turn);
    QFETCH(QList<QByteArray>, further);
    server->serve("/file", sample());
    server->answerNext("/file", turn);
    write(part(), sample().left(100000));
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QList<QByteArray> ranges;
    for (const ScriptedHttpServer::Request &asked : server->requests())
        ranges.append(asked.range);
    QCOMPARE(ranges, QList<QByteArray>{"bytes=100000-"} + further);
}

void TestFileFetcher::rangeThatWasNotAskedFor()
{
    HttpTurn turn = status("206 Partial Content", sample());
    turn.headers = "Content-Range: bytes 0-299999/300000\r\n";
    server->answerAlways("/file", turn);
    fetch(request(sample()));
    TRY_RESULT(FetchResult::NoAnswer);
    QVERIFY(!QFileInfo::exists(target()));
}

void TestFileFetcher::refusals_data()
{
    QTest::addColumn<HttpTurn>("turn");
    QTest::addColumn<int>("requests");
    for (const char *text : {"400 Bad Request", "401 Unauthorized", "403 Forbidden", "404 Not Found", "410 Gone"}) {
        QTest::newRow(text) << status(text) << 1;
        QTest::newRow(qPrintable(QString(text) + ", no body")) << status(text, {}) << 1;
    }
    for (const char *text : {"408 Request Timeout", "429 Too Many Requests", "500 Internal Server Error",
                             "502 Bad Gateway", "503 Service Unavailable", "504 Gateway Timeout"}) {
        QTest::newRow(text) << status(text) << 3;
        QTest::newRow(qPrintable(QString(text) + ", no body")) << status(text, {}) << 3;
    }
}

void TestFileFetcher::refusals()
{
    QFETCH(HttpTurn, turn);
    QFETCH(int, requests);
    server->answerAlways("/file", turn);
    fetch(request(sample()));
    TRY_RESULT(FetchResult::NoAnswer);
    QCOMPARE(server->requests().size(), requests);
    QVERIFY(!QFileInfo::exists(target()));
    QVERIFY(QFileInfo(part()).size() == 0); // nothing of the explanation
}

void TestFileFetcher::breaksOnceThenGoesOn_data()
{
    QTest::addColumn<HttpTurn>("turn");
    QTest::addColumn<QByteArray>("range");
    HttpTurn drips;
    drips.dripBytes = 10;
    drips.dripMs = 50;
    QTest::newRow("closes before the body") << closesAfter(0) << QByteArray();
    QTest::newRow("closes in the body") << closesAfter(1000) << QByteArray("bytes=1000-");
    QTest::newRow("closes before the last byte") << closesAfter(300 * 1000 - 1) << QByteArray("some");
    QTest::newRow("stalls before the body") << stallsAfter(0) << QByteArray();
    QTest::newRow("stalls in the body") << stallsAfter(1000) << QByteArray("bytes=1000-");
    QTest::newRow("a server's fault") << status("500 Internal Server Error") << QByteArray();
    QTest::newRow("a server's fault, no body") << status("503 Service Unavailable", {}) << QByteArray();
    QTest::newRow("drips below the rate") << drips << QByteArray("some");
}

void TestFileFetcher::breaksOnceThenGoesOn()
{
    QFETCH(HttpTurn, turn);
    QFETCH(QByteArray, range);
    useTimings(timingsFor(turn));
    server->serve("/file", sample());
    server->answerNext("/file", turn);
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
    QVERIFY(server->requests().size() >= 2);
    if (range == "some")
        QVERIFY(server->requests().at(1).range.startsWith("bytes="));
    else
        QCOMPARE(server->requests().at(1).range, range);
}

void TestFileFetcher::breaksEachTime_data()
{
    QTest::addColumn<HttpTurn>("turn");
    HttpTurn drips;
    drips.dripBytes = 1;
    drips.dripMs = 20;
    drips.ignoresRange = true;
    QTest::newRow("closes") << closesAfter(0);
    QTest::newRow("stalls") << stallsAfter(0);
    QTest::newRow("drips") << drips;
}

void TestFileFetcher::breaksEachTime()
{
    QFETCH(HttpTurn, turn);
    FetchTimings timings = timingsFor(turn);
    timings.tries = 3;
    useTimings(timings);
    server->serve("/file", sample());
    server->answerAlways("/file", turn);
    fetch(request(sample()));
    TRY_RESULT(FetchResult::NoAnswer);
    QCOMPARE(server->requests().size(), timings.tries);
    QVERIFY(!QFileInfo::exists(target()));
}

void TestFileFetcher::slowButGoodEnough()
{
    FetchTimings timings = kPatient;
    timings.windowMs = 50; // many spans, in each of which something arrives
    timings.windowBytesMin = 0;
    useTimings(timings);
    HttpTurn drips;
    drips.dripBytes = 1000;
    drips.dripMs = 20;
    server->serve("/file", sample(20000));
    server->answerNext("/file", drips);
    fetch(request(sample(20000)));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(server->requests().size(), 1);
    QCOMPARE(content(target()), sample(20000));
}

void TestFileFetcher::noServer()
{
    server->stop();
    fetch(request(sample()));
    TRY_RESULT(FetchResult::NoAnswer);
    results.clear();
    server->serve("/file", sample());
    server->resume();
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
}

void TestFileFetcher::damaged_data()
{
    QTest::addColumn<QByteArray>("served");
    QByteArray changed = sample();
    changed[200000] = char(changed.at(200000) ^ 1);
    QTest::newRow("one bit") << changed;
    QTest::newRow("zeros") << QByteArray(sample().size(), '\0');
    QTest::newRow("another file of that size") << QByteArray(sample().size(), 'x');
}

void TestFileFetcher::damaged()
{
    QFETCH(QByteArray, served);
    server->serve("/file", served);
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Damaged);
    QVERIFY(!QFileInfo::exists(target()));
    QVERIFY(!QFileInfo::exists(part())); // a later fetch must not go on with it

    results.clear();
    server->serve("/file", sample());
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
}

void TestFileFetcher::largerThanAnnounced_data()
{
    QTest::addColumn<HttpTurn>("turn");
    HttpTurn endless = gives(QByteArray(5 << 20, 'x'));
    endless.headers = "Content-Length: 999999999999\r\n";
    QTest::newRow("one byte") << gives(sample() + 'x');
    QTest::newRow("five megabytes") << gives(QByteArray(5 << 20, 'x'));
    QTest::newRow("a length that no disk has") << endless;
}

void TestFileFetcher::largerThanAnnounced()
{
    QFETCH(HttpTurn, turn);
    server->answerAlways("/file", turn);
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Damaged);
    for (const qint64 reached : qAsConst(progress))
        QVERIFY(reached <= sample().size());
    QVERIFY(!QFileInfo::exists(target()));
    QVERIFY(!QFileInfo::exists(part()));
}

void TestFileFetcher::upperLimitWithoutAHash_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<FetchResult>("result");
    QTest::newRow("empty") << 0 << FetchResult::Complete;
    QTest::newRow("below") << 999 << FetchResult::Complete;
    QTest::newRow("exactly") << 1000 << FetchResult::Complete;
    QTest::newRow("above") << 1001 << FetchResult::Damaged;
}

void TestFileFetcher::upperLimitWithoutAHash()
{
    QFETCH(int, size);
    QFETCH(FetchResult, result);
    server->serve("/file", sample(size));
    fetch({QUrl(server->address() + "/file"), target(), 1000});
    TRY_RESULT(result);
    QCOMPARE(content(target()), result == FetchResult::Complete ? sample(size) : QByteArray("no file"));
}

void TestFileFetcher::redirects_data()
{
    QTest::addColumn<QString>("where");
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<bool>("isFollowed");
    for (const char *number :
         {"301 Moved Permanently", "302 Found", "303 See Other", "307 Temporary Redirect", "308 Permanent Redirect"})
        QTest::newRow(number) << "%1/elsewhere" << QByteArray(number) << true;
    QTest::newRow("relative") << "elsewhere" << QByteArray("302 Found") << true;
    QTest::newRow("a file") << "file://%2" << QByteArray("302 Found") << false;
    QTest::newRow("ftp") << "ftp://127.0.0.1/elsewhere" << QByteArray("302 Found") << false;
    QTest::newRow("data") << "data:text/plain,%3" << QByteArray("302 Found") << false;
    QTest::newRow("resource of the program") << "qrc:/images/images/icon.png" << QByteArray("302 Found") << false;
    QTest::newRow("no address") << "http://" << QByteArray("302 Found") << false;
}

void TestFileFetcher::redirects()
{
    QFETCH(QString, where);
    QFETCH(QByteArray, number);
    QFETCH(bool, isFollowed);
    const QByteArray bytes = sample(1000);
    write(folder->filePath("local"), bytes);
    where.replace("%1", server->address());
    where.replace("%2", folder->filePath("local"));
    where.replace("%3", QString::fromLatin1(bytes.toPercentEncoding()));
    server->serve("/elsewhere", bytes);
    server->answerAlways("/file", redirect(where, number));
    fetch(request(bytes));
    TRY_RESULT(isFollowed ? FetchResult::Complete : FetchResult::NoAnswer);
    QCOMPARE(content(target()), isFollowed ? bytes : QByteArray("no file"));
}

void TestFileFetcher::redirectsWithoutEnd()
{
    server->answerAlways("/file", redirect("/file"));
    fetch(request(sample()));
    TRY_RESULT(FetchResult::NoAnswer);
    QVERIFY(server->requests().size() < 100);
}

void TestFileFetcher::cancelKeepsThePart()
{
    server->serve("/file", sample());
    server->answerNext("/file", stallsAfter(100000));
    fetch(request(sample()));
    QTRY_VERIFY(!progress.isEmpty() && progress.constLast() == 100000);
    fetcher->cancel();
    QCOMPARE(content(part()), sample().left(100000));
    QTest::qWait(0);
    QVERIFY(results.isEmpty());

    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(server->requests().constLast().range, QByteArray("bytes=100000-"));
    QCOMPARE(content(target()), sample());
}

void TestFileFetcher::cancelInThePause()
{
    FetchTimings timings = kPatient;
    timings.pauseMs = 3600000;
    useTimings(timings);
    server->serve("/file", sample());
    server->answerNext("/file", closesAfter(100000));
    fetch(request(sample()));
    QTRY_VERIFY(!progress.isEmpty() && progress.constLast() == 100000);
    fetcher->cancel();
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(server->requests().size(), 2);
}

void TestFileFetcher::deletedWhileItFetches()
{
    server->serve("/file", sample());
    server->answerNext("/file", stallsAfter(100000));
    fetch(request(sample()));
    QTRY_VERIFY(!progress.isEmpty());
    fetcher.reset();
    QTest::qWait(0);
    QVERIFY(results.isEmpty());
    QVERIFY(QFileInfo(part()).size() > 0);
}

void TestFileFetcher::fetchFromTheSignal()
{
    server->serve("/first", "first");
    server->serve("/second", sample());
    connect(fetcher.get(), &FileFetcher::finished, this, [this] {
        if (results.size() == 1)
            fetch(request(sample(), "/second"));
    });
    fetch(request("first", "/first"));
    QTRY_COMPARE_WITH_TIMEOUT(results, (QList<FetchResult>{FetchResult::Complete, FetchResult::Complete}), 60000);
    QCOMPARE(content(target()), sample());
}

void TestFileFetcher::targetCannotBeWritten_data()
{
    QTest::addColumn<QString>("folderAt");
    QTest::newRow("a folder in the part's place") << "file.part/x";
    QTest::newRow("a folder in the file's place") << "file/x";
}

void TestFileFetcher::targetCannotBeWritten()
{
    QFETCH(QString, folderAt);
    QVERIFY(QDir(folder->path()).mkpath(folderAt));
    server->serve("/file", sample());
    fetch(request(sample()));
    TRY_RESULT(FetchResult::DiskFull);
    QVERIFY(QFileInfo(folder->filePath(folderAt)).isDir());
}

void TestFileFetcher::existingFileIsReplacedAtTheEndAlone()
{
    write(target(), "former");
    server->serve("/file", sample());
    server->answerNext("/file", stallsAfter(1000));
    fetch(request(sample()));
    QTRY_VERIFY(!progress.isEmpty());
    QCOMPARE(content(target()), QByteArray("former"));
    fetcher->cancel();
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QCOMPARE(content(target()), sample());
}

void TestFileFetcher::fullDisk()
{
#ifdef Q_OS_LINUX
    const QString disk = folder->filePath("disk");
    QVERIFY(QDir().mkdir(disk));
    if (geteuid() != 0 || mount("none", qPrintable(disk), "tmpfs", 0, "size=64k") != 0)
        QSKIP("only root can mount a small disk");
    const auto unmount = qScopeGuard([this, &disk] {
        fetcher.reset();
        umount(qPrintable(disk));
    });
    server->serve("/file", sample());
    FetchRequest onDisk = request(sample());
    onDisk.path = disk + "/file";
    fetch(onDisk);
    TRY_RESULT(FetchResult::DiskFull);
    QVERIFY(!QFileInfo::exists(onDisk.path));
#else
    QSKIP("a small disk is made on Linux alone");
#endif
}

void TestFileFetcher::progressNeverGoesBack()
{
    server->serve("/file", sample());
    server->answerNext("/file", closesAfter(100000));
    server->answerNext("/file", closesAfter(100000));
    fetch(request(sample()));
    TRY_RESULT(FetchResult::Complete);
    QVERIFY(progress.size() >= 3);
    QVERIFY(std::is_sorted(progress.cbegin(), progress.cend()));
}

QTEST_GUILESS_MAIN(TestFileFetcher)
#include "TestFileFetcher.moc"
