#include "midapi/Kernel/DevlinkMessages.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <libmnl/libmnl.h>
#include <linux/devlink.h>
#include <linux/genetlink.h>
#include <linux/netlink.h>
#include <stdexcept>
#include <utility>

#include "midapi/ByteText.h"

namespace ma {
namespace {

constexpr const char* kBus = "pci";
constexpr std::uint8_t kFamilyVersion = 1;
constexpr std::int32_t kMaxErrno = 4096;  // MAX_ERRNO of the kernel is 4095

// ---- requests

class Request {
 public:
  Request(std::uint16_t type, std::uint8_t command, std::uint32_t sequence) {
    nlmsghdr& header = *mnl_nlmsg_put_header(m_buffer.data());
    header.nlmsg_type = type;
    header.nlmsg_flags = NLM_F_REQUEST | NLM_F_ACK;
    header.nlmsg_seq = sequence;
    auto* const generic =
        static_cast<genlmsghdr*>(mnl_nlmsg_put_extra_header(&header, sizeof(genlmsghdr)));
    generic->cmd = command;
    generic->version = kFamilyVersion;
  }

  Request& put(std::uint16_t attribute, const std::string& text) {
    return demandRoom(mnl_attr_put_strz_check(header(), m_buffer.size(), attribute, text.c_str()));
  }
  Request& put(std::uint16_t attribute, std::uint8_t number) {
    return demandRoom(mnl_attr_put_u8_check(header(), m_buffer.size(), attribute, number));
  }

  [[nodiscard]] std::vector<std::uint8_t> bytes() {
    return {m_buffer.begin(), m_buffer.begin() + header()->nlmsg_len};
  }

 private:
  nlmsghdr* header() { return reinterpret_cast<nlmsghdr*>(m_buffer.data()); }
  // Names are short: the kernel takes 127 bytes of a file's. A request that lacks one is another.
  Request& demandRoom(bool hasRoom) {
    if (!hasRoom) {
      throw std::length_error("a name is too long for a netlink message");
    }
    return *this;
  }

  alignas(nlmsghdr) std::array<std::uint8_t, 1024> m_buffer{};
};

Request deviceRequest(const DevlinkFamily& family, std::uint8_t command, const PortId& device,
                      std::uint32_t sequence) {
  Request request(family.id, command, sequence);
  request.put(DEVLINK_ATTR_BUS_NAME, kBus).put(DEVLINK_ATTR_DEV_NAME, toString(device));
  return request;
}

// ---- answers

// Calls `visit` with each whole message of a datagram.
template <class Visitor>
void visitMessages(NetlinkBytes datagram, Visitor visit) {
  // What the caller hands in may be aligned for nothing; a vector's memory is for everything.
  const std::vector<std::uint8_t> bytes(datagram.begin(), datagram.end());
  const auto* message = reinterpret_cast<const nlmsghdr*>(bytes.data());
  // libmnl compares lengths with a sign: it takes the largest for small ones.
  for (int left = static_cast<int>(bytes.size());
       left >= static_cast<int>(sizeof(nlmsghdr)) &&
       message->nlmsg_len <= static_cast<std::uint32_t>(left) && mnl_nlmsg_ok(message, left);
       message = mnl_nlmsg_next(message, &left)) {
    visit(*message);
  }
}

// Calls `visit` with each whole attribute in `size` bytes.
template <class Visitor>
void visitAttributes(const void* begin, std::size_t size, Visitor visit) {
  const auto* const end = static_cast<const std::uint8_t*>(begin) + size;
  const auto* attribute = static_cast<const nlattr*>(begin);
  while (mnl_attr_ok(attribute,
                     static_cast<int>(end - reinterpret_cast<const std::uint8_t*>(attribute)))) {
    visit(*attribute);
    attribute = mnl_attr_next(attribute);
  }
}

template <class Visitor>
void visitNested(const nlattr& attribute, Visitor visit) {
  visitAttributes(mnl_attr_get_payload(&attribute), mnl_attr_get_payload_len(&attribute), visit);
}

// Calls `visit` with the attributes of a generic message.
template <class Visitor>
void visitGeneric(const nlmsghdr& message, Visitor visit) {
  if (mnl_nlmsg_get_payload_len(&message) >= GENL_HDRLEN) {
    visitAttributes(mnl_nlmsg_get_payload_offset(&message, GENL_HDRLEN),
                    mnl_nlmsg_get_payload_len(&message) - GENL_HDRLEN, visit);
  }
}

// Returns the command of a generic message; 0, which is none, where it is too short for one.
std::uint8_t commandOf(const nlmsghdr& message) {
  return mnl_nlmsg_get_payload_len(&message) >= GENL_HDRLEN
             ? static_cast<const genlmsghdr*>(mnl_nlmsg_get_payload(&message))->cmd
             : std::uint8_t{0};
}

// Returns a text, to its first NUL or the attribute's end, fit for a terminal: drivers tell what
// stands in their flash, and erased flash holds no text.
std::string textOf(const nlattr& attribute) {
  const std::span<const std::uint8_t> bytes(
      static_cast<const std::uint8_t*>(mnl_attr_get_payload(&attribute)),
      mnl_attr_get_payload_len(&attribute));
  const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
  return decodeText({bytes.begin(), end}, TextEncoding::Utf8);
}

// Returns a number of that size; 0 where the attribute has another.
template <class Number>
Number numberOf(const nlattr& attribute) {
  Number number = 0;
  if (mnl_attr_get_payload_len(&attribute) == sizeof(Number)) {
    std::memcpy(&number, mnl_attr_get_payload(&attribute), sizeof(Number));
  }
  return number;
}

bool isAnswer(const nlmsghdr& message, std::uint16_t type, std::uint32_t sequence) {
  return message.nlmsg_type == type && message.nlmsg_seq == sequence;
}

NetlinkAck readAck(const nlmsghdr& message) {
  NetlinkAck ack;
  const std::size_t size = mnl_nlmsg_get_payload_len(&message);
  if (size < sizeof(nlmsgerr)) {
    ack.error = EBADMSG;
    return ack;
  }
  const auto& verdict = *static_cast<const nlmsgerr*>(mnl_nlmsg_get_payload(&message));
  ack.error = verdict.error > -kMaxErrno && verdict.error <= 0 ? -verdict.error : EBADMSG;
  // The request follows, unless it was asked to be left out, and then what there is to say.
  std::size_t said = sizeof(nlmsgerr);
  if ((message.nlmsg_flags & NLM_F_CAPPED) == 0 && verdict.msg.nlmsg_len > sizeof(nlmsghdr)) {
    said += MNL_ALIGN(verdict.msg.nlmsg_len - sizeof(nlmsghdr));
  }
  if ((message.nlmsg_flags & NLM_F_ACK_TLVS) != 0 && said < size) {
    visitAttributes(mnl_nlmsg_get_payload_offset(&message, said), size - said,
                    [&ack](const nlattr& attribute) {
                      if (mnl_attr_get_type(&attribute) == NLMSGERR_ATTR_MSG) {
                        ack.text = textOf(attribute);
                      }
                    });
  }
  return ack;
}

struct MulticastGroup {
  std::string name;
  std::uint32_t id = 0;
};

MulticastGroup readGroup(const nlattr& nested) {
  MulticastGroup group;
  visitNested(nested, [&group](const nlattr& attribute) {
    switch (mnl_attr_get_type(&attribute)) {
      case CTRL_ATTR_MCAST_GRP_NAME:
        group.name = textOf(attribute);
        break;
      case CTRL_ATTR_MCAST_GRP_ID:
        group.id = numberOf<std::uint32_t>(attribute);
        break;
      default:
        break;
    }
  });
  return group;
}

DevlinkFamily readFamily(const nlmsghdr& message) {
  DevlinkFamily family;
  visitGeneric(message, [&family](const nlattr& attribute) {
    switch (mnl_attr_get_type(&attribute)) {
      case CTRL_ATTR_FAMILY_ID:
        family.id = numberOf<std::uint16_t>(attribute);
        break;
      case CTRL_ATTR_MCAST_GROUPS:
        visitNested(attribute, [&family](const nlattr& nested) {
          const MulticastGroup group = readGroup(nested);
          if (group.name == DEVLINK_GENL_MCGRP_CONFIG_NAME) {
            family.configGroup = group.id;
          }
        });
        break;
      default:
        break;
    }
  });
  return family;
}

NamedVersion readVersion(const nlattr& nested) {
  NamedVersion version;
  visitNested(nested, [&version](const nlattr& attribute) {
    switch (mnl_attr_get_type(&attribute)) {
      case DEVLINK_ATTR_INFO_VERSION_NAME:
        version.name = textOf(attribute);
        break;
      case DEVLINK_ATTR_INFO_VERSION_VALUE:
        version.value = textOf(attribute);
        break;
      default:
        break;
    }
  });
  return version;
}

DevlinkInfo readInfo(const nlmsghdr& message) {
  DevlinkInfo info;
  visitGeneric(message, [&info](const nlattr& attribute) {
    switch (mnl_attr_get_type(&attribute)) {
      case DEVLINK_ATTR_INFO_DRIVER_NAME:
        info.driver = textOf(attribute);
        break;
      case DEVLINK_ATTR_INFO_SERIAL_NUMBER:
        info.serialNumber = textOf(attribute);
        break;
      case DEVLINK_ATTR_INFO_BOARD_SERIAL_NUMBER:
        info.boardSerialNumber = textOf(attribute);
        break;
      case DEVLINK_ATTR_INFO_VERSION_FIXED:
        info.fixed.push_back(readVersion(attribute));
        break;
      case DEVLINK_ATTR_INFO_VERSION_RUNNING:
        info.running.push_back(readVersion(attribute));
        break;
      case DEVLINK_ATTR_INFO_VERSION_STORED:
        info.stored.push_back(readVersion(attribute));
        break;
      default:
        break;
    }
  });
  return info;
}

std::optional<DevlinkFlashEvent::Kind> eventKind(std::uint8_t command) {
  switch (command) {
    case DEVLINK_CMD_FLASH_UPDATE:
      return DevlinkFlashEvent::Kind::Begin;
    case DEVLINK_CMD_FLASH_UPDATE_STATUS:
      return DevlinkFlashEvent::Kind::Status;
    case DEVLINK_CMD_FLASH_UPDATE_END:
      return DevlinkFlashEvent::Kind::End;
    default:
      return std::nullopt;
  }
}

// Returns nothing for what is no message about a flash of a PCI device.
std::optional<DevlinkFlashEvent> readFlashEvent(const nlmsghdr& message) {
  const auto kind = eventKind(commandOf(message));
  if (!kind) {
    return std::nullopt;
  }
  DevlinkFlashEvent event;
  event.kind = *kind;
  bool isOfPci = false;
  visitGeneric(message, [&](const nlattr& attribute) {
    switch (mnl_attr_get_type(&attribute)) {
      case DEVLINK_ATTR_BUS_NAME:
        isOfPci = textOf(attribute) == kBus;
        break;
      case DEVLINK_ATTR_DEV_NAME:
        event.device = textOf(attribute);
        break;
      case DEVLINK_ATTR_FLASH_UPDATE_STATUS_MSG:
        event.text = textOf(attribute);
        break;
      case DEVLINK_ATTR_FLASH_UPDATE_COMPONENT:
        event.component = textOf(attribute);
        break;
      case DEVLINK_ATTR_FLASH_UPDATE_STATUS_DONE:
        event.done = numberOf<std::uint64_t>(attribute);
        break;
      case DEVLINK_ATTR_FLASH_UPDATE_STATUS_TOTAL:
        event.total = numberOf<std::uint64_t>(attribute);
        break;
      case DEVLINK_ATTR_FLASH_UPDATE_STATUS_TIMEOUT:
        event.timeout = numberOf<std::uint64_t>(attribute);
        break;
      default:
        break;
    }
  });
  return isOfPci ? std::optional(std::move(event)) : std::nullopt;
}

}  // namespace

std::vector<std::uint8_t> makeFamilyRequest(std::uint32_t sequence) {
  return Request(GENL_ID_CTRL, CTRL_CMD_GETFAMILY, sequence)
      .put(CTRL_ATTR_FAMILY_NAME, DEVLINK_GENL_NAME)
      .bytes();
}

std::vector<std::uint8_t> makeInfoRequest(const DevlinkFamily& family, const PortId& device,
                                          std::uint32_t sequence) {
  return deviceRequest(family, DEVLINK_CMD_INFO_GET, device, sequence).bytes();
}

std::vector<std::uint8_t> makeFlashRequest(const DevlinkFamily& family, const PortId& device,
                                           const std::string& file, const std::string& component,
                                           std::uint32_t sequence) {
  Request request = deviceRequest(family, DEVLINK_CMD_FLASH_UPDATE, device, sequence);
  request.put(DEVLINK_ATTR_FLASH_UPDATE_FILE_NAME, file);
  if (!component.empty()) {
    request.put(DEVLINK_ATTR_FLASH_UPDATE_COMPONENT, component);
  }
  return request.bytes();
}

std::vector<std::uint8_t> makeActivateRequest(const DevlinkFamily& family, const PortId& device,
                                              std::uint32_t sequence) {
  return deviceRequest(family, DEVLINK_CMD_RELOAD, device, sequence)
      .put(DEVLINK_ATTR_RELOAD_ACTION, std::uint8_t{DEVLINK_RELOAD_ACTION_FW_ACTIVATE})
      .bytes();
}

std::optional<NetlinkAck> findAck(NetlinkBytes datagram, std::uint32_t sequence) {
  std::optional<NetlinkAck> ack;
  visitMessages(datagram, [&](const nlmsghdr& message) {
    if (isAnswer(message, NLMSG_ERROR, sequence)) {
      ack = readAck(message);
    }
  });
  return ack;
}

std::optional<DevlinkFamily> findFamily(NetlinkBytes datagram, std::uint32_t sequence) {
  std::optional<DevlinkFamily> family;
  visitMessages(datagram, [&](const nlmsghdr& message) {
    if (isAnswer(message, GENL_ID_CTRL, sequence)) {
      family = readFamily(message);
    }
  });
  return family && family->id != 0 ? family : std::nullopt;
}

std::optional<DevlinkInfo> findInfo(NetlinkBytes datagram, const DevlinkFamily& family,
                                    std::uint32_t sequence) {
  std::optional<DevlinkInfo> info;
  visitMessages(datagram, [&](const nlmsghdr& message) {
    if (isAnswer(message, family.id, sequence) && commandOf(message) == DEVLINK_CMD_INFO_GET) {
      info = readInfo(message);
    }
  });
  return info;
}

std::vector<DevlinkFlashEvent> findFlashEvents(NetlinkBytes datagram, const DevlinkFamily& family) {
  std::vector<DevlinkFlashEvent> events;
  visitMessages(datagram, [&](const nlmsghdr& message) {
    if (message.nlmsg_type != family.id) {
      return;
    }
    if (auto event = readFlashEvent(message)) {
      events.push_back(std::move(*event));
    }
  });
  return events;
}

}  // namespace ma
