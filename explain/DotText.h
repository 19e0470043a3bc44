#pragma once

#include <string>

namespace Explain {

/// Text in the language of graphviz, indented as it is nested.
class DotText {
public:
    /// "head {", and its end.
    void open(const std::string& head);
    void close();
    void line(const std::string& text);

    const std::string& text() const { return _text; }

    static std::string quoted(const std::string& text);

private:
    std::size_t _depth = 0;
    std::string _text;
};
} // namespace Explain
