#include "app/OvrynDeck2.h"
#include "config/Ovryn_ConfigFile.h"
#include "device/Units.h"
#include "platform/FileSync.h"
#include "platform/QtSingleApplication.h"
#include "platform/ScreenScaling.h"
#include "ui/Fonts.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Ovryn_MessageBox.h"
#include "ui/UiStyle.h"
#include "worker/WorkerThread.h"

#include <QDate>
#include <QDir>
#include <QFont>
#include <QIcon>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace
{

const char *const kApplicationId = "Brindlex_OvrynDeck2";
constexpr int kMessageTimeoutMs = 5000;

/// Neither language is known yet when the installation folder can't be entered, so both stand there.
int tellUnknownError()
{
    registerApplicationFonts(); // the system may have none for the Chinese half
    Ovryn_MessageBox box(0, QString(), QStringLiteral("未知错误发生\r\nAn unknown error has occurred"),
                         kLanguageChinese, nullptr, Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
    box.setYesText(QStringLiteral("确定/Comfirm"));
    box.exec();
    return 0;
}

/// Stamps the start into config.xml before any window exists and gives back the settings found there,
/// or their defaults where the file can't be used.
GeneralSettingInfo stampStart(Ovryn_ConfigFile &configFile)
{
    configFile.load();
    configFile.setLastStartDate(QDate::currentDate());
    configFile.save();

    GeneralSettingInfo general;
    configFile.getGeneralSetting(general);
    UpdateSettingInfo update;
    configFile.getUpdateSetting(update); // part of each start; the dialog takes its own copy
    return general;
}

/// How long a start waits for an instance that is ending: as long as limitShutdown gives one with eight cards.
constexpr int kWaitForEndMs = 110 * kMillisecondsPerSecond;

/// True when this start is to go on. A running instance is brought to the front instead; one that is ending takes no
/// message any more, and its place is waited for.
bool becomeTheInstance(QtSingleApplication &application)
{
    if (!application.isRunning() || application.waitForEndOfFirst(kWaitForEndMs))
        return true;
    const bool shown = application.sendMessage(QStringLiteral("show"), kMessageTimeoutMs);
    return !shown && application.waitForEndOfFirst(kWaitForEndMs); // its end may have begun just now
}

/// What is left to do is calls of the driver: the fan and the LEDs of each card, and letting it go. One that hangs
/// would keep a process that nobody sees and that turns every further start away. Everything kept is on the disk.
void limitShutdown(int exitCode, int cards)
{
    constexpr int kBaseSeconds = 30;    // for the last cycles of all workers, see WorkerThread::kCycleWaitMs
    constexpr int kSecondsPerCard = 10; // for the orders of the end, on a slow driver
    const std::chrono::seconds limit(kBaseSeconds + kSecondsPerCard * cards);
    std::thread([exitCode, limit] {
        std::this_thread::sleep_for(limit);
        std::_Exit(exitCode);
    }).detach();
}

/// The dialog while the event loop runs.
OvrynDeck2 *dialogOfTheLoop = nullptr;

/// The toolkit ends the process by exit() in the middle of the event loop when the connection to the display breaks.
void endWithoutTheDisplay()
{
    if (!dialogOfTheLoop)
        return;
    limitShutdown(EXIT_FAILURE, dialogOfTheLoop->cardCount());
    dialogOfTheLoop->endWork();
    std::_Exit(EXIT_FAILURE); // the toolkit's own destructors would go on with a display that is gone
}

int run(int argc, char **argv)
{
    followScreenScaling();
    QtSingleApplication application(QString::fromLatin1(kApplicationId), argc, argv);
    if (!becomeTheInstance(application))
        return 0;

    // The window may be hidden in the tray while a box closes; the close event alone ends the program.
    QApplication::setQuitOnLastWindowClosed(false);
    substituteFontFamilies();
    if (!QDir::setCurrent(QCoreApplication::applicationDirPath()))
        return tellUnknownError();

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

    OvrynDeck2 dialog;
    dialog.setWindowTitle(QStringLiteral("OvrynDeckII"));
    application.setActivationWindow(&dialog, true);
    QObject::connect(&dialog, &OvrynDeck2::closed, &application, [&application] {
        application.announceEnd();
        QApplication::quit();
    });
    // A session manager may end the program without closing its window.
    QApplication::setFallbackSessionManagementEnabled(false); // it would close what is shown, but not what is hidden
    QObject::connect(&application, SIGNAL(commitDataRequest(QSessionManager &)), &dialog, SLOT(onCommitDataRequest()),
                     Qt::DirectConnection);
    QObject::connect(&application, &QApplication::aboutToQuit, &dialog, [&dialog] {
        limitShutdown(EXIT_SUCCESS, dialog.cardCount());
        dialog.endWork();
    });
    dialog.setWindowOpacity(1.0);
    dialog.setAttribute(Qt::WA_TranslucentBackground, true);
    dialog.setWindowFlags(Qt::FramelessWindowHint | Qt::WindowMinimizeButtonHint);
    // Placed by the program: a place that the window manager chose for a frameless window may never be told to the
    // toolkit, and boxes would then stand beside the window instead of over it.
    dialog.move(QGuiApplication::primaryScreen()->availableGeometry().center() - dialog.rect().center());

    if (dialog.wasClosed()) {
        limitShutdown(0, dialog.cardCount());
        return 0;
    }
    if (dialog.cardCount() <= 0) {
        Ovryn_MessageBox box(0, QString(), languageTable.noCard, languageTable.language(), nullptr,
                             Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
        application.setActivationWindow(&box, true);
        box.setWindowModality(Qt::WindowModal); // modal to the application, it would block the tray icon, too
        box.exec();
        return 0;
    }
    if (general.MinimizeOnStart) {
        dialog.hide();
    } else {
        dialog.show();
        // Inside the event loop: an update that takes over while the question stands must be able to end it.
        QTimer::singleShot(0, &dialog, [&dialog] { dialog.afterShow(); });
    }
    dialogOfTheLoop = &dialog;
    std::atexit(endWithoutTheDisplay);
    const int exitCode = QApplication::exec(); // with the end of the dialog's work in it
    dialogOfTheLoop = nullptr;
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    const int exitCode = run(argc, argv);
    // A thread that hangs in the driver may wake up at any time: nothing that it may touch is destroyed.
    if (WorkerThread::leftBehind() > 0)
        std::_Exit(exitCode);
    return exitCode;
}
