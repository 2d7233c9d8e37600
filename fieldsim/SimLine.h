#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "fieldsim/Device.h"
#include "fieldsim/VirtualClock.h"
#include "protocols/line/Line.h"

namespace fieldsim {

// The line to a simulated field, under the virtual clock: what a device answers can be read when its time has come.
// An answer that is due while its port is closed is lost; one that is due later meets whoever reads the port then.
class SimLine final : public protocols::Line {
  public:
    explicit SimLine(VirtualClock& clock) : clock_(clock) {}

    // The device behind a port number. Ports without one cannot be opened. The device must outlive the line.
    void Attach(int port, Device& device) { devices_[port] = &device; }
    // A port that is there and cannot be opened, as when another program holds it.
    void Refuse(int port, bool refused = true);

    bool PortOpen() const override { return open_; }
    bool PortOpen(bool open) override;
    std::string LastError() const override { return lastError_; }
    void CommPort(int number) override;
    void Settings(const std::string& settings) override;
    std::size_t InBufferCount() override;
    std::size_t OutBufferCount() override { return 0; }
    void ClearInBuffer() override;
    void ClearOutBuffer() override {}
    void Output(const std::string& bytes) override;
    std::string Input() override;

    int Port() const { return port_; }
    const std::string& PortSettings() const { return settings_; }
    // Since the line was made.
    std::uint64_t BytesSent() const { return bytesSent_; }
    std::uint64_t BytesRead() const { return bytesRead_; }
    int TimesOpened() const { return timesOpened_; }

  private:
    using Arrivals = std::multimap<std::uint64_t, std::string>;  // by the time at which they are there

    Moment Now() const { return {clock_.Now(), clock_.Elapsed()}; }
    // Moves what has come by now into the receive buffer.
    void Arrive();
    void Close();

    VirtualClock& clock_;
    std::map<int, Device*> devices_;
    std::set<int> refused_;
    std::map<int, Arrivals> arrivals_;
    std::string received_;
    std::string settings_;
    std::string lastError_;
    int port_ = 1;
    bool open_ = false;
    std::uint64_t bytesSent_ = 0;
    std::uint64_t bytesRead_ = 0;
    int timesOpened_ = 0;
    std::shared_ptr<bool> lives_ = std::make_shared<bool>();  // the clock may outlive the line
};

}  // namespace fieldsim
