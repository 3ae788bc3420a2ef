#include <functional>
#include <gmock/gmock.h>
#include <numeric>
#include <vector>

#include "midapi/ByteReader.h"

namespace {

using ma::ByteReader;
using testing::ElementsAre;

std::vector<std::uint8_t> countingBytes(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
  return bytes;
}

std::string faultOf(const std::function<void()>& reading) {
  try {
    reading();
  } catch (const ma::FieldFault& fault) {
    EXPECT_EQ(fault.what(), fault.defect().toString());
    return fault.what();
  }
  return "no fault";
}

class ByteReaderTest : public testing::Test {
 protected:
  const std::vector<std::uint8_t> m_bytes = countingBytes(32);
  ByteReader m_reader{m_bytes, 2, 12, "header"};
};

TEST_F(ByteReaderTest, ReadsOneFieldBehindTheOther) {
  EXPECT_EQ(m_reader.number8("one"), 0x03);
  EXPECT_EQ(m_reader.number16("two"), 0x0504);
  EXPECT_EQ(m_reader.number32("three"), 0x09080706U);
  EXPECT_EQ(m_reader.position(), 9U);
  EXPECT_EQ(m_reader.left(), 3U);
  const auto rest = m_reader.bytes("four", 3);
  EXPECT_THAT(std::vector(rest.begin(), rest.end()), ElementsAre(10, 11, 12));
  EXPECT_EQ(m_reader.bytes("none", 0).size(), 0U);
}

TEST_F(ByteReaderTest, ReadsNothingBeyondItsEnd) {
  static_cast<void>(m_reader.bytes("most", 9));
  EXPECT_EQ(faultOf([&] { m_reader.number16("size"); }),
            "size at 0xb: takes 0x2 bytes, but 0x1 are left of the header");
  EXPECT_EQ(faultOf([&] { static_cast<void>(m_reader.bytes("data", ~std::size_t{0})); }),
            "data at 0xb: takes 0xffffffffffffffff bytes, but 0x1 are left of the header");
  EXPECT_EQ(m_reader.number8("last"), 12);
}

TEST_F(ByteReaderTest, GivesAPartItsOwnBounds) {
  EXPECT_EQ(m_reader.number8("length"), 3);
  ByteReader part = m_reader.part("length", 4, 1, "record");
  EXPECT_EQ(m_reader.number8("behind"), 7);
  EXPECT_EQ(part.number16("value"), 0x0504);
  EXPECT_EQ(faultOf([&] { part.number16("next"); }),
            "next at 0x5: takes 0x2 bytes, but 0x1 are left of the record");
}

TEST_F(ByteReaderTest, RefusesThePartThatDoesNotFit) {
  m_reader.setPrefix("records[1].");
  static_cast<void>(m_reader.number8("length"));
  EXPECT_EQ(faultOf([&] { static_cast<void>(m_reader.part("length", 11, 1, "record")); }),
            "records[1].length at 0x2: is 0xb, but 0xa bytes are left of the header");
  EXPECT_EQ(faultOf([&] { static_cast<void>(m_reader.part("length", 0, 1, "record")); }),
            "records[1].length at 0x2: is 0x0, must be at least 0x1");
  EXPECT_EQ(m_reader.part("length", 1, 1, "record").left(), 0U);
  EXPECT_EQ(m_reader.part("length", 10, 1, "record").prefix(), "records[1].");
  EXPECT_EQ(m_reader.left(), 0U);
}

TEST_F(ByteReaderTest, RefusesTheFieldThatWasReadLast) {
  m_reader.setPrefix("records[1].");
  static_cast<void>(m_reader.number8("kind"));
  static_cast<void>(m_reader.number16("size"));
  EXPECT_EQ(faultOf([&] { m_reader.refuse("size", "is odd"); }), "records[1].size at 0x3: is odd");
  EXPECT_EQ(faultOf([&] { m_reader.refuseAt(0x20, "sum", "is wrong"); }), "sum at 0x20: is wrong");
}

}  // namespace
