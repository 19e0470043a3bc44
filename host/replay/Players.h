#pragma once

#include "host/replay/Player.h"
#include "monitor/replay/RecordedFile.h"
#include "trovio/Stepper.h"

#include <set>

namespace Host {

/// How far a replay reaches out of the machine.
enum class Reach {
    Nowhere, // a test: nothing comes from outside, nothing is opened
    Hears,   // nodes that were not recorded receive
    Sends,   // and send
};

/// What stands for the nodes of a scene in a replay. A filter is itself. A node that was recorded becomes a player. One
/// that takes values, such as one that drives a machine, becomes a player that does nothing, unless it may send; in a
/// test one whose values would come from outside, too. All others are themselves.
/// Ownership: the tree owns the players; refers to the recording and the stepper.
/// Threads:   the scene thread.
class Players {
public:
    Players(const Monitor::RecordedFile& recorded, const Trovio::Stepper& stepper, Reach reach);

    /// For Session::build().
    std::unique_ptr<Trovio::Node> choose(const std::string& path, const std::string& type,
                                         std::unique_ptr<Trovio::Node> made);
    /// Once the session is built.
    void finish();

    /// Where the messages of a channel go; null where nobody wants them. As long as the players stand.
    Monitor::AnySource* find(std::uint16_t channel) const;
    /// The channels that somebody wants.
    std::set<std::uint16_t> channels() const;

    /// The nodes with threads of their own, which the stepper cannot hold back: "'Context/DDS' (DDS)".
    const std::vector<std::string>& unsteady() const { return _unsteady; }
    /// What of the recording is not replayed, and which nodes do nothing; a line each.
    const std::vector<std::string>& notes() const { return _notes; }

private:
    std::string whyLeftOut(const std::string& type, const Trovio::NamespaceInfo& node) const;
    void addRecorded(Player& player, const std::string& path);
    void lookForThreads();
    void noteUnclaimed();

    const Monitor::RecordedFile& _recorded;
    const Trovio::Stepper& _stepper;
    const Reach _reach;
    std::map<std::uint16_t, Monitor::AnySource*> _sources; // by channel
    std::set<std::string> _paths;                          // of nodes that are themselves or stand for a recorded one
    std::string _newest;                                   // the node that has started since threads were looked for
    std::set<int> _threads;
    std::size_t _joined;
    std::vector<std::string> _unsteady, _notes;
};
} // namespace Host
