#pragma once

#include "trovio/Node.h"
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

/// A node that writes down what happens to it.
class TestNode : public Trovio::Node {
public:
    using Events = std::vector<std::string>;

    TestNode(std::string name, Events& events) : _name(std::move(name)), _events(events) { setType(type()); }
    ~TestNode() override { _events.push_back("~" + _name); }

    using Node::addCounter;
    using Node::setDegraded;
    using Node::setRunning;

    static const Trovio::NodeTypeEntry& type()
    {
        static constexpr Trovio::Setting settings[] = {Trovio::Setting::integer("size", "3", 1, 9, "how large")};
        static const Trovio::NodeTypeEntry entry{"Test", "writes down what happens to it", settings, nullptr};
        return entry;
    }

    std::vector<Trovio::RemarkInfo> getRemarks() const override { return _remarks; }

    std::vector<Trovio::RemarkInfo> _remarks;
    std::function<void()> _onStart = [] {};
    std::function<void()> _onStop = [] {};
    std::int64_t _size = 0;

protected:
    void configure(const Trovio::Settings& settings) override
    {
        if (settings.integer("size") == 7)
            throw settings.refusal("size", "any but 7");
        _size = settings.integer("size");
    }

    void start() override
    {
        _events.push_back("start " + _name);
        _onStart();
    }

    void stop() override
    {
        _events.push_back("stop " + _name);
        _onStop();
    }

private:
    const std::string _name;
    Events& _events;
};
