#include "midapi/Kernel/FunctionInquiry.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <linux/ethtool.h>
#include <span>
#include <string>
#include <utility>

#include "midapi/ByteText.h"

namespace ma {
namespace {

// Each request has a socket of its own.
constexpr std::uint32_t kSequence = 1;

std::vector<std::uint8_t> bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

// Returns the text of a field, which ends with a zero or fills it.
template <std::size_t kSize>
std::string textOf(const char (&field)[kSize]) {
  const char* const end = std::find(field, field + kSize, '\0');
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(field);
  return decodeText({bytes, static_cast<std::size_t>(end - field)}, TextEncoding::Utf8);
}

// What the machine or the process has too little of just now, or is not let do: it says nothing of
// a driver.
bool isOurs(int error) {
  constexpr std::array kOurs = {EMFILE, ENFILE, ENOMEM, ENOBUFS, EPERM, EACCES, EINTR, EAGAIN};
  return std::ranges::find(kOurs, error) != kOurs.end();
}

// A kernel without netlink has no devlink either.
bool hasNoNetlink(int error) {
  return error == EPROTONOSUPPORT || error == EAFNOSUPPORT || error == ESOCKTNOSUPPORT;
}

// Returns nothing where the kernel could not be asked, and then why.
std::optional<DevlinkFamily> readFamily(const ErrandReply& reply, int& error) {
  if (hasNoNetlink(reply.error)) {
    return DevlinkFamily();
  }
  error = reply.error != 0 ? reply.error : EIO;
  for (const auto& datagram : reply.pieces) {
    if (const auto family = findFamily(datagram, kSequence)) {
      error = 0;
      return family;
    }
    if (const auto ack = findAck(datagram, kSequence)) {
      error = isOurs(ack->error) ? ack->error : 0;
      return error == 0 ? std::optional(DevlinkFamily()) : std::nullopt;
    }
  }
  return std::nullopt;
}

// A driver without devlink is no device to it. One that has it, and cannot tell, has it all the
// same; where it can at other times, as while the adapter starts anew, the error says so.
void readDevlink(const ErrandReply& reply, const DevlinkFamily& family, DriverAnswer& answer) {
  answer.error = reply.error != 0 ? reply.error : EIO;
  for (const auto& datagram : reply.pieces) {
    if (auto found = findInfo(datagram, family, kSequence)) {
      answer.devlink = std::move(found);
      answer.error = 0;
    }
    const auto ack = findAck(datagram, kSequence);
    if (ack && !answer.devlink) {
      if (ack->error != ENODEV && ack->error != ENOMEM && ack->error != ENOBUFS) {
        answer.devlink.emplace();
      }
      answer.error = ack->error == EOPNOTSUPP || ack->error == ENODEV ? 0 : ack->error;
    }
  }
}

std::optional<DriverInfo> readDriverInfo(const ErrandReply& reply) {
  ethtool_drvinfo info{};
  if (reply.error != 0 || reply.pieces.size() != 1 || reply.pieces[0].size() != sizeof info) {
    return std::nullopt;
  }
  std::memcpy(&info, reply.pieces[0].data(), sizeof info);
  return DriverInfo{textOf(info.driver), textOf(info.version), textOf(info.fw_version)};
}

FileAnswer readFile(const ErrandReply& reply) {
  return reply.error != 0 ? FileAnswer{reply.error, {}} : FileAnswer{0, reply.bytes()};
}

}  // namespace

FunctionInquiry FunctionInquiry::ofDevlink(DriverQuestion question, Of of,
                                           const DevlinkLookup& devlink) {
  FunctionInquiry inquiry(std::move(question), of);
  inquiry.m_devlink = devlink;
  const bool hasDriver = of == Of::DriverAndFiles;
  if (hasDriver && (!devlink.isDone || devlink.family.id != 0)) {
    inquiry.m_steps.push_back(Step::Devlink);
  }
  if (hasDriver && !devlink.isDone) {
    inquiry.m_steps.push_back(Step::Family);
  }
  return inquiry;
}

FunctionInquiry FunctionInquiry::ofRest(DriverQuestion question, Of of,
                                        const std::optional<DevlinkInfo>& told) {
  FunctionInquiry inquiry(std::move(question), of);
  const DriverQuestion& wanted = inquiry.m_question;
  const bool hasVersions = told && !(told->running.empty() && told->stored.empty());
  // The last one, because it may wait for adapters that are none of its driver's business.
  if (of == Of::DriverAndFiles && !wanted.function.interfaces.empty() && !hasVersions) {
    inquiry.m_steps.push_back(Step::Driver);
  }
  if (wanted.wantsRom) {
    inquiry.m_steps.push_back(Step::Rom);
    inquiry.m_answer.rom.error = EBUSY;
  }
  if (wanted.wantsVpd) {
    inquiry.m_steps.push_back(Step::Vpd);
    inquiry.m_answer.vpd.error = EBUSY;
  }
  return inquiry;
}

bool FunctionInquiry::answers(const DriverQuestion& question) const {
  return m_question.function.ids == question.function.ids &&
         m_question.function.interfaces == question.function.interfaces &&
         m_question.wantsVpd >= question.wantsVpd && m_question.wantsRom >= question.wantsRom;
}

std::optional<ErrandOrder> FunctionInquiry::next() const {
  return m_steps.empty() ? std::nullopt : std::optional(orderOf(m_steps.back()));
}

ErrandOrder FunctionInquiry::orderOf(Step step) const {
  const PciFunction& function = m_question.function;
  switch (step) {
    case Step::Family:
      return {Errand::Netlink, makeFamilyRequest(kSequence)};
    case Step::Devlink:
      return {Errand::Netlink, makeInfoRequest(m_devlink.family, function.id, kSequence)};
    case Step::Driver:
      return {Errand::DriverInfo, bytesOf(function.interfaces.front().name)};
    case Step::Vpd:
      return {Errand::Vpd, bytesOf(function.folder / "vpd")};
    case Step::Rom:
      return {m_of == Of::FilesAlone ? Errand::PlainFile : Errand::Rom,
              bytesOf(function.folder / "rom")};
  }
  return {};
}

void FunctionInquiry::take(const ErrandReply& reply) {
  const Step step = m_steps.back();
  m_steps.pop_back();
  switch (step) {
    case Step::Family: {
      const auto family = readFamily(reply, m_answer.error);
      m_devlink = {family.has_value(), family.value_or(DevlinkFamily())};
      if (m_devlink.family.id == 0) {
        m_steps.pop_back();  // there is nobody to ask
      }
      break;
    }
    case Step::Devlink:
      readDevlink(reply, m_devlink.family, m_answer);
      break;
    case Step::Driver:
      m_answer.info = readDriverInfo(reply);
      m_answer.error = isOurs(reply.error) ? reply.error : 0;
      break;
    case Step::Vpd:
      m_answer.vpd = readFile(reply);
      break;
    case Step::Rom:
      m_answer.rom = readFile(reply);
      break;
  }
}

}  // namespace ma
