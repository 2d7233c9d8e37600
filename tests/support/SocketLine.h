#pragma once

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "protocols/line/Line.h"

namespace support {

// A connection to a port of this machine that is open from the start. Under a clock that jumps: the first reading after
// a request waits for its answer, and those after it take what is there.
class SocketLine final : public protocols::Line {
  public:
    explicit SocketLine(int port) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            throw std::runtime_error("nobody listens on the port");
        }
    }
    ~SocketLine() override { close(socket_); }
    SocketLine(const SocketLine&) = delete;
    SocketLine& operator=(const SocketLine&) = delete;

    bool PortOpen() const override { return true; }
    bool PortOpen(bool) override { return true; }
    void CommPort(int) override {}
    void Settings(const std::string&) override {}
    std::size_t InBufferCount() override { return 0; }
    std::size_t OutBufferCount() override { return 0; }
    void ClearInBuffer() override {}
    void ClearOutBuffer() override {}
    void Output(const std::string& bytes) override {
        answered_ = send(socket_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size());
    }
    std::string Input() override {
        constexpr int longestMs = 2000;
        pollfd readable{socket_, POLLIN, 0};
        if (poll(&readable, 1, answered_ ? 0 : longestMs) <= 0) {
            return {};
        }
        answered_ = true;
        std::array<char, 4096> bytes{};
        const ssize_t length = recv(socket_, bytes.data(), bytes.size(), 0);
        return {bytes.data(), static_cast<std::size_t>(length > 0 ? length : 0)};
    }

  private:
    int socket_;
    bool answered_ = true;
};

}  // namespace support
