#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

namespace {

constexpr double patience = 60; // seconds: a node may take its time to stop and to start
}

int reloadVerb(const Options& options)
{
    return askHost(options, [](HostClient& host) {
        const nlohmann::json answer = askJson(host, {"/reload", "POST"}, patience);
        for (const auto& line : answer.at("done"))
            std::printf("%s\n", line.get<std::string>().c_str());
        if (answer.at("done").empty())
            std::printf("nothing differs from what runs\n");
        return int(Done);
    });
}
} // namespace Host
