// z4_requests.h - what a virtual Z4 does when it is asked

#pragma once
#include "virtual/usb_requests.h"
#include "virtual/z4.h"

namespace velmor
{

using z4_request = machine_request<z4>;
extern const std::span<const z4_request> z4_request_rows;

} // namespace velmor
