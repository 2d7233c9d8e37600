// A BSAP station that answers with any bytes, raw or as well-formed frames, to a sign-on and to a read of a list; and
// the records of a list reply alone.
#include <cmath>
#include <vector>

#include "AnyStation.h"
#include "collection/BsapList.h"
#include "protocols/BsapLink.h"

using namespace fuzz;

namespace {

void CheckSignals(const std::vector<collection::ListSignal>& signals) {
    for (const collection::ListSignal& signal : signals) {
        Check(std::isfinite(signal.value) && signal.MSD >= 0 && signal.MSD <= 0xFFFF);
        Check(!signal.logical || signal.value == 0 || signal.value == 1);
    }
}

void Converse(core::Database& dbconn, const core::MAIN_Module& shared, Bytes& bytes) {
    const int flags = bytes.Take();
    AnyTalk any(dbconn, shared, bytes);
    protocols::Conversation& talk = any.talk;
    talk.station.isCW = (flags & 1) != 0;
    talk.station.isTeleCorrector = (flags & 2) != 0;
    talk.station.phoneno = (flags & 4) != 0 ? "1" : "";
    talk.bsap.usepoll = (flags & 8) != 0;
    talk.bsap.listunits = (flags & 16) == 0;

    protocols::SignOn(talk);
    const auto kind = (flags & 32) != 0 ? collection::ListKind::Boolean : collection::ListKind::Float;
    const std::vector<collection::ListEntry> names(20, {"Tap Type", ""});
    const collection::BsapList list = collection::getdata_BSAP(talk, 54, kind, names);
    Check(!list.signals.empty() && list.signals.size() <= 401);
    CheckSignals(list.signals);
    // At most 400 replies of 4 sends with their polls, and what late ones are waited for.
    Check(any.clock.Elapsed() < 400ULL * 15 * 2000 + 3 * 2000 + 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Desk desk;
    static core::Database dbconn(desk.shared.DatabasePath());
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckSignals(collection::ReadRecords(text, {1 + size % 20, size % 2 == 0, size % 3 == 0}).signals);
    Bytes bytes(data, size);
    Converse(dbconn, desk.shared, bytes);
    return 0;
}
