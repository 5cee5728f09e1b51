#include "guard/WatchList.h"

#include <sstream>

namespace
{

const char *const kWatch = "watch";
const char *const kRelease = "release";

std::string lineOf(const char *verb, qint32 gpuIndex)
{
    return verb + (' ' + std::to_string(gpuIndex));
}

} // namespace

std::string WatchList::watchLine(qint32 gpuIndex)
{
    return lineOf(kWatch, gpuIndex);
}

std::string WatchList::releaseLine(qint32 gpuIndex)
{
    return lineOf(kRelease, gpuIndex);
}

void WatchList::apply(const std::string &line)
{
    std::istringstream words(line);
    std::string verb;
    qint32 gpuIndex = 0;
    if (!(words >> verb >> gpuIndex) || gpuIndex < 0)
        return;
    if (verb == kWatch)
        watched.insert(gpuIndex);
    else if (verb == kRelease)
        watched.erase(gpuIndex);
}
