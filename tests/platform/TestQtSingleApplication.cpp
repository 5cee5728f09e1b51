#include "platform/QtSingleApplication.h"

#include "platform/MessageLog.h"
#include "platform/RuntimeFolder.h"

#include <QThread>
#include <QWidget>
#include <QtTest>

namespace
{

const QString kId = QStringLiteral("application");

/// Sends "show" as a further start would, from a thread, so that the test runs the application's event loop.
class FurtherStart : public QThread
{
public:
    FurtherStart() { start(); }
    ~FurtherStart() override { wait(); }

private:
    void run() override { SingleInstanceChannel(kId).send(QStringLiteral("show"), 5000); }
};

} // namespace

class TestQtSingleApplication : public QObject
{
    Q_OBJECT

public:
    explicit TestQtSingleApplication(QtSingleApplication &singleApplication) : application(singleApplication) {}

private slots:
    void cleanup();

    void isFirst();
    void messageIsReported();
    void bringsUpAWindow_data();
    void bringsUpAWindow();
    void keepsOtherWindowStates();
    void messageActivatesOnlyWhenAsked();
    void windowThatIsGone();
    void noWindow();

private:
    QtSingleApplication &application;
};

void TestQtSingleApplication::cleanup()
{
    application.setActivationWindow(nullptr, false);
}

void TestQtSingleApplication::isFirst()
{
    QVERIFY(!application.isRunning());
    QVERIFY(!SingleInstanceChannel(kId).isFirst());
}

void TestQtSingleApplication::messageIsReported()
{
    MessageLog log;
    connect(&application, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    const FurtherStart start;
    QTRY_COMPARE(log.messages, QStringList("show"));
}

void TestQtSingleApplication::bringsUpAWindow_data()
{
    QTest::addColumn<QByteArray>("how");
    QTest::newRow("never shown") << QByteArray("never shown");
    QTest::newRow("hidden in the tray") << QByteArray("hidden");
    QTest::newRow("minimised") << QByteArray("minimised");
    QTest::newRow("minimised, then hidden in the tray") << QByteArray("minimised hidden");
    QTest::newRow("behind another window") << QByteArray("behind");
}

void TestQtSingleApplication::bringsUpAWindow()
{
    QFETCH(QByteArray, how);
    QWidget window;
    QWidget other;
    if (how != "never shown")
        window.show();
    if (how.contains("minimised"))
        window.showMinimized();
    if (how.contains("hidden"))
        window.hide();
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());

    application.setActivationWindow(&window, true);
    const FurtherStart start;
    QTRY_VERIFY(window.isActiveWindow());
    QVERIFY(window.isVisible());
    QVERIFY(!window.isMinimized());
}

void TestQtSingleApplication::keepsOtherWindowStates()
{
    QWidget window;
    window.setWindowState(Qt::WindowMaximized | Qt::WindowMinimized);
    application.setActivationWindow(&window, true);
    application.activateWindow();
    QVERIFY(window.isMaximized());
    QVERIFY(!window.isMinimized());
}

void TestQtSingleApplication::messageActivatesOnlyWhenAsked()
{
    QWidget window;
    application.setActivationWindow(&window, true);
    application.setActivationWindow(&window, false);
    MessageLog log;
    connect(&application, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    const FurtherStart start;
    QTRY_COMPARE(log.messages, QStringList("show"));
    QVERIFY(!window.isVisible());
    application.activateWindow(); // still does on call
    QVERIFY(window.isVisible());
}

void TestQtSingleApplication::windowThatIsGone()
{
    {
        QWidget window;
        application.setActivationWindow(&window, true);
    }
    application.activateWindow();
    MessageLog log;
    connect(&application, SIGNAL(messageReceived(QString)), &log, SLOT(receive(QString)));
    const FurtherStart start;
    QTRY_COMPARE(log.messages, QStringList("show"));
}

void TestQtSingleApplication::noWindow()
{
    application.setActivationWindow(nullptr, true);
    application.activateWindow();
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

int main(int argc, char **argv)
{
    const RuntimeFolder folder;
    QtSingleApplication application(kId, argc, argv);
    TestQtSingleApplication test(application);
    return QTest::qExec(&test, argc, argv);
}

#include "TestQtSingleApplication.moc"
