#pragma once

#include "config/ConfigFolder.h"
#include "config/Ovryn_ConfigFile.h"

#include <QTest>

#include <memory>

/// Everything that the getters return for a card; `found` is true when all of them know it.
struct ReadCard : GpuSettingInfo
{
    bool found = false;
};

/// The fixture of the settings file's tests: a folder of its own for each test.
class ConfigFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder = std::make_unique<ConfigFolder>(); }

protected:
    /// Writes the text as config.xml and loads it into `loaded`.
    Ovryn_ConfigFile *load(const QByteArray &text)
    {
        folder->write(text);
        loaded = std::make_unique<Ovryn_ConfigFile>(folder->path());
        if (!loaded->load())
            qFatal("the text was not loaded");
        return loaded.get();
    }

    /// The card of `gpu` unless another one is named.
    static ReadCard cardOf(const Ovryn_ConfigFile &file, const QString &name = QStringLiteral("A"), quint32 id = 7)
    {
        ReadCard card;
        card.found = file.getMonitorModule(name, id, card.SelectOption) &&
                     file.getAdjustModule(name, id, card.adjust) && file.getLedModule(name, id, card.led) &&
                     file.getLcdModule(name, id, card.lcd);
        return card;
    }

    /// The element of a card with the given modules.
    static QByteArray gpu(const QByteArray &modules)
    {
        return "<GPU GpuName=\"A\" SubSystemId=\"7\">" + modules + "</GPU>";
    }

    std::unique_ptr<ConfigFolder> folder;
    std::unique_ptr<Ovryn_ConfigFile> loaded; ///< by `load`
};
