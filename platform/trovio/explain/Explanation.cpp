#include "trovio/Explanation.h"

#include <algorithm>
#include <iterator>

namespace Trovio {

const char* toString(Verdict verdict)
{
    static constexpr const char* names[] = {
        "flowing",         "no such label", "pattern matches nothing",
        "wrong direction", "types differ",  "no external route",
        "no route",        "loop",          "node degraded",
        "never written",   "stale",         "filtered",
        "overwritten",     "unread",        "interrupted reader",
        "not made",        "not stored",
    };
    static_assert(std::size(names) == static_cast<std::size_t>(Verdict::NotStored) + 1);
    return names[static_cast<std::size_t>(verdict)];
}

const std::string* Explanation::findText(const std::string& name) const
{
    const auto found = std::ranges::find(_details, name, &Detail::_name);
    return found == _details.end() ? nullptr : std::get_if<std::string>(&found->_value);
}

std::optional<double> Explanation::findNumber(const std::string& name) const
{
    const auto found = std::ranges::find(_details, name, &Detail::_name);
    const double* const number = found == _details.end() ? nullptr : std::get_if<double>(&found->_value);
    return number ? std::optional(*number) : std::nullopt;
}

} // namespace Trovio
