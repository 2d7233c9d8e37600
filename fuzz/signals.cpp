// A BSAP station that answers with any bytes, raw or as well-formed frames, to a list with names, a search, and reads
// and writes of single signals; and the records with names of a reply alone.
#include <cmath>
#include <vector>

#include "AnyStation.h"
#include "protocols/bsap/BsapLink.h"
#include "signals/lists/SignalAccess.h"
#include "signals/lists/SignalFetch.h"

using namespace fuzz;

namespace {

using signals::Signal;

void CheckSignals(const std::vector<Signal>& signals) {
    for (const Signal& signal : signals) {
        Check(std::isfinite(signal.value) && signal.MSD >= 0 && signal.MSD <= 0xFFFF);
        Check(!signal.logical || signal.value == 0 || signal.value == 1);
        Check(!signal.text || (signal.value == 0 && signal.unit.empty()));
        Check(signals::SignalRow(1, signal).size() == 4);
    }
}

struct Rows final : signals::FetchView {
    std::vector<Signal> rows;
    void Signals(const std::vector<Signal>& signals) override {
        CheckSignals(signals);
        rows.insert(rows.end(), signals.begin(), signals.end());
    }
    bool Stopped() const override { return false; }
};

void Converse(core::Database& dbconn, const core::MAIN_Module& shared, Bytes& bytes) {
    const int flags = bytes.Take();
    AnyTalk any(dbconn, shared, bytes);
    protocols::Conversation& talk = any.talk;
    talk.station.isCW = (flags & 1) != 0;
    talk.station.isTeleCorrector = (flags & 2) != 0;
    Rows view;
    if ((flags & 4) != 0) {
        signals::FetchList(talk, 10, view);
    } else {
        signals::SearchSignals(talk, "a*", signals::SearchKind::Name, view);
    }
    Check(!talk.bsap.listnames);
    if (!view.rows.empty()) {
        const int address = view.rows.front().MSD;
        signals::WriteNumber(talk, address, 1, core::ValueKind::Float);
        const signals::ReadAnswer back = signals::ReadByAddress(talk, address);
        Check(back.answer != signals::Answer::Good || back.signals.at(0).MSD == address);
        CheckSignals(back.signals);
    }
    const std::vector<signals::NamedSignal> named = {{"A.B.C"}, {"D.E.F", 1}};
    const signals::ReadAnswer answer = signals::ReadByName(talk, named);
    Check((answer.answer == signals::Answer::Good) == (answer.signals.size() == named.size()));
    CheckSignals(answer.signals);
    // At most 1500 replies of 4 sends with their polls, and what late ones are waited for.
    Check(any.clock.Elapsed() < 1500ULL * 52 * 2000);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Desk desk;
    static core::Database dbconn(desk.shared.DatabasePath());
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto fields = size % 2 == 0 ? reading::RecordFields::Names : reading::RecordFields::ValuesOrTexts;
    CheckSignals(reading::ReadRecords(text, {1 + size % 20, true, size % 3 == 0, fields}).signals);
    Bytes bytes(data, size);
    Converse(dbconn, desk.shared, bytes);
    return 0;
}
