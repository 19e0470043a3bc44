#pragma once

#include "benchmarks/harness/Fan.h"
#include "trovio/OutSlot.h"
#include "trovio/TryPop.h"

namespace Bench {

using LibraryValue = Trovio::Vec3<float>;
using LibraryRecord = Trovio::Data<LibraryValue>;

inline LibraryRecord someLibraryRecord()
{
    return {LibraryValue(someRecord._value[0], someRecord._value[1], someRecord._value[2]),
            Trovio::Time(someRecord._time)};
}

class LibraryFan {
public:
    explicit LibraryFan(std::size_t readers)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _out.connect(_ins.emplace_back(std::make_unique<Trovio::InSlot<LibraryValue>>("in")).get());
    }
    ~LibraryFan()
    {
        for (const auto& in : _ins)
            _out.disconnect(in.get());
    }

    void push() { _out.push(_record); }
    void take(std::size_t i) { keep(_ins[i]->pop()); }
    /// As the observers of sensors do it.
    bool poll(std::size_t i)
    {
        return _ins[i]->mayHoldRecord() &&
               Trovio::tryPop<LibraryValue>(*_ins[i], [](const LibraryRecord& record) { keep(record); });
    }

private:
    const LibraryRecord _record = someLibraryRecord();
    Trovio::OutSlot<LibraryValue> _out{"out"};
    std::vector<std::unique_ptr<Trovio::InSlot<LibraryValue>>> _ins;
};

} // namespace Bench
