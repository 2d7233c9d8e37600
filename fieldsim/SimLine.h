#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "core/Station.h"
#include "fieldsim/Device.h"
#include "fieldsim/VirtualClock.h"
#include "protocols/line/Line.h"

namespace fieldsim {

class SimLine;

// The far ends of all lines of a desk, under the virtual clock: what stands behind a port, "COM3", or an address.
// Devices must outlive the lines.
class SimPorts {
  public:
    explicit SimPorts(VirtualClock& clock) : clock_(clock) {}
    SimPorts(const SimPorts&) = delete;
    SimPorts& operator=(const SimPorts&) = delete;

    // The device behind a port or an address. Those without one cannot be opened.
    void Attach(int port, Device& device) { devices_["COM" + std::to_string(port)] = &device; }
    void Attach(const std::string& address, Device& device) { devices_[address] = &device; }
    // One that is there and cannot be opened, as when another program holds the port.
    void Refuse(int port, bool refused = true);

    // The device side of a station's line, as FieldLines asks for it.
    std::unique_ptr<protocols::Line> Line(const core::Station& station);

    // Of all lines, since they were made.
    bool PortOpen() const;
    std::uint64_t BytesSent() const;
    std::uint64_t BytesRead() const;
    int TimesOpened() const;

  private:
    friend class SimLine;
    using Arrivals = std::multimap<std::uint64_t, std::string>;  // by the time at which they are there

    VirtualClock& clock_;
    std::map<std::string, Device*> devices_;
    std::set<std::string> refused_;
    std::map<std::string, Arrivals> arrivals_;
    std::set<SimLine*> lines_;
};

// A line to a simulated field: what a device answers can be read when its time has come. An answer that is due while
// its port is closed is lost; one that is due later meets whoever reads the port then.
class SimLine final : public protocols::Line {
  public:
    explicit SimLine(SimPorts& ports) : ports_(ports) { ports_.lines_.insert(this); }
    // A line to an address.
    SimLine(SimPorts& ports, std::string address) : SimLine(ports) { name_ = std::move(address); }
    ~SimLine() override { ports_.lines_.erase(this); }
    SimLine(const SimLine&) = delete;
    SimLine& operator=(const SimLine&) = delete;

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

    const std::string& PortSettings() const { return settings_; }
    // Since the line was made.
    std::uint64_t BytesSent() const { return bytesSent_; }
    std::uint64_t BytesRead() const { return bytesRead_; }
    int TimesOpened() const { return timesOpened_; }

  private:
    Moment Now() const { return {ports_.clock_.Now(), ports_.clock_.Elapsed()}; }
    // Moves what has come by now into the receive buffer.
    void Arrive();
    void Close();

    SimPorts& ports_;
    std::string name_ = "COM1";
    std::string received_;
    std::string settings_;
    std::string lastError_;
    bool open_ = false;
    std::uint64_t bytesSent_ = 0;
    std::uint64_t bytesRead_ = 0;
    int timesOpened_ = 0;
    std::shared_ptr<bool> lives_ = std::make_shared<bool>();  // the clock may outlive the line
};

}  // namespace fieldsim
