#include "midapi/Virtual/AdapterUpdate.h"

#include <utility>

#include "midapi/Digest.h"
#include "midapi/Virtual/FlashWrite.h"
#include "platform/Texts.h"

namespace ma {
namespace {

ConstBytes bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

bool isOfAnAdapter(const std::string& name) {
  return name == "adapter.json" || name == "flash.rom" || name == "update.json";
}

std::unique_ptr<FileLock> lockAdapter(FileSystem& files, const AdapterFolder& folder,
                                      platform::Clock& clock) {
  try {
    auto lock = waitForLock(files, folder.lockPath(), clock);
    if (lock == nullptr) {
      throw FlashFault(FlashError::InputOutput, "another program is changing the adapter (" +
                                                    platform::toShownText(folder.lockPath()) +
                                                    "); try again when it is done");
    }
    return lock;
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

// Does what is left of an update. The caller has the adapter's lock. Any step may have been made
// before, and each may be the last one that is made.
void completeUpdate(FileSystem& files, const AdapterFolder& folder) {
  const auto journal = folder.journal();
  if (!journal) {
    return;
  }
  try {
    if (folder.isDecided(*journal)) {
      const std::filesystem::path flash = folder.path() / journal->flashName;
      if (files.exists(flash)) {
        files.replace(flash, folder.flashPath());
      }
      const std::string text = folder.descriptionText();
      const std::string changed = withChange(text, journal->change);
      if (changed != text) {
        replaceContent(files, folder.descriptionPath(), bytesOf(changed));
      }
    }
    files.remove(folder.journalPath());
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  } catch (const DescriptionFault& fault) {
    throw FlashFault(FlashError::InvalidDescription,
                     platform::toShownText(folder.descriptionPath()) +
                         ": an update of it cannot be completed: " + fault.what());
  }
}

}  // namespace

AdapterUpdate::AdapterUpdate(FileSystem& files, AdapterFolder folder, platform::Clock& clock)
    : m_files(files),
      m_folder(std::move(folder)),
      m_clock(clock),
      m_lock(lockAdapter(files, m_folder, clock)) {
  completeUpdate(m_files, m_folder);
  sweepTemporaryFiles(m_files, m_folder.path(), isOfAnAdapter);
}

void AdapterUpdate::setBootType(std::uint8_t function, BootType bootType) {
  const platform::Lock lock(m_mutex);
  m_change.bootTypes[function] = bootType;
}

void AdapterUpdate::setCapabilityWord(std::uint32_t word) {
  const platform::Lock lock(m_mutex);
  m_change.capabilityWord = word;
}

void AdapterUpdate::writeFlash(ConstBytes image, WriteProgress& progress) {
  const AdapterDescription description = m_folder.description();
  auto flash = std::make_unique<NewFlash>(m_files, m_folder);
  flash->size = image.size();
  flash->digest = digestOf(image);
  FlashWrite(m_files, m_folder, description, image, progress, m_clock).run(flash->file.path());
  const platform::Lock lock(m_mutex);
  m_flash = std::move(flash);
}

FileBytes AdapterUpdate::flashToBe() const {
  const platform::Lock lock(m_mutex);
  if (m_flash == nullptr) {
    return m_folder.flash();
  }
  try {
    return m_files.read(m_flash->file.path(), kMaxFlash);
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

void AdapterUpdate::commit() {
  std::unique_ptr<NewFlash> flash;
  DescriptionChange change;
  {
    const platform::Lock lock(m_mutex);
    flash = std::move(m_flash);
    change = std::exchange(m_change, {});
  }
  const std::string text = m_folder.descriptionText();
  const std::string changed = changedDescription(text, change);
  try {
    if (flash != nullptr && changed != text) {
      replaceAll(*flash, change, changed);
    } else if (flash != nullptr) {
      putInPlace(m_files, flash->file, m_folder.flashPath());
    } else if (changed != text) {
      TemporaryPath newDescription(m_files, temporaryName(m_folder.descriptionPath()));
      writeNewFile(m_files, newDescription.path(), bytesOf(changed));
      putInPlace(m_files, newDescription, m_folder.descriptionPath());
    }
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

std::string AdapterUpdate::changedDescription(const std::string& text,
                                              const DescriptionChange& change) const {
  static_cast<void>(m_folder.parse(text));
  try {
    return withChange(text, change);
  } catch (const DescriptionFault& fault) {
    throw FlashFault(
        FlashError::InvalidDescription,
        platform::toShownText(m_folder.descriptionPath()) +
            ": it stays as it is, for what was to be changed in it would not fit: " + fault.what());
  }
}

// All that needs room on the disk is done before the decision.
void AdapterUpdate::replaceAll(NewFlash& flash, const DescriptionChange& change,
                               const std::string& description) {
  TemporaryPath newDescription(m_files, temporaryName(m_folder.descriptionPath()));
  writeNewFile(m_files, newDescription.path(), bytesOf(description));
  decide(flash, change);
  flash.file.keep();
  try {
    m_files.replace(newDescription.path(), m_folder.descriptionPath());
    newDescription.keep();
    m_files.remove(m_folder.journalPath());
  } catch (const FileFault&) {
    // The journal stays, and with it the adapter is the new one already.
    return;
  }
}

// Returns when the adapter is the new one. When it fails, it is the old one.
void AdapterUpdate::decide(const NewFlash& flash, const DescriptionChange& change) {
  const UpdateJournal journal{flash.file.path().filename().string(), flash.size, flash.digest,
                              change};
  try {
    replaceContent(m_files, m_folder.journalPath(), bytesOf(formatJournal(journal)));
  } catch (const FileFault&) {
    giveUpJournal();
    throw;
  }
  try {
    m_files.replace(flash.file.path(), m_folder.flashPath());
  } catch (const FileFault& fault) {
    // Where that cannot be told, the journal stays and decides.
    if (!wasPlaced(m_files, flash.file.path(), fault).value_or(true)) {
      giveUpJournal();
      throw;
    }
  }
}

// A journal without its flash decides nothing: it is enough that one of both goes.
void AdapterUpdate::giveUpJournal() noexcept {
  try {
    m_files.remove(m_folder.journalPath());
  } catch (const FileFault&) {
    return;
  }
}

void settleUpdate(FileSystem& files, const AdapterFolder& folder) {
  try {
    if (!folder.journal()) {
      return;
    }
    if (const auto lock = files.lock(folder.lockPath())) {
      completeUpdate(files, folder);
    }
  } catch (const FlashFault&) {
    return;
  } catch (const FileFault&) {
    return;
  }
}

}  // namespace ma
