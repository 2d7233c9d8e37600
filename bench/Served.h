#pragma once

#include <atomic>
#include <filesystem>
#include <thread>

#include "fieldsim/PtyPorts.h"

namespace bench {

// The devices of a port on a pseudo-terminal, in a thread of their own.
class Served {
  public:
    Served(const std::filesystem::path& port, fieldsim::Device& device) {
        ports_.Open(port, device);
        thread_ = std::thread([this] {
            while (!stopped_) {
                ports_.Turn(5);
            }
        });
    }
    ~Served() {
        stopped_ = true;
        thread_.join();
    }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

  private:
    fieldsim::PtyPorts ports_;
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

}  // namespace bench
