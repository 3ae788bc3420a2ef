#include <filesystem>
#include <gmock/gmock.h>
#include <ostream>

#include "Os/Uri.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/VirtualSlots.h"

namespace {

using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using testing::ElementsAre;
using utils::Uri;

constexpr const char* kFunction = "utils::Uri::parseUri";

struct KnownCase {
  const char* text;
  std::uint32_t scheme;
  const char* path;
};

void PrintTo(const KnownCase& known, std::ostream* stream) {
  *stream << known.text;
}

class KnownUri : public testing::TestWithParam<KnownCase> {};

TEST_P(KnownUri, IsSplitIntoSchemeAndPath) {
  const LogCapture log;
  const Uri uri(GetParam().text);

  EXPECT_EQ(uri.getScheme(), GetParam().scheme);
  EXPECT_EQ(uri.getPath(), GetParam().path);
  EXPECT_EQ(uri.isSupported(), GetParam().scheme == 3);
  EXPECT_TRUE(log.records().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, KnownUri,
    testing::Values(
        KnownCase{"data://x", 2, "x"}, KnownCase{"file:///fw/image.bin", 3, "/fw/image.bin"},
        KnownCase{"ftp://host/x", 4, "host/x"}, KnownCase{"http://host/x", 5, "host/x"},
        KnownCase{"https://host/x", 6, "host/x"}, KnownCase{"nfs://host/x", 7, "host/x"},
        KnownCase{"tftp://host/x", 8, "host/x"}, KnownCase{"HTTP://host/x", 5, "host/x"},
        KnownCase{"FILE://C:/x", 3, "C:/x"}, KnownCase{"File://x", 3, "x"},
        KnownCase{"file://C:/fw/image.bin", 3, "C:/fw/image.bin"},
        KnownCase{"file:///C:/fw/image.bin", 3, "/C:/fw/image.bin"}, KnownCase{"file://", 3, ""},
        KnownCase{"file://:", 3, ":"}, KnownCase{"file:////x", 3, "//x"},
        KnownCase{"http://host:80/a:b", 5, "host:80/a:b"}, KnownCase{"file:///a%20b", 3, "/a%20b"},
        KnownCase{"file:///a b\"c", 3, "/a b\"c"}));

struct UnknownCase {
  const char* text;
  const char* complaint;
};

void PrintTo(const UnknownCase& unknown, std::ostream* stream) {
  *stream << '\'' << unknown.text << '\'';
}

class UnknownUri : public testing::TestWithParam<UnknownCase> {};

TEST_P(UnknownUri, HasNeitherSchemeNorPathAndIsLogged) {
  const LogCapture log;
  const Uri uri(GetParam().text);

  EXPECT_EQ(uri.getScheme(), 0U);
  EXPECT_EQ(uri.getPath(), "");
  EXPECT_FALSE(uri.isSupported());
  EXPECT_FALSE(uri.exists());
  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf("Uri", LogLevel::Debug, kFunction,
                                                    std::string(GetParam().complaint) + " of '" +
                                                        GetParam().text + "'")));
}

constexpr const char* kIncorrect = "Incorrect URI format";
constexpr const char* kUnknown = "Uknown URI format";

INSTANTIATE_TEST_SUITE_P(
    Table, UnknownUri,
    testing::Values(UnknownCase{"", kIncorrect}, UnknownCase{"file", kIncorrect},
                    UnknownCase{"/fw/image.bin", kIncorrect}, UnknownCase{"%s%n", kIncorrect},
                    UnknownCase{"file:", kUnknown}, UnknownCase{":", kUnknown},
                    UnknownCase{"file:/fw/image.bin", kUnknown},
                    UnknownCase{"file:fw//image.bin", kUnknown}, UnknownCase{"file: //x", kUnknown},
                    UnknownCase{"://x", kUnknown}, UnknownCase{"gopher://host/x", kUnknown},
                    UnknownCase{"C:/fw/image.bin", kUnknown}, UnknownCase{" file://x", kUnknown},
                    UnknownCase{"file ://x", kUnknown}, UnknownCase{"files://x", kUnknown},
                    UnknownCase{"fil://x", kUnknown}, UnknownCase{"file:x://y", kUnknown}));

class UriOfAFile : public testing::Test {
 protected:
  static std::string uriOf(const std::filesystem::path& path) { return "file://" + path.string(); }

  test::TempDirectory m_directory;
};

TEST_F(UriOfAFile, ExistsWithTheFile) {
  const std::filesystem::path file = m_directory.write("image.bin", std::string("x"));

  EXPECT_TRUE(Uri(uriOf(file)).exists());
  std::filesystem::remove(file);
  EXPECT_FALSE(Uri(uriOf(file)).exists());
}

TEST_F(UriOfAFile, DoesNotExistForADirectory) {
  EXPECT_FALSE(Uri(uriOf(m_directory.path())).exists());
}

TEST_F(UriOfAFile, DoesNotExistUnderAnotherScheme) {
  const std::filesystem::path file = m_directory.write("image.bin", std::string("x"));

  EXPECT_FALSE(Uri("http://" + file.string()).exists());
  EXPECT_FALSE(Uri("nfs://" + file.string()).exists());
}

TEST(Uri, HasNoVirtualOperationButItsDestructor) {
  struct Extended : Uri {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&Extended::extend), 2U);
}

TEST(Uri, IsAPlainValue) {
  const Uri uri("file:///x");
  Uri copy("http://y");
  copy = uri;

  EXPECT_EQ(copy.getPath(), "/x");
  EXPECT_TRUE(copy.isSupported());
}

}  // namespace
