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

bool isOlderThanInstalled(const std::vector<const OptionRomImage*>& selected,
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
      return true;
    }
  }
  return false;
}

}  // namespace

bool isFirmwareOf(const AdapterFacts& adapter, const OptionRomImage& image) {
  return image.type != FirmwareType::None && isForAdapter(adapter, image);
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
  } else if (isOlderThanInstalled(selection.images, installed, adapter)) {
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

}  // namespace ma
