#include "windows/ShippedProgram.h"

#include <QDate>
#include <QDirIterator>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>

#include <memory>

/// The installer, silently: what it puts where, how it takes the place of a running older version, and what the
/// uninstaller leaves.
class TestInstaller : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void installs_data();
    void installs();
    void installedProgramStarts();
    void noAutoStartStaysSo();
    void upgradeOfARunningProgram();
    void upgradeKeepsSettings();
    void uninstallKeepsSettings();
    void uninstallRemovesSettings();
    void uninstallOfARunningProgram();
    void filesOfOthersStay();

private:
    [[nodiscard]] int run(const QString &program, const QString &arguments);
    [[nodiscard]] int install(const QString &setup, const QString &options = {});
    [[nodiscard]] int uninstall(const QString &options = {});
    [[nodiscard]] QString installed(const QString &name) const { return target + QLatin1Char('/') + name; }

    std::unique_ptr<QTemporaryDir> place;
    QString target;
    std::unique_ptr<ShippedProgram> program;
};

namespace
{

const QString kOlder = QStringLiteral(OVRYN_OLDER_SETUP);
const QString kSetup = QStringLiteral(OVRYN_SETUP);
const QString kUninstallKey =
    QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\OvrynDeck2");
const QString kRunKey = QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run");
const QString kShortcut = QStringLiteral("/OvrynDeck II.lnk");

QString today()
{
    return QDate::currentDate().toString(QStringLiteral("yyyy/MM/dd"));
}

QString registryValue(const QString &key, const char *name)
{
    return QSettings(key, QSettings::NativeFormat).value(QLatin1String(name)).toString();
}

bool hasShortcut(QStandardPaths::StandardLocation where)
{
    return QFile::exists(QStandardPaths::writableLocation(where) + kShortcut);
}

/// Every file below a folder by its relative name, with its content.
QMap<QString, QByteArray> contents(const QString &folder)
{
    QMap<QString, QByteArray> all;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly))
            all.insert(QDir(folder).relativeFilePath(file.fileName()), file.readAll());
    }
    return all;
}

} // namespace

void TestInstaller::init()
{
    place = std::make_unique<QTemporaryDir>();
    target = place->filePath(QStringLiteral("Program Files 程序"));
    program = std::make_unique<ShippedProgram>(target);
}

void TestInstaller::cleanup()
{
    program.reset();
    if (QFile::exists(installed(QStringLiteral("Uninstall.exe"))))
        (void)uninstall(QStringLiteral("/REMOVESETTINGS"));
}

/// The arguments as they stand: the system's installers want no quotes around the folder.
int TestInstaller::run(const QString &executable, const QString &arguments)
{
    QProcess process;
    program->prepare(process);
    process.setProgram(executable);
    process.setNativeArguments(arguments);
    process.start();
    if (process.waitForFinished(4 * kPatienceMs))
        return process.exitCode();
    process.kill();
    process.waitForFinished(kPatienceMs);
    return -1;
}

int TestInstaller::install(const QString &setup, const QString &options)
{
    return run(setup, QStringLiteral("/S %1 /D=%2").arg(options, QDir::toNativeSeparators(target)));
}

/// The uninstaller copies itself and returns at once, unless it is told where it stands.
int TestInstaller::uninstall(const QString &options)
{
    return run(installed(QStringLiteral("Uninstall.exe")),
               QStringLiteral("/S %1 _?=%2").arg(options, QDir::toNativeSeparators(target)));
}

void TestInstaller::installs_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<bool>("desktop");
    QTest::addColumn<bool>("autoStart");
    QTest::newRow("as it is") << QString() << false << true;
    QTest::newRow("with a shortcut on the desktop") << QStringLiteral("/DESKTOP") << true << true;
    QTest::newRow("without the start with Windows") << QStringLiteral("/NOAUTOSTART") << false << false;
}

void TestInstaller::installs()
{
    QFETCH(QString, options);
    QFETCH(bool, desktop);
    QFETCH(bool, autoStart);
    QCOMPARE(install(kSetup, options), 0);
    QMap<QString, QByteArray> now = contents(target);
    const QByteArray settings = now.take(QStringLiteral("config.xml"));
    QVERIFY(!now.take(QStringLiteral("Uninstall.exe")).isEmpty());
    QCOMPARE(now.keys(), contents(QStringLiteral(OVRYN_SHIPPED_FOLDER)).keys());
    QVERIFY(now == contents(QStringLiteral(OVRYN_SHIPPED_FOLDER)));

    QVERIFY(hasShortcut(QStandardPaths::ApplicationsLocation));
    QCOMPARE(hasShortcut(QStandardPaths::DesktopLocation), desktop);
    const QString native = QDir::toNativeSeparators(installed(QStringLiteral("OvrynDeck2.exe")));
    QCOMPARE(registryValue(kRunKey, "_OvrynDeck2"), autoStart ? native : QString());
    QVERIFY(settings.contains(autoStart ? "StartOnBoot=\"1\"" : "StartOnBoot=\"0\""));
    QCOMPARE(registryValue(kUninstallKey, "DisplayVersion"), QStringLiteral(OVRYN_VERSION));
    QCOMPARE(registryValue(kUninstallKey, "InstallLocation"), QDir::toNativeSeparators(target));
}

void TestInstaller::installedProgramStarts()
{
    QCOMPARE(install(kSetup), 0);
    QVERIFY(program->start());
    QTRY_VERIFY_WITH_TIMEOUT(program->mainWindow() != nullptr, kPatienceMs);
}

/// The program writes the Run value at each close, as its settings say.
void TestInstaller::noAutoStartStaysSo()
{
    QCOMPARE(install(kSetup, QStringLiteral("/NOAUTOSTART")), 0);
    QVERIFY(program->start());
    QTRY_VERIFY_WITH_TIMEOUT(program->mainWindow() != nullptr, kPatienceMs);
    program->demandEnd();
    QVERIFY(program->waitForEnd());
    QCOMPARE(program->configText(QStringLiteral("LastCloseDate")), today());
    QCOMPARE(registryValue(kRunKey, "_OvrynDeck2"), QString());
}

void TestInstaller::upgradeOfARunningProgram()
{
    QCOMPARE(install(kOlder, QStringLiteral("/DESKTOP")), 0);
    QCOMPARE(registryValue(kUninstallKey, "DisplayVersion"), QStringLiteral(OVRYN_OLDER_VERSION));
    QVERIFY(QFile::exists(installed(QStringLiteral(OVRYN_OLDER_FILE))));
    QVERIFY(program->start());
    QTRY_VERIFY_WITH_TIMEOUT(program->mainWindow() != nullptr, kPatienceMs);

    QCOMPARE(install(kSetup), 0);
    QVERIFY(program->waitForEnd());
    QCOMPARE(program->exitCode(), 0); // it was not killed
    QCOMPARE(program->configText(QStringLiteral("LastCloseDate")), today());
    QVERIFY(!QFile::exists(installed(QStringLiteral(OVRYN_OLDER_FILE))));
    QVERIFY(QFile::exists(installed(QStringLiteral("OvrynDeck2.exe"))));
    QCOMPARE(registryValue(kUninstallKey, "DisplayVersion"), QStringLiteral(OVRYN_VERSION));
    QVERIFY(hasShortcut(QStandardPaths::DesktopLocation)); // what the user chose once

    QTRY_VERIFY_WITH_TIMEOUT(ShippedProgram::anyMainWindow() != nullptr, kPatienceMs); // it runs again
    program->demandEnd();
    QTRY_VERIFY_WITH_TIMEOUT(ShippedProgram::anyMainWindow() == nullptr, kPatienceMs);
}

void TestInstaller::upgradeKeepsSettings()
{
    QCOMPARE(install(kOlder), 0);
    const QByteArray mine = quietConfig("1", "<GPU GpuName=\"Mine\" SubSystemId=\"7\"/>");
    program->writeFile(QStringLiteral("config.xml"), mine);
    program->writeFile(QStringLiteral("temp/update_info.xml"), "<Update/>");
    QCOMPARE(install(kSetup), 0);
    QCOMPARE(program->contentOf(QStringLiteral("config.xml")), mine);
    QCOMPARE(program->contentOf(QStringLiteral("temp/update_info.xml")), QByteArray("<Update/>"));
    QVERIFY(ShippedProgram::anyMainWindow() == nullptr); // it did not run before
}

void TestInstaller::uninstallKeepsSettings()
{
    QCOMPARE(install(kSetup, QStringLiteral("/DESKTOP")), 0);
    program->writeFile(QStringLiteral("temp/update_info.xml"), "<Update/>");
    QCOMPARE(uninstall(), 0);
    // The uninstaller itself stays where it was told its place; without that its copy removes it.
    QFile::remove(installed(QStringLiteral("Uninstall.exe")));
    QCOMPARE(contents(target).keys(), QStringList(QStringLiteral("config.xml")));
    QVERIFY(!hasShortcut(QStandardPaths::ApplicationsLocation));
    QVERIFY(!hasShortcut(QStandardPaths::DesktopLocation));
    QCOMPARE(registryValue(kRunKey, "_OvrynDeck2"), QString());
    QCOMPARE(registryValue(kUninstallKey, "DisplayVersion"), QString());
}

void TestInstaller::uninstallRemovesSettings()
{
    QCOMPARE(install(kSetup), 0);
    QCOMPARE(run(installed(QStringLiteral("Uninstall.exe")), QStringLiteral("/S /REMOVESETTINGS")), 0);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(target), kPatienceMs); // by its copy, which works on alone
}

void TestInstaller::uninstallOfARunningProgram()
{
    QCOMPARE(install(kSetup), 0);
    QVERIFY(program->start());
    QTRY_VERIFY_WITH_TIMEOUT(program->mainWindow() != nullptr, kPatienceMs);
    QCOMPARE(uninstall(), 0);
    QVERIFY(program->waitForEnd());
    QCOMPARE(program->exitCode(), 0);
    QVERIFY(!QFile::exists(installed(QStringLiteral("OvrynDeck2.exe"))));
    QCOMPARE(registryValue(kRunKey, "_OvrynDeck2"), QString());
}

void TestInstaller::filesOfOthersStay()
{
    program->writeFile(QStringLiteral("other.dll"), "another program's");
    program->writeFile(QStringLiteral("licenses/mine.txt"), "mine");
    QCOMPARE(install(kSetup), 0);
    QCOMPARE(uninstall(QStringLiteral("/REMOVESETTINGS")), 0);
    QFile::remove(installed(QStringLiteral("Uninstall.exe")));
    QCOMPARE(contents(target).keys(),
             QStringList({QStringLiteral("licenses/mine.txt"), QStringLiteral("other.dll")}));
}

QTEST_MAIN(TestInstaller)
#include "TestInstaller.moc"
