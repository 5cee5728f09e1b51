#pragma once

class QFile;

/// Waits until what was written to the open file lies on the disk, where a power cut leaves it. What the file object
/// holds back itself has to be flushed before. False where the disk could not take it, or the file is not open.
[[nodiscard]] bool syncToDisk(QFile &file);
