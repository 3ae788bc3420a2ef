#include "tests/torture/PowerLoss.h"

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "tests/torture/SystemCalls.h"

namespace test {
namespace {

// The last are by chance: enough to meet most of what may be kept of one call.
constexpr Loss kLosses[] = {Loss::All,  Loss::Contents, Loss::Some,
                            Loss::Some, Loss::Some,     Loss::Some};

std::vector<Change> changesOfUpdate(Victim& victim, const Victim::Firmware& wanted) {
  watchSystemCalls(victim.folder().string(), {});
  const bool isDone = victim.update(wanted);
  ignoreSystemCalls();
  if (!isDone || watchedChanges().size() < 12) {
    throw std::runtime_error("an update in peace is not seen");
  }
  return watchedChanges();
}

}  // namespace

LossCounts losePower(Victim& victim, Disk::Random& random, std::string& doing) {
  LossCounts counts;
  const Victim::Firmware& wanted = victim.other(victim.look());
  Disk disk(victim.files());
  const std::vector<Change> changes = changesOfUpdate(victim, wanted);
  for (std::size_t done = 0; done <= changes.size(); ++done) {
    doing = "a power loss behind change " + std::to_string(done);
    if (done > 0) {
      disk.apply(changes[done - 1]);
    }
    for (const Loss loss : kLosses) {
      victim.replaceFiles(disk.filesAfter(loss, random));
      const bool isNew = &victim.look() == &wanted;
      if (done == changes.size() && !isNew) {
        throw std::runtime_error("the update was done, and is lost");
      }
      ++(isNew ? counts.news : counts.olds);
    }
    victim.updateInPeace();
  }
  return counts;
}

}  // namespace test
