#include "updater/UpdatePlan.h"

#include "update/UpdateDecision.h"

#include <QSet>

namespace
{

PlanRefusal refusalOf(const ReleaseManifest &offered, const QString &installedVersion)
{
    if (offered.product != QLatin1String(kProductName))
        return PlanRefusal::OtherProduct;
    if (offered.platform != ownPlatform())
        return PlanRefusal::OtherPlatform;
    if (!isNewerVersion(offered.version, installedVersion))
        return PlanRefusal::NotNewer;
    if (isNewerVersion(offered.manualDownloadVersion, installedVersion))
        return PlanRefusal::NeedsHands;
    return PlanRefusal::None;
}

} // namespace

UpdatePlan planUpdate(const ReleaseManifest &offered, const std::optional<ReleaseManifest> &installed,
                      const QString &installedVersion, const InstalledHash &hashOf)
{
    UpdatePlan plan;
    plan.refusal = refusalOf(offered, installedVersion);
    if (plan.refusal != PlanRefusal::None)
        return plan;

    QSet<QString> offeredPaths;
    for (const ReleaseFile &file : offered.files) {
        offeredPaths.insert(file.path.toLower());
        if (hashOf(file.path) == file.sha256)
            continue;
        plan.fetched.append(file);
        plan.bytes += file.archiveSize;
    }
    if (installed) {
        for (const ReleaseFile &file : installed->files) {
            if (!file.isUpdater() && !offeredPaths.contains(file.path.toLower()) && hashOf(file.path) == file.sha256)
                plan.removed.append(file.path);
        }
    }
    return plan;
}
