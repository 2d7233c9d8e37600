// Replies of any bytes to every archive and audit download; and the parsers and decoders of their records alone.
#include <cmath>

#include "AnyStation.h"
#include "archive/bsap/ArchiveRun.h"
#include "archive/bsap/AuditRun.h"

using namespace archive;
using namespace fuzz;

namespace {

// Takes rows as a grid does: as many columns as it was told.
struct View final : RunView {
    std::size_t columns = 0;
    int records = 0;
    void Columns(const std::vector<std::string>& captions) override { columns = captions.size(); }
    void Rows(const std::vector<std::vector<std::string>>& rows) override {
        for (const auto& row : rows) {
            Check(row.size() == columns);
        }
    }
    void Record(int, int) override { ++records; }
    bool Stopped() const override { return records > 2000; }
};

void CheckTime(const core::DateTime& at) {
    Check(at.year >= 1976 && at.year <= 2156 && at.hour >= 0 && at.hour <= 36 && at.minute < 60 && at.second < 62);
}

void Parse(const std::string& reply, const ArchiveLayout& layout) {
    static_cast<void>(ParseFileInformation(reply, layout));
    if (const auto definitions = ParseFieldDefinitions(reply, layout)) {
        static_cast<void>(StatusText(*definitions));
    }
    for (const std::size_t fields : {0U, 1U, 10U, 71U}) {
        if (const auto records = ParseRecordReply(reply, layout, fields)) {
            for (const std::string& bytes : records->records) {
                const ArchiveRecord record = DecodeArchiveRecord(bytes);
                CheckTime(record.at);
                Check(record.values.size() == fields);
            }
        }
    }
    if (const auto audit = ParseAuditReply(reply, layout)) {
        for (const std::string& bytes : audit->records) {
            for (const EventCodes codes : {EventCodes::All, EventCodes::LowestBit}) {
                CheckTime(DecodeAuditRecord(bytes, codes).at);
            }
        }
    }
}

void Download(core::Database& dbconn, const core::MAIN_Module& shared, Bytes& bytes) {
    const int flags = bytes.Take();
    AnyTalk any(dbconn, shared, bytes);
    protocols::Conversation& talk = any.talk;
    talk.station.isCW = (flags & 1) != 0;
    View view;
    const auto screen = static_cast<Screen>((flags >> 1) % 3);
    const bool newFirst = (flags & 8) != 0;
    if ((flags & 16) != 0) {
        const AuditResult result = RunAudit(talk, AuditRoutineOf(screen, talk.station.isCW, newFirst), view);
        for (const AuditEvent& event : result.events) {
            CheckTime(event.at);
        }
    } else {
        const auto range = (flags & 32) != 0 ? std::optional(DayRange{{2026, 3, 1}, {2026, 3, 9}}) : std::nullopt;
        const ArchiveResult result =
            RunArchive(talk, ArchiveRoutineOf(screen, talk.station.isCW, newFirst), 2, range, view, nullptr);
        for (const ArchiveRecord& record : result.download.records) {
            Check(record.values.size() == result.download.fields.size());
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Desk desk;
    static core::Database dbconn(desk.shared.DatabasePath());
    const std::string reply(reinterpret_cast<const char*>(data), size);
    Parse(reply, protocols::longArchive);
    Parse(reply, protocols::shortArchive);
    static_cast<void>(DecodeArchiveRecord(reply));
    static_cast<void>(DecodeAuditRecord(reply, EventCodes::All));
    Bytes bytes(data, size);
    Download(dbconn, desk.shared, bytes);
    return 0;
}
