#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/// A fresh pair of keys, made by the tool that real releases are signed with. Signs nothing but a test's own bytes.
/// Whatever fails here ends the test program.
class MinisignKey
{
public:
    MinisignKey() { call({"-G", "-W", "-f", "-p", path("key.pub"), "-s", path("key.sec")}); }

    [[nodiscard]] QString secretPath() const { return path("key.sec"); }
    [[nodiscard]] QString publicPath() const { return path("key.pub"); }
    /// The second line of the public key file.
    [[nodiscard]] QByteArray publicText() const { return content(publicPath()).split('\n').at(1).trimmed(); }

    /// The signature file. `more` are further arguments of the tool.
    [[nodiscard]] QByteArray sign(const QByteArray &bytes, const QStringList &more = {}) const
    {
        QFile file(path("signed"));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("no file to sign");
        file.close();
        call(QStringList{"-S", "-s", secretPath(), "-m", file.fileName(), "-x", path("signature")} + more);
        return content(path("signature"));
    }

    /// What the tool itself says about a signature.
    [[nodiscard]] bool accepts(const QByteArray &bytes, const QByteArray &signature) const
    {
        for (const auto &[name, what] : {std::make_pair("checked", bytes), std::make_pair("offered", signature)}) {
            QFile file(path(name));
            if (!file.open(QIODevice::WriteOnly) || file.write(what) != what.size())
                qFatal("no file to check");
        }
        QProcess tool;
        tool.start("minisign", {"-V", "-q", "-H", "-p", publicPath(), "-m", path("checked"), "-x", path("offered")});
        if (!tool.waitForFinished() || tool.exitStatus() != QProcess::NormalExit)
            qFatal("minisign: %s", qPrintable(tool.errorString()));
        return tool.exitCode() == 0;
    }

private:
    [[nodiscard]] QString path(const char *name) const { return folder.filePath(QString::fromLatin1(name)); }
    static QByteArray content(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("minisign has left no %s", qPrintable(path));
        return file.readAll();
    }
    static void call(const QStringList &arguments)
    {
        QProcess tool;
        tool.start("minisign", arguments);
        if (!tool.waitForFinished() || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
            qFatal("minisign: %s %s", qPrintable(tool.errorString()), tool.readAllStandardError().constData());
    }

    QTemporaryDir folder;
};
