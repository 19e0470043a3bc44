#pragma once

#include "monitor/codec/Encode.h"
#include "monitor/tap/AnyTap.h"
#include "trovio/InSlot.h"
#include "trovio/SmartPtr.h"

#include <algorithm>
#include <chrono>

namespace Monitor {

template <class T>
constexpr bool isHandle = false;
template <class Object>
constexpr bool isHandle<Trovio::SmartPtr<Object>> = true;

/// Notes when each record is pushed, and keeps it in a ring until it is drained; a record that finds the ring full is
/// refused and counted. Nobody is woken.
/// Invariant: _waiting entries of the ring belong to who drains; the others belong to who pushes.
/// Ownership: a record of an image or array keeps its pooled object until its message is written.
/// Threads:   any thread pushes, one drains: it reads its entries without the lock, for nobody writes over them.
template <class T>
class Tap final : public AnyTap, public Trovio::InSlot<T> {
public:
    explicit Tap(const TapSize& size)
        : Trovio::InSlot<T>("tap"),
          _ring(std::max<std::size_t>(1, isHandle<T> ? size._handles : size._bytes / sizeof(Entry))),
          _maxText(size._bytes)
    {
    }

    Trovio::BasicInSlot& slot() override { return *this; }
    void push(const Trovio::Data<T>& record) override OSTREL_EXCLUDES(this->_dataLock);
    TapState drain(std::int64_t wallAtZero, TapSink& sink) override;
    std::uint64_t seen() const override { return read(_seen); }
    std::uint64_t refused() const override { return read(_refused); }

private:
    static constexpr std::size_t ManyPlaces = 256, FreeShare = 8; // of eight, one may be taken

    struct Entry {
        Trovio::Data<T> _record;
        std::int64_t _arrival = 0; // nanoseconds of the steady clock
    };

    struct Drained {
        std::size_t _entries = 0, _text = 0, _lost = 0;
    };

    /// Bytes beside the entry.
    static std::size_t textOf(const T& value)
    {
        if constexpr (std::is_same_v<T, std::string>)
            return value.size() < sizeof(std::string) / 2 ? 0 : value.size();
        else
            return 0;
    }

    /// A single text may be longer than all together.
    bool hasRoom(std::size_t text) const OSTREL_REQUIRES(this->_dataLock)
    {
        return _waiting != _ring.size() && (_text == 0 || text == 0 || _text + text <= _maxText);
    }

    void advance(std::size_t& position) const { position = position + 1 == _ring.size() ? 0 : position + 1; }
    bool isLarge() const { return _ring.size() >= ManyPlaces; }
    TapState giveBack(const Drained& drained) OSTREL_EXCLUDES(this->_dataLock);
    std::uint64_t read(const std::uint64_t& count) const OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        this->lock();
        const std::uint64_t value = count;
        this->unlockUnchanged();
        return value;
    }

    std::vector<Entry> _ring;
    const std::size_t _maxText;
    std::size_t _oldest = 0;                                  // of those that wait; only who drains
    std::size_t _next OSTREL_GUARDED_BY(this->_dataLock) = 0; // where the next record goes
    std::size_t _waiting OSTREL_GUARDED_BY(this->_dataLock) = 0;
    std::size_t _text OSTREL_GUARDED_BY(this->_dataLock) = 0; // bytes of texts that wait
    std::uint64_t _seen OSTREL_GUARDED_BY(this->_dataLock) = 0;
    std::uint64_t _refused OSTREL_GUARDED_BY(this->_dataLock) = 0;
};

template <class T>
void Tap<T>::push(const Trovio::Data<T>& record)
{
    const std::size_t text = textOf(record.getValue());
    this->lock();
    ++_seen;
    Entry& entry = _ring[_next];
    if (hasRoom(text) && this->keep(record, entry._record)) {
        entry._arrival = std::chrono::steady_clock::now().time_since_epoch().count();
        advance(_next);
        ++_waiting;
        _text += text;
    } else {
        ++_refused;
    }
    this->unlockUnchanged();
}

template <class T>
TapState Tap<T>::drain(std::int64_t wallAtZero, TapSink& sink)
{
    this->lock();
    const std::size_t count = _waiting;
    const TapState idle{_refused, isLarge()};
    this->unlockUnchanged();
    if (count == 0)
        return idle;
    Drained drained;
    while (drained._entries != count) {
        Entry& entry = _ring[_oldest];
        Trovio::Data<T> record;
        std::swap(record, entry._record); // lets go of the handle, and of a long text's memory
        advance(_oldest);
        ++drained._entries;
        drained._text += textOf(record.getValue());
        try {
            TapRecord& out = sink.place();
            out._arrival = entry._arrival + wallAtZero;
            out._stamp = record.getTimeStamp();
            if constexpr (isHandle<T>) {
                sink.keep([record = std::move(record)](Bytes& cdr) { encode(record, cdr); });
            } else {
                encode(record, out._cdr);
                sink.keep();
            }
        } catch (const std::exception&) { // no memory, or 4 GiB of text
            ++drained._lost;
        }
    }
    return giveBack(drained);
}

template <class T>
TapState Tap<T>::giveBack(const Drained& drained)
{
    const bool wasNearlyEmpty = drained._entries <= _ring.size() / FreeShare && drained._text <= _maxText / FreeShare;
    this->lock();
    _waiting -= drained._entries;
    _text -= drained._text;
    _refused += drained._lost;
    if (_waiting == 0)
        _oldest = _next = 0; // the places that were used last are still in the caches
    const TapState state{_refused, isLarge() && wasNearlyEmpty};
    this->unlockUnchanged();
    return state;
}

} // namespace Monitor
