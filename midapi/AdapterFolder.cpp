#include "midapi/AdapterFolder.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "midapi/BoundedJson.h"
#include "midapi/TemporaryFiles.h"
#include "platform/Texts.h"

namespace ma {
namespace {

[[noreturn]] void failInvalid(const std::filesystem::path& path, const std::string& reason) {
  throw FlashFault(FlashError::InvalidDescription, platform::toShownText(path) + ": " + reason);
}

}  // namespace

AdapterFolder::AdapterFolder(FileSystem& files, const std::filesystem::path& adapters,
                             const AdapterAddress& address)
    : m_files(files), m_address(address), m_path(adapters / toFolderName(address)) {}

AdapterDescription AdapterFolder::description() const {
  return parse(descriptionText());
}

bool AdapterFolder::hasDescription() const {
  try {
    return m_files.exists(descriptionPath());
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

FileBytes AdapterFolder::flash() const {
  try {
    return m_files.read(flashPath(), kMaxFlash);
  } catch (const FileFault& fault) {
    if (fault.isMissingFile()) {
      return {};
    }
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

void AdapterFolder::storeBootType(std::uint8_t function, BootType bootType) const {
  changeDescription(
      [&](const std::string& text) { return withBootType(text, function, bootType); });
}

void AdapterFolder::storeCapabilityWord(std::uint32_t word) const {
  changeDescription([&](const std::string& text) { return withCapabilityWord(text, word); });
}

template <class Change>
void AdapterFolder::changeDescription(Change change) const {
  const std::string text = descriptionText();
  static_cast<void>(parse(text));
  try {
    const std::string changed = change(text);
    replaceContent(m_files, descriptionPath(),
                   {reinterpret_cast<const std::uint8_t*>(changed.data()), changed.size()});
  } catch (const DescriptionFault& fault) {
    failInvalid(descriptionPath(),
                std::string("it stays as it is, for what was to be changed in it would not fit: ") +
                    fault.what());
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

std::string AdapterFolder::descriptionText() const {
  try {
    const FileBytes content = m_files.read(descriptionPath(), kMaxJsonSize);
    return std::string(content.view().begin(), content.view().end());
  } catch (const FileFault& fault) {
    if (fault.isMissingFile()) {
      throw FlashFault(FlashError::UnknownAdapter, toString(m_address) + " (" + fault.what() + ")");
    }
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

AdapterDescription AdapterFolder::parse(const std::string& text) const {
  try {
    AdapterDescription description = parseDescription(text);
    if (description.pci != m_address) {
      throw DescriptionFault("field pci: is " + toString(description.pci) + ", but the folder is " +
                             toString(m_address) + "'s");
    }
    return description;
  } catch (const DescriptionFault& fault) {
    failInvalid(descriptionPath(), fault.what());
  }
}

AdapterFolders listAdapterFolders(FileSystem& files, const std::filesystem::path& directory) {
  Folders folders;
  try {
    folders = files.folders(directory);
  } catch (const FileFault& fault) {
    if (fault.isMissingFile()) {
      return {};
    }
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
  AdapterFolders found;
  found.hasLinks = folders.hasLinks;
  for (std::filesystem::path& name : folders.names) {
    const std::string shown = platform::toShownText(name);
    // The text of another name may look like an address.
    if (const auto address = parseFolderName(shown); address && name == shown) {
      found.addresses.push_back(*address);
    } else {
      found.strangers.push_back(std::move(name));
    }
  }
  std::sort(found.addresses.begin(), found.addresses.end());
  return found;
}

}  // namespace ma
