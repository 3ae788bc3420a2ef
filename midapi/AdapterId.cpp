#include "midapi/AdapterId.h"

#include <cstddef>

#include "midapi/Hex.h"

namespace ma {
namespace {

constexpr std::size_t kAddressLength = 10;
constexpr unsigned kMaxDevice = 0x1F;

std::string join(const AdapterAddress& address, char separator) {
  return hexText(address.segment, 4) + separator + hexText(address.bus, 2) + separator +
         hexText(address.device, 2);
}

std::optional<AdapterAddress> parseAddress(std::string_view text, char separator) {
  if (text.size() != kAddressLength || text[4] != separator || text[7] != separator) {
    return std::nullopt;
  }
  const auto segment = parseHex(text.substr(0, 4));
  const auto bus = parseHex(text.substr(5, 2));
  const auto device = parseHex(text.substr(8, 2));
  if (!segment || !bus || !device || *device > kMaxDevice) {
    return std::nullopt;
  }
  return AdapterAddress{static_cast<std::uint16_t>(*segment), static_cast<std::uint8_t>(*bus),
                        static_cast<std::uint8_t>(*device)};
}

}  // namespace

std::optional<AdapterAddress> parseAdapterAddress(std::string_view text) {
  return parseAddress(text, ':');
}

std::optional<PortId> parsePortId(std::string_view text) {
  if (text.size() != kAddressLength + 2 || text[kAddressLength] != '.') {
    return std::nullopt;
  }
  const auto address = parseAdapterAddress(text.substr(0, kAddressLength));
  const auto function = parseHex(text.substr(kAddressLength + 1));
  if (!address || !function || *function >= kMaxPorts) {
    return std::nullopt;
  }
  return PortId{*address, static_cast<std::uint8_t>(*function)};
}

std::optional<PortId> parseCanonicalPortId(std::string_view text) {
  const auto port = parsePortId(text);
  return port && toString(*port) == text ? port : std::nullopt;
}

std::string toString(const AdapterAddress& address) {
  return join(address, ':');
}

std::string toString(const PortId& port) {
  return toString(port.adapter) + "." + hexText(port.function, 1);
}

std::string toFolderName(const AdapterAddress& address) {
  return join(address, '-');
}

std::optional<AdapterAddress> parseFolderName(std::string_view name) {
  const auto address = parseAddress(name, '-');
  return address && toFolderName(*address) == name ? address : std::nullopt;
}

}  // namespace ma
