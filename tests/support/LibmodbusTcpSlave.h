#pragma once

#include <arpa/inet.h>
#include <modbus.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <thread>

namespace support {

// A libmodbus server on a free port of this machine, in a thread of its own, for one connection after the other. What
// it holds is set before it is asked.
class LibmodbusTcpSlave {
  public:
    explicit LibmodbusTcpSlave(int registers = 125, int coils = 64)
        : mapping_(modbus_mapping_new(coils, 0, registers, 0)), context_(modbus_new_tcp("127.0.0.1", 0)) {
        listening_ = modbus_tcp_listen(context_.get(), 1);
        sockaddr_in address{};
        socklen_t length = sizeof address;
        if (listening_ < 0 || getsockname(listening_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            throw std::runtime_error("no slave on a port");
        }
        port_ = ntohs(address.sin_port);
        modbus_set_indication_timeout(context_.get(), 0, 20000);  // how soon it notices that it is to stop
        thread_ = std::thread([this] { Serve(); });
    }
    ~LibmodbusTcpSlave() {
        stopped_ = true;
        thread_.join();
        close(listening_);
    }
    LibmodbusTcpSlave(const LibmodbusTcpSlave&) = delete;
    LibmodbusTcpSlave& operator=(const LibmodbusTcpSlave&) = delete;

    int Port() const { return port_; }
    std::uint16_t* Registers() { return mapping_->tab_registers; }
    std::uint8_t* Coils() { return mapping_->tab_bits; }

  private:
    struct Free {
        void operator()(modbus_mapping_t* mapping) const { modbus_mapping_free(mapping); }
        void operator()(modbus_t* context) const { modbus_free(context); }
    };

    void Serve() {
        while (!stopped_) {
            pollfd caller{listening_, POLLIN, 0};
            if (poll(&caller, 1, 20) > 0 && modbus_tcp_accept(context_.get(), &listening_) >= 0) {
                Answer();
                modbus_close(context_.get());
            }
        }
    }

    void Answer() {
        std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> request{};
        while (!stopped_) {
            const int length = modbus_receive(context_.get(), request.data());
            if (length > 0) {
                modbus_reply(context_.get(), request.data(), length, mapping_.get());
            } else if (length < 0 && errno != ETIMEDOUT) {
                return;
            }
        }
    }

    std::unique_ptr<modbus_mapping_t, Free> mapping_;
    std::unique_ptr<modbus_t, Free> context_;
    int listening_ = -1;
    int port_ = 0;
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

}  // namespace support
