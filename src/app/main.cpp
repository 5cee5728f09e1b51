#include "app/OvrynDeck2.h"
#include "config/Ovryn_ConfigFile.h"
#include "device/Units.h"
#include "platform/ExecutableName.h"
#include "platform/FileSync.h"
#include "platform/QtSingleApplication.h"
#include "platform/ScreenScaling.h"
#include "ui/Fonts.h"
#include "ui/MessageBoxes.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Ovryn_MessageBox.h"
#include "ui/UiStyle.h"
#include "update/FileExchange.h"
#include "update/UpdateFiles.h"
#include "worker/WorkerThread.h"

#include <QDate>
#include <QDir>
#include <QFont>
#include <QIcon>
#include <QProcess>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>

namespace
{

constexpr int kMessageTimeoutMs = 5000;

/// The user's language is not known yet when the installation folder can't be entered, so the text has both.
int reportUnknownError()
{
    registerApplicationFonts(); // the system may have no font for the Chinese text
    Ovryn_MessageBox box =
        messageBox(QStringLiteral("未知错误发生\r\nAn unknown error has occurred"), kLanguageChinese, nullptr);
    box.setYesText(QStringLiteral("确定/Comfirm"));
    box.exec();
    return 0;
}

/// Writes the date of this start into config.xml before any window exists. Returns the settings in the file, or the
/// defaults where the file can't be used.
GeneralSettingInfo stampStart(Ovryn_ConfigFile &configFile)
{
    configFile.load();
    configFile.setLastStartDate(QDate::currentDate());
    configFile.save();

    GeneralSettingInfo general;
    configFile.getGeneralSetting(general);
    UpdateSettingInfo update;
    configFile.getUpdateSetting(update); // each start reads it; the dialog reads its own copy
    return general;
}

/// How long a start waits for an instance that is ending: as long as limitShutdown gives one with eight cards.
constexpr int kWaitForEndMs = 110 * kMillisecondsPerSecond;

/// True when this start continues. A running instance is brought to the front instead. An instance that is ending
/// takes no more messages; this start waits for its end.
bool becomeTheInstance(QtSingleApplication &application)
{
    if (!application.isRunning() || application.waitForEndOfFirst(kWaitForEndMs))
        return true;
    const bool shown = application.sendMessage(QStringLiteral("show"), kMessageTimeoutMs);
    return !shown && application.waitForEndOfFirst(kWaitForEndMs); // it may have begun to end just now
}

/// Ends the process after a limit. Only driver calls are left: the fan and the LEDs of each card, and the unload. One
/// that hangs would leave an invisible process that prevents every later start. The settings are on the disk already.
void limitShutdown(int exitCode, int cards)
{
    constexpr int kBaseSeconds = 30;    // for the last cycles of all workers, see WorkerThread::kCycleWaitMs
    constexpr int kSecondsPerCard = 10; // for the last orders to the card, on a slow driver
    const std::chrono::seconds limit(kBaseSeconds + kSecondsPerCard * cards);
    std::thread([exitCode, limit] {
        std::this_thread::sleep_for(limit);
        std::_Exit(exitCode);
    }).detach();
}

/// The dialog while the event loop runs.
OvrynDeck2 *runningDialog = nullptr;

/// The toolkit ends the process by exit() in the middle of the event loop when the connection to the display breaks.
void endWithoutTheDisplay()
{
    if (!runningDialog)
        return;
    limitShutdown(EXIT_FAILURE, runningDialog->cardCount());
    runningDialog->endWork();
    std::_Exit(EXIT_FAILURE); // the toolkit's own destructors would use a display that is gone
}

/// What to do after a look at the exchange of files of an update.
enum class AfterUpdate
{
    GoOn,
    Restart,
    End,
};

/// Completes an exchange of files that was broken off, or takes it back. The process may then be of the other version
/// than the files, so that it starts anew, with `restartArguments`.
AfterUpdate settleUpdate(const Ovryn_LanguageTable &texts, QStringList &restartArguments)
{
    FileExchange exchange(QDir::current().canonicalPath());
    switch (exchange.resume()) {
    case ExchangeOutcome::Nothing:
        break;
    case ExchangeOutcome::CompletedBefore:
        if (isReturnFromUpdater(QCoreApplication::arguments()))
            break; // what follows clears temp and with it the mark of the completed exchange
        restartArguments = QStringList(QString::fromLatin1(kCalledByUpdater)); // the return was broken off
        return AfterUpdate::Restart;
    case ExchangeOutcome::Completed:
        restartArguments = QStringList(QString::fromLatin1(kCalledByUpdater));
        return AfterUpdate::Restart;
    case ExchangeOutcome::WentBack:
        return AfterUpdate::Restart;
    case ExchangeOutcome::Unfinished:
        tell(texts.mainDialog.updateUnfinished, texts.language(), nullptr);
        return AfterUpdate::End;
    }
    return AfterUpdate::GoOn;
}

/// The program from its start to its end. `restart` is set where it is to be started anew, with these arguments.
int run(int argc, char **argv, std::optional<QStringList> &restart)
{
    followScreenScaling();
    QtSingleApplication application(QString::fromLatin1(kProgramId), argc, argv);
    if (!becomeTheInstance(application))
        return 0;

    // The window may be hidden in the tray while a box closes. Only the close event ends the program.
    QApplication::setQuitOnLastWindowClosed(false);
    substituteFontFamilies();
    if (!QDir::setCurrent(QCoreApplication::applicationDirPath()))
        return reportUnknownError();

    GeneralSettingInfo general;
    {
        Ovryn_ConfigFile configFile(Ovryn_ConfigFile::usualPath(), syncToDisk);
        general = stampStart(configFile);
    }
    Ovryn_LanguageTable languageTable;
    languageTable.setLanguage(languageNumberOf(general.Language));

    QApplication::setWindowIcon(QIcon(QStringLiteral(":/images/images/icon.png")));
    registerApplicationFonts();
    QFont font;
    font.setFamily(QStringLiteral("微软雅黑"));
    QApplication::setFont(font);
    UiStyle::colorToolTips();

    QStringList restartArguments;
    const AfterUpdate next = settleUpdate(languageTable, restartArguments);
    if (next == AfterUpdate::Restart)
        restart = restartArguments;
    if (next != AfterUpdate::GoOn)
        return 0;

    OvrynDeck2 dialog;
    dialog.setWindowTitle(QStringLiteral("OvrynDeckII"));
    application.setActivationWindow(&dialog, true);
    QObject::connect(&dialog, &OvrynDeck2::closed, &application, [&application] {
        application.announceEnd();
        QApplication::quit();
    });
    // A session manager may end the program without closing its window.
    QApplication::setFallbackSessionManagementEnabled(false); // it would close visible windows, but not hidden ones
    QObject::connect(&application, SIGNAL(commitDataRequest(QSessionManager &)), &dialog, SLOT(onCommitDataRequest()),
                     Qt::DirectConnection);
    QObject::connect(&application, &QApplication::aboutToQuit, &dialog, [&dialog] {
        limitShutdown(EXIT_SUCCESS, dialog.cardCount());
        dialog.endWork();
    });
    dialog.setWindowOpacity(1.0);
    dialog.setAttribute(Qt::WA_TranslucentBackground, true);
    dialog.setWindowFlags(Qt::FramelessWindowHint | Qt::WindowMinimizeButtonHint);
    // The program sets the position. The window manager may never report a position of its own choice for a frameless
    // window to the toolkit, and boxes would then appear beside the window instead of over it.
    dialog.move(QGuiApplication::primaryScreen()->availableGeometry().center() - dialog.rect().center());

    if (dialog.wasClosed()) {
        limitShutdown(0, dialog.cardCount());
        return 0;
    }
    if (dialog.cardCount() <= 0) {
        Ovryn_MessageBox box = messageBox(languageTable.noCard, languageTable.language(), nullptr);
        application.setActivationWindow(&box, true);
        box.setWindowModality(Qt::WindowModal); // a box modal to the application would block the tray icon too
        box.exec();
        return 0;
    }
    if (general.MinimizeOnStart) {
        dialog.hide();
    } else {
        dialog.show();
        // Inside the event loop: an update that starts while the question is open must be able to close it.
        QTimer::singleShot(0, &dialog, [&dialog] { dialog.afterShow(); });
    }
    runningDialog = &dialog;
    std::atexit(endWithoutTheDisplay);
    const int exitCode = QApplication::exec(); // includes the end of the dialog's work
    runningDialog = nullptr;
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    std::optional<QStringList> restart;
    const int exitCode = run(argc, argv, restart);
    if (restart) { // only now, since this process has given its single-instance lock back
        const QString folder = QDir::currentPath(); // the installation, entered by `run`
        QProcess::startDetached(folder + QLatin1Char('/') + executableFileName(QStringLiteral("OvrynDeck2")),
                                *restart);
    }
    // A thread that hangs in the driver may continue at any time: nothing that it may use is destroyed.
    if (WorkerThread::abandonedCount() > 0)
        std::_Exit(exitCode);
    return exitCode;
}
