#pragma once

#include "updater/ReleaseManifest.h"

#include <QStringList>

#include <functional>
#include <optional>

/// \file
/// What an update has to do, decided without a window, a network or a change on the disk. Any thread.

/// Why an offered release is not installed, although its signature is right.
enum class PlanRefusal
{
    None,
    OtherProduct,
    OtherPlatform,
    NotNewer,   ///< than what is installed: an old manifest, replayed, would bring old faults back
    NeedsHands, ///< what is installed is too old; the user has to fetch the release from the vendor's site
};

struct UpdatePlan
{
    PlanRefusal refusal = PlanRefusal::None;
    QVector<ReleaseFile> fetched; ///< whose content here differs; the updater's own entry may be among them
    QStringList removed;          ///< files of the installed release, unchanged, that the offered one has no more
    qint64 bytes = 0;             ///< to be fetched
};

/// Gives the SHA-256 of an installed file by its path in the manifest; empty where there is none.
using InstalledHash = std::function<QByteArray(const QString &path)>;

/// `installed` is the signed list that the installed release carries, where there is one. `installedVersion` is the
/// higher one of that list's and the updater's own. Versions are compared as the program compares them.
[[nodiscard]] UpdatePlan planUpdate(const ReleaseManifest &offered, const std::optional<ReleaseManifest> &installed,
                                    const QString &installedVersion, const InstalledHash &hashOf);
