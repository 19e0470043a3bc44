#pragma once

#include "nodes/filters/Elements.h"
#include "tests/nodes/ManualClock.h"
#include "tests/nodes/NodeFixture.h"

namespace Trovio::Nodes {

/// A relay under the root, between an out-slot of the test and a probe.
template <class NodeT, class T, class Out = T>
class RelayBench {
public:
    explicit RelayBench(const std::string& settings, const std::string& out = "out")
        : _node(std::make_unique<NodeT>(_clock), "label=relay type=" + TypeName<T>::getName() + " " + settings),
          _source("relay/in"),
          _probe("relay/" + out)
    {
    }

    void send(const T& value, double stamp = 1.0) { _source.push(value, stamp); }
    Data<Out> next() { return _probe.next(); }
    Out pass(const T& value, double stamp = 1.0)
    {
        send(value, stamp);
        return next().getValue();
    }
    ManualClock& clock() { return _clock; }
    StandingNode<NodeT>& node() { return _node; }
    BufferedInSlot<Out>& output() { return _probe.slot(); }

private:
    OpenRoot _root;
    ManualClock _clock;
    StandingNode<NodeT> _node;
    Feed<T> _source;
    Probe<Out> _probe;
};

/// Numbers as a value of type T, and back.
template <class T>
T fromNumbers(const std::vector<double>& numbers)
{
    T value{};
    for (std::size_t i = 0; i < Components<T>::Count; ++i)
        setNumber(value, i, numbers.at(i));
    return value;
}

template <class T>
std::vector<double> toNumbers(const T& value)
{
    std::vector<double> numbers;
    for (std::size_t i = 0; i < Components<T>::Count; ++i)
        numbers.push_back(static_cast<double>(Components<T>::get(value, i)));
    return numbers;
}

inline void expectNear(const std::vector<double>& values, const std::vector<double>& expected, double tolerance)
{
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_NEAR(values[i], expected[i], tolerance) << "number " << i;
}

} // namespace Trovio::Nodes
