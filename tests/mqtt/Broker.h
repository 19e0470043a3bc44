#pragma once

#include "nodes/shared/FileDescriptor.h"
#include "nodes/shared/SocketAddress.h"
#include "tests/host/HostProcess.h"
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <stdlib.h>

namespace Trovio::Nodes {

/// A broker of the test's own, on a port of the loopback that stays its own, with files in a folder of its own.
class Broker {
public:
    Broker()
    {
        std::string folder = (std::filesystem::temp_directory_path() / "broker-XXXXXX").string();
        if (!::mkdtemp(folder.data()))
            throw std::runtime_error("no folder for the broker");
        _folder = folder;
        const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const auto any = *SocketAddress::parse("127.0.0.1", 0);
        if (::bind(socket.get(), any.get(), any.getLength()) != 0)
            throw std::runtime_error("no free port");
        _port = SocketAddress::ofSocket(socket.get()).getPort();
    }
    ~Broker()
    {
        _process.reset();
        std::filesystem::remove_all(_folder);
    }
    Broker(const Broker&) = delete;
    Broker& operator=(const Broker&) = delete;

    std::uint16_t getPort() const { return _port; }
    std::string getAddress() const { return "127.0.0.1:" + std::to_string(_port); }
    std::string path(const std::string& file) const { return (_folder / file).string(); }
    void write(const std::string& file, const std::string& text) const
    {
        std::ofstream(path(file)) << text;
        std::filesystem::permissions(path(file), std::filesystem::perms(0600));
    }

    /// Returns once it listens.
    void start(const std::string& settings = "allow_anonymous true\n")
    {
        write("broker.conf", "listener " + std::to_string(_port) + " 127.0.0.1\nuser root\n" + settings);
        _process = std::make_unique<HostProcess>(MOSQUITTO, std::vector<std::string>{"-c", path("broker.conf")});
        if (!_process->waitFor(" running"))
            throw std::runtime_error("the broker does not run: " + _process->err());
    }
    void kill()
    {
        _process->signal(SIGKILL);
        _process->wait();
    }

private:
    std::filesystem::path _folder;
    std::uint16_t _port = 0;
    std::unique_ptr<HostProcess> _process;
};

} // namespace Trovio::Nodes
