#include "config/Ovryn_ConfigFile.h"

#include "config/ConfigAttributes.h"
#include "config/ConfigNames.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStorageInfo>
#include <QTextStream>

#include <algorithm>

namespace
{

constexpr int kIndentation = 4; // blanks for each level

/// Finds the elements of the old `GpuSettings` that are used again, with their unknown content, while the cards are
/// written in order. An old element is used again when its index in `GpuSettings` at that moment is the index of the
/// same card in the list. Each use moves the elements after it up by one. So usually only the first card is found,
/// and others where neighbours are equal.
///
/// An element that was passed over can never match later, because only indices after a used element change. So one
/// walk is enough for all cards.
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

/// False where the disk reports less free space than the text needs. The space of the old file is not counted:
/// another program may take it after the removal.
bool hasRoomFor(const QByteArray &text, const QString &path)
{
    const QStorageInfo disk(QFileInfo(path).absolutePath());
    if (!disk.isValid() || disk.bytesTotal() <= 0)
        return true; // some network disks report no figures
    const qint64 block = std::max(disk.blockSize(), 1);
    const qint64 size = text.size() + text.count('\n'); // a line's end is two bytes on some systems
    return (size + block - 1) / block * block <= disk.bytesAvailable();
}

/// Empty where the file can't be read.
QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

bool Ovryn_ConfigFile::save()
{
    // The root goes after everything else in the document. Beside a foreign root the file is not well-formed, and the
    // next load replaces it.
    QDomElement root = takeOrCreate(*this, kRootElement);
    writeSections(root);
    appendChild(root);
    return writeFile();
}

/// Each section is moved to the end when it is written. That gives the file its order, whatever the order was before.
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
    // ASCII digits in every locale; the empty text for an invalid date.
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

QByteArray Ovryn_ConfigFile::serialised() const
{
    QByteArray text;
    QTextStream stream(&text);
    stream.setCodec("UTF-8");
    QDomDocument::save(stream, kIndentation, QDomNode::EncodingFromTextStream);
    stream.flush();
    return text;
}

bool Ovryn_ConfigFile::writeFile() const
{
    const QByteArray text = serialised();
    QByteArray former;
    if (QFile::exists(fileName)) {
        if (unreadable || !hasRoomFor(text, fileName))
            return false;
        former = contentOf(fileName);
        if (!QFile::remove(fileName))
            return false;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    if (writeWhole(file, text))
        return true;
    // The free space may be wrong: quotas and other programs reduce it. The old text was on the disk a moment ago, so
    // there is room for it.
    if (former.isEmpty())
        file.remove();
    else if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        writeWhole(file, former);
    return false;
}

/// Closes the file, too.
bool Ovryn_ConfigFile::writeWhole(QFile &file, const QByteArray &text) const
{
    const bool onDisk = file.write(text) == text.size() && file.flush() && (!syncToDisk || syncToDisk(file));
    file.close();
    return onDisk && file.error() == QFileDevice::NoError;
}
