#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/Windows/WindowsRegistry.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/MachineRegistry.h"

namespace {

using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::UnorderedElementsAre;
using utils::WindowsRegistry;

constexpr const char* kLibrary = "OrvexCimCore.dll";
constexpr const char* kSource = "Os/Windows/Windows";
constexpr const char* kFunction = "utils::WindowsRegistry::getRegistryData";
constexpr const char* kKey = "SOFTWARE\\Some\\Key";

class Registry : public testing::Test {
 protected:
  static WindowsRegistry::Hive machine() {
    return reinterpret_cast<WindowsRegistry::Hive>(HKEY_LOCAL_MACHINE);
  }

  [[nodiscard]] std::optional<std::uint32_t> number(const std::string& name,
                                                    WindowsRegistry::ValueType type = REG_DWORD) {
    std::uint32_t value = 99;
    const bool isRead = m_registry.getRegistryData(machine(), kKey, type, name, value);
    EXPECT_TRUE(isRead || value == 0) << "a failed read leaves the output empty";
    return isRead ? std::optional(value) : std::nullopt;
  }
  [[nodiscard]] std::optional<std::string> text(const std::string& name,
                                                WindowsRegistry::ValueType type = REG_SZ) {
    std::string value = "before";
    const bool isRead = m_registry.getRegistryData(machine(), kKey, type, name, value);
    EXPECT_TRUE(isRead || value.empty()) << "a failed read leaves the output empty";
    return isRead ? std::optional(value) : std::nullopt;
  }

  test::OwnMachineRegistry m_machine;
  WindowsRegistry m_registry;
};

TEST_F(Registry, HasNumbersAndTexts) {
  m_machine.writeNumber(kKey, "Number", 0xFEDCBA98);
  m_machine.writeText(kKey, "Text", "root/cimv2");

  EXPECT_THAT(number("Number"), Optional(0xFEDCBA98U));
  EXPECT_THAT(text("Text"), Optional(std::string("root/cimv2")));
}

TEST_F(Registry, LogsWhatItOpens) {
  m_machine.writeNumber(kKey, "Number", 1);
  const LogCapture log;
  static_cast<void>(number("Number"));

  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf(kSource, LogLevel::Debug, kFunction,
                                                    "Opennig key SOFTWARE\\Some\\Key (Number)")));
}

TEST_F(Registry, HasNothingUnderAMissingKeyAndDoesNotSpeakOfTheEntry) {
  const LogCapture log;

  EXPECT_EQ(number("Number"), std::nullopt);
  EXPECT_EQ(text("Text"), std::nullopt);
  EXPECT_THAT(log.messages(kFunction), ElementsAre("Opennig key SOFTWARE\\Some\\Key (Number)",
                                                   "Opennig key SOFTWARE\\Some\\Key (Text)"));
}

TEST_F(Registry, LogsAnEntryThatDoesNotExist) {
  m_machine.writeNumber(kKey, "Other", 1);
  const LogCapture log;

  EXPECT_EQ(number("Number"), std::nullopt);
  EXPECT_THAT(log.messages(kFunction), ElementsAre("Opennig key SOFTWARE\\Some\\Key (Number)",
                                                   "Number Registry Entry does not exist"));
}

TEST_F(Registry, HasNoValueOfAnotherTypeAndDoesNotLogIt) {
  m_machine.writeNumber(kKey, "Number", 5);
  m_machine.writeText(kKey, "Text", "5");
  m_machine.write(kKey, "Expand", REG_EXPAND_SZ, std::string("root\0", 5));
  m_machine.write(kKey, "Binary", REG_BINARY, std::string("\5\0\0\0", 4));
  m_machine.write(kKey, "Long", REG_QWORD, std::string("\5\0\0\0\0\0\0\0", 8));
  m_machine.write(kKey, "BigEndian", REG_DWORD_BIG_ENDIAN, std::string("\0\0\0\5", 4));
  m_machine.write(kKey, "Texts", REG_MULTI_SZ, std::string("5\0\0", 3));
  m_machine.write(kKey, "None", REG_NONE, std::string("\5\0\0\0", 4));
  const LogCapture log;

  for (const char* name : {"Text", "Expand", "Binary", "Long", "BigEndian", "Texts", "None"}) {
    EXPECT_EQ(number(name), std::nullopt) << name;
  }
  for (const char* name : {"Number", "Expand", "Binary", "Long", "BigEndian", "Texts", "None"}) {
    EXPECT_EQ(text(name), std::nullopt) << name;
  }
  EXPECT_THAT(log.messages(kFunction), testing::Each(testing::StartsWith("Opennig key ")));
}

TEST_F(Registry, HasNumbersAndTextsWhereTheirOwnTypeIsExpectedOnly) {
  m_machine.writeNumber(kKey, "Number", 5);
  m_machine.writeText(kKey, "Text", "5");
  m_machine.write(kKey, "Binary", REG_BINARY, std::string("\5\0\0\0", 4));

  EXPECT_EQ(number("Number", REG_SZ), std::nullopt);
  EXPECT_EQ(number("Text", REG_SZ), std::nullopt);
  EXPECT_EQ(number("Binary", REG_BINARY), std::nullopt);
  EXPECT_EQ(text("Text", REG_DWORD), std::nullopt);
  EXPECT_EQ(text("Number", REG_DWORD), std::nullopt);
  EXPECT_EQ(text("Binary", REG_BINARY), std::nullopt);
}

TEST_F(Registry, HasNoNumberOfAnotherSize) {
  m_machine.write(kKey, "Short", REG_DWORD, std::string("\5\0", 2));
  m_machine.write(kKey, "Long", REG_DWORD, std::string("\5\0\0\0\0\0\0\0", 8));
  m_machine.write(kKey, "Empty", REG_DWORD, "");

  for (const char* name : {"Short", "Long", "Empty"}) {
    EXPECT_EQ(number(name), std::nullopt) << name;
  }
}

TEST_F(Registry, HasTextsOfUpTo256BytesWithTheirEnd) {
  const std::string longest(255, 'x');
  m_machine.writeText(kKey, "Longest", longest);
  m_machine.writeText(kKey, "TooLong", longest + "x");
  const LogCapture log;

  EXPECT_THAT(text("Longest"), Optional(longest));
  EXPECT_EQ(text("TooLong"), std::nullopt);
  EXPECT_THAT(log.messages(kFunction), testing::Contains("TooLong Registry Entry does not exist"));
}

TEST_F(Registry, HasTextsThatAreStoredWithoutAnEnd) {
  m_machine.write(kKey, "Unended", REG_SZ, "root");
  m_machine.write(kKey, "Longest", REG_SZ, std::string(256, 'x'));
  m_machine.write(kKey, "Empty", REG_SZ, "");
  m_machine.write(kKey, "Two", REG_SZ, std::string("a\0b\0", 4));

  EXPECT_THAT(text("Unended"), Optional(std::string("root")));
  EXPECT_THAT(text("Longest"), Optional(std::string(256, 'x')));
  EXPECT_THAT(text("Empty"), Optional(std::string()));
  EXPECT_THAT(text("Two"), Optional(std::string("a")));
}

TEST_F(Registry, OpensAndClosesKeys) {
  m_machine.writeNumber(kKey, "Number", 5);
  WindowsRegistry::Handle key = nullptr;
  ASSERT_TRUE(m_registry.openKey(machine(), kKey, KEY_READ, key));

  EXPECT_EQ(RegQueryValueExA(static_cast<HKEY>(key), "Number", nullptr, nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
  m_registry.closeKey(key);
  EXPECT_EQ(RegQueryValueExA(static_cast<HKEY>(key), "Number", nullptr, nullptr, nullptr, nullptr),
            ERROR_INVALID_HANDLE);
  EXPECT_FALSE(m_registry.openKey(machine(), "SOFTWARE\\Absent", KEY_READ, key));
}

TEST_F(Registry, CreatesTextsWithTheirKeysAndLogsThem) {
  const LogCapture log;

  EXPECT_TRUE(m_registry.createTextValue(machine(), kKey, "Text", "100%s"));
  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf(kSource, LogLevel::Debug, "utils::WindowsRegistry::createTextValue",
                             "Creating REG_SZ registry key '80000002\\SOFTWARE\\Some\\Key' "
                             "with value '100%s'")));
  EXPECT_THAT(text("Text"), Optional(std::string("100%s")));
}

TEST_F(Registry, ReplacesTexts) {
  m_machine.writeNumber(kKey, "Text", 5);

  EXPECT_TRUE(m_registry.createTextValue(machine(), kKey, "Text", "one"));
  EXPECT_TRUE(m_registry.createTextValue(machine(), kKey, "Text", ""));
  EXPECT_THAT(text("Text"), Optional(std::string()));
}

TEST_F(Registry, DeletesKeysThatAreThere) {
  m_machine.writeText(kKey, "Text", "x");

  EXPECT_TRUE(m_registry.deleteKey(machine(), kKey));
  EXPECT_EQ(text("Text"), std::nullopt);
  EXPECT_FALSE(m_registry.deleteKey(machine(), kKey));
}

TEST_F(Registry, NamesTheKeysAndValuesUnderAKey) {
  m_machine.writeNumber(kKey, "Number", 5);
  m_machine.writeText(kKey, "AVeryMuchLongerName", "x");
  m_machine.writeText(std::string(kKey) + "\\A", "x", "x");
  m_machine.writeText(std::string(kKey) + "\\Below\\Deep", "x", "x");

  EXPECT_THAT(m_registry.enumerateKeys(machine(), kKey), UnorderedElementsAre("A", "Below"));
  EXPECT_THAT(m_registry.enumerateValues(machine(), kKey),
              UnorderedElementsAre("Number", "AVeryMuchLongerName"));
}

// Counts in units of which each is three bytes of a name.
LSTATUS WINAPI queryInWiderUnits(HKEY key, char* className, DWORD* classLength, DWORD* reserved,
                                 DWORD* keys, DWORD* longestKey, DWORD* longestClass, DWORD* values,
                                 DWORD* longestValue, DWORD* longestData, DWORD* securitySize,
                                 FILETIME* time) {
  const LSTATUS status =
      RegQueryInfoKeyA(key, className, classLength, reserved, keys, longestKey, longestClass,
                       values, longestValue, longestData, securitySize, time);
  for (DWORD* length : {longestKey, longestValue}) {
    if (length != nullptr) {
      *length /= 3;
    }
  }
  return status;
}

TEST_F(Registry, NamesWhatTakesSeveralBytesForACharacter) {
  m_machine.writeNumber(kKey, "ValueOfManyBytes", 5);
  m_machine.writeNumber(std::string(kKey) + "\\KeyOfManyBytes", "x", 5);
  const test::ImportPatch patch(kLibrary, "RegQueryInfoKeyA", &queryInWiderUnits);

  EXPECT_THAT(m_registry.enumerateKeys(machine(), kKey), ElementsAre("KeyOfManyBytes"));
  EXPECT_THAT(m_registry.enumerateValues(machine(), kKey), ElementsAre("ValueOfManyBytes"));
}

TEST_F(Registry, NamesNothingUnderAMissingOrAnEmptyKey) {
  EXPECT_THAT(m_registry.enumerateKeys(machine(), kKey), IsEmpty());
  EXPECT_THAT(m_registry.enumerateValues(machine(), kKey), IsEmpty());

  m_machine.writeText(kKey, "Text", "x");
  m_machine.removeValue(kKey, "Text");
  EXPECT_THAT(m_registry.enumerateKeys(machine(), kKey), IsEmpty());
  EXPECT_THAT(m_registry.enumerateValues(machine(), kKey), IsEmpty());
}

// What the registry's calls were, and which of them are to be refused.
struct KeyCalls {
  std::vector<HKEY> hives;
  std::vector<REGSAM> accesses;
  std::vector<HKEY> opened;
  std::vector<HKEY> closed;
  LSTATUS createStatus = ERROR_SUCCESS;
  LSTATUS setStatus = ERROR_SUCCESS;
};
KeyCalls s_calls;

LSTATUS WINAPI openKey(HKEY hive, const char* path, DWORD options, REGSAM access, HKEY* key) {
  s_calls.hives.push_back(hive);
  s_calls.accesses.push_back(access);
  const LSTATUS status = RegOpenKeyExA(hive, path, options, access, key);
  if (status == ERROR_SUCCESS) {
    s_calls.opened.push_back(*key);
  }
  return status;
}

LSTATUS WINAPI closeKey(HKEY key) {
  s_calls.closed.push_back(key);
  return RegCloseKey(key);
}

LSTATUS WINAPI createKey(HKEY hive, const char* path, DWORD reserved, char* className,
                         DWORD options, REGSAM access, SECURITY_ATTRIBUTES* attributes, HKEY* key,
                         DWORD* disposition) {
  if (s_calls.createStatus != ERROR_SUCCESS) {
    return s_calls.createStatus;
  }
  const LSTATUS status = RegCreateKeyExA(hive, path, reserved, className, options, access,
                                         attributes, key, disposition);
  s_calls.opened.push_back(*key);
  return status;
}

LSTATUS WINAPI setValue(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) {
  return s_calls.setStatus != ERROR_SUCCESS ? s_calls.setStatus
                                            : RegSetValueExA(key, name, reserved, type, data, size);
}

// A registry whose calls for keys are remembered.
class RegistryCalls : public Registry {
 protected:
  RegistryCalls() {
    m_machine.writeNumber(kKey, "Number", 5);
    m_machine.writeText(kKey, "TooLong", std::string(300, 'x'));
    s_calls = {};
  }

  bool createText() { return m_registry.createTextValue(machine(), kKey, "Text", "some"); }

 private:
  test::ImportPatch m_open{kLibrary, "RegOpenKeyExA", &openKey};
  test::ImportPatch m_close{kLibrary, "RegCloseKey", &closeKey};
  test::ImportPatch m_create{kLibrary, "RegCreateKeyExA", &createKey};
  test::ImportPatch m_set{kLibrary, "RegSetValueExA", &setValue};
};

TEST_F(RegistryCalls, OpenAKeyOfTheMachineToReadAndCloseItOnce) {
  EXPECT_THAT(number("Number"), Optional(5U));

  EXPECT_THAT(s_calls.hives, ElementsAre(HKEY_LOCAL_MACHINE));
  EXPECT_THAT(s_calls.accesses, ElementsAre(REGSAM{KEY_READ}));
  EXPECT_EQ(s_calls.opened.size(), 1U);
  EXPECT_EQ(s_calls.closed, s_calls.opened);
}

TEST_F(RegistryCalls, CloseAKeyOnceWhoseValueIsNotToBeHad) {
  EXPECT_EQ(number("Missing"), std::nullopt);
  EXPECT_EQ(text("Number"), std::nullopt);
  EXPECT_EQ(text("TooLong"), std::nullopt);

  EXPECT_EQ(s_calls.opened.size(), 3U);
  EXPECT_EQ(s_calls.closed, s_calls.opened);
}

TEST_F(RegistryCalls, CloseNoKeyThatCouldNotBeOpened) {
  std::uint32_t value = 99;
  EXPECT_FALSE(
      m_registry.getRegistryData(machine(), "SOFTWARE\\Absent", REG_DWORD, "Number", value));

  EXPECT_EQ(s_calls.hives.size(), 1U);
  EXPECT_THAT(s_calls.closed, IsEmpty());
}

TEST_F(RegistryCalls, CloseAKeyOnceInWhichATextWasCreated) {
  EXPECT_TRUE(createText());

  EXPECT_EQ(s_calls.opened.size(), 1U);
  EXPECT_EQ(s_calls.closed, s_calls.opened);
}

TEST_F(RegistryCalls, CloseAKeyOnceInWhichATextMayNotBeCreated) {
  s_calls.setStatus = ERROR_ACCESS_DENIED;
  const LogCapture log;

  EXPECT_FALSE(createText());
  EXPECT_EQ(s_calls.opened.size(), 1U);
  EXPECT_EQ(s_calls.closed, s_calls.opened);
  EXPECT_EQ(log.records().size(), 1U);
}

TEST_F(RegistryCalls, CloseNoKeyThatMayNotBeCreated) {
  s_calls.createStatus = ERROR_ACCESS_DENIED;
  const LogCapture log;

  EXPECT_FALSE(createText());
  EXPECT_THAT(s_calls.closed, IsEmpty());
  EXPECT_THAT(log.messages("utils::WindowsRegistry::createTextValue"),
              ElementsAre("Creating REG_SZ registry key '80000002\\SOFTWARE\\Some\\Key' "
                          "with value 'some'"));
}

TEST(RegistrySingleton, IsMadeOnFirstUse) {
  WindowsRegistry* registry = WindowsRegistry::getInstance();

  ASSERT_NE(registry, nullptr);
  EXPECT_EQ(WindowsRegistry::getInstance(), registry);
}

}  // namespace
