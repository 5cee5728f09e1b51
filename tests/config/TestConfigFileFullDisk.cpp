#include "config/ConfigFileTest.h"
#include "config/FileSizeLimit.h"
#include "config/NoMoreFiles.h"
#include "config/SampleConfig.h"
#include "config/SmallDisk.h"

#include <QDateTime>
#include <QtTest>

/// The settings file when the disk is full or fails, or when the file can't be read.
class TestConfigFileFullDisk : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void fullDisk_data();
    void fullDisk();
    void enoughRoom();
    void brokenFileOnAFullDisk();
    void diskThatFillsUpInTheMiddle_data();
    void diskThatFillsUpInTheMiddle();
    void firstFileThatDoesNotFit();
    void syncedBeforeItIsClosed();
    void syncThatFails();
    void freshFileIsSynced();
    void unreadableFileIsNotReplaced_data();
    void unreadableFileIsNotReplaced();
    void unreadableForAMoment();
};

namespace
{

constexpr int kMany = 20; ///< cards; as many take several blocks of the disk

void addCards(Ovryn_ConfigFile &config, int count)
{
    for (int card = 0; card < count; ++card)
        config.setMonitorModule(QStringLiteral("card %1").arg(card), 1, 77);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void write(const QString &path, const QByteArray &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())
        qFatal("cannot write %s", qPrintable(path));
    file.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(4, 5)), QFileDevice::FileModificationTime);
}

/// A new or changed file has another time.
bool isUntouched(const QString &path)
{
    return QFileInfo(path).lastModified() == QDateTime(QDate(2001, 2, 3), QTime(4, 5));
}

bool knowsCard(const Ovryn_ConfigFile &config, const QString &name)
{
    quint32 selectOption = 0;
    return config.getMonitorModule(name, 1, selectOption) && selectOption == 77;
}

/// The file's content at each call of the stand-in for the sync.
QByteArrayList synced;
bool syncSucceeds = true;

bool recordSync(QFile &file)
{
    synced.append(file.isOpen() ? contentOf(file.fileName()) : QByteArray("closed"));
    return syncSucceeds;
}

} // namespace

void TestConfigFileFullDisk::fullDisk_data()
{
    QTest::addColumn<int>("cards");
    QTest::addColumn<int>("freed"); ///< bytes of the full disk
    QTest::newRow("no byte left") << 0 << 0;
    QTest::newRow("no byte left, and the settings have grown") << kMany << 0;
    QTest::newRow("room for a part of them") << kMany << 8192;
}

void TestConfigFileFullDisk::fullDisk()
{
#ifdef Q_OS_LINUX
    QFETCH(int, cards);
    QFETCH(int, freed);
    const SmallDisk disk;
    if (!disk.isThere())
        QSKIP("only root can have a small disk");
    const QString path = disk.filePath(QStringLiteral("config.xml"));
    write(path, kSampleConfig);
    Ovryn_ConfigFile config(path);
    QVERIFY(config.load());
    disk.fill();
    disk.free(freed);
    addCards(config, cards);
    config.setNotPromptHPS(true);
    QVERIFY(!config.save());
    QVERIFY(isUntouched(path)); // the old one was never removed
    QCOMPARE(contentOf(path), kSampleConfig);

    disk.free(48 * 1024); // memory keeps the settings
    QVERIFY(config.save());
    Ovryn_ConfigFile again(path);
    QVERIFY(again.load());
    QCOMPARE(knowsCard(again, QStringLiteral("card 0")), cards > 0);
#else
    QSKIP("needs a small disk");
#endif
}

void TestConfigFileFullDisk::enoughRoom()
{
#ifdef Q_OS_LINUX
    const SmallDisk disk;
    if (!disk.isThere())
        QSKIP("only root can have a small disk");
    const QString path = disk.filePath(QStringLiteral("config.xml"));
    write(path, kSampleConfig);
    Ovryn_ConfigFile config(path);
    QVERIFY(config.load());
    disk.fill();
    disk.free(4096); // a block, which is more than the file has
    config.setMonitorModule(QStringLiteral("GeForce GTX 1070 Ti"), 286094199, 5);
    QVERIFY(config.save());
    QVERIFY(contentOf(path).contains("SelectOption=\"5\""));
#else
    QSKIP("needs a small disk");
#endif
}

void TestConfigFileFullDisk::brokenFileOnAFullDisk()
{
#ifdef Q_OS_LINUX
    const SmallDisk disk;
    if (!disk.isThere())
        QSKIP("only root can have a small disk");
    const QString path = disk.filePath(QStringLiteral("config.xml"));
    write(path, "<OvrynParameter>");
    disk.fill();
    Ovryn_ConfigFile config(path);
    QVERIFY(!config.load()); // no room for the fresh one
    QCOMPARE(contentOf(path), QByteArray("<OvrynParameter>"));
#else
    QSKIP("needs a small disk");
#endif
}

void TestConfigFileFullDisk::diskThatFillsUpInTheMiddle_data()
{
    QTest::addColumn<int>("cards");
    QTest::newRow("in the first block") << 1;
    QTest::newRow("in a later one") << kMany;
}

void TestConfigFileFullDisk::diskThatFillsUpInTheMiddle()
{
#ifdef Q_OS_UNIX
    QFETCH(int, cards);
    folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path());
    QVERIFY(config.load());
    addCards(config, cards);
    {
        const FileSizeLimit limit(kSampleConfig.size());
        QVERIFY(!config.save());
    }
    QCOMPARE(folder->text(), kSampleConfig); // put back
    QVERIFY(config.save());
    QVERIFY(folder->gpus().size() == 2 + cards);
#else
    QSKIP("needs a limit of file sizes");
#endif
}

void TestConfigFileFullDisk::firstFileThatDoesNotFit()
{
#ifdef Q_OS_UNIX
    Ovryn_ConfigFile config(folder->path());
    {
        const FileSizeLimit limit(10);
        QVERIFY(!config.load()); // a fresh file can't be written
    }
    QVERIFY(!folder->exists());
    GeneralSettingInfo general;
    QVERIFY(!config.getGeneralSetting(general));
#else
    QSKIP("needs a limit of file sizes");
#endif
}

void TestConfigFileFullDisk::syncedBeforeItIsClosed()
{
    folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path(), recordSync);
    QVERIFY(config.load());
    config.setLastCheckDate(QDate(2030, 1, 2));
    synced.clear();
    QVERIFY(config.save());
    QCOMPARE(synced, QByteArrayList{folder->text()}); // all of it was in the file then
    QVERIFY(folder->text().contains("2030/01/02"));
}

void TestConfigFileFullDisk::syncThatFails()
{
    folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path(), recordSync);
    QVERIFY(config.load());
    addCards(config, 1);
    synced.clear();
    syncSucceeds = false;
    const bool saved = config.save();
    syncSucceeds = true;
    QVERIFY(!saved);
    QCOMPARE(folder->text(), kSampleConfig);
    QCOMPARE(synced.size(), 2); // the old text is synced too
    QCOMPARE(synced.last(), kSampleConfig);
}

void TestConfigFileFullDisk::freshFileIsSynced()
{
    Ovryn_ConfigFile config(folder->path(), recordSync);
    synced.clear();
    QVERIFY(config.load());
    QCOMPARE(synced, QByteArrayList{folder->text()});
}

void TestConfigFileFullDisk::unreadableFileIsNotReplaced_data()
{
    QTest::addColumn<bool>("opens");
    QTest::newRow("can't be opened") << false;
    QTest::newRow("opens, and fails at the first byte") << true;
}

void TestConfigFileFullDisk::unreadableFileIsNotReplaced()
{
#ifdef Q_OS_LINUX
    QFETCH(bool, opens);
    const QString unreadable = QStringLiteral("/proc/self/mem");
    if (opens)
        QVERIFY(QFile::link(unreadable, folder->path()));
    else
        folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path());
    if (opens) {
        QVERIFY(!config.load());
    } else {
        const NoMoreFiles limit;
        QVERIFY(!config.load());
    }
    config.setLastStartDate(QDate(2030, 1, 2));
    QVERIFY(!config.save());
    QVERIFY(!config.save());
    if (opens) {
        QCOMPARE(QFile::symLinkTarget(folder->path()), unreadable);
        QVERIFY(QFile::remove(folder->path()));
    } else {
        QCOMPARE(folder->text(), kSampleConfig);
        QVERIFY(QFile::remove(folder->path()));
    }
    QVERIFY(config.save()); // there is no file any more that could be lost
    QCOMPARE(folder->section("LastStartDate").text(), QString("2030/01/02"));
#else
    QSKIP("needs a file that can't be read");
#endif
}

void TestConfigFileFullDisk::unreadableForAMoment()
{
#ifdef Q_OS_UNIX
    folder->write(kSampleConfig);
    Ovryn_ConfigFile config(folder->path());
    {
        const NoMoreFiles limit;
        QVERIFY(!config.load());
    }
    QVERIFY(config.load());
    config.setLastStartDate(QDate(2030, 1, 2));
    QVERIFY(config.save());
    QCOMPARE(folder->section("LastStartDate").text(), QString("2030/01/02"));
    QCOMPARE(folder->gpus().size(), 2);
#else
    QSKIP("needs a limit of open files");
#endif
}

QTEST_APPLESS_MAIN(TestConfigFileFullDisk)
#include "TestConfigFileFullDisk.moc"
