#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Kinds.h"

// What the bytes of a line are, by name: for the eye of the operator. Nothing is decided by it.
namespace protocols {

struct FrameField {
    std::size_t offset;  // of its first byte in the line, from 0
    std::size_t length;  // in bytes as they stand on the line, doubled ones counted twice
    std::string name;
    std::string value;  // printable ASCII
};

// What a station speaks, as core::Station has it. Nothing of a line whose protocol is not known has a name.
struct Wire {
    std::optional<core::Protocol> protocol{};
    core::Framing framing = core::Framing::Rtu;
    bool isCW = false;
    bool lowWordFirst = false;  // of Modbus floats in two registers

    bool operator==(const Wire&) const = default;
};

enum class Direction { TX, RX };

// The fields of one line of bytes that was sent (TX) or received (RX). They stand in the order of the bytes and every
// byte is in just one of them; what cannot be named is "not recognised". Where a frame or a line ends too early, a
// field "cut short" tells what is missing; it may be without bytes.
//
// `request` is the line that a received one answers; without it the values of an answer that does not say what it is
// have general names.
std::vector<FrameField> FrameFields(std::string_view bytes, const Wire& wire, Direction direction,
                                    std::string_view request = {});

// A line sent that later answers belong to. A BSAP poll or acknowledgement is none: what follows it still answers the
// message before.
bool IsRequest(std::string_view sent, const Wire& wire);

// The fields as a table for a font of fixed width, a line each: positions from 1, name, value.
std::string FieldTable(const std::vector<FrameField>& fields);

}  // namespace protocols
