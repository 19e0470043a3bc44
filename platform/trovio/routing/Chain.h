#pragma once

#include <cstddef>

namespace Trovio {

/// What a thing carries to stand in one chain of a kind.
template <class T, class Kind>
struct Linked {
    T* _before = nullptr;
    T* _after = nullptr;
};

/// Things in the order in which they were appended, linked through themselves: they come and go without a search and
/// without an allocation. A thing stands in at most one chain of a kind, and leaves it before it ends.
template <class T, class Kind>
class Chain {
public:
    class Iterator {
    public:
        explicit Iterator(T* thing) : _thing(thing) {}
        T* operator*() const { return _thing; }
        Iterator& operator++()
        {
            _thing = links(*_thing)._after;
            return *this;
        }
        bool operator==(const Iterator&) const = default;

    private:
        T* _thing;
    };

    Iterator begin() const { return Iterator(_first); }
    Iterator end() const { return Iterator(nullptr); }
    bool empty() const { return !_first; }
    T& front() const { return *_first; }
    /// Counts them.
    std::size_t size() const
    {
        std::size_t count = 0;
        for (T* thing = _first; thing; thing = links(*thing)._after)
            ++count;
        return count;
    }

    /// Null if there is none of which the predicate is true.
    template <class Predicate>
    T* findLast(Predicate predicate) const
    {
        T* thing = _last;
        while (thing && !predicate(*thing))
            thing = links(*thing)._before;
        return thing;
    }

    void append(T& thing)
    {
        links(thing) = {_last, nullptr};
        (_last ? links(*_last)._after : _first) = &thing;
        _last = &thing;
    }

    void remove(T& thing)
    {
        const Linked<T, Kind> here = links(thing);
        (here._before ? links(*here._before)._after : _first) = here._after;
        (here._after ? links(*here._after)._before : _last) = here._before;
    }

private:
    static Linked<T, Kind>& links(T& thing) { return thing; }

    T* _first = nullptr;
    T* _last = nullptr;
};

} // namespace Trovio
