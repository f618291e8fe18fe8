// A network of mail clients, "192.0.2.10", "192.0.2.0/24" or "[2001:db8::]/32", and whether the
// address an MTA reports for a client lies in it. Text that is no such network or address is
// refused by Parse and matches nothing in Contains.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tqv::tool {

class ClientNetwork {
 public:
  // Nullopt for anything but an IPv4 or IPv6 address with an optional prefix length.
  static std::optional<ClientNetwork> Parse(std::string_view text);

  // An IPv4 client reported in its IPv6-mapped form (::ffff:192.0.2.1) is the IPv4 client.
  bool Contains(std::string_view clientAddress) const;

 private:
  ClientNetwork() = default;

  bool ipv6_ = false;
  std::array<std::uint8_t, 16> bytes_{};
  int prefixBits_ = 0;
};

}  // namespace tqv::tool
