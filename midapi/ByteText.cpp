#include "midapi/ByteText.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "midapi/Hex.h"
#include "platform/Utf8.h"

namespace ma {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kByteOrderMark = 0xFEFF;
constexpr std::uint32_t kLastAscii = 0x7F;

void appendEscaped(std::string& text, std::string_view bytes) {
  for (const char byte : bytes) {
    text += "\\x" + hexText(static_cast<unsigned char>(byte), 2);
  }
}

// Takes the characters of a text one after the other.
class Decoder {
 public:
  void addCharacter(std::uint32_t point) {
    std::string utf8;
    platform::appendCharacter(utf8, point);
    if (point == 0 || point == ' ') {
      m_filling += utf8;
      return;
    }
    if (point == kByteOrderMark && m_isAtStart && m_filling.empty()) {
      m_isAtStart = false;
      return;
    }
    addFilling();
    if (platform::isPrintable(point)) {
      m_text += utf8;
    } else {
      appendEscaped(m_text, utf8);
    }
  }

  void addByte(char byte) {
    addFilling();
    appendEscaped(m_text, {&byte, 1});
  }

  void addHalfPair(std::uint32_t unit) {
    addFilling();
    m_text += "\\u" + hexText(unit, 4);
  }

  [[nodiscard]] std::string takeText() { return std::move(m_text); }

 private:
  // What may have been the filling at the end was none.
  void addFilling() {
    for (const char character : m_filling) {
      if (character == '\0') {
        appendEscaped(m_text, {&character, 1});
      } else {
        m_text += character;
      }
    }
    m_filling.clear();
    m_isAtStart = false;
  }

  std::string m_text;
  std::string m_filling;
  bool m_isAtStart = true;
};

void decodeBytes(Bytes bytes, std::uint32_t last, Decoder& decoder) {
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  while (!text.empty()) {
    const auto character = platform::readCharacter(text);
    const bool isGood = character && character->point <= last;
    if (isGood) {
      decoder.addCharacter(character->point);
    } else {
      decoder.addByte(text.front());
    }
    text.remove_prefix(isGood ? character->length : 1);
  }
}

constexpr bool isHighHalf(std::uint32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool isLowHalf(std::uint32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void decodeUnits(Bytes bytes, bool isBigEndian, Decoder& decoder) {
  constexpr std::uint32_t kFirstOfPairs = 0x10000;
  constexpr unsigned kHalfBits = 10;
  const auto unitAt = [&](std::size_t at) -> std::uint32_t {
    const std::uint32_t first = bytes[at];
    const std::uint32_t second = bytes[at + 1];
    return isBigEndian ? first << 8 | second : second << 8 | first;
  };
  std::size_t at = 0;
  for (; at + 2 <= bytes.size(); at += 2) {
    const std::uint32_t unit = unitAt(at);
    if (isHighHalf(unit) && at + 4 <= bytes.size() && isLowHalf(unitAt(at + 2))) {
      decoder.addCharacter(kFirstOfPairs + ((unit & 0x3FF) << kHalfBits) +
                           (unitAt(at + 2) & 0x3FF));
      at += 2;
    } else if (isHighHalf(unit) || isLowHalf(unit)) {
      decoder.addHalfPair(unit);
    } else {
      decoder.addCharacter(unit);
    }
  }
  if (at < bytes.size()) {
    decoder.addByte(static_cast<char>(bytes[at]));
  }
}

}  // namespace

std::string decodeText(Bytes bytes, TextEncoding encoding) {
  Decoder decoder;
  switch (encoding) {
    case TextEncoding::Ascii:
      decodeBytes(bytes, kLastAscii, decoder);
      break;
    case TextEncoding::Utf8:
      decodeBytes(bytes, platform::kLastCodePoint, decoder);
      break;
    case TextEncoding::Utf16:
      decodeUnits(bytes, bytes.size() >= 2 && bytes[0] == 0xFE && bytes[1] == 0xFF, decoder);
      break;
    case TextEncoding::Utf16Le:
      decodeUnits(bytes, false, decoder);
      break;
    case TextEncoding::Utf16Be:
      decodeUnits(bytes, true, decoder);
      break;
  }
  return decoder.takeText();
}

}  // namespace ma
