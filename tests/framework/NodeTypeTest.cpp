#include "trovio/NodeType.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include "trovio/Exception.h"
#include "trovio/Node.h"
#include "trovio/Root.h"
#include "trovio/modules/NodeModuleFile.h"
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

using Trovio::NodeType;
using Trovio::Root;

namespace {

const std::string goodModule = TEST_MODULES "/trovio-node-Good.so";

bool isLoaded(const std::string& path)
{
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library != nullptr;
}

class Modules : public ::testing::Test {
protected:
    Modules()
    {
        setenv("TROVIO_NODE_PATH", "::/nonexistent:" TEST_MODULES ":", 1);
        Root::init();
    }
    ~Modules() override
    {
        Root::shutdown();
        unsetenv("TROVIO_NODE_PATH");
    }

    static std::string problemOf(const std::string& name)
    {
        return ::problemOf<Trovio::InvalidNodeException>([&name] { NodeType::newInstance(name); });
    }
};

TEST_F(Modules, LoadOnDemandAndUnloadAtShutdown)
{
    EXPECT_FALSE(isLoaded(goodModule));
    auto node = NodeType::newInstance("Good");
    EXPECT_TRUE(isLoaded(goodModule));
    EXPECT_EQ(node->getTypeName(), "Good");
    EXPECT_THROW(node->setFieldValues("gain=3"), Trovio::InvalidFieldException);
    node->setFieldValues("gain=2");
    EXPECT_EQ(Root::get().addNamespace(std::move(node)), "Good");
    Root::shutdown();
    EXPECT_FALSE(isLoaded(goodModule));
}

TEST_F(Modules, ModuleStaysWhileOneOfItsNodesIsLeft)
{
    const LogCapture log;
    auto node = NodeType::newInstance("Good");
    Root::shutdown();
    EXPECT_TRUE(isLoaded(goodModule));
    ASSERT_FALSE(log.texts().empty());
    EXPECT_TRUE(says(log.texts().back(), "stays loaded: 1 of its nodes"));
    node.reset(); // runs the module's code
}

TEST_F(Modules, RefusalsSayWhatToDo)
{
    const struct {
        const char* _type;
        std::vector<const char*> _parts;
    } rows[] = {{"", {"letters, digits and '_'"}},
                {"../Good", {"'../Good'", "letters"}},
                {"Good.so", {"letters"}},
                {"Nobody", {"'Nobody'", "trovio-node-Nobody.so", TEST_MODULES, "TROVIO_NODE_PATH"}},
                {"OldVersion", {"version 1", "needs 2", "rebuild"}},
                {"NoEntry", {"trovioNodeModule()", "trovio-node-NoEntry.so"}},
                {"EntryThrows", {"failed in its trovioNodeModule()", "no licence found"}},
                {"LacksLibrary", {"libabsent.so.7", "package libabsent7"}}};
    for (const auto& row : rows)
        EXPECT_TRUE(saysAll(problemOf(row._type), row._parts)) << row._type;
    const LogCapture log;
    NodeType::newInstance("Good");
    ASSERT_EQ(log.texts().size(), 1U);
    EXPECT_TRUE(says(log.texts()[0], "'NoEntry' of module"));
    EXPECT_TRUE(says(problemOf("NoEntry"), "trovioNodeModule()")) << "its own file, not the good one";
    EXPECT_TRUE(says(problemOf("Throws"), "no such device"));
    EXPECT_TRUE(says(problemOf("MakesNothing"), "made nothing"));
}

TEST_F(Modules, FilesThatAreNoWholeLibraryAreRefusedAndHangNobody)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(testing::TempDir()) / ("modules." + std::to_string(getpid()));
    fs::create_directories(folder / "trovio-node-Folder.so");
    setenv("TROVIO_NODE_PATH", folder.c_str(), 1);
    const auto fileOf = [&folder](const std::string& type) { return folder / ("trovio-node-" + type + ".so"); };
    ASSERT_EQ(mkfifo(fileOf("Pipe").c_str(), 0600), 0);
    std::ofstream(fileOf("Empty")).close();
    std::ofstream(fileOf("Text")) << std::string(1000, 'x');
    const auto whole = fs::file_size(goodModule);
    for (const auto& [type, size] :
         {std::pair("CutInHeader", std::uintmax_t(100)), std::pair("CutInHalf", whole / 2)}) {
        fs::copy_file(goodModule, fileOf(type));
        fs::resize_file(fileOf(type), size);
    }
    fs::copy_file(goodModule, fileOf("Zeros"));
    fs::resize_file(fileOf("Zeros"), 4096);
    fs::resize_file(fileOf("Zeros"), whole);
    const std::pair<const char*, const char*> rows[] = {{"Folder", "it is a folder"},
                                                        {"Pipe", "it is a pipe, a file is expected"},
                                                        {"Empty", "it has 0 bytes of"},
                                                        {"Text", "no shared library"},
                                                        {"CutInHeader", "it has 100 bytes of"},
                                                        {"CutInHalf", "it was cut: it has"},
                                                        {"Zeros", "it is damaged"}};
    for (const auto& [type, part] : rows)
        EXPECT_TRUE(says(problemOf(type), part)) << type;
    fs::remove_all(folder);
}

TEST_F(Modules, WhatIsNoExceptionBecomesARefusal)
{
    const LogCapture log;
    auto node = NodeType::newInstance("Rude");
    EXPECT_EQ(::problemOf<Trovio::InvalidFieldException>([&node] { node->setFieldValues("where=configure"); }),
              "node 'Rude' of type 'Rude' threw in configure() something that is no exception; correct the module of "
              "this type");
    node->setFieldValues("where=start label=loud");
    const std::string problem =
        ::problemOf<Trovio::InvalidNodeException>([&node] { Root::get().addNamespace(std::move(node)); });
    EXPECT_TRUE(says(problem, "node 'loud' of type 'Rude' threw in start()"));
    node = NodeType::newInstance("Rude");
    node->setFieldValues("where=remarks");
    Root::get().addNamespace(std::move(node));
    EXPECT_TRUE(says(Root::get().inspect()._children.at(0)._node->_remarks.at(0)._text, "getRemarks()"));
    Root::get().removeNamespace("Rude");
    EXPECT_TRUE(says(problemOf("RudeFactory"), "could not be built: something that is no exception"));
    EXPECT_TRUE(says(log.texts().back(), "'Rude' of type 'Rude' threw while it stopped: something"));
}

TEST_F(Modules, ListShowsTypesAndProblems)
{
    std::map<std::string, Trovio::NodeTypeInfo> types;
    for (const auto& type : NodeType::list())
        types[type._name] = type;
    EXPECT_TRUE(types["Good"]._problem.empty() && types["Good"]._origin == goodModule) << types["Good"]._problem;
    EXPECT_EQ(Trovio::describeAllowed(types["Good"]._settings.at(0)), "number from 0.5 to 2");
    EXPECT_TRUE(types.contains("Throws") && types["Throws"]._problem.empty()) << "not known before it is called";
    for (const char* name : {"OldVersion", "NoEntry", "EntryThrows", "LacksLibrary"})
        EXPECT_EQ(types[name]._problem, problemOf(name));
}

TEST_F(Modules, ProgramMayAddItsOwnTypes)
{
    const Trovio::NodeTypeEntry own{"Own", "", {}, [] { return std::make_unique<Trovio::Node>(); }};
    NodeType::add(own);
    EXPECT_THROW(NodeType::add(own), Trovio::InvalidNodeException);
    EXPECT_THROW(NodeType::add({"a/b", "", {}, own._create}), Trovio::InvalidNodeException);
    EXPECT_THROW(NodeType::add({"NoFactory"}), Trovio::InvalidNodeException);
    EXPECT_EQ(Root::get().addNamespace(NodeType::newInstance("Own")), "Own");
    NodeType::remove("Own");
    EXPECT_NE(problemOf("Own"), "");
}

TEST(NodeModuleFile, KnowsThePackagesOfLibraries)
{
    const std::pair<const char*, const char*> rows[] = {{"liblo.so.7", "liblo7"},
                                                        {"libSDL2-2.0.so.0", "libsdl2-2.0-0"},
                                                        {"libsqlite3.so.0", "libsqlite3-0"},
                                                        {"libddsc.so.0", "libddsc0debian"},
                                                        {"libplain.so", ""},
                                                        {"libncursesw.so.6", "libncursesw6"}};
    for (const auto& [library, package] : rows)
        EXPECT_EQ(Trovio::packageOfLibrary(library), package);
}

} // namespace
