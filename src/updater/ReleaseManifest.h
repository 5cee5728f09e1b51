#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

/// \file
/// What a release consists of, as its manifest lists it. Only a manifest whose signature was checked is read.
/// Pure functions; any thread.

/// What this updater updates; a manifest names the same.
constexpr const char *kProductName = "OvrynDeck2";
/// The updater's own entry, under one name on every system: the program puts it in place, see UpdateFiles.h.
constexpr const char *kUpdaterEntryName = "OvrynUpdate.exe";

constexpr qint64 kReleaseManifestBytesMax = 2 * 1024 * 1024;
constexpr int kReleaseFilesMax = 2000;
constexpr qint64 kReleaseFileBytesMax = 256LL * 1024 * 1024;
constexpr qint64 kReleaseBytesMax = 1024LL * 1024 * 1024; ///< of all files together

/// One file of a release.
struct ReleaseFile
{
    QString path;    ///< below the installation, see mayBeInstalled
    QString version; ///< digits and points; names the archive of a new updater in temp
    qint64 size = 0; ///< bytes
    QByteArray sha256;
    bool executable = false;
    QString archive; ///< zip with this one file, its address relative to the manifest's
    qint64 archiveSize = 0;
    QByteArray archiveSha256;

    [[nodiscard]] QString name() const { return path.section(QLatin1Char('/'), -1); }
    [[nodiscard]] bool isUpdater() const { return path == QLatin1String(kUpdaterEntryName); }
};

struct ReleaseManifest
{
    QString product;
    QString platform; ///< "windows-x86" or "linux-x86_64"
    QString version;
    QString serverAddress;         ///< where the archives lie; empty: beside the manifest
    QString manualDownloadVersion; ///< versions older than this can't be updated; may be empty
    QVector<ReleaseFile> files;
};

/// The platform that this updater runs on, as a manifest names it.
[[nodiscard]] QString ownPlatform();

/// The manifest, or nothing where anything in it is missing, out of its bounds or listed twice, where a path is not
/// allowed, or two are the same for a file system that does not distinguish case.
[[nodiscard]] std::optional<ReleaseManifest> releaseManifestOf(const QByteArray &bytes);
