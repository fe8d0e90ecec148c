// drive_fuse.h - what the sources of the libfuse3 back end share

#pragma once
#include "platform/drive.h"

namespace velmor
{

extern const drive_service fuse_drive;

// The folder to mount on, looked at before anything is mounted (mount_point.cpp): a sentence when
// nothing can be mounted there. A mount of that type whose process is gone is cleaned away.
std::string why_not_usable(const char *mount_point, const char *type);

} // namespace velmor
