#pragma once

class QFile;

/// Waits until the content of the open file is on the disk, where it survives a power cut. The file object's own
/// buffer has to be flushed before. False when the disk failed or the file is not open.
[[nodiscard]] bool syncToDisk(QFile &file);
