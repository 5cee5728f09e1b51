#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <memory>

// Keeps the arguments that it is called with, and its folder, beside itself.
constexpr const char *kStandInUpdater = R"sh(#!/bin/sh
pwd -P > "$0.folder"
printf '%s\n' "$@" > "$0.part"
mv "$0.part" "$0.arguments"
)sh";

/// The search path for programs, as long as it lives.
class SearchPath
{
public:
    explicit SearchPath(const QByteArray &path) : former(qgetenv("PATH")) { qputenv("PATH", path); }
    ~SearchPath() { qputenv("PATH", former); }
    Q_DISABLE_COPY(SearchPath)

private:
    QByteArray former;
};

/// A stand-in for the updater: in a folder of its own in the search path, or in the given folder.
class StandInUpdater
{
public:
    StandInUpdater() : StandInUpdater(QString()) {}
    explicit StandInUpdater(const QString &place)
        : path((place.isEmpty() ? folder.path() : place) + QStringLiteral("/OvrynUpdate"))
    {
        if (place.isEmpty())
            searchPath = std::make_unique<SearchPath>(folder.path().toLocal8Bit() + ':' + qgetenv("PATH"));
        QFile script(path);
        if (!script.open(QIODevice::WriteOnly))
            qFatal("no stand-in for the updater");
        script.write(kStandInUpdater);
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    ~StandInUpdater()
    {
        for (const char *suffix : {"", ".arguments", ".folder"})
            QFile::remove(path + QLatin1String(suffix));
    }
    Q_DISABLE_COPY(StandInUpdater)

    [[nodiscard]] QString arguments() const ///< empty when it was not called yet
    {
        return content(".arguments");
    }
    [[nodiscard]] QString folderOfCall() const ///< empty as long as the arguments are
    {
        return content(".folder").trimmed();
    }

private:
    [[nodiscard]] QString content(const char *suffix) const
    {
        QFile file(path + QLatin1String(suffix));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    QTemporaryDir folder;
    QString path;
    std::unique_ptr<SearchPath> searchPath;
};
