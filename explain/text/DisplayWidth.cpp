#include "explain/text/DisplayWidth.h"

#include "osg/LogText.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <limits>
#include <locale.h>

namespace Explain {
namespace {

/// The C library knows the widths of all characters, but only in a locale with Unicode, and the program's is "C".
class UnicodeLocale {
public:
    UnicodeLocale() : _before(uselocale(unicode())) {}
    ~UnicodeLocale() { uselocale(_before); }
    UnicodeLocale(const UnicodeLocale&) = delete;
    UnicodeLocale& operator=(const UnicodeLocale&) = delete;

private:
    static locale_t unicode()
    {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale;
    }
    const locale_t _before; // of this thread
};

// One column for what the C library does not know.
std::size_t columnsOf(std::string_view character)
{
    if (character.size() == 1)
        return 1;
    auto code = static_cast<wchar_t>(static_cast<unsigned char>(character[0]) & (0xFFU >> (character.size() + 1)));
    for (const char byte : character.substr(1))
        code = (code << 6) | (static_cast<unsigned char>(byte) & 0x3F);
    const int columns = wcwidth(code);
    return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

struct Extent {
    std::size_t _bytes = 0, _columns = 0;
};

Extent extentWithin(std::string_view text, std::size_t maxColumns)
{
    const UnicodeLocale locale;
    Extent extent;
    while (extent._bytes < text.size()) {
        const std::string_view rest = text.substr(extent._bytes);
        const std::size_t bytes = firstCharacter(rest), columns = columnsOf(rest.substr(0, bytes));
        if (extent._columns + columns > maxColumns)
            break;
        extent._bytes += bytes;
        extent._columns += columns;
    }
    return extent;
}
} // namespace

std::size_t displayWidth(std::string_view text)
{
    return extentWithin(text, std::numeric_limits<std::size_t>::max())._columns;
}

std::size_t bytesWithin(std::string_view text, std::size_t columns)
{
    return extentWithin(text, columns)._bytes;
}

std::size_t firstCharacter(std::string_view text)
{
    return text.empty() ? 0 : std::max<std::size_t>(osg::utf8Length(text), 1);
}
} // namespace Explain
