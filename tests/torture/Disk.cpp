#include "tests/torture/Disk.h"

#include <stdexcept>
#include <utility>

namespace test {
namespace {

bool toss(Disk::Random& random) {
  return random() % 2 == 0;
}

}  // namespace

Disk::Disk(const Files& files) : m_names(namesOf(files)), m_keptNames(m_names) {}

Disk::Names Disk::namesOf(const Files& files) {
  Names names;
  for (const auto& [path, content] : files) {
    names[path] = std::make_shared<File>(File{content, content});
  }
  return names;
}

void Disk::apply(const Change& change) {
  const std::string& name = change.kind == Change::Kind::Rename ? change.from : change.path;
  const bool isOfFile =
      change.kind != Change::Kind::Make && change.kind != Change::Kind::SyncFolder;
  if (isOfFile && !m_names.contains(name)) {
    throw std::runtime_error("a call changes " + name + ", which was not made by one");
  }
  switch (change.kind) {
    case Change::Kind::Write:
      m_names[name]->content += change.bytes;
      return;
    case Change::Kind::SyncFile:
      m_names[name]->kept = m_names[name]->content;
      return;
    case Change::Kind::SyncFolder:
      m_keptNames = m_names;
      m_nameChanges.clear();
      return;
    case Change::Kind::Make:
      m_nameChanges.push_back({change, std::make_shared<File>()});
      break;
    case Change::Kind::Rename:
    case Change::Kind::Remove:
      m_nameChanges.push_back({change, m_names[name]});
      break;
  }
  apply(m_nameChanges.back().change, m_nameChanges.back().file, m_names);
}

void Disk::apply(const Change& change, const std::shared_ptr<File>& file, Names& names) {
  if (change.kind == Change::Kind::Rename) {
    names.erase(change.from);
  }
  if (change.kind == Change::Kind::Remove) {
    names.erase(change.path);
  } else {
    names[change.path] = file;
  }
}

Disk::Files Disk::filesAfter(Loss loss, Random& random) const {
  Names names = m_keptNames;
  for (const NameChange& change : m_nameChanges) {
    if (loss == Loss::Contents || (loss == Loss::Some && toss(random))) {
      apply(change.change, change.file, names);
    }
  }
  Files files;
  for (const auto& [path, file] : names) {
    files[path] = contentAfter(*file, loss, random);
  }
  return files;
}

std::string Disk::contentAfter(const File& file, Loss loss, Random& random) {
  if (loss != Loss::Some || file.content == file.kept || toss(random)) {
    return file.kept;
  }
  return toss(random) ? file.content : file.content.substr(0, random() % file.content.size());
}

}  // namespace test
