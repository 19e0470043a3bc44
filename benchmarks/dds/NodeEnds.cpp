#include "benchmarks/dds/NodeEnds.h"

#include "nodes/dds/DdsNode.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Root.h"
#include <thread>

namespace Bench {

namespace {

using namespace Trovio;
using Vector = Vec3<float>;
using Array = SharedVector<float>;

constexpr unsigned capacity = 64; // records

/// A DDS node under the root, with the routes from and to the slots of this program.
class StandingNode {
public:
    StandingNode(const Meeting& meeting, const std::string& topics)
    {
        auto node = std::make_unique<Nodes::DdsNode>(Nodes::Clock::system());
        node->setType(Nodes::DdsNode::getEntry());
        node->setFieldValues(topics + " label=" + meeting._name + " domain=" + std::to_string(meeting._domain));
        _label = Root::get().addNamespace(std::unique_ptr<Node>(std::move(node)));
    }
    ~StandingNode()
    {
        Root::get().removeNamespace(_label);
        for (const std::string& slot : _slots)
            Root::get().removeSlot(slot);
    }
    StandingNode(const StandingNode&) = delete;
    StandingNode& operator=(const StandingNode&) = delete;

    std::string label(const std::string& topic) const { return _label + "/" + topic; }

    void feed(const std::string& topic, BasicOutSlot& slot)
    {
        Root::get().addOutSlot(slot.getName(), &slot);
        _slots.push_back(slot.getName());
        Root::get().addRoute(slot.getName(), label(topic));
    }
    void listen(const std::string& topic, BasicInSlot& slot)
    {
        Root::get().addInSlot(slot.getName(), &slot);
        _slots.push_back(slot.getName());
        Root::get().addRoute(label(topic), slot.getName());
    }

private:
    std::string _label;
    std::vector<std::string> _slots;
};

std::string topics(const char* verb, const std::string& name, Load load)
{
    return std::string(" ") + verb + "='" + name + (load == Load::Vector ? " Vec3f'" : " Float[]'");
}

class NearNode final : public NearEnd {
public:
    explicit NearNode(const Meeting& meeting)
        : _load(meeting._load),
          _vectors(meeting._name + " vectors"),
          _arrays(meeting._name + " arrays"),
          _answers(meeting._name + " answers", capacity),
          _node(meeting, topics("publish", meeting.forth(), _load) + topics("subscribe", meeting.back(), Load::Vector))
    {
        _node.feed(meeting.forth(), _load == Load::Vector ? static_cast<BasicOutSlot&>(_vectors) : _arrays);
        _node.listen(meeting.back(), _answers);
        _array->assign(arrayLength, 1.0F);
    }

    void send() override
    {
        const Time now = Time::getCurrentTime();
        if (_load == Load::Vector)
            _vectors.push(Data<Vector>({0.1F, 1.6F, -0.3F}, now));
        else
            _arrays.push(Data<Array>(_array, now));
    }
    void take() override { _answers.pop(); }
    bool poll() override
    {
        if (_answers.empty())
            return false;
        _answers.pop();
        return true;
    }

private:
    const Load _load;
    Array _array;
    OutSlot<Vector> _vectors;
    OutSlot<Array> _arrays;
    BufferedInSlot<Vector> _answers;
    StandingNode _node; // last: goes before the slots
};

/// Vectors go back along a route; arrays are counted by a thread.
class FarNode final : public FarEnd {
public:
    explicit FarNode(const Meeting& meeting)
        : _arrays("arrays", 8),
          _counts("counts"),
          _node(meeting,
                topics("subscribe", meeting.forth(), meeting._load) + topics("publish", meeting.back(), Load::Vector))
    {
        if (meeting._load == Load::Vector) {
            Root::get().addRoute(_node.label(meeting.forth()), _node.label(meeting.back()));
            return;
        }
        _node.listen(meeting.forth(), _arrays);
        _node.feed(meeting.back(), _counts);
        _thread = std::thread([this] { count(); });
    }
    ~FarNode() override
    {
        _arrays.interrupt();
        if (_thread.joinable())
            _thread.join();
    }

private:
    void count()
    try {
        for (float number = 1.0F;; ++number)
            _counts.push(Data<Vector>({number, _arrays.pop().getValue()->back(), 0.0F}, Time::getCurrentTime()));
    } catch (const InterruptedException&) {
    }

    BufferedInSlot<Array> _arrays;
    OutSlot<Vector> _counts;
    StandingNode _node;
    std::thread _thread;
};

} // namespace

std::unique_ptr<NearEnd> makeNearNode(const Meeting& meeting)
{
    return std::make_unique<NearNode>(meeting);
}

std::unique_ptr<FarEnd> makeFarNode(const Meeting& meeting)
{
    return std::make_unique<FarNode>(meeting);
}

} // namespace Bench
