// Any text is a query or is refused with its place, in every language; one that is taken matches or
// does not, whatever its instances hold, and says the same twice.

#include <cstdint>
#include <optional>
#include <string>

#include "query/Query.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Language;
using query::Query;
using test::FakeView;

std::optional<Query> parse(const std::string& text, Language language) {
  try {
    return Query::parse(text, language, test::querySchema());
  } catch (const query::QueryFault& fault) {
    const std::string what = fault.what();
    test::require(what.starts_with("line "), "a refusal begins with the place");
    test::require(fault.position().line >= 1 && fault.position().column >= 1,
                  "places count from 1");
    test::requirePrintable(what);
    test::require(what.size() < 4 * text.size() + 1000,
                  "a refusal is no longer than what it is of");
    return std::nullopt;
  }
}

FakeView::Values valuesOf(std::uint64_t seed) {
  FakeView::Values values = {{"Name", test::text(seed % 2 == 0 ? "eth0" : "\xFF\xC3x")},
                             {"Count", test::number(seed)},
                             {"Delta", test::negative(-static_cast<std::int64_t>(seed % 100) - 1)},
                             {"IsGood", test::truth(seed % 3 == 0)},
                             {"Since", test::datetime("20260101120000.000000+000")},
                             {"Peer", test::path("Test_Thing.Name=\"x\"")},
                             {"States", test::array({test::number(2), test::number(17)})},
                             {"Roles", test::array({test::text("a"), {}})}};
  if (seed % 5 == 0) {
    values.erase("Name");
    values.erase("States");
  }
  return values;
}

// Values of sorts that the schema does not promise, too: an embedded instance may have any.
FakeView::Values mixedValues() {
  return {{"Name", test::number(1)},
          {"Count", test::text("3")},
          {"States", test::text("2")},
          {"Since", test::text("20260101120000.000000+000")},
          {"Peer", test::text("Test_Thing.Name=\"x\"")},
          {"IsGood", test::real(0.5)}};
}

void match(const Query& query) {
  const FakeView views[] = {
      FakeView("Test_Thing", valuesOf(3)),
      FakeView("Test_Job", valuesOf(18446744073709551615U)),
      FakeView("Test_Job", mixedValues()),
      FakeView("Test_Modification",
               {{"SourceInstance", test::embedded("Test_Job", valuesOf(10))},
                {"PreviousInstance", test::embedded("Test_Thing", mixedValues())}}),
      FakeView("Test_Modification", {{"SourceInstance", {query::EmbeddedInstance()}}}),
      FakeView("Test_Indication")};
  for (const FakeView& view : views) {
    const bool isMatch = query.matches(view);
    test::require(query.matches(view) == isMatch, "a query says the same twice");
    test::require(!isMatch || query.fromClass().empty() || view.isA(query.fromClass()),
                  "what matches is of the class");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (const Language language : {Language::Wql, Language::Cql, Language::Fql}) {
    if (const std::optional<Query> query = parse(text, language)) {
      match(*query);
      if (language != Language::Fql) {
        const std::string named = query::findFromClass(text);
        test::require(core::isSameName(named, query->fromClass()),
                      "the class is found without a schema, too");
      }
    }
  }
  return 0;
}
