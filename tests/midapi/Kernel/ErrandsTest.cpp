// The child's side, on a thread of the test.

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/ethtool.h>
#include <poll.h>
#include <string>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/Errands.h"
#include "platform/Posix/Descriptor.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/VpdBuilder.h"

namespace {

using ma::Errand;
using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t kSequence = 9;

struct Reply {
  int error = -1;
  std::vector<Bytes> pieces;

  [[nodiscard]] Bytes bytes() const {
    Bytes all;
    for (const Bytes& piece : pieces) {
      all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
  }
};

class Errands : public testing::Test {
 public:
  Errands() {
    int ends[2] = {};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    m_ours = platform::Descriptor(ends[0]);
    m_its = platform::Descriptor(ends[1]);
    m_child = std::thread([this] { ma::serveErrands(m_its.get(), m_room); });
  }
  ~Errands() override {
    m_ours = {};
    m_child.join();
  }

 protected:
  Reply run(Errand errand, const Bytes& bytes) const {
    Bytes order(sizeof errand);
    std::memcpy(order.data(), &errand, sizeof errand);
    order.insert(order.end(), bytes.begin(), bytes.end());
    EXPECT_EQ(::send(m_ours.get(), order.data(), order.size(), 0),
              static_cast<ssize_t>(order.size()));
    Reply reply;
    for (;;) {
      Bytes packet(sizeof(m_room.reply));
      const ssize_t count = ::recv(m_ours.get(), packet.data(), packet.size(), 0);
      ma::ReplyHead head;
      if (count < static_cast<ssize_t>(sizeof head)) {
        ADD_FAILURE() << "the child has gone";
        return reply;
      }
      std::memcpy(&head, packet.data(), sizeof head);
      if (head.isLast != 0) {
        reply.error = head.error;
        return reply;
      }
      reply.pieces.emplace_back(packet.begin() + sizeof head, packet.begin() + count);
    }
  }
  Reply run(Errand errand, const std::string& text) const {
    return run(errand, Bytes(text.begin(), text.end()));
  }
  // Returns what is read of a VPD with that content.
  Bytes vpd(const Bytes& content) const {
    const Reply reply = run(Errand::Vpd, m_directory.write("vpd", content).string());
    EXPECT_EQ(reply.error, 0);
    return reply.bytes();
  }

  test::TempDirectory m_directory;
  ma::ErrandRoom m_room;
  platform::Descriptor m_ours;
  platform::Descriptor m_its;
  std::thread m_child;
};

TEST_F(Errands, ReadVpdToItsEndTagInSmallSteps) {
  const Bytes bytes = test::VpdBuilder()
                          .name("Lab adapter")
                          .raw(std::string("\x0A\x01\x02", 3))
                          .add(0x84, "")
                          .readOnly({{"PN", "X1"}, {"SN", std::string(200, '7')}})
                          .build();
  Bytes content = bytes;
  content.resize(4000, 0x5A);
  const Reply reply = run(Errand::Vpd, m_directory.write("vpd", content).string());
  EXPECT_EQ(reply.error, 0);
  ASSERT_GE(reply.bytes().size(), bytes.size());
  EXPECT_LT(reply.bytes().size(), bytes.size() + 64);
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), reply.bytes().begin()));
  EXPECT_LE(reply.pieces.at(0).size(), 64U);
}

TEST_F(Errands, ReadAVpdWithoutEndAsFarAsItGoes) {
  Bytes cut = test::VpdBuilder().name(std::string(100, 'x')).build();
  cut.resize(90);
  EXPECT_EQ(vpd(cut), cut);
  EXPECT_THAT(vpd({}), IsEmpty());
}

TEST_F(Errands, ReadNoMoreThanAVpdCanHave) {
  Bytes endless = test::VpdBuilder().name("x").build();
  endless.pop_back();
  endless.insert(endless.end(), {0x82, 0xFF, 0xFF});
  endless.resize(100'000, 0x5A);
  EXPECT_THAT(vpd(endless), SizeIs(ma::kMaxVpd));
}

TEST_F(Errands, ReadNoMoreOfWhatWasNeverWritten) {
  EXPECT_THAT(vpd(Bytes(10'000, 0xFF)), SizeIs(64));
  EXPECT_THAT(vpd(Bytes(10'000, 0x00)), SizeIs(64));
}

TEST_F(Errands, SwitchTheRomOnAndOff) {
  Bytes rom(100'000, 0x5A);
  const auto file = m_directory.write("rom", rom);
  const Reply reply = run(Errand::Rom, file.string());
  EXPECT_EQ(reply.error, 0);
  // What a file keeps of the words shows what was said, and when.
  rom[0] = '1';
  EXPECT_EQ(reply.bytes(), rom);
  EXPECT_EQ(test::readText(file).substr(0, 3), "0\nZ");
}

TEST_F(Errands, LeaveOtherFilesAsTheyAre) {
  const Bytes rom(100'000, 0x5A);
  const auto file = m_directory.write("rom", rom);
  EXPECT_EQ(run(Errand::PlainFile, file.string()).bytes(), rom);
  EXPECT_EQ(test::readBytes(file), rom);
}

TEST_F(Errands, SayWhyAFileCannotBeRead) {
  const std::string none = m_directory.path() / "none";
  EXPECT_EQ(run(Errand::Vpd, none).error, ENOENT);
  EXPECT_EQ(run(Errand::Rom, none).error, ENOENT);
  EXPECT_EQ(run(Errand::PlainFile, none).error, ENOENT);
  EXPECT_EQ(run(Errand::PlainFile, m_directory.path().string()).error, EISDIR);
  EXPECT_EQ(run(Errand::Rom, m_directory.path().string()).error, EISDIR);
}

TEST_F(Errands, AskNetlink) {
  const Reply reply = run(Errand::Netlink, ma::makeFamilyRequest(kSequence));
  EXPECT_EQ(reply.error, 0);
  // Where the kernel has no devlink it says so.
  bool isAnswered = false;
  for (const Bytes& datagram : reply.pieces) {
    const auto ack = ma::findAck(datagram, kSequence);
    isAnswered = isAnswered || ma::findFamily(datagram, kSequence) || (ack && ack->error == ENOENT);
  }
  EXPECT_TRUE(isAnswered);
}

TEST_F(Errands, AskDriversOfInterfaces) {
  EXPECT_EQ(run(Errand::DriverInfo, "none").error, ENODEV);
  EXPECT_EQ(run(Errand::DriverInfo, "a name that is longer than 15").error, ENODEV);
  // The kernel has learnt to answer for the loopback, and unlearnt it.
  const Reply reply = run(Errand::DriverInfo, "lo");
  if (reply.error == 0) {
    EXPECT_THAT(reply.pieces, ElementsAre(SizeIs(sizeof(ethtool_drvinfo))));
  } else {
    EXPECT_EQ(reply.error, EOPNOTSUPP);
    EXPECT_THAT(reply.pieces, IsEmpty());
  }
}

TEST_F(Errands, AreNoneThatAreUnknown) {
  EXPECT_EQ(run(static_cast<Errand>(77), "x").error, ENOSYS);
}

TEST_F(Errands, GoOnUntilTheEnd) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(vpd({0x78}), Bytes{0x78});
  }
}

TEST_F(Errands, LockAFileUntilTheNextOne) {
  const auto lock = [this](const std::string& path, std::chrono::nanoseconds patience) {
    const ma::LockHead head{patience.count()};
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&head);
    Bytes order(bytes, bytes + sizeof head);
    order.insert(order.end(), path.begin(), path.end());
    return run(Errand::Lock, order);
  };
  const std::string path = m_directory.path() / "lock";
  EXPECT_EQ(lock(path, std::chrono::hours(1)).error, 0);
  const platform::Descriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
  EXPECT_NE(::flock(file.get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(lock(m_directory.path() / "other", std::chrono::hours(1)).error, 0);
  EXPECT_EQ(::flock(file.get(), LOCK_EX | LOCK_NB), 0);

  // Whoever has had it for an hour hangs.
  const timespec times[2] = {{1'700'000'000, 0}, {1'700'000'000, 0}};
  ::futimens(file.get(), times);
  const Reply reply = lock(path, std::chrono::hours(1));
  EXPECT_EQ(reply.error, EALREADY);
  std::int64_t since = 0;
  ASSERT_THAT(reply.bytes(), SizeIs(sizeof since));
  std::memcpy(&since, reply.bytes().data(), sizeof since);
  EXPECT_EQ(since, 1'700'000'000);

  EXPECT_EQ(lock(m_directory.path() / "none/lock", std::chrono::hours(1)).error, 0);
  EXPECT_EQ(lock("", std::chrono::hours(1)).error, EINVAL);
}

}  // namespace
