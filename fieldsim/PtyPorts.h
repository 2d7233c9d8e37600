#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fieldsim/Device.h"

namespace fieldsim {

// Devices behind pseudo-terminals, in real time. The master opens and closes them like serial ports, as often as it
// likes; a close ends a modem's call, and what comes while no master has the port open is lost.
class PtyPorts {
  public:
    PtyPorts();
    ~PtyPorts();
    PtyPorts(const PtyPorts&) = delete;
    PtyPorts& operator=(const PtyPorts&) = delete;

    // Puts a device behind a new pseudo-terminal with a symbolic link to it at `link`, made with its directories; a
    // link that is there is replaced, any other file is not. The device must outlive the ports.
    // Empty: it is open. Otherwise what went wrong.
    std::string Open(const std::filesystem::path& link, Device& device);

    // Serves whatever comes and sends whatever is due, for at most that long.
    void Turn(int atMostMs);

  private:
    struct Port;

    void Receive(Port& port);
    void SendDue(Port& port);
    void NoteOpenings();
    int UntilNextDue(int atMostMs) const;

    std::vector<std::unique_ptr<Port>> ports_;
    int watch_;  // tells when a master opens or closes its port
};

}  // namespace fieldsim
