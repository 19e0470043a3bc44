#pragma once

#include "trovio/Values.h"
#include <algorithm>
#include <cstring>

/// How a value of each kind carries a number, all over, so that a torn or reused one is known by its looks.
template <class T>
struct Numbered;

template <>
struct Numbered<long> {
    static long make(long number) { return number; }
    static long read(long value) { return value; }
};

template <>
struct Numbered<std::string> {
    static std::string make(long number) { return std::string(32, '0') + std::to_string(number); }
    /// -1 for a value that nobody made, here and below.
    static long read(const std::string& value)
    {
        const long number = std::atol(value.c_str());
        return value == make(number) ? number : -1;
    }
};

template <>
struct Numbered<Trovio::SharedVector<long>> {
    static Trovio::SharedVector<long> make(long number)
    {
        Trovio::SharedVector<long> value;
        value.acquire();
        value->assign(16, number);
        return value;
    }
    static long read(const Trovio::SharedVector<long>& value)
    {
        const long number = value->front();
        return std::count(value->begin(), value->end(), number) == 16 ? number : -1;
    }
};

template <>
struct Numbered<Trovio::SharedImage> {
    static Trovio::SharedImage make(long number)
    {
        Trovio::SharedImage value;
        value.acquire();
        if (value->empty())
            *value = Trovio::Image(Trovio::Image::Luminance, sizeof(number), 2);
        std::memcpy(value->getData(), &number, sizeof(number));
        std::memcpy(value->getData() + sizeof(number), &number, sizeof(number));
        return value;
    }
    static long read(const Trovio::SharedImage& value)
    {
        long halves[2];
        std::memcpy(halves, value->getData(), sizeof(halves));
        return halves[0] == halves[1] ? halves[0] : -1;
    }
};
