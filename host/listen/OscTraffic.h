#pragma once

#include "base/Mutex.h"
#include "nodes/osc/packet/OscGuess.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Host {

/// Messages of one address, and of one device where arguments in front tell devices apart.
struct OscRow {
    std::string _address, _tags;
    std::vector<std::uint8_t> _data; // of the arguments of the last message, cut
    std::string _items;              // that may take such messages in an entry of 'in'; empty where none do
    std::string _title;              // what to say in front of them
    std::uint64_t _count = 0;
    double _perSecond = 0; // in the mean

    /// "0.1 1.6 -0.3", "\"Hmd\" 1 2 3": the arguments of the last message, free of control characters.
    std::string describeValues() const;
};

/// What comes by OSC, gathered for people.
/// Threads: one visits, any reads.
class OscTraffic final : public Trovio::Nodes::OscMessageVisitor {
public:
    static constexpr std::size_t MaxRows = 1000;
    /// Where an address has more devices, or what looks so, they share a row.
    static constexpr std::size_t MaxDevices = 32;

    void visit(const Trovio::Nodes::OscMessage& message) override OSTREL_EXCLUDES(_lock);

    /// By address.
    std::vector<OscRow> rows() const OSTREL_EXCLUDES(_lock);
    /// Messages that found no row any more.
    std::uint64_t others() const OSTREL_EXCLUDES(_lock);

private:
    struct Messages {
        Trovio::Nodes::OscGuess _guess;
        OscRow _row;
        double _first = 0, _last = 0; // when messages came, by the steady clock

        void note(const Trovio::Nodes::OscMessage& message, double now);
    };
    struct Address {
        std::map<std::string, Messages, std::less<>> _devices;
        bool _isShared = false;
    };

    Messages* find(const Trovio::Nodes::OscMessage& message) OSTREL_REQUIRES(_lock);
    Messages& share(Address& address) OSTREL_REQUIRES(_lock);

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::map<std::string, Address, std::less<>> _addresses OSTREL_GUARDED_BY(_lock);
    std::size_t _rowCount OSTREL_GUARDED_BY(_lock) = 0;
    std::uint64_t _others OSTREL_GUARDED_BY(_lock) = 0;
};
} // namespace Host
