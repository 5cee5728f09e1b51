#pragma once

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <vector>

/// An X server of the test's own, with window manager, compositor and tray host, and the functions to use and examine
/// it. Everything ends with the object.
class VirtualScreen
{
public:
    ~VirtualScreen();

    void breakDown(); ///< ends the X server under everything that is connected to it

    /// False with `error()` set when a part of it can't be started.
    bool start(QSize size = QSize(1280, 900));
    [[nodiscard]] QString error() const { return problem; }
    [[nodiscard]] QString display() const { return displayName; }

    /// Visible window of exactly that title, 0 when there is none.
    [[nodiscard]] qint64 findWindow(const QString &title) const;
    /// Visible windows of a process.
    [[nodiscard]] QStringList windowsOf(qint64 processId) const;
    [[nodiscard]] qint64 activeWindow() const;
    [[nodiscard]] QRect geometryOf(qint64 window) const;

    void movePointer(QPoint screenPosition) const;
    void click(QPoint screenPosition) const; ///< left button, with a pause as a user makes it
    void rightClick(QPoint screenPosition) const;
    void doubleClick(QPoint screenPosition) const;
    void hold(QPoint from, QPoint to) const; ///< presses the left button, moves and keeps it pressed
    void release() const;                    ///< the left button, where the pointer is
    void drag(QPoint from, QPoint to) const; ///< left button held
    void key(const QString &name) const;     ///< as xdotool names it
    void type(const QString &text) const;
    void activate(qint64 window) const;

    [[nodiscard]] QImage picture() const; ///< the whole screen

    /// Runs a program on this screen and gives back what it printed.
    [[nodiscard]] QString run(const QString &program, const QStringList &arguments) const;
    [[nodiscard]] QProcessEnvironment environment() const;

private:
    [[nodiscard]] QStringList visibleWindows(const QStringList &conditions) const;
    bool startPart(const QString &program, const QStringList &arguments);

    QTemporaryDir home;                           ///< of everything that runs on the screen
    std::vector<std::unique_ptr<QProcess>> parts; ///< the server first; ended in reverse
    QString displayName;
    QString problem;
};
