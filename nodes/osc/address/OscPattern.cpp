#include "nodes/osc/address/OscPattern.h"

namespace Trovio::Nodes {

namespace {

/// Follows all positions of the address that the part of the pattern read so far can have reached. The usual matcher
/// tries one way after another instead, which takes minutes for a pattern of many stars; liblo's does, and lets '*'
/// cross '/'.
class Matcher {
public:
    Matcher(std::string_view pattern, const OscAddressMap& address) : _rest(pattern), _address(address)
    {
        _reached.set(0);
    }

    bool run()
    {
        while (!_rest.empty() && _reached.any())
            if (!step())
                return false;
        return _reached.test(_address.size());
    }

private:
    /// Takes one element off the pattern; false if it is broken.
    bool step()
    {
        const char element = _rest.front();
        _rest.remove_prefix(1);
        switch (element) {
        case '*':
            _reached = _reached.passingAll(_address.findPlain());
            return true;
        case '?':
            _reached = _reached.passing(_address.findPlain());
            return true;
        case '[':
            return takeUpTo(']', [this](std::string_view set) { matchSet(set); });
        case '{':
            return takeUpTo('}', [this](std::string_view texts) { matchTexts(texts); });
        default:
            _reached = _reached.passing(find(element, element));
            return true;
        }
    }

    template <class Match>
    bool takeUpTo(char end, Match match)
    {
        const std::size_t length = _rest.find(end);
        if (length == std::string_view::npos)
            return false;
        match(_rest.substr(0, length));
        _rest.remove_prefix(length + 1);
        return true;
    }

    OscPositions find(char first, char last) const
    {
        return _address.find(static_cast<unsigned char>(first), static_cast<unsigned char>(last));
    }

    void matchSet(std::string_view set)
    {
        const bool negated = !set.empty() && set.front() == '!';
        OscPositions fitting;
        for (set.remove_prefix(negated ? 1 : 0); !set.empty();) {
            const bool isRange = set.size() > 2 && set[1] == '-';
            fitting |= find(set[0], isRange ? set[2] : set[0]);
            set.remove_prefix(isRange ? 3 : 1);
        }
        const OscPositions plain = _address.findPlain(), others = plain.without(fitting);
        _reached = _reached.passing(negated ? others : plain.without(others));
    }

    void matchTexts(std::string_view texts)
    {
        OscPositions next;
        for (;;) {
            const auto text = texts.substr(0, texts.find(','));
            OscPositions behind = _reached;
            for (const char character : text)
                behind = behind.passing(find(character, character));
            next |= behind;
            if (text.size() == texts.size())
                break;
            texts.remove_prefix(text.size() + 1);
        }
        _reached = next;
    }

    std::string_view _rest;
    const OscAddressMap& _address;
    OscPositions _reached;
};

} // namespace

bool isOscPattern(std::string_view address)
{
    return address.find_first_of("*?[]{}") != std::string_view::npos;
}

bool matchesOscPattern(std::string_view pattern, const OscAddressMap& address)
{
    return pattern.size() <= MaxOscAddress && Matcher(pattern, address).run();
}

} // namespace Trovio::Nodes
