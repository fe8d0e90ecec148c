// host.cpp - the services of the host that are in use

#include "platform/host.h"

namespace velmor
{

host_services host = {};

} // namespace velmor
