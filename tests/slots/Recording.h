#pragma once

#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"
#include <string>
#include <vector>

/// What happened to the slots of a test, in order.
using Events = std::vector<std::string>;

/// Notes what reaches it, and what of it was started and stopped.
template <class T>
class RecordingInSlot : public Trovio::InSlot<T> {
public:
    RecordingInSlot(Events& events) : Trovio::InSlot<T>("in"), _events(events) {}
    void startInSlot() override { _events.push_back("in start"); }
    void stopInSlot() override { _events.push_back("in stop"); }
    void newData() override { _events.push_back("in data"); }

private:
    Events& _events;
};

template <class T>
class RecordingOutSlot : public Trovio::OutSlot<T> {
public:
    RecordingOutSlot(Events& events) : Trovio::OutSlot<T>("out"), _events(events) {}
    void startOutSlot() override { _events.push_back("out start"); }
    void stopOutSlot() override { _events.push_back("out stop"); }

private:
    Events& _events;
};
