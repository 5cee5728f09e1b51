#pragma once

#include <QDomDocument>
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QSize>
#include <QString>
#include <QTemporaryDir>

#include <windows.h>

/// Longest wait for anything that the program does; a machine that builds meanwhile is slow.
constexpr int kPatienceMs = 60000;

/// A config.xml with which no question stands in the way at the start. `general` are attributes that replace the
/// usual ones, and `cards` the children of GpuSettings.
[[nodiscard]] QByteArray quietConfig(const QByteArray &minimizeOnStart = "0", const QByteArray &cards = {},
                                     const QByteArray &startOnBoot = "0");

/// The folder that users get, in a place of its own whose name has blanks and Chinese letters, with the program
/// started on the simulated driver that stands in the system folder. The process ends with the object.
class ShippedProgram
{
public:
    ShippedProgram();                                     ///< with a copy of the folder
    explicit ShippedProgram(const QString &installation); ///< with what is installed there
    ~ShippedProgram();

    void prepare(QProcess &start) const; ///< a process that the test starts, with the environment of the program

    void writeFile(const QString &name, const QByteArray &content) const; ///< `name` within the folder
    [[nodiscard]] QByteArray contentOf(const QString &name) const;        ///< empty for none
    [[nodiscard]] QString path(const QString &name) const;
    void useScene(const QByteArray &json); ///< for the next start

    bool start(const QStringList &arguments = {}, const QString &workingFolder = {});
    /// A second start; its exit code, -1 on a time-out. `calledTheDriver` says whether it went to the driver.
    int startAgain(bool &calledTheDriver);
    bool kill();      ///< at once, as a crash would
    void demandEnd(); ///< as the installer does
    bool waitForEnd();
    [[nodiscard]] bool isRunning() const { return process.state() == QProcess::Running; }
    [[nodiscard]] int exitCode() const { return process.exitCode(); }

    [[nodiscard]] static HWND anyMainWindow();      ///< of whatever process; null while none is shown
    [[nodiscard]] QList<HWND> windows() const;      ///< top-level ones of the process, hidden ones too
    [[nodiscard]] QList<HWND> shownWindows() const; ///< those that a user sees
    [[nodiscard]] HWND mainWindow() const;          ///< null while it is not shown
    [[nodiscard]] HWND box() const;                 ///< another window that is shown; null for none

    [[nodiscard]] QDomElement config() const; ///< root element of config.xml, null when not well-formed
    [[nodiscard]] QString configText(const QString &element) const;
    /// The journal's calls of one operation, in order.
    [[nodiscard]] QList<QJsonObject> calls(const QString &operation) const;
    [[nodiscard]] QJsonObject cardState() const; ///< what the first simulated card did and holds last

private:
    QTemporaryDir place;
    QString folder;
    QProcess process;
    mutable QDomDocument document;
};
