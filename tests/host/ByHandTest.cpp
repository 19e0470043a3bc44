#include "tests/host/AskFixture.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <sstream>

namespace {

/// Each node and route on a line of its own, so that lines can be pasted.
constexpr char text[] = R"([[handler]]
kind = "Trovio"
name = "h"
nodes = [
["Generator", "rate=200"],
["Scale", "gain=2"],
["OSC", "listen=127.0.0.1:0 in='/a Float'"],
]
routes = [
["Generator/value", "Scale/in"],
["Scale/out", "Wave"],
["Generator/value", "Wave"],
]
[[sensor]]
name = "wave"
type = "SFFloat"
label = "Wave"
[[sensor]]
name = "dim"
type = "SFFloat"
label = "Dim"
[[sensor]]
name = "note"
type = "SFString"
label = "Note"
[[sensor]]
name = "rumble"
type = "SFFloat"
label = "Rumble"
output = true
)";

class ByHand : public AskFixture {
protected:
    ByHand() : AskFixture(text) {}

    /// Routes in any order.
    std::string graph() const { return said("$host graph --format json | tr -d , | LC_ALL=C sort"); }
};

/// The scene with the lines in it that `changes` printed: blocks of a comment that begins with "# FILE:LINE:" and says
/// what to do there, and of lines.
std::string pasted(const std::string& changes)
{
    std::vector<std::string> lines;
    std::istringstream scene(text), read(changes);
    for (std::string line; std::getline(scene, line);)
        lines.push_back(line);
    std::size_t at = 0;
    for (std::string line; std::getline(read, line);) {
        if (const std::size_t file = line.find("scene.toml:"); line.starts_with("# ") && file != line.npos) {
            at = std::stoul(line.substr(file + 11)) - 1;
            if (line.find("in place of") != line.npos || line.find("without") != line.npos)
                lines[at].clear();
            else if (line.find("behind the other routes") != line.npos)
                at = static_cast<std::size_t>(std::find(std::ranges::find(lines, "routes = ["), lines.end(), "]") -
                                              lines.begin() - 1);
        } else {
            lines[at] += "\n" + line;
        }
    }
    std::string all;
    for (const std::string& line : lines)
        all += line + "\n";
    return all;
}

TEST_F(ByHand, WhatWasChangedIsShownAndMakesAFreshStartEqualOncePasted)
{
    auto running = std::make_unique<RunningScene>(_scene);
    expectAll({
        {"$host changes", 0, "nothing was changed by hand\n"},
        {"$host set Scale gain=3", 0, "'gain=2' -> 'gain=3'"},
        {"$host set Scale gain=much", 2, "'much' is not allowed; allowed: one number"},
        {"$host set Scale gian=1", 2, "nearest: 'gain'"},
        {"$host set Skale gain=1", 3, "did you mean 'Scale'?"},
        {"$host set Context/OSC 'in=/b Vec3f'", 0, "'OSC' starts anew"},
        {"$host route add Generator/value dim 'Scale gain=2|Clamp'", 0, "comes"},
        {"$host route add Generator/value Dim", 1, "is there already"},
        {"$host route add Generator/value Note", 2, "gives Float, the other takes String"},
        {"$host route add Generator/value Note 'Scale type=Vec3f'", 2, "would carry nothing"},
        {"$host route add Scale/out Scale/in", 2, "back into a node"},
        {"$host route add 'Context/*/out' 'Context/*/in'", 2, "back into a node"},
        {"$host set Dim~1 gain=4", 0, "'Dim~1' starts anew"},
        {"$host route remove Scale/out Wave", 0, "goes"},
        {"$host route remove Scale/out Wave", 3, "no route of a scene leads from"},
        {"$host pub Note 'say \"hello\"' && until $host echo note --once | grep hello; do :; done", 0, "hello"},
        {"$host pub Rumble 0.5 && until $host echo rumble --once | grep 0.5; do :; done", 0, "0.5"},
        {"$host list --nodes", 0, "Dim~2\nGenerator\n"},
    });
    const std::string changes = said("$host changes"), before = graph();
    running->signal(SIGTERM);
    EXPECT_EQ(running->wait(), 0) << running->err();
    std::ofstream(_scene.path()) << pasted(changes);
    running = std::make_unique<RunningScene>(_scene);
    EXPECT_EQ(graph(), before) << changes << pasted(changes);
    expectAll({
        {"$host changes", 0, "nothing was changed by hand\n"},
        {"$host echo note --once", 0, "hello"},
        {"$host echo rumble --once", 0, "0.5"},
        {"$host set Scale gain=3 && $host changes", 0, "nothing was changed by hand\n"},
        {"$host set Dim~1 gain=4 && $host changes", 0, "nothing was changed by hand\n"},
        {"$host route remove Generator/value Dim && $host list --nodes", 0, "\nScale\n"},
        {"$host pub Note bye && until $host changes | grep -q bye; do :; done; $host reload && $host changes", 0,
         "value = \"bye\""},
    });
}
} // namespace
