#include "update/InstallationPath.h"
#include "updater/UpdatePlan.h"

#include <QSet>

/// \file
/// Any bytes as the list of a release, as if it were signed: what is accepted keeps every bound, and a plan can be
/// made of it.

namespace
{

void require(bool condition, const char *what)
{
    if (!condition)
        qFatal("%s", what);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const std::optional<ReleaseManifest> manifest = releaseManifestOf(bytes);
    if (!manifest)
        return 0;
    require(bytes.size() <= kReleaseManifestBytesMax, "a list that is too large is not read");
    require(!manifest->files.isEmpty() && manifest->files.size() <= kReleaseFilesMax, "a release has some files");
    require(!manifest->product.isEmpty() && !manifest->platform.isEmpty() && !manifest->version.isEmpty(),
            "a release says what it is");
    require(manifest->serverAddress.isEmpty() || (manifest->serverAddress.startsWith(QLatin1String("http")) &&
                                                  manifest->serverAddress.endsWith(QLatin1Char('/'))),
            "archives come from a web server");
    QSet<QString> paths;
    qint64 total = 0;
    for (const ReleaseFile &file : manifest->files) {
        require(mayBeInstalled(file.path), "a file lies where it may");
        require(isPlainRelativePath(file.archive), "an archive lies below the manifest");
        require(isPlainRelativePath(file.version) && !file.version.contains(QLatin1Char('/')),
                "a version names a file in temp");
        require(file.size >= 0 && file.size <= kReleaseFileBytesMax, "a file has a size");
        require(file.archiveSize > 0 && file.archiveSize <= kReleaseFileBytesMax, "an archive has a size");
        require(file.sha256.size() == 32 && file.archiveSha256.size() == 32, "both have a hash");
        require(!paths.contains(file.path.toLower()), "no file is listed twice");
        paths.insert(file.path.toLower());
        total += file.size + file.archiveSize;
    }
    require(total <= kReleaseBytesMax, "a release fits on a disk");

    ReleaseManifest offered = *manifest;
    offered.product = QString::fromLatin1(kProductName);
    offered.platform = ownPlatform();
    const UpdatePlan plan = planUpdate(offered, manifest, QString(), [](const QString &) { return QByteArray(); });
    require(plan.refusal != PlanRefusal::None || plan.fetched.size() == manifest->files.size(),
            "an empty folder lacks every file");
    require(plan.removed.isEmpty() && plan.bytes >= 0, "nothing is removed from an empty folder");
    return 0;
}
