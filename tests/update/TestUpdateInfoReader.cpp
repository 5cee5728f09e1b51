#include "support/UpdateManifest.h"
#include "update/Ovryn_UpdateInfoReader.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

class TestUpdateInfoReader : public QObject
{
    Q_OBJECT

private slots:
    void newReader();
    void reads_data();
    void reads();
    void refuses_data();
    void refuses();
    void fieldsOfAnEntry();
    void missingFile();
    void folderInPlaceOfAFile();
    void failureEmptiesAnEarlierResult();
    void reportsWhereParsingStopped();
    void fifteenMegabytes();
    void oneByteTooMany();

private:
    [[nodiscard]] QString write(const QByteArray &text) const
    {
        const QString path = folder.filePath(QStringLiteral("update_info.xml"));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    QTemporaryDir folder;
};

namespace
{

QByteArray utf16(const QString &text)
{
    return QByteArray("\xFF\xFE") +
           QByteArray(reinterpret_cast<const char *>(text.utf16()), int(sizeof(ushort)) * text.size());
}

QByteArray wide(int attributes, const QByteArray &value = {})
{
    QByteArray text = "<Update><CurrentVersion Value=\"2\"";
    for (int i = 0; i < attributes; ++i)
        text += " a" + QByteArray::number(i) + "=\"" + value + "\"";
    return text + "/></Update>";
}

/// A manifest beyond the size up to which many attributes are allowed.
QString large(const QString &declaration)
{
    return declaration + QStringLiteral("<Update><CurrentVersion Value='2'/><!--") + QString(20000, QChar(0x884C)) +
           QStringLiteral("--><FileInfos><FileInfo FileName='更新'/></FileInfos></Update>");
}

} // namespace

void TestUpdateInfoReader::newReader()
{
    const Ovryn_UpdateInfoReader reader;
    QVERIFY(!reader.isValid());
    QVERIFY(reader.getFileInfos().isEmpty());
    QCOMPARE(reader.getCurrentVersion() + reader.getManualDownloadVersion() + reader.getServerAddress(), QString());
    QCOMPARE(reader.getErrorMessage(), QString());
}

void TestUpdateInfoReader::reads_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("manual");
    QTest::addColumn<QString>("server");
    QTest::addColumn<QStringList>("files"); ///< names
    const QStringList none;
    const QString address = QStringLiteral("http://files.example/packets");

    QTest::newRow("whole") << updateManifest("1.1", "1.0",
                                             manifestFile("", "a.dll", "1") + manifestFile("", "b", "2"))
                           << "1.1"
                           << "1.0" << address << QStringList{"a.dll", "b"};
    QTest::newRow("empty FileInfos") << updateManifest("1.1") << "1.1"
                                     << "" << address << none;
    QTest::newRow("bare root") << QByteArray("<Update/>") << ""
                               << ""
                               << "" << none;
    QTest::newRow("other order") << QByteArray("<Update><ManualDownloadVersion Value='3'/><CurrentVersion Value='4'/>"
                                               "<ServerAdress Value='s'/></Update>")
                                 << "4"
                                 << "3"
                                 << "s" << none;
    QTest::newRow("missing attributes") << QByteArray("<Update><CurrentVersion/><ManualDownloadVersion value='1'/>"
                                                      "<FileInfos><FileInfo/></FileInfos></Update>")
                                        << ""
                                        << ""
                                        << "" << QStringList{""};
    QTest::newRow("the last of several stands")
        << QByteArray("<Update><CurrentVersion Value='1'/><CurrentVersion Value='2'/></Update>") << "2"
        << ""
        << "" << none;
    QTest::newRow("a last one without its attribute stands too")
        << QByteArray("<Update><CurrentVersion Value='1'/><CurrentVersion/></Update>") << ""
        << ""
        << "" << none;
    QTest::newRow("several FileInfos add up")
        << QByteArray("<Update><FileInfos><FileInfo FileName='a'/></FileInfos><FileInfos><FileInfo FileName='b'/>"
                      "</FileInfos></Update>")
        << ""
        << ""
        << "" << QStringList{"a", "b"};
    QTest::newRow("FileInfo outside FileInfos") << QByteArray("<Update><FileInfo FileName='a'/></Update>") << ""
                                                << ""
                                                << "" << none;
    QTest::newRow("FileInfo too deep inside")
        << QByteArray("<Update><FileInfos><Group><FileInfo FileName='a'/></Group></FileInfos></Update>") << ""
        << ""
        << "" << none;
    QTest::newRow("FileInfo in a list below the list")
        << QByteArray("<Update><FileInfos><FileInfos><FileInfo FileName='a'/></FileInfos></FileInfos></Update>") << ""
        << ""
        << "" << none;
    QTest::newRow("FileInfo in what follows the list")
        << QByteArray("<Update><FileInfos/><Other><FileInfo FileName='a'/></Other></Update>") << ""
        << ""
        << "" << none;
    QTest::newRow("values below another element")
        << QByteArray("<Update><FileInfos><CurrentVersion Value='9'/></FileInfos><Other><ServerAdress Value='s'/>"
                      "<ManualDownloadVersion Value='9'/></Other></Update>")
        << ""
        << ""
        << "" << none;
    QTest::newRow("root's name among its children")
        << QByteArray("<Update><Update/><Other/><CurrentVersion Value='2'/></Update>") << "2"
        << ""
        << "" << none;
    QTest::newRow("other names among the files")
        << QByteArray("<Update><FileInfos><fileinfo FileName='x'/><!-- c -->text<FileInfo FileName='a'/><Other/>"
                      "</FileInfos></Update>")
        << ""
        << ""
        << "" << QStringList{"a"};
    QTest::newRow("other names among the values")
        << QByteArray("<Update><currentversion Value='9'/><ServerAddress Value='s'/><Other Value='9'/></Update>")
        << ""
        << ""
        << "" << none;
    QTest::newRow("value as text is none") << QByteArray("<Update><CurrentVersion>2</CurrentVersion></Update>") << ""
                                           << ""
                                           << "" << none;
    QTest::newRow("small and in UTF-16")
        << utf16(QStringLiteral("<Update><CurrentVersion Value='2'/></Update>")) << "2"
        << ""
        << "" << none;
    QTest::newRow("characters of other scripts")
        << QByteArray("<Update><CurrentVersion Value='二'/></Update>") << QStringLiteral("二") << ""
        << "" << none;
    QTest::newRow("large, with a declaration in small letters")
        << QByteArray("<?xml version='1.0' encoding='utf-8'?><Update><CurrentVersion Value='2'/>" +
                      QByteArray(100000, ' ') + "</Update>")
        << "2"
        << ""
        << "" << none;
    const QStringList oneFile = {QStringLiteral("更新")};
    QTest::newRow("large and in UTF-16") << utf16(large(QString())) << "2"
                                         << ""
                                         << "" << oneFile;
    QTest::newRow("large and in UTF-16 by its declaration, too")
        << utf16(large(QStringLiteral("<?xml version='1.0' encoding='UTF-16'?>"))) << "2"
        << ""
        << "" << oneFile;
    QTest::newRow("large and in GB 18030") << QTextCodec::codecForName("GB18030")->fromUnicode(
                                                  large(QStringLiteral("<?xml version='1.0' encoding='GB18030'?>")))
                                           << "2"
                                           << ""
                                           << "" << oneFile;
    QTest::newRow("large and in ISO 8859-1")
        << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><Update><CurrentVersion Value='\xE4'/>" +
                      QByteArray(20000, '\xFC').prepend("<!--").append("-->") + "</Update>")
        << QStringLiteral("ä") << ""
        << "" << none;
    QTest::newRow("large, with as many attributes as allowed")
        << QByteArray(wide(kManifestEqualsSignsMaxPerTag - 1) + QByteArray(100000, ' ')) << "2"
        << ""
        << "" << none;

    QByteArray many;
    QStringList manyNames;
    for (int i = 0; i < 240000; ++i) {
        many += manifestFile("dir/", "f" + QByteArray::number(i), "1");
        manyNames.append(QStringLiteral("f%1").arg(i));
    }
    QTest::newRow("240,000 files") << updateManifest("1.1", "", many) << "1.1"
                                   << "" << address << manyNames;
}

void TestUpdateInfoReader::reads()
{
    QFETCH(QByteArray, text);
    Ovryn_UpdateInfoReader reader;
    QVERIFY2(reader.read(write(text)), qPrintable(reader.getErrorMessage()));
    QVERIFY(reader.isValid());
    QCOMPARE(reader.getErrorMessage(), QString());
    QTEST(reader.getCurrentVersion(), "current");
    QTEST(reader.getManualDownloadVersion(), "manual");
    QTEST(reader.getServerAddress(), "server");
    QStringList names;
    for (const UpdateFileInfo &file : reader.getFileInfos())
        names.append(file.fileName);
    QTEST(names, "files");
}

void TestUpdateInfoReader::refuses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("parses"); ///< it is XML, but no manifest
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("page of a server") << QByteArray("<!DOCTYPE html><html><body><p>Not here</body></html>") << false;
    QTest::newRow("cut off") << updateManifest("2").chopped(12) << false;
    QTest::newRow("zeros") << QByteArray(1000, '\0') << false;
    QTest::newRow("another root") << QByteArray("<update><CurrentVersion Value='2'/></update>") << true;
    QTest::newRow("root of the settings") << QByteArray("<OvrynParameter/>") << true;
    QTest::newRow("good manifest, rubbish after it") << QByteArray(updateManifest("2") + "<Update/>") << false;
    QTest::newRow("Update below another root")
        << QByteArray("<a><Update><CurrentVersion Value='2'/></Update></a>") << true;
    QTest::newRow("a million files") << updateManifest("2", "", manifestFile("d", "n", "v").repeated(1000000))
                                     << false;
    QTest::newRow("deep") << QByteArray("<Update>").repeated(100000) << false;
    QTest::newRow("an element of a hundred thousand attributes") << wide(100000) << false;
    QTest::newRow("many elements of many attributes")
        << QByteArray("<Update>" +
                      QByteArray("<a b='' c='' d='' e='' f='' g='' h='' i='' j='' k=''/>").repeated(110000) +
                      "</Update>")
        << false;
    QTest::newRow("many attributes in UTF-16, with a bracket in the bytes of each")
        << utf16(QString::fromUtf8(wide(100000, "㰼"))) << false;
    QTest::newRow("large with entities")
        << QByteArray("<!DOCTYPE Update [<!ENTITY e '" + QByteArray(20000, 'x') + "'>]><Update/>") << false;
    QByteArray bomb = "<!DOCTYPE Update [<!ENTITY e0 'lol'>";
    for (int level = 1; level < 10; ++level) {
        bomb += "<!ENTITY e" + QByteArray::number(level) + " '" +
                ("&e" + QByteArray::number(level - 1) + ";").repeated(10) + "'>";
    }
    QTest::newRow("entities of entities") << QByteArray(bomb + "]><Update>&e9;</Update>") << false;
}

void TestUpdateInfoReader::refuses()
{
    QFETCH(QByteArray, text);
    Ovryn_UpdateInfoReader reader;
    QVERIFY(!reader.read(write(text)));
    QVERIFY(!reader.isValid());
    QTEST(reader.getErrorMessage().isEmpty(), "parses");
    QCOMPARE(reader.getCurrentVersion() + reader.getManualDownloadVersion() + reader.getServerAddress(), QString());
    QVERIFY(reader.getFileInfos().isEmpty());
}

void TestUpdateInfoReader::fieldsOfAnEntry()
{
    Ovryn_UpdateInfoReader reader;
    QVERIFY(reader.read(write(updateManifest("1.1", "", manifestFile("sub/", "OvrynUpdate.exe", "2.0")))));
    const UpdateFileInfo entry = reader.getFileInfos().value(0);
    QCOMPARE(entry.fileName, QStringLiteral("OvrynUpdate.exe"));
    QCOMPARE(entry.fileDir, QStringLiteral("sub/"));
    QCOMPARE(entry.fileVersion, QStringLiteral("2.0"));
}

void TestUpdateInfoReader::missingFile()
{
    Ovryn_UpdateInfoReader reader;
    QVERIFY(!reader.read(folder.filePath(QStringLiteral("nothing.xml"))));
    QVERIFY(!reader.isValid());
    QCOMPARE(reader.getErrorMessage(), QString()); // nothing was parsed
}

void TestUpdateInfoReader::folderInPlaceOfAFile()
{
    Ovryn_UpdateInfoReader reader;
    QVERIFY(!reader.read(folder.path()));
    QVERIFY(!reader.isValid());
}

void TestUpdateInfoReader::failureEmptiesAnEarlierResult()
{
    Ovryn_UpdateInfoReader reader;
    QVERIFY(reader.read(write(updateManifest("1.1", "1.0", manifestFile("", "a", "1")))));
    QVERIFY(!reader.read(write("no manifest")));
    QVERIFY(!reader.isValid());
    QCOMPARE(reader.getCurrentVersion() + reader.getManualDownloadVersion() + reader.getServerAddress(), QString());
    QVERIFY(reader.getFileInfos().isEmpty());
    QVERIFY(reader.read(write(updateManifest("1.2"))));
    QCOMPARE(reader.getErrorMessage(), QString());
    QCOMPARE(reader.getCurrentVersion(), QStringLiteral("1.2"));
}

void TestUpdateInfoReader::reportsWhereParsingStopped()
{
    Ovryn_UpdateInfoReader reader;
    QVERIFY(!reader.read(write("<Update>\n  <FileInfos>\n</Update>")));
    QVERIFY(!reader.getErrorMessage().isEmpty());
    QCOMPARE(reader.getErrorLine(), 3);
    QVERIFY(reader.getErrorColumn() > 0);
}

void TestUpdateInfoReader::fifteenMegabytes()
{
    Ovryn_UpdateInfoReader reader;
    QVERIFY2(reader.read(write(updateManifest("1.1") + QByteArray(15 * 1024 * 1024, '\n'))),
             qPrintable(reader.getErrorMessage()));
    QCOMPARE(reader.getCurrentVersion(), QStringLiteral("1.1"));
}

void TestUpdateInfoReader::oneByteTooMany()
{
    const QByteArray manifest = updateManifest("1.1");
    const QByteArray largest = manifest + QByteArray(int(kManifestBytesMax) - manifest.size(), '\n');
    Ovryn_UpdateInfoReader reader;
    QVERIFY2(reader.read(write(largest)), qPrintable(reader.getErrorMessage()));
    QVERIFY(!reader.read(write(largest + '\n')));
    QVERIFY(!reader.getErrorMessage().isEmpty());
}

QTEST_APPLESS_MAIN(TestUpdateInfoReader)
#include "TestUpdateInfoReader.moc"
