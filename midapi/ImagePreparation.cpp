#include "midapi/ImagePreparation.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <set>

namespace ma {
namespace {

using utils::FirmwareType;

bool isForAdapter(const AdapterFacts& adapter, const OptionRomImage& image) {
  return image.isFor(adapter.vendor, adapter.device);
}

std::set<FirmwareType> typesOf(const RomChain& chain, const AdapterFacts& adapter) {
  std::set<FirmwareType> types;
  for (const OptionRomImage& image : chain.images) {
    if (isFirmwareOf(adapter, image)) {
      types.insert(image.type);
    }
  }
  return types;
}

std::optional<OlderImage> findOlder(const std::vector<const OptionRomImage*>& selected,
                                    const RomChain& installed, const AdapterFacts& adapter) {
  std::map<FirmwareType, std::vector<utils::FirmwareVersion>> versions;
  for (const OptionRomImage& image : installed.images) {
    if (isFirmwareOf(adapter, image)) {
      versions[image.type].push_back(image.version);
    }
  }
  std::map<FirmwareType, std::size_t> compared;
  for (const OptionRomImage* image : selected) {
    const auto ofType = versions.find(image->type);
    if (!isFirmwareOf(adapter, *image) || ofType == versions.end()) {
      continue;
    }
    const std::size_t index = std::min(compared[image->type]++, ofType->second.size() - 1);
    if (image->version < ofType->second[index]) {
      return OlderImage{image->type, image->version, ofType->second[index]};
    }
  }
  return std::nullopt;
}

}  // namespace

bool isFirmwareOf(const AdapterFacts& adapter, const OptionRomImage& image) {
  return image.type != FirmwareType::None && isForAdapter(adapter, image);
}

std::vector<utils::FirmwareVersionInfo> firmwareOf(const AdapterFacts& adapter,
                                                   const RomChain& chain) {
  std::vector<utils::FirmwareVersionInfo> versions;
  for (const OptionRomImage& image : chain.images) {
    if (isFirmwareOf(adapter, image)) {
      versions.push_back({image.type, image.version});
    }
  }
  return versions;
}

PrepareStatus checkAdapter(const RomChain& file, const AdapterFacts& adapter) {
  if (std::none_of(file.images.begin(), file.images.end(),
                   [&](const OptionRomImage& image) { return isForAdapter(adapter, image); })) {
    return PrepareStatus::NotForAdapter;
  }
  return adapter.isUpdatable ? PrepareStatus::Ok : PrepareStatus::NotUpdatable;
}

ImageSelection selectImages(const RomChain& file, const RomChain& installed,
                            const AdapterFacts& adapter, const std::vector<FirmwareType>& types) {
  std::set<FirmwareType> wanted(types.begin(), types.end());
  wanted.erase(FirmwareType::None);
  const std::set<FirmwareType> offered = typesOf(file, adapter);

  ImageSelection selection;
  for (const OptionRomImage& image : file.images) {
    if (types.empty() || (isFirmwareOf(adapter, image) && wanted.contains(image.type))) {
      selection.images.push_back(&image);
    }
  }
  const bool typesFit =
      types.empty() ? offered == typesOf(installed, adapter)
                    : !selection.images.empty() && std::includes(offered.begin(), offered.end(),
                                                                 wanted.begin(), wanted.end());
  if (!typesFit) {
    selection.status = PrepareStatus::TypesDiffer;
  } else if ((selection.older = findOlder(selection.images, installed, adapter))) {
    selection.status = PrepareStatus::Downgrade;
  }
  return selection;
}

std::optional<std::uint32_t> copyImages(RomBytes file,
                                        const std::vector<const OptionRomImage*>& images,
                                        std::span<std::uint8_t> buffer) {
  std::size_t filled = 0;
  for (const OptionRomImage* image : images) {
    if (image->length > buffer.size() - filled) {
      return std::nullopt;
    }
    const auto target = buffer.subspan(filled, image->length);
    std::memcpy(target.data(), file.data() + image->offset, image->length);
    if (!setLastImageBit(target, *image, image == images.back())) {
      return std::nullopt;
    }
    filled += image->length;
  }
  return static_cast<std::uint32_t>(filled);
}

ImageComparison compareImages(const AdapterFacts& adapter, RomBytes image, RomBytes flash) {
  const RomChain chain = parseRomChain(flash);
  const RomBytes installed = flash.first(chain.length);
  if (std::ranges::equal(image, installed)) {
    return ImageComparison::SameContent;
  }
  return firmwareOf(adapter, parseRomChain(image)) == firmwareOf(adapter, chain)
             ? ImageComparison::SameVersion
             : ImageComparison::Newer;
}

ImageComparison comparisonOf(PrepareStatus refusal) {
  switch (refusal) {
    case PrepareStatus::InvalidImage:
    case PrepareStatus::NotForAdapter:
      return ImageComparison::NotForAdapter;
    case PrepareStatus::NotUpdatable:
      return ImageComparison::NotUpdatable;
    case PrepareStatus::TypesDiffer:
      return ImageComparison::TypesDiffer;
    case PrepareStatus::Downgrade:
      return ImageComparison::Older;
    case PrepareStatus::InternalFault:
    case PrepareStatus::Ok:
      break;
  }
  return ImageComparison::Unknown;
}

}  // namespace ma
