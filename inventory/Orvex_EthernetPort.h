// A port of an Ethernet adapter, as the inventory agent serves it.
//
// Other agents reach the accessors through an instance that they got from the broker, with this
// header alone: everything is virtual or inline, nothing of the inventory module is linked.

#ifndef ORVEX_INVENTORY_ORVEX_ETHERNETPORT_H_
#define ORVEX_INVENTORY_ORVEX_ETHERNETPORT_H_

#include <string>

#include "cim/CIM_EthernetPort.h"

class Orvex_EthernetPort : public CIM_EthernetPort {
 public:
  static constexpr const char* kClassName = "Orvex_EthernetPort";
  using Superclass = CIM_EthernetPort;

  ~Orvex_EthernetPort() override = default;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns the identifier by which the flash library knows the port.
  [[nodiscard]] virtual std::string getIdentity() const = 0;

  // What the machine boots from through it (ma::BootType); NULL where its driver does not tell.
  core::CimPropertyUint16 BootType{"BootType", this};
  // What the operating system calls it: "eth0"; several where one function has several.
  core::CimPropertyString_arr InterfaceNames{"InterfaceNames", this};
};

#endif  // ORVEX_INVENTORY_ORVEX_ETHERNETPORT_H_
