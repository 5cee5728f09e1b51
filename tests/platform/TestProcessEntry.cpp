#include <QtTest>

#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

Q_DECLARE_METATYPE(std::vector<std::wstring>)
Q_DECLARE_METATYPE(std::vector<std::string>)

/// The entry of a program without a console, with a stand-in for its system: the arguments that `main` gets from a
/// wide command line. The file is built with its `main` renamed to `programMain`.
int programMain(int argc, char **argv);

namespace
{

constexpr int kExitCode = 42;
constexpr int kFailed = -1;

/// The system's results, and the calls that it got.
struct StandIn
{
    std::vector<std::wstring> arguments;
    bool hasCommandLine = true;
    bool converts = true;
    std::vector<wchar_t *> vector; ///< lent to the entry
    int releases = 0;
    bool otherConversion = false; ///< one that is not of the system's code page, or not of a whole text
} g_system;

std::vector<std::string> g_passedArguments; ///< the arguments of `programMain`
bool g_endsWithNull = false;
int g_programRuns = 0;

} // namespace

const wchar_t *GetCommandLineW()
{
    return L"the command line";
}

wchar_t **CommandLineToArgvW(const wchar_t *commandLine, int *count)
{
    if (!g_system.hasCommandLine || std::wstring(commandLine) != GetCommandLineW())
        return nullptr;
    for (std::wstring &argument : g_system.arguments)
        g_system.vector.push_back(&argument[0]);
    *count = int(g_system.arguments.size());
    return g_system.vector.data();
}

void *LocalFree(void *memory)
{
    g_system.releases += memory == g_system.vector.data() ? 1 : 100;
    return nullptr;
}

/// A code page with the first 256 letters, in which every other one becomes a question mark.
int WideCharToMultiByte(unsigned int codePage, unsigned long flags, const wchar_t *text, int length, char *out,
                        int outSize, const char *defaultChar, int *usedDefaultChar)
{
    if (codePage != CP_ACP || flags != 0 || length != -1 || defaultChar || usedDefaultChar)
        g_system.otherConversion = true;
    if (!g_system.converts)
        return 0;
    std::string narrow;
    for (; *text; ++text)
        narrow += *text < 256 ? char(*text) : '?';
    const int bytes = int(narrow.size()) + 1;
    if (outSize == 0)
        return bytes;
    if (outSize < bytes)
        return 0;
    std::copy_n(narrow.c_str(), bytes, out);
    return bytes;
}

int programMain(int argc, char **argv)
{
    ++g_programRuns;
    g_passedArguments.assign(argv, argv + argc);
    g_endsWithNull = argv[argc] == nullptr;
    for (int i = 0; i < argc; ++i)
        argv[i] = nullptr; // a program may do as it likes with its array
    return kExitCode;
}

class TestProcessEntry : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void arguments_data();
    void arguments();
    void noCommandLine();
    void textThatCannotBeConverted();
};

void TestProcessEntry::init()
{
    g_system = {};
    g_passedArguments.clear();
    g_endsWithNull = false;
    g_programRuns = 0;
}

void TestProcessEntry::arguments_data()
{
    QTest::addColumn<std::vector<std::wstring>>("wide");
    QTest::addColumn<std::vector<std::string>>("narrow");

    using Wide = std::vector<std::wstring>;
    using Narrow = std::vector<std::string>;
    QTest::newRow("program alone") << Wide{L"C:\\deck\\OvrynDeck2.exe"} << Narrow{"C:\\deck\\OvrynDeck2.exe"};
    QTest::newRow("letters of the code page")
        << Wide{L"C:\\caf\u00e9\\a b.exe", L"\u00ff"} << Narrow{"C:\\caf\xE9\\a b.exe", "\xFF"};
    QTest::newRow("path outside the code page arrives as the system leaves it")
        << Wide{L"C:\\\u663e\u5361\\OvrynDeck2.exe", L"x"} << Narrow{"C:\\??\\OvrynDeck2.exe", "x"};
    QTest::newRow("empty argument") << Wide{L"a", L"", L"c"} << Narrow{"a", "", "c"};
    QTest::newRow("none") << Wide{} << Narrow{};
}

void TestProcessEntry::arguments()
{
    QFETCH(std::vector<std::wstring>, wide);
    QFETCH(std::vector<std::string>, narrow);

    g_system.arguments = wide;
    g_system.vector.reserve(wide.size() + 1); // an address of its own, also for no argument
    QCOMPARE(WinMain(nullptr, nullptr, nullptr, 0), kExitCode);
    QCOMPARE(g_programRuns, 1);
    QVERIFY(g_passedArguments == narrow);
    QVERIFY(g_endsWithNull);
    QCOMPARE(g_system.releases, 1);
    QVERIFY(!g_system.otherConversion);
}

void TestProcessEntry::noCommandLine()
{
    g_system.hasCommandLine = false;
    QCOMPARE(WinMain(nullptr, nullptr, nullptr, 0), kFailed);
    QCOMPARE(g_programRuns, 0);
    QCOMPARE(g_system.releases, 0);
}

void TestProcessEntry::textThatCannotBeConverted()
{
    g_system.arguments = {L"a", L"b"};
    g_system.converts = false;
    QCOMPARE(WinMain(nullptr, nullptr, nullptr, 0), kExitCode);
    QVERIFY(g_passedArguments == (std::vector<std::string>{"", ""}));
    QCOMPARE(g_system.releases, 1);
}

QTEST_APPLESS_MAIN(TestProcessEntry)

#include "TestProcessEntry.moc"
