#include "archive/bsap/ArchiveReply.h"

#include <algorithm>

#include "core/Text.h"
#include "protocols/bsap/BsapReply.h"

namespace archive {

namespace {

using protocols::archiveNameLength;
using protocols::definitionLength;
using protocols::fieldNameLength;

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
        if (nul == std::string::npos || nul + 1 + protocols::auditEvent.length > rest.size()) {
            break;
        }
        events.push_back(rest.substr(0, nul + 1 + protocols::auditEvent.length));
        rest.erase(0, events.back().size());
    }
    return events;
}

}  // namespace

std::optional<FileInformation> ParseFileInformation(const std::string& reply, const ArchiveLayout& layout) {
    const Places places(reply);
    const auto& at = layout.information;
    if (!places.Has(at.oldest, 2)) {
        return std::nullopt;
    }
    return FileInformation{places.Word(at.newest), places.Word(at.oldest), places.Word(at.third)};
}

std::optional<FieldDefinitions> ParseFieldDefinitions(const std::string& reply, const ArchiveLayout& layout) {
    const Places places(reply);
    const auto& at = layout.definitions;
    const auto count = static_cast<std::size_t>(places.Byte(at.fieldsHere));
    FieldDefinitions definitions;
    definitions.status1 = places.Byte(layout.status);
    definitions.status2 = places.Byte(layout.status + 1);
    definitions.endsBehindStatus = !places.Has(at.fieldsHere, 1);
    const bool whole = definitions.endsBehindStatus
                           ? places.Has(layout.status, 2) && definitions.Refused()
                           : count == 0 || places.Has(at.firstDefinition, count * definitionLength);
    if (!whole) {
        return std::nullopt;
    }
    definitions.fields = places.Word(at.fields);
    if (places.Has(at.archiveName, archiveNameLength)) {
        definitions.archiveName = core::FromCodePage(places.Bytes(at.archiveName, archiveNameLength));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t position = at.firstDefinition + i * definitionLength;
        definitions.names.push_back(core::FromCodePage(places.Bytes(position, fieldNameLength)));
    }
    return definitions;
}

std::optional<RecordReply> ParseRecordReply(const std::string& reply, const ArchiveLayout& layout, std::size_t fields) {
    const Places places(reply);
    const std::size_t length = ArchiveRecordLength(fields);
    const auto& at = layout.records;
    const auto count = static_cast<std::size_t>(places.Byte(at.recordsHere));
    if (!places.Has(at.recordsHere, 1) || (count > 0 && !places.Has(at.firstRecord, count * length))) {
        return std::nullopt;
    }
    RecordReply records;
    records.more = places.Byte(at.more) != 0;
    records.found = places.Word(at.recordFound);
    for (std::size_t i = 0; i < count; ++i) {
        records.records.push_back(places.Bytes(at.firstRecord + i * length, length));
    }
    return records;
}

std::optional<AuditReply> ParseAuditReply(const std::string& reply, const ArchiveLayout& layout) {
    const Places places(reply);
    const auto& at = layout.audit;
    if (!places.Has(at.eventsHere, 1)) {
        return std::nullopt;
    }
    AuditReply audit;
    audit.events = places.Word(at.events);
    audit.cursors = {places.Byte(at.cursorA), places.Byte(at.cursorB)};
    audit.records = CutEvents(places.From(at.firstEvent));
    const auto count = static_cast<std::size_t>(places.Byte(at.eventsHere));
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
