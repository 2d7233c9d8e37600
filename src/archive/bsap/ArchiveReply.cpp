#include "archive/bsap/ArchiveReply.h"

#include <algorithm>

#include "core/Text.h"
#include "protocols/bsap/BsapReply.h"

namespace archive {

namespace {

constexpr std::size_t definitionLength = 27;
constexpr std::size_t nameLength = 17;
constexpr std::size_t archiveNameLength = 9;
// Behind the NUL of an event's signal name.
constexpr std::size_t eventRest = 31;

// The places of a reply in front of its trailer.
class Places {
  public:
    explicit Places(const std::string& reply)
        : reply_(reply), end_(reply.size() - std::min(reply.size(), protocols::replyTrailer)) {}

    bool Has(std::size_t position, std::size_t length) const { return position - 1 + length <= end_; }
    int Byte(std::size_t position) const {
        return Has(position, 1) ? protocols::ByteAtPosition(reply_, position).value_or(0) : 0;
    }
    int Word(std::size_t position) const { return Byte(position) + 256 * Byte(position + 1); }
    std::string Bytes(std::size_t position, std::size_t length) const { return reply_.substr(position - 1, length); }
    // Everything from a position on.
    std::string From(std::size_t position) const {
        return Has(position, 0) ? reply_.substr(position - 1, end_ - (position - 1)) : std::string();
    }

  private:
    const std::string& reply_;
    std::size_t end_;
};

// The events one behind the other; those behind a cut are left out.
std::vector<std::string> CutEvents(std::string rest) {
    std::vector<std::string> events;
    while (rest.size() > 1) {
        const std::size_t nul = rest.find('\0', 1);
        if (nul == std::string::npos || nul + 1 + eventRest > rest.size()) {
            break;
        }
        events.push_back(rest.substr(0, nul + 1 + eventRest));
        rest.erase(0, events.back().size());
    }
    return events;
}

}  // namespace

std::optional<FileInformation> ParseFileInformation(const std::string& reply, const ArchiveLayout& layout) {
    const Places places(reply);
    if (!places.Has(layout.oldest, 2)) {
        return std::nullopt;
    }
    return FileInformation{places.Word(layout.newest), places.Word(layout.oldest), places.Word(layout.third)};
}

std::optional<FieldDefinitions> ParseFieldDefinitions(const std::string& reply, const ArchiveLayout& layout) {
    const Places places(reply);
    const auto count = static_cast<std::size_t>(places.Byte(layout.fieldsHere));
    if (!places.Has(layout.status, 2) || (count > 0 && !places.Has(layout.firstDefinition, count * definitionLength))) {
        return std::nullopt;
    }
    FieldDefinitions definitions;
    definitions.status1 = places.Byte(layout.status);
    definitions.status2 = places.Byte(layout.status + 1);
    definitions.fields = places.Word(layout.fields);
    if (places.Has(layout.archiveName, archiveNameLength)) {
        definitions.archiveName = core::FromCodePage(places.Bytes(layout.archiveName, archiveNameLength));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = layout.firstDefinition + i * definitionLength;
        definitions.names.push_back(core::FromCodePage(places.Bytes(at, nameLength)));
    }
    return definitions;
}

std::optional<RecordReply> ParseRecordReply(const std::string& reply, const ArchiveLayout& layout, std::size_t fields) {
    const Places places(reply);
    const std::size_t length = ArchiveRecordLength(fields);
    const auto count = static_cast<std::size_t>(places.Byte(layout.recordsHere));
    if (!places.Has(layout.recordsHere, 1) || (count > 0 && !places.Has(layout.firstRecord, count * length))) {
        return std::nullopt;
    }
    RecordReply records;
    records.more = places.Byte(layout.more) != 0;
    records.found = places.Word(layout.recordFound);
    for (std::size_t i = 0; i < count; ++i) {
        records.records.push_back(places.Bytes(layout.firstRecord + i * length, length));
    }
    return records;
}

std::optional<AuditReply> ParseAuditReply(const std::string& reply, const ArchiveLayout& layout) {
    const Places places(reply);
    if (!places.Has(layout.eventsHere, 1)) {
        return std::nullopt;
    }
    AuditReply audit;
    audit.events = places.Word(layout.events);
    audit.cursors = {places.Byte(layout.cursorA), places.Byte(layout.cursorB)};
    audit.records = CutEvents(places.From(layout.firstEvent));
    const auto count = static_cast<std::size_t>(places.Byte(layout.eventsHere));
    if (audit.records.size() < count) {
        return std::nullopt;
    }
    audit.records.resize(count);
    return audit;
}

std::string StatusText(const FieldDefinitions& definitions) {
    constexpr int refused = 135;
    constexpr int noFile = 129;
    constexpr int noField = 130;
    if (definitions.status1 != refused) {
        return {};
    }
    return definitions.status2 == noFile    ? "Invalid File Number"
           : definitions.status2 == noField ? "Invalid Field Number"
                                            : "";
}

}  // namespace archive
