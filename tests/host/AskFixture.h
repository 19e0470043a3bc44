#pragma once

#include "tests/host/HostProcess.h"
#include "tests/support/SceneOnDisk.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

/// Asks hosts by commands of a shell, where $host is the program and $scene the scene; hosts of this test alone are
/// found there.
class AskFixture : public ::testing::Test {
protected:
    explicit AskFixture(const std::string& scene) : _scene(scene)
    {
        setenv("XDG_RUNTIME_DIR", _folder.c_str(), 1);
        std::filesystem::create_directory(_folder);
    }
    ~AskFixture() override { std::filesystem::remove_all(_folder); }

    struct Row {
        const char* _command;
        int _code;
        const char* _says;
    };
    void expectAll(std::initializer_list<Row> rows) const
    {
        for (const Row& row : rows) {
            HostProcess asking("sh", {"-c", shellText(row._command)});
            EXPECT_EQ(asking.wait(), row._code) << row._command << "\n" << asking.out() << asking.err();
            EXPECT_NE((asking.out() + asking.err()).find(row._says), std::string::npos)
                << row._command << ": " << row._says << "\n"
                << asking.out() << asking.err();
        }
    }
    std::string said(const std::string& command) const
    {
        HostProcess asking("sh", {"-c", shellText(command)});
        EXPECT_EQ(asking.wait(), 0) << asking.err();
        return asking.out();
    }

    const std::string _folder = std::filesystem::temp_directory_path() / ("ask-" + std::to_string(getpid()));
    const SceneOnDisk _scene;

private:
    std::string shellText(const std::string& command) const
    {
        return "host=" HOST_PROGRAM " scene=" + _scene.path() + "; " + command;
    }
};

/// Runs until it goes, and answers from the start. The scene has a sensor "wave" that gets values.
struct RunningScene : HostProcess {
    explicit RunningScene(const SceneOnDisk& file)
        : HostProcess(HOST_PROGRAM, {"run", file.path(), "--format", "lines"})
    {
        EXPECT_TRUE(waitFor("wave SFFloat")) << err();
    }
};
