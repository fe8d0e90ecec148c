// host.cpp - the services of the host that are in use

#include "platform/host.h"
#include "platform/drive.h"

namespace velmor
{

host_services host = {};
const drive_service *host_drive = nullptr;

} // namespace velmor
