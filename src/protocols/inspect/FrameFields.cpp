#include "protocols/inspect/FrameFields.h"

#include <algorithm>
#include <array>

#include "core/Text.h"
#include "protocols/bsap/BsapConstants.h"
#include "protocols/inspect/FieldWriter.h"

namespace protocols {

namespace {

// The dialogue with a modem is text in lines. No frame is all text, but for ASCII framing, which begins with a colon.
bool IsModemText(std::string_view bytes, const Wire& wire) {
    const bool asciiFrames = core::SameText(wire.protocol, "Modbus") && core::SameText(wire.mode, "ASCII");
    return IsText(bytes) && !(asciiFrames && bytes.find(':') != std::string_view::npos);
}

void NameFrames(Naming& naming, const Wire& wire) {
    if (core::SameText(wire.protocol, "BSAP")) {
        NameBsap(naming, wire.isCW);
    } else if (core::SameText(wire.protocol, "Quantum")) {
        NameQuantum(naming);
    } else if (core::SameText(wire.protocol, "Modbus")) {
        core::SameText(wire.mode, "ASCII") ? NameModbusAscii(naming) : NameModbusRtu(naming);
    }
}

std::string Positions(const FrameField& field) {
    const std::string first = std::to_string(field.offset + 1);
    return field.length == 0   ? "end"
           : field.length == 1 ? first
                               : first + "-" + std::to_string(field.offset + field.length);
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

}  // namespace

std::vector<FrameField> FrameFields(std::string_view bytes, const Wire& wire, Direction direction,
                                    std::string_view request) {
    Naming naming{bytes, direction, request};
    // Some lines give back what is sent on them. An answer that is the request and no more is an answer.
    if (direction == Direction::RX && !request.empty() && bytes.size() > request.size() && bytes.starts_with(request)) {
        naming.Take(request.size(), "echo", "the request, given back by the line");
    }
    if (!IsModemText(naming.Rest(), wire)) {
        NameFrames(naming, wire);
    }
    naming.TakeUnknown(naming.Rest().size());
    return naming.fields;
}

bool IsRequest(std::string_view sent, const Wire& wire) {
    if (IsModemText(sent, wire)) {
        return false;
    }
    return !core::SameText(wire.protocol, "BSAP") || BsapMessage(sent) == bsap::application;
}

std::string FieldTable(const std::vector<FrameField>& fields) {
    std::array<std::size_t, 2> widths{};
    for (const FrameField& field : fields) {
        widths[0] = std::max(widths[0], Positions(field).size());
        widths[1] = std::max(widths[1], field.name.size());
    }
    std::string table;
    for (const FrameField& field : fields) {
        const std::string line =
            Padded(Positions(field), widths[0]) + "  " + Padded(field.name, widths[1]) + "  " + field.value;
        table += (table.empty() ? "" : "\n") + line;
    }
    return table;
}

}  // namespace protocols
