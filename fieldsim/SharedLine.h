#pragma once

#include <vector>

#include "fieldsim/Device.h"

namespace fieldsim {

// Several devices on one line: each hears what the master sends, and whoever is meant answers.
class SharedLine final : public Device {
  public:
    // The device must outlive the line.
    void Add(Device& device) { devices_.push_back(&device); }

    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override;
    void LineClosed() override;

  private:
    std::vector<Device*> devices_;
};

}  // namespace fieldsim
