#include "monitor/Server.h"
#include "monitor/server/net/Descriptor.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

namespace {

using namespace Monitor;

// The root, and a folder for the socket.
class ServerTest : public ::testing::Test {
protected:
    ServerTest()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "serverXXXXXX").string();
        _folder = mkdtemp(pattern.data());
        Trovio::Root::init();
    }
    ~ServerTest() override
    {
        Trovio::Root::shutdown();
        std::filesystem::remove_all(_folder);
    }
    std::string _folder;
};

// A client that blocks.
class Client {
public:
    Client(const Server& server, const std::string& request)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        server.socketPath().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(connect(_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        const std::string head = request + " HTTP/1.1\r\nHost: h\r\n\r\n";
        EXPECT_EQ(send(_socket.get(), head.data(), head.size(), MSG_NOSIGNAL), static_cast<ssize_t>(head.size()));
    }
    // Reads until that text has come so many times, or the server has closed; how many times it has.
    int waitFor(std::string_view text, int times = 1)
    {
        int found = 0;
        for (std::array<char, 4096> bytes{}; found < times;) {
            const auto count = recv(_socket.get(), bytes.data(), bytes.size(), 0);
            if (count <= 0)
                break;
            _read.append(bytes.data(), static_cast<std::size_t>(count));
            for (std::size_t at; found < times && (at = _read.find(text)) != _read.npos; ++found)
                _read.erase(0, at + text.size());
        }
        return found;
    }

private:
    const Descriptor _socket{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    std::string _read;
};

TEST_F(ServerTest, ServesThreadsThatComeAndGoUnderTrafficAndEndsAtOnce)
{
    Trovio::OutSlot<double> wand("test");
    Trovio::InSlot<double> reader("test");
    Trovio::Root::get().addOutSlot("Wand/x", &wand);
    Trovio::Root::get().addInSlot("Reader", &reader);
    Trovio::Root::get().addRoute("Wand/x", "Reader");
    auto server = std::make_unique<Server>(ServerOptions{.listen = "127.0.0.1:0", .socketFolder = _folder});
    EXPECT_TRUE(server->problems().empty());
    EXPECT_EQ(server->addresses().size(), 1);
    std::atomic<bool> over = false;
    std::thread pusher([&] {
        for (double value = 0; !over; ++value)
            wand.push(Trovio::Data(value, Trovio::Time(value)));
    });
    std::thread slots([&] {
        Trovio::OutSlot<double> other("test");
        while (!over) {
            Trovio::Root::get().addOutSlot("Other/x", &other);
            Trovio::Root::get().removeSlot("Other/x");
        }
    });
    std::array<std::thread, 4> clients;
    for (std::thread& client : clients)
        client = std::thread([&server] {
            for (int i = 0; i < 5; ++i) {
                EXPECT_EQ(Client(*server, "GET /stream?label=Wand/x&n=50").waitFor("\"value\":", 50), 50);
                EXPECT_EQ(Client(*server, "GET /slots").waitFor("Wand/x"), 1);
            }
        });
    for (std::thread& client : clients)
        client.join();
    Client stuck(*server, "GET /stream?label=Wand/x"), slow(*server, "GET /delay?from=Wand/x&to=Reader&seconds=60");
    EXPECT_EQ(stuck.waitFor("\"value\":"), 1);
    server.reset(); // with a client that does not read, and a question that would take a minute
    over = true;
    pusher.join();
    slots.join();
    EXPECT_EQ(slow.waitFor("HTTP"), 0);
    for (const char* const label : {"Reader", "Wand/x"})
        Trovio::Root::get().removeSlot(label);
}

TEST_F(ServerTest, AQuestionThatNobodyWaitsForStandsInNobodysWay)
{
    Trovio::OutSlot<double> wand("test");
    Trovio::InSlot<double> reader("test");
    Trovio::Root::get().addOutSlot("Wand/x", &wand);
    Trovio::Root::get().addInSlot("Reader", &reader);
    Trovio::Root::get().addRoute("Wand/x", "Reader");
    {
        const Server server({.socketFolder = _folder});
        for (int i = 0; i < 3; ++i)
            Client(server, "GET /delay?from=Wand/x&to=Reader&seconds=60"); // and goes
        EXPECT_EQ(Client(server, "GET /delay?from=Wand/x&to=Reader&seconds=0.01").waitFor("\"hops\""), 1);
    }
    for (const char* const label : {"Reader", "Wand/x"})
        Trovio::Root::get().removeSlot(label);
}

TEST_F(ServerTest, DoorsThatCannotBeOpenedAreNamedAndTheOthersServe)
{
    const Server server({.listen = "192.0.2.1:8765", .socketFolder = _folder});
    ASSERT_EQ(server.problems().size(), 1);
    EXPECT_NE(server.problems()[0].find("192.0.2.1:8765"), std::string::npos);
    EXPECT_EQ(Client(server, "GET /host").waitFor("pid"), 1);
    const Server deaf({.listen = "nowhere", .socketFolder = _folder});
    EXPECT_EQ(deaf.problems().size(), 2);
    EXPECT_EQ(deaf.socketPath(), "");
}

TEST_F(ServerTest, TokenStandsInTheAddressWhereOneIsNeeded)
{
    const auto address = [this](const std::string& listen, bool write) {
        return Server({.listen = listen, .write = write, .socketFolder = _folder}).addresses().at(0);
    };
    EXPECT_EQ(address("127.0.0.1:0", false).find("token"), std::string::npos);
    const std::string withToken = address("127.0.0.1:0", true);
    EXPECT_EQ(withToken.size() - withToken.find("?token="), 7 + 32);
    EXPECT_NE(address("127.0.0.1:0", true), withToken);
    EXPECT_NE(address("0.0.0.0:0", false).find("?token="), std::string::npos);
}
} // namespace
