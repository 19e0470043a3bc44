#include "explain/DotText.h"

#include "explain/text/Escape.h"

namespace Explain {

void DotText::open(const std::string& head)
{
    line(head + " {");
    ++_depth;
}

void DotText::close()
{
    --_depth;
    line("}");
}

void DotText::line(const std::string& text)
{
    _text += std::string(2 * _depth, ' ') + text + "\n";
}

std::string DotText::quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : escaped(text, 1000)) {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted + "\"";
}
} // namespace Explain
