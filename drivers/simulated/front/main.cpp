// card-front [STATE FILE]: shows the front of the simulated cards. The default is the file that NVAPI_SIM_STATE
// names.

#include "simulated/front/CardFrontWindow.h"

#include "ui/Fonts.h"

#include <QApplication>
#include <QIcon>
#include <QScreen>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString path = arguments.value(1, qEnvironmentVariable("NVAPI_SIM_STATE"));
    if (path.isEmpty() || arguments.size() > 2) {
        std::fputs("Usage: card-front [STATE FILE]\n"
                   "The file is the one that the simulated driver keeps at NVAPI_SIM_STATE.\n",
                   stderr);
        return 2;
    }
    substituteFontFamilies();
    registerApplicationFonts();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/images/images/icon.png")));

    cardfront::CardFrontWindow window(path);
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    window.move(cardfront::windowPlace(available, window.size()));
    window.show();
    return QApplication::exec();
}
