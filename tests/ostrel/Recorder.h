#pragma once

#include "ostrel/Observer.h"
#include <functional>
#include <utility>
#include <vector>

/// Counts the notifications of subjects and does what it is told at each.
class Recorder : public Ostrel::Observer {
public:
    using Action = std::function<void(Ostrel::BaseObject* first)>;
    explicit Recorder(Action action = {}) : Observer("recorder"), _action(std::move(action)) {}

    void notify(const Ostrel::TimeStamp& time, Ostrel::BaseObject* first, Ostrel::BaseObject*,
                Ostrel::BaseObject*) override
    {
        _times.push_back(time);
        // A copy: the action may destroy this observer.
        if (const Action action = _action)
            action(first);
    }
    std::size_t count() const { return _times.size(); }

    Action _action;
    std::vector<Ostrel::TimeStamp> _times;
};
