#include "monitor/answer/Answers.h"
#include "explain/Counts.h"
#include "explain/text/JsonText.h"
#include "monitor/Recorder.h"
#include "monitor/tap/HopAges.h"
#include "tests/monitor/WatchedScene.h"

#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <thread>
#include <unistd.h>

using namespace Monitor;
using nlohmann::json;
using Trovio::Data;
using Trovio::Root;
using Trovio::Time;

namespace {

class AnswersTest : public ::testing::Test, public WatchedScene {
protected:
    Answer ask(const std::string& method, const std::string& path, const std::map<std::string, std::string>& query,
               const std::string& body = {}, bool mayWrite = false) const
    {
        return _answers.ask({method, path, query, body, {}, mayWrite, {}});
    }

    Answer get(const std::string& path, const std::map<std::string, std::string>& query = {}) const
    {
        return ask("GET", path, query);
    }

    json read(const std::string& path, const std::map<std::string, std::string>& query = {}) const
    {
        const Answer answer = get(path, query);
        EXPECT_EQ(answer._status, 200) << answer._body;
        return json::parse(answer._body);
    }

    Answer pub(const std::string& label, const std::string& body) const
    {
        return ask("POST", "/pub/" + label, {}, body, true);
    }

    static double now() { return Time::getCurrentTime().getSeconds(); }

    TapSet _taps;
    Recorder _recorder;
    std::string _noted;
    const SceneChanges _changes{
        [] { return SceneChanges::Lines{"read"}; },
        [](const std::string& node, const SceneChanges::Settings& settings) {
            SceneChanges::Lines lines{node};
            for (const auto& [name, value] : settings)
                lines.push_back(name + "=" + value);
            return lines;
        },
        [](const std::string& from, const std::string& to, const std::string& conversion) {
            return SceneChanges::Lines{from, to, conversion};
        },
        [](const std::string& from, const std::string& to) -> SceneChanges::Lines {
            throw ChangeRefused(ChangeRefused::Why::CannotBeNow, from + " " + to + " stays");
        },
        {},
        [this](const std::string& label, const std::string& json) { _noted = label + " got " + json; },
        [] { return "value = 1\n"; }};
    Answers _answers{{WatchedScene::places,
                      [](const std::string& name) { return "\"" + name + "'s\""; },
                      {},
                      [] {
                          return FrameCounts{7, 1, 60};
                      },
                      "a \"test\"\\",
                      &_recorder,
                      {},
                      _changes},
                     _taps,
                     [] {
                         return std::vector<ClientCounts>{{"1.2.3.4:5", 3, 1}};
                     }};
};

TEST_F(AnswersTest, WhatCannotBeAnsweredIsRefusedWithACure)
{
    const std::string deep = std::string(500'000, '[') + std::string(500'000, ']');
    const struct {
        int _status;
        const char *_says, *_method, *_path;
        std::map<std::string, std::string> _query{};
        std::string _body = "";
        bool _mayWrite = false;
    } rows[] = {
        {404, "nothing is answered at '/slot'; there are /host, /slots, ", "GET", "/slot"},
        {403, "writing is not allowed here", "DELETE", "/recording"},
        {405, "takes GET, POST and DELETE, not 'PUT'", "PUT", "/recording", {}, "", true},
        {409, "nothing is being recorded", "DELETE", "/recording", {}, "", true},
        {400, "no JSON object with \"file\"", "POST", "/recording", {}, "[]", true},
        {400, "whole paths, from '/' to '.mcap'", "POST", "/recording", {}, R"({"file":"a.mcap"})", true},
        {400, "'slot' is unknown", "POST", "/recording", {}, R"({"file":"/a.mcap","slot":"*"})", true},
        {405, "'/slots' takes GET, not 'POST'", "POST", "/slots"},
        {405, "takes POST", "GET", "/pub/Wand"},
        {400, "'/host' knows nothing called 'x'; it takes no names", "GET", "/host", {{"x", "1"}}},
        {400, "allowed are form", "GET", "/graph", {{"forn", "dot"}}},
        {400, "no form 'xml'; allowed are json, dot and text", "GET", "/graph", {{"form", "xml"}}},
        {400, "takes both labels", "GET", "/why", {{"from", "a"}}},
        {400, "*", "GET", "/why", {{"from", "*"}, {"to", "**"}}},
        {400, "'to' is missing", "GET", "/delay", {{"from", "Device/value"}}},
        {400, "'Context/Filter/in', an in-slot", "GET", "/delay", {{"from", "Filter/in"}, {"to", "Wand"}}},
        {400, "'seconds' is '1h'", "GET", "/delay", {{"from", "Filter/out"}, {"to", "Wand"}, {"seconds", "1h"}}},
        {400, "at most 60", "GET", "/delay", {{"from", "Filter/out"}, {"to", "Wand"}, {"seconds", "61"}}},
        {404, "no route leads on from", "GET", "/delay", {{"from", "Filter/out"}, {"to", "Head"}}},
        {404, "did you mean 'Filter/out'?", "GET", "/delay", {{"from", "Filter/oud"}, {"to", "Head"}}},
        {403, "--monitor-write", "POST", "/pub/Wand", {}, R"({"value":1})"},
        {404, "did you mean 'Wand'?", "POST", "/pub/Want", {}, R"({"value":1})", true},
        {400, "it is connected with 'Context/Filter/in'", "POST", "/pub/Device/value", {}, R"({"value":1})", true},
        {400, "no JSON object with \"value\"", "POST", "/pub/Wand", {}, R"({"value":)", true},
        {400, "up to 16 levels", "POST", "/pub/Wand", {}, R"({"value":)" + deep + "}", true},
        {400, "up to 16 levels", "POST", "/pub/Wand", {}, R"({"value":1e999})", true},
        {400, "no Float for 'Context/Wand'", "POST", "/pub/Wand", {}, R"({"value":"x"})", true},
        {400, "seconds since 1970", "POST", "/pub/Wand", {}, R"({"value":1,"stamp":"x"})", true},
        {400, "nothing called 'stmap'", "POST", "/pub/Wand", {}, R"({"value":1,"stmap":1})", true},
        {405, "takes PUT, not 'GET'", "GET", "/node/Filter"},
        {403, "--monitor-write", "PUT", "/node/Filter", {}, "{}"},
        {400, "no JSON object of settings", "PUT", "/node/Filter", {}, "[]", true},
        {400, "allowed are texts, numbers, true and false", "PUT", "/node/Filter", {}, R"({"gain":[1]})", true},
        {405, "takes PUT and DELETE", "GET", "/route"},
        {403, "--monitor-write", "DELETE", "/route", {{"from", "Device/value"}, {"to", "Wand"}}},
        {400, "'to' is missing", "PUT", "/route", {{"from", "Device/value"}}, "", true},
        {404, "did you mean 'Wand'?", "PUT", "/route", {{"from", "Device/value"}, {"to", "Want"}}, "", true},
        {400, "a route begins at an out-slot", "PUT", "/route", {{"from", "Head"}, {"to", "Wand"}}, "", true},
        {409,
         "Context/Device/value gone stays",
         "DELETE",
         "/route",
         {{"from", "Device/value"}, {"to", "gone"}},
         "",
         true},
    };
    for (const auto& row : rows) {
        const Answer answer = ask(row._method, row._path, row._query, row._body, row._mayWrite);
        EXPECT_EQ(answer._status, row._status) << answer._body;
        const std::string error = json::parse(answer._body).at("error");
        EXPECT_NE(error.find(row._says), std::string::npos) << "'" << row._says << "' in: " << error;
    }
    EXPECT_EQ(_wand.getCounts().stored, 0U);
}

TEST_F(AnswersTest, ListsSayWhatThereIs)
{
    send(now());
    _taps.add("Context/Device/value");
    const json slots = read("/slots");
    ASSERT_EQ(slots.size(), 5U);
    const auto slot = [&slots](const std::string& label) {
        return *std::ranges::find_if(slots, [&](const json& one) { return one.at("label") == label; });
    };
    EXPECT_EQ(slot("Context/Wand").at("sensor"), "stick");
    EXPECT_EQ(slot("Context/Wand").at("stored"), 1);
    EXPECT_EQ(slot("Context/Head").at("active"), false);
    const json value = slot("Context/Device/value");
    EXPECT_EQ(value.at("short"), "Device/value");
    EXPECT_EQ(value.at("schema"), "std_msgs/msg/Float32");
    EXPECT_EQ(value.at("written"), 1);
    const json sensors = read("/sensors");
    ASSERT_EQ(sensors.size(), 2U);
    EXPECT_EQ(sensors[1], json::parse(R"({"name":"stick","scene":"wand.toml","field":"SFFloat","type":"Float",
        "label":"Context/Wand","value":"stick's"})"));
    EXPECT_EQ(read("/host").at("leftOut"), 1);
    EXPECT_EQ(read("/nodes").at(0).at("node"), "Context/Filter");
    EXPECT_EQ(read("/types").size(), 40U);
    EXPECT_EQ(read("/graph").at("handlers").at(0).at("name"), "devices");
    EXPECT_TRUE(get("/graph", {{"form", "dot"}})._body.starts_with("digraph"));
    EXPECT_EQ(get("/graph", {{"form", "text"}})._body.find('@'), std::string::npos);
    const json edges = read("/flow").at("edges");
    ASSERT_EQ(edges.size(), 2);
    EXPECT_EQ(edges[1].at("from"), "Context/Filter/out");
    EXPECT_EQ(edges[1].at("written"), edges[1].at("stored"));
    EXPECT_NE(get("/graph", {{"form", "dot"}})
                  ._body.find("\"" + edges[1].at("tail").get<std::string>() + "\" -> \"" +
                              edges[1].at("head").get<std::string>() + "\""),
              std::string::npos);
}

TEST_F(AnswersTest, ListsThatAreWrittenAtOnceSayWhatTheOthersSayInTheirForm)
{
    const std::string oddLabel = "say \"\\\" \x1b \xc2\x85 \xff \u00fc";
    Trovio::OutSlot<float> odd("odd");
    Root::get().addOutSlot(oddLabel, &odd);
    send(now());
    for (const char* path : {"/slots", "/flow"}) {
        const std::string body = get(path)._body;
        EXPECT_EQ(body, Explain::jsonText(nlohmann::ordered_json::parse(body)) + "\n");
    }
    const json slots = read("/slots");
    for (json counts : json(Explain::slotsJson(Root::get().inspect()))) {
        const std::string label = json::parse(Explain::jsonText(json(counts.at("slot"))));
        const auto slot = std::ranges::find_if(slots, [&](const json& one) { return one.at("label") == label; });
        ASSERT_NE(slot, slots.end()) << label;
        counts.erase("slot");
        for (const auto& [name, count] : counts.items())
            EXPECT_EQ(slot->at(name), count) << label << ' ' << name;
    }
    Root::get().removeSlot(oddLabel);
}

TEST_F(AnswersTest, WhatIsPublishedGoesIntoTheSlotAndNothingStays)
{
    const Answer answer = pub("stick", R"({"value":1.5,"stamp":1700000000.25})");
    ASSERT_EQ(answer._status, 200) << answer._body;
    EXPECT_EQ(json::parse(answer._body).at("label"), "Context/Wand");
    const Data<float> record = _wand.pop();
    EXPECT_EQ(record.getValue(), 1.5F);
    EXPECT_EQ(record.getTimeStamp(), Time(1700000000.25));
    EXPECT_EQ(pub("Head", R"({"value":2})")._status, 200);
    EXPECT_NEAR(_head.pop().getTimeStamp().getSeconds(), now(), 60);
    EXPECT_FALSE(_head.isActive());
    EXPECT_EQ(Root::get().getNamespace("@pub"), nullptr);
}

TEST_F(AnswersTest, ChangesAreHandedOnInTheWordsOfTheRoot)
{
    const auto done = [this](const std::string& method, const std::string& path,
                             const std::map<std::string, std::string>& query = {}, const std::string& body = {}) {
        return json::parse(ask(method, path, query, body, true)._body).at("done");
    };
    EXPECT_EQ(done("POST", "/reload"), json({"read"}));
    EXPECT_EQ(done("PUT", "/node/Context/Filter", {}, R"({"gain":2.5,"in":"/a b","on":true})"),
              json({"Context/Filter", "gain=2.5", "in=/a b", "on=true"}));
    EXPECT_EQ(done("PUT", "/route", {{"from", "Device/value"}, {"to", "stick"}, {"conversion", "Scale"}}),
              json({"Context/Device/value", "Context/Wand", "Scale"}));
    EXPECT_EQ(done("PUT", "/route", {{"from", "Context/*"}, {"to", "Context/*"}}),
              json({"Context/*", "Context/*", ""}));
    EXPECT_EQ(get("/changes")._body, "value = 1\n");
    EXPECT_EQ(pub("Head", R"({"value":2})")._status, 200);
    EXPECT_EQ(_noted, "Context/Head got 2.0");
    EXPECT_EQ(Answers(SceneView(), _taps).ask({"GET", "/changes", {}, {}, {}, true, {}})._status, 404);
}

TEST_F(AnswersTest, TellsEverythingThatDoesNotFlowTheWorstFirst)
{
    const auto verdicts = [this] {
        std::vector<std::string> found;
        for (const json& still : read("/why"))
            found.push_back(still.at("verdict"));
        return found;
    };
    Root::get().getNamespace("Context")->addRoute("Device/valve", "Head");
    EXPECT_EQ(verdicts(), (std::vector<std::string>{"no such label", "never written", "never written"}));
    const json details = read("/why", {{"from", "Context/Device/valve"}, {"to", "Context/Head"}}).at("details");
    EXPECT_FALSE(details.contains("other end")) << "it is there: " << details;
    Root::get().getNamespace("Context")->removeRoute("Device/valve", "Head");
    send(now());
    EXPECT_EQ(read("/why", {{"from", "Device/value"}, {"to", "stick"}}).at("verdict"), "unread");
    _wand.pop();
    EXPECT_EQ(verdicts(), std::vector<std::string>{"no route"}) << "to Head";
    EXPECT_EQ(read("/why", {{"from", "Device/value"}, {"to", "stick"}}).at("verdict"), "flowing");
}

TEST_F(AnswersTest, AgesAreMeasuredAlongTheWay)
{
    constexpr double age = 5;
    const std::vector<std::string> way = Root::get().explain("Context/Device/value", "Context/Wand")._passes;
    send(now() - 100);
    HopAges hops(way);
    const auto frame = [&] {
        _wand.pop();
        hops.poll();
    };
    frame(); // what came before counts for nothing
    for (int i = 0; i < 3; ++i) {
        send(now() - age);
        frame();
    }
    send(now() - age, now());
    frame();
    const auto ages = hops.ages({});
    ASSERT_EQ(ages.size(), 3U);
    EXPECT_EQ(ages[0]._label, "Context/Device/value");
    EXPECT_EQ(ages[0]._records, 4U);
    EXPECT_EQ(ages[1]._records, 3U) << "the filter gave one a stamp of its own";
    EXPECT_EQ(ages[2]._label, "Context/Wand");
    EXPECT_EQ(ages[2]._records, 3U);
    for (const HopAge& hop : ages) {
        EXPECT_GE(hop._least + hop._bound, age);
        EXPECT_LE(hop._least, hop._median);
        EXPECT_LE(hop._median, hop._p99);
        EXPECT_LE(hop._p99, hop._most);
    }
    const json asked = read("/delay", {{"from", "Device/value"}, {"to", "stick"}, {"seconds", "0.01"}}).at("hops");
    ASSERT_EQ(asked.size(), 3U);
    EXPECT_EQ(asked[2].at("hop"), "Context/Wand");
    EXPECT_EQ(asked[2].at("median"), nullptr) << "nothing came";
    EXPECT_NEAR(hops.ages({-age, 0.25})[0]._least, ages[0]._least - age, 1e-6);
    EXPECT_NEAR(hops.ages({-age, 0.25})[0]._bound, 0.25, 0.01);
}

TEST_F(AnswersTest, WhoAsksStandsInNobodysWay)
{
    constexpr std::uint64_t count = 2000, published = 20;
    std::atomic<bool> isOver = false;
    std::thread asker([&] {
        while (!isOver)
            for (const char* path : {"/slots", "/sensors", "/why", "/graph", "/metrics"})
                EXPECT_EQ(get(path)._status, 200);
    });
    std::thread watcher([&] {
        while (!isOver) {
            _taps.add("Context/Device/value");
            EXPECT_EQ(get("/delay", {{"from", "Device/value"}, {"to", "stick"}, {"seconds", "0.001"}})._status, 200);
            _taps.remove("Context/Device/value");
        }
    });
    std::thread publisher([&] {
        for (std::uint64_t i = 0; i < published; ++i)
            EXPECT_EQ(pub("Head", R"({"value":2})")._status, 200);
    });
    for (std::uint64_t i = 0; i < count; ++i)
        send(now());
    publisher.join();
    isOver = true;
    asker.join();
    watcher.join();
    EXPECT_EQ(_wand.getCounts().stored, count);
    EXPECT_EQ(_head.getCounts().stored, published);
}

/// What somebody else's reader makes of the text, one sample a line.
std::string parsed(const std::string& text)
{
    const std::string name = ::testing::TempDir() + "metrics" + std::to_string(::getpid());
    std::ofstream(name) << text;
    std::string lines;
    if (FILE* const out = ::popen((METRICS_READER " " + name).c_str(), "r")) {
        char buffer[4096];
        while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, out))
            lines.append(buffer, count);
        EXPECT_EQ(::pclose(out), 0) << lines;
    }
    std::remove(name.c_str());
    return lines;
}

TEST_F(AnswersTest, MetricsAreReadByOthers)
{
    Trovio::OutSlot<float> odd("odd"), hidden("hidden");
    Root::get().addOutSlot("a\\b \"c\"\n\xFF", &odd);
    Root::get().addNamespace("Box", std::make_unique<Trovio::Namespace>());
    Root::get().getNamespace("Box")->addOutSlot("hidden", &hidden);
    Root::get().getNamespace("Context")->addExternalRoute("Wand", "Context/Head"); // which is taken
    send(now());
    _taps.add("Context/Device/value");
    const struct {
        const char *_accepts, *_type;
    } forms[] = {
        {"application/openmetrics-text;version=1.0.0,text/plain;q=0.5", "application/openmetrics-text; version=1"},
        {"text/plain", "text/plain; version=0.0.4"}};
    for (const auto& form : forms) {
        const Answer answer = _answers.ask({"GET", "/metrics", {}, {}, form._accepts, false, {}});
        EXPECT_TRUE(answer._type.starts_with(form._type)) << answer._type;
        const std::string lines = parsed(answer._body);
        for (const char* sample :
             {"ostrel_host_info name='a \"test\"",
              "ostrel_slot_records_total fate='written' slot='Context/Device/value' type='Float' 1",
              "ostrel_slot_records_total fate='written' slot='a\\\\b \"c\"\\n\\\\xff' type='Float' 0",
              "ostrel_slot_records_total fate='written' slot='Box/hidden' type='Float' 0",
              "ostrel_slot_waiting slot='Context/Wand' 1", "ostrel_node_state node='Context/Filter'",
              "ostrel_frames_total fate='left_out' 1",
              "ostrel_client_records_total client='1.2.3.4:5' fate='dropped' 1",
              "ostrel_tap_records_total fate='drained' slot='Context/Device/value' 0"})
            EXPECT_NE(lines.find(sample), std::string::npos) << sample << " in:\n" << lines;
    }
    Root::get().removeNamespace("Box");
    Root::get().removeSlot("a\\b \"c\"\n\xFF");
}

} // namespace
