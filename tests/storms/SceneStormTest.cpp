#include "Numbered.h"
#include "PoolCheck.h"
#include "StormLength.h"
#include "ostrel/Scene.h"
#include "sensorManager/TrovioSensorHandler.h"
#include "tests/sensorManager/SceneFixture.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include <array>
#include <gtest/gtest.h>
#include <random>
#include <thread>

using Trovio::Root;

namespace {

/// A node that pushes on a thread of its own while it runs.
class StormNode final : public Trovio::Node {
public:
    StormNode() { addOutSlot("out", &_out); }
    static std::unique_ptr<Node> create() { return std::make_unique<StormNode>(); }

protected:
    void start() override
    {
        _stop = false;
        _thread = std::thread([this] {
            for (long number = 0; !_stop; std::this_thread::yield())
                _out.push(Trovio::Data<long>(++number));
        });
    }
    void stop() override
    {
        _stop = true;
        _thread.join();
    }

private:
    Trovio::OutSlot<long> _out{"out"};
    std::atomic<bool> _stop{false};
    std::thread _thread;
};

/// Both ends of one type of value at the root: FeedN pushes on a thread of its own, SinkM keeps what a scene sends.
template <class FeedT, class SinkT>
class Ends {
public:
    Ends(std::string feed, std::string sink, const std::atomic<bool>& done)
        : _feed(std::move(feed)), _sink(std::move(sink)), _out(_feed), _in(_sink, 4)
    {
        Root::get().addOutSlot(_feed, &_out);
        Root::get().addInSlot(_sink, &_in);
        _thread = std::thread([this, &done] {
            for (long number = 0; !done; std::this_thread::yield())
                _out.push(Trovio::Data<FeedT>(Numbered<FeedT>::make(++number)));
        });
    }
    ~Ends()
    {
        _thread.join();
        Root::get().removeSlot(_feed);
        Root::get().removeSlot(_sink);
        std::uint64_t waiting = 0;
        for (; !_in.empty(); ++waiting)
            _in.pop();
        const auto counts = _in.getCounts();
        EXPECT_EQ(counts.taken, waiting);
        EXPECT_EQ(counts.stored, counts.overwritten + waiting);
        EXPECT_GT(counts.stored, 0U);
        EXPECT_FALSE(_in.isActive() || _out.isActive());
    }

private:
    const std::string _feed;
    const std::string _sink;
    Trovio::OutSlot<FeedT> _out;
    Trovio::BufferedInSlot<SinkT> _in;
    std::thread _thread;
};

/// What the scene thread does at random: every sensor and every handler is there or not, each turn changes one of them
/// or runs a frame.
class SceneStorm {
public:
    ~SceneStorm()
    {
        for (std::size_t i = 0; i < Sensors; ++i)
            removeSensor(i);
        for (const char* name : {"first", "second"})
            removeHandler(name);
    }

    void turn(std::minstd_rand& random)
    {
        const std::size_t sensor = random() % Sensors;
        const char* const handler = random() % 2 == 0 ? "first" : "second";
        const auto choice = random() % 32;
        if (choice < 8)
            return _sensors[sensor] ? removeSensor(sensor) : addSensor(sensor);
        if (choice < 10)
            return _manager.findHandler(handler) ? removeHandler(handler) : addHandler(handler);
        if (choice < 11)
            return changeHandler(handler, random());
        _scene.frame(1.0);
    }

    std::uint64_t taken() const { return _taken; }

private:
    static constexpr std::size_t Sensors = 8; // four that take values, four that give them

    void addSensor(std::size_t i)
    {
        static constexpr const char* types[Sensors] = {"SFInt32",  "SFString", "MFInt32", "SFImage",
                                                       "MFString", "SFFloat",  "MFFloat", "SFVec3f"};
        _sensors[i] = &_scene.add(makeSensor(types[i], "S" + std::to_string(i), i >= 4, i % 2 == 0 ? 4 : 0));
    }

    void removeSensor(std::size_t i)
    {
        if (!_sensors[i])
            return;
        for (const char* name : {"first", "second"})
            if (SensorHandler* const handler = _manager.findHandler(name))
                checkCounts(*handler, *_sensors[i]);
        _scene.remove(*_sensors[i]);
        _sensors[i] = nullptr;
    }

    void addHandler(const char* name) { _manager.addHandler("Trovio", name, someURL()); }

    void removeHandler(const char* name)
    {
        SensorHandler* const handler = _manager.findHandler(name);
        if (!handler)
            return;
        for (DirectSensor* const sensor : _sensors)
            if (sensor)
                checkCounts(*handler, *sensor);
        _manager.delHandler(handler);
    }

    /// Routes and nodes of the handler's own namespace come and go.
    void changeHandler(const char* name, unsigned long choice)
    {
        SensorHandler* const handler = _manager.findHandler(name);
        if (!handler)
            return;
        std::string from = "Storm/out";
        std::string to = "S0";
        std::string node = "Storm";
        std::string settings;
        handler->addLabel(from, to);
        handler->addParameter(node, settings);
        if (choice % 2 == 0)
            handler->removeLabel(from, to);
        handler->removeParameter(node, settings);
    }

    void checkCounts(SensorHandler& handler, DirectSensor& sensor)
    {
        auto* const slot = static_cast<TrovioSensorHandler&>(handler).getSlot(&sensor);
        const auto* const inSlot = dynamic_cast<const Trovio::BasicInSlot*>(slot);
        if (!inSlot)
            return;
        const auto counts = inSlot->getCounts();
        EXPECT_EQ(counts.stored, counts.overwritten + counts.taken + counts.waiting);
        _taken += counts.taken;
    }

    Scene _scene;
    SensorManager& _manager = *SensorManager::requestManager(_scene.context());
    std::array<DirectSensor*, Sensors> _sensors{};
    std::uint64_t _taken = 0;
};

/// Routes between the scene's slots and the ends, and nodes beside them, come and go; somebody looks on.
void changeRoot(const std::atomic<bool>& done)
{
    static constexpr const char* routes[][2] = {
        {"Feed*", "Context/S*"}, {"Feed*", "Context2/S*"}, {"Context/S*", "Sink*"}, {"Storm/out", "Context/S0"}};
    std::minstd_rand random(7);
    std::array<bool, std::size(routes)> standing{};
    while (!done) {
        const auto i = random() % standing.size();
        const auto change = standing[i] ? &Trovio::Namespace::removeRoute : &Trovio::Namespace::addRoute;
        (Root::get().*change)(routes[i][0], routes[i][1]);
        standing[i] = !standing[i];
        if (random() % 8 == 0)
            Root::get().removeNamespace(Root::get().addNamespace(Trovio::NodeType::newInstance("Storm")));
        EXPECT_LE(Root::get().inspect()._children.size(), 2U) << "the handlers' own";
        EXPECT_FALSE(Root::get().explain("Feed*", "Sink4")._text.empty());
        std::this_thread::yield();
    }
}

} // namespace

TEST(SceneStorm, SensorsHandlersRoutesAndNodesComeAndGoUnderTraffic)
{
    osg::osgLogP->setInfoShown(false);
    Root::init();
    Trovio::NodeType::add({"Storm", "pushes", {}, &StormNode::create});
    std::uint64_t taken = 0;
    {
        const StormLength length(1);
        std::atomic<bool> done{false};
        Ends<long, Trovio::SharedVector<std::string>> first("Feed0", "Sink4", done);
        Ends<std::string, float> second("Feed1", "Sink5", done);
        Ends<Trovio::SharedVector<long>, Trovio::SharedVector<float>> third("Feed2", "Sink6", done);
        Ends<Trovio::SharedImage, Trovio::Vec3<float>> fourth("Feed3", "Sink7", done);
        std::thread tree([&done] { changeRoot(done); });
        std::minstd_rand random(1);
        {
            SceneStorm scene;
            int turns = 0;
            for (; !length.isOver(turns); ++turns)
                scene.turn(random);
            std::printf("%d turns of the scene thread\n", turns);
            done = true;
            tree.join();
            taken = scene.taken();
        }
    }
    EXPECT_GT(taken, 0U);
    Root::shutdown();
    EXPECT_TRUE(poolIsWhole<Trovio::Image>());
    EXPECT_TRUE(poolIsWhole<std::vector<long>>());
    EXPECT_TRUE(poolIsWhole<std::vector<std::string>>());
    EXPECT_TRUE(poolIsWhole<std::vector<float>>());
}

// One label for all: whoever finds it, removes it, and each node is handed back exactly once.
TEST(TreeStorm, ManyRemoversOfOneLabel)
{
    Root::init();
    std::atomic<int> added{0}, removed{0};
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads)
        thread = std::thread([&] {
            for (int round = 0; round < 300; ++round) {
                Root::get().addNamespace("x", std::make_unique<Trovio::Namespace>());
                ++added;
                try {
                    removed += Root::get().removeNamespace("x") != nullptr;
                } catch (const Trovio::InvalidNamespaceException&) {
                    continue;
                }
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Root::get().inspect()._children.size(), static_cast<std::size_t>(added - removed));
    Root::shutdown();
}
