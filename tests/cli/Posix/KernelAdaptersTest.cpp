// `quorvel` on a machine whose adapters the kernel drives.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/cli/Posix/ImitatedMachine.h"

namespace {

using Json = nlohmann::ordered_json;
using test::ProgramResult;
using test::RomBuilder;
using test::RomImage;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class KernelAdaptersTest : public testing::Test {
 protected:
  static test::Bytes romFor(std::uint16_t device, std::uint8_t version = 1) {
    return RomBuilder().add(RomImage::efi().device(0x8086, device).version(version, 0)).build();
  }

  test::ImitatedMachine m_machine;
};

TEST_F(KernelAdaptersTest, AreListedWithInterfacesAndDriver) {
  m_machine.addFunction("0000:03:00.0", "e1000e", "eno1");
  m_machine.addFunction("0000:5e:00.0", "cxgb4", "ens2f0");
  m_machine.addFunction("0000:5e:00.1", "cxgb4", "ens2f1");
  m_machine.setRom("0000:03:00.0", romFor(0x10D3));
  const ProgramResult result = m_machine.run({"adapters"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(result.output, StartsWith("PORT          INTERFACE  DRIVER  DEVICE     UPDATABLE"));
  EXPECT_THAT(result.output,
              AllOf(HasSubstr("\n0000:03:00.0  eno1       e1000e  8086:10d3  no\n"),
                    HasSubstr("\n0000:5e:00.1  ens2f1     cxgb4   8086:10d3  "),
                    HasSubstr("\n\nADAPTER     IDENTITY AND FIRMWARE\n0000:03:00  "),
                    HasSubstr("\n0000:5e:00  "),
                    HasSubstr("\n\nNot updatable:\n  0000:03:00: its driver e1000e ")));
}

TEST_F(KernelAdaptersTest, AreADocumentForPrograms) {
  m_machine.addFunction("0000:5e:00.0", "cxgb4", "ens2f0");
  const Json document = Json::parse(m_machine.run({"adapters", "--json"}).output);
  ASSERT_EQ(document.size(), 1U);
  EXPECT_EQ(document[0]["kind"], "kernel");
  EXPECT_EQ(document[0]["driver"], "cxgb4");
  EXPECT_EQ(document[0]["ports"][0]["mac"], "02:54:4e:00:00:30");
  EXPECT_EQ(document[0]["ports"][0]["interfaces"], Json::array({"ens2f0"}));
}

TEST_F(KernelAdaptersTest, AreNotMeantByADirectoryOfVirtualOnes) {
  m_machine.addFunction("0000:5e:00.0", "cxgb4", "ens2f0");
  EXPECT_THAT(m_machine.run({"adapters", "--adapters", "/nowhere"}).output,
              StartsWith("There are no adapters in /nowhere. Make one with"));
}

TEST_F(KernelAdaptersTest, MayBeNone) {
  EXPECT_EQ(m_machine.run({"adapters"}).output,
            "There are no adapters: this machine has no Ethernet adapter on a PCI bus, and the "
            "setting Adapters leaves virtual ones out.\n");
}

TEST_F(KernelAdaptersTest, AreShownWithWhatAFileIsToThem) {
  m_machine.addFunction("0000:5e:00.0", "cxgb4", "ens2f0");
  const ProgramResult result =
      m_machine.run({"show", m_machine.writeFirmware("other.rom", romFor(0x10D4))});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(result.output,
              AllOf(HasSubstr("\n0000:5e:00  not for it"),
                    HasSubstr("\nReasons:\n  0000:5e:00: the file is for 8086:10d4, and the "
                              "adapter is 8086:10d3")));
}

TEST_F(KernelAdaptersTest, AreNamedInTheReasonOfARefusedUpdate) {
  m_machine.addFunction("0000:5e:00.0", "cxgb4", "ens2f0");
  const std::string file = m_machine.writeFirmware("other.rom", romFor(0x10D4));
  for (const std::string& image : {file, "file://" + file}) {
    const ProgramResult result = m_machine.run({"update", "0000:5e:00", image});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors,
                AllOf(HasSubstr("refused: 4097, Unsupported TargetType\n  reason: Image "),
                      HasSubstr("\n  why: the file is for 8086:10d4, and the adapter is 8086:10d3"),
                      HasSubstr("\n  next: get the file that is made for this adapter;")));
  }
}

TEST_F(KernelAdaptersTest, AreNamedInTheReasonOfARefusedCheck) {
  m_machine.addFunction("0000:5e:00.0", "cxgb4", "ens2f0");
  static_cast<void>(m_machine.writeFirmware("other.rom", romFor(0x10D4)));
  const ProgramResult result = m_machine.run({"check", "0000:5e:00.0", "other.rom"});
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_THAT(result.errors, AllOf(HasSubstr(" refused: 4097, "),
                                   HasSubstr("\n  why: the file is for 8086:10d4")));
}

TEST_F(KernelAdaptersTest, SayWhatAnActivationTakes) {
  m_machine.addFunction("0000:5e:00.0", "cxgb4", "ens2f0");
  const ProgramResult result = m_machine.run({"activate", "0000:5e:00.0", "--json"});
  EXPECT_EQ(result.exitStatus, 1);
  const std::string text =
      "its driver cxgb4 cannot put stored firmware into force, and does not tell all that is "
      "stored; after an update, reload the driver, or reboot the machine";
  EXPECT_EQ(
      result.errors,
      "quorvel: the firmware that 0000:5e:00 has stored was not put into force: " + text + "\n");
  EXPECT_EQ(Json::parse(result.output),
            Json({{"adapter", "0000:5e:00"}, {"active", false}, {"text", text}}));
}

}  // namespace
