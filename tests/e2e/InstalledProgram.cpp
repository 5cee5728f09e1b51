#include "e2e/InstalledProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace
{

constexpr int kStartTimeoutMs = 30000;
constexpr int kSmallWindow = 64; // toolkit helpers and the tray's icon are no larger, in pixels
const char *const kWindowTitle = "OvrynDeckII";

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
}

} // namespace

InstalledProgram::InstalledProgram(const VirtualScreen &ofScreen, const QString &executable) : screen(ofScreen)
{
    QFile::copy(executable, folder.filePath(QStringLiteral("OvrynDeck2")));
    QFile::copy(QStringLiteral(OVRYN_FAN_GUARD), folder.filePath(QStringLiteral("ovryn-fan-guard")));
    QDir(folder.path()).mkdir(QStringLiteral("runtime"));
    QFile::setPermissions(folder.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

InstalledProgram::~InstalledProgram()
{
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(5000);
    }
    if (followed)
        QProcess::execute(QStringLiteral("kill"), {QStringLiteral("-KILL"), QString::number(followed)});
    const QStringList left = violations();
    if (!left.isEmpty() && !QTest::currentTestFailed())
        QTest::qFail(qPrintable("no card would be asked this: " + left.first()), __FILE__, __LINE__);
}

void InstalledProgram::useScene(const QString &name)
{
    scene = QStringLiteral(OVRYN_SCENES) + QLatin1Char('/') + name;
}

void InstalledProgram::useScenario(const QByteArray &json)
{
    scene = folder.filePath(QStringLiteral("scene.json"));
    writeFile(scene, json);
}

void InstalledProgram::writeConfig(const QByteArray &xml)
{
    writeFile(folder.filePath(QStringLiteral("config.xml")), xml);
}

void InstalledProgram::setVariable(const QString &name, const QString &value)
{
    variables.insert(name, value);
}

QProcessEnvironment InstalledProgram::environment() const
{
    QProcessEnvironment environment = screen.environment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral(OVRYN_SIMULATED_DRIVER_FOLDER));
    environment.insert(QStringLiteral("NVAPI_SIM_JOURNAL"), folder.filePath(QStringLiteral("journal.jsonl")));
    environment.insert(QStringLiteral("NVAPI_SIM_STATE"), statePath());
    if (!scene.isEmpty())
        environment.insert(QStringLiteral("NVAPI_SIM_SCENARIO"), scene);
    // A runtime folder of its own, so that the user's own running instance does not count.
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.filePath(QStringLiteral("runtime")));
    environment.insert(QStringLiteral("TMPDIR"), folder.filePath(QStringLiteral("runtime")));
    // Nor does it use the user's own autostart folder.
    environment.insert(QStringLiteral("HOME"), folder.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder.filePath(QStringLiteral("settings")));
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
        environment.insert(variable.key(), variable.value());
    return environment;
}

void InstalledProgram::prepare(QProcess &start) const
{
    start.setProcessEnvironment(environment());
    start.setWorkingDirectory(QDir::rootPath()); // the program must find its own folder
}

bool InstalledProgram::start()
{
    prepare(process);
    process.start(folder.filePath(QStringLiteral("OvrynDeck2")), QStringList());
    return process.waitForStarted(kStartTimeoutMs);
}

int InstalledProgram::startAgain()
{
    QProcess second;
    prepare(second);
    second.start(folder.filePath(QStringLiteral("OvrynDeck2")), QStringList());
    if (!second.waitForFinished(kStartTimeoutMs)) {
        second.kill();
        second.waitForFinished(5000);
        return -1;
    }
    return second.exitStatus() == QProcess::NormalExit ? second.exitCode() : -1;
}

void InstalledProgram::follow(qint64 processId)
{
    followed = processId;
}

bool InstalledProgram::signal(const char *name)
{
    return isRunning() && QProcess::execute(QStringLiteral("kill"), {QLatin1Char('-') + QString::fromLatin1(name),
                                                                     QString::number(process.processId())}) == 0;
}

QList<qint64> InstalledProgram::guards() const
{
    const QByteArray guard = QFile::encodeName(folder.filePath(QStringLiteral("ovryn-fan-guard")));
    QList<qint64> found;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(name));
        if (name.toLongLong() > 0 && commandLine.open(QIODevice::ReadOnly) && commandLine.readAll().startsWith(guard))
            found << name.toLongLong();
    }
    return found;
}

bool InstalledProgram::kill()
{
    process.kill();
    process.waitForFinished(kStartTimeoutMs);
    return process.exitStatus() == QProcess::CrashExit;
}

bool InstalledProgram::isRunning() const
{
    return process.state() == QProcess::Running;
}

bool InstalledProgram::waitForEnd(int timeoutMs)
{
    return process.state() == QProcess::NotRunning || process.waitForFinished(timeoutMs);
}

bool InstalledProgram::endedNormally() const
{
    return process.state() == QProcess::NotRunning && process.exitStatus() == QProcess::NormalExit;
}

qint64 InstalledProgram::mainWindow() const
{
    return screen.findWindow(QString::fromLatin1(kWindowTitle));
}

QList<qint64> InstalledProgram::otherWindows() const
{
    // In this order: a main window that appears in between must not be taken for another one.
    const QStringList all = screen.windowsOf(followed ? followed : process.processId());
    const qint64 main = mainWindow();
    QList<qint64> others;
    for (const QString &id : all) {
        const qint64 window = id.toLongLong();
        if (window != main && screen.geometryOf(window).width() > kSmallWindow)
            others.append(window);
    }
    return others;
}

qint64 InstalledProgram::waitForMainWindow() const
{
    qint64 window = 0;
    return QTest::qWaitFor([&] { return (window = mainWindow()) != 0; }, kStartTimeoutMs) ? window : 0;
}

qint64 InstalledProgram::waitForBox() const
{
    QList<qint64> windows;
    return QTest::qWaitFor([&] { return !(windows = otherWindows()).isEmpty(); }, kStartTimeoutMs) ? windows.last()
                                                                                                   : 0;
}

void InstalledProgram::clickIn(qint64 window, QPoint position) const
{
    screen.click(screen.geometryOf(window).topLeft() + position);
}

QRect InstalledProgram::trayIcon() const
{
    for (const QString &id : screen.windowsOf(process.processId())) {
        const QRect place = screen.geometryOf(id.toLongLong());
        if (place.width() > 4 && place.width() <= kSmallWindow && place.y() < kSmallWindow) // the tray is at the top
            return place;
    }
    return {};
}

QByteArray InstalledProgram::configBytes() const
{
    QFile file(folder.filePath(QStringLiteral("config.xml")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString InstalledProgram::path() const
{
    return folder.filePath(QStringLiteral("OvrynDeck2"));
}

QByteArray InstalledProgram::autoStartEntry() const
{
    QFile file(folder.filePath(QStringLiteral("settings/autostart/_OvrynDeck2.desktop")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QDomElement InstalledProgram::config() const
{
    QFile file(folder.filePath(QStringLiteral("config.xml")));
    document.clear();
    if (file.open(QIODevice::ReadOnly))
        document.setContent(&file);
    return document.documentElement();
}

QString InstalledProgram::configAttribute(const QString &element, const QString &attribute) const
{
    return config().firstChildElement(element).attribute(attribute);
}

QString InstalledProgram::configText(const QString &element) const
{
    return config().firstChildElement(element).text();
}

QList<QDomElement> InstalledProgram::cardSections() const
{
    QList<QDomElement> sections;
    const QDomElement list = config().firstChildElement(QStringLiteral("GpuSettings"));
    for (QDomElement card = list.firstChildElement(QStringLiteral("GPU")); !card.isNull();
         card = card.nextSiblingElement(QStringLiteral("GPU")))
        sections.append(card);
    return sections;
}

QList<QJsonObject> InstalledProgram::journal() const
{
    QList<QJsonObject> calls;
    QFile file(folder.filePath(QStringLiteral("journal.jsonl")));
    if (!file.open(QIODevice::ReadOnly))
        return calls;
    while (!file.atEnd()) {
        const QJsonDocument line = QJsonDocument::fromJson(file.readLine());
        if (line.isObject()) // the last line may be half written
            calls.append(line.object());
    }
    return calls;
}

QStringList InstalledProgram::violations() const
{
    QStringList lines;
    QFile file(folder.filePath(QStringLiteral("journal.jsonl")));
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (line.contains("\"violation\":"))
            lines << QString::fromUtf8(line.trimmed());
    }
    return lines;
}

QJsonObject InstalledProgram::cardState(int index) const
{
    QFile file(statePath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonArray cards =
        QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("cards")).toArray();
    return cards.at(index).toObject();
}

QString InstalledProgram::statePath() const
{
    return folder.filePath(QStringLiteral("state.json"));
}
