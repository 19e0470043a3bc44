#pragma once

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/// The whole answer, head and body, to a question at the socket of a host.
inline std::string askHost(const std::string& socketPath, const std::string& target)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << socketPath;
    const std::string request = "GET " + target + " HTTP/1.1\r\nConnection: close\r\n\r\n";
    EXPECT_EQ(send(client, request.data(), request.size(), MSG_NOSIGNAL), static_cast<ssize_t>(request.size()));
    std::string answer;
    std::array<char, 4096> bytes{};
    for (ssize_t count = 1; count > 0; answer.append(bytes.data(), static_cast<std::size_t>(std::max(count, {}))))
        count = recv(client, bytes.data(), bytes.size(), 0);
    close(client);
    return answer;
}
