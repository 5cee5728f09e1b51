#include "e2e/InstalledProgram.h"
#include "e2e/ShownWindows.h"
#include "e2e/VirtualScreen.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

/// Starts of the real executable that show no main window.
class TestOddStarts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void minimizedStartAsksNothing();
    void folderThatIsGone();

private:
    VirtualScreen screen;
};

namespace
{

constexpr int kPatienceMs = 20000;

} // namespace

void TestOddStarts::initTestCase()
{
    QVERIFY2(screen.start(), qPrintable(screen.error()));
}

void TestOddStarts::minimizedStartAsksNothing()
{
    InstalledProgram program(screen);
    program.writeConfig("<OvrynParameter><GeneralSetting MinimizeOnStart=\"1\" Language=\"lang_en\"/>"
                        "<OtherSetting NotPromptHPS=\"0\"/></OvrynParameter>");
    QVERIFY(program.start());
    // The cards have been sampled for some cycles: the start is over.
    QTRY_VERIFY_WITH_TIMEOUT(program.journal().size() > 200, kPatienceMs);
    QCOMPARE(program.mainWindow(), qint64(0));
    QCOMPARE(program.otherWindows(), QList<qint64>());

    // A second start brings the window up, still without the question of the high-performance mode.
    QCOMPARE(program.startAgain(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(program.mainWindow() != 0, kPatienceMs);
    const int calls = program.journal().size();
    QTRY_VERIFY_WITH_TIMEOUT(program.journal().size() > calls + 80, kPatienceMs);
    QCOMPARE(program.otherWindows(), QList<qint64>());
}

void TestOddStarts::folderThatIsGone()
{
    QTemporaryDir place;
    const QString folder = place.filePath(QStringLiteral("installed"));
    QVERIFY(QDir().mkpath(folder) && QDir().mkpath(place.filePath(QStringLiteral("runtime"))));
    QVERIFY(QFile::setPermissions(place.filePath(QStringLiteral("runtime")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QString executable = folder + QStringLiteral("/OvrynDeck2");
    QVERIFY(QFile::copy(QStringLiteral(OVRYN_PROGRAM_NOTING_ITS_WINDOWS), executable));

    QProcess program;
    QProcessEnvironment environment = screen.environment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), place.filePath(QStringLiteral("runtime")));
    const QString notes = place.filePath(QStringLiteral("windows.jsonl"));
    environment.insert(QStringLiteral("OVRYN_WINDOW_NOTES"), notes);
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(place.path());
    program.start(QStringLiteral("bash"),
                  {QStringLiteral("-c"),
                   QStringLiteral("exec 7<\"$1\" && rm -r \"$2\" && exec -a \"$1\" /proc/self/fd/7"),
                   QStringLiteral("bash"), executable, folder});
    QVERIFY(program.waitForStarted());

    QSize size;
    qint64 box = 0;
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            for (const QString &id : screen.windowsOf(program.processId())) {
                size = screen.geometryOf(id.toLongLong()).size();
                if (size.width() > 64)
                    box = id.toLongLong();
            }
            return box != 0;
        }(),
        kPatienceMs);
    QCOMPARE(program.state(), QProcess::Running); // it waits for its one button
    const QList<QJsonObject> boxes = shownWindows(notes, "Ovryn_MessageBox");
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(describedBox(boxes.first()),
             QStringLiteral("未知错误发生\r\nAn unknown error has occurred | 微软雅黑 | 确定/Comfirm | 0x2041803"));
    size = screen.geometryOf(box).size();
    screen.click(screen.geometryOf(box).topLeft() + QPoint(size.width() / 2, size.height() - 10 - 15));
    QVERIFY(program.state() == QProcess::NotRunning || program.waitForFinished(kPatienceMs));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    QVERIFY(!QFileInfo::exists(place.filePath(QStringLiteral("config.xml"))));
    QVERIFY(!QFileInfo::exists(folder));
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen"); // the test itself has no window; only the program needs the screen
    QApplication application(argc, argv);
    TestOddStarts test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestOddStarts.moc"
