#include "nodes/mqtt/MqttNode.h"

#include "nodes/mqtt/PasswordFile.h"
#include "nodes/shared/Report.h"
#include "nodes/shared/RoundRobin.h"
#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"

namespace Trovio::Nodes {

namespace {

constexpr double retryPeriod = 2.0;   // seconds from a lost connection, or a failed try, to the next
constexpr double lookupPeriod = 0.05; // seconds from one question whether the name server has answered to the next
constexpr double connectTime = 10.0;  // seconds in which the broker has to take us
constexpr double lookPeriod = 1.0;    // seconds between two looks whether the connection is to be kept alive
constexpr unsigned maxUnconfirmed = 20;

std::string describe(const Endpoint& broker)
{
    const bool isNumeric6 = broker._host.find(':') != std::string::npos;
    return (isNumeric6 ? "[" + broker._host + "]" : broker._host) + ":" + std::to_string(broker._port);
}

} // namespace

const NodeTypeEntry& MqttNode::getEntry()
{
    static constexpr auto create = []() -> std::unique_ptr<Node> {
        return std::make_unique<MqttNode>(Clock::system());
    };
    static const NodeTypeEntry entry{"MQTT", "topics of an MQTT broker, received and sent", mqttSettingRows(), create};
    return entry;
}

MqttNode::MqttNode(Clock& clock, std::unique_ptr<NameLookup> lookup)
    : WorkerNode(clock),
      _inCounters{addCounter("in messages"), addCounter("in values"), addCounter("in refused"),
                  addCounter("in skipped")},
      _outCounters{addCounter("out messages"), addCounter("out failed")},
      _shortage(clock, addCounter("without memory"), "MQTT"),
      _failureReports(clock),
      _lookup(std::move(lookup))
{
}

MqttNode::~MqttNode() = default;

void MqttNode::configure(const Settings& settings)
{
    MqttSettings wanted = readMqttSettings(settings);
    auto dispatcher = std::make_unique<MqttDispatcher>(wanted._in, wanted._takesRetained, _inCounters);
    std::vector<std::unique_ptr<Sender>> senders;
    for (const MqttTopic& topic : wanted._out)
        senders.push_back(std::make_unique<Sender>(
            Sender{topic, TextSender::create(topic._slot, wanted._queue, [this] { _worker.wake(); })}));

    removeSlots();
    _settings = std::move(wanted);
    _broker = describe(_settings._broker);
    _dispatcher = std::move(dispatcher);
    _senders = std::move(senders);
    _dispatcher->forEachSlot([this](BasicOutSlot& slot) { addSlot(slot); });
    for (const auto& sender : _senders)
        addSlot(sender->_sender->getSlot());
}

void MqttNode::start()
{
    _step = Step::Away;
    _due = 0.0;
    _fact.set("has not connected to the broker at " + _broker);
    WorkerNode::start();
}

void MqttNode::stop()
{
    WorkerNode::stop();
    _lookup->cancel();
    _client.reset();
}

void MqttNode::run()
{
    for (;;) {
        double next = _clock.now() + MemoryShortage::Pause;
        _shortage.survives([&] { next = goOn(); });
        if (_client && _client->getDescriptor() >= 0)
            _ready.watch(_client->getDescriptor(), _client->wantsToWrite());
        const int ready = _ready.getDescriptor();
        if (!_worker.wait(next, {&ready, 1U}))
            break;
    }
    if (_client)
        _client->farewell();
}

double MqttNode::goOn()
{
    if (_step == Step::Asked || (_step == Step::Away && _clock.now() >= _due))
        lookUp();
    if (_step == Step::Connecting || _step == Step::Connected)
        work();
    if (_step == Step::Connected)
        send();
    switch (_step) {
    case Step::Asked:
        return _clock.now() + lookupPeriod;
    case Step::Connected:
        return _clock.now() + lookPeriod;
    default:
        return _due;
    }
}

void MqttNode::lookUp()
{
    const Endpoint& broker = _settings._broker;
    const bool isKnown = broker._host == "localhost" || SocketAddress::parse(broker._host, broker._port);
    if (isKnown) {
        connect(broker._host);
        return;
    }
    if (_step == Step::Away)
        _lookup->begin(broker._host, broker._port);
    _step = Step::Asked;
    const auto answer = _lookup->poll();
    if (!answer)
        return;
    // The name is what the certificate of the broker has to fit. The library looks it up again, which is quick now.
    if (answer->_address)
        connect(_settings._connection._isEncrypted ? broker._host : answer->_address->host());
    else
        lose("cannot find the host '" + broker._host + "': " + answer->_problem);
}

void MqttNode::connect(const std::string& host)
{
    _client = std::make_unique<MqttClient>(_settings._connection, static_cast<MqttListener&>(*this));
    PasswordText secret;
    if (!_settings._passwordFile.empty())
        secret = readPasswordFile(_settings._passwordFile);
    if (!secret._problem.empty()) {
        lose(secret._problem);
        return;
    }
    _client->logIn(_settings._user, secret._password);
    _step = Step::Connecting;
    _due = _clock.now() + connectTime;
    const std::string problem = _client->begin(host, _settings._broker._port);
    if (!problem.empty())
        lose("cannot connect to the broker at " + _broker + ": " + problem);
}

void MqttNode::work()
{
    const std::string problem = _client->work();
    if (_step == Step::Connecting && problem.empty()) {
        if (_client->isAccepted())
            accepted();
        else if (_clock.now() >= _due)
            lose("no answer from the broker at " + _broker + " within " + std::to_string(int(connectTime)) + " s");
    } else if (!problem.empty()) {
        lose((_step == Step::Connecting ? "cannot connect to the broker at " : "lost the broker at ") + _broker + ": " +
             problem);
    }
    if (_client && _client->hasMore())
        _worker.wake();
}

void MqttNode::accepted()
{
    _step = Step::Connected;
    _refused.clear();
    _fact.set("connected to the broker at " + _broker);
    setRunning("connected to the broker at " + _broker);
    const auto topics = _dispatcher->getTopics();
    std::string problem = topics.empty() ? std::string() : _client->subscribe(topics, _settings._quality);
    const std::string& status = _settings._connection._statusTopic;
    if (problem.empty() && !status.empty())
        problem = _client->publish(status, MqttClient::Online, 1, true);
    if (!problem.empty())
        lose("lost the broker at " + _broker + ": " + problem);
}

void MqttNode::lose(const std::string& problem)
{
    if (_client)
        _outCounters._failed.add(_client->getUnconfirmed());
    _client.reset();
    _step = Step::Away;
    _due = _clock.now() + retryPeriod;
    _fact.set(problem);
    setDegraded(problem);
}

bool MqttNode::maySend() const
{
    return _client && !_client->wantsToWrite() && _client->getUnconfirmed() < maxUnconfirmed;
}

void MqttNode::send()
{
    const auto sendNext = [this](const Sender& sender) { return maySend() && sendOne(sender); };
    const bool mayBeMore = takeInTurn(_senders, sendNext, [this] { return maySend() && !_worker.isStopping(); });
    if (mayBeMore && maySend())
        _worker.wake();
}

bool MqttNode::sendOne(const Sender& sender)
{
    if (!sender._sender->take(_record))
        return false;
    const MqttTopic& topic = sender._topic;
    const auto payload = formatPayload(_record, topic._pointer, _settings._form);
    const std::string problem = payload
                                    ? _client->publish(topic._topic, *payload, _settings._quality, _settings._retain)
                                    : "its value makes no payload";
    if (problem.empty())
        return true;
    _outCounters._failed.add();
    if (const auto more = _failureReports.admit())
        report(osg::LogWarning, "MQTT: a record of " + topic._slot._name + " could not be sent: " + problem + *more);
    return true;
}

void MqttNode::messageArrived(std::string_view topic, std::string_view payload, bool isRetained) noexcept
{
    _shortage.survives([&] { _dispatcher->take(topic, payload, isRetained, _clock.wallTime()); });
}

void MqttNode::subscriptionRefused(const std::string& topic, const std::string& reason) noexcept
{
    _shortage.survives([&] {
        constexpr std::size_t maxNamed = 200;
        if (_refused.size() < maxNamed)
            _refused += (_refused.empty() ? "" : ", ") + topic + " (" + reason + ")";
        setDegraded("the broker at " + _broker + " does not let us receive " + _refused);
    });
}

std::vector<RemarkInfo> MqttNode::getRemarks() const
{
    return _dispatcher ? _dispatcher->getRemarks(_fact.get()) : std::vector<RemarkInfo>();
}

} // namespace Trovio::Nodes
