// One message of a WebSocket client a line; its first letter says which: t a text, b a binary one of the Foxglove
// protocol, p one of the page's. Between them records come.
#include "fuzz/Fuzz.h"
#include "monitor/server/streams/BatchStream.h"
#include "monitor/server/streams/FoxgloveStream.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"

#include <nlohmann/json.hpp>

namespace Fuzz {

namespace {

using namespace Monitor;

/// A server's insides with three slots, one of them with poses.
class Inside {
public:
    Inside()
    {
        Trovio::Root::init();
        Trovio::Root::get().addOutSlot("Wand/x", &_number);
        Trovio::Root::get().addOutSlot("Wand/name", &_text);
        Trovio::Root::get().addOutSlot("Wand/place", &_place);
        _taps = std::make_unique<TapSet>();
        _watches = std::make_unique<Watches>(*_taps, [] {});
        _channels.update(Channels::look());
        _poses = std::make_unique<PoseFeed>(*_watches);
        _poses->setSlots(_channels.poseLabels());
        _around.emplace(FoxgloveStream::Around{*_watches, _channels, *_poses,
                                               [](const Question& question, const auto& take) {
                                                   require(question._method == "POST", "clients only publish");
                                                   take({question._body.size() % 2 == 0 ? 200 : 400, {}, "{}"});
                                               },
                                               [] {}, "fuzz", "session"});
    }

    Watches& watches() { return *_watches; }
    const FoxgloveStream::Around& around() const { return *_around; }
    /// What is newly watched tells its last value.
    void settle() { _watches->round(); }
    void push()
    {
        _number.push(Trovio::Data(1.5));
        _text.push(Trovio::Data(std::string("wand")));
        _place.push(Trovio::Data(Trovio::Matrix4<float>()));
        _watches->round();
    }

private:
    Trovio::OutSlot<double> _number{"number"};
    Trovio::OutSlot<std::string> _text{"text"};
    Trovio::OutSlot<Trovio::Matrix4<float>> _place{"place"};
    std::unique_ptr<TapSet> _taps;
    std::unique_ptr<Watches> _watches;
    Channels _channels;
    std::unique_ptr<PoseFeed> _poses;
    std::optional<FoxgloveStream::Around> _around;
};

/// Takes what the client would be sent. Returns how many records were in it.
std::size_t checkSaid(Stream& stream)
{
    std::size_t records = 0;
    for (ClientQueue& queue = stream.queue(); !queue.empty(); queue.sent()) {
        const OutMessage& message = queue.front();
        records += message._records;
        if (message._isBinary)
            require(message._bytes.size() >= 13 && message._bytes[0] == 1, "a record has its head");
        else
            require(nlohmann::json::parse(message._bytes, nullptr, false).is_object(), "what is said is JSON");
    }
    return records;
}

} // namespace

void runOnce(std::string_view input)
{
    static Inside* const inside = new Inside; // for the whole run of the program
    FoxgloveStream viewer(inside->around(), true);
    BatchStream page(inside->watches());
    viewer.opened();
    viewer.slotsSeen(true);
    page.opened();
    for (int i = 0; i < 20 && !input.empty(); ++i) {
        const std::string_view line = takeLine(input);
        if (line.empty())
            continue;
        line[0] == 'p' ? page.received(line.substr(1), false) : viewer.received(line.substr(1), line[0] == 'b');
        inside->settle();
        checkSaid(viewer);
        checkSaid(page);
        inside->push();
        require(checkSaid(viewer) <= 2 && checkSaid(page) <= 2, "a client gets each record once");
    }
}

} // namespace Fuzz
