#include "nodes/osc/OscPattern.h"

#include <bitset>

namespace Trovio::Nodes {

namespace {

/// All positions of the address that the part of the pattern read so far can have reached. The usual matcher tries one
/// way after another instead, which takes minutes for a pattern of many stars; liblo's does, and lets '*' cross '/'.
using Positions = std::bitset<MaxOscAddress + 1>;

class Matcher {
public:
    Matcher(std::string_view pattern, std::string_view address) : _rest(pattern), _address(address) { _reached.set(0); }

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
            repeat();
            return true;
        case '?':
            advance([](char character) { return character != '/'; });
            return true;
        case '[':
            return takeUpTo(']', [this](std::string_view set) { matchSet(set); });
        case '{':
            return takeUpTo('}', [this](std::string_view texts) { matchTexts(texts); });
        default:
            advance([element](char character) { return character == element; });
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

    template <class Fits>
    void advance(Fits fits)
    {
        Positions next;
        for (std::size_t i = 0; i < _address.size(); ++i)
            if (_reached.test(i) && fits(_address[i]))
                next.set(i + 1);
        _reached = next;
    }

    void repeat()
    {
        for (std::size_t i = 0; i < _address.size(); ++i)
            if (_reached.test(i) && _address[i] != '/')
                _reached.set(i + 1);
    }

    void matchSet(std::string_view set)
    {
        const bool negated = !set.empty() && set.front() == '!';
        if (negated)
            set.remove_prefix(1);
        advance([&](char character) { return character != '/' && contains(set, character) != negated; });
    }

    static bool contains(std::string_view set, char character)
    {
        for (std::size_t i = 0; i < set.size(); ++i) {
            const bool isRange = i + 2 < set.size() && set[i + 1] == '-';
            if (isRange ? set[i] <= character && character <= set[i + 2] : set[i] == character)
                return true;
            if (isRange)
                i += 2;
        }
        return false;
    }

    void matchTexts(std::string_view texts)
    {
        Positions next;
        for (;;) {
            const auto text = texts.substr(0, texts.find(','));
            for (std::size_t i = 0; i <= _address.size(); ++i)
                if (_reached.test(i) && _address.substr(i).starts_with(text))
                    next.set(i + text.size());
            if (text.size() == texts.size())
                break;
            texts.remove_prefix(text.size() + 1);
        }
        _reached = next;
    }

    std::string_view _rest;
    const std::string_view _address;
    Positions _reached;
};

} // namespace

bool isOscPattern(std::string_view address)
{
    return address.find_first_of("*?[]{}") != std::string_view::npos;
}

bool matchesOscPattern(std::string_view pattern, std::string_view address)
{
    if (pattern.size() > MaxOscAddress || address.size() > MaxOscAddress)
        return false;
    return Matcher(pattern, address).run();
}

} // namespace Trovio::Nodes
