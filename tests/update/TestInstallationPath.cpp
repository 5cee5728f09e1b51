#include "update/InstallationPath.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// Where an update may write.
class TestInstallationPath : public QObject
{
    Q_OBJECT

private slots:
    void plainPaths_data();
    void plainPaths();
    void deviceNames_data();
    void deviceNames();
    void length_data();
    void length();
    void everyOtherCharacterIsRefused();
    void mayBeInstalled_data();
    void mayBeInstalled();
    void plainFolders();
    void linkAmongTheFolders_data();
    void linkAmongTheFolders();
};

void TestInstallationPath::plainPaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isPlain");
    QTest::newRow("a file") << "OvrynDeck2.exe" << true;
    QTest::newRow("in folders") << "platforms/a/b/qwindows.dll" << true;
    QTest::newRow("no extension") << "OvrynDeck2" << true;
    QTest::newRow("every kind of character") << "lib stdc++_x-6.so.1" << true;
    QTest::newRow("points inside") << "a..b/c.tar.gz" << true;
    QTest::newRow("begins with a point") << ".hidden" << true;

    QTest::newRow("empty") << "" << false;
    QTest::newRow("slash alone") << "/" << false;
    QTest::newRow("absolute") << "/etc/passwd" << false;
    QTest::newRow("two slashes first") << "//server/share/file" << false;
    QTest::newRow("backslashes first") << "\\\\server\\share\\file" << false;
    QTest::newRow("backslash") << "folder\\file" << false;
    QTest::newRow("backslash after points") << "..\\file" << false;
    QTest::newRow("long form of Windows") << "\\\\?\\C:\\file" << false;
    QTest::newRow("drive") << "C:/file" << false;
    QTest::newRow("drive without a slash") << "C:file" << false;
    QTest::newRow("alternate stream") << "OvrynDeck2.exe:hidden" << false;
    QTest::newRow("default stream") << "OvrynDeck2.exe::$DATA" << false;
    QTest::newRow("folder above") << "../file" << false;
    QTest::newRow("folder above inside") << "a/../../file" << false;
    QTest::newRow("folder above last") << "a/.." << false;
    QTest::newRow("this folder") << "./file" << false;
    QTest::newRow("this folder inside") << "a/./file" << false;
    QTest::newRow("one point alone") << "." << false;
    QTest::newRow("two points alone") << ".." << false;
    QTest::newRow("three points") << "a/.../file" << false;
    QTest::newRow("empty name inside") << "a//file" << false;
    QTest::newRow("slash last") << "a/" << false;
    QTest::newRow("point last") << "file." << false;
    QTest::newRow("point last in a folder") << "a./file" << false;
    QTest::newRow("blank last") << "file " << false;
    QTest::newRow("blank first") << " file" << false;
    QTest::newRow("blank first in a folder") << "a/ file" << false;
    QTest::newRow("blank last in a folder") << "a /file" << false;
    QTest::newRow("points with a blank") << ".. /file" << false;
    QTest::newRow("blank alone") << " " << false;
    QTest::newRow("home") << "~/file" << false;
    QTest::newRow("short name of Windows") << "CONFIG~1.XML" << false;
    QTest::newRow("percent sign") << "%TEMP%/file" << false;
    QTest::newRow("wildcards") << "a*b?" << false;
    QTest::newRow("line end") << "file\n" << false;
    QTest::newRow("tabulator") << "a\tb" << false;
    QTest::newRow("zero character") << QString::fromLatin1("file\0.txt", 9) << false;
    QTest::newRow("control character") << QString(QChar(0x7F)) << false;
    QTest::newRow("right to left mark") << QStringLiteral("file\u202Etxt.exe") << false;
    QTest::newRow("letter with an accent") << QStringLiteral("caf\u00E9") << false;
    QTest::newRow("Chinese") << QStringLiteral("文件") << false;
    QTest::newRow("full-width digit") << QStringLiteral("file\uFF11") << false;
    QTest::newRow("slash of another script") << QStringLiteral("a\u2215b") << false;
    QTest::newRow("half a character") << QString(QChar(0xD800)) << false;
}

void TestInstallationPath::plainPaths()
{
    QFETCH(QString, path);
    QTEST(isPlainRelativePath(path), "isPlain");
}

void TestInstallationPath::deviceNames_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isPlain");
    QStringList devices{"CON", "PRN", "AUX", "NUL"};
    for (int i = 1; i <= 9; ++i)
        devices << QStringLiteral("COM%1").arg(i) << QStringLiteral("LPT%1").arg(i);
    for (const QString &device : qAsConst(devices)) {
        for (const QString &path : {device, device.toLower(), device + ".txt", device + ".tar.gz", device + " .txt",
                                    QString(device + "/file"), QString("folder/" + device.toLower() + ".dll")})
            QTest::newRow(qPrintable(path)) << path << false;
        for (const QString &path : {device + "x", "x" + device, QString("a." + device), device + "_1.txt"})
            QTest::newRow(qPrintable(path)) << path << true;
    }
}

void TestInstallationPath::deviceNames()
{
    QFETCH(QString, path);
    QTEST(isPlainRelativePath(path), "isPlain");
}

void TestInstallationPath::length_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isPlain");
    QTest::newRow("longest name") << QString(120, 'a') << true;
    QTest::newRow("one more") << QString(121, 'a') << false;
    QTest::newRow("longest path") << QString("ab/").repeated(39) + "abc" << true;
    QTest::newRow("path, one more") << QString("ab/").repeated(39) + "abcd" << false;
    QTest::newRow("a million characters") << QString("ab/").repeated(333333) + "a" << false;
}

void TestInstallationPath::length()
{
    QFETCH(QString, path);
    QTEST(isPlainRelativePath(path), "isPlain");
}

void TestInstallationPath::everyOtherCharacterIsRefused()
{
    const QString allowed = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._+- ");
    for (int code = 0; code <= 0xFFFF; ++code) {
        if (code == '/')
            continue;
        const QString path = QStringLiteral("a%1b").arg(QChar(code));
        QVERIFY2(isPlainRelativePath(path) == allowed.contains(QChar(code)), qPrintable(QString::number(code, 16)));
    }
}

void TestInstallationPath::mayBeInstalled_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("may");
    QTest::newRow("the program") << "OvrynDeck2.exe" << true;
    QTest::newRow("the updater") << "OvrynUpdate.exe" << true;
    QTest::newRow("a file in a folder") << "platforms/qwindows.dll" << true;
    QTest::newRow("the settings") << "config.xml" << false;
    QTest::newRow("the settings in capitals") << "CONFIG.XML" << false;
    QTest::newRow("the settings in both cases") << "Config.Xml" << false;
    QTest::newRow("a file in a folder of the settings' name") << "config.xml/file" << false;
    QTest::newRow("settings of something else") << "plugins/config.xml" << true;
    QTest::newRow("a name that begins like the settings") << "config.xml2" << true;
    QTest::newRow("the folder temp") << "temp" << false;
    QTest::newRow("in temp") << "temp/file" << false;
    QTest::newRow("in TEMP") << "TEMP/file" << false;
    QTest::newRow("in Temp, deeper") << "Temp/exchange/journal.forward" << false;
    QTest::newRow("temp of something else") << "plugins/temp/file" << true;
    QTest::newRow("a name that begins like temp") << "template/file" << true;
    QTest::newRow("not plain") << "../file" << false;
    QTest::newRow("absolute") << "/file" << false;
    QTest::newRow("empty") << "" << false;
}

void TestInstallationPath::mayBeInstalled()
{
    QFETCH(QString, path);
    QTEST(::mayBeInstalled(path), "may");
}

void TestInstallationPath::plainFolders()
{
    const QTemporaryDir world;
    const QString root = QDir(world.path()).canonicalPath();
    QVERIFY(QDir(root).mkpath("a/b"));
    QVERIFY(leadsThroughPlainFolders(root, "file"));
    QVERIFY(leadsThroughPlainFolders(root, "a/b/file"));
    QVERIFY(leadsThroughPlainFolders(root, "a/missing/deeper/file"));
    QVERIFY(leadsThroughPlainFolders(root, "missing/file"));
}

void TestInstallationPath::linkAmongTheFolders_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("linksTo");
    QTest::addColumn<QString>("path");
    QTest::newRow("out of the installation") << "a/link"
                                             << "../../outside"
                                             << "a/link/file";
    QTest::newRow("absolute") << "a/link"
                              << "/tmp"
                              << "a/link/file";
    QTest::newRow("first folder") << "link"
                                  << "../outside"
                                  << "link/b/file";
    QTest::newRow("before missing folders") << "a/link"
                                            << "../../outside"
                                            << "a/link/missing/more/file";
    QTest::newRow("within the installation") << "a/link"
                                             << "b"
                                             << "a/link/file";
    QTest::newRow("into nothing") << "a/link"
                                  << "nothing"
                                  << "a/link/file";
    QTest::newRow("in a circle") << "a/link"
                                 << "link"
                                 << "a/link/file";
}

void TestInstallationPath::linkAmongTheFolders()
{
    QFETCH(QString, link);
    QFETCH(QString, linksTo);
    QFETCH(QString, path);
#ifdef Q_OS_WIN
    QSKIP("a link of this system needs a right that a test does not have");
#endif
    const QTemporaryDir world;
    const QString root = QDir(world.path()).canonicalPath() + "/installation";
    QVERIFY(QDir().mkpath(root + "/a/b"));
    QVERIFY(QDir().mkpath(root + "/../outside"));
    QVERIFY(leadsThroughPlainFolders(root, path));
    QVERIFY(QFile::link(linksTo, root + "/" + link));
    QVERIFY(!leadsThroughPlainFolders(root, path));
}

QTEST_GUILESS_MAIN(TestInstallationPath)
#include "TestInstallationPath.moc"
