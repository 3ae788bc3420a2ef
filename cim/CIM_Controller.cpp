#include "cim/CIM_Controller.h"

CIM_Controller::CIM_Controller() = default;

CIM_Controller::~CIM_Controller() = default;
