#include "fieldsim/SharedLine.h"

#include <iterator>

namespace fieldsim {

std::vector<Answer> SharedLine::Receive(std::string_view bytes, const Moment& now) {
    std::vector<Answer> answers;
    for (Device* device : devices_) {
        std::vector<Answer> more = device->Receive(bytes, now);
        std::move(more.begin(), more.end(), std::back_inserter(answers));
    }
    return answers;
}

void SharedLine::LineClosed() {
    for (Device* device : devices_) {
        device->LineClosed();
    }
}

}  // namespace fieldsim
