#include "app/BoxLook.h"
#include "app/UpdateDialogTest.h"
#include "support/ConnectWarnings.h"
#include "ui/Ovryn_SettingParentWidget.h"

/// The main dialog's checks for an update: when it asks the server, and its boxes.
class TestMainDialogUpdate : public UpdateDialogTest
{
    Q_OBJECT

private slots:
    void dateDecidesAtTheStart_data();
    void dateDecidesAtTheStart();
    void otherArgumentsAreAnOrdinaryStart_data();
    void otherArgumentsAreAnOrdinaryStart();
    void boxes_data();
    void boxes();
    void failedCheckIsSilent_data();
    void failedCheckIsSilent();
    void manualCheckTakesOverARunningOne_data();
    void manualCheckTakesOverARunningOne();
    void oneAnswerForEachCheck();
    void looksOfABox_data();
    void looksOfABox();
    void unreadableSettingsAreNotReplaced();
    void settingsAreSynced();
    void everyConnectionExists();
};

namespace
{

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
    QTest::newRow("more after it") << QByteArray("_OvrynUpdate2");
}

void TestMainDialogUpdate::otherArgumentsAreAnOrdinaryStart()
{
    QFETCH(QByteArray, argument);
    const SecondArgument second(argument.constData());
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

void TestMainDialogUpdate::everyConnectionExists()
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
    return runUpdateTest<TestMainDialogUpdate>(argc, argv);
}

#include "TestMainDialogUpdate.moc"
