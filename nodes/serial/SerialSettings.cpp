#include "nodes/serial/SerialSettings.h"

#include "nodes/text/TextSlots.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr const char* slotList = "'label Type, ...' with slot types, or nothing";
constexpr const char* const lineEnds[] = {"\n", "\r\n", "\r"};

const char* baudChoices()
{
    static const std::string choices = [] {
        std::string all;
        for (const unsigned baud : baudRates())
            all += (all.empty() ? "" : "|") + std::to_string(baud);
        return all;
    }();
    return choices.c_str();
}

std::vector<ListedSlot> readLabels(const Settings& settings, const char* setting)
{
    return readTextSlots(settings, setting,
                         {isLineLabel, "a label", "up to 255 printable characters without blanks and :=,;*"});
}

bool hasOneWidth(const ListedSlot& slot)
{
    return slot._typeName != "String" && !slot._typeName.ends_with("[]");
}

/// Lines without labels say by their place what each number is for.
void checkUnlabelled(const Settings& settings, const std::vector<ListedSlot>& in, const std::vector<ListedSlot>& out)
{
    const auto isText = [](const ListedSlot& slot) { return slot._typeName == "String"; };
    if (std::ranges::any_of(in, isText) || (in.size() > 1 && !std::ranges::all_of(in, hasOneWidth)))
        throw settings.refusal("in", "types with as many numbers each time, or one array, where lines have no label");
    if (out.size() > 1 || std::ranges::any_of(out, isText))
        throw settings.refusal("out", "one entry of numbers, where lines have no label");
}

SerialFormat readFormat(const Settings& settings)
{
    const std::string& bits = settings.text("bits");
    return {baudRates()[settings.choice("baud")], bits[0], bits[1], bits[2],
            static_cast<SerialFormat::Flow>(settings.choice("flow"))};
}

} // namespace

std::span<const Setting> serialSettingRows()
{
    static const Setting rows[] = {
        Setting::file("port", nullptr, "the device; best its path in /dev/serial/by-id, which stays the same"),
        Setting::choice("baud", "115200", baudChoices(), "bits a second, as the device has it"),
        Setting::choice("bits", "8N1", "8N1|8N2|8E1|8O1|7E1|7O1", "data bits, parity and stop bits"),
        Setting::choice("flow", "none", "none|rtscts|xonxoff", "flow control"),
        Setting::choice("lines", "labelled", "labelled|numbers", "whether a line begins with a label"),
        Setting::text("in", "", "what to receive; each label is an out-slot", slotList),
        Setting::text("out", "", "what to write; each label is an in-slot", slotList),
        Setting::integer("queue", "256", 1, 65536, "records that may wait in each in-slot; the newest are kept"),
        Setting::choice("end", "lf", "lf|crlf|cr", "what ends a line that is written"),
    };
    return rows;
}

SerialSettings readSerialSettings(const Settings& settings)
{
    SerialSettings wanted;
    wanted._path = settings.file("port");
    wanted._format = readFormat(settings);
    wanted._form = static_cast<LineForm>(settings.choice("lines"));
    wanted._in = readLabels(settings, "in");
    wanted._out = readLabels(settings, "out");
    wanted._queue = static_cast<unsigned>(settings.integer("queue"));
    wanted._lineEnd = lineEnds[settings.choice("end")];
    if (wanted._path.empty())
        throw settings.refusal("port", "the path of a device, such as /dev/ttyUSB0");
    if (wanted._in.empty() && wanted._out.empty())
        throw settings.refusal("in", "a value, unless 'out' has one");
    checkApart(settings, wanted._in, wanted._out);
    checkQueues(settings, "queue", wanted._out.size());
    if (wanted._form == LineForm::Numbers)
        checkUnlabelled(settings, wanted._in, wanted._out);
    return wanted;
}

} // namespace Trovio::Nodes
