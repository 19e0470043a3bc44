#pragma once

#include "monitor/codec/SlotCodec.h"
#include "trovio/BasicInSlot.h"
#include "trovio/Node.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Host {

/// Stands for a node in a replay: has its slots, pushes what the node once pushed, and takes what comes without doing
/// anything with it.
/// Threads: whoever replays pushes; the rest as for every node.
class Player final : public Trovio::Node {
public:
    /// `standsFor` is what its state says.
    explicit Player(std::string standsFor);

    /// A source with that label, which stays the player's; the one that is there already, if there is one. Only before
    /// the player stands anywhere, as the next.
    Monitor::AnySource& addSource(const std::string& label, const Monitor::SlotCodec& codec);
    void addSink(const std::string& label, const std::string& slotType);

private:
    void start() override { setRunning(_standsFor); }

    const std::string _standsFor;
    std::map<std::string, std::unique_ptr<Monitor::AnySource>> _sources; // by label
    std::vector<std::unique_ptr<Trovio::BasicInSlot>> _sinks;
};
} // namespace Host
