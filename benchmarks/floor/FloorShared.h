#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Bench {

/// Arrays that are shared by handle and used again, written by hand: the last one out gives the array back.
class FloorPool {
public:
    struct Array {
        std::atomic<int> _holders{0};
        std::vector<float> _values;
    };

    Array* take()
    {
        const std::lock_guard guard(_lock);
        if (_free.empty())
            return _all.emplace_back(std::make_unique<Array>()).get();
        Array* const array = _free.back();
        _free.pop_back();
        return array;
    }

    void giveBack(Array* array)
    {
        const std::lock_guard guard(_lock);
        _free.push_back(array);
    }

    static FloorPool& the()
    {
        static FloorPool pool;
        return pool;
    }

private:
    std::mutex _lock;
    std::vector<std::unique_ptr<Array>> _all;
    std::vector<Array*> _free;
};

class FloorHandle {
public:
    FloorHandle() = default;
    explicit FloorHandle(FloorPool::Array* array) : _array(array) { hold(); }
    FloorHandle(const FloorHandle& other) : _array(other._array) { hold(); }
    FloorHandle& operator=(const FloorHandle& other)
    {
        FloorHandle copy(other);
        std::swap(_array, copy._array);
        return *this;
    }
    ~FloorHandle()
    {
        if (_array && _array->_holders.fetch_sub(1) == 1)
            FloorPool::the().giveBack(_array);
    }
    std::vector<float>& values() const { return _array->_values; }

private:
    void hold()
    {
        if (_array)
            _array->_holders.fetch_add(1);
    }

    FloorPool::Array* _array = nullptr;
};

} // namespace Bench
