#pragma once

#include "nodes/shared/SlotList.h"
#include "nodes/text/TextNumber.h"
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Trovio {
class BasicInSlot;
}

namespace Trovio::Nodes {

/// A record on its way out: a text, or numbers.
struct TextRecord {
    bool _isText = false;
    bool _isArray = false;  // of elements with _width numbers each
    bool _isSwitch = false; // its numbers stand for true and false
    bool _isColour = false;
    bool _isFinite = true; // false where a component is no number; it can then not be sent
    std::size_t _width = 1;
    std::string _text{};
    std::vector<TextNumber> _numbers{};
};

/// An in-slot whose records go out as text.
/// Threads: any thread pushes into the slot; one thread takes.
class TextSender {
public:
    virtual ~TextSender() = default;
    virtual BasicInSlot& getSlot() = 0;

    /// The oldest waiting record. False if none waits.
    virtual bool take(TextRecord& record) = 0;

    /// arrived is called on the pushing thread after each record, under locks: it may only wake somebody.
    /// Throws std::logic_error for a type that texts do not carry.
    static std::unique_ptr<TextSender> create(const ListedSlot& slot, unsigned capacity, std::function<void()> arrived);
};

} // namespace Trovio::Nodes
