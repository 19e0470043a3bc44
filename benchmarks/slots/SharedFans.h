#pragma once

#include "benchmarks/floor/FloorShared.h"
#include "benchmarks/floor/FloorSlot.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"
#include <memory>

namespace Bench {

// Writers that take an array from a pool, which has its size already after the first few, and hand it to all readers.
// Nobody fills it: what is measured is the way, which is the same for all.

class FloorSharedFan {
public:
    FloorSharedFan(std::size_t readers, std::size_t size) : _size(size)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _out.connect(*_ins.emplace_back(std::make_unique<FloorIn<Message>>()));
    }

    void push()
    {
        const Message message{1e9, FloorHandle(FloorPool::the().take())};
        if (message._handle.values().size() != _size)
            message._handle.values().resize(_size);
        _out.push(message);
    }

private:
    struct Message {
        double _time = 0;
        FloorHandle _handle;
    };
    const std::size_t _size;
    FloorOut<FloorIn<Message>> _out;
    std::vector<std::unique_ptr<FloorIn<Message>>> _ins;
};

class LibrarySharedFan {
public:
    using Value = Trovio::SharedVector<float>;

    LibrarySharedFan(std::size_t readers, std::size_t size) : _size(size)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _out.connect(_ins.emplace_back(std::make_unique<Trovio::InSlot<Value>>("in")).get());
    }
    ~LibrarySharedFan()
    {
        for (const auto& in : _ins)
            _out.disconnect(in.get());
    }

    void push()
    {
        Value values;
        values.acquire();
        if (values->size() != _size)
            values->resize(_size);
        _out.push(Trovio::Data<Value>(values, Trovio::Time(1e9)));
    }

private:
    const std::size_t _size;
    Trovio::OutSlot<Value> _out{"out"};
    std::vector<std::unique_ptr<Trovio::InSlot<Value>>> _ins;
};

} // namespace Bench
