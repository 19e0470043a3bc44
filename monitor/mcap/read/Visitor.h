#pragma once

#include "monitor/mcap/format/RecordParts.h"

namespace Monitor::Mcap {

/// A chunk that was found good, and where it stands.
struct ChunkPlace {
    ChunkIndex _index;
    ChunkMessages _messages;
    bool _isIndexed = false; // the indexes of all its messages stand behind it
};

/// Gets what a file holds, in the order of the file. Texts and bytes are valid during the call only.
class Visitor {
public:
    virtual ~Visitor() = default;
    virtual void header(std::string_view /*profile*/, std::string_view /*library*/) {}
    /// Each schema and channel once, before the first message that needs it.
    virtual void schema(const Schema&) {}
    virtual void channel(const Channel&) {}
    virtual void message(const Message&) {}
    /// After the messages of a chunk and the indexes behind it.
    virtual void chunk(const ChunkPlace&) {}
    virtual void attachment(const Attachment&, std::uint64_t /*offset*/, std::uint64_t /*length*/) {}
    virtual void metadata(const Metadata&, std::uint64_t /*offset*/, std::uint64_t /*length*/) {}
    /// Now and then: bytes that were read, of how many. False ends the reading.
    virtual bool goOn(std::uint64_t /*read*/, std::uint64_t /*size*/) { return true; }
};
} // namespace Monitor::Mcap
