#include <cctype>

#include "core/Text.h"
#include "protocols/inspect/FieldWriter.h"
#include "protocols/quantum/Quantum.h"

// Quantum by name. What stands in the head of a reply is not known but for its length.
namespace protocols {

namespace {

bool IsRequestFrame(std::string_view bytes) {
    return bytes.size() >= quantum::messageAt + 1 && bytes[0] == quantum::stx;
}

void TakeCheck(Naming& naming, std::string_view checked) {
    const int sum = QuantumChecksum(checked);
    naming.Take(1, "checksum", CheckWord(naming.Rest().front() == static_cast<char>(sum), HexByte(sum)));
}

void NameRequest(Naming& naming) {
    const std::size_t from = naming.next;
    const Body bytes = PlainBody(naming.line, from, quantum::requestLength - quantum::trailer);
    BodyFields body(bytes, naming.fields);
    body.Take(1, "start", "STX");
    body.Take(2, "station", Readable(body.PeekAll().substr(0, 2)));
    body.Take(1, "command", Readable(body.PeekAll().substr(0, 1)));
    body.Take(2, "message", Readable(body.PeekAll().substr(0, 2)));
    body.Take(1, "fill", ShortHex(body.PeekAll().substr(0, 1)));
    naming.next = bytes.at.back();
    if (body.CutShort()) {
        return;
    }
    if (naming.Rest().empty()) {
        naming.TakeCut("checksum");
        return;
    }
    TakeCheck(naming, naming.line.substr(from, quantum::requestLength - quantum::trailer));
    if (naming.Rest().empty()) {
        naming.TakeCut("end");
    } else if (naming.Rest().front() == quantum::etx) {
        naming.Take(1, "end", "ETX");
    }
}

// The message that a reply answers; 0 when that cannot be told.
int MessageAsked(std::string_view request) {
    const bool digit =
        IsRequestFrame(request) && request[quantum::messageAt] >= '1' && request[quantum::messageAt] <= '3';
    return digit ? request[quantum::messageAt] - '0' : 0;
}

std::size_t Blanks(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && (text[count] == '\0' || std::isspace(static_cast<unsigned char>(text[count])) != 0)) {
        ++count;
    }
    return count;
}

void NameReply(Naming& naming) {
    const std::string_view reply = naming.Rest();
    const std::size_t from = naming.next;
    const int message = MessageAsked(naming.request);
    const std::size_t head = quantum::HeadLength(message);
    if (reply.size() < head) {
        naming.Take(reply.size(), "cut short", "head is missing");
        return;
    }
    naming.Take(head, "head", Readable(reply.substr(0, head)));
    const bool closed = reply.back() == quantum::etx && reply.size() >= head + quantum::trailer;
    const std::size_t last = from + reply.size() - (closed ? quantum::trailer : 0);
    const QuantumReply decoded = DecodeQuantumReply(std::string(reply), message == 0 ? 1 : message);
    for (std::size_t i = 0; i < decoded.fields.size(); ++i) {
        const std::string name =
            message == 0 ? "value " + std::to_string(i + 1) : std::string(QuantumNames(message)[i]);
        const std::string_view rest = naming.line.substr(naming.next, last - naming.next);
        if (rest.size() < quantum::fieldWidth) {
            naming.Take(rest.size(), "cut short", name + " is missing");
            break;
        }
        const std::string_view text = rest.substr(0, quantum::fieldWidth);
        // The blanks in front of the next field are taken with this one, as the values are read.
        naming.Take(
            quantum::fieldWidth + (i + 1 < decoded.fields.size() ? Blanks(rest.substr(quantum::fieldWidth)) : 0), name,
            Readable(core::Trim(text)) +
                (decoded.fields[i] ? " = " + core::NumberText(*decoded.fields[i]) : ", not a number"));
    }
    if (closed) {
        if (last > naming.next) {
            naming.Take(last - naming.next, "fill", ShortHex(naming.line.substr(naming.next, last - naming.next)));
        }
        TakeCheck(naming, reply.substr(0, reply.size() - quantum::trailer));
        naming.Take(1, "end", "ETX");
    }
}

}  // namespace

void NameQuantum(Naming& naming) {
    if (naming.direction == Direction::TX) {
        if (naming.Rest().starts_with(quantum::stx)) {
            NameRequest(naming);
        }
    } else if (naming.Rest().starts_with(quantum::stx)) {
        NameReply(naming);
    }
}

}  // namespace protocols
