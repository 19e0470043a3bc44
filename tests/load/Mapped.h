#pragma once

#include <fstream>
#include <string>

/// True if a file whose path holds this text is mapped into the process.
inline bool isMapped(const std::string& text)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(text) != std::string::npos)
            return true;
    return false;
}
