// Client networks by address bytes, read with inet_pton: no name lookups, so a client's own
// reverse DNS cannot talk its way in. Malformed text is a result, never an exception.
#include "tqv/mail/mail_client_network.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>
#include <string>

namespace tqv::tool {

namespace {

struct Address {
  bool ipv6 = false;
  std::array<std::uint8_t, 16> bytes{};
};

constexpr std::array<std::uint8_t, 12> kIpv4MappedPrefix = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};

std::optional<Address> ParseAddress(std::string_view text) {
  if (text.size() >= 2 && text.front() == '[' && text.back() == ']') text = text.substr(1, text.size() - 2);
  const std::string zeroEnded(text);
  Address address;
  if (inet_pton(AF_INET, zeroEnded.c_str(), address.bytes.data()) == 1) return address;
  if (inet_pton(AF_INET6, zeroEnded.c_str(), address.bytes.data()) != 1) return std::nullopt;
  if (std::equal(kIpv4MappedPrefix.begin(), kIpv4MappedPrefix.end(), address.bytes.begin())) {
    std::copy(address.bytes.begin() + 12, address.bytes.end(), address.bytes.begin());
    std::fill(address.bytes.begin() + 4, address.bytes.end(), 0);
    return address;
  }
  address.ipv6 = true;
  return address;
}

}  // namespace

std::optional<ClientNetwork> ClientNetwork::Parse(std::string_view text) {
  const std::size_t slash = text.find('/');
  const std::optional<Address> address = ParseAddress(text.substr(0, slash));
  if (!address) return std::nullopt;
  const int maxBits = address->ipv6 ? 128 : 32;
  int bits = maxBits;
  if (slash != std::string_view::npos) {
    const std::string_view digits = text.substr(slash + 1);
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), bits);
    if (digits.empty() || failure != std::errc() || end != digits.data() + digits.size() || bits < 0 ||
        bits > maxBits)
      return std::nullopt;
  }
  ClientNetwork network;
  network.ipv6_ = address->ipv6;
  network.bytes_ = address->bytes;
  network.prefixBits_ = bits;
  return network;
}

bool ClientNetwork::Contains(std::string_view clientAddress) const {
  const std::optional<Address> address = ParseAddress(clientAddress);
  if (!address || address->ipv6 != ipv6_) return false;
  for (int bit = 0; bit < prefixBits_; ++bit) {
    const int mask = 0x80 >> (bit % 8);
    if ((address->bytes[bit / 8] & mask) != (bytes_[bit / 8] & mask)) return false;
  }
  return true;
}

}  // namespace tqv::tool
