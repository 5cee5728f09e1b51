#include "e2e/ProgramTest.h"

#include <QDate>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTcpServer>
#include <QTest>

namespace
{

const QString kFirst = QStringLiteral("1.0.2.4");
const QString kSecond = QStringLiteral("1.0.2.5");
const QString kThird = QStringLiteral("1.0.2.6");

constexpr int kBallastBytes = 3000000; // a file that takes the server some seconds
constexpr int kBoxButtonFromBottom = 30;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile::remove(path); // not into the file that a process may run
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

/// An executable with some bytes after its end, which change it and nothing that it does.
void writeExecutable(const QString &path, const QString &source, const QString &version)
{
    write(path, contentOf(source) + version.toLatin1());
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadUser |
                                            QFile::WriteUser | QFile::ExeUser));
}

/// Processes of an executable.
QList<qint64> processesOf(const QString &executable)
{
    QList<qint64> found;
    const QString path = QFileInfo(executable).canonicalFilePath();
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        if (name.toLongLong() > 0 && QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(name)) == path)
            found << name.toLongLong();
    }
    return found;
}

/// Releases made with the project's own tool and a key of the test's own, served by a web server.
class ReleaseServer
{
public:
    ReleaseServer()
    {
        run(QStringLiteral("minisign"), {QStringLiteral("-G"), QStringLiteral("-W"), QStringLiteral("-p"),
                                         path(QStringLiteral("release.pub")), QStringLiteral("-s"), secretKey()});
        publicKey = contentOf(path(QStringLiteral("release.pub"))).split('\n').value(1);
        QTcpServer free; // a port that nobody listens on
        free.listen(QHostAddress::LocalHost);
        port = free.serverPort();
        free.close();
        write(path(QStringLiteral("nginx.conf")),
              "daemon off;\nmaster_process off;\nerror_log stderr;\npid nginx.pid;\n"
              "events {}\nhttp {\n  access_log access.log;\n"
              "  client_body_temp_path body;\n  proxy_temp_path proxy;\n"
              "  fastcgi_temp_path fastcgi;\n  uwsgi_temp_path uwsgi;\n"
              "  scgi_temp_path scgi;\n  server {\n    listen 127.0.0.1:" +
                  QByteArray::number(port) + ";\n    root web;\n    limit_rate 1500k;\n  }\n}\n");
        QDir(folder.path()).mkpath(QStringLiteral("web/update_packets"));
        server.start(QStringLiteral("/usr/sbin/nginx"),
                     {QStringLiteral("-p"), folder.path(), QStringLiteral("-c"), path(QStringLiteral("nginx.conf"))});
        server.waitForStarted();
    }
    ~ReleaseServer()
    {
        server.kill();
        server.waitForFinished();
    }

    [[nodiscard]] QString address() const { return QStringLiteral("http://127.0.0.1:%1").arg(port); }
    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    [[nodiscard]] QString built(const QString &version) const { return path(QStringLiteral("built/") + version); }
    [[nodiscard]] QByteArray key() const { return publicKey; }
    [[nodiscard]] QByteArray accesses() const { return contentOf(path(QStringLiteral("access.log"))); }

    /// The files of a version as users have them.
    void build(const QString &version) const
    {
        const QString to = built(version) + QLatin1Char('/');
        writeExecutable(to + QStringLiteral("OvrynDeck2"), QStringLiteral(OVRYN_PROGRAM_OF_RELEASES), version);
        writeExecutable(to + QStringLiteral("OvrynUpdate"), QStringLiteral(OVRYN_UPDATER_OF_RELEASES), version);
        writeExecutable(to + QStringLiteral("ovryn-fan-guard"), QStringLiteral(OVRYN_FAN_GUARD), {});
        write(to + QStringLiteral("version.txt"), version.toLatin1());
        for (const QString &language : {QStringLiteral("english.txt"), QStringLiteral("chinese.txt")})
            write(to + QStringLiteral("updateLog/") + language,
                  version.toLatin1() + "\n" + contentOf(QStringLiteral(OVRYN_UPDATE_LOGS "/") + language));
        if (version == kFirst)
            write(to + QStringLiteral("obsolete.txt"), "of the first version alone");
        else
            write(to + QStringLiteral("extra/ballast.bin"), QByteArray(kBallastBytes, version.back().toLatin1()));
    }

    /// Makes the release of a version that was built and serves it.
    void publish(const QString &version, const QStringList &earlier)
    {
        const QString release = path(QStringLiteral("release-") + version);
        QStringList arguments{
            QStringLiteral("--version"), version,    QStringLiteral("--built"),    built(version),
            QStringLiteral("--out"),     release,    QStringLiteral("--platform"), QStringLiteral("linux-x86_64"),
            QStringLiteral("--key"),     secretKey()};
        if (!earlier.isEmpty())
            arguments << QStringLiteral("--earlier");
        for (const QString &former : earlier)
            arguments << path(QStringLiteral("release-") + former);
        run(QStringLiteral(OVRYN_MAKE_RELEASE), arguments);
        const QString served = path(QStringLiteral("web/update_packets/OvrynDeck2_UpdateFiles"));
        QFile::remove(served);
        QVERIFY(QFile::link(release, served));
    }

private:
    [[nodiscard]] QString secretKey() const { return path(QStringLiteral("release.key")); }
    static void run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        const bool done = process.waitForFinished(kPatienceMs) && process.exitCode() == 0;
        QVERIFY2(done, process.readAll().constData());
    }

    QTemporaryDir folder;
    QByteArray publicKey;
    quint16 port = 0;
    QProcess server;
};

/// The installation of the first version, whose program and updater ask that server.
class ReleasedProgram : public InstalledProgram
{
public:
    ReleasedProgram(const VirtualScreen &ofScreen, const ReleaseServer &releases, const QByteArray &language)
        : InstalledProgram(ofScreen, QStringLiteral(OVRYN_PROGRAM_OF_RELEASES))
    {
        setVariable(QStringLiteral("OVRYN_TEST_UPDATE_SERVER"), releases.address());
        setVariable(QStringLiteral("OVRYN_TEST_RELEASE_KEYS"), QString::fromLatin1(releases.key()));
        writeConfig(QByteArray(kQuietConfig)
                        .replace("lang_en", language)
                        .replace("<OtherSetting", "<LastUpdateDate>2020/02/28</LastUpdateDate><OtherSetting"));
        QDirIterator files(releases.built(kFirst), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString name = QDir(releases.built(kFirst)).relativeFilePath(files.next());
            QDir().mkpath(QFileInfo(path(name)).path());
            QFile::remove(path(name));
            QFile::copy(files.filePath(), path(name));
        }
    }

    [[nodiscard]] QString version() const
    {
        return QString::fromLatin1(contentOf(path(QStringLiteral("version.txt"))));
    }
    [[nodiscard]] QString updater() const ///< the one that runs next
    {
        const QString successor = path(QStringLiteral("OvrynUpdate.exe"));
        return QFile::exists(successor) ? successor : path(QStringLiteral("OvrynUpdate"));
    }
    /// Follows the one process of the program that runs now.
    [[nodiscard]] bool followProgram()
    {
        const QList<qint64> running = processesOf(path(QStringLiteral("OvrynDeck2")));
        if (running.size() != 1)
            return false;
        follow(running.first());
        return true;
    }
    /// True where every file of that version is there as it was built.
    [[nodiscard]] bool isWholly(const QString &folderOfVersion) const
    {
        QDirIterator files(folderOfVersion, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString name = QDir(folderOfVersion).relativeFilePath(files.next());
            const QString here = name == QLatin1String("OvrynUpdate") ? updater() : path(name);
            if (contentOf(here) != contentOf(files.filePath()) ||
                QFileInfo(here).isExecutable() != files.fileInfo().isExecutable())
                return false;
        }
        return true;
    }
};

} // namespace

/// From one release to the next with the real executables, a real web server and the project's own release tool.
class TestUpdater : public ProgramTest
{
    Q_OBJECT

private slots:
    void twoReleases_data();
    void twoReleases();
    void cancelled();
    void killedWhileItFetches();
    void startedByHand();

private:
    void startUpdate(ReleasedProgram &program, qint64 window);
    [[nodiscard]] qint64 windowOf(const QString &executable) const;
    void closeProgram(ReleasedProgram &program, qint64 window);
    void keepPicture(const QString &name) const;
};

/// The button of the settings page, and yes.
void TestUpdater::startUpdate(ReleasedProgram &program, qint64 window)
{
    clickDetectUpdate(program, window);
    QVERIFY(program.waitForBox() != 0);
    pressBoxButton(program, true);
}

/// The window of the one process of that executable, 0 while there is none.
qint64 TestUpdater::windowOf(const QString &executable) const
{
    const QList<qint64> processes = processesOf(executable);
    const QStringList windows = processes.isEmpty() ? QStringList() : screen.windowsOf(processes.first());
    return windows.isEmpty() ? 0 : windows.first().toLongLong();
}

void TestUpdater::closeProgram(ReleasedProgram &program, qint64 window)
{
    program.clickIn(window, layout.closeButton.center());
    pressBoxButton(program, true);
    QTRY_VERIFY_WITH_TIMEOUT(processesOf(program.path(QStringLiteral("OvrynDeck2"))).isEmpty(), kPatienceMs);
}

/// For a person who wants to see the states: into the folder that the variable names.
void TestUpdater::keepPicture(const QString &name) const
{
    const QString folder = qEnvironmentVariable("OVRYN_TEST_PICTURES");
    if (!folder.isEmpty())
        screen.picture().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

void TestUpdater::twoReleases_data()
{
    QTest::addColumn<QByteArray>("language");
    QTest::newRow("English") << QByteArray("lang_en");
    QTest::newRow("Chinese") << QByteArray("lang_ch");
}

void TestUpdater::twoReleases()
{
    QFETCH(QByteArray, language);
    ReleaseServer releases;
    for (const QString &version : {kFirst, kSecond, kThird})
        releases.build(version);
    releases.publish(kFirst, {});
    ReleasedProgram program(screen, releases, language);
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);

    QStringList published{kFirst};
    for (const QString &version : {kSecond, kThird}) {
        releases.publish(version, published);
        published << version;
        startUpdate(program, window);
        QTRY_VERIFY_WITH_TIMEOUT(windowOf(program.updater()) != 0, kPatienceMs);
        keepPicture(QString::fromLatin1(language) + QLatin1Char('-') + version);
        // it closes by itself, and the program comes back with the log
        QTRY_COMPARE_WITH_TIMEOUT(program.version(), version, 3 * kPatienceMs);
        QTRY_VERIFY_WITH_TIMEOUT(program.followProgram(), kPatienceMs);
        const qint64 log = program.waitForBox();
        QVERIFY(log != 0);
        QVERIFY(processesOf(program.updater()).isEmpty());
        QCOMPARE(program.configText(QStringLiteral("LastUpdateDate")), today());
        QVERIFY(program.isWholly(releases.built(version)));
        QVERIFY(!QFile::exists(program.path(QStringLiteral("obsolete.txt"))));
        QVERIFY(QDir(program.path(QStringLiteral("temp"))).isEmpty());
        const QRect place = screen.geometryOf(log);
        screen.click(QPoint(place.center().x(), place.bottom() - kBoxButtonFromBottom));
        window = program.waitForMainWindow();
        QVERIFY(window != 0);
    }
    closeProgram(program, window);
    // what did not change was not fetched
    QCOMPARE(releases.accesses().count(".minisig"), 2);
}

void TestUpdater::cancelled()
{
    ReleaseServer releases;
    releases.build(kFirst);
    releases.build(kSecond);
    releases.publish(kSecond, {});
    ReleasedProgram program(screen, releases, "lang_en");
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    startUpdate(program, window);
    QTRY_VERIFY_WITH_TIMEOUT(windowOf(program.updater()) != 0, kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), kPatienceMs);
    screen.activate(windowOf(program.updater()));
    screen.key(QStringLiteral("Escape"));
    QTRY_VERIFY_WITH_TIMEOUT(processesOf(program.updater()).isEmpty(), kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(program.followProgram(), kPatienceMs);
    const qint64 again = program.waitForMainWindow(); // at once, without the log
    QVERIFY(again != 0);
    QVERIFY(program.isWholly(releases.built(kFirst)));
    QCOMPARE(program.configText(QStringLiteral("LastUpdateDate")), QStringLiteral("2020/02/28"));
    closeProgram(program, again);
}

void TestUpdater::killedWhileItFetches()
{
    ReleaseServer releases;
    releases.build(kFirst);
    releases.build(kSecond);
    releases.publish(kSecond, {});
    ReleasedProgram program(screen, releases, "lang_en");
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    startUpdate(program, window);
    const QDir packets(program.path(QStringLiteral("temp/packets")));
    QTRY_VERIFY_WITH_TIMEOUT(!packets.entryList(QDir::Files).isEmpty(), kPatienceMs);
    const QList<qint64> updaters = processesOf(program.updater());
    QCOMPARE(updaters.size(), 1);
    QProcess::execute(QStringLiteral("kill"), {QStringLiteral("-KILL"), QString::number(updaters.first())});
    QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), kPatienceMs);
    QVERIFY(program.isWholly(releases.built(kFirst)));

    // the old version starts, and the next try goes through
    QVERIFY(program.start());
    const qint64 again = program.waitForMainWindow();
    QVERIFY(again != 0);
    startUpdate(program, again);
    QTRY_COMPARE_WITH_TIMEOUT(program.version(), kSecond, 3 * kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(program.followProgram(), kPatienceMs);
    QVERIFY(program.waitForBox() != 0);
    QVERIFY(program.isWholly(releases.built(kSecond)));
}

/// It says what it is and ends; the program is not started.
void TestUpdater::startedByHand()
{
    ReleaseServer releases;
    releases.build(kFirst);
    ReleasedProgram program(screen, releases, "lang_en");
    QProcess updater;
    program.prepare(updater);
    updater.start(program.updater(), QStringList());
    QVERIFY(updater.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(windowOf(program.updater()) != 0, kPatienceMs);
    keepPicture(QStringLiteral("by-hand"));
    const QRect place = screen.geometryOf(windowOf(program.updater()));
    screen.click(QPoint(place.center().x(), place.bottom() - kBoxButtonFromBottom));
    QVERIFY(updater.waitForFinished(kPatienceMs));
    QCOMPARE(updater.exitCode(), 0);
    QVERIFY(processesOf(program.path(QStringLiteral("OvrynDeck2"))).isEmpty());
}

int main(int argc, char **argv)
{
    return runProgramTest<TestUpdater>(argc, argv);
}

#include "TestUpdater.moc"
