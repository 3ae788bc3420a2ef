// The flash library as its callers see it: linked from the shared library, through ma:: alone.

#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <set>
#include <thread>

#include "midapi/MidApi.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/midapi/RealRoms.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/RomParser.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::BootType;
using ma::compareFlashImage;
using ma::digestAdapter;
using ma::enumerateAdapters;
using ma::getAdapterFirmwareVersion;
using ma::getCanBeUpdated;
using ma::getFlashImageUpdateProgress;
using ma::getPCIAddress;
using ma::ImageComparison;
using ma::isSameAdapter;
using ma::prepareFlashImage;
using ma::PrepareStatus;
using ma::setBootType;
using ma::updateCapabilityWord;
using ma::writeFlashImage;
using test::Bytes;
using test::RomBuilder;
using test::RomDamage;
using test::RomImage;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using utils::FirmwareType;
using utils::FirmwareVersionInfo;

constexpr const char* kPci = "0000:03:00";
constexpr const char* kPort = "0000:03:00.0";
constexpr const char* kSibling = "0000:03:00.1";

RomImage pxe(std::uint8_t version) {
  return RomImage::legacy().version(version, 0).seed(version);
}
RomImage uefi(std::uint8_t version) {
  return RomImage::efi().version(version, 0).seed(version);
}
RomImage iscsi(std::uint8_t version) {
  return pxe(version).product("Maker iSCSI");
}

// Adapter 0000:03:00 holds PXE 2.0 and UEFI 2.0.
class MidApi : public testing::Test {
 protected:
  MidApi() { m_adapters.makeAdapter(kPci, RomBuilder().add(pxe(2)).add(uefi(2)).build()); }

  PrepareStatus prepare(const Bytes& file, const std::vector<FirmwareType>& types = {},
                        const char* port = kPort) {
    return prepareInto(file.size(), file, types, port);
  }
  PrepareStatus prepareInto(std::size_t bufferSize, const Bytes& file,
                            const std::vector<FirmwareType>& types = {}, const char* port = kPort) {
    m_image.assign(bufferSize, 0xEE);
    auto size = static_cast<std::uint32_t>(bufferSize);
    const PrepareStatus status = prepareFlashImage(
        port, file.data(), static_cast<std::uint32_t>(file.size()), m_image.data(), size, types);
    m_image.resize(size);
    return status;
  }
  PrepareStatus prepare(const RomBuilder& file, const std::vector<FirmwareType>& types = {}) {
    return prepare(file.build(), types);
  }
  ImageComparison compare(const Bytes& file, const char* port = kPort) {
    return compareFlashImage(port, file.data(), static_cast<std::uint32_t>(file.size()));
  }
  ImageComparison compare(const RomBuilder& file) { return compare(file.build()); }
  bool write(const Bytes& image, const std::string& port = kPort) {
    m_code = 12345;
    m_text = "unset";
    return writeFlashImage(port, image.data(), static_cast<std::uint32_t>(image.size()), m_code,
                           m_text);
  }
  bool updateWord(const std::vector<FirmwareType>& types, const std::string& port = kPort) {
    m_code = 12345;
    m_text = "unset";
    return updateCapabilityWord(port, types, m_code, m_text);
  }
  std::vector<FirmwareVersionInfo> installed(const std::string& port = kPort) {
    std::vector<FirmwareVersionInfo> versions(7);
    getAdapterFirmwareVersion(port, versions);
    return versions;
  }
  unsigned long word() { return std::stoul(m_adapters.get(kPci, "/capabilityWord")); }

  test::AdapterFixture m_adapters;
  test::AdaptersVariable m_variable{m_adapters.directory()};
  Bytes m_image;
  std::uint32_t m_code = 0;
  std::string m_text;
};

TEST_F(MidApi, FollowsTheEnvironmentAtEachCall) {
  EXPECT_THAT(enumerateAdapters(), ElementsAre(kPort, kSibling));
  {
    const test::AdaptersVariable elsewhere(m_adapters.directory() / "none");
    EXPECT_THAT(enumerateAdapters(), IsEmpty());
    EXPECT_FALSE(getCanBeUpdated(kPort));
  }
  EXPECT_THAT(enumerateAdapters(), ElementsAre(kPort, kSibling));
}

TEST_F(MidApi, OutlinesTheAdaptersThatItEnumerates) {
  m_adapters.set(kPci, "/updatable", "false");
  const std::vector<ma::AdapterListing> outlines = ma::outlineAdapters();
  ASSERT_EQ(outlines.size(), 1U);
  EXPECT_EQ(outlines[0].pci, kPci);
  EXPECT_FALSE(outlines[0].isUpdatable);
  EXPECT_THAT(outlines[0].components, IsEmpty());
  ASSERT_TRUE(setBootType(kSibling, BootType::Fcoe));
  EXPECT_EQ(ma::outlineAdapters()[0].ports.at(1).bootType, BootType::Fcoe);
  std::filesystem::remove_all(m_adapters.directory());
  EXPECT_THAT(ma::outlineAdapters(), IsEmpty());
}

TEST_F(MidApi, AnswersWithoutAdaptersWhereTheDirectoryIsAFile) {
  const test::AdaptersVariable file(m_adapters.folder(kPci) / "flash.rom");
  EXPECT_THAT(enumerateAdapters(), IsEmpty());
  EXPECT_THAT(installed(), IsEmpty());
}

TEST_F(MidApi, TellsWhatIsInstalledInFlashOrder) {
  EXPECT_THAT(installed(), ElementsAre(FirmwareVersionInfo{FirmwareType::Pxe, {2, 0}},
                                       FirmwareVersionInfo{FirmwareType::Uefi, {2, 0}}));
  EXPECT_EQ(installed(kSibling), installed());
}

TEST_F(MidApi, TellsNothingInstalledOnUnknownAdaptersAndInvalidFlash) {
  EXPECT_THAT(installed("0000:09:00.0"), IsEmpty());
  EXPECT_THAT(installed("0000:03:00.7"), IsEmpty());
  EXPECT_THAT(installed("nonsense"), IsEmpty());
  m_adapters.makeAdapter(kPci, RomBuilder().add(pxe(1)).damage(0, RomDamage::ByteSum).build());
  EXPECT_THAT(installed(), IsEmpty());
}

TEST_F(MidApi, LeavesImagesOfOtherDevicesAndUnknownTypesOutOfTheInstalledOnes) {
  m_adapters.makeAdapter(kPci, RomBuilder()
                                   .add(uefi(1).device(0x10EC, 0x8139))
                                   .add(RomImage::ofCodeType(1))
                                   .add(iscsi(3))
                                   .build());
  EXPECT_THAT(installed(), ElementsAre(FirmwareVersionInfo{FirmwareType::Iscsi, {3, 0}}));
}

TEST_F(MidApi, TakesPciAddressesFromIdentifiers) {
  EXPECT_EQ(getPCIAddress("0000:af:1f.7"), (utils::PCIAddr{0xAF, 0x1F, 7}));
  EXPECT_EQ(getPCIAddress("0000:AF:1f.7"), utils::PCIAddr{});
  EXPECT_EQ(getPCIAddress(""), utils::PCIAddr{});
}

TEST_F(MidApi, TellsPortsOfOneAdapterFromThoseOfAnotherSegmentBusOrDevice) {
  EXPECT_TRUE(isSameAdapter("0000:03:00.0", "0000:03:00.7"));
  EXPECT_TRUE(isSameAdapter("0000:03:00.0", "0000:03:00.0"));
  EXPECT_FALSE(isSameAdapter("0000:03:00.0", "0001:03:00.0"));
  EXPECT_FALSE(isSameAdapter("0000:03:00.0", "0000:04:00.0"));
  EXPECT_FALSE(isSameAdapter("0000:03:00.0", "0000:03:01.0"));
  EXPECT_FALSE(isSameAdapter("nonsense", "nonsense"));
}

TEST_F(MidApi, TellsWhetherAnAdapterCanBeUpdated) {
  EXPECT_TRUE(getCanBeUpdated(kPort));
  m_adapters.set(kPci, "/updatable", "false");
  EXPECT_FALSE(getCanBeUpdated(kPort));
  EXPECT_FALSE(getCanBeUpdated("0000:09:00.0"));
}

TEST_F(MidApi, SetsTheBootTypeOfOnePort) {
  EXPECT_TRUE(setBootType(kSibling, BootType::Iscsi));
  EXPECT_EQ(m_adapters.get(kPci, "/ports/1/bootType"), "2");
  EXPECT_EQ(m_adapters.get(kPci, "/ports/0/bootType"), "1");
  EXPECT_FALSE(setBootType("0000:03:00.5", BootType::Pxe));
  EXPECT_FALSE(setBootType("0000:09:00.0", BootType::Pxe));
  EXPECT_FALSE(setBootType(kPort, static_cast<BootType>(5)));
}

TEST_F(MidApi, SaysWhyABootTypeCannotBeSet) {
  std::string text = "before";
  EXPECT_TRUE(setBootType(kSibling, BootType::Iscsi, text));
  EXPECT_EQ(text, "");
  EXPECT_FALSE(setBootType("0000:09:00.0", BootType::Pxe, text));
  EXPECT_THAT(text, HasSubstr("The adapter is not known: 0000:09:00"));
  EXPECT_FALSE(setBootType(kPort, static_cast<BootType>(5), text));
  EXPECT_EQ(text, "5 is no boot type");
}

TEST_F(MidApi, ChecksInItsOrder) {
  const Bytes foreign = RomBuilder().add(pxe(1).device(0x10EC, 0x8139)).build();
  m_adapters.set(kPci, "/updatable", "false");
  EXPECT_EQ(prepare(Bytes(100, 'x'), {}, "0000:09:00.0"), PrepareStatus::InvalidImage);
  EXPECT_EQ(prepare(foreign, {}, "0000:09:00.0"), PrepareStatus::InternalFault);
  EXPECT_EQ(prepare(foreign, {FirmwareType::Clp}), PrepareStatus::NotForAdapter);
  EXPECT_EQ(prepare(RomBuilder().add(pxe(1)), {FirmwareType::Clp}), PrepareStatus::NotUpdatable);
  EXPECT_THAT(m_image, IsEmpty());
  m_adapters.set(kPci, "/updatable", "true");
  EXPECT_EQ(prepare(RomBuilder().add(pxe(1)), {FirmwareType::Pxe, FirmwareType::Clp}),
            PrepareStatus::TypesDiffer);
  EXPECT_EQ(prepare(RomBuilder().add(pxe(1)), {FirmwareType::Pxe}), PrepareStatus::Downgrade);
  EXPECT_EQ(prepare(RomBuilder().add(pxe(2)), {FirmwareType::Pxe}), PrepareStatus::Ok);
}

TEST_F(MidApi, RefusesEveryKindOfDamage) {
  EXPECT_EQ(prepare(Bytes()), PrepareStatus::InvalidImage);
  for (const RomDamage damage :
       {RomDamage::Signature, RomDamage::PcirPointerOutside, RomDamage::PcirPointerInHeader,
        RomDamage::PcirSignature, RomDamage::PcirTooShort, RomDamage::PcirEndsOutside,
        RomDamage::LengthZero, RomDamage::LengthBeyondFile, RomDamage::HeaderLength,
        RomDamage::DeviceListOutside, RomDamage::DeviceListUnended, RomDamage::PnpSum,
        RomDamage::PnpTooShort, RomDamage::PnpOutside, RomDamage::ByteSum,
        RomDamage::EarlyLastBit}) {
    EXPECT_EQ(prepare(RomBuilder().add(pxe(2)).add(uefi(2)).damage(0, damage)),
              PrepareStatus::InvalidImage)
        << static_cast<int>(damage);
    EXPECT_THAT(m_image, IsEmpty());
  }
}

TEST_F(MidApi, FillsTheImageWhereTheCallerMayAcceptIt) {
  const Bytes older = RomBuilder().add(pxe(1)).add(uefi(1)).build();
  EXPECT_EQ(prepare(older), PrepareStatus::Downgrade);
  EXPECT_EQ(m_image, older);
  const Bytes other = RomBuilder().add(iscsi(1)).trailing(512, 0).build();
  EXPECT_EQ(prepare(other), PrepareStatus::TypesDiffer);
  EXPECT_EQ(m_image, Bytes(other.begin(), other.begin() + 1024));
  EXPECT_EQ(prepare(other, {FirmwareType::None}), PrepareStatus::TypesDiffer);
  EXPECT_THAT(m_image, IsEmpty());
}

TEST_F(MidApi, ReportsAFaultOfItsOwn) {
  const Bytes file = RomBuilder().add(pxe(2)).add(uefi(2)).build();
  EXPECT_EQ(prepareInto(file.size() - 1, file), PrepareStatus::InternalFault);
  EXPECT_THAT(m_image, IsEmpty());
  EXPECT_EQ(prepareInto(file.size(), file), PrepareStatus::Ok);
  EXPECT_EQ(prepare(file, {}, "0000:03:00.5"), PrepareStatus::InternalFault);
  EXPECT_EQ(prepare(file, {}, "0000:03:00"), PrepareStatus::InternalFault);
  EXPECT_EQ(prepare(Bytes(100, 'x'), {}, "0000:03:00"), PrepareStatus::InvalidImage);
  m_adapters.set(kPci, "/ports", "[]");
  EXPECT_EQ(prepare(file), PrepareStatus::InternalFault);
}

TEST_F(MidApi, ComparesAFileWithTheFlash) {
  const Bytes installed = m_adapters.flash(kPci);
  Bytes padded = installed;
  padded.resize(padded.size() + 512, 0xFF);

  EXPECT_EQ(compare(installed), ImageComparison::SameContent);
  EXPECT_EQ(compare(padded), ImageComparison::SameContent);
  EXPECT_EQ(compare(RomBuilder().add(pxe(2).seed(9)).add(uefi(2))), ImageComparison::SameVersion);
  EXPECT_EQ(compare(RomBuilder().add(pxe(2)).add(uefi(3))), ImageComparison::Newer);
  EXPECT_EQ(compare(RomBuilder().add(pxe(3)).add(uefi(1))), ImageComparison::Older);
  EXPECT_EQ(compare(RomBuilder().add(pxe(3))), ImageComparison::TypesDiffer);
  EXPECT_EQ(compare(RomBuilder().add(pxe(3).device(0x10EC, 0x8139))),
            ImageComparison::NotForAdapter);
  EXPECT_EQ(compare(Bytes(100, 'x')), ImageComparison::NotForAdapter);
  for (const char* unknown : {"0000:09:00.0", "nonsense"}) {
    EXPECT_EQ(compare(installed, unknown), ImageComparison::Unknown);
  }
  EXPECT_EQ(compare(Bytes(100, 'x'), "nonsense"), ImageComparison::NotForAdapter);

  m_adapters.makeAdapter(kPci, padded);
  EXPECT_EQ(compare(installed), ImageComparison::SameContent);
  m_adapters.set(kPci, "/updatable", "false");
  EXPECT_EQ(compare(installed), ImageComparison::NotUpdatable);
}

TEST_F(MidApi, HasADigestOfAllThatAComparisonDependsOn) {
  const std::uint64_t before = digestAdapter(kPort);
  EXPECT_NE(before, 0u);
  EXPECT_EQ(digestAdapter(kSibling), before);
  EXPECT_TRUE(setBootType(kPort, BootType::Uefi));
  EXPECT_EQ(digestAdapter(kPort), before);
  EXPECT_EQ(digestAdapter("0000:09:00.0"), 0u);

  std::set<std::uint64_t> digests{before};
  for (const char* const fact : {"/vendorId", "/deviceId"}) {
    for (const char* const value : {"\"0001\"", "\"0100\""}) {
      const std::string old = m_adapters.get(kPci, fact);
      m_adapters.set(kPci, fact, value);
      EXPECT_TRUE(digests.insert(digestAdapter(kPort)).second) << fact << value;
      m_adapters.set(kPci, fact, old);
    }
  }
  m_adapters.set(kPci, "/updatable", "false");
  EXPECT_TRUE(digests.insert(digestAdapter(kPort)).second);
  m_adapters.set(kPci, "/updatable", "true");
  m_adapters.makeAdapter(kPci, RomBuilder().add(pxe(2).seed(9)).add(uefi(2)).build());
  EXPECT_TRUE(digests.insert(digestAdapter(kPort)).second);
}

TEST_F(MidApi, ComparesWithoutATraceInTheProgress) {
  const Bytes file = RomBuilder().add(pxe(3)).add(uefi(3)).build();
  ASSERT_EQ(prepare(file), PrepareStatus::Ok);
  ASSERT_TRUE(write(m_image)) << m_text;

  EXPECT_EQ(compare(file), ImageComparison::SameContent);

  EXPECT_EQ(getFlashImageUpdateProgress(kPort), 100U);
}

TEST_F(MidApi, FlashesExactlyWhatItPrepared) {
  const RomBuilder file = RomBuilder().add(pxe(3)).add(iscsi(3)).add(uefi(3));
  ASSERT_EQ(prepare(file, {FirmwareType::Iscsi, FirmwareType::Pxe}), PrepareStatus::Ok);
  ASSERT_TRUE(write(m_image)) << m_text;
  EXPECT_EQ(m_code, 0U);
  EXPECT_EQ(m_text, "");
  EXPECT_EQ(m_adapters.flash(kPci), m_image);
  const test::ParsedRom judged = test::parseRom(m_adapters.flash(kPci));
  EXPECT_TRUE(judged.isValid()) << judged;
  EXPECT_THAT(judged.types(), ElementsAre(FirmwareType::Pxe, FirmwareType::Iscsi));
  EXPECT_THAT(installed(kSibling), ElementsAre(FirmwareVersionInfo{FirmwareType::Pxe, {3, 0}},
                                               FirmwareVersionInfo{FirmwareType::Iscsi, {3, 0}}));
}

TEST_F(MidApi, RefusesWritesThatCannotSucceed) {
  const Bytes before = m_adapters.flash(kPci);
  const Bytes image(10, 1);
  EXPECT_FALSE(write(Bytes()));
  EXPECT_EQ(m_code, 204U);
  EXPECT_THAT(m_text, HasSubstr("The flash image is empty"));
  EXPECT_FALSE(write(image, "0000:09:00.0"));
  EXPECT_EQ(m_code, 201U);
  EXPECT_FALSE(write(image, "nonsense"));
  EXPECT_EQ(m_code, 201U);
  m_adapters.set(kPci, "/updatable", "false");
  EXPECT_FALSE(write(image));
  EXPECT_EQ(m_code, 203U);
  EXPECT_THAT(m_text, HasSubstr(kPort));
  EXPECT_EQ(m_adapters.flash(kPci), before);
}

TEST_F(MidApi, RefusesAnImageThatCouldNotBeReadAgain) {
  const Bytes before = m_adapters.flash(kPci);
  constexpr std::uint32_t kTooLarge = (256U << 20) + 1;
  // Nobody looks at it, so the system need not find the memory.
  const auto image = std::make_unique_for_overwrite<std::uint8_t[]>(kTooLarge);
  EXPECT_FALSE(writeFlashImage(kPort, image.get(), kTooLarge, m_code, m_text));
  EXPECT_EQ(m_code, 207U);
  EXPECT_THAT(m_text, HasSubstr("0000:03:00.0 takes 268435456 bytes, and the image has 268435457"));
  EXPECT_EQ(m_adapters.flash(kPci), before);
}

TEST_F(MidApi, ReportsAnInjectedFault) {
  m_adapters.set(kPci, "/faults", R"({"write": {"atPercent": 40, "code": 17, "text": "broken"}})");
  const Bytes before = m_adapters.flash(kPci);
  EXPECT_FALSE(write(Bytes(1000, 1)));
  EXPECT_EQ(m_code, 17U);
  EXPECT_EQ(m_text, "broken");
  EXPECT_EQ(getFlashImageUpdateProgress(kPort), 40U);
  EXPECT_EQ(m_adapters.flash(kPci), before);
}

TEST_F(MidApi, ForgetsTheProgressOfTheLastWriteWhenTheNextImageIsPrepared) {
  const Bytes file = RomBuilder().add(pxe(3)).add(uefi(3)).build();
  ASSERT_EQ(prepare(file), PrepareStatus::Ok);
  std::uint32_t code = 0;
  std::string text;
  ASSERT_TRUE(
      writeFlashImage(kPort, file.data(), static_cast<std::uint32_t>(file.size()), code, text));
  ASSERT_EQ(getFlashImageUpdateProgress(kPort), 100U);

  ASSERT_EQ(prepare(file), PrepareStatus::Ok);
  EXPECT_EQ(getFlashImageUpdateProgress(kPort), 0U);
}

TEST_F(MidApi, ShowsTheProgressOfAWriteOnAllPortsOfTheAdapter) {
  m_adapters.makeAdapter("0000:07:00", {});
  m_adapters.set("0000:07:00", "/writeRate", "500000");
  const Bytes image(100000, 1);
  auto writing = std::async(std::launch::async, [&] { return write(image, "0000:07:00.0"); });
  std::vector<std::uint32_t> seen;
  while (writing.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
    seen.push_back(getFlashImageUpdateProgress("0000:07:00.1"));
  }
  EXPECT_TRUE(writing.get()) << m_text;
  EXPECT_EQ(getFlashImageUpdateProgress("0000:07:00.1"), 100U);
  EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
  EXPECT_GE(std::set(seen.begin(), seen.end()).size(), 3U);
  EXPECT_EQ(getFlashImageUpdateProgress("0000:08:00.0"), 0U);
  EXPECT_EQ(getFlashImageUpdateProgress("nonsense"), 0U);
  EXPECT_EQ(ma::getFlashImageUpdateRemark("0000:07:00.1"), "");
  EXPECT_EQ(ma::getFlashImageUpdateRemark("nonsense"), "");
}

TEST_F(MidApi, AnswersQueriesWhileAnotherThreadWrites) {
  m_adapters.set(kPci, "/faults", R"({"hang": {"atPercent": 30}})");
  const Bytes next = RomBuilder().add(pxe(9).units(30)).build();
  const auto before = installed();
  ASSERT_FALSE(before.empty());
  const std::vector<FirmwareVersionInfo> after = {{FirmwareType::Pxe, {9, 0}}};
  auto writing = std::async(std::launch::async, [&] { return write(next); });
  EXPECT_TRUE(test::waitUntil([] { return getFlashImageUpdateProgress(kSibling) >= 30; }));
  for (int look = 0; look < 4; ++look) {
    EXPECT_EQ(installed(), before);
    EXPECT_TRUE(getCanBeUpdated(kSibling));
  }
  m_adapters.set(kPci, "/faults", "{}");
  // The flash is replaced while it is read.
  do {
    EXPECT_THAT(installed(), AnyOf(before, after));
    EXPECT_TRUE(getCanBeUpdated(kSibling));
  } while (writing.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready);
  EXPECT_TRUE(writing.get()) << m_text;
  EXPECT_EQ(installed(), after);
}

TEST_F(MidApi, RecordsTheTypesThatItIsGiven) {
  EXPECT_TRUE(updateWord({FirmwareType::Uefi, FirmwareType::None, FirmwareType::Clp}));
  EXPECT_EQ(m_code, 0U);
  EXPECT_EQ(m_text, "");
  EXPECT_EQ(word(), 1U << 4 | 1U << 1);
  EXPECT_TRUE(updateWord({FirmwareType::Fcoe, static_cast<FirmwareType>(77)}));
  EXPECT_EQ(word(), 1U << 5);
}

TEST_F(MidApi, RecordsTheInstalledTypesWhenItIsGivenNone) {
  EXPECT_TRUE(updateWord({}));
  EXPECT_EQ(word(), 1U << 3 | 1U << 4);
  m_adapters.makeAdapter(kPci, RomBuilder().add(iscsi(1)).build());
  EXPECT_TRUE(updateWord({FirmwareType::None}));
  EXPECT_EQ(word(), 1U << 2);
  m_adapters.makeAdapter(kPci, Bytes(100, 0xFF));
  EXPECT_TRUE(updateWord({}));
  EXPECT_EQ(word(), 0U);
}

TEST_F(MidApi, ReportsACapabilityWordThatFails) {
  EXPECT_TRUE(updateWord({FirmwareType::Pxe}));
  m_adapters.set(kPci, "/faults", R"({"capabilityWord": {"code": 18, "text": "locked"}})");
  EXPECT_FALSE(updateWord({FirmwareType::Uefi}));
  EXPECT_EQ(m_code, 18U);
  EXPECT_EQ(m_text, "locked");
  EXPECT_EQ(word(), 1U << 3);
  EXPECT_FALSE(updateWord({FirmwareType::Uefi}, "0000:09:00.0"));
  EXPECT_EQ(m_code, 201U);
}

class MidApiRealRom : public MidApi {
 protected:
  void SetUp() override {
    m_legacy = test::realRom("pxe-virtio.rom");
    m_combined = test::realRom("efi-virtio.rom");
    m_foreign = test::realRom("efi-rtl8139.rom");
    if (!m_legacy || !m_combined || !m_foreign) {
      GTEST_SKIP() << test::kNoRealRoms;
    }
    m_adapters.makeAdapter(kPci, *m_combined);
  }

  std::optional<Bytes> m_legacy;
  std::optional<Bytes> m_combined;
  std::optional<Bytes> m_foreign;
};

TEST_F(MidApiRealRom, SelectsTheLegacyImageAsItsOwnFileHasIt) {
  ASSERT_EQ(prepare(*m_combined, {FirmwareType::Pxe}), PrepareStatus::Ok);
  EXPECT_TRUE(m_image == *m_legacy);
  ASSERT_TRUE(write(m_image)) << m_text;
  EXPECT_TRUE(m_adapters.flash(kPci) == *m_legacy);
  EXPECT_THAT(installed(), ElementsAre(FirmwareVersionInfo{FirmwareType::Pxe, {0, 1}}));
}

TEST_F(MidApiRealRom, TakesTheCombinedFileAsItIs) {
  ASSERT_EQ(prepare(*m_combined), PrepareStatus::Ok);
  EXPECT_TRUE(m_image == *m_combined);
  EXPECT_TRUE(test::parseRom(m_image).isValid());
}

TEST_F(MidApiRealRom, RefusesTheRomOfAnotherDevice) {
  EXPECT_EQ(prepare(*m_foreign), PrepareStatus::NotForAdapter);
}

}  // namespace
