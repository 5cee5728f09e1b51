#include "windows/ShippedProgram.h"

#include <QDate>
#include <QJsonArray>
#include <QSettings>
#include <QTest>

#include <memory>

/// What only Windows has: its registry, hot keys, file rules, end of the session, and the driver's library in the
/// system folder. The program is the one that users get, in the folder that they get.
class TestShippedProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { program.reset(); }

    void startsAndEnds();
    void linuxSettingsAreTaken();
    void readOnlySettings();
    void secondStart_data();
    void secondStart();
    void killThenStart();
    void killHandsTheFanBack();
    void runValue();
    void hotKeyWithAnotherWindowInFront();
    void endOfTheSession_data();
    void endOfTheSession();
    void endOfTheSessionThatIsCalledOff();
    void returnFromTheUpdater();
    void noDriver_data();
    void noDriver();

private:
    [[nodiscard]] bool startShown();
    /// Waits until the event loop runs, which is when the toolkit's first windows are there.
    [[nodiscard]] bool isAtWork();
    [[nodiscard]] bool startWithFanOnCurve(const QByteArray &minimizeOnStart);

    std::unique_ptr<ShippedProgram> program;
};

namespace
{

constexpr int kDriversPolicy = 32; ///< the fan is the driver's again
const QByteArray kOneCard = R"({ "cards": [{ "thermal": { "pinnedC": 50 } }] })";
const QByteArray kCardWithLcd = R"({ "cards": [{ "lcd": true }] })";
const QByteArray kUsualCard = "GpuName=\"GeForce GTX 1070 Ti\" SubSystemId=\"287142775\"";

QString today()
{
    return QDate::currentDate().toString(QStringLiteral("yyyy/MM/dd"));
}

/// Every line end of a text is that of Windows.
bool hasWindowsLineEnds(const QByteArray &text)
{
    return text.count('\n') > 1 && text.count("\r\n") == text.count('\n');
}

int lastFanPolicy(const ShippedProgram &program)
{
    const QList<QJsonObject> orders = program.calls(QStringLiteral("NvAPI_GPU_SetCoolerLevels"));
    if (orders.isEmpty())
        return -1;
    const QJsonObject arguments = orders.last().value(QStringLiteral("args")).toObject();
    return arguments.value(QStringLiteral("levels"))
        .toArray()
        .at(0)
        .toObject()
        .value(QStringLiteral("policy"))
        .toInt();
}

/// What the system's Run keys hold for the program: of the machine, or else of the user.
QString storedRunValue()
{
    for (const char *root : {"HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER"}) {
        const QSettings key(QLatin1String(root) +
                                QStringLiteral("\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                            QSettings::NativeFormat);
        const QString value = key.value(QStringLiteral("_OvrynDeck2")).toString();
        if (!value.isEmpty())
            return value;
    }
    return {};
}

void pressKey(WORD virtualKey, bool down)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.dwFlags = down ? 0 : KEYEVENTF_KEYUP;
    SendInput(1, &input, sizeof input);
}

/// A window of another program, in front of all.
class WindowInFront
{
public:
    WindowInFront()
        : window(CreateWindowExW(0, L"EDIT", L"another", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20, 300, 200, nullptr,
                                 nullptr, nullptr, nullptr))
    {
        SetForegroundWindow(window);
        SetFocus(window);
    }
    ~WindowInFront() { DestroyWindow(window); }
    [[nodiscard]] bool isInFront() const { return GetForegroundWindow() == window; }

private:
    Q_DISABLE_COPY(WindowInFront)
    HWND window;
};

/// Another library, or none, in the place of the driver's while the object lives. Only where the system is made for
/// the tests: on a user's machine the driver is left alone.
class OtherDriver
{
public:
    explicit OtherDriver(const QString &library)
    {
        if (!QFile::rename(driver(), aside()))
            qFatal("cannot move the driver's library aside");
        if (!library.isEmpty() && !QFile::copy(library, driver()))
            qFatal("cannot put the other library in its place");
    }
    ~OtherDriver()
    {
        QFile::remove(driver());
        QFile::rename(aside(), driver());
    }

    [[nodiscard]] static bool isAllowed()
    {
        return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    }

private:
    Q_DISABLE_COPY(OtherDriver)
    static QString driver()
    {
        wchar_t folder[MAX_PATH] = {};
        GetSystemDirectoryW(folder, MAX_PATH);
        return QString::fromWCharArray(folder) + QStringLiteral("\\nvapi.dll");
    }
    static QString aside() { return driver() + QStringLiteral(".aside"); }
};

} // namespace

void TestShippedProgram::init()
{
    program = std::make_unique<ShippedProgram>();
    program->useScene(kOneCard);
    program->writeFile(QStringLiteral("config.xml"), quietConfig());
}

bool TestShippedProgram::startShown()
{
    return program->start() && QTest::qWaitFor([this] { return program->mainWindow() != nullptr; }, kPatienceMs);
}

bool TestShippedProgram::isAtWork()
{
    constexpr int kCycles = 3; // of the sampling worker, a second each
    const auto samples = [this] {
        return program->calls(QStringLiteral("NvAPI_GPU_GetTachReading")).size();
    };
    return QTest::qWaitFor([&] { return samples() >= kCycles && !program->windows().isEmpty(); }, kPatienceMs);
}

bool TestShippedProgram::startWithFanOnCurve(const QByteArray &minimizeOnStart)
{
    program->writeFile(
        QStringLiteral("config.xml"),
        quietConfig(minimizeOnStart,
                    "<GPU " + kUsualCard + "><AdjustModule FanMode=\"2\" Nodes=\"30,40|60,80|\"/></GPU>"));
    return program->start() && QTest::qWaitFor([this] { return lastFanPolicy(*program) > 0; }, kPatienceMs);
}

void TestShippedProgram::startsAndEnds()
{
    QVERIFY(startShown());
    QVERIFY(!program->calls(QStringLiteral("NvAPI_Initialize")).isEmpty());
    program->demandEnd();
    QVERIFY(program->waitForEnd());
    QCOMPARE(program->exitCode(), 0);
    QCOMPARE(program->configText(QStringLiteral("LastCloseDate")), today());
    QVERIFY(hasWindowsLineEnds(program->contentOf(QStringLiteral("config.xml"))));
}

void TestShippedProgram::linuxSettingsAreTaken()
{
    const QByteArray settings = quietConfig().replace("RefreshTimeOfMonitor=\"1\"", "RefreshTimeOfMonitor=\"3\"");
    QCOMPARE(settings.count('\r'), 0);
    program->writeFile(QStringLiteral("config.xml"), settings);
    QVERIFY(startShown());
    program->demandEnd();
    QVERIFY(program->waitForEnd());
    const QDomElement general = program->config().firstChildElement(QStringLiteral("GeneralSetting"));
    QCOMPARE(general.attribute(QStringLiteral("RefreshTimeOfMonitor")), QStringLiteral("3"));
    QVERIFY(hasWindowsLineEnds(program->contentOf(QStringLiteral("config.xml"))));
}

void TestShippedProgram::readOnlySettings()
{
    const QString file = program->path(QStringLiteral("config.xml"));
    const QByteArray before = program->contentOf(QStringLiteral("config.xml"));
    QVERIFY(SetFileAttributesW(reinterpret_cast<const wchar_t *>(file.utf16()), FILE_ATTRIBUTE_READONLY));
    QVERIFY(startShown());
    program->demandEnd();
    QVERIFY(program->waitForEnd());
    QCOMPARE(program->exitCode(), 0);
    QCOMPARE(program->contentOf(QStringLiteral("config.xml")), before);
    SetFileAttributesW(reinterpret_cast<const wchar_t *>(file.utf16()), FILE_ATTRIBUTE_NORMAL);
}

void TestShippedProgram::secondStart_data()
{
    QTest::addColumn<QByteArray>("minimizeOnStart");
    QTest::newRow("first one shown") << QByteArray("0");
    QTest::newRow("first one hidden in the tray") << QByteArray("1");
}

void TestShippedProgram::secondStart()
{
    QFETCH(QByteArray, minimizeOnStart);
    program->writeFile(QStringLiteral("config.xml"), quietConfig(minimizeOnStart));
    QVERIFY(program->start());
    QVERIFY(isAtWork());
    bool calledTheDriver = true;
    QCOMPARE(program->startAgain(calledTheDriver), 0);
    QVERIFY(!calledTheDriver);
    QTRY_VERIFY_WITH_TIMEOUT(program->mainWindow() != nullptr, kPatienceMs);
    QVERIFY(program->isRunning());
}

void TestShippedProgram::killThenStart()
{
    for (int round = 0; round < 3; ++round) {
        QVERIFY(startShown());
        QVERIFY(program->kill());
    }
    QVERIFY(startShown());
}

void TestShippedProgram::killHandsTheFanBack()
{
    QVERIFY(startWithFanOnCurve("0"));
    QVERIFY(lastFanPolicy(*program) != kDriversPolicy);
    QVERIFY(program->kill());
    QTRY_COMPARE_WITH_TIMEOUT(lastFanPolicy(*program), kDriversPolicy, kPatienceMs);
}

void TestShippedProgram::runValue()
{
    program->writeFile(QStringLiteral("config.xml"), quietConfig("0", {}, "1"));
    QVERIFY(startShown());
    program->demandEnd();
    QVERIFY(program->waitForEnd());
    const QString stored = storedRunValue();
    QVERIFY(stored.endsWith(QStringLiteral("\\Program Files 程序\\OvrynDeck2.exe")));
    QVERIFY(!stored.contains(QLatin1Char('/')));
    QVERIFY(QFile::exists(stored));

    program->writeFile(QStringLiteral("config.xml"), quietConfig("0", {}, "0"));
    QVERIFY(startShown());
    program->demandEnd();
    QVERIFY(program->waitForEnd());
    QCOMPARE(storedRunValue(), QString());
}

void TestShippedProgram::hotKeyWithAnotherWindowInFront()
{
    program->useScene(kCardWithLcd);
    program->writeFile(QStringLiteral("config.xml"),
                       quietConfig("1", "<GPU " + kUsualCard +
                                            "><LcdModule AutoSwitch=\"0\" SwitchTime=\"10\" ModifierKey=\"17\" "
                                            "NormalKey=\"49\" EnableLcd=\"1\"/></GPU>"));
    QVERIFY(program->start());
    const auto shownMode = [this] {
        return program->cardState().value(QStringLiteral("lcd")).toObject().value(QStringLiteral("command")).toInt();
    };
    QTRY_VERIFY_WITH_TIMEOUT(shownMode() != 0, kPatienceMs);
    const int before = shownMode();
    // Once the program has taken the combination nobody else gets it.
    QTRY_VERIFY_WITH_TIMEOUT(!RegisterHotKey(nullptr, 1, MOD_CONTROL, '1') || !UnregisterHotKey(nullptr, 1),
                             kPatienceMs);

    const WindowInFront other;
    QTRY_VERIFY(other.isInFront());
    pressKey(VK_CONTROL, true);
    pressKey('1', true);
    pressKey('1', false);
    pressKey(VK_CONTROL, false);
    QTRY_VERIFY_WITH_TIMEOUT(shownMode() != before, kPatienceMs);
}

void TestShippedProgram::endOfTheSession_data()
{
    QTest::addColumn<QByteArray>("minimizeOnStart");
    QTest::newRow("shown") << QByteArray("0");
    QTest::newRow("hidden in the tray") << QByteArray("1");
}

void TestShippedProgram::endOfTheSession()
{
    QFETCH(QByteArray, minimizeOnStart);
    QVERIFY(startWithFanOnCurve(minimizeOnStart));
    QVERIFY(isAtWork());
    QVERIFY(lastFanPolicy(*program) != kDriversPolicy);
    QVERIFY(program->configText(QStringLiteral("LastCloseDate")) != today());
    const QList<HWND> windows = program->windows();
    QVERIFY(!windows.isEmpty());
    for (const HWND window : windows)
        QVERIFY(SendMessageW(window, WM_QUERYENDSESSION, 0, ENDSESSION_LOGOFF));
    QCOMPARE(program->configText(QStringLiteral("LastCloseDate")), today());
    for (const HWND window : windows)
        SendMessageW(window, WM_ENDSESSION, TRUE, ENDSESSION_LOGOFF);
    // The system may end the process as soon as the last window has answered.
    QCOMPARE(lastFanPolicy(*program), kDriversPolicy);
    QVERIFY(program->waitForEnd());
    const QDomElement card = program->config().firstChildElement(QStringLiteral("GpuSettings")).firstChildElement();
    const QDomElement adjustment = card.firstChildElement(QStringLiteral("AdjustModule"));
    QCOMPARE(adjustment.attribute(QStringLiteral("FanMode")), QStringLiteral("2"));
    QCOMPARE(adjustment.attribute(QStringLiteral("Nodes")), QStringLiteral("30,40|60,80|"));
}

void TestShippedProgram::endOfTheSessionThatIsCalledOff()
{
    QVERIFY(startWithFanOnCurve("1"));
    QVERIFY(isAtWork());
    const QList<HWND> windows = program->windows();
    QVERIFY(!windows.isEmpty());
    for (const HWND window : windows)
        QVERIFY(SendMessageW(window, WM_QUERYENDSESSION, 0, ENDSESSION_LOGOFF));
    for (const HWND window : windows)
        SendMessageW(window, WM_ENDSESSION, FALSE, ENDSESSION_LOGOFF);
    const int orders = program->calls(QStringLiteral("NvAPI_GPU_SetCoolerLevels")).size();
    QTRY_VERIFY_WITH_TIMEOUT(program->calls(QStringLiteral("NvAPI_GPU_SetCoolerLevels")).size() > orders,
                             kPatienceMs);
    QVERIFY(lastFanPolicy(*program) != kDriversPolicy);
    QVERIFY(program->isRunning());
}

void TestShippedProgram::returnFromTheUpdater()
{
    program->writeFile(QStringLiteral("temp/update_info.xml"), "<Update/>");
    program->writeFile(QStringLiteral("temp/left.zip"), "left");
    QVERIFY(program->start({QStringLiteral("_OvrynUpdate")}, QDir::tempPath()));
    QTRY_VERIFY_WITH_TIMEOUT(program->box() != nullptr, kPatienceMs); // the update log
    QVERIFY(program->mainWindow() == nullptr);
    QVERIFY(program->contentOf(QStringLiteral("temp/left.zip")).isEmpty());
    QVERIFY(program->contentOf(QStringLiteral("temp/update_info.xml")).isEmpty());
    QCOMPARE(program->configText(QStringLiteral("LastUpdateDate")), today());
    PostMessageW(program->box(), WM_KEYDOWN, VK_ESCAPE, 0);
    QTRY_VERIFY_WITH_TIMEOUT(program->mainWindow() != nullptr, kPatienceMs);
}

void TestShippedProgram::noDriver_data()
{
    QTest::addColumn<QString>("library");
    QTest::newRow("missing") << QString();
    QTest::newRow("without the entry point") << QStringLiteral(OVRYN_LIBRARY_WITHOUT_ENTRY);
}

void TestShippedProgram::noDriver()
{
    QFETCH(QString, library);
    if (!OtherDriver::isAllowed())
        QSKIP("the driver of this machine is left alone");
    const OtherDriver other(library);
    QVERIFY(program->start());
    QTRY_VERIFY_WITH_TIMEOUT(program->box() != nullptr, kPatienceMs);
    QVERIFY(program->mainWindow() == nullptr);
    QCOMPARE(program->configText(QStringLiteral("LastStartDate")), today());
    PostMessageW(program->box(), WM_KEYDOWN, VK_ESCAPE, 0);
    QVERIFY(program->waitForEnd());
    QCOMPARE(program->exitCode(), 0);
}

QTEST_MAIN(TestShippedProgram)
#include "TestShippedProgram.moc"
