#pragma once

#include "tests/host/HostProcess.h"
#include "tests/support/SceneOnDisk.h"

#include <sstream>
#include <stdexcept>

inline const std::string host = HOST_PROGRAM;

/// A file of the project, as text.
inline std::string projectFile(const std::string& path)
{
    std::ifstream file(std::string(PROJECT_FOLDER "/") + path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The port on which a host with an OSC node says that it listens. Waits for it.
inline std::string listeningPort(HostProcess& process)
{
    const std::string before = "listening on 127.0.0.1:";
    if (!process.waitFor(" with a receive buffer"))
        throw std::runtime_error("the host listens nowhere: " + process.err());
    const std::string behind = process.err().substr(process.err().find(before) + before.size());
    return behind.substr(0, behind.find(' '));
}
