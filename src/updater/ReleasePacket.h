#pragma once

#include "updater/ReleaseManifest.h"

/// \file
/// The archive of one file of a release. Any thread.

/// Unpacks the archive's one file to `target`, which is written anew. False where the archive has not exactly the one
/// file of that name and size, where that is a link, or where the disk does not take it. Never writes more than the
/// size that the manifest gives. Whether the content is the right one is for the caller to see.
[[nodiscard]] bool unpackReleaseFile(const QString &archive, const ReleaseFile &file, const QString &target);
