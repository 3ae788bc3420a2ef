#include "midapi/ByteReader.h"

#include <utility>

namespace ma {

FieldFault::FieldFault(FieldDefect defect)
    : m_defect(std::move(defect)), m_text(m_defect.toString()) {}

ByteReader::ByteReader(std::span<const std::uint8_t> bytes, std::size_t begin, std::size_t end,
                       std::string whole)
    : m_bytes(bytes), m_at(begin), m_end(end), m_last(begin), m_whole(std::move(whole)) {}

std::uint8_t ByteReader::number8(const char* field) {
  return bytes(field, 1)[0];
}

std::uint16_t ByteReader::number16(const char* field) {
  const auto taken = bytes(field, 2);
  return static_cast<std::uint16_t>(taken[0] | taken[1] << 8);
}

std::uint32_t ByteReader::number32(const char* field) {
  const auto taken = bytes(field, 4);
  return std::uint32_t{taken[0]} | std::uint32_t{taken[1]} << 8 | std::uint32_t{taken[2]} << 16 |
         std::uint32_t{taken[3]} << 24;
}

std::span<const std::uint8_t> ByteReader::bytes(const char* field, std::size_t count) {
  if (count > left()) {
    refuseAt(m_at, m_prefix + field,
             "takes 0x" + hexText(count, 1) + " bytes, but 0x" + hexText(left(), 1) +
                 " are left of the " + m_whole);
  }
  m_last = m_at;
  m_at += count;
  return m_bytes.subspan(m_last, count);
}

ByteReader ByteReader::part(const char* field, std::size_t size, std::size_t taken,
                            std::string whole) {
  if (size < taken) {
    refuse(field, "is 0x" + hexText(size, 1) + ", must be at least 0x" + hexText(taken, 1));
  }
  if (size - taken > left()) {
    refuse(field, "is 0x" + hexText(size, 1) + ", but 0x" + hexText(left() + taken, 1) +
                      " bytes are left of the " + m_whole);
  }
  ByteReader reader(m_bytes, m_at, m_at + (size - taken), std::move(whole));
  reader.m_prefix = m_prefix;
  m_last = m_at;
  m_at = reader.m_end;
  return reader;
}

void ByteReader::refuse(const char* field, std::string reason) const {
  refuseAt(m_last, m_prefix + field, std::move(reason));
}

void ByteReader::refuseAt(std::size_t offset, const std::string& field, std::string reason) const {
  throw FieldFault({field, offset, std::move(reason)});
}

}  // namespace ma
