#include "host/ask/Asking.h"

#include "host/ExitCode.h"
#include "host/ask/RunningHosts.h"
#include "host/ask/Steady.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

int askHost(const Options& options, const std::function<int(HostClient& host)>& verb)
{
    try {
        const RunningHost chosen = chosenHost(options._host);
        HostClient host(chosen._socket, chosen.name());
        return verb(host);
    } catch (const AskError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return error._code;
    }
}

int followHost(const Options& options, const std::function<int(HostClient& host)>& verb)
{
    return askHost(options, [&](HostClient& host) {
        try {
            return verb(host);
        } catch (const HostEnded& ended) {
            std::fprintf(stderr, "%s\n", ended.what());
            return options._count == Options::Endless ? int(Done) : int(NoAnswer);
        }
    });
}

nlohmann::json askJson(HostClient& host, const HostQuestion& question, double patience)
{
    nlohmann::json answer = nlohmann::json::parse(host.ask(question, patience), nullptr, false);
    if (answer.is_discarded())
        throw AskError(Failed, "the answer to " + question._target + " is no JSON");
    return answer;
}

HostSlots askSlots(HostClient& host, const std::string& name)
{
    HostSlots slots;
    const double before = steadySeconds();
    const nlohmann::json answer = askJson(host, {"/slots" + queryText({{"label", name}})});
    slots._time = (before + steadySeconds()) / 2;
    for (const auto& slot : answer) {
        const std::string label = slot.at("label");
        const bool isOut = slot.at("direction") == "out";
        slots._slots.push_back({label, slot.value("short", label), slot.at("type"), isOut,
                                slot.value(isOut ? "written" : "stored", std::uint64_t{0})});
    }
    return slots;
}

const HostSlot* HostSlots::tryFind(const std::string& label) const
{
    const auto found = std::ranges::find(_slots, label, &HostSlot::_label);
    return found == _slots.end() ? nullptr : &*found;
}

double ratePerSecond(const HostSlot& slot, const HostSlots& before, const HostSlots& now)
{
    const HostSlot* const earlier = before.tryFind(slot._label);
    if (!earlier || earlier->_records > slot._records || now._time <= before._time)
        return 0;
    return static_cast<double>(slot._records - earlier->_records) / (now._time - before._time);
}
} // namespace Host
