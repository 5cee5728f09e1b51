#include "e2e/ProgramTest.h"
#include "support/LoopbackHttpServer.h"
#include "support/UpdateManifest.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

/// The update with the real executable, a web server on the loopback address and a stand-in for the updater.
class TestUpdate : public ProgramTest
{
    Q_OBJECT

private slots:
    void newVersionIsTaken_data();
    void newVersionIsTaken();
    void noInThePrompt();
    void nothingNew();
    void tooOld();
    void updaterThatIsMissing();
    void automaticWithoutAQuestion();
    void automaticWithAQuestion();
    void automaticWhileAnotherQuestionIsOpen();
    void automaticFromTheTray();
    void serverThatIsDown();

private:
    [[nodiscard]] bool samplesGoOn(const InstalledProgram &program) const;
};

namespace
{

// Waits for the program's end, as the updater does because it has to replace its file. Leaves a new updater where the
// test provides one, and starts the program again.
const char *const kStandInUpdater = R"sh(#!/bin/sh
here=$(cd "$(dirname "$0")" && pwd -P)
pwd -P > "$here/folder"
printf '%s\n' "$@" > "$here/arguments.part"
mv "$here/arguments.part" "$here/arguments"
running() {
    for link in /proc/[0-9]*/exe; do
        [ "$(readlink "$link" 2>/dev/null)" = "$here/OvrynDeck2" ] && return 0
    done
    return 1
}
while running; do sleep 0.1; done
[ -e "$here/ready.zip" ] || exit 0
cp "$here/ready.zip" "$here/temp/2.zip"
"$here/OvrynDeck2" _OvrynUpdate &
echo $! > "$here/pid.part"
mv "$here/pid.part" "$here/pid"
)sh";

const QString kManifest = QStringLiteral("temp/update_info.xml");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString dateText(const QDate &date)
{
    return date.toString(QStringLiteral("yyyy/MM/dd"));
}

/// An installation whose program asks the given server. Its check at the start is due where the last one is a week
/// ago.
class UpdatingProgram : public InstalledProgram
{
public:
    UpdatingProgram(const VirtualScreen &ofScreen, const LoopbackHttpServer &server, int mode, int daysSinceCheck,
                    const QByteArray &language = "lang_en")
        : InstalledProgram(ofScreen, QStringLiteral(OVRYN_PROGRAM_ASKING_THE_TEST))
    {
        setVariable(QStringLiteral("OVRYN_TEST_UPDATE_SERVER"), server.address());
        lastCheck = dateText(QDate::currentDate().addDays(-daysSinceCheck));
        config = QByteArray(kQuietConfig)
                     .replace("lang_en", language)
                     .replace("UpdateMode=\"0\"", "UpdateMode=\"" + QByteArray::number(mode) + "\"")
                     .replace("<OtherSetting", "<LastCheckDate>" + lastCheck.toLatin1() +
                                                   "</LastCheckDate><LastUpdateDate>2020/02/28</LastUpdateDate>"
                                                   "<OtherSetting");
        writeConfig(config);
        QDir().mkdir(path(QStringLiteral("updateLog")));
        for (const QString &name : {QStringLiteral("english.txt"), QStringLiteral("chinese.txt")})
            QFile::copy(QStringLiteral(OVRYN_UPDATE_LOGS "/") + name, path(QStringLiteral("updateLog/") + name));
    }

    void installUpdater(bool comesBack)
    {
        QFile script(path(QStringLiteral("OvrynUpdate")));
        if (!script.open(QIODevice::WriteOnly))
            qFatal("no stand-in for the updater");
        script.write(kStandInUpdater);
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        if (comesBack)
            QFile::copy(QStringLiteral(OVRYN_TEST_ARCHIVES "/updater.zip"), path(QStringLiteral("ready.zip")));
    }
    [[nodiscard]] QByteArray updaterArguments() const { return contentOf(path(QStringLiteral("arguments"))); }
    [[nodiscard]] bool updaterRunsInTheInstallation() const ///< as it has to, for its relative paths
    {
        return contentOf(path(QStringLiteral("folder"))).trimmed() ==
               QFile::encodeName(QFileInfo(path(QString())).canonicalFilePath());
    }
    [[nodiscard]] bool tempIsEmpty() const { return QDir(path(QStringLiteral("temp"))).isEmpty(); }
    [[nodiscard]] bool manifestExists() const { return QFile::exists(path(kManifest)); }

    QByteArray config;
    QString lastCheck;
};

} // namespace

/// The program has continued for some cycles without a box.
bool TestUpdate::samplesGoOn(const InstalledProgram &program) const
{
    const int calls = program.journal().size();
    return QTest::qWaitFor([&] { return program.journal().size() > calls + 100; }, kPatienceMs) &&
           program.otherWindows().isEmpty();
}

void TestUpdate::newVersionIsTaken_data()
{
    QTest::addColumn<QByteArray>("language");
    QTest::newRow("English") << QByteArray("lang_en");
    QTest::newRow("Chinese") << QByteArray("lang_ch");
}

void TestUpdate::newVersionIsTaken()
{
    QFETCH(QByteArray, language);
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1", "1.0", manifestFile("", "OvrynUpdate.exe", "2")));
    UpdatingProgram program(screen, server, 0, 1, language);
    program.installUpdater(true);
    QFile old(program.path(QStringLiteral("OvrynUpdate.exe")));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
    old.close();
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    clickDetectUpdate(program, window);
    const qint64 prompt = program.waitForBox();
    QVERIFY(prompt != 0);
    const QPoint offset = screen.geometryOf(prompt).center() - screen.geometryOf(window).center();
    QVERIFY2(offset.manhattanLength() <= 2, "the prompt stands beside the window");
    pressBoxButton(program, true);
    QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), kPatienceMs);
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());

    // the updater has its arguments, works, and starts the program again, which shows what is new
    QTRY_COMPARE_WITH_TIMEOUT(program.updaterArguments(), "_OvrynDeck2\n" + language + "\n", kPatienceMs);
    QVERIFY(program.updaterRunsInTheInstallation());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(program.path(QStringLiteral("pid"))), kPatienceMs);
    program.follow(contentOf(program.path(QStringLiteral("pid"))).trimmed().toLongLong());
    const qint64 log = program.waitForBox();
    QVERIFY(log != 0);
    QCOMPARE(program.mainWindow(), qint64(0)); // comes after it
    QCOMPARE(contentOf(program.path(QStringLiteral("OvrynUpdate.exe"))),
             QByteArray("the new updater\n").repeated(64));
    QVERIFY(program.tempIsEmpty());
    QCOMPARE(program.configText(QStringLiteral("LastUpdateDate")), today());
    const QRect logPlace = screen.geometryOf(log);
    QVERIFY((logPlace.center() - QPoint(640, 450)).manhattanLength() < 40); // in the middle of the screen
    screen.click(QPoint(logPlace.center().x(), logPlace.bottom() - 30));
    const qint64 again = program.waitForMainWindow();
    QVERIFY(again != 0);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QCOMPARE(server.requests().size(), 1); // no check on such a start
    program.clickIn(again, layout.closeButton.center());
    pressBoxButton(program, true);
    QTRY_COMPARE_WITH_TIMEOUT(program.mainWindow(), qint64(0), kPatienceMs);
}

void TestUpdate::noInThePrompt()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1"));
    UpdatingProgram program(screen, server, 2, 1);
    program.installUpdater(false);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    clickDetectUpdate(program, window);
    pressBoxButton(program, false);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QVERIFY(samplesGoOn(program));
    QVERIFY(program.manifestExists());
    QCOMPARE(program.configText(QStringLiteral("LastCheckDate")), today());
    closeByButton(program, window);
    QCOMPARE(program.updaterArguments(), QByteArray());
}

void TestUpdate::nothingNew()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.0.10.0"));
    UpdatingProgram program(screen, server, 0, 1);
    program.installUpdater(false);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    clickDetectUpdate(program, window);
    pressOnlyBoxButton(program);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QVERIFY(QDir(program.path(QStringLiteral("temp"))).exists());
    QVERIFY(program.tempIsEmpty());
    QCOMPARE(program.configText(QStringLiteral("LastCheckDate")), today());
    closeByButton(program, window);
    QCOMPARE(program.updaterArguments(), QByteArray());
}

void TestUpdate::tooOld()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1", "1.1"));
    UpdatingProgram program(screen, server, 0, 1);
    program.installUpdater(false);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    clickDetectUpdate(program, window);
    pressOnlyBoxButton(program);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QVERIFY(samplesGoOn(program));
    QVERIFY(program.manifestExists());
    closeByButton(program, window);
    QCOMPARE(program.updaterArguments(), QByteArray());
}

void TestUpdate::updaterThatIsMissing()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1"));
    UpdatingProgram program(screen, server, 0, 1);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    clickDetectUpdate(program, window);
    const qint64 prompt = program.waitForBox();
    pressBoxButton(program, true);
    QTRY_VERIFY_WITH_TIMEOUT(!program.otherWindows().isEmpty() && program.otherWindows().last() != prompt,
                             kPatienceMs);
    pressOnlyBoxButton(program);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QVERIFY(samplesGoOn(program));
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), QStringLiteral("2020/02/29"));
    closeByButton(program, window);
}

void TestUpdate::automaticWithoutAQuestion()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1"));
    UpdatingProgram program(screen, server, 0, 7);
    program.installUpdater(false);
    QVERIFY(program.start());
    QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), kPatienceMs); // the server lives in this event loop
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(program.updaterArguments(), QByteArray("_OvrynDeck2\nlang_en\n"), kPatienceMs);
    QVERIFY(program.updaterRunsInTheInstallation());
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
    QCOMPARE(program.configText(QStringLiteral("LastCheckDate")), today());
    QVERIFY(program.manifestExists());
}

void TestUpdate::automaticWithAQuestion()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1"));
    UpdatingProgram program(screen, server, 2, 7, "lang_ch");
    program.installUpdater(false);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    pressBoxButton(program, true);
    QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), kPatienceMs);
    QVERIFY(program.endedNormally());
    QTRY_COMPARE_WITH_TIMEOUT(program.updaterArguments(), QByteArray("_OvrynDeck2\nlang_ch\n"), kPatienceMs);
}

void TestUpdate::automaticWhileAnotherQuestionIsOpen()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1"));
    server.hold();
    UpdatingProgram program(screen, server, 0, 7);
    program.writeConfig(program.config.replace("NotPromptHPS=\"1\"", "NotPromptHPS=\"0\""));
    program.installUpdater(false);
    QVERIFY(program.start());
    QVERIFY(program.waitForMainWindow() != 0);
    QVERIFY(program.waitForBox() != 0); // the high-performance mode's
    server.release();
    QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), kPatienceMs);
    QVERIFY(program.endedNormally());
    QTRY_VERIFY_WITH_TIMEOUT(!program.updaterArguments().isEmpty(), kPatienceMs);
}

void TestUpdate::automaticFromTheTray()
{
    LoopbackHttpServer server;
    server.answerWith(updateManifest("1.1"));
    UpdatingProgram program(screen, server, 2, 7);
    program.writeConfig(program.config.replace("MinimizeOnStart=\"0\"", "MinimizeOnStart=\"1\""));
    program.installUpdater(false);
    QVERIFY(program.start());
    pressBoxButton(program, false);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QVERIFY(samplesGoOn(program)); // a box that closes while no window is shown ends nothing
    QVERIFY(program.isRunning());
    QCOMPARE(program.mainWindow(), qint64(0));
    QCOMPARE(program.updaterArguments(), QByteArray());
}

void TestUpdate::serverThatIsDown()
{
    LoopbackHttpServer server;
    server.stop();
    UpdatingProgram program(screen, server, 0, 7);
    program.installUpdater(false);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    QVERIFY(samplesGoOn(program));
    clickDetectUpdate(program, window);
    QVERIFY(samplesGoOn(program));
    QCOMPARE(program.configText(QStringLiteral("LastCheckDate")), program.lastCheck);
    QVERIFY(program.tempIsEmpty());
    closeByButton(program, window);
    QCOMPARE(program.configText(QStringLiteral("LastCheckDate")), program.lastCheck);
    QCOMPARE(program.updaterArguments(), QByteArray());
}

int main(int argc, char **argv)
{
    return runProgramTest<TestUpdate>(argc, argv);
}

#include "TestUpdate.moc"
