#include "windows/ShippedProgram.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace
{

const QString kProgram = QStringLiteral("OvrynDeck2.exe");
const wchar_t *const kWindowTitle = L"OvrynDeckII";
const wchar_t *const kEndEvent = L"Local\\OvrynDeck2_end";
constexpr int kSmallWindow = 64; // helpers of the toolkit are no larger, in pixels

void copyFolder(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString target = to + QLatin1Char('/') + QDir(from).relativeFilePath(files.next());
        QDir().mkpath(QFileInfo(target).path());
        if (!QFile::copy(files.filePath(), target))
            qFatal("cannot copy %s", qPrintable(files.filePath()));
    }
}

struct Search
{
    DWORD processId;
    QList<HWND> found;
};

BOOL CALLBACK collect(HWND window, LPARAM parameter)
{
    auto *search = reinterpret_cast<Search *>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == search->processId)
        search->found.append(window);
    return TRUE;
}

QString titleOf(HWND window)
{
    wchar_t title[64] = {};
    GetWindowTextW(window, title, 64);
    return QString::fromWCharArray(title);
}

} // namespace

QByteArray quietConfig(const QByteArray &minimizeOnStart, const QByteArray &cards, const QByteArray &startOnBoot)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<OvrynParameter>\n    <GeneralSetting StartOnBoot=\"" +
           startOnBoot + "\" MinimizeOnStart=\"" + minimizeOnStart +
           "\" ApplyLastParamOnStart=\"1\" Language=\"lang_en\" RefreshTimeOfMonitor=\"1\" PageEffects=\"normal\"/>\n"
           "    <UpdateSetting CheckInterval=\"7\" UpdateMode=\"0\" UpdateStatus=\"1\"/>\n    <GpuSettings>" +
           cards +
           "</GpuSettings>\n    <LastCloseDate>2020/02/29</LastCloseDate>\n    <OtherSetting NotPromptHPS=\"1\"/>\n"
           "</OvrynParameter>\n";
}

ShippedProgram::ShippedProgram() : folder(place.filePath(QStringLiteral("Program Files 程序")))
{
    copyFolder(QStringLiteral(OVRYN_SHIPPED_FOLDER), folder);
}

ShippedProgram::ShippedProgram(const QString &installation) : folder(installation) {}

ShippedProgram::~ShippedProgram()
{
    if (isRunning())
        kill();
    // The guard hands a fan back and ends after the program; until then its file can't be removed.
    (void)QTest::qWaitFor([this] { return place.remove(); }, kPatienceMs);
}

QString ShippedProgram::path(const QString &name) const
{
    return folder + QLatin1Char('/') + name;
}

void ShippedProgram::writeFile(const QString &name, const QByteArray &content) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(name));
}

QByteArray ShippedProgram::contentOf(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void ShippedProgram::useScene(const QByteArray &json)
{
    QFile file(place.filePath(QStringLiteral("scene.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size())
        qFatal("cannot write the scene");
}

void ShippedProgram::prepare(QProcess &start) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // what its folder lacks is not to be found elsewhere
    for (const char *name : {"WINEPATH", "QT_PLUGIN_PATH", "QT_QPA_PLATFORM", "QT_QPA_PLATFORM_PLUGIN_PATH"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("PATH"), QDir::toNativeSeparators(qEnvironmentVariable("SystemRoot")));
    environment.insert(QStringLiteral("NVAPI_SIM_JOURNAL"), place.filePath(QStringLiteral("journal.jsonl")));
    environment.insert(QStringLiteral("NVAPI_SIM_STATE"), place.filePath(QStringLiteral("state.json")));
    if (QFile::exists(place.filePath(QStringLiteral("scene.json"))))
        environment.insert(QStringLiteral("NVAPI_SIM_SCENARIO"), place.filePath(QStringLiteral("scene.json")));
    // The lock file lies there: an instance of the person at the machine is no first instance.
    environment.insert(QStringLiteral("TMP"), QDir::toNativeSeparators(place.path()));
    environment.insert(QStringLiteral("TEMP"), QDir::toNativeSeparators(place.path()));
    start.setProcessEnvironment(environment);
    start.setWorkingDirectory(QDir::rootPath()); // it must find its folder by itself
}

bool ShippedProgram::start(const QStringList &arguments, const QString &workingFolder)
{
    prepare(process);
    if (!workingFolder.isEmpty())
        process.setWorkingDirectory(workingFolder);
    process.start(path(kProgram), arguments);
    return process.waitForStarted(kPatienceMs);
}

int ShippedProgram::startAgain(bool &calledTheDriver)
{
    QProcess second;
    prepare(second);
    QProcessEnvironment environment = second.processEnvironment();
    const QString journal = place.filePath(QStringLiteral("second.jsonl"));
    environment.insert(QStringLiteral("NVAPI_SIM_JOURNAL"), journal);
    second.setProcessEnvironment(environment);
    second.start(path(kProgram), QStringList());
    const bool ended = second.waitForFinished(kPatienceMs);
    calledTheDriver = QFile::exists(journal);
    if (ended)
        return second.exitStatus() == QProcess::NormalExit ? second.exitCode() : -1;
    second.kill();
    second.waitForFinished(kPatienceMs);
    return -1;
}

bool ShippedProgram::kill()
{
    process.kill();
    return process.waitForFinished(kPatienceMs);
}

void ShippedProgram::demandEnd()
{
    const HANDLE event = OpenEventW(EVENT_MODIFY_STATE, FALSE, kEndEvent);
    if (!event)
        qFatal("the program does not wait for an end");
    SetEvent(event);
    CloseHandle(event);
}

bool ShippedProgram::waitForEnd()
{
    return QTest::qWaitFor([this] { return process.state() == QProcess::NotRunning; }, kPatienceMs);
}

QList<HWND> ShippedProgram::windows() const
{
    Search search = {DWORD(process.processId()), {}};
    EnumWindows(collect, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

QList<HWND> ShippedProgram::shownWindows() const
{
    QList<HWND> shown;
    for (const HWND window : windows()) {
        RECT bounds = {};
        GetWindowRect(window, &bounds);
        if (IsWindowVisible(window) && bounds.right - bounds.left > kSmallWindow)
            shown.append(window);
    }
    return shown;
}

HWND ShippedProgram::mainWindow() const
{
    for (const HWND window : shownWindows()) {
        if (titleOf(window) == QString::fromWCharArray(kWindowTitle))
            return window;
    }
    return nullptr;
}

HWND ShippedProgram::anyMainWindow()
{
    const HWND window = FindWindowW(nullptr, kWindowTitle);
    return window && IsWindowVisible(window) ? window : nullptr;
}

HWND ShippedProgram::box() const
{
    for (const HWND window : shownWindows()) {
        if (titleOf(window) != QString::fromWCharArray(kWindowTitle))
            return window;
    }
    return nullptr;
}

QDomElement ShippedProgram::config() const
{
    document.setContent(contentOf(QStringLiteral("config.xml")));
    return document.documentElement();
}

QString ShippedProgram::configText(const QString &element) const
{
    return config().firstChildElement(element).text();
}

QList<QJsonObject> ShippedProgram::calls(const QString &operation) const
{
    QList<QJsonObject> found;
    QFile file(place.filePath(QStringLiteral("journal.jsonl")));
    if (!file.open(QIODevice::ReadOnly))
        return found;
    while (!file.atEnd()) {
        const QJsonObject call = QJsonDocument::fromJson(file.readLine()).object(); // the last may be half written
        if (call.value(QStringLiteral("op")).toString() == operation)
            found.append(call);
    }
    return found;
}

QJsonObject ShippedProgram::cardState() const
{
    QFile file(place.filePath(QStringLiteral("state.json")));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject state = QJsonDocument::fromJson(file.readAll()).object();
    return state.value(QStringLiteral("cards")).toArray().at(0).toObject();
}
