#include "e2e/VirtualScreen.h"

#include <QElapsedTimer>
#include <QThread>

namespace
{

constexpr int kStartTimeoutMs = 20000;
constexpr int kCommandTimeoutMs = 20000;
constexpr int kPollMs = 50;

} // namespace

VirtualScreen::~VirtualScreen()
{
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        (*part)->terminate();
        if (!(*part)->waitForFinished(3000)) {
            (*part)->kill();
            (*part)->waitForFinished(3000);
        }
    }
}

void VirtualScreen::breakDown()
{
    parts.front()->kill();
    parts.front()->waitForFinished(kCommandTimeoutMs);
}

bool VirtualScreen::startPart(const QString &program, const QStringList &arguments)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment());
    process->setStandardErrorFile(QProcess::nullDevice());
    if (parts.empty()) {
        process->setProcessChannelMode(QProcess::SeparateChannels);
    } else {
        process->setStandardOutputFile(QProcess::nullDevice());
    }
    process->start(program, arguments);
    if (!process->waitForStarted(kStartTimeoutMs)) {
        problem = program + QStringLiteral(": ") + process->errorString();
        return false;
    }
    parts.push_back(std::move(process));
    return true;
}

bool VirtualScreen::start(QSize size)
{
    // The server picks a free number itself and writes it to its standard output.
    if (!startPart(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
                    QStringLiteral("%1x%2x24").arg(size.width()).arg(size.height()), QStringLiteral("-noreset"),
                    QStringLiteral("-nolisten"), QStringLiteral("tcp")}))
        return false;
    if (!parts.front()->waitForReadyRead(kStartTimeoutMs)) {
        problem = QStringLiteral("Xvfb reports no display");
        return false;
    }
    displayName = QLatin1Char(':') + QString::fromLatin1(parts.front()->readAllStandardOutput()).trimmed();

    if (!startPart(QStringLiteral("openbox"),
                   {QStringLiteral("--config-file"), QStringLiteral(OVRYN_WINDOW_MANAGER_CONFIG)}))
        return false;
    QElapsedTimer timer;
    timer.start();
    while (!run(QStringLiteral("xprop"), {QStringLiteral("-root"), QStringLiteral("_NET_SUPPORTING_WM_CHECK")})
                .contains(QLatin1Char('#'))) {
        if (timer.hasExpired(kStartTimeoutMs)) {
            problem = QStringLiteral("no window manager came up");
            return false;
        }
        QThread::msleep(kPollMs);
    }
    return startPart(QStringLiteral("picom"), {QStringLiteral("--backend"), QStringLiteral("xrender"),
                                               QStringLiteral("--config"), QStringLiteral("/dev/null")}) &&
           startPart(QStringLiteral("trayer"),
                     {QStringLiteral("--edge"), QStringLiteral("top"), QStringLiteral("--align"),
                      QStringLiteral("right"), QStringLiteral("--width"), QStringLiteral("8"),
                      QStringLiteral("--height"), QStringLiteral("24")});
}

QProcessEnvironment VirtualScreen::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), displayName);
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    // Nothing on this screen reads or changes the user's own settings.
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral(".config")));
    environment.remove(QStringLiteral("FONTCONFIG_FILE")); // the program is to find the machine's own fonts
    return environment;
}

QString VirtualScreen::run(const QString &program, const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(program, arguments);
    if (!process.waitForFinished(kCommandTimeoutMs))
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

QStringList VirtualScreen::visibleWindows(const QStringList &conditions) const
{
    // The search walks the tree of windows and gives up at one that is closed meanwhile.
    constexpr int kMostTries = 20;
    for (int i = 0; i < kMostTries; ++i) {
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral("xdotool"), QStringList{QStringLiteral("search"), QStringLiteral("--all"),
                                                             QStringLiteral("--onlyvisible")} +
                                                     conditions);
        if (process.waitForFinished(kCommandTimeoutMs) && !process.readAllStandardError().contains("X Error"))
            return QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    return {};
}

qint64 VirtualScreen::findWindow(const QString &title) const
{
    return visibleWindows({QStringLiteral("--name"), QStringLiteral("^%1$").arg(title)}).value(0).toLongLong();
}

QStringList VirtualScreen::windowsOf(qint64 processId) const
{
    return visibleWindows(
        {QStringLiteral("--pid"), QString::number(processId), QStringLiteral("--name"), QStringLiteral(".*")});
}

qint64 VirtualScreen::activeWindow() const
{
    return run(QStringLiteral("xdotool"), {QStringLiteral("getactivewindow")}).trimmed().toLongLong();
}

QRect VirtualScreen::geometryOf(qint64 window) const
{
    // not from xdotool, which counts a frame around the window twice
    const QStringList lines =
        run(QStringLiteral("xwininfo"), {QStringLiteral("-id"), QString::number(window)}).split(QLatin1Char('\n'));
    const auto valueOf = [&](const QString &name) {
        for (const QString &line : lines) {
            if (line.trimmed().startsWith(name))
                return line.section(QLatin1Char(':'), 1).trimmed().toInt();
        }
        return 0;
    };
    return {valueOf(QStringLiteral("Absolute upper-left X:")), valueOf(QStringLiteral("Absolute upper-left Y:")),
            valueOf(QStringLiteral("Width:")), valueOf(QStringLiteral("Height:"))};
}

void VirtualScreen::movePointer(QPoint position) const
{
    (void)run(QStringLiteral("xdotool"),
              {QStringLiteral("mousemove"), QString::number(position.x()), QString::number(position.y())});
}

void VirtualScreen::click(QPoint position) const
{
    (void)run(QStringLiteral("xdotool"),
              {QStringLiteral("mousemove"), QString::number(position.x()), QString::number(position.y()),
               QStringLiteral("sleep"), QStringLiteral("0.05"), QStringLiteral("mousedown"), QStringLiteral("1"),
               QStringLiteral("sleep"), QStringLiteral("0.05"), QStringLiteral("mouseup"), QStringLiteral("1")});
}

void VirtualScreen::rightClick(QPoint screenPosition) const
{
    movePointer(screenPosition);
    (void)run(QStringLiteral("xdotool"),
              {QStringLiteral("sleep"), QStringLiteral("0.05"), QStringLiteral("click"), QStringLiteral("3")});
}

void VirtualScreen::doubleClick(QPoint position) const
{
    (void)run(QStringLiteral("xdotool"),
              {QStringLiteral("mousemove"), QString::number(position.x()), QString::number(position.y()),
               QStringLiteral("sleep"), QStringLiteral("0.05"), QStringLiteral("click"), QStringLiteral("--repeat"),
               QStringLiteral("2"), QStringLiteral("--delay"), QStringLiteral("60"), QStringLiteral("1")});
}

void VirtualScreen::hold(QPoint from, QPoint to) const
{
    QStringList arguments = {QStringLiteral("mousemove"), QString::number(from.x()), QString::number(from.y()),
                             QStringLiteral("sleep"),     QStringLiteral("0.05"),    QStringLiteral("mousedown"),
                             QStringLiteral("1")};
    constexpr int kSteps = 10;
    for (int i = 1; i <= kSteps; ++i) {
        const QPoint at = from + (to - from) * i / kSteps;
        arguments << QStringLiteral("mousemove") << QString::number(at.x()) << QString::number(at.y())
                  << QStringLiteral("sleep") << QStringLiteral("0.02");
    }
    (void)run(QStringLiteral("xdotool"), arguments);
}

void VirtualScreen::release() const
{
    (void)run(QStringLiteral("xdotool"), {QStringLiteral("mouseup"), QStringLiteral("1")});
}

void VirtualScreen::drag(QPoint from, QPoint to) const
{
    hold(from, to);
    release();
}

void VirtualScreen::key(const QString &name) const
{
    (void)run(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("--clearmodifiers"), name});
}

void VirtualScreen::type(const QString &text) const
{
    (void)run(QStringLiteral("xdotool"),
              {QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("30"), text});
}

void VirtualScreen::activate(qint64 window) const
{
    (void)run(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"), QString::number(window)});
}

QImage VirtualScreen::picture() const
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(QStringLiteral("import"), {QStringLiteral("-silent"), QStringLiteral("-window"),
                                             QStringLiteral("root"), QStringLiteral("png:-")});
    if (!process.waitForFinished(kCommandTimeoutMs))
        return {};
    return QImage::fromData(process.readAllStandardOutput(), "PNG").convertToFormat(QImage::Format_RGB32);
}
