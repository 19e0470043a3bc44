#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

/// A scene file, or another one with a name of its own, that is gone after the test.
class SceneOnDisk {
public:
    explicit SceneOnDisk(const std::string& text, const std::string& name = "scene.toml")
        : _folder(std::filesystem::temp_directory_path() /
                  ("scene-" + std::to_string(getpid()) + "-" + std::to_string(_number++))),
          _path(_folder / name)
    {
        std::filesystem::create_directory(_folder);
        std::ofstream(_path) << text;
    }
    ~SceneOnDisk() { std::filesystem::remove_all(_folder); }
    SceneOnDisk(const SceneOnDisk&) = delete;
    SceneOnDisk& operator=(const SceneOnDisk&) = delete;
    std::string path() const { return _path.string(); }

private:
    static inline int _number = 0;
    const std::filesystem::path _folder, _path;
};
