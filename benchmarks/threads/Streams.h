#pragma once

#include "benchmarks/floor/FloorRing.h"
#include "benchmarks/floor/FloorSlot.h"
#include "benchmarks/slots/LibraryFan.h"
#include "benchmarks/threads/Stream.h"
#include "trovio/BufferedInSlot.h"

namespace Bench {

class FloorStream {
public:
    FloorStream() { _out.connect(_in); }
    void push(double number)
    {
        Record record = someRecord;
        record._time = number;
        _out.push(record);
    }
    double take() { return _in.pop()._time; }

private:
    FloorRing<Record> _in{streamCapacity};
    FloorOut<FloorRing<Record>> _out;
};

class LibraryStream {
public:
    LibraryStream() { _out.connect(&_in); }
    ~LibraryStream() { _out.disconnect(&_in); }
    void push(double number)
    {
        LibraryRecord record = someLibraryRecord();
        record.setTimeStamp(Trovio::Time(number));
        _out.push(record);
    }
    double take() { return _in.pop().getTimeStamp().getSeconds(); }

private:
    Trovio::BufferedInSlot<LibraryValue> _in{"in", streamCapacity};
    Trovio::OutSlot<LibraryValue> _out{"out"};
};

} // namespace Bench
