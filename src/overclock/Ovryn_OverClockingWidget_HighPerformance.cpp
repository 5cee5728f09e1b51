#include "overclock/Ovryn_OverClockingWidget.h"

#include "device/NvGpuControl.h"
#include "overclock/HighPerformancePreset.h"

// The switch of the high-performance preset. The preset goes the road of Apply; nothing on the card is unlocked.

bool Ovryn_OverClockingWidget::setHighPerformance(bool enable)
{
    NvPciIds ids;
    bool eligible = false;
    if (gpuControl) {
        gpuControl->getPciIdentifiers(ids);
        eligible = isHighPerformanceModel(gpuControl->getGpuName(), ids);
    }
    const auto clock = highPerformanceClocks.constFind(subSystemDevice(ids));
    if (!eligible || (enable && clock == highPerformanceClocks.constEnd())) {
        if (highPerformance)
            keepNumbers(beforeHighPerformance); // the preset must not come back as the user's own values
        endHighPerformance();
        return false;
    }

    if (enable == highPerformance) {
        if (!enable)
            endHighPerformance();
        return true;
    }
    if (enable) {
        beforeHighPerformance = current;
        applyParam(withHighPerformance(current, *clock));
        hideApplyAndCancel();
        highPerformance = true;
        emit highPerformanceModeChanged(true);
    } else {
        applyParam(beforeHighPerformance);
        hideApplyAndCancel();
        endHighPerformance();
    }
    return true;
}

void Ovryn_OverClockingWidget::startInHighPerformance()
{
    if (setHighPerformance(true)) {
        // What stood before the mode isn't known after a restart: switching it off leads to the card's defaults.
        beforeHighPerformance = withCardDefaults(beforeHighPerformance);
    } else {
        // `applied` stays empty, so a card that lost the mode shows empty rows from the next showing on, until
        // Apply or Default. That is known, and kept.
        showParam(current);
    }
}
