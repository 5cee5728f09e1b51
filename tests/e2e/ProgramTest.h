#pragma once

#include "app/MainDialogLayout.h"
#include "e2e/InstalledProgram.h"
#include "e2e/VirtualScreen.h"

#include <QApplication>
#include <QTest>

constexpr QSize kDialogSize(1020, 680); ///< of the main window

/// Longest wait for anything that the program does; a machine that builds at the same time is slow.
constexpr int kPatienceMs = 20000;

/// A config.xml with which the program asks nothing at the start.
extern const char *const kQuietConfig;

/// As config.xml writes it.
[[nodiscard]] QString today();

/// A line of the journal as "operation", with the device's address after a transfer.
[[nodiscard]] QString operationOf(const QJsonObject &call);

/// How many pixels of a region differ noticeably.
[[nodiscard]] int differingPixels(const QImage &a, const QImage &b, const QRect &region);

/// True where the ring, a header's band or a page's frame lies.
[[nodiscard]] bool isRed(QRgb pixel);

/// The base of the end-to-end tests: a screen of their own and a user's common actions. Positions are pixels of the
/// main window, unless a name says screen.
class ProgramTest : public QObject
{
    Q_OBJECT

protected:
    /// Starts a program that asks nothing at its start. Returns its main window, 0 on a time-out.
    [[nodiscard]] qint64 startedWindow(InstalledProgram &program);
    void pressBoxButton(InstalledProgram &program, bool yes);
    void pressOnlyBoxButton(InstalledProgram &program);
    void closeByButton(InstalledProgram &program, qint64 window);
    /// Slides the settings in until that control has come to rest.
    void openSettings(InstalledProgram &program, qint64 window, QPoint control);
    /// Slides the settings in and presses the button that looks for an update.
    void clickDetectUpdate(InstalledProgram &program, qint64 window);
    [[nodiscard]] bool pictureChanges(const QImage &before, const QRect &screenRect) const;
    /// Where a control of the settings page lies in the main window; null when there is no such control.
    [[nodiscard]] QPoint settingControl(const QString &objectName) const;
    [[nodiscard]] QRect onScreen(qint64 window, const QRect &rect) const;

    QSize screenSize = QSize(1280, 900); ///< a test that needs more room says so in its constructor
    VirtualScreen screen;
    MainDialogLayout layout;

private slots:
    void initTestCase();
};

/// Runs a test class; the test itself draws nothing, only the program needs the screen.
template <typename Test>
int runProgramTest(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}
