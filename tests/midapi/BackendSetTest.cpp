#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "midapi/AdapterFault.h"
#include "midapi/BackendSet.h"
#include "tests/support/Throws.h"

namespace {

using ma::AdapterAddress;
using ma::FlashFault;
using ma::PortId;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr AdapterAddress kKernels{0, 3, 0};
constexpr AdapterAddress kVirtual{0, 4, 0};
constexpr AdapterAddress kNobodys{0, 5, 0};
constexpr AdapterAddress kLast{1, 0, 0};

PortId firstPort(const AdapterAddress& adapter) {
  return {adapter, 0};
}

// Has adapters of two ports each, and notes what it is asked.
class NamedBackend final : public ma::FlashBackend {
 public:
  NamedBackend(std::string name, std::vector<AdapterAddress> addresses)
      : adapters(std::move(addresses)), m_name(std::move(name)) {}

  std::string describe(const AdapterAddress& /*adapter*/) override {
    return "a " + m_name + " one";
  }
  bool hasAdapter(const AdapterAddress& adapter) override {
    failWhereBlind();
    return std::find(adapters.begin(), adapters.end(), adapter) != adapters.end();
  }
  utils::StringArray enumerateAdapters() override {
    failWhereBlind();
    utils::StringArray ports;
    for (const AdapterAddress& adapter : adapters) {
      ports.push_back(toString(PortId{adapter, 0}));
      ports.push_back(toString(PortId{adapter, 1}));
    }
    return ports;
  }
  ma::AdapterList list() override {
    if (isBroken) {
      throw ma::AdapterFault(m_name + " is broken");
    }
    ma::AdapterList list;
    for (const AdapterAddress& adapter : adapters) {
      ma::AdapterListing listing;
      listing.pci = toString(adapter);
      listing.name = m_name;
      list.adapters.push_back(listing);
    }
    list.problems.push_back({m_name, "has a problem", "mend it"});
    return list;
  }
  ma::AdapterList outline(ma::OutlineDepth depth) override {
    failWhereBlind();
    ma::AdapterList outline = list();
    for (ma::AdapterListing& adapter : outline.adapters) {
      adapter.name += depth == ma::OutlineDepth::Flash ? " in depth" : " in outline";
    }
    return outline;
  }
  std::vector<std::string> interruptedWrites() override { return {m_name + " was interrupted"}; }
  bool isUpdatable(const PortId& port) override { return note("isUpdatable", port.adapter); }
  void awaitAnswer(const AdapterAddress& adapter) override { note("awaitAnswer", adapter); }
  std::vector<utils::FirmwareVersionInfo> installedFirmware(const PortId& port) override {
    note("installedFirmware", port.adapter);
    return {};
  }
  std::vector<ma::FirmwareVersions> firmwareVersions(const PortId& port) override {
    note("firmwareVersions", port.adapter);
    return {};
  }
  ma::Preparation prepare(const PortId& port, ma::ConstBytes /*file*/,
                          std::span<std::uint8_t> /*buffer*/,
                          const std::vector<utils::FirmwareType>& /*types*/) override {
    note("prepare", port.adapter);
    return {};
  }
  ma::ImageComparison compare(const PortId& port, ma::ConstBytes /*file*/) override {
    note("compare", port.adapter);
    return ma::ImageComparison::Newer;
  }
  std::uint64_t digest(const PortId& port) override {
    note("digest", port.adapter);
    return 1;
  }
  bool beginUpdate(const AdapterAddress& adapter) override {
    note("beginUpdate", adapter);
    if (hasNoMemory) {
      throw std::bad_alloc();
    }
    return hasAdapter(adapter);
  }
  void endUpdate(const AdapterAddress& adapter) noexcept override { note("endUpdate", adapter); }
  void setBootType(const PortId& port, ma::BootType /*bootType*/) override {
    note("setBootType", port.adapter);
  }
  void writeFlash(const PortId& port, ma::ConstBytes /*image*/,
                  ma::WriteProgress& /*progress*/) override {
    note("writeFlash", port.adapter);
  }
  void recordInstalled(const PortId& port,
                       const std::vector<utils::FirmwareType>& /*types*/) override {
    note("recordInstalled", port.adapter);
  }
  ma::Activation activate(const AdapterAddress& adapter) override {
    note("activate", adapter);
    return {};
  }

  std::vector<AdapterAddress> adapters;
  bool isBroken = false;
  bool isBlind = false;
  bool hasNoMemory = false;
  std::vector<std::string> calls;

 private:
  void failWhereBlind() const {
    if (isBlind) {
      throw FlashFault(ma::FlashError::InputOutput, m_name + " may not look");
    }
  }
  bool note(const std::string& call, const AdapterAddress& adapter) {
    calls.push_back(call + " " + toString(adapter));
    return true;
  }

  const std::string m_name;
};

class BackendSet : public testing::Test {
 protected:
  // Asks for everything that one adapter can be asked for.
  void askAll(const AdapterAddress& adapter) {
    const PortId port = firstPort(adapter);
    ma::WriteProgress progress;
    static_cast<void>(m_set.isUpdatable(port));
    static_cast<void>(m_set.installedFirmware(port));
    static_cast<void>(m_set.firmwareVersions(port));
    m_set.awaitAnswer(adapter);
    static_cast<void>(m_set.prepare(port, {}, {}, {}));
    static_cast<void>(m_set.compare(port, {}));
    static_cast<void>(m_set.digest(port));
    m_set.setBootType(port, ma::BootType::None);
    m_set.writeFlash(port, {}, progress);
    m_set.recordInstalled(port, {});
    static_cast<void>(m_set.activate(adapter));
  }
  static std::vector<std::string> allCalls(const AdapterAddress& adapter) {
    std::vector<std::string> calls;
    for (const char* call :
         {"isUpdatable", "installedFirmware", "firmwareVersions", "awaitAnswer", "prepare",
          "compare", "digest", "setBootType", "writeFlash", "recordInstalled", "activate"}) {
      calls.push_back(call + (" " + toString(adapter)));
    }
    return calls;
  }
  std::vector<std::string> names() {
    std::vector<std::string> texts;
    for (const ma::AdapterListing& adapter : m_set.list().adapters) {
      texts.push_back(adapter.pci + " " + adapter.name);
    }
    return texts;
  }
  std::vector<std::string> outlines(ma::OutlineDepth depth = ma::OutlineDepth::Description) {
    std::vector<std::string> texts;
    for (const ma::AdapterListing& adapter : m_set.outline(depth).adapters) {
      texts.push_back(adapter.pci + " " + adapter.name);
    }
    return texts;
  }
  std::vector<std::string> problems() {
    std::vector<std::string> texts;
    for (const ma::AdapterProblem& problem : m_set.list().problems) {
      texts.push_back(problem.place + ": " + problem.text);
    }
    return texts;
  }

  NamedBackend m_kernel{"kernel", {kKernels, kLast}};
  NamedBackend m_virtual{"virtual", {kVirtual}};
  std::vector<ma::FlashBackend*> m_members{&m_kernel, &m_virtual};
  ma::BackendSet m_set{[this] { return m_members; }};
};

TEST_F(BackendSet, ListsTheAdaptersOfAllByTheirAddresses) {
  EXPECT_THAT(m_set.enumerateAdapters(),
              ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:04:00.0", "0000:04:00.1",
                          "0001:00:00.0", "0001:00:00.1"));
  EXPECT_THAT(names(), ElementsAre("0000:03:00 kernel", "0000:04:00 virtual", "0001:00:00 kernel"));
  EXPECT_THAT(problems(), ElementsAre("kernel: has a problem", "virtual: has a problem"));
}

TEST_F(BackendSet, OutlinesTheAdaptersThatItEnumerates) {
  EXPECT_THAT(outlines(),
              ElementsAre("0000:03:00 kernel in outline", "0000:04:00 virtual in outline",
                          "0001:00:00 kernel in outline"));
  EXPECT_THAT(m_set.outline(ma::OutlineDepth::Description).problems, IsEmpty());
  m_virtual.adapters = {kKernels, kVirtual};
  EXPECT_THAT(outlines(),
              ElementsAre("0000:04:00 virtual in outline", "0001:00:00 kernel in outline"));
  m_virtual.isBlind = true;
  EXPECT_THAT(outlines(),
              ElementsAre("0000:03:00 kernel in outline", "0001:00:00 kernel in outline"));
  EXPECT_THAT(outlines(ma::OutlineDepth::Flash),
              ElementsAre("0000:03:00 kernel in depth", "0001:00:00 kernel in depth"));
  m_members = {&m_virtual};
  EXPECT_THROW(static_cast<void>(m_set.outline(ma::OutlineDepth::Flash)), FlashFault);
}

TEST_F(BackendSet, TellsTheInterruptedWritesOfAll) {
  EXPECT_THAT(m_set.interruptedWrites(),
              ElementsAre("kernel was interrupted", "virtual was interrupted"));
}

TEST_F(BackendSet, AsksTheOneThatHasTheAdapter) {
  askAll(kKernels);
  EXPECT_EQ(m_kernel.calls, allCalls(kKernels));
  EXPECT_THAT(m_virtual.calls, IsEmpty());

  askAll(kVirtual);
  EXPECT_EQ(m_virtual.calls, allCalls(kVirtual));
  EXPECT_EQ(m_kernel.calls, allCalls(kKernels));
  EXPECT_EQ(m_set.describe(kVirtual), "a virtual one");
}

TEST_F(BackendSet, AsksTheLastOneForWhatNobodyHas) {
  askAll(kNobodys);
  EXPECT_EQ(m_virtual.calls, allCalls(kNobodys));
  EXPECT_FALSE(m_set.hasAdapter(kNobodys));
  EXPECT_TRUE(m_set.hasAdapter(kLast));
}

TEST_F(BackendSet, LeavesOutWhatTwoHaveAndNamesBoth) {
  m_virtual.adapters = {kKernels, kVirtual};
  const auto fault = test::ThrowsExactly<FlashFault>(
      "Two adapters have one address: 0000:03:00 is a kernel one and a virtual one");

  EXPECT_THAT(m_set.enumerateAdapters(),
              ElementsAre("0000:04:00.0", "0000:04:00.1", "0001:00:00.0", "0001:00:00.1"));
  EXPECT_THAT(names(), ElementsAre("0000:04:00 virtual", "0001:00:00 kernel"));
  EXPECT_THAT(problems(), testing::Contains("0000:03:00: 0000:03:00 is a kernel one and a "
                                            "virtual one"));
  EXPECT_THAT([this] { static_cast<void>(m_set.isUpdatable(firstPort(kKernels))); }, fault);
  EXPECT_THAT([this] { static_cast<void>(m_set.beginUpdate(kKernels)); }, fault);
  EXPECT_THAT([this] { m_set.setBootType(firstPort(kKernels), ma::BootType::None); }, fault);
  EXPECT_THAT(m_kernel.calls, IsEmpty());
  EXPECT_THAT(m_virtual.calls, IsEmpty());
}

TEST_F(BackendSet, OfOneIsThatOne) {
  m_members = {&m_virtual};
  m_virtual.adapters = {kKernels};

  EXPECT_THAT(m_set.enumerateAdapters(), ElementsAre("0000:03:00.0", "0000:03:00.1"));
  EXPECT_THAT(names(), ElementsAre("0000:03:00 virtual"));
  askAll(kKernels);
  EXPECT_EQ(m_virtual.calls, allCalls(kKernels));
  m_virtual.isBroken = true;
  EXPECT_THAT([this] { static_cast<void>(m_set.list()); },
              test::ThrowsExactly<ma::AdapterFault>("virtual is broken"));
}

TEST_F(BackendSet, ListsTheOthersWhereOneCannotTell) {
  m_virtual.isBroken = true;

  EXPECT_THAT(names(), ElementsAre("0000:03:00 kernel", "0001:00:00 kernel"));
  EXPECT_THAT(problems(),
              ElementsAre("kernel: has a problem", "a kind of adapters: virtual is broken"));
}

TEST_F(BackendSet, HasTheAdaptersOfTheOthersWhereOneMayNotLook) {
  m_virtual.isBlind = m_virtual.isBroken = true;

  EXPECT_THAT(m_set.enumerateAdapters(),
              ElementsAre("0000:03:00.0", "0000:03:00.1", "0001:00:00.0", "0001:00:00.1"));
  EXPECT_THAT(names(), ElementsAre("0000:03:00 kernel", "0001:00:00 kernel"));
  EXPECT_TRUE(m_set.isUpdatable(firstPort(kKernels)));
  EXPECT_THAT(m_kernel.calls, ElementsAre("isUpdatable 0000:03:00"));
}

TEST_F(BackendSet, TellsOfInterruptedWritesAndOfAddressesThatTwoHave) {
  m_virtual.adapters = {kKernels, kVirtual};
  EXPECT_THAT(m_set.problems(),
              ElementsAre("kernel was interrupted", "virtual was interrupted",
                          "0000:03:00 is a kernel one and a virtual one; remove the virtual one, "
                          "or name one kind alone in the setting Adapters"));
}

TEST_F(BackendSet, BeginsAgainWhatCouldNotBegin) {
  m_kernel.hasNoMemory = true;
  EXPECT_THROW(static_cast<void>(m_set.beginUpdate(kKernels)), std::bad_alloc);
  m_kernel.hasNoMemory = false;
  EXPECT_TRUE(m_set.beginUpdate(kKernels));
}

TEST_F(BackendSet, EndsAnUpdateWhereItHasBegun) {
  ASSERT_TRUE(m_set.beginUpdate(kKernels));
  EXPECT_FALSE(m_set.beginUpdate(kKernels));
  m_members = {&m_virtual};  // and no longer asked which adapters it has
  m_kernel.calls.clear();

  ma::WriteProgress progress;
  m_set.writeFlash(firstPort(kKernels), {}, progress);
  m_set.endUpdate(kKernels);
  m_set.endUpdate(kKernels);
  EXPECT_THAT(m_kernel.calls, ElementsAre("writeFlash 0000:03:00", "endUpdate 0000:03:00"));
  EXPECT_THAT(m_virtual.calls, IsEmpty());
  EXPECT_FALSE(m_set.beginUpdate(kKernels));
}

}  // namespace
