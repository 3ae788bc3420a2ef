#include "midapi/Virtual/AdapterFolder.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "midapi/BoundedJson.h"
#include "platform/Texts.h"

namespace ma {
namespace {

[[noreturn]] void failInvalid(const std::filesystem::path& path, const std::string& reason) {
  throw FlashFault(FlashError::InvalidDescription, platform::toShownText(path) + ": " + reason);
}

std::string toText(const FileBytes& bytes) {
  return {bytes.view().begin(), bytes.view().end()};
}

}  // namespace

AdapterFolder::AdapterFolder(FileSystem& files, const std::filesystem::path& adapters,
                             const AdapterAddress& address)
    : m_files(files), m_address(address), m_path(adapters / toFolderName(address)) {}

AdapterDescription AdapterFolder::description() const {
  return parse(descriptionText());
}

std::string AdapterFolder::descriptionText() const {
  try {
    return toText(m_files.read(descriptionPath(), kMaxJsonSize));
  } catch (const FileFault& fault) {
    if (fault.isMissingFile()) {
      throw FlashFault(FlashError::UnknownAdapter, toString(m_address) + " (" + fault.what() + ")");
    }
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

bool AdapterFolder::hasDescription() const {
  try {
    return m_files.exists(descriptionPath());
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

FileBytes AdapterFolder::flash() const {
  if (const auto update = journal()) {
    if (auto content = readIfThere(m_path / update->flashName, kMaxFlash)) {
      return std::move(*content);
    }
  }
  // The new one, too, where the update has just put it there.
  return placedFlash();
}

FileBytes AdapterFolder::placedFlash() const {
  return readIfThere(flashPath(), kMaxFlash).value_or(FileBytes());
}

AdapterState AdapterFolder::state() const {
  // Who updates again and again cannot keep a reader for ever.
  constexpr int kLooks = 5;
  for (int look = 1;; ++look) {
    const std::string before = decidedText();
    FileBytes content = flash();
    if (look == kLooks || decidedText() == before) {
      return {parse(before), std::move(content)};
    }
  }
}

std::optional<UpdateJournal> AdapterFolder::journal() const {
  try {
    if (!m_files.exists(journalPath())) {
      return std::nullopt;
    }
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
  const auto content = readIfThere(journalPath(), kMaxJsonSize);
  if (!content) {
    return std::nullopt;
  }
  try {
    return parseJournal(toText(*content));
  } catch (const DescriptionFault& fault) {
    failInvalid(journalPath(), std::string("it is no journal of an update, and is in the way of "
                                           "every update until it is removed: ") +
                                   fault.what());
  }
}

bool AdapterFolder::isDecided(const UpdateJournal& journal) const {
  try {
    return m_files.exists(m_path / journal.flashName) || journal.isNewFlash(placedFlash().view());
  } catch (const FileFault& fault) {
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

std::optional<FileBytes> AdapterFolder::readIfThere(const std::filesystem::path& path,
                                                    std::size_t maxSize) const {
  try {
    return m_files.read(path, maxSize);
  } catch (const FileFault& fault) {
    if (fault.isMissingFile()) {
      return std::nullopt;
    }
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

std::string AdapterFolder::decidedText() const {
  const auto update = journal();
  std::string text = descriptionText();
  if (!update || !isDecided(*update)) {
    return text;
  }
  try {
    return withChange(text, update->change);
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
