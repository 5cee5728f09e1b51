#include "platform/FileReplacement.h"

#include <QDir>
#include <QFile>

#include <windows.h>

namespace
{

const wchar_t *native(const QString &path)
{
    return reinterpret_cast<const wchar_t *>(path.utf16());
}

bool move(const QString &from, const QString &to, DWORD flags)
{
    const QString source = QDir::toNativeSeparators(from);
    const QString target = QDir::toNativeSeparators(to);
    return MoveFileExW(native(source), native(target), flags | MOVEFILE_WRITE_THROUGH) != 0;
}

} // namespace

bool replaceFile(const QString &from, const QString &to, const QString &spare)
{
    if (move(from, to, MOVEFILE_REPLACE_EXISTING))
        return true;
    // The image of a running program can't be replaced, but it can be moved away under another name.
    if (!move(to, spare, 0))
        return false;
    if (move(from, to, 0))
        return true;
    static_cast<void>(move(spare, to, 0)); // back as it was
    return false;
}

bool keepUnderSecondName(const QString &file, const QString &secondName)
{
    const QString existing = QDir::toNativeSeparators(file);
    const QString made = QDir::toNativeSeparators(secondName);
    return CreateHardLinkW(native(made), native(existing), nullptr) != 0 || QFile::copy(file, secondName);
}

bool syncFolderToDisk(const QString &)
{
    return true; // a move with MOVEFILE_WRITE_THROUGH has waited already
}
