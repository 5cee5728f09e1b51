#include "platform/FileSync.h"

#include <QDir>
#include <QFile>

#include <windows.h>

bool syncToDisk(QFile &file)
{
    if (!file.isOpen())
        return false;
    // A second handle flushes the same file. The toolkit would wrap its own handle anew at each call and never free
    // it.
    const QString path = QDir::toNativeSeparators(file.fileName());
    const HANDLE handle = CreateFileW(reinterpret_cast<const wchar_t *>(path.utf16()), GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return true; // another program has the file open, which is no failure of the disk
    const bool done = FlushFileBuffers(handle) != 0;
    CloseHandle(handle);
    return done;
}
