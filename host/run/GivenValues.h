#pragma once

#include "base/Mutex.h"
#include "scene/run/Session.h"

#include <map>
#include <string>

namespace Host {

/// The values that sensors were given by hand, the last one of each. Forgotten once the scenes are read anew.
/// Threads: any.
class GivenValues {
public:
    /// In JSON, as the host writes it; `label` is that of a slot in the root, `loaded` the files as they were read.
    void note(const Scenes::SceneFiles& loaded, const std::string& label, const std::string& json)
        OSTREL_EXCLUDES(_lock);

    /// As TOML, by the names of the sensors of one of the scenes.
    std::map<std::string, std::string> ofScene(const Scenes::Session::Files& files, std::size_t scene) const
        OSTREL_EXCLUDES(_lock);

private:
    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    Scenes::SceneFiles _loaded OSTREL_GUARDED_BY(_lock);               // when values were given
    std::map<std::string, std::string> _json OSTREL_GUARDED_BY(_lock); // by label
};
} // namespace Host
