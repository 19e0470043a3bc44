#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

/// A folder of its own for the files of a test, which goes with it.
class RecordingFolder {
public:
    RecordingFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "recording-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::filesystem::filesystem_error("no folder for a test",
                                                    std::error_code(errno, std::generic_category()));
        _path = name;
    }
    ~RecordingFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    RecordingFolder(const RecordingFolder&) = delete;
    RecordingFolder& operator=(const RecordingFolder&) = delete;

    std::string file(const std::string& name) const { return (_path / name).string(); }

private:
    std::filesystem::path _path;
};
