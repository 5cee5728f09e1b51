#include "app/UpdateDialogTest.h"
#include "ui/Ovryn_SettingParentWidget.h"

#include <QComboBox>
#include <QElapsedTimer>

/// The main dialog's start of the updater, and the program's start by the updater.
class TestMainDialogUpdater : public UpdateDialogTest
{
    Q_OBJECT

private slots:
    void startsUpdater_data();
    void startsUpdater();
    void startsUpdaterWhileABoxIsOpen();
    void updaterThatIsMissing();
    void updaterBesideTheProgram();
    void returnFromTheUpdater_data();
    void returnFromTheUpdater();
    void closedWhileTheLogIsOpen();
};

void TestMainDialogUpdater::startsUpdater_data()
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

void TestMainDialogUpdater::startsUpdater()
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

void TestMainDialogUpdater::startsUpdaterWhileABoxIsOpen()
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

void TestMainDialogUpdater::updaterThatIsMissing()
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

void TestMainDialogUpdater::updaterBesideTheProgram()
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

void TestMainDialogUpdater::returnFromTheUpdater_data()
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

void TestMainDialogUpdater::returnFromTheUpdater()
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

    const SecondArgument second("_OvrynUpdate");
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

void TestMainDialogUpdater::closedWhileTheLogIsOpen()
{
    withoutCards();
    writeConfig(config(0, 7));
    const SecondArgument second("_OvrynUpdate");
    bool closeRequested = false;
    QElapsedTimer patience;
    patience.start();
    QTimer trayMenu;
    connect(&trayMenu, &QTimer::timeout, [&] {
        QWidget *log = QApplication::activeModalWidget();
        if (!log)
            return;
        if (!closeRequested)
            closeRequested = QMetaObject::invokeMethod(log->parentWidget(), "onExitAppAction");
        else if (patience.hasExpired(kPatienceMs))
            log->close();
    });
    trayMenu.start(5);
    const OvrynDeck2 dialog;
    QVERIFY(closeRequested);
    QVERIFY(!patience.hasExpired(kPatienceMs));
    QVERIFY(dialog.wasClosed());
    QCOMPARE(savedDate("LastCloseDate"), today());
}

int main(int argc, char **argv)
{
    return runUpdateTest<TestMainDialogUpdater>(argc, argv);
}

#include "TestMainDialogUpdater.moc"
