#pragma once

#include "explain/Graph.h"
#include "tests/support/PassNode.h"
#include "trovio/Root.h"

/// Context/Device/value -> Context/Filter/in, Context/Filter/out -> Context/Wand; nothing leads to Context/Head. The
/// test does what nodes and frames do.
struct WatchedScene {
    WatchedScene()
    {
        Trovio::Root::init();
        auto context = std::make_unique<Trovio::Namespace>();
        auto device = std::make_unique<Trovio::Namespace>();
        auto filter = std::make_unique<PassNode>();
        _filter = filter.get();
        for (Trovio::Namespace* space : {context.get(), device.get()})
            space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        device->addOutSlot("value", &_device);
        context->addNamespace("Device", std::move(device));
        context->addNamespace("Filter", std::move(filter));
        context->addInSlot("Wand", &_wand);
        context->addInSlot("Head", &_head);
        context->addRoute("Device/value", "Filter/in");
        context->addRoute("Filter/out", "Wand");
        Trovio::Root::get().addNamespace("Context", std::move(context));
    }
    ~WatchedScene() { Trovio::Root::shutdown(); }
    WatchedScene(const WatchedScene&) = delete;
    WatchedScene& operator=(const WatchedScene&) = delete;

    /// Sends a record as far as the sensor; the filter may give it another stamp.
    void send(double stamp, double restamped = 0)
    {
        _device.push(Trovio::Data<float>(1, Trovio::Time(stamp)));
        const auto record = _filter->_in.pop();
        _filter->_out.push(restamped == 0 ? record : Trovio::Data<float>(1, Trovio::Time(restamped)));
    }

    static Explain::ScenePlaces places()
    {
        Explain::ScenePlaces places;
        places._scenes = {"wand.toml"};
        places._handlers = {{0, "devices", "Trovio", "Context"}};
        places._sensors = {{{"Context", "Wand"}, {0, "stick"}}, {{"Context", "Head"}, {0, "Head"}}};
        return places;
    }

    Trovio::OutSlot<float> _device{"device"};
    Trovio::InSlot<float> _wand{"wand"}, _head{"head"};
    PassNode* _filter = nullptr;
};
