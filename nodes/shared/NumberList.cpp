#include "nodes/shared/NumberList.h"

#include <algorithm>
#include <sstream>

namespace Trovio::Nodes {

namespace {

std::string describe(std::size_t count, const NumberRange& range)
{
    std::ostringstream text;
    text << "one number";
    if (count > 1)
        text << ", or " << count;
    text << ", from " << range._lowest << " to " << range._highest << ", separated by blanks";
    return text.str();
}

} // namespace

std::vector<std::string_view> splitWords(std::string_view text)
{
    std::vector<std::string_view> words;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        if (text.empty())
            return words;
        words.push_back(text.substr(0, text.find(' ')));
        text.remove_prefix(words.back().size());
    }
}

std::vector<double> readComponents(const Settings& settings, const char* name, std::size_t count,
                                   const NumberRange& range)
{
    std::vector<double> numbers;
    for (const std::string_view word : splitWords(settings.text(name))) {
        const auto number = parseNumber<double>(word);
        if (!number || !range.contains(*number))
            throw settings.refusal(name, describe(count, range));
        numbers.push_back(*number);
    }
    if (numbers.size() == 1)
        numbers.resize(count, numbers.front());
    if (numbers.size() != count)
        throw settings.refusal(name, describe(count, range));
    return numbers;
}

} // namespace Trovio::Nodes
