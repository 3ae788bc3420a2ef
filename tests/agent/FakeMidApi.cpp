#include "tests/agent/FakeMidApi.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "tests/support/WaitUntil.h"

namespace test {
namespace {

FakeMidApi* s_current = nullptr;

std::string toText(const std::vector<utils::FirmwareType>& types) {
  std::string text = "[";
  for (const utils::FirmwareType type : types) {
    text += (text.size() > 1 ? " " : "") + std::to_string(static_cast<int>(type));
  }
  return text + "]";
}

std::string toText(const std::uint8_t* bytes, std::uint32_t count) {
  return "'" + std::string(bytes, bytes + count) + "'";
}

bool give(const FakeMidApi::Answer& answer, std::uint32_t& errorCode, std::string& errorText) {
  errorCode = answer.code;
  errorText = answer.text;
  return answer.isDone;
}

}  // namespace

FakeMidApi::FakeMidApi() {
  s_current = this;
}

FakeMidApi::~FakeMidApi() {
  s_current = nullptr;
}

FakeMidApi& FakeMidApi::current() {
  if (s_current == nullptr) {
    std::abort();
  }
  return *s_current;
}

void FakeMidApi::holdWrites() {
  const platform::Lock lock(m_mutex);
  m_isHolding = true;
}

bool FakeMidApi::awaitHeldWrite() {
  const auto deadline = std::chrono::steady_clock::now() + kDeadline;
  const platform::Lock lock(m_mutex);
  while (m_heldWrites == 0) {
    if (m_changed.wait_until(m_mutex, deadline) == std::cv_status::timeout) {
      return m_heldWrites > 0;
    }
  }
  return true;
}

void FakeMidApi::releaseWrites() {
  const platform::Lock lock(m_mutex);
  m_isHolding = false;
  m_changed.notify_all();
}

void FakeMidApi::passWrite() {
  const platform::Lock lock(m_mutex);
  ++m_heldWrites;
  m_changed.notify_all();
  while (m_isHolding) {
    m_changed.wait(m_mutex);
  }
  --m_heldWrites;
}

std::vector<std::string> FakeMidApi::calls() const {
  const platform::Lock lock(m_mutex);
  return m_calls;
}

std::string FakeMidApi::updates() const {
  const platform::Lock lock(m_mutex);
  return m_updates;
}

void FakeMidApi::noteUpdate(const std::string& event) {
  const platform::Lock lock(m_mutex);
  m_updates += event + " after " + std::to_string(m_calls.size()) + " calls; ";
}

void FakeMidApi::note(const std::string& call) {
  const platform::Lock lock(m_mutex);
  m_calls.push_back(call);
}

std::vector<std::uint8_t> bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

}  // namespace test

namespace ma {

using test::FakeMidApi;

void useSettings(SettingsReader /*reader*/) {}

utils::StringArray enumerateAdapters() {
  FakeMidApi::current().note("enumerateAdapters");
  return FakeMidApi::current().adapters;
}

void getAdapterFirmwareVersion(const std::string& adapter,
                               std::vector<utils::FirmwareVersionInfo>& versions) {
  FakeMidApi::current().note("getAdapterFirmwareVersion " + adapter);
  versions = FakeMidApi::current().installed;
}

// "dddd:bb:ss.f"
utils::PCIAddr getPCIAddress(const std::string& adapter) {
  FakeMidApi::current().note("getPCIAddress " + adapter);
  const auto number = [&adapter](std::size_t at, std::size_t digits) {
    return static_cast<std::uint8_t>(std::stoul(adapter.substr(at, digits), nullptr, 16));
  };
  return {number(5, 2), number(8, 2), number(11, 1)};
}

// "dddd:bb:ss" is the adapter.
bool isSameAdapter(const std::string& one, const std::string& other) {
  return one.substr(0, 10) == other.substr(0, 10);
}

bool getCanBeUpdated(const std::string& adapter) {
  FakeMidApi::current().note("getCanBeUpdated " + adapter);
  return FakeMidApi::current().fixedAdapters.count(adapter) == 0;
}

FlashUpdate::FlashUpdate(const std::string& adapter) : m_adapter(adapter), m_hasBegun(true) {
  FakeMidApi::current().noteUpdate("begin " + adapter);
}

FlashUpdate::~FlashUpdate() {
  try {
    FakeMidApi::current().noteUpdate(m_hasBegun ? "end " + m_adapter : "");
  } catch (const std::bad_alloc&) {
    return;  // of a test that has just that
  }
}

bool setBootType(const std::string& adapter, BootType bootType, std::string& errorText) {
  FakeMidApi& fake = FakeMidApi::current();
  fake.note("setBootType " + adapter + " " + std::to_string(static_cast<std::uint32_t>(bootType)));
  errorText = fake.bootTypeReason.empty() ? "" : fake.bootTypeReason + " " + adapter;
  return fake.setBootTypeAnswer;
}

PrepareStatus prepareFlashImage(const std::string& adapter, const std::uint8_t* file,
                                std::uint32_t fileSize, std::uint8_t* image,
                                std::uint32_t& imageSize,
                                const std::vector<utils::FirmwareType>& types) {
  FakeMidApi& fake = FakeMidApi::current();
  fake.note("prepareFlashImage " + adapter + " " + test::toText(file, fileSize) + " into " +
            std::to_string(imageSize) + " " + test::toText(types));
  if (fake.onPrepare) {
    fake.onPrepare();
  }
  const std::vector<std::uint8_t> prepared =
      fake.prepared.value_or(std::vector<std::uint8_t>(file, file + fileSize));
  std::copy(prepared.begin(), prepared.end(), image);
  imageSize = static_cast<std::uint32_t>(prepared.size());
  return fake.prepareStatus;
}

std::string explainFlashImage(const std::string& /*adapter*/, const std::uint8_t* /*file*/,
                              std::uint32_t /*fileSize*/,
                              const std::vector<utils::FirmwareType>& /*types*/) {
  return FakeMidApi::current().reason;
}

bool writeFlashImage(const std::string& adapter, const std::uint8_t* image, std::uint32_t imageSize,
                     std::uint32_t& errorCode, std::string& errorText) {
  FakeMidApi& fake = FakeMidApi::current();
  fake.note("writeFlashImage " + adapter + " " + test::toText(image, imageSize));
  fake.passWrite();
  if (fake.onWrite) {
    fake.onWrite();
  }
  return test::give(fake.writeAnswer, errorCode, errorText);
}

std::uint32_t getFlashImageUpdateProgress(const std::string& /*adapter*/) {
  FakeMidApi& fake = FakeMidApi::current();
  const std::uint32_t progress = fake.progress;
  if (fake.onProgress) {
    fake.onProgress();
  }
  return progress;
}

std::string getFlashImageUpdateRemark(const std::string& /*adapter*/) {
  return FakeMidApi::current().remark;
}

bool updateCapabilityWord(const std::string& adapter, std::vector<utils::FirmwareType> types,
                          std::uint32_t& errorCode, std::string& errorText) {
  FakeMidApi& fake = FakeMidApi::current();
  fake.note("updateCapabilityWord " + adapter + " " + test::toText(types));
  return test::give(fake.capabilityWordAnswer, errorCode, errorText);
}

}  // namespace ma
