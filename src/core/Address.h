#pragma once

#include <optional>
#include <string>
#include <string_view>

// Where on the network a station is reached.
namespace core {

struct Station;

constexpr int modbusTcpPort = 502;

struct Address {
    std::string host;  // a name in small letters, or an IPv4 or IPv6 address without brackets
    int port = 0;      // 1 to 65535

    bool operator==(const Address&) const = default;
};

// "host:port" or "[IPv6]:port", blanks around it passed over. Without a port the text stands for `standardPort`; 0:
// there is none. Nothing for every other text. Two spellings of one address give the same.
std::optional<Address> ParseAddress(std::string_view text, int standardPort = 0);

// The address as ParseAddress takes it.
std::string AddressText(const Address& address);

// The address of an "IP" station. Modbus TCP has a standard port; everything else must name one.
std::optional<Address> AddressOf(const Station& station);

}  // namespace core
