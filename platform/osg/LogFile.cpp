#include "osg/LogFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace osg {

int openLogFile(const std::string& path, std::string& problem)
{
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    const int file = ::open(path.c_str(), flags, 0666);
    if (file < 0) {
        const int error = errno;
        struct stat status = {};
        const bool isUnread = error == ENXIO && ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
        problem = "cannot open log file '" + path +
                  "': " + (isUnread ? "it is a pipe that nobody reads; start its reader first" : std::strerror(error));
        return -1;
    }
    struct stat status = {};
    if (::fstat(file, &status) != 0 || !S_ISFIFO(status.st_mode))
        ::fcntl(file, F_SETFL, O_APPEND); // what is no pipe may take its time
    return file;
}

} // namespace osg
