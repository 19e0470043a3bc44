#pragma once

#include "base/Mutex.h"
#include "nodes/shared/SlotList.h"
#include "nodes/text/TextNumber.h"
#include "trovio/Time.h"
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Trovio {
class BasicOutSlot;
}

namespace Trovio::Nodes {

/// What came for a slot. Valid during a call only.
struct TextContent {
    std::string_view _text;
    std::optional<std::span<const TextNumber>> _numbers; // where all of the text is numbers
};

/// An out-slot for what comes as text.
/// Threads: one thread delivers; the slot is for any thread, and so is what tells of refusals, under any lock but the
///          log's.
class TextReceiver {
public:
    virtual ~TextReceiver() = default;
    virtual BasicOutSlot& getSlot() = 0;

    /// Pushes the value. Otherwise it is refused, and the result is false.
    bool deliver(const TextContent& content, const Time& stamp) OSTREL_EXCLUDES(_lock);

    /// Remembers a text that is no value; the first one is logged, under the name of the node's type. Always false.
    bool refuse(std::string_view text) OSTREL_EXCLUDES(_lock);

    /// What it takes, in words: "3 numbers".
    virtual std::string getExpected() const = 0;
    /// How many numbers make a value; 0 if it takes any number of them, or a text.
    virtual std::size_t getWidth() const = 0;

    /// "3 came that are no value, the last 'abc', wanted 3 numbers"; empty if there were none.
    std::string describeRefused() const OSTREL_EXCLUDES(_lock);

    /// Throws std::logic_error for a type that texts do not carry.
    static std::unique_ptr<TextReceiver> create(const char* node, const ListedSlot& slot);

protected:
    explicit TextReceiver(const char* node) : _node(node) {}

private:
    virtual bool push(const TextContent& content, const Time& stamp) = 0;

    const char* const _node;

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::uint64_t _refused OSTREL_GUARDED_BY(_lock) = 0;
    std::string _lastRefused OSTREL_GUARDED_BY(_lock); // shortened
};

/// As much of a text from outside as a message shows.
std::string shortenText(std::string_view text);

} // namespace Trovio::Nodes
