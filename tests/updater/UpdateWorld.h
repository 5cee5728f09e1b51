#pragma once

#include "platform/SingleInstanceChannel.h"
#include "support/MinisignKey.h"
#include "support/ScriptedHttpServer.h"
#include "support/ZipBytes.h"
#include "updater/UpdateRun.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>
#include <QUuid>

/// Contents by path below the installation.
using FileTree = QMap<QString, QByteArray>;

/// A release as its server has it. The manifest is written here by hand, not by the tool that makes releases.
struct WorldRelease
{
    QString version = QStringLiteral("1.0.2.5");
    FileTree files{};
    QStringList executables{};
    QByteArray product = "OvrynDeck2";
    QByteArray platform = ownPlatform().toLatin1();
    QByteArray manual{};
    QByteArray server{};
    /// In place of the archive with the file alone in it; the manifest tells size and hash of this one.
    QMap<QString, QByteArray> archives{};

    [[nodiscard]] QByteArray archive(const QString &path) const
    {
        return archives.contains(path) ? archives.value(path)
                                       : zipOf({{path.section('/', -1).toLatin1(), files.value(path)}});
    }
    [[nodiscard]] static QString archiveName(const QByteArray &archive)
    {
        return QStringLiteral("archives/%1.zip").arg(QString::fromLatin1(hash(archive)));
    }
    [[nodiscard]] QByteArray manifest() const
    {
        QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Update Product=\"" + product +
                          "\" Platform=\"" + platform + "\">\n<ServerAdress Value=\"" + server +
                          "\"/>\n<FileInfos>\n";
        for (auto file = files.cbegin(); file != files.cend(); ++file) {
            const QByteArray name = file.key().section('/', -1).toLatin1();
            const QByteArray packed = archive(file.key());
            text += "<FileInfo FileDir=\"" + file.key().left(file.key().size() - name.size()).toLatin1() +
                    "\" FileName=\"" + name + "\" FileVersion=\"" + version.toLatin1() + "\" Size=\"" +
                    QByteArray::number(file->size()) + "\" Sha256=\"" + hash(*file) + "\" Executable=\"" +
                    (executables.contains(file.key()) ? "1" : "0") + "\" Archive=\"" +
                    archiveName(packed).toLatin1() + "\" ArchiveSize=\"" + QByteArray::number(packed.size()) +
                    "\" ArchiveSha256=\"" + hash(packed) + "\"/>\n";
        }
        return text + "</FileInfos>\n<CurrentVersion Value=\"" + version.toLatin1() +
               "\"/>\n<ManualDownloadVersion Value=\"" + manual + "\"/>\n</Update>\n";
    }
    [[nodiscard]] static QByteArray hash(const QByteArray &bytes)
    {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    }
};

/// An installation of version 1.0.2.4 in a folder of its own, with the server that offers 1.0.2.5 and somebody else's
/// files beside it. A test changes what it is about, then starts an UpdateRun on `site()`.
class UpdateWorld
{
public:
    UpdateWorld()
    {
        writeTree(outside(), {{"file", "somebody's"}, {"deep/file", "somebody's"}, {"OvrynDeck2", "somebody's"}});
        installed.version = "1.0.2.4";
        installed.files = {{"OvrynDeck2", "the old program"},
                           {"lib/same.so", "a library"},
                           {"lib/changed.so", "a library, old"},
                           {"gone/gone.txt", "not needed any more"}};
        writeTree(installation(), installed.files);
        writeTree(installation(), {{"config.xml", "<Config/>"}, {"OvrynUpdate", "the old updater"}});
        setInstalledList(installed.manifest());

        offered.files = {{"OvrynDeck2", "the new program" + QByteArray(100000, 'x')},
                         {"lib/same.so", "a library"},
                         {"lib/changed.so", "a library, new"},
                         {"new/deep/file", "new"}};
        offered.executables = QStringList{"OvrynDeck2"};
    }

    [[nodiscard]] QString installation() const { return root() + "/installation"; }
    [[nodiscard]] QString outside() const { return root() + "/outside"; }
    [[nodiscard]] QString inInstallation(const QString &path) const { return installation() + '/' + path; }

    /// The offered release as it stands, signed, on the server.
    void publish() { publish(offered.manifest()); }
    void publish(const QByteArray &manifest, const QStringList &signArguments = {})
    {
        server.serve(kManifest, manifest);
        server.serve(kSignature, key().sign(manifest, signArguments));
        for (auto file = offered.files.cbegin(); file != offered.files.cend(); ++file)
            server.serve(archivePath(file.key()), offered.archive(file.key()));
    }
    [[nodiscard]] QString archivePath(const QString &file) const
    {
        return kPackets + WorldRelease::archiveName(offered.archive(file));
    }
    /// As the program leaves it before it starts the updater.
    void programHasFetched(const QByteArray &manifest)
    {
        writeTree(installation(), {{"temp/update_info.xml", manifest}});
    }
    void setInstalledList(const QByteArray &manifest)
    {
        writeTree(installation(), {{"release.xml", manifest}, {"release.xml.minisig", key().sign(manifest)}});
    }

    [[nodiscard]] UpdateSite site() const
    {
        UpdateSite where;
        where.installation = installation();
        where.packets = server.address() + kPackets;
        where.keys = {*releaseKeyOf(key().publicText())};
        where.ownVersion = "1.0.2.4";
        where.programId = programId;
        where.fetchTimings = {60000, 60000, 1, 2, 5}; // no time-out plays a part
        where.programPollMs = 5;
        return where;
    }

    /// What is to lie in the installation after the update.
    [[nodiscard]] FileTree expectedInstallation() const
    {
        FileTree files = offered.files;
        files.remove("OvrynUpdate.exe");
        files["config.xml"] = "<Config/>";
        files["OvrynUpdate"] = "the old updater";
        files["release.xml"] = offered.manifest();
        files["gone"] = "(folder)"; // a folder may be the user's, so it stays
        return files;
    }

    /// Contents of all files, links and empty folders of the installation but temp; the signature is left out where
    /// the comparison is with expected contents.
    [[nodiscard]] FileTree installedFiles() const
    {
        FileTree files = tree(installation());
        for (auto file = files.begin(); file != files.end();)
            file = file.key().startsWith("temp/") || file.key() == "temp" ? files.erase(file) : std::next(file);
        return files;
    }
    [[nodiscard]] FileTree outsideFiles() const { return tree(outside()); }

    static void writeTree(const QString &folder, const FileTree &files)
    {
        for (auto content = files.cbegin(); content != files.cend(); ++content) {
            const QString path = folder + '/' + content.key();
            QFile file(path);
            if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
                file.write(*content) != content->size())
                qFatal("can't write %s", qPrintable(path));
        }
    }
    static void replaceByLink(const QString &path, const QString &target)
    {
        if (QFileInfo(path).isDir() && !QFileInfo(path).isSymLink())
            QDir(path).removeRecursively();
        QFile::remove(path);
        if (!QDir().mkpath(QFileInfo(path).path()) || !QFile::link(target, path))
            qFatal("can't link %s", qPrintable(path));
    }

    /// One for all tests of a program: it is the same key for all releases of the real world, too.
    [[nodiscard]] static const MinisignKey &key()
    {
        static const MinisignKey own;
        return own;
    }

    static constexpr const char *kPackets = "/packets/";
    static constexpr const char *kManifest = "/packets/update_info.xml";
    static constexpr const char *kSignature = "/packets/update_info.xml.minisig";

    ScriptedHttpServer server;
    WorldRelease installed;
    WorldRelease offered;
    const QString programId = QStringLiteral("updater test ") + QUuid::createUuid().toString();

private:
    [[nodiscard]] QString root() const { return QDir(folder.path()).canonicalPath(); }
    [[nodiscard]] static FileTree tree(const QString &root)
    {
        FileTree files;
        QDirIterator entries(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            const QFileInfo info(path);
            const QString name = path.mid(root.size() + 1);
            QFile file(path);
            if (info.isSymLink())
                files[name] = "-> " + info.symLinkTarget().toUtf8();
            else if (info.isDir() &&
                     QDir(path).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
                files[name] = "(folder)";
            else if (!info.isDir())
                files[name] = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
        }
        return files;
    }

    QTemporaryDir folder;
};
