#include "nodes/osc/packet/OscPacket.h"

#include "nodes/osc/address/OscPattern.h"
#include "nodes/osc/packet/OscTime.h"
#include <cstring>

namespace Trovio::Nodes {

namespace {

constexpr char bundleMark[8] = "#bundle";
constexpr std::size_t bundleHeader = 16; // mark and time tag

using Problem = std::optional<std::string>;

/// Reads a packet from outside to inside. The first problem ends it.
class PacketWalk {
public:
    PacketWalk(const Time& arrival, OscMessageVisitor& visitor) : _arrival(arrival), _visitor(visitor) {}

    Problem element(Bytes data, const Time& stamp, unsigned depth)
    {
        if (data.empty())
            return "nothing where a message or a bundle should be";
        if (data.size() % 4 != 0)
            return "size " + std::to_string(data.size()) + " is no multiple of 4";
        if (data.front() == '/')
            return message(data, stamp);
        if (data.size() >= bundleHeader && std::memcmp(data.data(), bundleMark, sizeof(bundleMark)) == 0)
            return bundle(data, depth + 1);
        return "neither a message nor a bundle";
    }

private:
    Problem bundle(Bytes data, unsigned depth)
    {
        if (depth > MaxOscDepth)
            return "bundles deeper than " + std::to_string(MaxOscDepth);
        const Time stamp = fromTimeTag(readBigEndian64(data.data() + sizeof(bundleMark)), _arrival);
        data = data.subspan(bundleHeader);
        while (!data.empty()) {
            // There are four bytes at least: all sizes are multiples of four.
            const std::size_t size = readBigEndian32(data.data());
            if (size > data.size() - 4)
                return "an element of a bundle is longer than the bundle";
            if (Problem problem = element(data.subspan(4, size), stamp, depth))
                return problem;
            data = data.subspan(4 + size);
        }
        return std::nullopt;
    }

    Problem message(Bytes data, const Time& stamp)
    {
        const auto address = takeOscText(data);
        if (!address)
            return "an address without an end";
        const auto tags = takeOscText(data);
        if (!tags || tags->empty() || tags->front() != ',')
            return "a message without type tags";
        _visitor.visit({*address, tags->substr(1), data, stamp});
        return std::nullopt;
    }

    const Time& _arrival;
    OscMessageVisitor& _visitor;
};

/// Whether the bytes of every message are what its tags say, and how many have patterns.
class ArgumentCheck final : public OscMessageVisitor {
public:
    void visit(const OscMessage& message) override
    {
        OscArguments arguments = message.getArguments();
        while (!arguments.atEnd()) {
            const char tag = arguments.peek();
            if (!arguments.next()) {
                _problem = std::string("an argument of type '") + tag + "' that is unknown or cut short";
                return;
            }
        }
        if (arguments.getRest() != 0)
            _problem = "bytes behind the last argument";
        if (isOscPattern(message._address) && ++_patterns > MaxOscPatterns)
            _problem = "more than " + std::to_string(MaxOscPatterns) + " messages with address patterns";
    }

    Problem _problem;

private:
    unsigned _patterns = 0;
};

} // namespace

std::optional<std::string> readOscPacket(Bytes packet, const Time& arrival, OscMessageVisitor& visitor)
{
    ArgumentCheck check;
    if (Problem problem = PacketWalk(arrival, check).element(packet, arrival, 0))
        return problem;
    if (check._problem)
        return check._problem;
    PacketWalk(arrival, visitor).element(packet, arrival, 0);
    return std::nullopt;
}

} // namespace Trovio::Nodes
