#pragma once

#include <array>
#include <string>
#include <string_view>

// The messages of a Quantum unit: three text requests, each answered with eight numbers in fixed-width text.
namespace protocols {

constexpr int quantumMessages = 3;

// The frame of a request for message 1 to 3 with the command "A". Station numbers above 99 and messages above 9 send
// only the first digit of each field.
std::string BuildQuantumRequest(int station, const std::string& command, int message);

// The check byte over everything in front of it: 0 to 255.
int QuantumChecksum(std::string_view frame);

// The description of each value of message 1 to 3, in the order of the reply. They are the names of the station's
// parameters, with a doubled blank and a joined word as they stand there.
const std::array<std::string_view, 8>& QuantumNames(int message);

// The eight values of a reply to `message`. There is no check of the reply: a field that is missing or no number is 0.
// A comma is as good a decimal mark as a point.
std::array<double, 8> DecodeQuantumReply(const std::string& reply, int message);

// On a line with echo the request stands in front of the reply: then only the reply, its last 137 characters.
std::string CutQuantumEcho(const std::string& reply, const std::string& request);

}  // namespace protocols
