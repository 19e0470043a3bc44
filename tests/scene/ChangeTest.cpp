#include "base/Sanitizers.h"
#include "explain/Graph.h"
#include "ostrel/FieldTypes.h"
#include "scene/change/Edits.h"
#include "scene/change/Plan.h"
#include "scene/file/SceneReader.h"
#include "scene/run/Places.h"
#include "scene/run/SceneChanger.h"
#include "tests/support/Pace.h"
#include "tests/support/RandomScene.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"
#include "trovio/BasicInSlot.h"
#include "trovio/NodeMove.h"
#include "trovio/Root.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
#include <nlohmann/json.hpp>
#include <optional>
#include <thread>

using namespace Scenes;
using Trovio::Root;

namespace {

const Say silent = [](const std::string&) {};

SceneFiles filesOf(const std::string& text)
{
    return {std::make_shared<const SceneFile>(parseScene(text, "scene"))};
}

void start(Session& session, const std::string& text)
{
    std::vector<SceneFile> files;
    files.push_back(parseScene(text, "scene"));
    session.build(std::move(files), silent);
}

std::vector<std::string> change(Session& session, SceneFiles after)
{
    Plan plan(session.files()._running, std::move(after));
    const std::vector<std::string> lines = plan.lines();
    session.apply(plan, Session::Origin::Read, silent);
    return lines;
}

// Routes stand in the order in which they came, which is none of the scene's.
void sortRoutes(nlohmann::json& object)
{
    std::sort(object["routes"].begin(), object["routes"].end());
    for (auto& child : object["namespaces"])
        sortRoutes(child);
}

std::string stateOf(const Session& session)
{
    auto graph = nlohmann::json::parse(Explain::graphJson(Root::get().inspect(), placesOf(session.files()._running)));
    sortRoutes(graph["root"]);
    std::sort(graph["links"].begin(), graph["links"].end());
    for (const SensorWatch* watch : session.watches())
        graph["sensors"].push_back({watch->title(), watch->sensor().getLabel(), watch->field().getTypeName(),
                                    watch->sensor().getBufferSize(), watch->slots().size()});
    return graph.dump(1);
}

std::ptrdiff_t entriesOf(const char* folder)
{
    return std::ranges::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

constexpr char road[] = "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
                        "nodes = [[\"Generator\", \"rate=1000\"], [\"Scale\", \"gain=1\"]]\n"
                        "routes = [[\"Generator/value\", \"Wave\"], [\"Scale/out\", \"Other\"]]\n"
                        "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\nbuffer = 1000\n"
                        "[[sensor]]\nname = \"other\"\ntype = \"SFFloat\"\nlabel = \"Other\"\n";

std::string replaced(std::string text, const std::string& what, const std::string& with)
{
    return text.replace(text.find(what), what.size(), with);
}

const std::string faster = replaced(road, "gain=1", "gain=2");
#if defined(OSTREL_THREAD_SANITIZER) || defined(OSTREL_ADDRESS_SANITIZER)
constexpr long usualEdits = 100; // each takes ten times as long
#else
constexpr long usualEdits = 500;
#endif

} // namespace

// OSTREL_EDITS: how many.
TEST(Change, LeadsToTheSameStateAsAStartWithThatFile)
{
    const long edits = fromEnvironment("OSTREL_EDITS", usualEdits);
    RandomScene scene;
    std::vector<std::string> texts, states;
    {
        Session session;
        start(session, scene.text());
        for (long edit = 0; edit < edits; ++edit) {
            scene.edit();
            texts.push_back(scene.text());
            change(session, filesOf(texts.back()));
            session.frame(static_cast<double>(edit + 1));
            states.push_back(stateOf(session));
        }
    }
    for (std::size_t i = 0; i < texts.size() && !HasFailure(); ++i) {
        Session fresh;
        start(fresh, texts[i]);
        EXPECT_EQ(states[i], stateOf(fresh)) << "edit " << i << " of\n" << (i > 0 ? texts[i - 1] : "") << texts[i];
    }
}

TEST(Change, LeavesWhatItDoesNotNameAlone)
{
    Session session;
    start(session, road);
    const Trovio::Namespace* const source = Root::get().getNamespace("Context")->getNamespace("Generator");
    const SensorWatch* const wave = session.watches()[0];
    const auto* const slot = dynamic_cast<const Trovio::BasicInSlot*>(wave->slots()[0]);
    change(session, filesOf(faster));
    const std::ptrdiff_t threads = entriesOf("/proc/self/task"), descriptors = entriesOf("/proc/self/fd");
    double now = 1;
    for (int round = 0; round < 100; ++round) {
        std::string text = round % 2 == 0 ? road : faster;
        if (round % 3 == 0)
            text += "[[sensor]]\nname = \"more\"\ntype = \"SFFloat\"\nlabel = \"More\"\n";
        if (round % 5 == 0)
            text = replaced(text, "\"Other\"", "\"Another\"");
        change(session, filesOf(text));
        for (const std::uint64_t stored = slot->getCounts().stored; slot->getCounts().stored < stored + 5;)
            session.frame(now += 1);
    }
    EXPECT_EQ(Root::get().getNamespace("Context")->getNamespace("Generator"), source);
    EXPECT_EQ(session.watches()[0], wave);
    EXPECT_EQ(entriesOf("/proc/self/task"), threads);
    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    const Trovio::NamespaceInfo end = session.stopNodes();
    session.frame(now + 1);
    const Trovio::InSlotCounts counts = slot->getCounts();
    EXPECT_EQ(counts.stored, counts.taken);
    EXPECT_EQ(counts.overwritten, 0U);
    EXPECT_EQ(wave->changes(), counts.taken);
    const auto& nodes = end._children.at(0)._children;
    EXPECT_EQ(nodes.at(0)._slots.at(0)._out->_written, counts.stored) << "of the generator since it began";
}

TEST(Change, SaysWhatItDoes)
{
    const std::string head = road;
    const struct {
        std::string _after;
        std::vector<std::string> _lines;
    } rows[] = {
        {head, {}},
        {"# moved\n\n" + head, {}},
        {faster, {"node 'Scale' starts anew: settings 'gain=1' -> 'gain=2'"}},
        {replaced(head, "\"Scale\", \"gain=1\"", "\"Clamp\", \"\""),
         {"node 'Clamp' starts: Clamp ''", "node 'Scale' ends"}},
        {replaced(head, "Scale/out\", \"Other", "Scale/out\", \"Wave"),
         {"route 'Scale/out' -> 'Other' goes", "route 'Scale/out' -> 'Wave' comes"}},
        {replaced(head, "buffer = 1000", "buffer = 8\nvalue = 3"), {"sensor 'wave' is made anew: buffer 1000 -> 8"}},
        {head + "value = 1.5\n", {"sensor 'other' gets the new value of the file"}},
        {"[host]\nrate = 30\n" + head, {"rate 60 -> 30 frames a second"}},
        {"[[handler]]\nkind = \"Trovio\"\nname = \"first\"\n" + head,
         {"handler 'first' comes", "handler 'h' is made anew: label 'Context' -> 'Context2'"}},
        {head + "[[link]]\nfrom = \"wave.value\"\nto = \"other.value\"\n",
         {"link 'wave.value' -> 'other.value' comes"}},
    };
    Session session;
    start(session, road);
    for (const auto& row : rows)
        EXPECT_EQ(linesOf(differences(session.files()._running, filesOf(row._after))), row._lines) << row._after;
    auto& other = dynamic_cast<Ostrel::SFFloat&>(session.watches()[1]->field());
    change(session, filesOf(head + "value = 1.5\n"));
    EXPECT_EQ(other.value(), 1.5F);
    EXPECT_EQ(session.watches()[1]->changes(), 1U);
}

TEST(Change, RefusesWholeWhatCannotBeMade)
{
    const std::string withMissing = replaced(road, "[\"Scale\"", "[\"Nothing\"], [\"Scale\"");
    Session session;
    start(session, withMissing);
    const std::string before = stateOf(session);
    const struct {
        std::string _after;
        const char* _says;
    } rows[] = {{replaced(road, "gain=1", "gain=x"), "scene:4:"},
                {replaced(road, "\"Scale\"", "\"Skale\""), "Skale"},
                {replaced(road, "\"Trovio\"", "\"TORVA\""), "scene:2:"},
                {replaced(road, "\"Trovio\"", "\"Trovia\""), "scene:2:"}};
    for (const auto& row : rows) {
        const std::string more = row._after + "[[sensor]]\nname = \"more\"\ntype = \"SFFloat\"\n";
        EXPECT_TRUE(says(problemOf<SceneError>([&] { change(session, filesOf(more)); }), row._says));
        EXPECT_EQ(stateOf(session), before);
    }
    change(session, filesOf("\n" + replaced(withMissing, "gain=1", "gain=3")));
    ASSERT_EQ(session.scenes()[0]->missing().size(), 1U) << "what was missing stays so";
    EXPECT_TRUE(says(session.scenes()[0]->missingLines()[0], "scene:5:"));
}

TEST(Change, MakesHandlersAnewWhereARouteClosesALoop)
{
    Session session;
    start(session, replaced(road, "\"Generator\", \"rate=1000\"", "\"Clamp\", \"\""));
    const std::string looped =
        replaced(replaced(road, "\"Generator\", \"rate=1000\"", "\"Clamp\", \"\""), "[\"Generator/value\", \"Wave\"]",
                 "[\"Clamp/out\", \"Scale/in\"], [\"Scale/out\", \"Clamp/in\"]");
    Plan plan(session.files()._running, filesOf(looped));
    std::string said;
    session.apply(plan, Session::Origin::Read, [&said](const std::string& line) { said += line; });
    EXPECT_TRUE(says(said, "all handlers are made anew"));
    const std::string state = stateOf(session);
    EXPECT_TRUE(says(state, "would close a loop of nodes"));
    EXPECT_EQ(session.watches()[1]->slots().size(), 1U);
}

// Frames on this thread, changes from others, as in a run.
TEST(SceneChanger, ChangesByHandAreTakenBackByAReload)
{
    const SceneOnDisk file(road);
    Session session;
    session.build(readScenes({file.path()}), silent);
    FrameJobs jobs;
    std::vector<std::string> said;
    SceneChanger changer(session, jobs, [&said](const std::string& line) { said.push_back(line); });
    const auto meanwhile = [&](const std::function<void()>& action) {
        std::atomic<bool> isDone{false};
        std::thread other([&] { action(), isDone = true; });
        while (!isDone)
            jobs.work();
        other.join();
    };
    meanwhile([&] {
        changer.change([](const SceneFiles& running) { return withSettings(running, "Scale", {{"gain", "5"}}); });
        EXPECT_EQ(linesOf(changer.changesByHand()),
                  std::vector<std::string>{"node 'Scale' starts anew: settings 'gain=1' -> 'gain=5'"});
        EXPECT_EQ(changer.reload(),
                  std::vector<std::string>{"node 'Scale' starts anew: settings 'gain=5' -> 'gain=1'"});
        EXPECT_TRUE(changer.reload().empty());
        EXPECT_TRUE(linesOf(changer.changesByHand()).empty());
        std::ofstream(file.path()) << "[[sensor]\n";
        EXPECT_TRUE(says(problemOf<SceneError>([&] { changer.reload(); }), file.path() + ":1:"));
        std::filesystem::remove(file.path());
        EXPECT_TRUE(says(problemOf<SceneError>([&] { changer.reload(); }), "cannot be opened"));
    });
    EXPECT_EQ(said.size(), 2U);
    jobs.end();
    EXPECT_THROW(changer.change([](const SceneFiles& files) { return withoutRoute(files, "Scale/out", "Other"); }),
                 JobRefused);
}

TEST(SceneChanger, NamesTheNodeThatHoldsTheFramesUp)
{
    Session session;
    start(session, road);
    FrameJobs jobs;
    std::promise<std::string> told;
    SceneChanger changer(session, jobs, [&told](const std::string& line) {
        if (line.starts_with("the frames stand"))
            told.set_value(line);
    });
    std::optional<Trovio::NodeMove> hanging(std::in_place, "Context/OSC", Trovio::NodeMove::Kind::Stops);
    std::thread other(
        [&] { changer.change([](const SceneFiles& running) { return withoutRoute(running, "Scale/out", "Other"); }); });
    EXPECT_TRUE(says(told.get_future().get(), "node 'Context/OSC' has not stopped for 1 s"));
    hanging.reset();
    while (!jobs.work())
        std::this_thread::yield();
    other.join();
}
