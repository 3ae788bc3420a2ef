// Reads the fields of a binary structure one after the other, within bounds that hold whatever the
// bytes are. For parsers: what they are asked through says what a defect is, so the exception stays
// between a parser and its readers.

#ifndef ORVEX_MIDAPI_BYTEREADER_H_
#define ORVEX_MIDAPI_BYTEREADER_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <string>
#include <utility>

#include "midapi/FieldDefect.h"

namespace ma {

// Ends the reading of a structure.
class FieldFault final : public std::exception {
 public:
  explicit FieldFault(FieldDefect defect);

  [[nodiscard]] const FieldDefect& defect() const noexcept { return m_defect; }
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  FieldDefect m_defect;
  std::string m_text;
};

// A place in bytes that outlive the reader, and the end that it does not read beyond. Numbers are
// little endian. Names of fields are put behind the reader's own, as in "devices[0]." and "length".
class ByteReader {
 public:
  // Reads from `begin` to `end`, both positions in `bytes`; `whole` names what ends there.
  ByteReader(std::span<const std::uint8_t> bytes, std::size_t begin, std::size_t end,
             std::string whole);

  [[nodiscard]] std::size_t position() const { return m_at; }
  [[nodiscard]] std::size_t end() const { return m_end; }
  [[nodiscard]] std::size_t left() const { return m_end - m_at; }

  // The prefix of the names of fields that are read from now on.
  void setPrefix(std::string prefix) { m_prefix = std::move(prefix); }
  [[nodiscard]] const std::string& prefix() const { return m_prefix; }

  // Take a field and go on behind it. Throw FieldFault where fewer bytes are left.
  std::uint8_t number8(const char* field);
  std::uint16_t number16(const char* field);
  std::uint32_t number32(const char* field);
  std::span<const std::uint8_t> bytes(const char* field, std::size_t count);

  // Returns a reader for the rest of a part of `size` bytes, of which `taken` have been read, and
  // goes on behind the part. Throws FieldFault for the field, which is the one read last, where the
  // part is longer than what it stands in, or shorter than what was read of it.
  ByteReader part(const char* field, std::size_t size, std::size_t taken, std::string whole);

  // Throws FieldFault: for the field that was read last, or for one at a place of its own.
  [[noreturn]] void refuse(const char* field, std::string reason) const;
  [[noreturn]] void refuseAt(std::size_t offset, const std::string& field,
                             std::string reason) const;

 private:
  std::span<const std::uint8_t> m_bytes;
  std::size_t m_at;
  std::size_t m_end;
  std::size_t m_last;  // where the field began that was read last
  std::string m_whole;
  std::string m_prefix;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_BYTEREADER_H_
