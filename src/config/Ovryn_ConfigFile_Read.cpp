#include "config/Ovryn_ConfigFile.h"

#include "config/ConfigAttributes.h"
#include "config/ConfigNames.h"

#include <QFile>

namespace
{

/// One card with its modules. Reading ends at the first child that is no module (a comment or a text counts too); the
/// modules after it keep their defaults.
GpuSettingInfo readGpu(const QDomElement &gpu)
{
    GpuSettingInfo card;
    readAttributes(gpu, kGpuAttributes, card);
    for (QDomNode child = gpu.firstChild(); !child.isNull(); child = child.nextSibling()) {
        const QDomElement module = child.toElement();
        const QString name = module.tagName();
        if (name == kMonitorModuleElement)
            readAttributes(module, kMonitorModuleAttributes, card);
        else if (name == kAdjustModuleElement)
            readAttributes(module, kAdjustModuleAttributes, card.adjust);
        else if (name == kLedModuleElement)
            readAttributes(module, kLedModuleAttributes, card.led);
        else if (name == kLcdModuleElement)
            readAttributes(module, kLcdModuleAttributes, card.lcd);
        else
            break;
    }
    return card;
}

} // namespace

bool Ovryn_ConfigFile::load()
{
    general = {};
    update = {};
    gpuList.clear();
    clear();
    unreadable = false;

    QFile file(fileName);
    if (!file.exists())
        return startFresh();
    loaded = false;
    unreadable = true; // an incomplete read says nothing about the file's content
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return false;
    file.close();
    unreadable = false;

    if (!parseXml(text, *this, parseError))
        return startFresh();
    const QDomElement root = documentElement();
    if (root.tagName() != kRootElement)
        return false;
    for (QDomNode child = root.firstChild(); !child.isNull(); child = child.nextSibling())
        readSection(child.toElement());
    loaded = true;
    return true;
}

bool Ovryn_ConfigFile::startFresh()
{
    general = {};
    update = {};
    gpuList.clear();
    clear();
    NotPromptHPS = false;
    const QDate today = QDate::currentDate();
    LastStartDate = today;
    LastCloseDate = today;
    LastUpdateDate = today;
    LastCheckDate = today;
    loaded = save();
    return loaded;
}

void Ovryn_ConfigFile::readSection(const QDomElement &section)
{
    const QString name = section.tagName();
    if (name == kGeneralSettingElement)
        readAttributes(section, kGeneralSettingAttributes, general);
    else if (name == kUpdateSettingElement)
        readAttributes(section, kUpdateSettingAttributes, update);
    else if (name == kGpuSettingsElement)
        readGpuSettings(section);
    else if (name == kOtherSettingElement)
        NotPromptHPS = section.attribute(kNotPromptHpsAttribute).toInt() != 0;
    else if (QDate *date = dateOfSection(name))
        *date = QDate::fromString(section.text(), kDateFormat);
}

/// Reading ends at the first child that is no card (a comment or a text counts too). The cards after it are not
/// loaded, and the next save removes them from the file.
void Ovryn_ConfigFile::readGpuSettings(const QDomElement &section)
{
    for (QDomNode child = section.firstChild(); !child.isNull(); child = child.nextSibling()) {
        const QDomElement gpu = child.toElement();
        if (gpu.tagName() != kGpuElement)
            break;
        gpuList.append(readGpu(gpu));
    }
}

QDate *Ovryn_ConfigFile::dateOfSection(const QString &name)
{
    if (name == kLastStartDateElement)
        return &LastStartDate;
    if (name == kLastCloseDateElement)
        return &LastCloseDate;
    if (name == kLastUpdateDateElement)
        return &LastUpdateDate;
    if (name == kLastCheckDateElement)
        return &LastCheckDate;
    return nullptr;
}
