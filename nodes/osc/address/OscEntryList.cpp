#include "nodes/osc/address/OscEntryList.h"

#include "nodes/osc/address/OscAddressMap.h"
#include "nodes/osc/address/OscItemReader.h"
#include "nodes/shared/SlotList.h"
#include "trovio/Labels.h"
#include <algorithm>
#include <set>

namespace Trovio::Nodes {

namespace {

/// Reads a list from left to right.
class ListReader {
public:
    ListReader(const Settings& settings, const char* setting, OscDirection direction)
        : _settings(settings), _setting(setting), _comesIn(direction == OscDirection::In), _text(settings.text(setting))
    {
    }

    std::vector<OscEntry> read()
    {
        std::vector<OscEntry> entries;
        while (_at < _text.size()) {
            if (entries.size() == MaxListedSlots)
                throw _settings.refusal(_setting, "up to " + std::to_string(MaxListedSlots) + " entries");
            entries.push_back(readEntry());
            if (_at < _text.size() && ++_at == _text.size())
                throw _settings.refusal(_setting, "no comma behind the last entry");
        }
        return entries;
    }

private:
    OscEntry readEntry()
    {
        skipBlanks();
        _begin = _at;
        OscEntry entry;
        entry._address = entry._title = readAddress();
        std::vector<OscWrittenItem> items;
        for (skipBlanks(); !isEntryEnd(); skipBlanks())
            items.push_back(readItem(entry, items));
        checkSlots(items);
        setLabels(entry, items);
        return entry;
    }

    std::string readAddress()
    {
        const std::size_t end = std::min(_text.find_first_of(" ,", _at), _text.size());
        const std::string address(_text.substr(_at, end - _at));
        std::string plain = address;
        if (_comesIn)
            std::replace(plain.begin(), plain.end(), '*', '+');
        if (!isOscAddress(plain))
            refuse("an address: '/' and up to " + std::to_string(MaxOscAddress - 1) +
                   " more printable characters without blanks and " +
                   (_comesIn ? "#,?[]{}; '*' stands for any text without '/'" : "#*,?[]{}"));
        if (plain != address && ++_stars > MaxOscStars)
            refuse("up to " + std::to_string(MaxOscStars) + " addresses with '*'");
        _at = end;
        return address;
    }

    OscWrittenItem readItem(OscEntry& entry, const std::vector<OscWrittenItem>& before)
    {
        if (!before.empty() && before.back()._takesRest)
            refuse("nothing behind what takes all arguments that are left");
        if (before.size() == MaxOscItems)
            refuse("up to " + std::to_string(MaxOscItems) + " items behind an address");
        const std::string_view word = _text.substr(_at, measureOscItem(_text.substr(_at)));
        const auto item = readOscItem(word);
        if (!item || (!_comesIn && std::holds_alternative<OscSkippedItem>(item->_item)))
            refuse(describeOscItems());
        if (std::holds_alternative<OscFixedItem>(item->_item))
            entry._title += " " + std::string(word);
        _at += word.size();
        return *item;
    }

    void checkSlots(const std::vector<OscWrittenItem>& items)
    {
        std::size_t slots = 0, names = 0;
        for (const OscWrittenItem& item : items)
            if (std::holds_alternative<OscSlotItem>(item._item)) {
                ++slots;
                names += item._label.empty() ? 0 : 1;
            }
        if (slots == 0)
            refuse("at least one slot; items are " + describeOscItems());
        if (slots > 1 && names != slots)
            refuse("a name for each of several slots, such as Vec3f:position Rotation:rotation");
        if ((_slots += slots) > MaxListedSlots)
            refuse("up to " + std::to_string(MaxListedSlots) + " slots in all");
    }

    /// Fixed arguments tell the slots of one address apart, wherever they stand.
    void setLabels(OscEntry& entry, const std::vector<OscWrittenItem>& items)
    {
        std::string fixed;
        for (const OscWrittenItem& item : items)
            if (std::holds_alternative<OscFixedItem>(item._item))
                fixed += "/" + item._label;
        for (const OscWrittenItem& item : items) {
            entry._items.push_back(item._item);
            auto* const slot = std::get_if<OscSlotItem>(&entry._items.back());
            if (!slot)
                continue;
            slot->_labelEnd = fixed + (item._label.empty() ? "" : "/" + item._label);
            const std::string label = entry.getLabel(*slot);
            if (label.size() > MaxLabelLength)
                refuse("a shorter entry: labels have up to " + std::to_string(MaxLabelLength) + " bytes");
            if (!_labels.insert(label).second)
                throw _settings.refusal(_setting, "each name once; duplicate name '/" + label + "'");
        }
    }

    void skipBlanks() { _at = std::min(_text.find_first_not_of(' ', _at), _text.size()); }
    bool isEntryEnd() const { return _at == _text.size() || _text[_at] == ','; }

    /// Of what stands at the place that was reached.
    [[noreturn]] void refuse(const std::string& allowed) const
    {
        std::size_t end = _at;
        while (end < _text.size() && _text[end] != ',')
            end += std::max<std::size_t>(1, measureOscItem(_text.substr(end)));
        std::string entry(_text.substr(_begin, end - _begin));
        entry.erase(entry.find_last_not_of(' ') + 1);
        throw _settings.refusal(_setting, "in the entry '" + entry + "' at character " + std::to_string(character()) +
                                              ": " + allowed);
    }

    /// From 1, as an editor counts them.
    std::size_t character() const
    {
        const auto begins = [](char byte) { return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U; };
        return 1 + static_cast<std::size_t>(std::count_if(_text.begin(), _text.begin() + std::ptrdiff_t(_at), begins));
    }

    const Settings& _settings;
    const char* const _setting;
    const bool _comesIn;
    const std::string_view _text;
    std::size_t _begin = 0, _at = 0; // of the entry, and how far it is read
    std::size_t _slots = 0, _stars = 0;
    std::set<std::string> _labels;
};

} // namespace

bool isOscAddress(std::string_view text)
{
    return text.size() > 1 && text.size() <= MaxOscAddress && text.front() == '/' && isOscName(text);
}

std::vector<OscEntry> readOscEntries(const Settings& settings, const char* setting, OscDirection direction)
{
    return ListReader(settings, setting, direction).read();
}

} // namespace Trovio::Nodes
