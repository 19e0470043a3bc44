#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/LineOutput.h"
#include "trovio/Exception.h"
#include "trovio/settings/SettingsParser.h"

#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using nlohmann::json;

namespace {

constexpr double patience = 60; // seconds that nodes may take to stop and start

std::vector<Trovio::SettingText> quotedSettings(const std::string& text)
{
    try {
        return Trovio::parseSettings(text);
    } catch (const Trovio::InvalidFieldException& error) {
        throw AskError(BadUsage, inQuotes(text) + " cannot be read: " + escaped(error.getMessage(), 400));
    }
}

// A value in quotes is read as in a scene file; else all of it is meant as it stands, for the shell has taken its
// quotes away.
std::vector<Trovio::SettingText> settingsIn(const std::string& word)
{
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos || equals == 0)
        throw AskError(BadUsage, inQuotes(word) + " is no setting; allowed: name=value, such as gain=2");
    if (equals + 1 < word.size() && (word[equals + 1] == '\'' || word[equals + 1] == '"'))
        return quotedSettings(word);
    return {{word.substr(0, equals), word.substr(equals + 1)}};
}

json allSettings(const std::vector<std::string>& words)
{
    json settings = json::object();
    for (const std::string& word : words)
        for (const auto& [name, value] : settingsIn(word))
            if (!settings.emplace(name, value).second)
                throw AskError(BadUsage, "setting " + inQuotes(name) + " is given twice; allowed: once");
    return settings;
}

// Asks for a change, and says what is so now.
int change(HostClient& host, const HostQuestion& question, const std::string& ofNothing = {})
{
    const json answer = askJson(host, question, patience);
    LineOutput out;
    for (const std::string line : answer.at("done"))
        if (!out.put(escaped(line, 4000)))
            break;
    if (answer.at("done").empty() && !ofNothing.empty())
        out.put(ofNothing);
    return Done;
}
} // namespace

int reloadVerb(const Options& options)
{
    return askHost(options, [](HostClient& host) {
        return change(host, {"/reload", "POST"}, "nothing differs from what runs");
    });
}

int setVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        const json settings = allSettings(options._settings);
        return change(host, {"/node/" + encoded(options._label), "PUT", jsonText(settings)});
    });
}

int routeVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        const std::string query =
            queryText({{"from", options._from}, {"to", options._to}, {"conversion", options._conversion}});
        return change(host, {"/route" + query, options._removes ? "DELETE" : "PUT"});
    });
}

int changesVerb(const Options& options)
{
    return askHost(options, [](HostClient& host) {
        const std::string text = host.ask({"/changes"});
        LineOutput().write(text.empty() ? "nothing was changed by hand\n" : text);
        return Done;
    });
}
} // namespace Host
