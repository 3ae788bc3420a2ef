#include <algorithm>
#include <gmock/gmock.h>
#include <string>

#include "http/ReadBuffer.h"

namespace {

using http::ReadBuffer;

TEST(ReadBuffer, HandsOutWhatWasReadInOrder) {
  ReadBuffer buffer;
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    const boost::asio::mutable_buffer space = buffer.space();
    ASSERT_GT(space.size(), 0U);
    const std::size_t count = std::min<std::size_t>(space.size(), 100);
    for (std::size_t k = 0; k < count; ++k) {
      static_cast<char*>(space.data())[k] = static_cast<char>('a' + (i + static_cast<int>(k)) % 26);
    }
    expected.append(static_cast<const char*>(space.data()), count);
    buffer.add(count);
    buffer.remove(i % 3 == 0 ? 50 : 90);
    expected.erase(0, i % 3 == 0 ? 50 : 90);
    ASSERT_EQ(buffer.bytes(), expected);
  }
}

TEST(ReadBuffer, NeedsNoMoreMemoryWhereAByteWasTaken) {
  ReadBuffer buffer;
  buffer.add(buffer.space().size());
  buffer.remove(1);
  EXPECT_EQ(buffer.space().size(), 1U);
}

TEST(ReadBuffer, KeepsItsSizeWhereNothingCame) {
  ReadBuffer buffer;
  const std::size_t size = buffer.space().size();
  EXPECT_EQ(buffer.space().size(), size);
}

TEST(ReadBuffer, ReadsMoreAtOnceWhereMuchComesAndGivesThatUp) {
  ReadBuffer buffer;
  for (int i = 0; i < 10; ++i) {
    const std::size_t size = buffer.space().size();
    buffer.add(size);
    buffer.remove(size);
  }
  EXPECT_EQ(buffer.space().size(), 64U * 1024);
  buffer.shrink();

  EXPECT_EQ(buffer.space().size(), 4U * 1024);
}

}  // namespace
