#pragma once

#include "config/ConfigRecords.h"
#include "config/SafeXml.h"

#include <QDate>
#include <QDomDocument>

class QFile;
template <typename Record>
struct AttributeTable;

/// The settings file config.xml, as records in memory and as the document that it is written from.
///
/// Each user makes its own object: the start-up code for a moment, the main dialog for its lifetime. GUI thread only.
/// Nothing here reports a failure to the user: operations return false. After a failed `load` every getter returns
/// false and leaves its output as it was, so that callers keep their defaults.
///
/// A card is known by its name (case matters) and its subsystem identifier; of several entries with the same pair the
/// first one counts.
class Ovryn_ConfigFile : public QDomDocument
{
public:
    /// Writes the buffered content of an open file to the disk; false on failure.
    using SyncToDisk = bool (*)(QFile &file);

    static QString usualPath() { return QStringLiteral("config.xml"); }

    /// Holds the defaults and today's dates until `load`; the file is not touched. `sync` comes from the caller,
    /// because this folder has no code for one system; without it the system decides when it writes to the disk.
    explicit Ovryn_ConfigFile(const QString &path = usualPath(), SyncToDisk sync = nullptr);

    /// Reads the file. One that is missing or not well-formed is replaced by a fresh one, one that cannot be read or
    /// has a foreign root element is left alone. False: nothing is loaded.
    bool load();

    /// Writes the whole file over the old one, without a backup. What the document holds beside the settings that
    /// this program knows stays in it.
    ///
    /// False, with the old file as it was: `load` could not read it and it is still there, the disk has no room for
    /// the new one beside it, it cannot be removed, or the writing failed and the old text was put back. False, with
    /// the old file gone: the new one cannot be opened. Memory keeps the settings in any case.
    bool save();

    bool getGeneralSetting(GeneralSettingInfo &info) const; ///< false when not loaded
    void setGeneralSetting(const GeneralSettingInfo &info);
    bool getUpdateSetting(UpdateSettingInfo &info) const; ///< false when not loaded
    void setUpdateSetting(const UpdateSettingInfo &info);

    // False when nothing is loaded or there is no such card.
    bool getAdjustModule(const QString &gpuName, quint32 subSystemId, AdjustModuleInfo &info) const;
    bool getLcdModule(const QString &gpuName, quint32 subSystemId, LcdModuleInfo &info) const;
    bool getLedModule(const QString &gpuName, quint32 subSystemId, LedModuleInfo &info) const;
    bool getMonitorModule(const QString &gpuName, quint32 subSystemId, quint32 &selectOption) const;

    // A card that is not known yet is added after the others, with defaults in its other modules.
    void setAdjustModule(const QString &gpuName, quint32 subSystemId, const AdjustModuleInfo &info);
    void setLcdModule(const QString &gpuName, quint32 subSystemId, const LcdModuleInfo &info);
    void setLedModule(const QString &gpuName, quint32 subSystemId, const LedModuleInfo &info);
    void setMonitorModule(const QString &gpuName, quint32 subSystemId, quint32 selectOption);

    bool getLastCheckDate(QDate &date) const; ///< false when not loaded
    void setLastCheckDate(const QDate &date);
    void setLastCloseDate(const QDate &date);
    void setLastStartDate(const QDate &date);
    void setLastUpdateDate(const QDate &date);

    bool getNotPromptHPS(bool &notPrompt) const; ///< false when not loaded
    void setNotPromptHPS(bool notPrompt);

private:
    Q_DISABLE_COPY(Ovryn_ConfigFile) // copies would share one document

    bool startFresh();
    void readSection(const QDomElement &section);
    void readGpuSettings(const QDomElement &section);
    QDate *dateOfSection(const QString &name);

    void writeSections(QDomElement &root);
    void writeGpuSettings(QDomElement &root);
    void writeDate(QDomElement &root, const QString &name, const QDate &date);
    template <typename Record>
    void writeElement(QDomElement &parent, const QString &name, const AttributeTable<Record> &attributes,
                      const Record &record);
    QDomElement takeOrCreate(QDomNode &parent, const QString &name);
    [[nodiscard]] QByteArray serialised() const;
    [[nodiscard]] bool writeFile() const;
    bool writeWhole(QFile &file, const QByteArray &text) const;

    [[nodiscard]] const GpuSettingInfo *findCard(const QString &gpuName, quint32 subSystemId) const;
    GpuSettingInfo &cardFor(const QString &gpuName, quint32 subSystemId);

    XmlError parseError; ///< of the last text that was no XML
    GeneralSettingInfo general;
    UpdateSettingInfo update;
    QList<GpuSettingInfo> gpuList; ///< in the file's order, then new cards
    QDate LastStartDate;
    QDate LastCloseDate;
    QDate LastUpdateDate;
    QDate LastCheckDate;
    bool NotPromptHPS = false;
    QString fileName;
    SyncToDisk syncToDisk;
    bool unreadable = false; ///< `load` found a file that it could not read: it must not be replaced
    bool loaded = false;     ///< the records come from a valid file, or were written to a new one
};
