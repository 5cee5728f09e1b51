#include "app/BoxLook.h"
#include "app/MainDialogTest.h"
#include "app/StandInUpdater.h"
#include "support/ConnectWarnings.h"
#include "support/LoopbackHttpServer.h"
#include "support/ModalAnswer.h"
#include "support/UpdateManifest.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "update/Ovryn_DownloadUpdateFileInfo.h"

#include <QApplication>
#include <QComboBox>
#include <QDate>
#include <QDomDocument>
#include <QElapsedTimer>
#include <QTimer>

/// The main dialog's part of the update, with a web server on the loopback address and a stand-in for the updater.
class TestMainDialogUpdate : public MainDialogTest
{
    Q_OBJECT

private:
    /// The update is the same without a card, and a dialog without workers ends at once.
    void withoutCards() { driver->cards.clear(); }

private slots:
    void dateDecidesAtTheStart_data();
    void dateDecidesAtTheStart();
    void otherArgumentsAreAnOrdinaryStart_data();
    void otherArgumentsAreAnOrdinaryStart();
    void boxes_data();
    void boxes();
    void handsOver_data();
    void handsOver();
    void handsOverWhileABoxIsOpen();
    void updaterThatIsMissing();
    void failedCheckIsSilent_data();
    void failedCheckIsSilent();
    void manualCheckTakesOverARunningOne_data();
    void manualCheckTakesOverARunningOne();
    void oneAnswerForEachCheck();
    void looksOfABox_data();
    void looksOfABox();
    void updaterBesideTheProgram();
    void unreadableSettingsAreNotReplaced();
    void settingsAreSynced();
    void returnFromTheUpdater_data();
    void returnFromTheUpdater();
    void closedWhileTheLogStands();
    void connectionsStand();
};

namespace
{

constexpr int kPatienceMs = 30000;

// The arguments of the process, which tests change.
char programName[] = "OvrynDeck2";
char secondArgument[32] = "";
char *programArguments[] = {programName, secondArgument, nullptr};
int programArgumentCount = 1;

/// While it lives, the process has a second argument.
class Started
{
public:
    explicit Started(const char *argument)
    {
        qstrncpy(secondArgument, argument, sizeof secondArgument);
        programArgumentCount = 2;
    }
    ~Started() { programArgumentCount = 1; }
    Q_DISABLE_COPY(Started)
};

/// The update server of all dialogs that are made while it lives.
class UpdateServer : public LoopbackHttpServer
{
public:
    explicit UpdateServer(const QByteArray &manifest)
    {
        answerWith(manifest);
        qputenv("OVRYN_TEST_UPDATE_SERVER", address().toLatin1());
    }
};

QString dateText(const QDate &date)
{
    return date.toString(QStringLiteral("yyyy/MM/dd"));
}

QString today()
{
    return dateText(QDate::currentDate());
}

/// A config.xml after which the check at the start is due, or not.
QByteArray config(int updateMode, int daysSinceCheck, int interval = 7, const QByteArray &language = "lang_en")
{
    return "<OvrynParameter><GeneralSetting Language=\"" + language + "\"/><UpdateSetting CheckInterval=\"" +
           QByteArray::number(interval) + "\" UpdateMode=\"" + QByteArray::number(updateMode) +
           "\" UpdateStatus=\"1\"/><LastCloseDate>2020/02/29</LastCloseDate><LastCheckDate>" +
           dateText(QDate::currentDate().addDays(-daysSinceCheck)).toLatin1() +
           "</LastCheckDate><LastUpdateDate>2020/02/28</LastUpdateDate><OtherSetting NotPromptHPS=\"1\"/>"
           "</OvrynParameter>";
}

QString savedDate(const char *name)
{
    QFile file(QStringLiteral("config.xml"));
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return {};
    return document.documentElement().firstChildElement(QString::fromLatin1(name)).text();
}

int downloadState(const OvrynDeck2 &dialog)
{
    return dialog.findChild<Ovryn_DownloadUpdateFileInfo *>()->currentState();
}

bool manifestExists()
{
    return QFile::exists(QStringLiteral("temp/update_info.xml"));
}

/// The program's event loop; false when nothing ended it.
bool runUntilQuit()
{
    bool late = false;
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [&late] {
        late = true;
        QCoreApplication::quit();
    });
    patience.start(kPatienceMs);
    QApplication::exec();
    return !late;
}

const QString kYes = QStringLiteral("msgBoxYesBtn");
const QString kNo = QStringLiteral("msgBoxNoBtn");

QStringList syncedFiles; ///< by their names, in order

} // namespace

#ifdef Q_OS_LINUX
// Replaces the system's call.
extern "C" int fsync(int file)
{
    syncedFiles.append(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)));
    return 0;
}
#endif

void TestMainDialogUpdate::dateDecidesAtTheStart_data()
{
    QTest::addColumn<int>("daysSinceCheck");
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("asks");
    QTest::newRow("a week, seven days ago") << 7 << 7 << true;
    QTest::newRow("a week, six days ago") << 6 << 7 << false;
    QTest::newRow("a month, thirty days ago") << 30 << 30 << true;
    QTest::newRow("three months, eighty-nine days ago") << 89 << 90 << false;
    QTest::newRow("never, years ago") << 3000 << 10000 << false;
    QTest::newRow("today") << 0 << 7 << false;
}

void TestMainDialogUpdate::dateDecidesAtTheStart()
{
    QFETCH(int, daysSinceCheck);
    QFETCH(int, interval);
    QFETCH(bool, asks);
    withoutCards();
    UpdateServer server(updateManifest("1.0.2.4"));
    writeConfig(config(2, daysSinceCheck, interval));
    OvrynDeck2 dialog;
    QCOMPARE(downloadState(dialog), asks ? 1 : 0);
    if (asks)
        QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, kPatienceMs);
}

void TestMainDialogUpdate::otherArgumentsAreAnOrdinaryStart_data()
{
    QTest::addColumn<QByteArray>("argument");
    QTest::newRow("the program's own") << QByteArray("_OvrynDeck2");
    QTest::newRow("other case") << QByteArray("_ovrynupdate");
    QTest::newRow("more behind it") << QByteArray("_OvrynUpdate2");
}

void TestMainDialogUpdate::otherArgumentsAreAnOrdinaryStart()
{
    QFETCH(QByteArray, argument);
    const Started started(argument.constData());
    QCOMPARE(QCoreApplication::arguments().value(1), QString::fromLatin1(argument));
    withoutCards();
    UpdateServer server(updateManifest("1.0.2.4"));
    writeConfig(config(2, 7));
    ModalAnswer answer({});
    OvrynDeck2 dialog;
    QTRY_COMPARE_WITH_TIMEOUT(savedDate("LastCheckDate"), today(), kPatienceMs);
    QCOMPARE(savedDate("LastUpdateDate"), QStringLiteral("2020/02/28"));
    QCOMPARE(answer.texts(), QStringList());
}

void TestMainDialogUpdate::boxes_data()
{
    QTest::addColumn<bool>("manual");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("language");
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<QStringList>("beginnings"); ///< of the boxes' texts
    QTest::addColumn<bool>("manifestStays");
    const QByteArray english = "lang_en";
    const QByteArray chinese = "lang_ch";
    const QByteArray newVersion = updateManifest("1.1");
    const QByteArray tooOld = updateManifest("1.1", "1.1");
    const QByteArray nothingNew = updateManifest("1.0.2.4");
    const QByteArray broken = "<Update";
    const QStringList confirm = {kYes};
    const QStringList no = {kNo};
    const QStringList ask = {"New version detected ,update now?"};
    const QStringList askChinese = {"检测到OvrynDeck II 新版本，是否更新？"};
    const QStringList old = {"New version detected,and your current version is not support"};
    const QStringList oldChinese = {"检测到新版本OvrynDeckII，但当前版本太旧，"};
    const QStringList latest = {"This is the latest version."};
    const QStringList latestChinese = {"当前OvrynDeckII为最新版本！"};
    const QStringList nothing;

    QTest::newRow("automatic, no in the prompt of mode 2")
        << false << 2 << english << newVersion << no << ask << true;
    QTest::newRow("automatic, no in the prompt of mode 1")
        << false << 1 << chinese << newVersion << no << askChinese << true;
    QTest::newRow("automatic, too old") << false << 0 << english << tooOld << confirm << old << true;
    QTest::newRow("automatic, too old in Chinese")
        << false << 2 << chinese << tooOld << confirm << oldChinese << true;
    QTest::newRow("automatic, nothing new") << false << 0 << english << nothingNew << nothing << nothing << true;
    QTest::newRow("automatic, broken manifest") << false << 2 << english << broken << nothing << nothing << true;
    QTest::newRow("manual, no in the prompt") << true << 2 << english << newVersion << no << ask << true;
    QTest::newRow("manual asks in mode 0, too") << true << 0 << chinese << newVersion << no << askChinese << true;
    QTest::newRow("manual, too old") << true << 0 << english << tooOld << confirm << old << true;
    QTest::newRow("manual, nothing new") << true << 2 << english << nothingNew << confirm << latest << false;
    QTest::newRow("manual, 1.0.10.0") << true << 2 << english << updateManifest("1.0.10.0") << confirm << latest
                                      << false;
    QTest::newRow("manual, nothing new in Chinese")
        << true << 2 << chinese << nothingNew << confirm << latestChinese << false;
    QTest::newRow("manual, broken manifest is the latest version")
        << true << 2 << english << broken << confirm << latest << false;
}

void TestMainDialogUpdate::boxes()
{
    QFETCH(bool, manual);
    QFETCH(int, mode);
    QFETCH(QByteArray, language);
    QFETCH(QByteArray, manifest);
    QFETCH(QStringList, answers);
    QFETCH(QStringList, beginnings);
    QFETCH(bool, manifestStays);
    const StandInUpdater updater;
    withoutCards();
    UpdateServer server(manifest);
    writeConfig(config(mode, manual ? 1 : 7, 7, language));
    QVERIFY(QDir().mkdir(QStringLiteral("temp")));
    QFile other(QStringLiteral("temp/left.zip"));
    QVERIFY(other.open(QIODevice::WriteOnly));
    ModalAnswer answer(answers);
    OvrynDeck2 dialog;
    dialog.show();
    if (manual)
        emit dialog.findChild<Ovryn_SettingParentWidget *>()->detectUpdate();
    QTRY_COMPARE_WITH_TIMEOUT(downloadState(dialog), 3, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(answer.captions().size(), answers.size(), kPatienceMs);
    QCOMPARE(answer.problems(), QStringList());
    QCOMPARE(answer.texts().size(), beginnings.size());
    for (int i = 0; i < beginnings.size(); ++i)
        QVERIFY2(answer.texts().at(i).startsWith(beginnings.at(i)), qPrintable(answer.texts().at(i)));
    QCOMPARE(savedDate("LastCheckDate"), today());
    QCOMPARE(savedDate("LastUpdateDate"), QStringLiteral("2020/02/28"));
    QCOMPARE(savedDate("LastCloseDate"), QStringLiteral("2020/02/29"));
    QCOMPARE(manifestExists(), manifestStays);
    QCOMPARE(other.exists(), manifestStays);
    QVERIFY(QFileInfo(QStringLiteral("temp")).isDir());
    QVERIFY(dialog.isVisible());
    QCOMPARE(updater.arguments(), QString());
}

void TestMainDialogUpdate::handsOver_data()
{
    QTest::addColumn<bool>("manual");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("language"); ///< in the file
    QTest::addColumn<QByteArray>("chosen");   ///< on the settings page afterwards, empty for none
    QTest::addColumn<QStringList>("answers");
    const QByteArray english = "lang_en";
    const QByteArray chinese = "lang_ch";
    const QByteArray none;
    QTest::newRow("automatic, mode 0 asks nothing") << false << 0 << english << none << QStringList();
    QTest::newRow("automatic, any other mode asks nothing") << false << 7 << chinese << none << QStringList();
    QTest::newRow("automatic, yes in mode 1") << false << 1 << english << none << QStringList{kYes};
    QTest::newRow("automatic, yes in mode 2") << false << 2 << chinese << none << QStringList{kYes};
    QTest::newRow("manual, yes") << true << 2 << english << none << QStringList{kYes};
    QTest::newRow("manual, yes in mode 0") << true << 0 << chinese << none << QStringList{kYes};
    QTest::newRow("Chinese since a moment ago") << true << 2 << english << chinese << QStringList{kYes};
    QTest::newRow("English since a moment ago") << false << 0 << chinese << english << QStringList();
    QTest::newRow("a language that only the updater may know")
        << false << 0 << QByteArray("lang_fr") << none << QStringList();
}

void TestMainDialogUpdate::handsOver()
{
    QFETCH(bool, manual);
    QFETCH(int, mode);
    QFETCH(QByteArray, language);
    QFETCH(QByteArray, chosen);
    QFETCH(QStringList, answers);
    const StandInUpdater updater;
    withoutCards();
    UpdateServer server(updateManifest("1.1"));
    writeConfig(config(mode, manual ? 1 : 7, 7, language));
    ModalAnswer answer(answers);
    OvrynDeck2 dialog;
    dialog.show();
    if (!chosen.isEmpty()) {
        auto *languages = dialog.findChild<QComboBox *>(QStringLiteral("cmb_language"));
        languages->setCurrentIndex(languages->findData(QString::fromLatin1(chosen)));
    }
    if (manual)
        emit dialog.findChild<Ovryn_SettingParentWidget *>()->detectUpdate();
    QVERIFY(runUntilQuit());
    QCOMPARE(answer.problems(), QStringList());
    QCOMPARE(answer.captions().size(), answers.size());
    QVERIFY(!dialog.isVisible());
    QCOMPARE(savedDate("LastCloseDate"), today()); // an ordinary close
    QCOMPARE(savedDate("LastCheckDate"), today());
    QTRY_COMPARE_WITH_TIMEOUT(
        updater.arguments(),
        QStringLiteral("_OvrynDeck2\n%1\n").arg(QString::fromLatin1(chosen.isEmpty() ? language : chosen)),
        kPatienceMs);
    QCOMPARE(updater.folderOfCall(), QDir::current().canonicalPath());
    QVERIFY(manifestExists()); // the updater reads it
}

void TestMainDialogUpdate::handsOverWhileABoxIsOpen()
{
    const StandInUpdater updater;
    UpdateServer server(updateManifest("1.1"));
    server.hold();
    writeConfig(config(0, 7).replace("NotPromptHPS=\"1\"", "NotPromptHPS=\"0\""));
    OvrynDeck2 dialog;
    dialog.show();
    QTimer::singleShot(0, &dialog, [&dialog] { dialog.afterShow(); }); // asks, and gets no answer
    QTimer look;
    connect(&look, &QTimer::timeout, &server, [&] {
        if (QApplication::activeModalWidget())
            server.release();
    });
    look.start(10);
    QVERIFY(runUntilQuit());
    QVERIFY(!dialog.isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!updater.arguments().isEmpty(), kPatienceMs);
}

void TestMainDialogUpdate::updaterThatIsMissing()
{
    const SearchPath nothing("");
    withoutCards();
    UpdateServer server(updateManifest("1.1"));
    writeConfig(config(0, 7));
    ModalAnswer answer({kYes, kYes, kYes});
    OvrynDeck2 dialog;
    dialog.show();
    QTRY_COMPARE_WITH_TIMEOUT(answer.captions().size(), 1, kPatienceMs);
    QCOMPARE(answer.texts(), QStringList{QStringLiteral("Failed to initialize auto update.")});
    QCOMPARE(answer.captions(), QStringList{QStringLiteral("Confirm")});
    QVERIFY(dialog.isVisible());
    QCOMPARE(savedDate("LastCloseDate"), QStringLiteral("2020/02/29"));

    dialog.manualDetectUpdate(); // it can be tried again
    QTRY_COMPARE_WITH_TIMEOUT(answer.captions().size(), 3, kPatienceMs);
    QCOMPARE(answer.texts().last(), QStringLiteral("Failed to initialize auto update."));
    QVERIFY(dialog.isVisible());
}

void TestMainDialogUpdate::failedCheckIsSilent_data()
{
    QTest::addColumn<bool>("manual");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<int>("missing");
    QTest::newRow("automatic, not found") << false << QByteArray("404 Not Found") << 0;
    QTest::newRow("manual, not found") << true << QByteArray("404 Not Found") << 0;
    QTest::newRow("automatic, drops") << false << QByteArray("200 OK") << 50;
    QTest::newRow("manual, drops") << true << QByteArray("200 OK") << 50;
}

void TestMainDialogUpdate::failedCheckIsSilent()
{
    QFETCH(bool, manual);
    QFETCH(QByteArray, status);
    QFETCH(int, missing);
    const QByteArray manifest = updateManifest("1.1");
    withoutCards();
    UpdateServer server(manifest);
    server.answerWith(manifest, status, {}, manifest.size() + missing);
    const int daysAgo = manual ? 1 : 7;
    writeConfig(config(0, daysAgo));
    ModalAnswer answer({});
    OvrynDeck2 dialog;
    dialog.show();
    if (manual)
        dialog.manualDetectUpdate();
    QTRY_COMPARE_WITH_TIMEOUT(downloadState(dialog), 2, kPatienceMs);
    QCOMPARE(answer.texts(), QStringList());
    QCOMPARE(savedDate("LastCheckDate"), dateText(QDate::currentDate().addDays(-daysAgo)));
    QVERIFY(dialog.isVisible());
    QVERIFY(!manifestExists());
}

void TestMainDialogUpdate::manualCheckTakesOverARunningOne_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("text");
    QTest::newRow("speaks where the automatic one would be silent")
        << QByteArray("1.0.2.4") << kYes << "This is the latest version.";
    QTest::newRow("asks where the automatic one would not")
        << QByteArray("1.1") << kNo << "New version detected ,update now?";
}

void TestMainDialogUpdate::manualCheckTakesOverARunningOne()
{
    QFETCH(QByteArray, version);
    QFETCH(QString, answer);
    QFETCH(QString, text);
    withoutCards();
    const StandInUpdater updater;
    UpdateServer server(updateManifest(version));
    server.hold();
    writeConfig(config(0, 7));
    ModalAnswer answers({answer});
    OvrynDeck2 dialog;
    dialog.show();
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, kPatienceMs);
    dialog.manualDetectUpdate();
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(answers.captions().size(), 1, kPatienceMs);
    QCoreApplication::processEvents();
    QCOMPARE(answers.texts(), QStringList{text});
    QCOMPARE(server.requests().size(), 1);
    QVERIFY(dialog.isVisible());
    QCOMPARE(updater.arguments(), QString());
}

void TestMainDialogUpdate::oneAnswerForEachCheck()
{
    withoutCards();
    UpdateServer server(updateManifest("1.0.2.4"));
    writeConfig(config(0, 7));
    ModalAnswer answer({kYes, kYes});
    OvrynDeck2 dialog;
    QTRY_COMPARE_WITH_TIMEOUT(downloadState(dialog), 3, kPatienceMs);
    for (int check = 1; check <= 2; ++check) {
        dialog.manualDetectUpdate();
        QTRY_COMPARE_WITH_TIMEOUT(answer.captions().size(), check, kPatienceMs);
        QCoreApplication::processEvents();
    }
    QCOMPARE(answer.problems(), QStringList());
    QCOMPARE(server.requests().size(), 3);
}

void TestMainDialogUpdate::looksOfABox_data()
{
    QTest::addColumn<bool>("manual");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<bool>("manifestThere"); ///< while the box is open
    const QByteArray newVersion = updateManifest("1.1");
    const QByteArray tooOld = updateManifest("1.1", "1.1");
    const QByteArray nothingNew = updateManifest("1.0.2.4");
    const QStringList two = {"Yes", "No"};
    const QStringList one = {"Confirm"};
    QTest::newRow("automatic question") << false << 2 << newVersion << two << true;
    QTest::newRow("manual question") << true << 0 << newVersion << two << true;
    QTest::newRow("automatic, too old") << false << 2 << tooOld << one << true;
    QTest::newRow("manual, too old") << true << 2 << tooOld << one << true;
    QTest::newRow("latest version, temp is cleared before") << true << 2 << nothingNew << one << false;
    QTest::newRow("no updater") << false << 0 << newVersion << one << true;
}

void TestMainDialogUpdate::looksOfABox()
{
    QFETCH(bool, manual);
    QFETCH(int, mode);
    QFETCH(QByteArray, manifest);
    QFETCH(QStringList, buttons);
    QFETCH(bool, manifestThere);
    const SearchPath nothing("");
    withoutCards();
    UpdateServer server(manifest);
    writeConfig(config(mode, manual ? 1 : 7));
    OvrynDeck2 dialog;
    dialog.show();
    if (manual)
        dialog.manualDetectUpdate();
    BoxLook look;
    QTRY_VERIFY_WITH_TIMEOUT(look.seen(), kPatienceMs);
    QCOMPARE(look.title, QString());
    QCOMPARE(look.parent, &dialog);
    QCOMPARE(int(look.flags),
             int(Qt::Dialog | Qt::FramelessWindowHint | Qt::CustomizeWindowHint | Qt::WindowTitleHint));
    QCOMPARE(look.buttons, buttons);
    QCOMPARE(look.manifestThere, manifestThere);
    QVERIFY(dialog.isVisible()); // closing the box is no yes
}

void TestMainDialogUpdate::updaterBesideTheProgram()
{
    const StandInUpdater inTheSearchPath;
    const StandInUpdater beside(QCoreApplication::applicationDirPath());
    const StandInUpdater inTheCurrentFolder(QDir::currentPath());
    withoutCards();
    UpdateServer server(updateManifest("1.1"));
    writeConfig(config(0, 7));
    OvrynDeck2 dialog;
    QVERIFY(runUntilQuit());
    QTRY_COMPARE_WITH_TIMEOUT(beside.arguments(), QStringLiteral("_OvrynDeck2\nlang_en\n"), kPatienceMs);
    QCOMPARE(beside.folderOfCall(), QDir::current().canonicalPath());
    QCOMPARE(inTheSearchPath.arguments() + inTheCurrentFolder.arguments(), QString());
}

void TestMainDialogUpdate::unreadableSettingsAreNotReplaced()
{
    const QString unreadable = QStringLiteral("/proc/self/mem"); // opens, and fails at the first byte
    if (!QFile::exists(unreadable))
        QSKIP("no file here that opens and cannot be read");
    withoutCards();
    UpdateServer server(updateManifest("1.0.2.4"));
    QVERIFY(QFile::link(unreadable, QStringLiteral("config.xml")));
    ModalAnswer answer({kYes});
    {
        OvrynDeck2 dialog;
        dialog.manualDetectUpdate(); // keeps its date
        QTRY_COMPARE_WITH_TIMEOUT(answer.captions().size(), 1, kPatienceMs);
        QCOMPARE(QFile::symLinkTarget(QStringLiteral("config.xml")), unreadable);
        dialog.show();
        dialog.close(); // keeps everything
    }
    QCOMPARE(QFile::symLinkTarget(QStringLiteral("config.xml")), unreadable);
}

void TestMainDialogUpdate::settingsAreSynced()
{
#ifdef Q_OS_LINUX
    withoutCards();
    UpdateServer server(updateManifest("1.0.2.4"));
    writeConfig(config(0, 7));
    OvrynDeck2 dialog;
    syncedFiles.clear();
    QTRY_COMPARE_WITH_TIMEOUT(savedDate("LastCheckDate"), today(), kPatienceMs);
    const QString settings = QDir::current().canonicalPath() + QStringLiteral("/config.xml");
    QCOMPARE(syncedFiles, QStringList{settings});
    dialog.show();
    dialog.close();
    QCOMPARE(syncedFiles, (QStringList{settings, settings}));
#else
    QSKIP("needs a stand-in for the system's call");
#endif
}

void TestMainDialogUpdate::returnFromTheUpdater_data()
{
    QTest::addColumn<QByteArray>("language");
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<bool>("takenOut");
    QTest::addColumn<QString>("caption");
    QTest::newRow("new updater") << QByteArray("lang_en")
                                 << updateManifest("1.1", "",
                                                   manifestFile("", "OvrynDeck2.exe", "1.1") +
                                                       manifestFile("", "OvrynUpdate.exe", "2"))
                                 << true << "Close";
    QTest::newRow("in Chinese") << QByteArray("lang_ch")
                                << updateManifest("1.1", "", manifestFile("", "OvrynUpdate.exe", "2")) << true
                                << QStringLiteral("关闭");
    QTest::newRow("updater is not among the files")
        << QByteArray("lang_en") << updateManifest("1.1", "", manifestFile("", "OvrynDeck2.exe", "2")) << false
        << "Close";
    QTest::newRow("broken manifest") << QByteArray("lang_en") << QByteArray("<Update") << false << "Close";
}

void TestMainDialogUpdate::returnFromTheUpdater()
{
    QFETCH(QByteArray, language);
    QFETCH(QByteArray, manifest);
    QFETCH(bool, takenOut);
    QFETCH(QString, caption);
    withoutCards();
    UpdateServer server(updateManifest("1.1"));
    writeConfig(config(0, 7, 7, language)); // a check would be due
    QVERIFY(QDir().mkpath(QStringLiteral("temp/sub")));
    QFile file(QStringLiteral("temp/update_info.xml"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(manifest) == manifest.size());
    file.close();
    QVERIFY(QFile::copy(QStringLiteral(OVRYN_TEST_ARCHIVES "/updater.zip"), QStringLiteral("temp/2.zip")));

    const Started started("_OvrynUpdate");
    bool clearedBefore = false;
    QTimer look;
    connect(&look, &QTimer::timeout, [&] {
        if (QApplication::activeModalWidget())
            clearedBefore = QDir(QStringLiteral("temp")).isEmpty();
    });
    look.start(0);
    ModalAnswer answer({QStringLiteral("pushButton")});
    OvrynDeck2 dialog;
    look.stop();
    QVERIFY(clearedBefore);
    QCOMPARE(answer.problems(), QStringList());
    QCOMPARE(answer.captions(), QStringList{caption});
    QCOMPARE(savedDate("LastUpdateDate"), today());
    QCOMPARE(QFile::exists(QStringLiteral("OvrynUpdate.exe")), takenOut);
    QVERIFY(QDir(QStringLiteral("temp")).exists());
    QVERIFY(QDir(QStringLiteral("temp")).isEmpty());
    QCOMPARE(downloadState(dialog), 0); // no check on such a start
    QVERIFY(savedDate("LastCheckDate") != today());
}

void TestMainDialogUpdate::closedWhileTheLogStands()
{
    withoutCards();
    writeConfig(config(0, 7));
    const Started started("_OvrynUpdate");
    bool told = false;
    QElapsedTimer patience;
    patience.start();
    QTimer trayMenu;
    connect(&trayMenu, &QTimer::timeout, [&] {
        QWidget *log = QApplication::activeModalWidget();
        if (!log)
            return;
        if (!told)
            told = QMetaObject::invokeMethod(log->parentWidget(), "onExitAppAction");
        else if (patience.hasExpired(kPatienceMs))
            log->close();
    });
    trayMenu.start(5);
    const OvrynDeck2 dialog;
    QVERIFY(told);
    QVERIFY(!patience.hasExpired(kPatienceMs));
    QVERIFY(dialog.wasClosed());
    QCOMPARE(savedDate("LastCloseDate"), today());
}

void TestMainDialogUpdate::connectionsStand()
{
    withoutCards();
    UpdateServer server(updateManifest("1.0.2.4"));
    writeConfig(config(0, 7));
    ModalAnswer answer({kYes});
    const ConnectWarnings warnings;
    OvrynDeck2 dialog;
    dialog.manualDetectUpdate();
    QTRY_COMPARE_WITH_TIMEOUT(answer.captions().size(), 1, kPatienceMs);
    QStringList found;
    for (const QString &warning : warnings.list())
        if (!warning.contains(QLatin1String("systemTrayWindowChanged"))) // the toolkit's own, off a real screen
            found << warning;
    QCOMPARE(found, QStringList());
}

int main(int argc, char **argv)
{
    QApplication application(programArgumentCount, programArguments);
    QApplication::setQuitOnLastWindowClosed(false);
    QFile::remove(QCoreApplication::applicationDirPath() + QStringLiteral("/OvrynUpdate")); // of a run that died
    TestMainDialogUpdate test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestMainDialogUpdate.moc"
