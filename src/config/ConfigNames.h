#pragma once

#include <QString>

/// \file
/// The elements of config.xml and the form of its dates.

inline const QString kRootElement = QStringLiteral("OvrynParameter");

// Sections, the children of the root.
inline const QString kGeneralSettingElement = QStringLiteral("GeneralSetting");
inline const QString kUpdateSettingElement = QStringLiteral("UpdateSetting");
inline const QString kGpuSettingsElement = QStringLiteral("GpuSettings");
inline const QString kLastCloseDateElement = QStringLiteral("LastCloseDate");
inline const QString kLastStartDateElement = QStringLiteral("LastStartDate");
inline const QString kLastCheckDateElement = QStringLiteral("LastCheckDate");
inline const QString kLastUpdateDateElement = QStringLiteral("LastUpdateDate");
inline const QString kOtherSettingElement = QStringLiteral("OtherSetting");
inline const QString kNotPromptHpsAttribute = QStringLiteral("NotPromptHPS");

// A card and its modules.
inline const QString kGpuElement = QStringLiteral("GPU");
inline const QString kMonitorModuleElement = QStringLiteral("MonitorModule");
inline const QString kAdjustModuleElement = QStringLiteral("AdjustModule");
inline const QString kLedModuleElement = QStringLiteral("LedModule");
inline const QString kLcdModuleElement = QStringLiteral("LcdModule");

inline const QString kDateFormat = QStringLiteral("yyyy/MM/dd");
