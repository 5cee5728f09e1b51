#include "config/Ovryn_ConfigFile.h"

#include "config/ConfigAttributes.h"
#include "config/ConfigNames.h"

#include <QFile>
#include <QLocale>
#include <QTextStream>

namespace
{

constexpr int kIndentation = 4; // blanks for each level

/// Finds the elements of the old `GpuSettings` that are used again, with whatever foreign they hold, for the cards
/// that are written one after the other. An old element is used again where it stands at the place in `GpuSettings`,
/// counted at that moment, at which the list has the same card. Using one moves those behind it up by a place, so it
/// is the first card as a rule and others where neighbours are equal.
///
/// What was passed over without a match can never match later, since only places behind a used element move: one walk
/// serves all cards.
class OldCards
{
public:
    OldCards(const QDomElement &gpuSettings, const QList<GpuSettingInfo> &cards)
        : candidate(gpuSettings.firstChild()), list(cards)
    {
    }

    /// The next element to use again, null when there is none. The caller moves it out before the next call.
    QDomElement takeNext()
    {
        for (; !candidate.isNull() && place < list.size(); candidate = candidate.nextSibling(), ++place) {
            const QDomElement gpu = candidate.toElement();
            if (gpu.tagName() == kGpuElement && shows(gpu, list.at(place))) {
                candidate = candidate.nextSibling();
                return gpu;
            }
        }
        return {};
    }

private:
    static bool shows(const QDomElement &gpu, const GpuSettingInfo &card)
    {
        GpuSettingInfo shown;
        readAttributes(gpu, kGpuAttributes, shown);
        return shown.GpuName == card.GpuName && shown.SubSystemId == card.SubSystemId;
    }

    QDomNode candidate;
    int place = 0; ///< of the candidate among the children that are left
    const QList<GpuSettingInfo> &list;
};

} // namespace

bool Ovryn_ConfigFile::save()
{
    // The root goes behind everything else in the document. Beside a foreign root the file is not well-formed, and
    // the next load replaces it.
    QDomElement root = takeOrCreate(*this, kRootElement);
    writeSections(root);
    appendChild(root);
    return writeFile();
}

/// Each section is moved behind all others as it is written, which gives the file its order whatever it was before.
void Ovryn_ConfigFile::writeSections(QDomElement &root)
{
    writeElement(root, kGeneralSettingElement, kGeneralSettingAttributes, general);
    writeElement(root, kUpdateSettingElement, kUpdateSettingAttributes, update);
    writeGpuSettings(root);
    writeDate(root, kLastCloseDateElement, LastCloseDate);
    writeDate(root, kLastStartDateElement, LastStartDate);
    writeDate(root, kLastCheckDateElement, LastCheckDate);
    writeDate(root, kLastUpdateDateElement, LastUpdateDate);

    QDomElement other = takeOrCreate(root, kOtherSettingElement);
    other.setAttribute(kNotPromptHpsAttribute, NotPromptHPS ? 1 : 0);
    root.appendChild(other);
}

void Ovryn_ConfigFile::writeGpuSettings(QDomElement &root)
{
    const QDomElement oldSettings = takeOrCreate(root, kGpuSettingsElement);
    QDomElement newSettings = createElement(kGpuSettingsElement);
    OldCards oldCards(oldSettings, gpuList);
    for (const GpuSettingInfo &card : qAsConst(gpuList)) {
        QDomElement gpu = oldCards.takeNext();
        if (gpu.isNull())
            gpu = createElement(kGpuElement);
        writeAttributes(gpu, kGpuAttributes, card);
        writeElement(gpu, kMonitorModuleElement, kMonitorModuleAttributes, card);
        writeElement(gpu, kAdjustModuleElement, kAdjustModuleAttributes, card.adjust);
        writeElement(gpu, kLedModuleElement, kLedModuleAttributes, card.led);
        writeElement(gpu, kLcdModuleElement, kLcdModuleAttributes, card.lcd);
        newSettings.appendChild(gpu);
    }
    root.appendChild(newSettings);
}

void Ovryn_ConfigFile::writeDate(QDomElement &root, const QString &name, const QDate &date)
{
    QDomElement element = takeOrCreate(root, name);
    element.removeChild(element.firstChild());
    // Digits of ASCII whichever locale is the user's; the empty text for an invalid date.
    element.appendChild(createTextNode(QLocale::c().toString(date, kDateFormat)));
    root.appendChild(element);
}

template <typename Record>
void Ovryn_ConfigFile::writeElement(QDomElement &parent, const QString &name,
                                    const AttributeTable<Record> &attributes, const Record &record)
{
    QDomElement element = takeOrCreate(parent, name);
    writeAttributes(element, attributes, record);
    parent.appendChild(element);
}

/// The parent's first child of that name, taken out of it, or a new element.
QDomElement Ovryn_ConfigFile::takeOrCreate(QDomNode &parent, const QString &name)
{
    const QDomElement child = parent.firstChildElement(name);
    if (child.isNull())
        return createElement(name);
    parent.removeChild(child);
    return child;
}

bool Ovryn_ConfigFile::writeFile() const
{
    if (QFile::exists(fileName) && !QFile::remove(fileName))
        return false;
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    QDomDocument::save(stream, kIndentation, QDomNode::EncodingFromTextStream);
    stream.flush();
    file.close();
    return true;
}
