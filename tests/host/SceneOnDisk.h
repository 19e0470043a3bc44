#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

/// A scene file that is gone after the test.
class SceneOnDisk {
public:
    explicit SceneOnDisk(const std::string& text)
        : _path(std::filesystem::temp_directory_path() /
                ("scene-" + std::to_string(getpid()) + "-" + std::to_string(_number++) + ".toml"))
    {
        std::ofstream(_path) << text;
    }
    ~SceneOnDisk() { std::filesystem::remove(_path); }
    SceneOnDisk(const SceneOnDisk&) = delete;
    SceneOnDisk& operator=(const SceneOnDisk&) = delete;
    std::string path() const { return _path.string(); }

private:
    static inline int _number = 0;
    const std::filesystem::path _path;
};
