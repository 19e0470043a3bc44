#include "explain/Graph.h"
#include "scene/check/SceneGraph.h"
#include "scene/file/SceneReader.h"
#include "tests/support/PassNode.h"
#include "tests/support/Says.h"
#include "trovio/NodeType.h"
#include "trovio/Root.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Scenes;

namespace {

class Doubler final : public PassNode {
    void start() override { ADD_FAILURE() << "whoever looks at a graph starts nothing"; }
};

const Trovio::NodeTypeEntry doubler{
    "Doubler", "for tests", {}, []() -> std::unique_ptr<Trovio::Node> { return std::make_unique<Doubler>(); }};

class GraphTest : public ::testing::Test {
protected:
    GraphTest()
    {
        Trovio::Root::init();
        Trovio::NodeType::add(doubler);
        const std::string text =
            "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"Doubler\"], [\"Nothing\"]]\n"
            "routes = [[\"*\", \"Doubler/in\"], [\"Doubler/out\", \"Wand\"], [\"Nobody\", \"Wand\"]]\n"
            "[[handler]]\nkind = \"OT\"\nname = \"other\"\n"
            "[[sensor]]\nname = \"wand\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\n"
            "[[sensor]]\nname = \"knob\"\ntype = \"SFFloat\"\nlabel = \"Knob\"\noutput = true\n"
            "[[sensor]]\nname = \"echo\"\ntype = \"SFVec3f\"\nlabel = \"Echo\"\noutput = true\n"
            "[[link]]\nfrom = \"wand.value\"\nto = \"echo.value\"\n";
        _files.push_back(parseScene(text, "scene"));
        _files.push_back(parseScene("[[handler]]\nkind = \"Trovio\"\nname = \"second\"\n"
                                    "[[sensor]]\nname = \"tip\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\n"
                                    "[[sensor]]\nname = \"echo\"\ntype = \"SFVec3f\"\nlabel = \"Out\"\noutput = true\n"
                                    "[[link]]\nfrom = \"tip.value\"\nto = \"echo.value\"\n",
                                    "other scene"));
        _graph = std::make_unique<SceneGraph>(_files);
    }
    ~GraphTest() override
    {
        _graph.reset();
        Trovio::Root::shutdown();
    }

    std::vector<SceneFile> _files;
    std::unique_ptr<SceneGraph> _graph;
};

TEST_F(GraphTest, TellsTheStateOfRoutesToReadersAndToPrograms)
{
    const std::string text = graphText(_graph->inspect(), _graph->places());
    for (const char* line :
         {"handler 'h' (Trovio), in the root as 'Context'\n    out-slot 'Echo' Vec3f, sensor 'echo'\n",
          "    route '*' -> 'Doubler/in': connects 1\n        not 'Echo' -> 'Doubler/in': ",
          "node 'Context/Doubler' (Doubler), passes on\n    in-slot 'in' Float\n",
          "handler 'other' (OT), without namespace\n", "link 'tip.value' -> 'echo.value'\n"})
        EXPECT_TRUE(says(text, line));
    const auto json = nlohmann::json::parse(graphJson(_graph->inspect(), _graph->places()));
    const auto& context = json.at("root").at("namespaces").at(0);
    EXPECT_EQ(context.at("slots").at(2).at("sensor"), "wand");
    EXPECT_EQ(context.at("routes").at(0).at("connections"), 1);
    EXPECT_NE(context.at("routes").at(0).at("pairs").at(1).at("reason"), "");
    EXPECT_EQ(context.at("routes").at(1).at("pending"), true);
    EXPECT_EQ(context.at("namespaces").at(0).at("slots").at(1).at("type"), "Float");
    EXPECT_EQ(json.at("handlers").at(1).at("kind"), "OT");
}

TEST_F(GraphTest, DrawsWhatDoesNotConnectInRed)
{
    const std::string dot = graphDot(_graph->inspect(), _graph->places());
    for (const char* line : {"  \"Context/Knob\" -> \"Context/Doubler/in\";\n",
                             "  \"Context/Doubler/in\" -> \"Context/Doubler/out\" [style=dotted];\n",
                             "  \"Context/Doubler/out\" -> \"Context/Wand\" [style=dashed, color=red, tooltip=",
                             "  \"missing Context/Nobody\" [label=\"Nobody ?\", style=dashed",
                             "  \"missing Context/Nobody\" -> \"Context/Wand\" [style=dashed, color=red",
                             "  \"Context/Wand\" -> \"Context/Echo\" [style=dotted, label=link];\n",
                             "  \"Context2/Wand\" -> \"Context2/Out\" [style=dotted, label=link];\n}\n"})
        EXPECT_TRUE(says(dot, line));
}
} // namespace
