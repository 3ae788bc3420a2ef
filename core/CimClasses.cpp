#include "core/CimClasses.h"

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimClasses"};

}  // namespace

CimClass::~CimClass() = default;

CimClasses::CimClasses() = default;

CimClasses::~CimClasses() {
  for (CimClass* cimClass : values()) {
    delete cimClass;
  }
}

void CimClasses::add(CimClass* cimClass) {
  ORVEX_ASSERT(kLog, cimClass != NULL);
  utils::logDebug(kLog, "core::CimClasses::add", "Adding new class: %s",
                  cimClass->getName().c_str());
  set(cimClass->getName(), cimClass);
}

}  // namespace core
