#pragma once

#include "nodes/dds/clocks/ClockOffset.h"
#include <cstdint>
#include <limits>
#include <map>

namespace Trovio::Nodes {

/// The clocks of peers, by the number under which each writes: whom to ask next, and what the answers came to.
/// A peer is asked a few times in a hurry, so that the first estimate is good, and then now and then while it is
/// wanted. Remembers a bounded number; forgets first who never answered, then who was silent longest.
/// Threads: one at a time.
class PeerClocks {
public:
    /// What came back; times as for ClockOffset::note().
    struct Answer {
        std::uint64_t _peer;
        std::uint64_t _sender; // whom it comes from, as the network says
        double _asked, _received, _answered, _arrived;
    };

    struct Knowledge {
        std::optional<ClockOffset::Estimate> _estimate;
        std::optional<double> _silence; // seconds since the last answer
        std::uint64_t _unanswered = 0;  // questions since then
    };

    /// A value of that peer is there, so that its clock matters. True if the peer was not known.
    bool want(std::uint64_t peer);

    /// When the next peer is to be asked, on the scale of ask(); nothing if none is.
    std::optional<double> nextAsking() const;

    /// Whom to ask now, if anybody is due; counts as asked. now: never goes back; date: what the question will say.
    std::optional<std::uint64_t> ask(double now, double date);

    /// False, and nothing is noted, unless this answers one of the last few questions to that peer, for the first time,
    /// can be, and comes from whom the peer's first answer came: others cannot take a peer's place.
    bool note(const Answer& answer);

    /// That sender is gone; if its peer comes again, it is by another one.
    void forgetSender(std::uint64_t sender);
    void forgetSenders();

    Knowledge getKnowledge(std::uint64_t peer, double date) const;

private:
    struct Peer {
        static constexpr double none = std::numeric_limits<double>::quiet_NaN(); // equals no answer's

        std::uint64_t _lastSign;                                  // in turns: made, or answered
        std::array<double, 4> _questions{none, none, none, none}; // dates of the last that are unanswered
        std::uint64_t _asked = 0;
        std::uint64_t _unanswered = 0;
        std::uint64_t _sender = 0; // 0: any
        double _nextAsking = 0.0;
        bool _wanted = true; // since it was asked last
        bool _answered = false;
        ClockOffset _offset{};

        bool isToBeAsked() const;
    };
    void forgetOne();

    std::map<std::uint64_t, Peer> _peers;
    std::uint64_t _turn = 0;
};

} // namespace Trovio::Nodes
