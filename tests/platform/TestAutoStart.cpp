#include "platform/AutoStart.h"
#include "platform/AutoStartValue.h"
#include "platform/DesktopEntry.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#ifdef Q_OS_UNIX
#include "config/NoMoreFiles.h"
#endif

/// The program's start with the session: the entry of a desktop's autostart folder, and the value of the Run key.
class TestAutoStart : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void runValue_data();
    void runValue();
    void runValueReplacesAndIsRemoved();
    void runValueRemovedWhereThereIsNone();
    void twoRunKeys_data();
    void twoRunKeys();

    void execLine_data();
    void execLine();
    void execIsReadBack_data();
    void execIsReadBack();

#ifdef Q_OS_UNIX
    void entryIsWritten();
    void entryReplacesAnOlderOne();
    void entryIsRemoved();
    void removalWithNothingThere();
    void folderOfTheUser_data();
    void folderOfTheUser();
    void otherEntriesAreLeftAlone();
    void folderInItsPlace_data();
    void folderInItsPlace();
    void linkInItsPlace_data();
    void linkInItsPlace();
    void failingWriteKeepsTheFormerEntry();
    void noFolderCanBeMade();

private:
    [[nodiscard]] QString configHome() const
    {
        return place->filePath(QStringLiteral("config"));
    }
    [[nodiscard]] QString autostartFolder() const
    {
        return configHome() + QStringLiteral("/autostart");
    }
    [[nodiscard]] QString entryFile() const
    {
        return autostartFolder() + QStringLiteral("/_OvrynDeck2.desktop");
    }
    [[nodiscard]] QStringList inFolder() const
    {
        return QDir(autostartFolder())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
#endif

private:
    std::unique_ptr<QTemporaryDir> place;
    QByteArray formerConfigHome;
    QByteArray formerHome;
};

namespace
{

const QString kProgram = QStringLiteral("/opt/deck/OvrynDeck2");

/// Settings files that can be read but not written, as the machine's Run key for a user who is no administrator.
QSettings::Format refusingFormat()
{
    static const QSettings::Format format = QSettings::registerFormat(
        QStringLiteral("refusing"),
        [](QIODevice &device, QSettings::SettingsMap &values) {
            const QSettings file(static_cast<QFileDevice &>(device).fileName(), QSettings::IniFormat);
            for (const QString &key : file.allKeys())
                values.insert(key, file.value(key));
            return true;
        },
        [](QIODevice &, const QSettings::SettingsMap &) { return false; });
    return format;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

QString valueOf(const QByteArray &entry, const char *key)
{
    for (const QByteArray &line : entry.split('\n')) {
        if (line.startsWith(QByteArray(key) + '='))
            return QString::fromUtf8(line.mid(int(strlen(key)) + 1));
    }
    return QStringLiteral("no such key");
}

/// The arguments of a command line, read the way sessions read it: first the escapes of every value, then the codes
/// after "%", then the quotes. Empty when it breaks a rule.
QStringList argumentsOf(const QString &exec)
{
    QString value;
    for (int i = 0; i < exec.size(); ++i) {
        if (exec.at(i) != QLatin1Char('\\')) {
            value += exec.at(i);
            continue;
        }
        static const QMap<QChar, QChar> escapes = {{'s', ' '}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'\\', '\\'}};
        if (++i == exec.size() || !escapes.contains(exec.at(i)))
            return {};
        value += escapes.value(exec.at(i));
    }
    QString expanded;
    for (int i = 0; i < value.size(); ++i) {
        if (value.at(i) == QLatin1Char('%') && (++i == value.size() || value.at(i) != QLatin1Char('%')))
            return {};
        expanded += value.at(i);
    }
    QStringList arguments;
    QString argument;
    bool quoted = false;
    bool any = false;
    for (int i = 0; i < expanded.size(); ++i) {
        const QChar sign = expanded.at(i);
        if (sign == QLatin1Char('"')) {
            quoted = !quoted;
            any = true;
        } else if (!quoted && sign == QLatin1Char(' ')) {
            arguments << argument;
            argument.clear();
            any = false;
        } else if (quoted && sign == QLatin1Char('\\')) {
            if (++i == expanded.size() || !QStringLiteral("\"`$\\").contains(expanded.at(i)))
                return {};
            argument += expanded.at(i);
        } else if ((quoted ? QStringLiteral("`$") : QStringLiteral("\t\n'\\><~|&;$*?#()`")).contains(sign)) {
            return {}; // reserved
        } else {
            argument += sign;
            any = true;
        }
    }
    if (quoted)
        return {};
    if (any)
        arguments << argument;
    return arguments;
}

} // namespace

void TestAutoStart::init()
{
    place = std::make_unique<QTemporaryDir>();
    QVERIFY(place->isValid());
    formerConfigHome = qgetenv("XDG_CONFIG_HOME");
    formerHome = qgetenv("HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(place->filePath(QStringLiteral("config"))));
    qputenv("HOME", QFile::encodeName(place->filePath(QStringLiteral("home"))));
}

void TestAutoStart::cleanup()
{
    qputenv("XDG_CONFIG_HOME", formerConfigHome);
    qputenv("HOME", formerHome);
    place.reset();
}

// ---- the Run key ------------------------------------------------------------------------------------

void TestAutoStart::runValue_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("value");
    QTest::newRow("slashes become backslashes") << "C:/Program Files/Deck/OvrynDeck2.exe"
                                                << "C:\\Program Files\\Deck\\OvrynDeck2.exe";
    QTest::newRow("on a share") << "//host/share/OvrynDeck2.exe"
                                << "\\\\host\\share\\OvrynDeck2.exe";
    QTest::newRow("nothing is quoted") << "C:/a b, c=\"%d%\"/x.exe"
                                       << "C:\\a b, c=\"%d%\"\\x.exe";
    QTest::newRow("Chinese") << QStringLiteral("D:/显卡/OvrynDeck2.exe")
                             << QStringLiteral("D:\\显卡\\OvrynDeck2.exe");
}

void TestAutoStart::runValue()
{
    QFETCH(QString, path);
    const QString file = place->filePath(QStringLiteral("run.ini"));
    {
        QSettings key(file, QSettings::IniFormat);
        storeAutoStartValue(key, true, path);
    }
    const QSettings key(file, QSettings::IniFormat);
    QCOMPARE(key.allKeys(), QStringList("_OvrynDeck2"));
    QTEST(key.value(QStringLiteral("_OvrynDeck2")).toString(), "value");
}

void TestAutoStart::runValueReplacesAndIsRemoved()
{
    QSettings key(place->filePath(QStringLiteral("run.ini")), QSettings::IniFormat);
    key.setValue(QStringLiteral("Other"), QStringLiteral("other.exe"));
    storeAutoStartValue(key, true, QStringLiteral("C:/old.exe"));
    storeAutoStartValue(key, true, QStringLiteral("C:/new.exe"));
    QCOMPARE(key.value(QStringLiteral("_OvrynDeck2")).toString(), QStringLiteral("C:\\new.exe"));
    storeAutoStartValue(key, false, QStringLiteral("C:/new.exe"));
    QCOMPARE(key.allKeys(), QStringList("Other"));
}

void TestAutoStart::runValueRemovedWhereThereIsNone()
{
    QSettings key(place->filePath(QStringLiteral("run.ini")), QSettings::IniFormat);
    storeAutoStartValue(key, false, kProgram);
    QCOMPARE(key.allKeys(), QStringList());
    QCOMPARE(key.status(), QSettings::NoError);
}

// ---- the command line of an entry ---------------------------------------------------------------------

void TestAutoStart::twoRunKeys_data()
{
    const QString path = QStringLiteral("\\opt\\deck\\OvrynDeck2");
    const QString former = QStringLiteral("C:\\Program Files\\OvrynDeck2.exe");
    const QString none;
    QTest::addColumn<bool>("refuses");
    QTest::addColumn<bool>("startOnBoot");
    QTest::addColumn<QString>("machineBefore");
    QTest::addColumn<QString>("userBefore");
    QTest::addColumn<QString>("machineAfter");
    QTest::addColumn<QString>("userAfter");
    //                                                refuses  start    before: machine, user   after: machine, user
    QTest::newRow("on, as administrator") << false << true << none << none << path << none;
    QTest::newRow("off, as administrator") << false << false << path << none << none << none;
    QTest::newRow("on, was the user's") << false << true << none << path << path << none;
    QTest::newRow("off, was the user's") << false << false << none << path << none << none;
    QTest::newRow("on, refused") << true << true << none << none << none << path;
    QTest::newRow("off, refused") << true << false << none << path << none << none;
    QTest::newRow("on, refused, but there") << true << true << path << none << path << none;
    QTest::newRow("on, refused, but there and twice") << true << true << path << path << path << none;
    QTest::newRow("on, refused, another there") << true << true << former << none << former << path;
}

void TestAutoStart::twoRunKeys()
{
    QFETCH(bool, refuses);
    QFETCH(bool, startOnBoot);
    QFETCH(QString, machineBefore);
    QFETCH(QString, userBefore);
    const QString name = QString::fromLatin1(kAutoStartName);
    const QString machineFile = place->filePath(QStringLiteral("machine"));
    const QString userFile = place->filePath(QStringLiteral("user"));
    const auto prepare = [&](const QString &file, const QString &value) {
        QSettings key(file, QSettings::IniFormat);
        key.setValue(QStringLiteral("another"), QStringLiteral("program"));
        if (!value.isEmpty())
            key.setValue(name, value);
    };
    prepare(machineFile, machineBefore);
    prepare(userFile, userBefore);

    {
        QSettings machine(machineFile, refuses ? refusingFormat() : QSettings::IniFormat);
        QSettings user(userFile, QSettings::IniFormat);
        storeAutoStartValues(machine, user, startOnBoot, kProgram);
    }
    // Copies, since the toolkit remembers for a name what a refused write should have made of its file.
    QVERIFY(QFile::copy(machineFile, machineFile + QStringLiteral(".copy")));
    QVERIFY(QFile::copy(userFile, userFile + QStringLiteral(".copy")));
    const QSettings machine(machineFile + QStringLiteral(".copy"), QSettings::IniFormat);
    const QSettings user(userFile + QStringLiteral(".copy"), QSettings::IniFormat);
    QTEST(machine.value(name).toString(), "machineAfter");
    QTEST(user.value(name).toString(), "userAfter");
    QCOMPARE(machine.value(QStringLiteral("another")).toString(), QStringLiteral("program"));
    QCOMPARE(user.value(QStringLiteral("another")).toString(), QStringLiteral("program"));
}

void TestAutoStart::execLine_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("exec");
    QTest::newRow("plain") << kProgram << R"("/opt/deck/OvrynDeck2")";
    QTest::newRow("spaces") << "/opt/my deck/a b"
                            << R"("/opt/my deck/a b")";
    QTest::newRow("quotes") << R"(/opt/"deck"/x)"
                            << R"("/opt/\\"deck\\"/x")";
    QTest::newRow("percent") << "/opt/100%/%f"
                             << R"("/opt/100%%/%%f")";
    QTest::newRow("backslash") << R"(/opt/a\b)"
                               << R"("/opt/a\\\\b")";
    QTest::newRow("dollar and backquote") << "/opt/$HOME/`id`"
                                          << R"("/opt/\\$HOME/\\`id\\`")";
    QTest::newRow("line ends and tabs") << "/opt/a\nb\tc\rd"
                                        << R"("/opt/a\nb\tc\rd")";
    QTest::newRow("Chinese") << QStringLiteral("/opt/显卡/x") << QStringLiteral("\"/opt/显卡/x\"");
}

void TestAutoStart::execLine()
{
    QFETCH(QString, path);
    QTEST(desktopExecOf(path), "exec");
}

void TestAutoStart::execIsReadBack_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"/opt/deck/OvrynDeck2", "/a b/c  d", "/'single'/x", "/\"double\"/x", "/100%/%%/%f%U",
                             "/a\\b\\\\c\\", "/$x/${y}/`z`", "/a\nb", "/a\tb", "/a\\nb", "/~/*?[]{}()<>|&;#!=,",
                             "/\xE6\x98\xBE\xE5\x8D\xA1/\xC3\xA4\xF0\x9F\x98\x80", "/ends in blank "})
        QTest::newRow(path) << QString::fromUtf8(path);
}

void TestAutoStart::execIsReadBack()
{
    QFETCH(QString, path);
    const QByteArray entry = desktopEntryOf(QStringLiteral("Deck"), path);
    QCOMPARE(entry.count('\n'), 5); // none of the path's own
    QCOMPARE(argumentsOf(valueOf(entry, "Exec")), QStringList(path));
}

#ifdef Q_OS_UNIX
// ---- the entry in its folder --------------------------------------------------------------------------

void TestAutoStart::entryIsWritten()
{
    setStartOnBoot(true, kProgram);
    const QByteArray entry = contentOf(entryFile());
    QVERIFY(entry.startsWith("[Desktop Entry]\n"));
    QCOMPARE(valueOf(entry, "Type"), QStringLiteral("Application"));
    QCOMPARE(valueOf(entry, "Name"), QStringLiteral("OvrynDeck II"));
    QCOMPARE(argumentsOf(valueOf(entry, "Exec")), QStringList(kProgram));
    QCOMPARE(inFolder(), QStringList("_OvrynDeck2.desktop")); // nothing half done is left
}

void TestAutoStart::entryReplacesAnOlderOne()
{
    setStartOnBoot(true, QStringLiteral("/old/place/with/a/much/longer/path/OvrynDeck2"));
    QFile reader(entryFile()); // a session that reads it meanwhile
    QVERIFY(reader.open(QIODevice::ReadOnly));
    setStartOnBoot(true, kProgram);
    QCOMPARE(contentOf(entryFile()), desktopEntryOf(QStringLiteral("OvrynDeck II"), kProgram));
    QVERIFY(reader.readAll().contains("/old/place")); // the old one whole, not a mixture
    QCOMPARE(inFolder(), QStringList("_OvrynDeck2.desktop"));
}

void TestAutoStart::entryIsRemoved()
{
    setStartOnBoot(true, kProgram);
    setStartOnBoot(false, QStringLiteral("/another/path"));
    QCOMPARE(inFolder(), QStringList());
}

void TestAutoStart::removalWithNothingThere()
{
    setStartOnBoot(false, kProgram);
    QVERIFY(!QFileInfo::exists(configHome())); // and no folder is made for it
}

void TestAutoStart::folderOfTheUser_data()
{
    QTest::addColumn<QByteArray>("configHome"); // "@" stands for the test's own place
    QTest::addColumn<QString>("entry");
    QTest::newRow("XDG_CONFIG_HOME") << QByteArray("@/some where") << "some where/autostart/_OvrynDeck2.desktop";
    QTest::newRow("unset") << QByteArray() << "home/.config/autostart/_OvrynDeck2.desktop";
    QTest::newRow("relative, which sessions pass over")
        << QByteArray("settings") << "home/.config/autostart/_OvrynDeck2.desktop";
}

void TestAutoStart::folderOfTheUser()
{
    QFETCH(QByteArray, configHome);
    QFETCH(QString, entry);
    qputenv("XDG_CONFIG_HOME", configHome.replace('@', QFile::encodeName(place->path())));
    setStartOnBoot(true, kProgram);
    QVERIFY(QFileInfo(place->filePath(entry)).isFile());
    setStartOnBoot(false, kProgram);
    QVERIFY(!QFileInfo::exists(place->filePath(entry)));
}

void TestAutoStart::otherEntriesAreLeftAlone()
{
    write(autostartFolder() + QStringLiteral("/OvrynDeck2.desktop"), "mine");
    setStartOnBoot(true, kProgram);
    setStartOnBoot(false, kProgram);
    QCOMPARE(inFolder(), QStringList("OvrynDeck2.desktop"));
    QCOMPARE(contentOf(autostartFolder() + QStringLiteral("/OvrynDeck2.desktop")), QByteArray("mine"));
}

void TestAutoStart::folderInItsPlace_data()
{
    QTest::addColumn<bool>("startOnBoot");
    QTest::addColumn<bool>("empty");
    QTest::newRow("to be written") << true << false;
    QTest::newRow("to be removed") << false << false;
    QTest::newRow("empty, to be written") << true << true;
    QTest::newRow("empty, to be removed") << false << true;
}

void TestAutoStart::folderInItsPlace()
{
    QFETCH(bool, startOnBoot);
    QFETCH(bool, empty);
    QVERIFY(QDir().mkpath(entryFile()));
    if (!empty)
        write(entryFile() + QStringLiteral("/note"), "mine");
    setStartOnBoot(startOnBoot, kProgram);
    QVERIFY(QFileInfo(entryFile()).isDir());
    QCOMPARE(contentOf(entryFile() + QStringLiteral("/note")), empty ? QByteArray() : QByteArray("mine"));
    QCOMPARE(inFolder(), QStringList("_OvrynDeck2.desktop"));
}

void TestAutoStart::linkInItsPlace_data()
{
    QTest::addColumn<bool>("startOnBoot");
    QTest::addColumn<QString>("target"); // in the test's place
    for (const bool startOnBoot : {true, false}) {
        const QByteArray end = startOnBoot ? ", to be written" : ", to be removed";
        QTest::newRow("to a file" + end) << startOnBoot << "precious";
        QTest::newRow("to a folder" + end) << startOnBoot << "folder";
        QTest::newRow("to nothing" + end) << startOnBoot << "missing";
    }
}

void TestAutoStart::linkInItsPlace()
{
    QFETCH(bool, startOnBoot);
    QFETCH(QString, target);
    write(place->filePath(QStringLiteral("precious")), "mine");
    write(place->filePath(QStringLiteral("folder/note")), "mine");
    QVERIFY(QDir().mkpath(autostartFolder()));
    QVERIFY(QFile::link(place->filePath(target), entryFile()));
    setStartOnBoot(startOnBoot, kProgram);
    QCOMPARE(contentOf(place->filePath(QStringLiteral("precious"))), QByteArray("mine"));
    QCOMPARE(contentOf(place->filePath(QStringLiteral("folder/note"))), QByteArray("mine"));
    QVERIFY(!QFileInfo::exists(place->filePath(QStringLiteral("missing"))));
    QVERIFY(!QFileInfo(entryFile()).isSymLink());
    QCOMPARE(QFileInfo(entryFile()).isFile(), startOnBoot);
}

void TestAutoStart::failingWriteKeepsTheFormerEntry()
{
    setStartOnBoot(true, QStringLiteral("/old/OvrynDeck2"));
    const QByteArray former = contentOf(entryFile());
    {
        const NoMoreFiles noMoreFiles;
        setStartOnBoot(true, kProgram);
    }
    QVERIFY(former.contains("/old/"));
    QCOMPARE(contentOf(entryFile()), former);
    QCOMPARE(inFolder(), QStringList("_OvrynDeck2.desktop"));
}

void TestAutoStart::noFolderCanBeMade()
{
    write(configHome(), "a file where the folder would be");
    setStartOnBoot(true, kProgram);
    setStartOnBoot(false, kProgram);
    QCOMPARE(contentOf(configHome()), QByteArray("a file where the folder would be"));
}
#endif

QTEST_APPLESS_MAIN(TestAutoStart)
#include "TestAutoStart.moc"
