#include "midapi/Kernel/DriverInquiry.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>

namespace ma {
namespace {

using State = AskingChild::State;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kNone{0};
constexpr milliseconds kLeastPatience{10};

// Runs errands until all is known, or the child keeps silent.
State run(FunctionInquiry& inquiry, AskingChild& child, milliseconds patience) {
  while (const auto order = inquiry.next()) {
    child.send(order->errand, order->bytes);
    const State state = child.await(patience);
    if (state != State::Replied) {
      return state;
    }
    inquiry.take(child.reply());
  }
  return State::Replied;
}

DriverAnswer answerOfAway(const std::optional<SystemTime>& since) {
  DriverAnswer answer;
  answer.isAway = true;
  answer.silentSince = since;
  return answer;
}

DriverAnswer failed(int error) {
  DriverAnswer answer;
  answer.error = error;
  answer.isPartial = true;
  answer.vpd.error = answer.rom.error = EBUSY;
  return answer;
}

}  // namespace

// What the functions of one ask have in common.
struct DriverInquiry::Round {
  milliseconds patience;
  DevlinkLookup devlink;
  std::optional<AskingChild> child;       // that has nothing to do
  std::optional<SystemTime> silentSince;  // of the last part that is waited for
};

// The right to ask for some functions.
class DriverInquiry::Turn {
 public:
  Turn(DriverInquiry& owner, std::span<const DriverQuestion> questions) : m_owner(owner) {
    for (const DriverQuestion& question : questions) {
      m_functions.insert(question.function.id);
    }
    // Made before they count as asked: nobody takes back half of them where memory runs out.
    std::set<PortId> asked = m_functions;
    const platform::Lock lock(m_owner.m_mutex);
    while (isAnyAsked()) {
      m_owner.m_isFree.wait(m_owner.m_mutex);
    }
    m_owner.m_asked.merge(asked);
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    {
      const platform::Lock lock(m_owner.m_mutex);
      for (const PortId& function : m_functions) {
        m_owner.m_asked.erase(function);
      }
    }
    m_owner.m_isFree.notify_all();
  }

 private:
  bool isAnyAsked() const ORVEX_REQUIRES(m_owner.m_mutex) {
    return std::any_of(m_functions.begin(), m_functions.end(),
                       [this](const PortId& function) ORVEX_REQUIRES(m_owner.m_mutex) {
                         return m_owner.m_asked.contains(function);
                       });
  }

  DriverInquiry& m_owner;
  std::set<PortId> m_functions;
};

std::vector<DriverAnswer> DriverInquiry::ask(std::span<const DriverQuestion> questions) {
  const Turn turn(*this, questions);
  buryOthers();
  Round round{m_settings.patience, {}, {}, {}};
  {
    const platform::Lock lock(m_mutex);
    round.devlink = m_devlink;
  }
  std::vector<DriverAnswer> answers;
  answers.reserve(questions.size());
  for (const DriverQuestion& question : questions) {
    answers.push_back(askFor(question, round));
  }
  if (round.devlink.family.id != 0) {
    const platform::Lock lock(m_mutex);
    m_devlink = round.devlink;
  }
  return answers;
}

DriverAnswer DriverInquiry::askFor(const DriverQuestion& question, Round& round) {
  try {
    auto devlink = FunctionInquiry::ofDevlink(question, m_settings.of, round.devlink);
    const State state = pursue(devlink, Part::Devlink, question, round);
    if (devlink.devlink().isDone) {
      round.devlink = devlink.devlink();
    }
    if (state != State::Replied) {
      return state == State::Waiting ? answerOfAway(round.silentSince) : failed(ECANCELED);
    }
    auto rest = FunctionInquiry::ofRest(question, m_settings.of, devlink.answer().devlink);
    const State restState = pursue(rest, Part::Rest, question, round);
    if (restState == State::Ended) {
      return failed(ECANCELED);
    }
    DriverAnswer answer = rest.answer();
    answer.error = devlink.answer().error != 0 ? devlink.answer().error : answer.error;
    answer.devlink = devlink.answer().devlink;
    answer.isPartial = restState == State::Waiting;
    return answer;
  } catch (const std::system_error& fault) {
    return failed(fault.code().value());
  }
}

State DriverInquiry::pursue(FunctionInquiry& inquiry, Part part, const DriverQuestion& question,
                            Round& round) {
  const Key key{question.function.id, part};
  if (auto away = takeAway(key)) {
    const State state = away->child.await(kNone);
    const bool isMeant = !question.wantsLatest && away->inquiry.answers(question);
    if (state == State::Waiting) {
      const bool isWanted = inquiry.next().has_value();
      if (isWanted && isMeant) {
        inquiry = away->inquiry;
      }
      round.silentSince = away->since;
      putAway(key, std::move(*away));
      return isWanted ? State::Waiting : State::Replied;
    }
    if (state == State::Replied && isRecent(away->child) && isMeant) {
      away->inquiry.take(away->child.reply());
      inquiry = std::move(away->inquiry);
    }
  }
  if (!inquiry.next()) {
    return State::Replied;
  }
  AskingChild child = round.child ? std::move(*round.child) : AskingChild(m_settings.forks);
  round.child.reset();
  const State locked = lock(child, key, round);
  if (locked != State::Replied) {
    if (locked == State::Waiting) {
      round.child.emplace(std::move(child));
    }
    return locked;
  }
  const State state = run(inquiry, child, round.patience);
  if (state == State::Replied) {
    round.patience = m_settings.patience;
    round.child.emplace(std::move(child));
  } else if (state == State::Waiting) {
    child.dismiss();
    round.silentSince = std::chrono::system_clock::now();
    putAway(key, {inquiry, std::move(child), *round.silentSince});
    round.patience = std::max(round.patience / 2, kLeastPatience);
  }
  return state;
}

State DriverInquiry::lock(AskingChild& child, const Key& key, Round& round) const {
  const std::string name =
      toString(key.first) + (key.second == Part::Devlink ? ".devlink" : ".rest");
  if (const auto since = m_locks.heldByRootSince(name)) {
    round.silentSince = since;
    return State::Waiting;
  }
  const auto order = m_locks.orderFor(name);
  if (order.empty()) {
    return State::Replied;
  }
  child.send(Errand::Lock, order);
  // It replies by itself, and is waited for where it does not get to run.
  const State state = child.await(2 * m_settings.patience + kLeastPatience);
  if (state != State::Replied) {
    return State::Ended;
  }
  const auto since = AskingLocks::heldSince(child.reply().error, child.reply().bytes());
  round.silentSince = since ? since : round.silentSince;
  return since ? State::Waiting : State::Replied;
}

bool DriverInquiry::isRecent(const AskingChild& child) const {
  return steady_clock::now() - child.reply().time <= m_settings.lateFor;
}

std::optional<DriverInquiry::Away> DriverInquiry::takeAway(const Key& key) {
  const platform::Lock lock(m_mutex);
  auto node = m_away.extract(key);
  return node.empty() ? std::nullopt : std::optional(std::move(node.mapped()));
}

void DriverInquiry::putAway(const Key& key, Away away) {
  const platform::Lock lock(m_mutex);
  m_away.insert_or_assign(key, std::move(away));
}

// Lets children go whose answers are not wanted any more: of functions that were unplugged.
void DriverInquiry::buryOthers() {
  buryOrphans();
  const platform::Lock lock(m_mutex);
  for (auto entry = m_away.begin(); entry != m_away.end();) {
    AskingChild& child = entry->second.child;
    const State state = m_asked.contains(entry->first.first) ? State::Waiting : child.await(kNone);
    const bool isOver = state == State::Ended || (state == State::Replied && !isRecent(child));
    entry = isOver ? m_away.erase(entry) : std::next(entry);
  }
}

}  // namespace ma
