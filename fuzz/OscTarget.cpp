// The bytes of a datagram, through the OSC node's reader into an out-slot of every type, and from there through an
// in-slot back into packets; and against entries with several slots, fixed and skipped arguments, and '*'. What the
// writer made must be read and written again without any difference.
#include "fuzz/Fuzz.h"
#include "nodes/osc/OscDispatcher.h"
#include "nodes/osc/OscSender.h"
#include "nodes/osc/address/OscEntryList.h"
#include "nodes/osc/packet/OscGuess.h"
#include "nodes/osc/packet/OscPacker.h"
#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"

namespace Fuzz {

namespace {

using namespace Trovio;
using namespace Trovio::Nodes;

using Packet = std::vector<std::uint8_t>;
constexpr unsigned capacity = 4096; // no input of the size that is tried fills it

/// Messages of several slots and fixed arguments, and what the last two of them get from others, too.
constexpr const char* sent = "out='/pose s:\"a b\" Vec3f:position Rotation:rotation, /pose s:c Rotation:rotation, "
                             "/fixed i:3 h:-4 f:0.5 d:0.25 T N Float:x Bool[]:rest, /some Float, /starred Float'";
constexpr const char* onlyTaken = "in='/skipped _ Float _[], /*/star T Float'";

std::vector<OscEntry> readEntries(const char* text, const char* setting, OscDirection direction)
{
    static const std::vector<Setting> table{Setting::text("in", "", "", ""), Setting::text("out", "", "", "")};
    return readOscEntries(Settings(table, text), setting, direction);
}

/// "/Vec3f", "/all/Vec3f": two methods for each type, so that patterns match one, some and all of them.
std::vector<OscEntry> sentEntries()
{
    std::vector<OscEntry> entries;
    forEachSlotType([&entries]<class T>(TypeTag<T>) {
        std::string name = TypeName<T>::getName();
        if (name.ends_with("[]"))
            name.replace(name.size() - 2, 2, "s");
        entries.push_back({"/" + name, TypeName<T>::getName()});
        entries.push_back({"/all/" + name, TypeName<T>::getName()});
    });
    for (const OscEntry& entry : readEntries(sent, "out", OscDirection::Out))
        entries.push_back(entry);
    return entries;
}

std::vector<OscEntry> takenEntries()
{
    auto entries = sentEntries();
    for (const OscEntry& entry : readEntries(onlyTaken, "in", OscDirection::In))
        entries.push_back(entry);
    return entries;
}

/// What the node does between its socket and its socket: a message in, a value in two slots, a message out.
class Road {
public:
    Road()
        : _dispatcher(takenEntries(), _counters, [this](const auto& slots) { connect(*slots.at(0), *_ends.back()); }),
          _uneven(readEntries("out='/late Float:a Float:b'", "out", OscDirection::Out).at(0),
                  OscSender::Manner{capacity, Gathering::Frame, _replaced, [] {}})
    {
        for (const OscEntry& entry : sentEntries()) {
            _out.push_back(
                std::make_unique<OscSender>(entry, OscSender::Manner{capacity, Gathering::All, _replaced, [] {}}));
            _ends.insert(_ends.end(), _out.back()->getSlots().begin(), _out.back()->getSlots().end());
        }
        std::size_t next = 0;
        _dispatcher.forEachSlot([&](BasicOutSlot& slot) {
            const bool isSkipped = next == _ends.size();
            connect(slot, *_ends[isSkipped ? next - 2 : next]);
            if (slot.getName() == "Float" || slot.getName() == "some")
                connect(slot, *_uneven.getSlots()[slot.getName() == "some" ? 1 : 0]);
            ++next;
        });
        sendEmpty<SharedImage>();
        sendEmpty<SharedVector<float>>();
    }
    ~Road()
    {
        for (const auto& [from, to] : _connections)
            from->disconnect(to);
    }

    bool read(Bytes packet) { return !readOscPacket(packet, Time(1.0), _dispatcher).has_value(); }

    /// The values that came since the last call, in the packets that the node would send.
    std::vector<Packet> takePackets()
    {
        std::vector<Packet> packets;
        OscPacker packer(Bundling::Always,
                         [&packets](Bytes packet, std::size_t) { packets.emplace_back(packet.begin(), packet.end()); });
        for (const auto& sender : _out)
            while (const auto stamp = sender->take(_writer, 0.0))
                packer.add(_writer.finish(), *stamp);
        packer.flush();
        while (_uneven.take(_writer, 0.0))
            _writer.finish();
        return packets;
    }

    std::vector<RemarkInfo> getRemarks() const { return _dispatcher.getRemarks("packets came", true, ""); }

    std::uint64_t takeValueCount() { return _values.get() - std::exchange(_valuesBefore, _values.get()); }

private:
    /// A handle without an object is sent as an empty value.
    template <class Handle>
    void sendEmpty()
    {
        OscSender sender({"/none", TypeName<Handle>::getName()}, {capacity, Gathering::All, _replaced, [] {}});
        OutSlot<Handle> slot("none");
        slot.connect(sender.getSlots().front());
        slot.push(Data<Handle>());
        require(sender.take(_writer, 0.0).has_value(), "a handle without an object is sent");
        _writer.finish();
        slot.disconnect(sender.getSlots().front());
    }

    void connect(BasicOutSlot& from, BasicInSlot& to)
    {
        from.connect(&to);
        _connections.emplace_back(&from, &to);
    }

    Counter _packets{"packets"}, _messages{"messages"}, _values{"values"}, _mismatched{"mismatched"},
        _unknown{"unknown"}, _malformed{"malformed"}, _dropped{"dropped"}, _unread{"unread"},
        _withoutMemory{"without memory"}, _replaced{"replaced"};
    OscInCounters _counters{_packets,   _messages, _values, _mismatched,   _unknown,
                            _malformed, _dropped,  _unread, _withoutMemory};
    OscDispatcher _dispatcher;
    std::vector<std::unique_ptr<OscSender>> _out;
    OscSender _uneven;               // a message of two slots that get their values from different messages
    std::vector<BasicInSlot*> _ends; // of all that is sent
    std::vector<std::pair<BasicOutSlot*, BasicInSlot*>> _connections;
    OscWriter _writer;
    std::uint64_t _valuesBefore = 0;
};

/// Whether the entry that is guessed from a message takes it. Whether the bytes of an image fit is not guessed.
class GuessCheck final : public OscMessageVisitor {
public:
    void visit(const OscMessage& message) override
    {
        OscGuess guess;
        guess.note(message);
        const std::string items = guess.getItems();
        if (items.empty() || items.ends_with("Image") || !isOscAddress(message._address))
            return;
        const std::string text = quoteOscEntries(std::string(message._address) + " " + items);
        OscMethod method(readEntries(text.c_str(), "in", OscDirection::In).at(0));
        require(method.read(message) == OscFit::Fits, "the entry that is guessed takes the message");
    }
};

} // namespace

void runOnce(std::string_view input)
{
    static Road road;
    const bool taken = road.read(Bytes(reinterpret_cast<const std::uint8_t*>(input.data()), input.size()));
    const auto packets = road.takePackets();
    const auto count = road.takeValueCount();
    require(taken || (packets.empty() && count == 0), "of a malformed packet nothing arrives");
    require(packets.empty() == (count == 0), "every value that is counted arrives");
    GuessCheck guesses;
    readOscPacket(Bytes(reinterpret_cast<const std::uint8_t*>(input.data()), input.size()), Time(1.0), guesses);
    for (const Packet& packet : packets)
        require(road.read(packet), "what the node writes, it reads");
    require(road.takeValueCount() == count, "all that the node writes fits the slots that it came from");
    require(road.takePackets() == packets, "what was written and read is written as before");
    for (const RemarkInfo& remark : road.getRemarks())
        require(!remark._text.empty(), "of a slot without values something is said");
}

} // namespace Fuzz
