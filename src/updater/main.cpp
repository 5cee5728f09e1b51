#include "platform/EndSignals.h"
#include "platform/ExecutableName.h"
#include "platform/QtSingleApplication.h"
#include "ui/Fonts.h"
#include "ui/MessageBoxes.h"
#include "update/UpdateDecision.h"
#include "update/UpdateFiles.h"
#include "update/UpdateServer.h"
#include "updater/ReleaseKeys.h"
#include "updater/UpdateRun.h"
#include "updater/UpdaterTexts.h"
#include "updater/UpdaterWindow.h"

#include <QDir>
#include <QFont>
#include <QIcon>
#include <QProcess>

namespace
{

const char *const kUpdaterId = "Brindlex_OvrynUpdate";
const char *const kProgramName = "OvrynDeck2";

QVector<ReleaseKey> trustedKeys()
{
    QVector<ReleaseKey> keys;
    for (const QByteArray &text : releaseKeys().split(' ')) {
        if (const std::optional<ReleaseKey> key = releaseKeyOf(text))
            keys.append(*key);
    }
    return keys;
}

void startProgram(const QString &installation, const QStringList &arguments)
{
    const QString program = installation + QLatin1Char('/') + executableFileName(QString::fromLatin1(kProgramName));
    QProcess::startDetached(program, arguments, installation); // a program that is not there can't be started
}

} // namespace

int main(int argc, char **argv)
{
    QtSingleApplication application(QString::fromLatin1(kUpdaterId), argc, argv);
    if (application.isRunning()) {
        application.sendMessage(QStringLiteral("show"));
        return 0;
    }
    substituteFontFamilies();
    registerApplicationFonts();
    QApplication::setFont(QFont(QStringLiteral("微软雅黑")));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/images/images/icon.png")));

    const QString installation = QDir(QCoreApplication::applicationDirPath()).canonicalPath();
    const QStringList arguments = QCoreApplication::arguments();
    const LanguageType language = languageNumberOf(arguments.value(2));
    const bool isCalled = arguments.value(1) == QLatin1String(kCalledByProgram);
    if (!isCalled && !FileExchange(installation).isUnfinished()) {
        tell(UpdaterTexts::purpose(language), language, nullptr);
        return 0;
    }

    UpdateSite site;
    site.installation = installation;
    site.packets = updateServer() + QLatin1String(kPacketsPath);
    site.keys = trustedKeys();
    site.ownVersion = ownVersion();
    site.programId = QString::fromLatin1(kProgramId);
    UpdateRun run(site);
    UpdaterWindow window(run, language);
    application.setActivationWindow(&window, true);
    run.start();
    const bool isInstalled = window.exec() == QDialog::Accepted;
    run.releaseProgram();
    startProgram(installation, isInstalled ? QStringList{QString::fromLatin1(kCalledByUpdater)} : QStringList());
    return 0;
}
