#pragma once

#include <fstream>
#include <string>

namespace simulated
{

/// The journal: lines appended to a file, each on the disk before the call returns.
class JournalFile
{
public:
    /// An empty path means no journal. A file that cannot be opened is reported on standard error.
    explicit JournalFile(const std::string &path);
    [[nodiscard]] bool isOpen() const { return stream.is_open(); }
    void write(const std::string &line);

private:
    std::ofstream stream;
};

} // namespace simulated
