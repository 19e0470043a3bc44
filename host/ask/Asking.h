#pragma once

#include "host/Options.h"
#include "host/ask/HostClient.h"

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace Host {

/// Connects with the host that the options choose and runs `verb`, which returns the exit code; says what keeps it from
/// that, and returns the code for it.
int askHost(const Options& options, const std::function<int(HostClient& host)>& verb);

/// The same for a verb that goes on until the host ends, which is the end of it then, and no failure.
int followHost(const Options& options, const std::function<int(HostClient& host)>& verb);

/// The answer as JSON. Throws AskError, also where it is none.
nlohmann::json askJson(HostClient& host, const HostQuestion& question, double patience = 10);

/// A slot of the host, as seen from its root.
struct HostSlot {
    std::string _label, _short; // the same where the short one would be that of several
    std::string _type;
    bool _isOut = false;
    std::uint64_t _records = 0; // written, or stored, so far
};

/// The slots at one moment.
struct HostSlots {
    double _time = 0; // seconds of this machine's steady clock
    std::vector<HostSlot> _slots;

    /// By its whole label; null where there is none.
    const HostSlot* tryFind(const std::string& label) const;
};

/// All of them, or the one that the host understands by `name`. Throws AskError, where it understands none by it with
/// what it has instead.
HostSlots askSlots(HostClient& host, const std::string& name = {});

/// Records a second between two moments; 0 where the slot was not there at the first, or has been made anew.
double ratePerSecond(const HostSlot& slot, const HostSlots& before, const HostSlots& now);
} // namespace Host
