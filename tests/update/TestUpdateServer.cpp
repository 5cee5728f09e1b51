#include "update/Ovryn_DownloadUpdateFileInfo.h"
#include "update/UpdateServer.h"

#include <QTest>
#include <QUrl>

/// The update server of the shipped program.
class TestUpdateServer : public QObject
{
    Q_OBJECT

private slots:
    void wholeAddress();
    void ignoresTheEnvironment();
};

void TestUpdateServer::wholeAddress()
{
    const QUrl server(updateServer());
    QVERIFY(server.isValid());
    QVERIFY(server.scheme() == QLatin1String("http") || server.scheme() == QLatin1String("https"));
    QVERIFY(!server.host().isEmpty());
    QVERIFY(server.path().isEmpty());
    QCOMPARE(Ovryn_DownloadUpdateFileInfo(nullptr).address(),
             updateServer() + QStringLiteral("/update_packets/OvrynDeck2_UpdateFiles/update_info.xml"));
}

void TestUpdateServer::ignoresTheEnvironment()
{
    const QString before = updateServer();
    qputenv("OVRYN_TEST_UPDATE_SERVER", "http://127.0.0.1:1");
    QCOMPARE(updateServer(), before);
}

QTEST_GUILESS_MAIN(TestUpdateServer)
#include "TestUpdateServer.moc"
