#include <functional>
#include <gmock/gmock.h>
#include <ostream>

#include "Utils/Exception.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;

constexpr const char* kFunction = "utils::Exception::Exception";

// Defined behind the standard ones, as agents do.
ORVEX_DEFINE_EXCEPTION(EFurtherError);

struct TypeCase {
  const char* prefix;
  std::function<void(const std::string&)> raise;
  testing::Matcher<std::function<void()>> (*throwsIt)(const std::string& text);
};

void PrintTo(const TypeCase& type, std::ostream* stream) {
  *stream << type.prefix;
}

template <class Error>
TypeCase typeCase(const char* prefix) {
  return {prefix, [](const std::string& text) { throw Error(text); },
          [](const std::string& text) -> testing::Matcher<std::function<void()>> {
            return ThrowsExactly<Error>(text);
          }};
}

class ExceptionType : public testing::TestWithParam<TypeCase> {
 protected:
  [[nodiscard]] static std::function<void()> raising(const std::string& text) {
    return [text] { GetParam().raise(text); };
  }
};

TEST_P(ExceptionType, PutsProgramNameAndTypeBeforeTheText) {
  const std::string prefix = GetParam().prefix;

  EXPECT_THAT(raising("what is wrong"),
              GetParam().throwsIt("Quorvel: " + prefix + "what is wrong"));
  EXPECT_THAT(raising(""), GetParam().throwsIt("Quorvel: " + prefix));
}

TEST_P(ExceptionType, IsCaughtAsItsBase) {
  EXPECT_THROW(raising("text")(), utils::Exception);
  EXPECT_THROW(raising("text")(), std::exception);
}

TEST_P(ExceptionType, LogsItsTextWithoutTheProgramName) {
  const test::LogCapture log;

  EXPECT_THROW(raising("100% wrong %s")(), utils::Exception);

  EXPECT_THAT(log.records(),
              ElementsAre(test::IsRecordOf("Exception", LogLevel::Error, kFunction,
                                           std::string(GetParam().prefix) + "100% wrong %s")));
}

INSTANTIATE_TEST_SUITE_P(All, ExceptionType,
                         testing::Values(typeCase<utils::Exception>(""),
                                         typeCase<utils::EUnspecifiedError>("EUnspecifiedError:"),
                                         typeCase<utils::ENotSupported>("ENotSupported:"),
                                         typeCase<utils::EInvalidParameter>("EInvalidParameter:"),
                                         typeCase<utils::EForbidden>("EForbidden:"),
                                         typeCase<utils::ESyntaxError>("ESyntaxError:"),
                                         typeCase<EFurtherError>("EFurtherError:")));

TEST(Exception, HasNoPrefixWhenMadeFromAFormat) {
  const utils::Exception error("class %s does not exists", "CIM_Fan");

  EXPECT_STREQ(error.what(), "class CIM_Fan does not exists");
}

TEST(Exception, TellsALiteralFromAString) {
  EXPECT_STREQ(utils::Exception("text").what(), "text");
  EXPECT_STREQ(utils::Exception(std::string("text")).what(), "Quorvel: text");
}

TEST(Exception, LogsAFormattedTextAsItIs) {
  const test::LogCapture log;

  const utils::Exception error("%d of %d, 100%%", 3, 4);

  EXPECT_THAT(log.records(), ElementsAre(test::IsRecordOf("Exception", LogLevel::Error, kFunction,
                                                          "3 of 4, 100%")));
}

TEST(Exception, HasATextThatIsNeverNull) {
  const char* nothing = "";
  EXPECT_STREQ(utils::Exception("%s", nothing).what(), "");
}

TEST(Exception, KeepsLongTextsWhole) {
  const std::string text(100'000, 'x');

  EXPECT_EQ(utils::Exception(text).what(), "Quorvel: " + text);
  EXPECT_EQ(utils::Exception("<%s>", text.c_str()).what(), "<" + text + ">");
}

TEST(Exception, IsCopiedWithItsTextAndWithoutLogging) {
  const utils::Exception error("first");
  const test::LogCapture log;

  const utils::Exception copy(error);  // NOLINT(performance-unnecessary-copy-initialization)
  utils::Exception assigned("second");
  assigned = copy;

  EXPECT_STREQ(copy.what(), "first");
  EXPECT_STREQ(assigned.what(), "first");
  EXPECT_EQ(log.messages(kFunction), std::vector<std::string>{"second"});
}

TEST(ENotSupported, OfAMissingOperationIsItsNameAlone) {
  const test::LogCapture log;

  EXPECT_THAT([] { throw utils::ENotSupported(); },
              ThrowsExactly<utils::ENotSupported>("ENotSupported:"));
  EXPECT_THAT(log.records(), ElementsAre(test::IsRecordOf("Exception", LogLevel::Error, kFunction,
                                                          "ENotSupported:")));
}

TEST(Exception, TypesAreToldApartBeforeTheirBase) {
  const auto sort = [](const std::function<void()>& raise) -> std::string {
    try {
      raise();
    } catch (const utils::EInvalidParameter&) {
      return "parameter";
    } catch (const utils::Exception&) {
      return "other";
    }
    return "none";
  };

  EXPECT_EQ(sort([] { throw utils::EInvalidParameter("x"); }), "parameter");
  EXPECT_EQ(sort([] { throw utils::EForbidden("x"); }), "other");
}

}  // namespace
