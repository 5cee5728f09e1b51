#pragma once

#include "app/OvrynDeck2.h"
#include "support/RawDriver.h"

#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Pages and workers with short pauses.
constexpr PageTimings kQuickPages{{0, 0, 0, 10, 1}, {0, 1}, 5, 5};

/// The same with samples at the program's own rate, for visible windows: where the painting of a sample takes longer
/// than the time to the next, the queue of samples never gets empty and other events wait.
constexpr PageTimings kCalmPages{{0, 0, 0, 10, 1}, {0, 1}, Ovryn_SendNvCardInfoThread::kSleepMs, 5};

/// The fixture of each test of the main dialog: a stand-in for the driver with one card of the maker, and an empty
/// folder of its own as the current one. The user's settings folder is in it too, because closing a dialog writes
/// there.
class MainDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        formerFolder = QDir::currentPath();
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
        QVERIFY(QDir::setCurrent(folder->path()));
        formerConfigHome = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder->filePath(QStringLiteral("home/.config"))));
        driver = std::make_unique<RawDriver>();
    }

    void cleanup()
    {
        driver.reset();
        QDir::setCurrent(formerFolder);
        qputenv("XDG_CONFIG_HOME", formerConfigHome); // empty counts as unset
        folder.reset();
    }

protected:
    static QPushButton *button(const OvrynDeck2 &dialog, const char *name)
    {
        return dialog.findChild<QPushButton *>(QString::fromLatin1(name));
    }

    static void finishSlide(OvrynDeck2 &dialog)
    {
        for (int tick = 0; tick < 200; ++tick)
            dialog.onMoveCircleWidgetTimerTimeout();
    }

    static void writeConfig(const QByteArray &xml)
    {
        QFile file(QStringLiteral("config.xml"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(xml);
    }

    static QString autoStartEntry()
    {
        return qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/autostart/_OvrynDeck2.desktop");
    }

    static QString savedText()
    {
        QFile file(QStringLiteral("config.xml"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    std::unique_ptr<RawDriver> driver;

private:
    QString formerFolder;
    QByteArray formerConfigHome;
    std::unique_ptr<QTemporaryDir> folder;
};
