#pragma once

#include "e2e/VirtualScreen.h"

#include <QDomDocument>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QRect>
#include <QTemporaryDir>

/// One installation of the real executable in a folder of its own, with its config.xml, started on a virtual screen
/// with the simulated driver. The object's end ends the process. A violation in the driver's journal fails the test
/// then.
class InstalledProgram
{
public:
    explicit InstalledProgram(const VirtualScreen &screen, const QString &executable = QStringLiteral(OVRYN_PROGRAM));
    ~InstalledProgram();

    void useScene(const QString &name);       ///< file name of a shipped scene
    void useScenario(const QByteArray &json); ///< a scene of the test's own
    void writeConfig(const QByteArray &xml);
    void setVariable(const QString &name, const QString &value);                            ///< of the environment
    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); } ///< in the installation

    void prepare(QProcess &start) const; ///< a start of this installation that the test makes itself
    bool start();                        ///< waits until the process runs
    int startAgain();                    ///< a second start at once; its exit code, -1 on a time-out
    /// From now on the process with that identifier is the program: its windows are searched, and it ends with the
    /// object too.
    void follow(qint64 processId);
    bool signal(const char *name); ///< as kill(1) names it: TERM, INT, HUP, KILL; false when it has ended before
    bool kill();                   ///< at once, as a crash or a power cut would; false when it has ended before
    [[nodiscard]] QList<qint64> guards() const; ///< living processes of the program's fan guard
    [[nodiscard]] bool isRunning() const;
    bool waitForEnd(int timeoutMs = 60000); ///< each worker of a card may sleep for a second before it ends
    [[nodiscard]] int exitCode() const { return process.exitCode(); }
    [[nodiscard]] bool endedNormally() const;
    [[nodiscard]] QByteArray errorOutput() { return process.readAllStandardError(); }

    [[nodiscard]] qint64 mainWindow() const;          ///< 0 while it is not shown
    [[nodiscard]] QList<qint64> otherWindows() const; ///< boxes and lists of this process
    [[nodiscard]] qint64 waitForMainWindow() const;
    [[nodiscard]] qint64 waitForBox() const; ///< a window beside the main one; 0 on a time-out

    void clickIn(qint64 window, QPoint position) const; ///< in window pixels

    [[nodiscard]] QRect trayIcon() const; ///< its place on the screen, null while it is not in the tray

    [[nodiscard]] QDomElement config() const; ///< root element of config.xml, null when not well-formed
    [[nodiscard]] QString configAttribute(const QString &element, const QString &attribute) const;
    [[nodiscard]] QString configText(const QString &element) const;
    [[nodiscard]] QList<QDomElement> cardSections() const;

    [[nodiscard]] QByteArray configBytes() const;    ///< the file as it stands, empty for none
    [[nodiscard]] QString path() const;              ///< of the executable
    [[nodiscard]] QByteArray autoStartEntry() const; ///< in this user's autostart folder, empty for none

    [[nodiscard]] QList<QJsonObject> journal() const;     ///< the calls of the driver, in order
    [[nodiscard]] QStringList violations() const;         ///< lines of the journal with a violation
    [[nodiscard]] QString statePath() const;              ///< of the file that the driver keeps its state in
    [[nodiscard]] QJsonObject cardState(int index) const; ///< the last state of a simulated card

private:
    [[nodiscard]] QProcessEnvironment environment() const;

    const VirtualScreen &screen;
    QTemporaryDir folder;
    QString scene;
    QMap<QString, QString> variables;
    QProcess process;
    qint64 followed = 0; ///< 0 while it is `process` that counts
    mutable QDomDocument document;
};
