#include "platform/FileSync.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestFileSync : public QObject
{
    Q_OBJECT

private slots:
    void openFile();
    void fileThatIsNotOpen();
    void fileOnNoDisk();
};

void TestFileSync::openFile()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("text"), qint64(4));
    QVERIFY(file.flush());
    QVERIFY(syncToDisk(file));
    QVERIFY(file.isOpen());
    QCOMPARE(file.write("more"), qint64(4));
}

void TestFileSync::fileThatIsNotOpen()
{
    QFile file(QStringLiteral("nothing"));
    QVERIFY(!syncToDisk(file));
}

void TestFileSync::fileOnNoDisk()
{
#ifdef Q_OS_UNIX
    QFile file(QStringLiteral("/dev/null"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(syncToDisk(file)); // nothing that could be lost
#else
    QSKIP("needs a file that lies on no disk");
#endif
}

QTEST_APPLESS_MAIN(TestFileSync)
#include "TestFileSync.moc"
