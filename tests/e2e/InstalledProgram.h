#pragma once

#include "e2e/VirtualScreen.h"

#include <QDomDocument>
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QRect>
#include <QTemporaryDir>

/// One installation of the real executable in a folder of its own (config.xml lies beside it), started on
/// a virtual screen with the simulated driver in front. The process ends with the object.
class InstalledProgram
{
public:
    explicit InstalledProgram(const VirtualScreen &screen);
    ~InstalledProgram();

    void useScene(const QString &name);       ///< file name of a shipped scene
    void useScenario(const QByteArray &json); ///< a scene of the test's own
    void writeConfig(const QByteArray &xml);

    bool start();     ///< waits until the process runs
    int startAgain(); ///< a second start at once; its exit code, -1 on a time-out
    bool kill();      ///< at once, as a crash or a power cut would; false when it has ended before
    [[nodiscard]] bool isRunning() const;
    bool waitForEnd(int timeoutMs = 20000);
    [[nodiscard]] int exitCode() const { return process.exitCode(); }
    [[nodiscard]] bool endedNormally() const;
    [[nodiscard]] QByteArray errorOutput() { return process.readAllStandardError(); }

    [[nodiscard]] qint64 mainWindow() const;          ///< 0 while it is not shown
    [[nodiscard]] QList<qint64> otherWindows() const; ///< boxes and lists of this process
    [[nodiscard]] qint64 waitForMainWindow() const;
    [[nodiscard]] qint64 waitForBox() const; ///< a window beside the main one; 0 on a time-out

    void clickIn(qint64 window, QPoint position) const; ///< in window pixels

    [[nodiscard]] QRect trayIcon() const; ///< its place on the screen, null while the tray hasn't taken it

    [[nodiscard]] QDomElement config() const; ///< root element of config.xml, null when not well-formed
    [[nodiscard]] QString configAttribute(const QString &element, const QString &attribute) const;
    [[nodiscard]] QString configText(const QString &element) const;
    [[nodiscard]] QList<QDomElement> cardSections() const;

    [[nodiscard]] QByteArray configBytes() const;    ///< the file as it stands, empty for none
    [[nodiscard]] QString path() const;              ///< of the executable
    [[nodiscard]] QByteArray autoStartEntry() const; ///< what stands in this user's autostart folder, empty for none

    [[nodiscard]] QList<QJsonObject> journal() const;     ///< what the driver was asked, in order
    [[nodiscard]] QJsonObject cardState(int index) const; ///< what a simulated card did and held last

private:
    [[nodiscard]] QProcessEnvironment environment() const;

    const VirtualScreen &screen;
    QTemporaryDir folder;
    QString scene;
    QProcess process;
    mutable QDomDocument document;
};
