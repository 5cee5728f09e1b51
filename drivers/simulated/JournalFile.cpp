#include "simulated/JournalFile.h"

#include <iostream>

namespace simulated
{

JournalFile::JournalFile(const std::string &path)
{
    if (path.empty())
        return;
    // one process may load the library several times; earlier lines must not be lost
    stream.open(path, std::ios::out | std::ios::app | std::ios::binary);
    if (!stream.is_open())
        std::cerr << "simulated driver: cannot write the journal " << path << std::endl;
}

void JournalFile::write(const std::string &line)
{
    stream << line << '\n' << std::flush;
}

} // namespace simulated
