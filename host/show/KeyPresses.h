#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Host {

enum class Key { Up, Down, Right, PageUp, PageDown, Home, End, Enter, Escape, Backspace, Letter };

struct KeyPress {
    Key _key;
    char _letter = 0; // of Key::Letter, one byte of its UTF-8
    bool operator==(const KeyPress&) const = default;
};

/// Makes key presses of what a terminal sends. A key that came in parts is put together; keys without a meaning here
/// are left out.
class KeyPresses {
public:
    /// The presses in what was sent before and in `bytes`. An escape that nothing follows until the next call is the
    /// key of that name.
    std::vector<KeyPress> read(std::string_view bytes);

private:
    std::string _begun; // a key whose rest is still to come
};
} // namespace Host
