#pragma once

#include "benchmarks/road/Road.h"
#include "nodes/osc/OscNode.h"
#include "trovio/Namespace.h"

namespace Bench {

/// An OSC node with a route to a sensor of a scene.
class NodeReceiver {
public:
    explicit NodeReceiver(int bufferBytes) : _sensor(_road.add<Ostrel::SFVec3f>(false))
    {
        auto node = std::make_unique<Trovio::Nodes::OscNode>(Trovio::Nodes::Clock::system());
        node->setType(Trovio::Nodes::OscNode::getEntry());
        node->setFieldValues("listen=127.0.0.1:0 in='/wand/position Vec3f' buffer=" + std::to_string(bufferBytes));
        _node = node.get();
        Trovio::Namespace& root = Trovio::Root::get();
        _label = root.addNamespace(std::unique_ptr<Trovio::Node>(std::move(node)));
        root.addRoute(_label + "/wand/position", "Context/" + _sensor.getLabel());
    }
    NodeReceiver(const NodeReceiver&) = delete;
    NodeReceiver& operator=(const NodeReceiver&) = delete;
    ~NodeReceiver() { Trovio::Root::get().removeNamespace(_label); }

    std::uint16_t port() const { return _node->getListenAddresses().at(0).getPort(); }
    std::uint64_t received() const
    {
        for (const auto& counter : _node->getCounters())
            if (counter._name == "in packets")
                return counter._value;
        return 0;
    }

    /// Runs a frame. True when the value has reached the field.
    bool sees(float value)
    {
        _road.scene().frame(1e9);
        return static_cast<Ostrel::SFVec3f&>(*_sensor.getField()).value().data()[0] == value;
    }

private:
    OpenRoot _root;
    Road _road;
    Ostrel::DirectSensor& _sensor;
    Trovio::Nodes::OscNode* _node = nullptr;
    std::string _label;
};

} // namespace Bench
