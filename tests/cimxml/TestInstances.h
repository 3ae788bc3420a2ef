// Instances that the tests of the writer are made of.

#ifndef ORVEX_TESTS_CIMXML_TESTINSTANCES_H_
#define ORVEX_TESTS_CIMXML_TESTINSTANCES_H_

#include <limits>
#include <string>

#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclaration.h"

namespace test {

// One property of each type, all of them NULL.
class Everything : public core::CimInstance {
 public:
  [[nodiscard]] std::string getClassName() const override { return "Test_Everything"; }

  core::CimPropertyString Text{"Text", this};
  core::CimPropertyUint8 Byte{"Byte", this};
  core::CimPropertySint8 Signed{"Signed", this};
  core::CimPropertyUint16 Short{"Short", this};
  core::CimPropertyUint32 Word{"Word", this};
  core::CimPropertyUint64 Long{"Long", this};
  core::CimPropertyBoolean Truth{"Truth", this};
  core::CimPropertyDatetime When{"When", this};
  core::CimPropertyUint16_arr Shorts{"Shorts", this};
  core::CimPropertyString_arr Texts{"Texts", this};
  core::CimPropertyRef Other{"Other", this};
};

// What declares it: Text is its key and its superclass's, the others are its own.
inline core::ClassDeclaration declareEverything() {
  using core::PropertyDeclaration;
  core::ClassDeclaration declaration;
  declaration.name = "Test_Everything";
  declaration.superclass = "Test_Thing";
  declaration.properties = {
      PropertyDeclaration{"Text", core::kCimString, true, "", "Test_Thing"},
      PropertyDeclaration{"Byte", core::kCimUint8, false, "", "Test_Everything"},
      PropertyDeclaration{"Signed", core::kCimSint8, false, "", "Test_Everything"},
      PropertyDeclaration{"Short", core::kCimUint16, false, "", "Test_Everything"},
      PropertyDeclaration{"Word", core::kCimUint32, false, "", "Test_Everything"},
      PropertyDeclaration{"Long", core::kCimUint64, false, "", "Test_Everything"},
      PropertyDeclaration{"Truth", core::kCimBoolean, false, "", "Test_Everything"},
      PropertyDeclaration{"When", core::kCimDatetime, false, "", "Test_Everything"},
      PropertyDeclaration{"Shorts", core::kCimUint16Array, false, "", "Test_Everything"},
      PropertyDeclaration{"Texts", core::kCimStringArray, false, "", "Test_Everything"},
      PropertyDeclaration{"Other", core::kCimReference, false, "CIM_Thing", "Test_Everything"},
  };
  return declaration;
}

// An instance with a key, Name.
class Named : public core::CimInstance {
 public:
  explicit Named(const std::string& name) {
    Name.setKey();
    Name.setValue(name);
  }

  [[nodiscard]] std::string getClassName() const override { return "Test_Named"; }

  core::CimPropertyString Name{"Name", this};
};

// An association whose keys are its two references.
class Link : public core::CimInstance {
 public:
  Link(core::CimInstance* from, core::CimInstance* to) {
    From.setKey();
    To.setKey();
    From.setTarget(from);
    To.setTarget(to);
  }

  [[nodiscard]] std::string getClassName() const override { return "Test_Link"; }

  core::CimPropertyRef From{"From", this};
  core::CimPropertyRef To{"To", this};
};

}  // namespace test

#endif  // ORVEX_TESTS_CIMXML_TESTINSTANCES_H_
