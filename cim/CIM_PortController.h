// A device that controls ports.

#ifndef ORVEX_CIM_CIM_PORTCONTROLLER_H_
#define ORVEX_CIM_CIM_PORTCONTROLLER_H_

#include "Utils/Export.h"
#include "cim/CIM_Controller.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_PortController : public CIM_Controller {
 public:
  static constexpr const char* kClassName = "CIM_PortController";
  using Superclass = CIM_Controller;

  CIM_PortController();
  ~CIM_PortController() override;

  core::CimPropertyUint16 ControllerType{"ControllerType", this};
  core::CimPropertyString OtherControllerType{"OtherControllerType", this};
  core::CimPropertyUint16 ControllerVersion{"ControllerVersion", this};
};

#endif  // ORVEX_CIM_CIM_PORTCONTROLLER_H_
