#include "midapi/BackendSet.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "midapi/AdapterFault.h"

namespace ma {
namespace {

using Members = std::vector<FlashBackend*>;

constexpr const char* kSharedAdvice =
    "remove the virtual one, or name one kind alone in the setting Adapters";

// A back end that cannot look has none: its trouble keeps nobody from the adapters of the others.
bool hasAdapter(FlashBackend& member, const AdapterAddress& adapter) {
  try {
    return member.hasAdapter(adapter);
  } catch (const FlashFault&) {
    return false;
  }
}

utils::StringArray portsOf(FlashBackend& member) {
  try {
    return member.enumerateAdapters();
  } catch (const FlashFault&) {
    return {};
  }
}

Members membersWith(const Members& members, const AdapterAddress& adapter) {
  Members found;
  std::copy_if(members.begin(), members.end(), std::back_inserter(found),
               [&adapter](FlashBackend* member) { return hasAdapter(*member, adapter); });
  return found;
}

AdapterList outlineOf(FlashBackend& member, OutlineDepth depth) {
  try {
    return member.outline(depth);
  } catch (const FlashFault&) {
    return {};
  }
}

void sortByAddress(AdapterList& list) {
  std::stable_sort(
      list.adapters.begin(), list.adapters.end(),
      [](const AdapterListing& one, const AdapterListing& other) { return one.pci < other.pci; });
}

// Leaves out what belongs to ports of adapters that several members have.
class Ownership {
 public:
  explicit Ownership(const Members& members) : m_members(members) {}

  [[nodiscard]] bool isShared(const AdapterAddress& adapter) {
    if (m_members.size() < 2) {
      return false;
    }
    if (!m_hasLast || m_last != adapter) {  // the ports of an adapter follow each other
      m_hasLast = true;
      m_last = adapter;
      m_isShared = membersWith(m_members, adapter).size() > 1;
    }
    return m_isShared;
  }

 private:
  const Members& m_members;
  // No optional: GCC 12, optimising, takes what it holds for uninitialised.
  bool m_hasLast = false;
  AdapterAddress m_last;
  bool m_isShared = false;
};

// The adapters of one back end are told where those of another cannot be.
AdapterList listOrProblem(FlashBackend& member) {
  try {
    return member.list();
  } catch (const AdapterFault& fault) {
    return {{},
            {{"a kind of adapters", fault.what(),
              "name the others alone in the setting "
              "Adapters"}}};
  }
}

std::string describeAll(const Members& owners, const AdapterAddress& adapter) {
  std::string text;
  for (FlashBackend* owner : owners) {
    text += (text.empty() ? " is " : " and ") + owner->describe(adapter);
  }
  return toString(adapter) + text;
}

}  // namespace

BackendSet::BackendSet(std::function<std::vector<FlashBackend*>()> members)
    : m_members(std::move(members)) {}

FlashBackend& BackendSet::memberFor(const AdapterAddress& adapter) {
  {
    const platform::Lock lock(m_mutex);
    if (const auto found = m_updates.find(adapter); found != m_updates.end()) {
      return *found->second;
    }
  }
  const Members members = m_members();
  if (members.size() == 1) {
    return *members.front();
  }
  const Members owners = membersWith(members, adapter);
  if (owners.size() > 1) {
    throw FlashFault(FlashError::Ambiguous, describeAll(owners, adapter));
  }
  // What nobody has is asked of the last one, which says why.
  return owners.empty() ? *members.back() : *owners.front();
}

std::string BackendSet::describe(const AdapterAddress& adapter) {
  return memberFor(adapter).describe(adapter);
}

bool BackendSet::hasAdapter(const AdapterAddress& adapter) {
  return !membersWith(m_members(), adapter).empty();
}

utils::StringArray BackendSet::enumerateAdapters() {
  const Members members = m_members();
  if (members.size() == 1) {
    return members.front()->enumerateAdapters();
  }
  Ownership ownership(members);
  std::set<PortId> ports;
  for (FlashBackend* member : members) {
    for (const std::string& text : portsOf(*member)) {
      const auto port = parseCanonicalPortId(text);
      if (port && !ownership.isShared(port->adapter)) {
        ports.insert(*port);
      }
    }
  }
  utils::StringArray names;
  std::transform(ports.begin(), ports.end(), std::back_inserter(names),
                 [](const PortId& port) { return toString(port); });
  return names;
}

AdapterList BackendSet::list() {
  const Members members = m_members();
  if (members.size() == 1) {
    return members.front()->list();
  }
  Ownership ownership(members);
  AdapterList all;
  std::set<AdapterAddress> shared;
  for (FlashBackend* member : members) {
    AdapterList list = listOrProblem(*member);
    for (AdapterListing& adapter : list.adapters) {
      const auto address = parseAdapterAddress(adapter.pci);
      if (address && ownership.isShared(*address)) {
        shared.insert(*address);
      } else {
        all.adapters.push_back(std::move(adapter));
      }
    }
    std::move(list.problems.begin(), list.problems.end(), std::back_inserter(all.problems));
  }
  for (const AdapterAddress& address : shared) {
    all.problems.push_back(
        {toString(address), describeAll(membersWith(members, address), address), kSharedAdvice});
  }
  sortByAddress(all);
  return all;
}

AdapterList BackendSet::outline(OutlineDepth depth) {
  const Members members = m_members();
  if (members.size() == 1) {
    return members.front()->outline(depth);
  }
  Ownership ownership(members);
  AdapterList all;
  for (FlashBackend* member : members) {
    for (AdapterListing& adapter : outlineOf(*member, depth).adapters) {
      const auto address = parseAdapterAddress(adapter.pci);
      if (address && !ownership.isShared(*address)) {
        all.adapters.push_back(std::move(adapter));
      }
    }
  }
  sortByAddress(all);
  return all;
}

std::vector<std::string> BackendSet::interruptedWrites() {
  std::vector<std::string> all;
  for (FlashBackend* member : m_members()) {
    std::vector<std::string> texts = member->interruptedWrites();
    std::move(texts.begin(), texts.end(), std::back_inserter(all));
  }
  return all;
}

std::vector<std::string> BackendSet::problems() {
  std::vector<std::string> all = interruptedWrites();
  const Members members = m_members();
  if (members.size() == 1) {
    return all;
  }
  std::set<AdapterAddress> known;
  for (FlashBackend* member : members) {
    for (const std::string& text : portsOf(*member)) {
      const auto port = parseCanonicalPortId(text);
      if (!port || !known.insert(port->adapter).second) {
        continue;
      }
      if (const Members owners = membersWith(members, port->adapter); owners.size() > 1) {
        all.push_back(describeAll(owners, port->adapter) + "; " + kSharedAdvice);
      }
    }
  }
  return all;
}

bool BackendSet::isUpdatable(const PortId& port) {
  return memberFor(port.adapter).isUpdatable(port);
}

std::vector<utils::FirmwareVersionInfo> BackendSet::installedFirmware(const PortId& port) {
  return memberFor(port.adapter).installedFirmware(port);
}

std::vector<FirmwareVersions> BackendSet::firmwareVersions(const PortId& port) {
  return memberFor(port.adapter).firmwareVersions(port);
}

void BackendSet::awaitAnswer(const AdapterAddress& adapter) {
  memberFor(adapter).awaitAnswer(adapter);
}

Preparation BackendSet::prepare(const PortId& port, ConstBytes file, std::span<std::uint8_t> buffer,
                                const std::vector<utils::FirmwareType>& types) {
  return memberFor(port.adapter).prepare(port, file, buffer, types);
}

ImageComparison BackendSet::compare(const PortId& port, ConstBytes file) {
  return memberFor(port.adapter).compare(port, file);
}

std::uint64_t BackendSet::digest(const PortId& port) {
  return memberFor(port.adapter).digest(port);
}

bool BackendSet::beginUpdate(const AdapterAddress& adapter) {
  FlashBackend& member = memberFor(adapter);
  {
    const platform::Lock lock(m_mutex);
    if (!m_updates.try_emplace(adapter, &member).second) {
      return false;
    }
  }
  bool hasBegun = false;
  try {
    hasBegun = member.beginUpdate(adapter);
  } catch (const std::exception&) {
    static_cast<void>(takeUpdate(adapter));
    throw;
  }
  if (!hasBegun) {
    static_cast<void>(takeUpdate(adapter));
  }
  return hasBegun;
}

void BackendSet::endUpdate(const AdapterAddress& adapter) noexcept {
  // Outside of the lock: what was not made is taken back, which takes its time.
  if (FlashBackend* const member = takeUpdate(adapter)) {
    member->endUpdate(adapter);
  }
}

FlashBackend* BackendSet::takeUpdate(const AdapterAddress& adapter) noexcept {
  const platform::Lock lock(m_mutex);
  const auto found = m_updates.find(adapter);
  if (found == m_updates.end()) {
    return nullptr;
  }
  FlashBackend* const member = found->second;
  m_updates.erase(found);
  return member;
}

void BackendSet::setBootType(const PortId& port, BootType bootType) {
  memberFor(port.adapter).setBootType(port, bootType);
}

void BackendSet::writeFlash(const PortId& port, ConstBytes image, WriteProgress& progress) {
  memberFor(port.adapter).writeFlash(port, image, progress);
}

void BackendSet::recordInstalled(const PortId& port,
                                 const std::vector<utils::FirmwareType>& types) {
  memberFor(port.adapter).recordInstalled(port, types);
}

Activation BackendSet::activate(const AdapterAddress& adapter) {
  return memberFor(adapter).activate(adapter);
}

}  // namespace ma
