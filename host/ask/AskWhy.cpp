#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/LineOutput.h"
#include "host/ask/RunningHosts.h"
#include "trovio/Explanation.h"

#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using nlohmann::json;
using Trovio::Verdict;

namespace {

constexpr double shortPatience = 1; // seconds, for a host that need not be asked

int codeOf(const json& explanation)
{
    const std::string verdict = explanation.at("verdict");
    return verdict == toString(Verdict::Flowing)       ? Done
           : verdict == toString(Verdict::TypesDiffer) ? TypeMismatch
                                                       : NothingFound;
}

std::string lineOf(const json& explanation)
{
    std::string text = explanation.at("text");
    if (const std::string fits = explanation.value("fits", ""); !fits.empty())
        text += "; " + fits;
    if (const auto more = explanation.value("more", std::uint64_t{0}); more > 0)
        text += "; the same holds for " + std::to_string(more) + " more";
    return escaped(text, 4000) + "\n";
}

// One explanation, or a list of what stands still.
std::string textOf(const json& answer)
{
    if (answer.is_object())
        return lineOf(answer);
    std::string text;
    for (const json& explanation : answer)
        text += lineOf(explanation);
    return answer.empty() ? "everything flows\n" : text;
}
} // namespace

int askWhy(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        const json answer = askJson(host, {"/why" + queryText({{"from", options._from}, {"to", options._to}})}, 60);
        LineOutput().write(options._format == Format::Json ? jsonText(answer) + "\n" : textOf(answer));
        return answer.is_object() ? codeOf(answer) : answer.empty() ? Done : codeOf(answer.front());
    });
}

std::string hostOfScenes(const std::vector<Scenes::SceneFile>& scenes)
{
    json paths = json::array(), checksums = json::array();
    for (const Scenes::SceneFile& scene : scenes) {
        std::error_code none;
        paths.push_back(std::filesystem::canonical(scene._path, none).string());
        checksums.push_back(scene._checksum);
    }
    for (const RunningHost& running : runningHosts()) {
        try {
            HostClient host(running._socket, running.name());
            const json about = askJson(host, {"/host"}, shortPatience);
            if (about.at("scenes") != paths)
                continue;
            if (about.at("checksums") == checksums)
                return running._pid;
            std::fprintf(stderr, "%s runs %s, too, but with another text\n", running.name().c_str(),
                         scenes.size() == 1 ? "this scene" : "these scenes");
        } catch (const std::exception&) { // one that says nothing, or something else, is left alone
        }
    }
    return {};
}
} // namespace Host
