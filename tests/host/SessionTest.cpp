#include "host/report/Report.h"
#include "host/run/ClockStepDetector.h"
#include "host/show/View.h"
#include "scene/file/SceneReader.h"
#include "tests/support/Says.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include "trovio/Values.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

using namespace Host;
using namespace Scenes;

namespace {

/// A node whose values the test pushes itself.
class Source final : public Trovio::Node {
public:
    Source()
    {
        addOutSlot("position", &_position);
        _last = this;
    }
    Trovio::OutSlot<Trovio::Vec3<float>> _position{"position"};

    static Source* _last;
};
Source* Source::_last = nullptr;

const Trovio::NodeTypeEntry sourceType{
    "Source", "for tests", {}, []() -> std::unique_ptr<Trovio::Node> { return std::make_unique<Source>(); }};

constexpr char handler[] = "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"Source\"]]\n"
                           "routes = [[\"Source/position\", \"Wand\"]]\n";
constexpr char wand[] = "[[sensor]]\nname = \"wand\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\nbuffer = 4\n";

/// A session of scenes that are written in the test; gathers what it says.
class SessionTest : public ::testing::Test {
protected:
    void build(const std::vector<std::string>& texts)
    {
        Trovio::NodeType::add(sourceType);
        std::vector<SceneFile> files;
        files.reserve(texts.size());
        for (const std::string& text : texts)
            files.push_back(parseScene(text, "scene" + std::to_string(files.size())));
        _session.build(std::move(files), _say);
    }
    void show(View& view)
    {
        for (SensorWatch* watch : _session.watches())
            watch->setListener(&view);
    }
    static void push(float x, double stamp = 0)
    {
        Source::_last->_position.push(Trovio::Data(Trovio::Vec3<float>(x, 0, 0), Trovio::Time(stamp)));
    }
    bool said(const std::string& line) const { return std::ranges::find(_said, line) != _said.end(); }

    std::vector<std::string> _said;
    const Say _say = [this](const std::string& line) { _said.push_back(line); };
    std::ostringstream _out;
    Session _session; // last: it ends while the test's node type is still there
};

TEST_F(SessionTest, ShowsEveryValueThatCameBetweenFrames)
{
    build({std::string(handler) + wand});
    const auto view = makeJsonView(_out);
    show(*view);
    push(1, 99.25);
    push(2.5F, 98);
    _session.frame(100.5);
    _session.frame(101);
    _session.watches()[0]->field().processValueChange(102, Ostrel::CallerOutside);
    EXPECT_EQ(_out.str(),
              "{\"time\":100.5,\"stamp\":99.25,"
              "\"sensor\":\"wand\",\"label\":\"Wand\",\"type\":\"SFVec3f\",\"value\":[1.0,0.0,0.0]}\n"
              "{\"time\":100.5,\"stamp\":98.0,"
              "\"sensor\":\"wand\",\"label\":\"Wand\",\"type\":\"SFVec3f\",\"value\":[2.5,0.0,0.0]}\n"
              "{\"time\":102.0,\"sensor\":\"wand\",\"label\":\"Wand\",\"type\":\"SFVec3f\",\"value\":[2.5,0.0,0.0]}\n");
    EXPECT_EQ(_said, std::vector<std::string>());
}

TEST_F(SessionTest, TellsTheAgeByTheStampOfTheSource)
{
    build({std::string(handler) + wand});
    const SensorWatch& watch = *_session.watches()[0];
    EXPECT_LT(watch.age(100), 0);
    push(1);
    _session.frame(100);
    EXPECT_EQ(watch.age(100.5), 0.5) << "there was no stamp";
    push(2, 60);
    _session.frame(101);
    EXPECT_EQ(watch.age(102), 42);
    push(3, 1000);
    _session.frame(103);
    EXPECT_EQ(watch.age(104), 1) << "a stamp in the future tells no age";
}

TEST_F(SessionTest, AgesRatesAndTimesGoOnWhenTheDateIsSet)
{
    build({std::string(handler) + wand});
    SensorWatch& watch = *_session.watches()[0];
    const auto view = makeLinesView(_out, 1e9 - 1);
    show(*view);
    ClockStepDetector steps;
    double wall = 1e9, steady = 7;
    const auto frame = [&](double passed, double set) {
        wall += passed + set;
        steady += passed;
        if (const double step = steps.update(wall, steady); step != 0) {
            watch.clockStepped(step);
            view->clockStepped(step);
        }
        _session.frame(wall);
    };
    for (const double set : {0.0, 0.01, 3600.0, -7200.0}) {
        push(1, wall - 2);
        frame(0, 0);
        frame(1, set);
        EXPECT_NEAR(watch.age(wall), 3, 0.02) << set;
    }
    push(1);
    frame(0, 0);
    EXPECT_NEAR(watch.rate(), 1, 0.01);
    EXPECT_TRUE(says(_out.str(), "\n     5.010 wand"));
}

TEST_F(SessionTest, PassesValuesAlongLinksAndOutInTheSameFrame)
{
    build({std::string(handler) + wand +
               "[[sensor]]\nname = \"echo\"\ntype = \"SFVec3f\"\nlabel = \"Echo\"\noutput = true\n"
               "[[link]]\nfrom = \"wand.value\"\nto = \"echo.value\"\n"
               "[[route]]\nfrom = \"Context/Echo\"\nto = \"Context2/Wand\"\n",
           "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n" + std::string(wand)});
    const auto view = makeLinesView(_out, 100);
    show(*view);
    push(7);
    _session.frame(101);
    EXPECT_EQ(_out.str(), "     1.000 scene0: wand SFVec3f 7 0 0\n"
                          "     1.000 scene0: echo SFVec3f 7 0 0\n"
                          "     1.000 scene1: wand SFVec3f 7 0 0\n");
}

TEST_F(SessionTest, SaysAtStartWhatIsNotConnected)
{
    build({std::string(handler) + "[[sensor]]\nname = \"mute\"\ntype = \"SFBool\"\n"
                                  "[[sensor]]\nname = \"node\"\ntype = \"SFNode\"\nlabel = \"Node\"\n"
                                  "[[sensor]]\nname = \"alone\"\ntype = \"SFBool\"\nlabel = \"Alone\"\n"
                                  "[[sensor]]\nname = \"out\"\ntype = \"SFBool\"\nlabel = \"Out\"\noutput = true\n"
                                  "[[sensor]]\nname = \"wrong\"\ntype = \"SFFloat\"\nlabel = \"Wand\"\n"
                                  "[[handler]]\nkind = \"TORVA\"\nname = \"t\"\n"});
    reportStart(_session, 1000, _say);
    for (const char* line :
         {"scene0:27:8: handler 't' of kind 'TORVA' could not be made: no handler of kind 'TORVA' can be made by this "
          "program; allowed: Trovio, OT, ORDAN; the run goes on without it",
          "sensor 'mute' is bound to nothing: it has no label",
          "sensor 'node' (label 'Node') is bound to nothing: no handler has a slot for it (SFNode)",
          "sensor 'alone' (label 'Alone') gets no values: no route leads to its label",
          "sensor 'out' (label 'Out') gives its values to nobody: no route leads from its label",
          "sensor 'wrong' (label 'Wand') gets no values: the route to its label does not connect",
          "node 'Context/Source' (Source): running"})
        EXPECT_TRUE(said(line)) << line;
    EXPECT_EQ(std::ranges::count_if(_said, [](const auto& line) { return line.starts_with("route from "); }), 1);
}

TEST_F(SessionTest, LabelsOfNodesFollowFromTheirPlaceAlsoBehindOneThatWasRefused)
{
    struct Row {
        const char* _nodes;
        std::vector<std::string> _labels; // of those that could be made
    };
    const Row rows[] = {{R"(["Source", "x=1"], ["Source"])", {"Source2"}},
                        {R"(["Sorce"], ["Source"])", {"Source2"}},
                        {R"(["Quite another"], ["Source"])", {"Source"}},
                        {R"(["Source", "label=a x=1"], ["Source", "label=a"], ["Source"])", {"Source", "a2"}},
                        {R"(["Source", "label=Source2"], ["Source", "x=1"], ["Source"])", {"Source2", "Source3"}},
                        {R"(["Source", "label=\"it's\""], ["Source", "label='it\\'s'"])", {"it's", "it's2"}},
                        {R"(["Source", "x='1 label=a"], ["Source"])", {"Source"}},
                        {R"(["Source", "x='1 mylabel=a"], ["Source"])", {"Source2"}}};
    std::string scene;
    for (const Row& row : rows)
        scene += "[[handler]]\nkind = \"Trovio\"\nname = \"" + std::to_string(&row - rows) + "\"\nnodes = [" +
                 row._nodes + "]\n";
    build({scene});
    for (const Row& row : rows) {
        const auto& loaded = _session.scenes()[0]->handlers()[static_cast<std::size_t>(&row - rows)];
        std::vector<std::string> labels;
        for (const auto& child : Trovio::Root::get().getNamespace(loaded._namespace)->inspect()._children)
            labels.push_back(child._label);
        EXPECT_EQ(labels, row._labels) << row._nodes;
    }
    const std::string refused = "scene0:4:21: node 'Source' could not be made: setting 'x' (value '1') is not known; "
                                "allowed: label";
    EXPECT_TRUE(said(refused + "; the run goes on without it")) << _said[0];
    reportEnd(_session, {_session.stopNodes(), 0, 0, 0}, 1000, _say);
    EXPECT_TRUE(said(refused + "; the run went without it"));
}

TEST_F(SessionTest, SumsUpAtTheEnd)
{
    build({std::string(handler) + wand});
    for (int i = 1; i <= 6; ++i)
        push(static_cast<float>(i));
    _session.frame(101);
    push(9);
    const RunTotals totals{_session.stopNodes(), 0, 5, 2};
    reportEnd(_session, totals, 1000, _say);
    ASSERT_GE(_said.size(), 4U);
    EXPECT_TRUE(_said[0].starts_with("sensor 'wand' (label 'Wand') SFVec3f: 4 values, last 6 0 0; in-slot: 7 stored, "
                                     "2 overwritten, 4 taken, 1 waiting; 0 per second, the last "))
        << _said[0];
    EXPECT_TRUE(said("frames: 5 run, 2 left out"));

    _said.clear();
    reportEnd(_session, totals, 40, _say);
    EXPECT_TRUE(said("slot 'Context/Wand' (Vec3f): stored 7,"));
    EXPECT_TRUE(std::ranges::all_of(_said, [](const std::string& line) { return line.size() <= 40; }));
}

} // namespace
