#include "midapi/Virtual/AdapterCache.h"

#include <algorithm>
#include <utility>

#include "midapi/Digest.h"
#include "midapi/Virtual/AdapterFolder.h"

namespace ma {
namespace {

using Identity = std::optional<FileIdentity>;

// Returns the identity of what was read between the two looks, nothing where that is in doubt.
Identity identityBetween(const Identity& before, const Identity& after) {
  return before == after ? before : std::nullopt;
}

}  // namespace

struct AdapterCache::Adapter {
  AdapterAddress address;
  std::filesystem::path path;  // of the description
  Identity identity;           // nothing: the description must be read again
  std::shared_ptr<const AdapterDescription> description;  // null: it cannot be read
};

struct AdapterCache::Snapshot {
  std::filesystem::path directory;
  Identity identity;  // nothing: the directory must be listed again
  // Ordered by address.
  std::vector<std::shared_ptr<const Adapter>> adapters;
  utils::StringArray ports;

  [[nodiscard]] std::shared_ptr<const Adapter> find(const AdapterAddress& address) const {
    const auto found =
        std::lower_bound(adapters.begin(), adapters.end(), address,
                         [](const std::shared_ptr<const Adapter>& adapter,
                            const AdapterAddress& wanted) { return adapter->address < wanted; });
    return found != adapters.end() && (*found)->address == address ? *found : nullptr;
  }
};

AdapterCache::AdapterCache(FileSystem& files) : m_files(files) {}

AdapterCache::~AdapterCache() = default;

utils::StringArray AdapterCache::ports(const std::filesystem::path& directory) {
  return current(directory)->ports;
}

std::vector<std::shared_ptr<const AdapterDescription>> AdapterCache::descriptions(
    const std::filesystem::path& directory) {
  const std::shared_ptr<const Snapshot> now = current(directory);
  std::vector<std::shared_ptr<const AdapterDescription>> descriptions;
  descriptions.reserve(now->adapters.size());
  for (const auto& adapter : now->adapters) {
    if (adapter->description != nullptr) {
      descriptions.push_back(adapter->description);
    }
  }
  return descriptions;
}

std::shared_ptr<const AdapterCache::Snapshot> AdapterCache::current(
    const std::filesystem::path& directory) {
  std::shared_ptr<const Snapshot> known = latest();
  // As texts: a comparison of paths takes them apart.
  if (known != nullptr && known->directory.native() != directory.native()) {
    known = nullptr;
  }
  if (known != nullptr && isCurrent(*known)) {
    return known;
  }
  std::shared_ptr<const Snapshot> seen = look(directory, known.get());
  keep(seen);
  return seen;
}

std::shared_ptr<const AdapterDescription> AdapterCache::description(
    const std::filesystem::path& directory, const AdapterAddress& address) {
  if (const auto known = latest();
      known != nullptr && known->directory.native() == directory.native()) {
    const auto adapter = known->find(address);
    if (adapter != nullptr && adapter->description != nullptr && isCurrent(*adapter)) {
      return adapter->description;
    }
  }
  return std::make_shared<AdapterDescription>(
      AdapterFolder(m_files, directory, address).description());
}

std::uint64_t AdapterCache::flashDigest(const std::filesystem::path& directory,
                                        const AdapterAddress& address) {
  const AdapterFolder folder(m_files, directory, address);
  if (folder.journal()) {  // soon it is another file, whichever it is now
    return digestOf(folder.flash().view());
  }
  const std::filesystem::path path = folder.flashPath();
  const Identity before = m_files.identity(path);
  if (before) {
    if (const auto known = findDigest(address, path, *before)) {
      return *known;
    }
  }
  const std::uint64_t digest = digestOf(folder.placedFlash().view());
  if (const Identity identity = identityBetween(before, m_files.identity(path))) {
    const platform::Lock lock(m_mutex);
    m_flashes.insert_or_assign(address, Flash{path, *identity, digest});
  }
  return digest;
}

std::shared_ptr<const AdapterCache::Snapshot> AdapterCache::latest() {
  const platform::Lock lock(m_mutex);
  return m_latest;
}

void AdapterCache::keep(const std::shared_ptr<const Snapshot>& seen) {
  const platform::Lock lock(m_mutex);
  m_latest = seen;
  std::erase_if(m_flashes,
                [&seen](const auto& flash) { return seen->find(flash.first) == nullptr; });
}

std::optional<std::uint64_t> AdapterCache::findDigest(const AdapterAddress& address,
                                                      const std::filesystem::path& path,
                                                      const FileIdentity& identity) {
  const platform::Lock lock(m_mutex);
  const auto found = m_flashes.find(address);
  const bool isKnown = found != m_flashes.end() && found->second.identity == identity &&
                       found->second.path.native() == path.native();
  return isKnown ? std::optional(found->second.digest) : std::nullopt;
}

bool AdapterCache::isCurrent(const Snapshot& known) const {
  return known.identity.has_value() && known.identity == m_files.identity(known.directory) &&
         std::all_of(known.adapters.begin(), known.adapters.end(),
                     [this](const auto& adapter) { return isCurrent(*adapter); });
}

bool AdapterCache::isCurrent(const Adapter& known) const {
  return known.identity.has_value() && known.identity == m_files.identity(known.path);
}

std::shared_ptr<const AdapterCache::Snapshot> AdapterCache::look(
    const std::filesystem::path& directory, const Snapshot* known) {
  const auto seen = std::make_shared<Snapshot>();
  seen->directory = directory;
  const Identity before = m_files.identity(directory);
  const AdapterFolders folders = listAdapterFolders(m_files, directory);
  if (!folders.hasLinks) {
    seen->identity = identityBetween(before, m_files.identity(directory));
  }
  seen->adapters.reserve(folders.addresses.size());
  for (const AdapterAddress& address : folders.addresses) {
    std::shared_ptr<const Adapter> adapter = known != nullptr ? known->find(address) : nullptr;
    if (adapter == nullptr || !isCurrent(*adapter)) {
      adapter = lookAt(directory, address);
    }
    if (adapter->description != nullptr) {
      for (const PortDescription& port : adapter->description->ports) {
        seen->ports.push_back(toString(PortId{address, port.function}));
      }
    }
    seen->adapters.push_back(std::move(adapter));
  }
  return seen;
}

std::shared_ptr<const AdapterCache::Adapter> AdapterCache::lookAt(
    const std::filesystem::path& directory, const AdapterAddress& address) {
  const AdapterFolder folder(m_files, directory, address);
  const auto seen = std::make_shared<Adapter>();
  seen->address = address;
  seen->path = folder.descriptionPath();
  const Identity before = m_files.identity(seen->path);
  try {
    seen->description = std::make_shared<AdapterDescription>(folder.description());
  } catch (const FlashFault& fault) {
    // The command line's list of adapters tells what is wrong with this one. What no longer can be
    // opened may be open to the next look; a text that is no description stays one.
    if (fault.code() != static_cast<std::uint32_t>(FlashError::InvalidDescription)) {
      return seen;
    }
  }
  seen->identity = identityBetween(before, m_files.identity(seen->path));
  return seen;
}

}  // namespace ma
