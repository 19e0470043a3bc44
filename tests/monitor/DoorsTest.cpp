#include "monitor/Server.h"
#include "monitor/server/doors/SocketFolder.h"
#include "monitor/server/doors/TcpDoors.h"
#include "monitor/server/doors/UnixDoor.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>

namespace {

bool hasIpv6 = true; // or the kernel was started without
} // namespace

/// That of the system, for the whole program.
extern "C" __attribute__((visibility("default"))) int socket(int domain, int type, int protocol) noexcept
{
    if (domain == AF_INET6 && !hasIpv6) {
        errno = EAFNOSUPPORT;
        return -1;
    }
    return static_cast<int>(syscall(SYS_socket, domain, type, protocol));
}

namespace {

using namespace Monitor;
namespace Files = std::filesystem;

class Folder {
public:
    Folder()
    {
        std::string pattern = (Files::temp_directory_path() / "doorsXXXXXX").string();
        _path = mkdtemp(pattern.data());
    }
    ~Folder() { Files::remove_all(_path); }
    const std::string& path() const { return _path; }

private:
    std::string _path;
};

bool answers(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

mode_t modeOf(const std::string& path)
{
    struct stat found {};
    return lstat(path.c_str(), &found) == 0 ? found.st_mode & 0777 : 0;
}

TEST(UnixDoor, IsForItsOwnerAndGoesWithIt)
{
    const Folder folder;
    const std::string inside = folder.path() + "/ostrel";
    std::string path;
    {
        const UnixDoor door(inside);
        path = door.path();
        EXPECT_TRUE(answers(path));
        EXPECT_EQ(modeOf(inside), 0700);
        EXPECT_EQ(modeOf(path), 0600);
        EXPECT_THROW(UnixDoor second(inside), std::runtime_error); // the first one answers
    }
    EXPECT_FALSE(Files::exists(path));
}

TEST(UnixDoor, SocketsOfKilledProcessesAreNotInTheWay)
{
    const Folder folder;
    const pid_t child = fork();
    if (child == 0) {
        const UnixDoor door(folder.path());
        _exit(0); // as if killed: nothing is taken away
    }
    waitpid(child, nullptr, 0);
    const std::string left = folder.path() + "/" + std::to_string(child) + ".sock";
    ASSERT_TRUE(Files::exists(left));
    const std::string own = folder.path() + "/" + std::to_string(getpid()) + ".sock";
    Files::rename(left, own);
    {
        const UnixDoor door(folder.path());
        EXPECT_TRUE(answers(own));
    }
    const pid_t second = fork();
    if (second == 0) {
        const UnixDoor door(folder.path());
        _exit(0);
    }
    waitpid(second, nullptr, 0);
    const UnixDoor door(folder.path());
    EXPECT_EQ(std::distance(Files::directory_iterator(folder.path()), Files::directory_iterator()), 1);
}

TEST(UnixDoor, FolderThatOthersCouldWriteIsRefusedOrClosed)
{
    const Folder folder;
    const std::string open = folder.path() + "/open", link = folder.path() + "/link";
    Files::create_directory(open);
    Files::permissions(open, Files::perms::all);
    EXPECT_EQ(makeSocketFolder(open), "");
    EXPECT_EQ(modeOf(open), 0700);
    Files::create_directory_symlink(open, link);
    EXPECT_NE(makeSocketFolder(link).find("no folder of this user"), std::string::npos);
    EXPECT_THROW(UnixDoor door(folder.path() + "/" + std::string(120, 'a')), std::runtime_error);
}

std::string portOf(const std::string& address)
{
    return address.substr(address.rfind(':') + 1);
}

TEST(TcpDoors, TakeTheNextPortWhereOneIsTaken)
{
    const auto first = openTcpDoors({"127.0.0.1", 0});
    const int taken = std::stoi(portOf(first.front()._address));
    const auto next = openTcpDoors({"127.0.0.1", static_cast<std::uint16_t>(taken)});
    EXPECT_GT(std::stoi(portOf(next.front()._address)), taken);
    EXPECT_EQ(next.front()._door, Door::Loopback);
    const auto both = openTcpDoors({"localhost", 0});
    for (const TcpDoor& door : both)
        EXPECT_EQ(portOf(door._address), portOf(both.front()._address));
    EXPECT_THROW(openTcpDoors({"192.0.2.1", 0}), std::runtime_error); // no address of any machine
}

TEST(TcpDoors, LocalhostNeedsNoIpv6)
{
    hasIpv6 = false;
    EXPECT_EQ(openTcpDoors({"localhost", 0}).size(), 1U);
    EXPECT_THROW(openTcpDoors({"::1", 0}), std::runtime_error);
    hasIpv6 = true;
}
} // namespace
