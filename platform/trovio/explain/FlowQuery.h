#pragma once

#include "trovio/Explanation.h"
#include "trovio/explain/FlowSearch.h"

namespace Trovio {

/// Finds out whether records flow between two labels of a scope, and if not, why: first whether there are such slots,
/// then whether routes lead from one to the other, then, slot by slot on that way, where the records stop.
/// Threads: the tree lock is held for as long as this lives.
class FlowQuery {
public:
    /// A scope below the one that is asked, with its labels from there.
    struct Below {
        std::string _path;
        const Scope* _scope;
    };

    /// A record is stale, and a reader is behind, after so many seconds.
    FlowQuery(const Scope& here, std::vector<Below> below, double staleAfter);

    /// Throws Exception for a bad pattern.
    Explanation explain(const std::string& from, const std::string& to) const;

private:
    using Entry = Scope::Entry;
    using Entries = std::vector<const Entry*>;
    using Step = FlowSearch::Step;
    using Details = std::vector<Explanation::Detail>;

    Explanation explainPair(const std::string& from, const std::string& to) const;
    static Explanation answered(const std::string& from, const std::string& to, Explanation answer);
    Explanation findCause(const std::string& from, const std::string& to) const;

    // Which slots there are (FlowQuery.cpp).
    Entries findEnds(const std::string& label, Slot::Direction direction) const;
    Explanation whyNoEnd(const std::string& label, Slot::Direction direction, bool swapHelps = false) const;
    static Explanation noSlot(const std::string& label, const std::vector<std::string>& near);
    Explanation noMatch(const Pattern& pattern) const;
    Explanation hidden(const std::string& label, const Entry& home) const;
    const Entry* findBelow(const std::string& label, Slot::Direction direction) const;
    std::vector<std::string> labels(Slot::Direction direction) const;
    std::string labelOf(const Entry& home) const;
    std::string nameOf(const Scope& scope) const;

    // Which routes there are (FlowRoutes.cpp).
    Explanation blocked(const Step& step) const;
    Explanation noWay(const std::string& to, const Entries& ends, const Entries& reached) const;
    FlowQuery at(const Scope& scope) const;
    Explanation badRoute(const std::string& to, const Entries& ends, const Entries& reached) const;
    std::string strayRoute(const std::string& to) const;

    /// A route that leads nowhere, and the two labels that it was probably meant to join.
    struct Repair {
        const Scope::Route* _route;
        std::string _givenFrom, _givenTo; // as the route has them
        std::string _from, _to;
    };

    // Which labels are nearly right (FlowRepair.cpp).
    std::vector<std::string> meant(const std::string& label, const std::vector<std::string>& known) const;
    std::vector<std::string> nodesOfType(const std::string& type) const;
    static std::string hint(const std::vector<std::string>& names);
    std::vector<Repair> repairs() const;
    const Repair* firstOf(const std::vector<Repair>& repairs, const Entries& reached, const Entries& ends) const;
    Explanation misnamed(const Repair& repair) const;
    Explanation withCure(Explanation cause, const std::string& from, const std::string& to) const;

    // What happened on the way (FlowCounts.cpp).
    Explanation walk(const std::vector<Step>& path) const;
    bool stopsBeforeOut(const Entry& home, const Entry* before, Explanation& cause) const;
    bool stopsAtSource(const Entry& home, Explanation& cause) const;
    bool stopsInNode(const Entry& home, const Entry& before, Explanation& cause) const;
    bool stopsAtReader(const Entry& home, Explanation& cause) const;
    static NodeState stateOf(const Entry& home);
    Explanation neverWritten(const Entry& home) const;
    std::string clocks(double stamp) const;
    static std::string remarksOn(const Entry& home);
    std::string recovery(const Entry& home) const;
    std::string lossesAt(const Entry& home) const;
    std::string shortfallsAt(const Entry& home) const;
    std::string rivalsAt(const Entry& home) const;
    Entries producersOf(const Entry& home) const;
    Explanation degraded(const Entry& home) const;
    Explanation flowing(const std::vector<Step>& path) const;

    const Scope& _here;
    const std::vector<Below> _below;
    const double _staleAfter; // seconds
    const double _now;
};

} // namespace Trovio
