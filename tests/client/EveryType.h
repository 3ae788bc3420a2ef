// An instance with one property of every type.

#ifndef ORVEX_TESTS_CLIENT_EVERYTYPE_H_
#define ORVEX_TESTS_CLIENT_EVERYTYPE_H_

#include <string>

#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace test {

class EveryType : public core::CimInstance {
 public:
  // Gives each property a value, at an end of its range where it has one.
  void fill() {
    Id.setKey();
    Id.setValue("one");
    Small.setValue(255);
    Signed.setValue(-128);
    Number.setValue(65535);
    Numbers.setValue({2, 32768});
    Long.setValue(4294967295U);
    Longest.setValue(18446744073709551615U);
    Texts.setValue({"a", "b \"c\""});
    Truth.setValue(1);
    Time.setValue(utils::Datetime(300'000'000));
    Reference.setText("C.K=\"v\"");
  }

  [[nodiscard]] std::string getClassName() const override { return "Every_Type"; }

  core::CimPropertyString Id{"Id", this};
  core::CimPropertyUint8 Small{"Small", this};
  core::CimPropertySint8 Signed{"Signed", this};
  core::CimPropertyUint16 Number{"Number", this};
  core::CimPropertyUint16_arr Numbers{"Numbers", this};
  core::CimPropertyUint32 Long{"Long", this};
  core::CimPropertyUint64 Longest{"Longest", this};
  core::CimPropertyString_arr Texts{"Texts", this};
  core::CimPropertyBoolean Truth{"Truth", this};
  core::CimPropertyDatetime Time{"Time", this};
  core::CimPropertyRef Reference{"Reference", this};
};

}  // namespace test

#endif  // ORVEX_TESTS_CLIENT_EVERYTYPE_H_
