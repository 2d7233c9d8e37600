#include "core/Address.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

#include "core/Station.h"
#include "core/Text.h"

namespace core {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789-_";

bool IsOf(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

std::optional<int> PortOf(std::string_view text) {
    const double port = Val(text);
    return IsOf(text, digits) && text.size() <= 5 && port >= 1 && port <= 65535 ? std::optional(static_cast<int>(port))
                                                                                : std::nullopt;
}

// An IPv6 address in its one short form; the zone of a link, "%eth0", stays as it is.
std::optional<std::string> Version6(const std::string& text) {
    const std::size_t zone = std::min(text.find('%'), text.size());
    in6_addr address{};
    std::array<char, INET6_ADDRSTRLEN> shortest{};
    if (inet_pton(AF_INET6, text.substr(0, zone).c_str(), &address) != 1 ||
        inet_ntop(AF_INET6, &address, shortest.data(), shortest.size()) == nullptr ||
        (zone < text.size() && !IsOf(text.substr(zone + 1), letters))) {
        return std::nullopt;
    }
    return shortest.data() + text.substr(zone);
}

bool IsLabel(std::string_view label) {
    return IsOf(label, letters) && label.size() <= 63 && label.front() != '-' && label.back() != '-';
}

// A name, or an IPv4 address: what ends in a number is one.
bool IsHost(const std::string& host) {
    if (host.size() > 253) {
        return false;
    }
    std::size_t begin = 0;
    for (std::size_t dot = host.find('.'); dot != std::string::npos; dot = host.find('.', begin)) {
        if (!IsLabel(std::string_view(host).substr(begin, dot - begin))) {
            return false;
        }
        begin = dot + 1;
    }
    const std::string_view last = std::string_view(host).substr(begin);
    in_addr address{};
    return IsOf(last, digits) ? inet_pton(AF_INET, host.c_str(), &address) == 1 : IsLabel(last);
}

std::string SmallLetters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

}  // namespace

std::optional<Address> ParseAddress(std::string_view text, int standardPort) {
    const std::string whole = SmallLetters(Trim(text));
    const bool bracketed = whole.starts_with('[');
    const std::size_t bracket = whole.find(']');
    if (bracketed && bracket == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t end = bracketed ? bracket + 1 : std::min(whole.find(':'), whole.size());
    const auto host = bracketed ? Version6(whole.substr(1, bracket - 1)) : std::optional(whole.substr(0, end));
    if (!host || (!bracketed && !IsHost(*host))) {
        return std::nullopt;
    }
    if (end == whole.size()) {
        return standardPort == 0 ? std::nullopt : std::optional(Address{*host, standardPort});
    }
    const auto port = whole[end] == ':' ? PortOf(std::string_view(whole).substr(end + 1)) : std::nullopt;
    return port ? std::optional(Address{*host, *port}) : std::nullopt;
}

std::string AddressText(const Address& address) {
    const bool isVersion6 = address.host.find(':') != std::string::npos;
    return (isVersion6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

std::optional<Address> AddressOf(const Station& station) {
    const bool isModbusTcp = station.protocol == Protocol::Modbus && station.framing == Framing::Tcp;
    return ParseAddress(station.ip, isModbusTcp ? modbusTcpPort : 0);
}

}  // namespace core
