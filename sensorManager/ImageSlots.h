#pragma once

#include <string>
#include <utility>

namespace Ostrel {

/// What the log was told of the images of one slot. Threads: the scene thread.
class RefusedImages {
public:
    explicit RefusedImages(std::string label) : _label(std::move(label)) {}

    /// The label of the slot, the first time; null from then on.
    const char* admit() { return std::exchange(_isTold, true) ? nullptr : _label.c_str(); }

private:
    const std::string _label;
    bool _isTold = false;
};

/// An in-slot of images, which says once that one could not be converted.
template <class Slot>
class ImageSlot final : public Slot, public RefusedImages {
public:
    template <class... Arguments>
    explicit ImageSlot(std::string label, Arguments&&... arguments)
        : Slot(std::forward<Arguments>(arguments)...), RefusedImages(std::move(label))
    {
    }
};

} // namespace Ostrel
