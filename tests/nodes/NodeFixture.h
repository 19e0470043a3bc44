#pragma once

#include "tests/support/Says.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include <thread>

namespace Trovio::Nodes {

/// Keeps the root open for a test, and closes it when all nodes are gone.
class OpenRoot {
public:
    OpenRoot() { Root::init(); }
    ~OpenRoot() { Root::shutdown(); }
};

/// Waits for what another thread is about to do; a hang ends with the test's time.
template <class Condition>
void await(Condition condition)
{
    while (!condition())
        std::this_thread::yield();
}

/// A node that stands under the root, and so has started, while this lives.
template <class NodeT>
class StandingNode {
public:
    StandingNode(std::unique_ptr<NodeT> node, const std::string& settings) : _node(node.get())
    {
        node->setType(NodeT::getEntry());
        node->setFieldValues(settings);
        _label = Root::get().addNamespace(std::unique_ptr<Node>(std::move(node)));
    }
    ~StandingNode() { stop(); }
    StandingNode(const StandingNode&) = delete;
    StandingNode& operator=(const StandingNode&) = delete;

    NodeT* operator->() { return _node; }
    const std::string& getLabel() const { return _label; }

    void stop()
    {
        if (!_taken)
            _taken = Root::get().removeNamespace(_label);
    }

    /// Puts a stopped node back under the root.
    void standAgain() { _label = Root::get().addNamespace(_label, std::move(_taken)); }

    std::uint64_t count(const std::string& counter) const
    {
        for (const auto& [name, value] : _node->getCounters())
            if (name == counter)
                return value;
        ADD_FAILURE() << "no counter '" << counter << "'";
        return 0;
    }
    void awaitCount(const std::string& counter, std::uint64_t number) const
    {
        await([&] { return count(counter) >= number; });
        EXPECT_EQ(count(counter), number) << counter;
    }

private:
    NodeT* _node;
    std::string _label;
    std::unique_ptr<Namespace> _taken;
};

/// The node refuses all these settings, each with a text that holds what stands beside it, and keeps the slots that it
/// has with the good ones.
template <class NodeT>
void expectRefused(std::unique_ptr<NodeT> node, const std::string& good,
                   std::initializer_list<std::pair<const char*, const char*>> bad)
{
    const auto slots = [&node] {
        std::string all;
        for (const SlotInfo& slot : node->inspect()._slots)
            all += slot._label + " " + slot._typeName + "; ";
        return all;
    };
    node->setType(NodeT::getEntry());
    if (!good.empty())
        node->setFieldValues(good);
    const std::string before = slots();
    for (const auto& [settings, mentioned] : bad) {
        const auto apply = [&, text = settings] { node->setFieldValues(text); };
        EXPECT_TRUE(says(problemOf<InvalidFieldException>(apply), mentioned)) << settings;
        EXPECT_EQ(slots(), before) << settings;
    }
}

/// Reads what a node pushes, through a route.
template <class T>
class Probe {
public:
    explicit Probe(const std::string& source, unsigned capacity = 4096) : _source(source), _slot("probe", capacity)
    {
        Root::get().addInSlot(label(), &_slot);
        Root::get().addRoute(_source, label());
    }
    ~Probe()
    {
        Root::get().removeRoute(_source, label());
        Root::get().removeSlot(label());
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    Data<T> next() { return _slot.pop(); }
    BufferedInSlot<T>& slot() { return _slot; }

private:
    std::string label() const { return "probe of " + _source; }

    const std::string _source;
    BufferedInSlot<T> _slot;
};

/// Pushes into an in-slot of a node, through a route.
template <class T>
class Feed {
public:
    explicit Feed(const std::string& target) : _target(target), _slot("feed")
    {
        Root::get().addOutSlot(label(), &_slot);
        Root::get().addRoute(label(), _target);
    }
    ~Feed()
    {
        Root::get().removeRoute(label(), _target);
        Root::get().removeSlot(label());
    }
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    void push(const T& value, double stamp = 1.0) { _slot.push(Data<T>(value, Time(stamp))); }

private:
    std::string label() const { return "feed of " + _target; }

    const std::string _target;
    OutSlot<T> _slot;
};

} // namespace Trovio::Nodes
