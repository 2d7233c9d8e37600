#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

// A line to the field, in the operations of the control of a serial port (`maincomm`). A network line has no port
// number and no settings.
namespace protocols {

class Line {
  public:
    virtual ~Line() = default;

    virtual bool PortOpen() const = 0;
    // Opens or closes the port; an open one is first closed. False: the port cannot be opened (no such device, in use,
    // bad settings) and stays closed; LastError then says why.
    virtual bool PortOpen(bool open) = 0;
    virtual std::string LastError() const { return {}; }

    // Port number from 1 and the settings "baud,parity,databits,stopbits", such as "9600,N,8,1". Set while closed.
    virtual void CommPort(int number) = 0;
    virtual void Settings(const std::string& settings) = 0;

    // Bytes waiting to be read, and those sent that are not yet on the wire. All operations below do nothing on a
    // closed port.
    virtual std::size_t InBufferCount() = 0;
    virtual std::size_t OutBufferCount() = 0;
    virtual void ClearInBuffer() = 0;
    virtual void ClearOutBuffer() = 0;

    // Sends the bytes at once, one a character.
    virtual void Output(const std::string& bytes) = 0;
    // Takes everything that is waiting.
    virtual std::string Input() = 0;

    // Called when the device disappears under an open port, which is closed by then. `reason` is for the operator.
    void WhenLost(std::function<void(const std::string& reason)> tell) { lost_ = std::move(tell); }

    // Called when bytes have come that can be read.
    void WhenReceived(std::function<void()> tell) { received_ = std::move(tell); }

    // Makes an opening that is on its way fail at once. A network line may take seconds to open.
    virtual void StopOpening() {}

  protected:
    void Received() {
        if (received_) {
            received_();
        }
    }
    void Lost(const std::string& reason) {
        if (lost_) {
            lost_(reason);
        }
    }

  private:
    std::function<void(const std::string& reason)> lost_;
    std::function<void()> received_;
};

}  // namespace protocols
