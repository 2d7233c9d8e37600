// A BSAP station that answers with any bytes, raw or as well-formed frames, to a sign-on and to a read of a list; and
// the answers in any bytes, and the records of a list reply, alone.
#include <cmath>
#include <vector>

#include "AnyStation.h"
#include "protocols/bsap/BsapLink.h"
#include "protocols/bsap/BsapReply.h"
#include "reading/BsapList.h"

using namespace fuzz;

namespace {

void CheckSignals(const std::vector<reading::ListSignal>& signals) {
    for (const reading::ListSignal& signal : signals) {
        Check(std::isfinite(signal.value) && signal.MSD >= 0 && signal.MSD <= 0xFFFF);
        Check(!signal.logical || signal.value == 0 || signal.value == 1);
    }
}

// What the gate lets through has room for its head, and holds what was received.
void CheckAnswers(std::string_view received, bool isCW) {
    const std::string request = fieldsim::BsapFrame(received.substr(0, 20));
    const protocols::BsapAsked asked = protocols::BsapAsked::By(request, isCW, 1);
    for (const std::string& line : {std::string(received), "\xFF" + request + std::string(received)}) {
        for (const protocols::BsapAnswer& answer : protocols::AnswersIn(line, asked)) {
            Check((answer.leading == protocols::LeadingByte::None) == isCW);
            Check(answer.text.size() <= line.size() + 1 && answer.sequence.size() <= 2);
            Check(!answer.At(0) && !answer.At(answer.text.size()) && !answer.At(answer.text.size() - 3));
            Check(answer.isLink || answer.text.size() > protocols::replyTrailer);
        }
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
    const auto kind = (flags & 32) != 0 ? core::ValueKind::Logical : core::ValueKind::Float;
    const std::vector<reading::ListEntry> names(20, {"Tap Type", ""});
    const reading::BsapList list = reading::getdata_BSAP(talk, 54, kind, names);
    Check(!list.signals.empty() && list.signals.size() <= 401);
    CheckSignals(list.signals);
    // At most 400 replies of 4 sends, each with a poll and its acknowledgement and up to 4 waits for what is behind
    // another's answer; and what late ones are waited for.
    Check(any.clock.Elapsed() < 402ULL * 48 * 2000);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Desk desk;
    static core::Database dbconn(desk.shared.DatabasePath());
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckSignals(reading::ReadRecords(text, {1 + size % 20, size % 2 == 0, size % 3 == 0}).signals);
    CheckAnswers(text, size % 2 == 0);
    Bytes bytes(data, size);
    Converse(dbconn, desk.shared, bytes);
    return 0;
}
