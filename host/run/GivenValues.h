#pragma once

#include "base/Mutex.h"
#include "scene/run/Session.h"

#include <map>
#include <string>

namespace Host {

/// The values that sensors were given by hand, the last one of each, until their scene gives them another one.
/// Threads: any.
class GivenValues {
public:
    /// In JSON, as the host writes it; `label` is that of a slot in the root.
    void note(const std::string& label, const std::string& json) OSTREL_EXCLUDES(_lock);

    /// Forgets those of sensors that the change made anew or gave the value of their scene.
    void forget(const std::vector<Scenes::SceneDifference>& done) OSTREL_EXCLUDES(_lock);

    /// As TOML, by the names of the sensors of one of the scenes.
    std::map<std::string, std::string> ofScene(const Scenes::Session::Files& files, std::size_t scene) const
        OSTREL_EXCLUDES(_lock);

private:
    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::map<std::string, std::string> _json OSTREL_GUARDED_BY(_lock); // by label
};
} // namespace Host
