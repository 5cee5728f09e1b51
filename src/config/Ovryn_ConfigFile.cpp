#include "config/Ovryn_ConfigFile.h"

#include <algorithm>

Ovryn_ConfigFile::Ovryn_ConfigFile(const QString &path, SyncToDisk sync)
    : LastStartDate(QDate::currentDate()),
      LastCloseDate(LastStartDate),
      LastUpdateDate(LastStartDate),
      LastCheckDate(LastStartDate),
      fileName(path),
      syncToDisk(sync)
{
}

bool Ovryn_ConfigFile::getGeneralSetting(GeneralSettingInfo &info) const
{
    if (loaded)
        info = general;
    return loaded;
}

void Ovryn_ConfigFile::setGeneralSetting(const GeneralSettingInfo &info)
{
    general = info;
}

bool Ovryn_ConfigFile::getUpdateSetting(UpdateSettingInfo &info) const
{
    if (loaded)
        info = update;
    return loaded;
}

void Ovryn_ConfigFile::setUpdateSetting(const UpdateSettingInfo &info)
{
    update = info;
}

bool Ovryn_ConfigFile::getAdjustModule(const QString &gpuName, quint32 subSystemId, AdjustModuleInfo &info) const
{
    const GpuSettingInfo *card = findCard(gpuName, subSystemId);
    if (loaded && card)
        info = card->adjust;
    return loaded && card;
}

bool Ovryn_ConfigFile::getLcdModule(const QString &gpuName, quint32 subSystemId, LcdModuleInfo &info) const
{
    const GpuSettingInfo *card = findCard(gpuName, subSystemId);
    if (loaded && card)
        info = card->lcd;
    return loaded && card;
}

bool Ovryn_ConfigFile::getLedModule(const QString &gpuName, quint32 subSystemId, LedModuleInfo &info) const
{
    const GpuSettingInfo *card = findCard(gpuName, subSystemId);
    if (loaded && card)
        info = card->led;
    return loaded && card;
}

bool Ovryn_ConfigFile::getMonitorModule(const QString &gpuName, quint32 subSystemId, quint32 &selectOption) const
{
    const GpuSettingInfo *card = findCard(gpuName, subSystemId);
    if (loaded && card)
        selectOption = card->SelectOption;
    return loaded && card;
}

void Ovryn_ConfigFile::setAdjustModule(const QString &gpuName, quint32 subSystemId, const AdjustModuleInfo &info)
{
    cardFor(gpuName, subSystemId).adjust = info;
}

void Ovryn_ConfigFile::setLcdModule(const QString &gpuName, quint32 subSystemId, const LcdModuleInfo &info)
{
    cardFor(gpuName, subSystemId).lcd = info;
}

void Ovryn_ConfigFile::setLedModule(const QString &gpuName, quint32 subSystemId, const LedModuleInfo &info)
{
    cardFor(gpuName, subSystemId).led = info;
}

void Ovryn_ConfigFile::setMonitorModule(const QString &gpuName, quint32 subSystemId, quint32 selectOption)
{
    cardFor(gpuName, subSystemId).SelectOption = selectOption;
}

bool Ovryn_ConfigFile::getLastCheckDate(QDate &date) const
{
    if (loaded)
        date = LastCheckDate;
    return loaded;
}

void Ovryn_ConfigFile::setLastCheckDate(const QDate &date)
{
    LastCheckDate = date;
}

void Ovryn_ConfigFile::setLastCloseDate(const QDate &date)
{
    LastCloseDate = date;
}

void Ovryn_ConfigFile::setLastStartDate(const QDate &date)
{
    LastStartDate = date;
}

void Ovryn_ConfigFile::setLastUpdateDate(const QDate &date)
{
    LastUpdateDate = date;
}

bool Ovryn_ConfigFile::getNotPromptHPS(bool &notPrompt) const
{
    if (loaded)
        notPrompt = NotPromptHPS;
    return loaded;
}

void Ovryn_ConfigFile::setNotPromptHPS(bool notPrompt)
{
    NotPromptHPS = notPrompt;
}

const GpuSettingInfo *Ovryn_ConfigFile::findCard(const QString &gpuName, quint32 subSystemId) const
{
    const auto card = std::find_if(gpuList.cbegin(), gpuList.cend(), [&](const GpuSettingInfo &entry) {
        return entry.GpuName == gpuName && entry.SubSystemId == subSystemId;
    });
    return card == gpuList.cend() ? nullptr : &*card;
}

GpuSettingInfo &Ovryn_ConfigFile::cardFor(const QString &gpuName, quint32 subSystemId)
{
    const auto card = std::find_if(gpuList.begin(), gpuList.end(), [&](const GpuSettingInfo &entry) {
        return entry.GpuName == gpuName && entry.SubSystemId == subSystemId;
    });
    if (card != gpuList.end())
        return *card;
    GpuSettingInfo fresh;
    fresh.GpuName = gpuName;
    fresh.SubSystemId = subSystemId;
    gpuList.append(fresh);
    return gpuList.last();
}
