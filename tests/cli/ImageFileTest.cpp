#include <filesystem>
#include <gmock/gmock.h>

#include "Os/QuorvelConfig.h"
#include "cli/ImageFile.h"
#include "client/Fault.h"
#include "tests/Os/HungDirectory.h"
#include "tests/support/Settings.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::HasSubstr;

std::string faultOf(const std::string& path) {
  try {
    const cli::ImageFile file(path);
    return "";
  } catch (const client::Fault& fault) {
    return fault.what();
  }
}

class ImageFileTest : public testing::Test {
 protected:
  [[nodiscard]] std::string write(const std::string& name, const std::string& content) const {
    return m_directory.write(name, content).string();
  }
  [[nodiscard]] std::string path(const std::string& name) const {
    return (m_directory.path() / name).string();
  }
  [[nodiscard]] const std::filesystem::path& directory() const { return m_directory.path(); }

 private:
  test::TempDirectory m_directory;
};

TEST_F(ImageFileTest, HasTheBytesOfAFile) {
  const cli::ImageFile file(write("a.rom", "abc"));
  EXPECT_EQ(std::string(file.bytes().begin(), file.bytes().end()), "abc");
  EXPECT_TRUE(cli::ImageFile(write("empty.rom", "")).bytes().empty());
}

TEST_F(ImageFileTest, SaysWhatIsNoFile) {
  EXPECT_EQ(faultOf(path("missing.rom")),
            "there is no file '" + path("missing.rom") + "'; check the path");
  EXPECT_EQ(faultOf(directory().string()),
            "'" + directory().string() + "' is a directory; name the image file in it");
  EXPECT_EQ(cli::findFileFault(write("a.rom", "abc")), "");
}

TEST_F(ImageFileTest, SaysWhatIsTooLarge) {
  test::Settings settings;
  settings.write({{"MaxImageSize", std::uint32_t{2}}});
  const utils::QuorvelConfig config(settings.path());
  const std::string file = write("a.rom", "abc");
  EXPECT_THAT(faultOf(file), HasSubstr("the file '" + file +
                                       "' is too large: its 3 bytes are more "
                                       "than MaxImageSize allows (2 in "));
  EXPECT_EQ(faultOf(write("b.rom", "ab")), "");
}

TEST_F(ImageFileTest, DoesNotWaitForAFileSystemThatDoesNotAnswer) {
  const std::string file = directory().generic_string() + "/a.rom";
  const test::HungDirectory hung(directory().generic_string());
  EXPECT_EQ(faultOf(file),
            "the file system of '" + file + "' does not answer; try again when it does");
}

}  // namespace
