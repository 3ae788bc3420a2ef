// The arguments of InstallFromURI, through the loaded modules.

#include <algorithm>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "Utils/Exception.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"

namespace {

using test::firmware;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;

// Matches, by its text, what a call throws. The types of exceptions that cross from a module are
// those of the core library, so a catch by type works as well.
#define EXPECT_THROWS(Type, text, call)                        \
  try {                                                        \
    call;                                                      \
    ADD_FAILURE() << "throws nothing";                         \
  } catch (const Type& error) {                                \
    EXPECT_THAT(std::string(error.what()), testing::Eq(text)); \
  }

class Arguments : public testing::Test {
 protected:
  Arguments() {
    m_host.makeAdapter(kAdapter, m_old);
    m_host.load();
    m_arguments.uri.setValue(m_host.makeImage(firmware(3)));
    m_arguments.target.setText(m_host.portPath(kFirstPort));
    m_arguments.options.setValue({5});
    m_arguments.values.setValue({});
  }
  ~Arguments() override { EXPECT_EQ(m_host.flash(kAdapter), m_expectedFlash); }

  std::uint32_t invoke() { return m_host.invoke(m_arguments.all()); }

  void invokeWithout(const std::string& name) {
    std::vector<core::CimProperty*> arguments = m_arguments.all();
    std::erase_if(arguments, [&name](const core::CimProperty* argument) {
      return argument->getName() == name;
    });
    static_cast<void>(m_host.invoke(arguments));
  }

  std::uint32_t invokeWithOptions(const std::vector<std::uint16_t>& options) {
    m_arguments.options.setValue(options);
    return invoke();
  }

  std::uint32_t invokeWithTarget(const std::string& path) {
    m_arguments.target.setText(path);
    return invoke();
  }

  std::uint32_t invokeWithUri(const std::string& uri) {
    m_arguments.uri.setValue(uri);
    return invoke();
  }

  void expectUpdate() {
    EXPECT_EQ(m_host.awaitEnd(), kCompleted);
    m_expectedFlash = firmware(3);
  }

  const test::Bytes m_old = firmware(2);
  test::Bytes m_expectedFlash = m_old;
  test::ModuleHost m_host;
  test::InstallArguments m_arguments;
};

TEST_F(Arguments, MustAllBeThere) {
  for (const core::CimProperty* argument : m_arguments.all()) {
    const std::string& name = argument->getName();
    EXPECT_THROWS(utils::EUnspecifiedError,
                  "Quorvel: EUnspecifiedError:Expected " + name + " argument", invokeWithout(name));
  }
}

TEST_F(Arguments, MustNotBeNullButForTheValues) {
  for (core::CimProperty* argument : std::vector<core::CimProperty*>{
           &m_arguments.options, &m_arguments.target, &m_arguments.uri}) {
    argument->setNull();
    EXPECT_THROWS(utils::EUnspecifiedError,
                  "Quorvel: EUnspecifiedError:" + argument->getName() +
                      " argument is set to NULL. It is not allowed",
                  invoke());
  }
}

TEST_F(Arguments, MayHaveNullValues) {
  m_arguments.values.setNull();
  EXPECT_EQ(invoke(), 4096u);
  expectUpdate();
}

TEST_F(Arguments, MustAskForAnUpdateAndNothingUnsupported) {
  EXPECT_EQ(invokeWithOptions({}), 5u);
  EXPECT_EQ(invokeWithOptions({3}), 5u);
  EXPECT_EQ(invokeWithOptions({32768}), 5u);
  for (const int option : {2, 4, 6, 7, 8, 9, 10, 11, 12}) {
    EXPECT_EQ(invokeWithOptions({5, static_cast<std::uint16_t>(option)}), 5u) << option;
  }
}

TEST_F(Arguments, MayHaveOptionsWithoutAMeaning) {
  EXPECT_EQ(invokeWithOptions({0, 1, 3, 5, 13, 32767, 65535}), 4096u);
  expectUpdate();
}

TEST_F(Arguments, MustNameATargetThatExists) {
  std::string path = m_host.portPath(kFirstPort);
  path.replace(path.find(kFirstPort), std::string(kFirstPort).size(), "0000:09:00.0");
  EXPECT_EQ(invokeWithTarget(path), 5u);
  EXPECT_EQ(invokeWithTarget("Orvex_Nothing.DeviceID=\"0\""), 5u);
}

TEST_F(Arguments, MustNameATargetThatHasFirmware) {
  EXPECT_EQ(invokeWithTarget(m_host.onlyPathOf("Orvex_SoftwareInstallationService")), 4106u);
  EXPECT_EQ(invokeWithTarget(m_host.onlyPathOf("Orvex_RegisteredProfile")), 4106u);
}

TEST_F(Arguments, MustNameTheTargetByAPath) {
  m_arguments.target.setText("no path");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
}

TEST_F(Arguments, MustNameAFileThatExists) {
  EXPECT_EQ(invokeWithUri(""), 5u);
  EXPECT_EQ(invokeWithUri("image.rom"), 5u);
  EXPECT_EQ(invokeWithUri("http://127.0.0.1/image.rom"), 5u);
  EXPECT_EQ(invokeWithUri("file://" + (m_host.directory() / "missing.rom").string()), 5u);
  EXPECT_EQ(invokeWithUri("file://" + m_host.directory().string()), 5u);
  EXPECT_EQ(invokeWithUri("file:///dev/zero"), 5u);
}

TEST(UnknownMethod, IsRefusedByItsName) {
  test::ModuleHost host;
  host.load();
  core::CimPropertyList in;
  core::CimInstance* const service =
      core::GetCimBroker().getInstances("Orvex_SoftwareInstallationService").first();
  EXPECT_THROWS(utils::ENotSupported,
                "Quorvel: ENotSupported:Method Nothing is not support by "
                "Orvex_SoftwareInstallationService class",
                static_cast<void>(service->invokeMethod("Nothing", &in, &in, nullptr)));
}

}  // namespace
