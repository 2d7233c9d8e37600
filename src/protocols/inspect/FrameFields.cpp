#include "protocols/inspect/FrameFields.h"

#include <algorithm>
#include <array>

#include "protocols/bsap/BsapConstants.h"
#include "protocols/inspect/FieldWriter.h"

namespace protocols {

namespace {

// The dialogue with a modem is text in lines. No frame is all text, but for ASCII framing, which begins with a colon.
bool IsModemText(std::string_view bytes, const Wire& wire) {
    const bool asciiFrames = wire.protocol == core::Protocol::Modbus && wire.framing == core::Framing::Ascii;
    return IsText(bytes) && !(asciiFrames && bytes.find(':') != std::string_view::npos);
}

void NameModbus(Naming& naming, core::Framing framing) {
    switch (framing) {
        case core::Framing::Rtu:
            return NameModbusRtu(naming);
        case core::Framing::Ascii:
            return NameModbusAscii(naming);
        case core::Framing::Tcp:
            return NameModbusTcp(naming);
    }
}

void NameFrames(Naming& naming, const Wire& wire) {
    if (wire.protocol == core::Protocol::Bsap) {
        NameBsap(naming, wire.isCW);
    } else if (wire.protocol == core::Protocol::Quantum) {
        NameQuantum(naming);
    } else if (wire.protocol == core::Protocol::Modbus) {
        NameModbus(naming, wire.framing);
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
    naming.lowWordFirst = wire.lowWordFirst;
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
    return wire.protocol != core::Protocol::Bsap || BsapMessage(sent) == bsap::application;
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
