#include <gmock/gmock.h>

#include "cli/LocalTarget.h"
#include "client/Fault.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/RomBuilder.h"

namespace {

using cli::findLocalPort;
using testing::HasSubstr;

class LocalTargetTest : public testing::Test {
 protected:
  void addAdapter(const std::string& pci) const {
    m_adapters.makeAdapter(pci, test::RomBuilder().add(test::RomImage::legacy()).build());
  }

  static std::string faultOf(const std::string& text) {
    try {
      return "found " + findLocalPort(text);
    } catch (const client::Fault& fault) {
      return fault.what();
    }
  }

 private:
  test::AdapterFixture m_adapters;
  const test::AdaptersVariable m_variable{m_adapters.directory()};
};

TEST_F(LocalTargetTest, IsAPortOrTheFirstOneOfAnAdapter) {
  addAdapter("0000:0a:00");
  EXPECT_EQ(findLocalPort("0000:0a:00"), "0000:0a:00.0");
  EXPECT_EQ(findLocalPort("0000:0A:00"), "0000:0a:00.0");
  EXPECT_EQ(findLocalPort("0000:0a:00.1"), "0000:0a:00.1");
  EXPECT_EQ(cli::adapterOfPort("0000:0a:00.1"), "0000:0a:00");
}

TEST_F(LocalTargetTest, ListsWhatThereIsForWhatIsNone) {
  addAdapter("0000:03:00");
  addAdapter("0000:04:00");
  const std::string there =
      "; there are\n  adapters: 0000:03:00 0000:04:00\n"
      "  ports:    0000:03:00.0 0000:03:00.1 0000:04:00.0 0000:04:00.1";
  for (const char* text : {"0000:03:00.2", "0000:05:00", "nonsense", "C.K=\"v\"", ""}) {
    EXPECT_EQ(faultOf(text), std::string("there is no adapter or port '") + text + "'" + there);
  }
}

TEST_F(LocalTargetTest, SaysWhereThereIsNone) {
  EXPECT_EQ(faultOf("0000:03:00"),
            "there is no adapter or port '0000:03:00'; there are no "
            "adapters here (see --adapters and 'quorvel adapters')");
}

}  // namespace
