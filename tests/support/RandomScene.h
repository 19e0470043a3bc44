#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// A scene that changes at random, the same way each time: handlers with nodes and routes, sensors, links.
/// It always can be made, and no route closes a loop of nodes.
class RandomScene {
public:
    RandomScene()
    {
        for (int i = 0; i < 30; ++i)
            edit();
    }

    /// Changes from one to three things.
    void edit()
    {
        for (unsigned left = 1 + below(3); left > 0; --left)
            editOne();
    }

    std::string text() const
    {
        std::string text = "[host]\nrate = " + std::to_string(_rate) + "\n";
        for (const Handler& handler : _handlers)
            text += "[[handler]]\nkind = \"" + handler._kind + "\"\nname = \"" + handler._name + "\"\nnodes = [" +
                    listOf(handler._nodes) + "]\nroutes = [" + listOf(handler._routes) + "]\n";
        for (const Sensor& sensor : _sensors)
            text += "[[sensor]]\nname = \"" + sensor._name + "\"\ntype = \"" + sensor._type + "\"\nlabel = \"" +
                    sensor._label + "\"\nbuffer = " + std::to_string(sensor._buffer) +
                    "\noutput = " + (sensor._isOutput ? "true" : "false") + "\n";
        for (const Pair& route : _routes)
            text += "[[route]]\nfrom = \"" + route.first + "\"\nto = \"" + route.second + "\"\n";
        for (std::size_t i = 1; i < _sensors.size(); ++i)
            if (_links && _sensors[i - 1]._type == _sensors[i]._type)
                text += "[[link]]\nfrom = \"" + _sensors[i - 1]._name + ".value\"\nto = \"" + _sensors[i]._name +
                        ".value\"\n";
        return text;
    }

private:
    using Pair = std::pair<std::string, std::string>;
    struct Handler {
        std::string _kind, _name;
        std::vector<Pair> _nodes, _routes;
    };
    struct Sensor {
        std::string _name, _type, _label;
        unsigned _buffer = 0;
        bool _isOutput = false;
    };

    unsigned below(unsigned end) { return static_cast<unsigned>(_random() % end); }
    template <class T>
    T& any(std::vector<T>& list)
    {
        return list[below(static_cast<unsigned>(list.size()))];
    }
    template <class T>
    void drop(std::vector<T>& list)
    {
        if (!list.empty())
            list.erase(list.begin() + below(static_cast<unsigned>(list.size())));
    }
    std::string newName(const std::string& start) { return start + std::to_string(++_names); }
    std::string label() { return "S" + std::to_string(below(6)); }

    static std::string listOf(const std::vector<Pair>& pairs)
    {
        std::string text;
        for (const Pair& pair : pairs)
            text += "[\"" + pair.first + "\", \"" + pair.second + "\"], ";
        return text;
    }

    Pair newNode()
    {
        static constexpr const char* types[] = {"Float", "Vec3f"};
        const std::string type = types[below(2)];
        if (below(2) == 0)
            return {"Generator", "type=" + type + " rate=" + std::to_string(1 + below(50))};
        return {"Clamp", "type=" + type + " label=F" + std::to_string(below(3))};
    }

    // Into filters only from generators, so that there is no loop.
    Pair newRoute()
    {
        static constexpr const char* sources[] = {"Generator/value", "Generator2/value", "Gen*/value"};
        if (below(2) == 0)
            return {sources[below(3)], below(2) == 0 ? label() : "F" + std::to_string(below(3)) + "/in"};
        return {"F" + std::to_string(below(3)) + "/out", label()};
    }

    void editSensor()
    {
        static constexpr const char* types[] = {"SFFloat", "SFVec3f", "MFFloat"};
        Sensor& sensor = any(_sensors);
        switch (below(4)) {
        case 0:
            sensor._type = types[below(3)];
            break;
        case 1:
            sensor._isOutput = !sensor._isOutput;
            break;
        case 2:
            sensor._buffer = below(4);
            break;
        default:
            std::swap(sensor, any(_sensors));
        }
    }

    void addSensor()
    {
        const std::string wanted = label();
        if (std::ranges::none_of(_sensors, [&wanted](const Sensor& sensor) { return sensor._label == wanted; }))
            _sensors.push_back({newName("sensor"), "SFFloat", wanted});
    }

    void editHandler()
    {
        Handler& handler = any(_handlers);
        switch (below(7)) {
        case 0:
        case 1:
            return handler._nodes.push_back(newNode());
        case 2:
            return drop(handler._nodes);
        case 3:
        case 4:
            return handler._routes.push_back(newRoute());
        case 5:
            return drop(handler._routes);
        default:
            if (!handler._nodes.empty())
                any(handler._nodes) = newNode();
        }
    }

    void addHandler(const std::string& kind)
    {
        const unsigned place = below(static_cast<unsigned>(_handlers.size()) + 1);
        _handlers.insert(_handlers.begin() + place, {kind, newName("handler"), {}, {}});
    }

    void editOne()
    {
        static constexpr const char* kinds[] = {"Trovio", "OT", "ORDAN", "Trovio", "Trovio"};
        switch (below(12)) {
        case 0:
            return addHandler(kinds[below(5)]);
        case 1:
            return _handlers.size() > 2 ? drop(_handlers) : void();
        case 2:
            _rate = 30 + below(60);
            return;
        case 3:
            return _routes.push_back({"Context/Generator/value", "Context2/" + label()});
        case 4:
            return drop(_routes);
        case 5:
            return addSensor();
        case 6:
            return drop(_sensors);
        case 7:
            _links = !_links;
            return;
        case 8:
            return _sensors.empty() ? void() : editSensor();
        default:
            return _handlers.empty() ? void() : editHandler();
        }
    }

    std::minstd_rand _random{18};
    unsigned _names = 0, _rate = 60;
    bool _links = false;
    std::vector<Handler> _handlers;
    std::vector<Sensor> _sensors;
    std::vector<Pair> _routes;
};
