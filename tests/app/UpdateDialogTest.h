#pragma once

#include "app/MainDialogTest.h"
#include "app/StandInUpdater.h"
#include "support/LoopbackHttpServer.h"
#include "support/ModalAnswer.h"
#include "support/UpdateManifest.h"
#include "update/Ovryn_DownloadUpdateFileInfo.h"

#include <QApplication>
#include <QDate>
#include <QDomDocument>
#include <QTimer>

/// The arguments of the process; while it lives, there is a second one.
class SecondArgument
{
public:
    explicit SecondArgument(const char *argument)
    {
        qstrncpy(text, argument, sizeof text);
        count = 2;
    }
    ~SecondArgument() { count = 1; }
    Q_DISABLE_COPY(SecondArgument)

    static inline char text[32] = "";
    static inline char program[] = "OvrynDeck2";
    static inline char *all[] = {program, text, nullptr};
    static inline int count = 1;
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

/// The fixture of the tests of the main dialog's update, with a web server on the loopback address and a stand-in for
/// the updater.
class UpdateDialogTest : public MainDialogTest
{
    Q_OBJECT

protected:
    static constexpr int kPatienceMs = 30000;
    static inline const QString kYes = QStringLiteral("msgBoxYesBtn");
    static inline const QString kNo = QStringLiteral("msgBoxNoBtn");

    /// The update is the same without a card, and a dialog without workers ends at once.
    void withoutCards() { driver->cards.clear(); }

    static QString dateText(const QDate &date) { return date.toString(QStringLiteral("yyyy/MM/dd")); }

    static QString today() { return dateText(QDate::currentDate()); }

    /// A config.xml after which the check at the start is due, or not.
    static QByteArray config(int updateMode, int daysSinceCheck, int interval = 7,
                             const QByteArray &language = "lang_en")
    {
        return "<OvrynParameter><GeneralSetting Language=\"" + language + "\"/><UpdateSetting CheckInterval=\"" +
               QByteArray::number(interval) + "\" UpdateMode=\"" + QByteArray::number(updateMode) +
               "\" UpdateStatus=\"1\"/><LastCloseDate>2020/02/29</LastCloseDate><LastCheckDate>" +
               dateText(QDate::currentDate().addDays(-daysSinceCheck)).toLatin1() +
               "</LastCheckDate><LastUpdateDate>2020/02/28</LastUpdateDate><OtherSetting NotPromptHPS=\"1\"/>"
               "</OvrynParameter>";
    }

    static QString savedDate(const char *name)
    {
        QFile file(QStringLiteral("config.xml"));
        QDomDocument document;
        if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
            return {};
        return document.documentElement().firstChildElement(QString::fromLatin1(name)).text();
    }

    static int downloadState(const OvrynDeck2 &dialog)
    {
        return dialog.findChild<Ovryn_DownloadUpdateFileInfo *>()->currentState();
    }

    static bool manifestExists() { return QFile::exists(QStringLiteral("temp/update_info.xml")); }

    /// The program's event loop; false when nothing ended it.
    static bool runUntilQuit()
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
};

/// The main function of a test program with this fixture.
template <class Test>
int runUpdateTest(int argc, char **argv)
{
    QApplication application(SecondArgument::count, SecondArgument::all);
    QApplication::setQuitOnLastWindowClosed(false);
    QFile::remove(QCoreApplication::applicationDirPath() + QStringLiteral("/OvrynUpdate")); // of a run that died
    Test test;
    return QTest::qExec(&test, argc, argv);
}
