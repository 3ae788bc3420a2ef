// An installation service that notes what it is asked and answers what the test says.

#ifndef ORVEX_TESTS_CLIENT_FAKESERVICE_H_
#define ORVEX_TESTS_CLIENT_FAKESERVICE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "client/Snapshot.h"
#include "core/CimPropertyTypes.h"
#include "tests/client/FakeAgent.h"
#include "tests/client/ValuePrinter.h"

namespace test {

class FakeService : public FakeInstance {
 public:
  // A call, each argument "NAME=VALUE" in the order of the call.
  struct Call {
    std::string method;
    std::vector<std::string> in;
    std::vector<std::string> out;
  };

  FakeService() : FakeInstance("Orvex_SoftwareInstallationService", "1") {}

  std::uint32_t invokeMethod(std::string name, core::CimPropertyList* in,
                             core::CimPropertyList* out, core::CimInstance** /*job*/) override {
    calls.push_back({name, describe(*in), describe(*out)});
    if (auto* output = out->get("InstallCharacteristics"); output != nullptr && answer == 0) {
      dynamic_cast<core::CimPropertyUint16_arr&>(*output).setValue(characteristics);
    }
    return answer;
  }

  std::uint32_t answer = 0;
  std::vector<std::uint16_t> characteristics;  // what a check that passes hands out
  std::vector<Call> calls;

 private:
  // A reference as it is, anything else as an expectation shows it.
  static std::string describe(const core::CimProperty& argument) {
    const client::PropertySnapshot snapshot = client::snapshotOf(argument);
    const std::string* const text = snapshot.value.text();
    return snapshot.kind == client::PropertySnapshot::Kind::Reference && text != nullptr
               ? *text
               : textOf(snapshot.value);
  }
  static std::vector<std::string> describe(core::CimPropertyList& arguments) {
    std::vector<std::string> texts;
    core::CimPropertyList::Iterator cursor = arguments.iterator();
    for (auto* argument = cursor.first(); argument != nullptr; argument = cursor.next()) {
      texts.push_back(argument->getName() + "=" + describe(*argument));
    }
    return texts;
  }
};

}  // namespace test

#endif  // ORVEX_TESTS_CLIENT_FAKESERVICE_H_
