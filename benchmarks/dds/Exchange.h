#pragma once

#include <cstddef>
#include <string>

namespace Bench {

/// What goes from the near process to the far one, which answers each with a vector.
enum class Load { Vector, Array };

inline constexpr std::size_t arrayLength = 250'000; // floats: a megabyte

/// Where two processes meet.
struct Meeting {
    Load _load;
    unsigned _domain;
    std::string _name; // that no other run has

    std::string forth() const { return _name + "/forth"; }
    std::string back() const { return _name + "/back"; }
};

/// The near end.
class NearEnd {
public:
    virtual ~NearEnd() = default;
    virtual void send() = 0;
    /// Sleeps until an answer is there, and takes it.
    virtual void take() = 0;
    /// Takes an answer if there is one.
    virtual bool poll() = 0;
};

/// The far end answers while it lives.
class FarEnd {
public:
    virtual ~FarEnd() = default;
};

} // namespace Bench
