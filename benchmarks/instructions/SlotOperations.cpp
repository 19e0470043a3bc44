#include "benchmarks/harness/Sampling.h"
#include "benchmarks/instructions/Operation.h"
#include "monitor/tap/AnyTap.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <memory>

namespace Bench {

namespace {

using Value = Trovio::Vec3<float>;
using In = Trovio::InSlot<Value>;

const Trovio::Data<Value> record{Value(1, 2, 3), Trovio::Time(1e9)};

/// An out-slot with its readers.
struct Fan {
    explicit Fan(std::size_t readers)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _out.connect(_ins.emplace_back(std::make_unique<In>("in")).get());
    }
    ~Fan()
    {
        for (const auto& in : _ins)
            _out.disconnect(in.get());
    }
    Fan(const Fan&) = delete;
    Fan& operator=(const Fan&) = delete;

    Trovio::OutSlot<Value> _out{"out"};
    std::vector<std::unique_ptr<In>> _ins;
};

void addWaiting(Operations& operations)
{
    const auto in = std::make_shared<In>("in");
    const auto drain = [in] {
        if (!in->empty())
            in->pop();
    };
    const auto fill = [in] { in->push(record); };
    operations.push_back({"push into an empty slot", fill, drain});
    operations.push_back({"push over an unread record", fill, fill});
    operations.push_back({"pop", [in] { keep(in->pop()); }, fill});
    operations.push_back({"top", [in] { keep(in->top()); }});
    operations.push_back({"empty", [in] { keep(in->empty()); }});
}

void addRing(Operations& operations)
{
    const auto ring = std::make_shared<Trovio::BufferedInSlot<Value>>("ring", 2);
    const auto fill = [ring] { ring->push(record); };
    operations.push_back({"push into a full ring", fill, [fill] {
                              fill();
                              fill();
                          }});
    operations.push_back({"pop from a ring", [ring] { keep(ring->pop()); }, fill});
}

void addShared(Operations& operations)
{
    using Array = Trovio::SharedVector<float>;
    const auto out = std::make_shared<Trovio::OutSlot<Array>>("out");
    operations.push_back({"acquire and release", [] {
                              Array array;
                              array.acquire();
                              keep(array);
                          }});
    operations.push_back({"push a shared vector", [out] {
                              Array array;
                              array.acquire();
                              out->push(Trovio::Data<Array>(array, Trovio::Time(1e9)));
                          }});
}

/// A record that goes through an out-slot into a ring: what it costs in all, and its time stamp in each of the two.
void addCounting(Operations& operations)
{
    struct Way {
        Trovio::OutSlot<Value> _out{"out"};
        Trovio::BufferedInSlot<Value> _in{"in", 1'024};
        Way() { _out.connect(&_in); }
        ~Way() { _out.disconnect(&_in); }
    };
    const auto way = std::make_shared<Way>();
    operations.push_back({"push through an out-slot into a ring", [way] { way->_out.push(record); }});
    const auto watch = std::make_shared<Trovio::StampWatch>();
    operations.push_back({"note a time stamp", [watch] { watch->note(record.getTimeStamp()); }});
}

/// A record that goes through an out-slot with one reader, which somebody looks at, too.
void addWatched(Operations& operations)
{
    struct Watched {
        Trovio::OutSlot<Value> _out{"out"};
        Trovio::InSlot<Value> _in{"in"};
        const std::unique_ptr<Monitor::AnyTap> _tap = Monitor::makeTap("Vec3f", {});
        Watched()
        {
            _out.connect(&_in);
            _out.connect(&_tap->slot());
        }
        ~Watched()
        {
            _out.disconnect(&_tap->slot());
            _out.disconnect(&_in);
        }
    };
    const auto watched = std::make_shared<Watched>();
    operations.push_back({"push through a watched out-slot", [watched] { watched->_out.push(record); }});
}

} // namespace

void addSlotOperations(Operations& operations)
{
    addWaiting(operations);
    addRing(operations);
    addCounting(operations);
    addWatched(operations);
    addShared(operations);
    const auto many = std::make_shared<Fan>(16);
    operations.push_back({"push to 16", [many] { many->_out.push(record); }});
    const auto slots = std::make_shared<Fan>(1'000);
    operations.push_back({"frame over 1,000 empty slots", [slots] {
                              for (const auto& in : slots->_ins)
                                  if (in->mayHoldRecord())
                                      keep(in->pop());
                          }});
}

} // namespace Bench
