#include "host/show/KeyPresses.h"

#include <algorithm>
#include <optional>

namespace Host {
namespace {

constexpr char escape = '\x1b';
constexpr std::size_t maxSequence = 16; // bytes; what is longer comes from no keyboard

struct Sequence {
    std::string_view _bytes; // behind the escape
    Key _key;
};

constexpr Sequence sequences[] = {{"[A", Key::Up},    {"[B", Key::Down}, {"[5~", Key::PageUp}, {"[6~", Key::PageDown},
                                  {"[H", Key::Home},  {"[F", Key::End},  {"[1~", Key::Home},   {"[4~", Key::End},
                                  {"[7~", Key::Home}, {"[8~", Key::End}, {"OA", Key::Up},      {"OB", Key::Down},
                                  {"OH", Key::Home},  {"OF", Key::End},  {"[C", Key::Right},   {"OC", Key::Right}};

// The length of what starts with an escape; 0 where its end has not come.
std::size_t sequenceLength(std::string_view text)
{
    if (text.size() < 2)
        return 0;
    if (text[1] == 'O')
        return text.size() < 3 ? 0 : 3;
    if (text[1] != '[')
        return 1;
    const auto end = std::find_if(text.begin() + 2, text.end(), [](char byte) { return byte >= '@' && byte <= '~'; });
    return end == text.end() ? 0 : static_cast<std::size_t>(end - text.begin()) + 1;
}

std::optional<KeyPress> pressOf(std::string_view bytes)
{
    if (bytes.size() == 1)
        switch (bytes[0]) {
        case escape:
            return KeyPress{Key::Escape};
        case '\r':
        case '\n':
            return KeyPress{Key::Enter};
        case '\b':
        case '\x7f':
            return KeyPress{Key::Backspace};
        default:
            return static_cast<unsigned char>(bytes[0]) < ' ' ? std::nullopt
                                                              : std::optional(KeyPress{Key::Letter, bytes[0]});
        }
    const auto known = std::ranges::find(sequences, bytes.substr(1), &Sequence::_bytes);
    return known == std::end(sequences) ? std::nullopt : std::optional(KeyPress{known->_key});
}
} // namespace

std::vector<KeyPress> KeyPresses::read(std::string_view bytes)
{
    const bool nothingFollowed = bytes.empty();
    std::vector<KeyPress> presses;
    std::string_view rest = _begun += bytes;
    while (!rest.empty()) {
        std::size_t length = rest[0] == escape ? sequenceLength(rest) : 1;
        if (length == 0 && !nothingFollowed && rest.size() < maxSequence)
            break;
        length = length == 0 ? rest.size() : length;
        if (const auto press = pressOf(rest.substr(0, length)))
            presses.push_back(*press);
        rest.remove_prefix(length);
    }
    _begun = std::string(rest);
    return presses;
}
} // namespace Host
