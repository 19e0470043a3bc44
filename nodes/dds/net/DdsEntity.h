#pragma once

#include <dds/dds.h>
#include <stdexcept>
#include <string>
#include <utility>

namespace Trovio::Nodes {

/// Something that the DDS library refused. The text says what, why, and what can be done.
class DdsProblem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Owns an entity of the DDS library and all that was created below it: deleting waits for listeners that are running,
/// and none runs afterwards.
class DdsEntity {
public:
    DdsEntity() = default;

    /// Takes over what a creating function returned. Throws DdsProblem with `what` if that is an error.
    DdsEntity(dds_entity_t result, const std::string& what) : _handle(result)
    {
        if (result < 0)
            throw DdsProblem(what + ": " + dds_strretcode(result));
    }
    DdsEntity(DdsEntity&& other) noexcept : _handle(std::exchange(other._handle, 0)) {}
    DdsEntity& operator=(DdsEntity&& other) noexcept
    {
        std::swap(_handle, other._handle);
        return *this;
    }
    ~DdsEntity()
    {
        if (_handle > 0)
            dds_delete(_handle);
    }

    bool isOpen() const { return _handle > 0; }
    dds_entity_t get() const { return _handle; }

private:
    dds_entity_t _handle = 0;
};

} // namespace Trovio::Nodes
