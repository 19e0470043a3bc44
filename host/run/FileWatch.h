#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Host {

/// Hears when files are written, come, or go under their names: it watches their folders, for editors write another
/// file and rename it.
/// Threads: one.
class FileWatch {
public:
    /// Throws std::system_error where the system gives no watch for a folder.
    explicit FileWatch(const std::vector<std::string>& paths);
    ~FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    /// Readable when something has happened in one of the folders.
    int descriptor() const { return _descriptor; }

    /// Takes what has happened by now; whether one of the files is concerned. So they are where a folder goes, too: who
    /// wants to hear more then makes another watch.
    bool takeEvents();

private:
    bool concerns(int watch, const std::string& name) const;

    int _descriptor = -1;
    std::vector<std::pair<int, std::string>> _names; // of the files in the folder of that watch
};
} // namespace Host
