#include "tests/framework/TestNode.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using Trovio::Root;

namespace {

constexpr int rounds = 300;

/// Pushes on a thread of its own from start to stop.
class Pusher final : public Trovio::Node {
public:
    Pusher() { addOutSlot("out", &_out); }
    ~Pusher() override { EXPECT_FALSE(_thread.joinable()); }

protected:
    void start() override
    {
        _stop = false;
        _thread = std::thread([this] {
            while (!_stop)
                _out.push(Trovio::Data<float>(1.0F));
        });
    }

    void stop() override
    {
        _stop = true;
        _thread.join();
    }

private:
    Trovio::OutSlot<float> _out{"out"};
    std::atomic<bool> _stop{false};
    std::thread _thread;
};

/// Nodes come and go in one namespace while slots, routes and questions about them do, too. In the end nobody has
/// anything left.
TEST(TreeStorm, NodesSlotsRoutesAndReadersAtOnce)
{
    Root::init();
    Trovio::InSlot<float> in("in");
    Root::get().addInSlot("in", &in);

    std::thread nodes[2];
    for (int i = 0; i < 2; ++i) {
        nodes[i] = std::thread([i] {
            for (int round = 0; round < rounds; ++round) {
                auto node = std::make_unique<Pusher>();
                node->setFieldValues("label=Pusher" + std::to_string(i));
                Root::get().removeNamespace(Root::get().addNamespace(std::move(node)));
            }
        });
    }
    std::thread routes([] {
        for (int round = 0; round < rounds; ++round) {
            Root::get().addRoute("Pusher*/out", "in");
            Root::get().removeRoute("Pusher*/out", "in");
        }
    });
    std::thread reader([] {
        for (int round = 0; round < rounds; ++round) {
            EXPECT_FALSE(Root::get().explain("Pusher*/out", "in")._text.empty());
            for (const auto& route : Root::get().inspect()._routes)
                EXPECT_LE(route._connections, 2U);
        }
    });
    for (std::thread* thread : {&nodes[0], &nodes[1], &routes, &reader})
        thread->join();

    const auto counts = in.getCounts();
    EXPECT_EQ(counts.stored, counts.overwritten + counts.taken + counts.waiting);
    EXPECT_TRUE(Root::get().inspect()._children.empty());
    EXPECT_FALSE(in.isActive());
    Root::shutdown();
}

/// One label for all: whoever finds it, removes it, and each node is handed back exactly once.
TEST(TreeStorm, ManyRemoversOfOneLabel)
{
    Root::init();
    std::atomic<int> added{0};
    std::atomic<int> removed{0};
    std::thread threads[4];
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            for (int round = 0; round < rounds; ++round) {
                Root::get().addNamespace("x", std::make_unique<Trovio::Namespace>());
                ++added;
                try {
                    removed += Root::get().removeNamespace("x") != nullptr;
                } catch (const Trovio::InvalidNamespaceException&) {
                    continue;
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Root::get().inspect()._children.size(), static_cast<std::size_t>(added - removed));
    Root::shutdown();
}

} // namespace
