#pragma once

#include "host/ask/HostClient.h"
#include "host/show/View.h"

#include <nlohmann/json.hpp>

namespace Host {

/// The sensors of a running host as it told of them last. Threads: one.
class HostSensors final : public TableSensors {
public:
    /// Asks for them. Throws AskError, as does ask().
    explicit HostSensors(HostClient& host);

    /// Asks again; `now` in wall-clock seconds. False where there are other sensors now, which it then has.
    bool ask(double now);

    std::vector<Names> names() const override;
    std::string value(std::size_t sensor, std::size_t limit) const override;
    std::uint64_t changes(std::size_t sensor) const override;
    double age(std::size_t sensor, double now) const override;

private:
    HostClient& _host;
    nlohmann::json _sensors;
    double _asked = 0;
};
} // namespace Host
