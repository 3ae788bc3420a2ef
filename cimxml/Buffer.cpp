#include "cimxml/Buffer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "cimxml/Characters.h"

namespace cimxml {
namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// What a byte means to the escape: most stand for themselves, so that one look passes over them.
enum class Byte : std::uint8_t { Plain, Special, Multibyte };

constexpr std::array<Byte, 256> kBytes = [] {
  std::array<Byte, 256> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = i < 0x20 ? Byte::Special : i < 0x80 ? Byte::Plain : Byte::Multibyte;
  }
  for (const char sign : {'&', '<', '>', '"', '\''}) {
    bytes[static_cast<unsigned char>(sign)] = Byte::Special;
  }
  return bytes;
}();

// Returns whether the eight bytes there are all plain: no ASCII character but those that stand for
// themselves. Each test marks the top bit of the bytes that it finds.
bool areAllPlain(const char* bytes) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kTops = kOnes * 0x80;
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof(word));
  const auto findZeros = [](std::uint64_t value) { return (value - kOnes) & ~value & kTops; };
  const std::uint64_t controls = (word - kOnes * 0x20) & ~word & kTops;
  // Two signs that differ in one bit are found as one.
  const std::uint64_t quotes = findZeros(word ^ (kOnes * '"'));
  const std::uint64_t apostrophes = findZeros((word | kOnes) ^ (kOnes * '\''));    // and '&'
  const std::uint64_t brackets = findZeros((word | (kOnes * 2)) ^ (kOnes * '>'));  // and '<'
  return ((word & kTops) | controls | quotes | apostrophes | brackets) == 0;
}

constexpr std::string_view getReplacement(char sign) {
  switch (sign) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return kReplacementCharacter;
  }
}

}  // namespace

void appendEscaped(Buffer& out, std::string_view text) {
  std::size_t pending = 0;  // where the part begins that is taken as it is
  for (std::size_t at = 0; at < text.size();) {
    if (at + sizeof(std::uint64_t) <= text.size() && areAllPlain(text.data() + at)) {
      at += sizeof(std::uint64_t);
      continue;
    }
    const Byte byte = kBytes[static_cast<unsigned char>(text[at])];
    if (byte == Byte::Plain) {
      ++at;
      continue;
    }
    const std::size_t length =
        byte == Byte::Multibyte ? getCharacterLength(text.substr(at)) : std::size_t{0};
    if (length != 0) {
      at += length;
      continue;
    }
    out.append(text, pending, at - pending);
    out += getReplacement(text[at]);
    pending = ++at;
  }
  out.append(text, pending);
}

void appendAttribute(Buffer& out, std::string_view name, std::string_view value) {
  out += ' ';
  out += name;
  out += "=\"";
  appendEscaped(out, value);
  out += '"';
}

void appendEndTag(Buffer& out, std::string_view element) {
  out += "</";
  out += element;
  out += '>';
}

}  // namespace cimxml
