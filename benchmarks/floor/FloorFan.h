#pragma once

#include "benchmarks/floor/FloorSlot.h"
#include "benchmarks/harness/Fan.h"

namespace Bench {

class FloorFan {
public:
    explicit FloorFan(std::size_t readers)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _out.connect(*_ins.emplace_back(std::make_unique<FloorIn<Record>>()));
    }

    void push() { _out.push(someRecord); }
    void take(std::size_t i) { keep(_ins[i]->pop()); }
    bool poll(std::size_t i)
    {
        return _ins[i]->poll([](const Record& record) { keep(record); });
    }

private:
    FloorOut<FloorIn<Record>> _out;
    std::vector<std::unique_ptr<FloorIn<Record>>> _ins;
};

} // namespace Bench
