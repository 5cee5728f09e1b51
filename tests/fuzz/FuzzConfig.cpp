#include "config/Ovryn_ConfigFile.h"

#include <QFile>
#include <QTemporaryDir>

/// \file
/// Any bytes as config.xml: loaded, changed, saved, loaded again.

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
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("config.xml"));
    {
        QFile file(path);
        require(file.open(QIODevice::WriteOnly), "no file to fuzz with");
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    }
    Ovryn_ConfigFile config(path);
    const bool loaded = config.load();
    GeneralSettingInfo general;
    require(config.getGeneralSetting(general) == loaded, "getters follow load");

    const QString name = QStringLiteral("card of the fuzzer");
    config.setMonitorModule(name, 1, 77);
    require(config.save(), "save");

    Ovryn_ConfigFile again(path);
    require(again.load(), "what was saved loads, be it replaced by a fresh file");
    if (loaded && !QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)).contains("<!")) {
        GeneralSettingInfo reread;
        quint32 selectOption = 0;
        require(again.getGeneralSetting(reread) && reread.Language == general.Language, "settings survive a save");
        require(again.getMonitorModule(name, 1, selectOption) && selectOption == 77, "a card survives a save");
    }
    return 0;
}
