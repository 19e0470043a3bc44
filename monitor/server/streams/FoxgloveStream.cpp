#include "monitor/server/streams/FoxgloveStream.h"

#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "monitor/codec/ClientJson.h"
#include "monitor/codec/PlainJson.h"
#include "trovio/Namespace.h"

#include <algorithm>

namespace Monitor {

using Explain::inQuotes;
using Json = nlohmann::ordered_json;

namespace {

constexpr std::size_t channelsAtOnce = 100;
constexpr std::size_t maxPublications = 1024;
constexpr unsigned roundsBetweenTelling = 64; // about a second

const SlotCodec* codecOfSchema(const std::string& name)
{
    const auto found = std::ranges::find(SlotCodec::all(), name, &SlotCodec::schemaName);
    return found == SlotCodec::all().end() ? nullptr : *found;
}

void putLittleEndian(std::uint64_t number, std::size_t bytes, std::string& out)
{
    for (std::size_t i = 0; i < bytes; ++i)
        out += static_cast<char>(number >> (8 * i) & 0xFF);
}
} // namespace

// A client that does not even take words is sent away.
void FoxgloveStream::say(const Json& object)
{
    if (!queue().putWords(Explain::jsonText(object)))
        queue().finish();
}

void FoxgloveStream::status(Level level, const std::string& text, const char* number)
{
    Json object{{"op", "status"}, {"level", int(level)}, {"message", text}};
    if (number)
        object["id"] = number;
    say(object);
}

FoxgloveStream::~FoxgloveStream()
{
    _around._poses.remove(*this);
    _around._watches.removeAll(*this);
}

void FoxgloveStream::opened()
{
    _isOpen = true;
    Json info{{"op", "serverInfo"}, {"name", _around._name}, {"capabilities", Json::array()}};
    if (_mayWrite) {
        info["capabilities"].push_back("clientPublish");
        info["supportedEncodings"] = {"cdr", "json"};
    }
    info["sessionId"] = _around._session;
    say(info);
    _around._lookAtSlots(); // those that are known may be of an hour ago
}

// The rest follows when the client has taken these: thousands of schemas are some megabytes.
void FoxgloveStream::advertiseSome()
{
    Json channels = Json::array();
    const auto& all = _around._channels.all();
    for (auto next = all.upper_bound(_advertised); next != all.end() && channels.size() < channelsAtOnce; ++next) {
        const auto& [number, channel] = *next;
        channels.push_back({{"id", number},
                            {"topic", channel._label},
                            {"encoding", "cdr"},
                            {"schemaName", channel.schemaName()},
                            {"schema", channel.schemaText()},
                            {"schemaEncoding", "ros2msg"}});
        _offered[number] = channel._label;
        _advertised = number;
    }
    _hasOffered = true;
    say({{"op", "advertise"}, {"channels", channels}});
}

// What it lost last is told also to a client that watches nothing any more.
void FoxgloveStream::drained()
{
    if (queue().dropped() != _told)
        tellDropped();
    const auto& all = _around._channels.all();
    if (_hasOffered && all.upper_bound(_advertised) != all.end())
        advertiseSome();
}

void FoxgloveStream::slotsSeen(bool areOthers)
{
    if (!_isOpen || (_hasOffered && !areOthers))
        return;
    if (!_hasOffered)
        return advertiseSome();
    Json gone = Json::array();
    std::erase_if(_offered, [this, &gone](const auto& entry) {
        if (_around._channels.find(entry.first))
            return false;
        gone.push_back(entry.first);
        return true;
    });
    std::vector<std::uint32_t> ended;
    for (const auto& [number, subscription] : _subscriptions)
        if (!_offered.contains(subscription._channel))
            ended.push_back(number);
    for (const std::uint32_t number : ended)
        end(number);
    if (!gone.empty())
        say({{"op", "unadvertise"}, {"channelIds", gone}});
    if (queue().empty())
        drained();
}

void FoxgloveStream::received(std::string_view message, bool isBinary)
{
    const auto use = [this](const auto& read) {
        if constexpr (requires { read._faults; })
            for (const std::string& fault : read._faults)
                status(Error, fault);
        handle(read);
    };
    std::visit(use, Foxglove::read(message, isBinary));
}

void FoxgloveStream::handle(const Foxglove::Wrong& message)
{
    status(Error, message._text);
}

std::string FoxgloveStream::problemOf(const Foxglove::Subscription& entry) const
{
    const std::string here =
        "subscription " + std::to_string(entry._number) + " to channel " + std::to_string(entry._channel);
    const auto offered = _offered.find(entry._channel);
    if (_subscriptions.contains(entry._number))
        return here + ": this client has a subscription with that number; take another one";
    if (offered == _offered.end())
        return here + ": no such channel was offered, or it is gone";
    if (_byLabel.contains(offered->second))
        return here + ": this client has subscribed to " + inQuotes(offered->second) + " already";
    return {};
}

void FoxgloveStream::handle(const Foxglove::Subscribe& message)
{
    for (const auto& entry : message._entries) {
        if (const std::string problem = problemOf(entry); !problem.empty()) {
            status(Error, problem);
            continue;
        }
        const std::string& label = _offered[entry._channel];
        const Channels::Channel* const channel = _around._channels.find(entry._channel);
        const Subscription& subscription =
            _subscriptions[entry._number] = {entry._channel, label, channel && channel->isPoses()};
        _byLabel[label] = entry._number; // the newest record may come at once
        if (watch(entry._number, subscription))
            continue;
        _byLabel.erase(label);
        _subscriptions.erase(entry._number);
        status(Error, TapSet::whyNot(label));
    }
}

bool FoxgloveStream::watch(std::uint32_t number, const Subscription& subscription)
{
    if (!subscription._isPoses)
        return _around._watches.add(subscription._label, *this, number);
    _around._poses.add(*this);
    return true;
}

void FoxgloveStream::end(std::uint32_t subscription)
{
    const auto found = _subscriptions.find(subscription);
    if (found == _subscriptions.end())
        return;
    if (found->second._isPoses)
        _around._poses.remove(*this);
    else
        _around._watches.remove(found->second._label, *this);
    _byLabel.erase(found->second._label);
    _subscriptions.erase(found);
}

// Viewers also end what went with its channel.
void FoxgloveStream::handle(const Foxglove::Unsubscribe& message)
{
    for (const std::uint32_t number : message._entries)
        end(number);
}

void FoxgloveStream::handle(const Foxglove::Advertise& message)
{
    for (const auto& entry : message._entries) {
        const SlotCodec* const codec = codecOfSchema(entry._schemaName);
        const std::string what = "publishing to " + inQuotes(entry._topic) + ": ";
        if (!_mayWrite)
            status(Error, what + "this client may only read; use the Unix socket, or start with --monitor-write and "
                                 "take the address with the token that it prints");
        else if (entry._topic.empty() || entry._topic.size() > Trovio::MaxLabelLength)
            status(Error, what + "a label has 1 to " + std::to_string(Trovio::MaxLabelLength) + " bytes");
        else if (entry._encoding != "json" && entry._encoding != "cdr")
            status(Error, what + "the encoding " + inQuotes(entry._encoding) + " is unknown; allowed: cdr, json");
        else if (entry._encoding == "cdr" && !codec)
            status(Error, what + "no slot type has the schema " + inQuotes(entry._schemaName) + "; /types lists them");
        else if (_publications.size() == maxPublications || _publications.contains(entry._number))
            status(Error, what + "the number " + std::to_string(entry._number) + " is taken, or there are " +
                              std::to_string(maxPublications) + " already");
        else
            _publications[entry._number] = {entry._topic, entry._encoding == "cdr" ? codec : nullptr};
    }
}

void FoxgloveStream::handle(const Foxglove::Unadvertise& message)
{
    for (const std::uint32_t number : message._entries)
        _publications.erase(number);
}

void FoxgloveStream::handle(const Foxglove::Publish& message)
{
    const auto found = _publications.find(message._number);
    if (found == _publications.end())
        return status(Error, "no channel " + std::to_string(message._number) + " of this client; advertise it");
    publish(found->second, message._payload);
}

// The way that /pub takes, so that there is one. The client's next message is read when this one is answered.
void FoxgloveStream::publish(const Publication& publication, std::string_view payload)
{
    Question question;
    question._method = "POST";
    question._path = "/pub/" + publication._label;
    question._mayWrite = true;
    question._codec = publication._codec;
    if (publication._codec)
        question._body = payload;
    else if (const auto value = readJson(payload))
        question._body = nlohmann::json{{"value", plainJson(*value)}}.dump();
    else
        return status(Error, "publishing to " + inQuotes(publication._label) + ": no JSON of up to 16 levels");
    _around._ask(std::move(question), [self = std::weak_ptr(_self), goOn = holdOff()](const Answer& answer) {
        if (const auto there = self.lock())
            (*there)->tellFailure(answer);
        goOn();
    });
}

void FoxgloveStream::tellFailure(const Answer& answer)
{
    if (answer._status < 400)
        return;
    const auto object = readObject(answer._body);
    status(Error, object ? textAt(*object, "error").value_or(answer._body) : answer._body);
}

// A node may have been replaced by one whose slot is of another type: that is a channel of its own, soon.
void FoxgloveStream::take(const SeenRecord& seen)
{
    const Channels::Channel* const channel = _around._channels.find(_subscriptions.at(seen._number)._channel);
    if (channel && channel->_codec == &seen._codec)
        sendRecord(seen._number, seen._record);
    else
        queue().drop(1);
}

void FoxgloveStream::takePoses(const TapRecord& poses)
{
    sendRecord(_byLabel.at(Channels::PosesLabel), poses);
}

void FoxgloveStream::sendRecord(std::uint32_t subscription, const TapRecord& record)
{
    constexpr std::size_t head = 13;
    OutMessage message;
    if (!queue().hasRoomFor(message.cost() + head + record._cdr.size()))
        return queue().drop(1);
    message._bytes.reserve(head + record._cdr.size());
    message._bytes += '\x01';
    putLittleEndian(subscription, 4, message._bytes);
    putLittleEndian(static_cast<std::uint64_t>(std::max<std::int64_t>(record._arrival, 0)), 8, message._bytes);
    message._bytes.append(reinterpret_cast<const char*>(record._cdr.data()), record._cdr.size());
    message._records = 1;
    message._isBinary = true;
    queue().putRecords(std::move(message));
}

// At once, then no more often than once a second: viewers list each text.
void FoxgloveStream::endRound()
{
    ++_roundsSinceTold;
    if (queue().dropped() != _told && (_told == 0 || _roundsSinceTold >= roundsBetweenTelling))
        tellDropped();
}

void FoxgloveStream::tellDropped()
{
    _told = queue().dropped();
    _roundsSinceTold = 0;
    status(Warning, "Send buffer limit reached: " + std::to_string(_told) + " records were dropped so far", "dropped");
}
} // namespace Monitor
