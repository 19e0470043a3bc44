#pragma once

#include "tests/monitor/ServerBench.h"

#include <nlohmann/json.hpp>

/// A WebSocket client of the bench.
class WebSocketClient {
public:
    WebSocketClient(ServerBench& bench, const std::string& protocol) : _client(bench)
    {
        _client.send("GET / HTTP/1.1\r\nHost: h\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n"
                     "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\n"
                     "Sec-WebSocket-Protocol: chat, " +
                     protocol + "\r\n\r\n");
        _head = _client.takeUpTo("\r\n\r\n");
    }

    /// The one that the server has chosen.
    std::string protocol() const
    {
        const std::string name = "Sec-WebSocket-Protocol: ";
        const auto at = _head.find(name);
        return at == _head.npos ? _head : _head.substr(at + name.size(), _head.find('\r', at) - at - name.size());
    }

    void say(const nlohmann::json& object) { send(object.dump(), 1); }
    void sendBinary(const std::string& bytes) { send(bytes, 2); }

    /// The next message, of whatever kind; empty where the server has closed.
    std::string next()
    {
        std::string message;
        for (bool isLast = false; !isLast;) {
            const std::string head = _client.take(2);
            if (head.size() < 2 || (head[0] & 0xF) == 8)
                return {};
            isLast = (head[0] & 0x80) != 0;
            std::size_t size = static_cast<unsigned char>(head[1]);
            const std::string longer = _client.take(size == 126 ? 2 : size == 127 ? 8 : 0);
            if (!longer.empty())
                size = 0;
            for (const char byte : longer)
                size = size << 8 | static_cast<unsigned char>(byte);
            message += _client.take(size);
        }
        return message;
    }
    nlohmann::json nextJson() { return nlohmann::json::parse(next(), nullptr, false); }
    /// The next message, where it is a record.
    std::string nextBinary()
    {
        const std::string message = next();
        EXPECT_TRUE(message.starts_with('\1')) << message;
        return message;
    }

private:
    // Masked by zeros, which change nothing.
    void send(const std::string& bytes, char opcode)
    {
        const bool isShort = bytes.size() < 126;
        std::string frame{static_cast<char>(0x80 | opcode), static_cast<char>(0x80 | (isShort ? bytes.size() : 126))};
        if (!isShort)
            frame += {static_cast<char>(bytes.size() >> 8 & 0xFF), static_cast<char>(bytes.size() & 0xFF)};
        _client.send(frame + std::string(4, '\0') + bytes);
    }

    BenchClient _client;
    std::string _head;
};
