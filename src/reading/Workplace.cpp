#include "reading/Workplace.h"

#include <utility>

namespace reading {

protocols::Conversation Workplace::Begin(std::shared_ptr<protocols::LineLease> lease, core::Station station) const {
    protocols::Conversation talk{std::move(lease),  clock, feedback, logs, counters, std::move(station),
                                 shared.currentuser};
    talk.modbus.rtu32bit = talk.station.rtuBitsMode;
    return talk;
}

}  // namespace reading
