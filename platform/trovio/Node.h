#pragma once

#include "trovio/Namespace.h"
#include "trovio/NodeModule.h"
#include "trovio/Settings.h"
#include <atomic>
#include <deque>

namespace Trovio {

/// Counts something that a tool may want to see. Any thread.
class Counter {
public:
    explicit Counter(std::string name) : _name(std::move(name)) {}
    void add(std::uint64_t count = 1) { _value.fetch_add(count, std::memory_order_relaxed); }
    std::uint64_t get() const { return _value.load(std::memory_order_relaxed); }
    const std::string& getName() const { return _name; }

private:
    const std::string _name;
    std::atomic<std::uint64_t> _value{0};
};

/// A namespace that does something: it owns slots, and produces or consumes their data while it runs.
/// A derived class makes its slots and adds them (addInSlot, addOutSlot) in its constructor or in configure(), and
/// shows them to its parent as "Label/SlotLabel": every node is born with that external route.
/// Order: constructor, setBaseURL, configure, start, stop, destructor. A node that was taken out may be added again,
/// and then starts again; one that cannot be built is deleted without start.
class Node : public Namespace {
public:
    Node();
    ~Node() override;

    /// Checks the text against the type's table, adds the settings that every node has, and calls configure().
    /// Only while the node stands nowhere. Throws InvalidFieldException and changes nothing.
    void setFieldValues(const std::string& settings) final;

    /// Which type it is: the table that setFieldValues() checks against. NodeType::newInstance() says it; call this
    /// only for a node that was built in another way, such as one with parts made for a test.
    void setType(const NodeTypeEntry& type);
    std::string getTypeName() const;

    NodeState getState() const;

    /// The state as far as it concerns one of the node's slots: a node of several parts overrides this where one of
    /// them may fail alone. Any thread, under any lock but the log's.
    virtual NodeState getStateOf(const Slot& slot) const;
    std::vector<CounterInfo> getCounters() const;

    /// What the node can say of its slots beyond counts: of the newest values, such as how old they are by which clock;
    /// of an out-slot that has no record yet, what it waits for and what came instead ("listens on …; 20 packets came,
    /// none for /wand"). It stands behind other words, so it begins small and ends without a full stop. Nothing unless
    /// it is overridden. Also after stop(), then as of that moment. Any thread, under any lock but the log's.
    virtual std::vector<RemarkInfo> getRemarks() const;

    /// The settings that every node has beside those of its type.
    static std::span<const Setting> commonSettings();

protected:
    /// Takes over the settings: every row of the type's table has a checked value. Throw settings.refusal() for what
    /// the table cannot say, and before anything has changed. No lock is held.
    virtual void configure(const Settings& settings);

    /// The node stands under the root, its slots are seen: open devices, start threads. No lock is held. Only what can
    /// never work throws; whatever may come later (a taken port, a missing device) degrades the node instead, which
    /// goes on trying. Must not remove the node itself or one above it.
    virtual void start();

    /// Stops and joins what start() began; afterwards nothing is pushed. Called before the node leaves the tree, and
    /// only if start() returned: a start() that throws has undone what it began. No lock is held. May wait.
    virtual void stop();

    /// The state that tools show. Each change is logged once. Any thread, under any lock but the log's.
    void setRunning();
    /// It runs with what the text says, such as "uses device '…'"; an empty one says nothing.
    void setRunning(const std::string& with);
    void setDegraded(const std::string& reason);

    /// Says that what goes into the in-slots comes out of the out-slots, changed or not, as in a filter: routes then
    /// must not lead back into the node. Only in the constructor, before the first slot is added. A device whose
    /// in-slots end in the device, such as the rumble of a controller, does not say this.
    void declareRelay();

    /// A counter that tools show. Only in the constructor; it lives as long as the node.
    Counter& addCounter(const std::string& name);

private:
    friend class FlowRemarks;
    friend class Namespace;
    friend class NodeType;
    bool isConfigured() const;
    std::string getWantedLabel() const; // what its settings say, or else the name of its type
    void showLabel(std::string label);
    void enter();          // start(), unless the node is leaving already
    void leave() noexcept; // stop(), if it was started; swallows and logs what stop() throws
    void sayThatStopThrew() const noexcept;
    // getRemarks() and getStateOf(), for those who show them: what these throw becomes their answer.
    std::vector<RemarkInfo> askRemarks() const;
    NodeState askState(const Slot& slot) const;
    std::string getPath() const noexcept; // the labels from the root down; empty without memory
    void changeState(bool degraded, const std::string& reason);

    // Serialises start and stop of this node: a remover waits here until start() is through. Unranked, and before all
    // others: start() may add nodes, whose locks are taken under this one.
    Ostrel::Mutex _lifeLock;
    bool _started OSTREL_GUARDED_BY(_lifeLock) = false;

    mutable Ostrel::Mutex _stateLock{Ostrel::LockRank::Leaf};
    NodeState _state OSTREL_GUARDED_BY(_stateLock);
    NodeTypeEntry _type OSTREL_GUARDED_BY(_stateLock);
    std::string _wantedLabel OSTREL_GUARDED_BY(_stateLock);
    std::string _shownLabel OSTREL_GUARDED_BY(_stateLock); // for messages, which must not need the tree lock
    bool _configured OSTREL_GUARDED_BY(_stateLock) = false;

    std::deque<Counter> _counters;       // grows in constructors only, so that readers need no lock
    std::shared_ptr<const void> _module; // whose code this object runs
};

} // namespace Trovio
