// usb_bus.h - a full-speed USB with virtual machines on it
//
// virtual_usb is a table of platform/usb.h. It moves bytes between its caller and
// the machines that are plugged in, on their timeline, in the time a full-speed
// bus takes:
//
//   12 Mbit/s, frames of 1 ms, at most 19 bulk packets of 64 bytes in a frame. A
//   packet of n bytes takes (n + 13) byte times, 13 being what token, handshake
//   and gaps cost, so a full one takes a nineteenth of a millisecond: 1.216 MB/s.
//   All machines share the bus; the next packet begins where the last one ended.
//   A transfer begins at once, as on today's host controllers. Polling a machine
//   that has nothing to say costs nothing.
//
// A read ends when its count is reached, or with the short packet that ends one
// message of the machine, or at its deadline with whatever came; what is left of a
// message goes to the next read. A message whose last packet is full ends a read
// only if the machine sends an empty packet behind it. A write ends a message of
// the host with its short packet.
//
// A machine keeps its socket when its plug is pulled and put in again, and gets
// another address.
//
// A test plugs a machine in and lets the system talk to it:
//
//   class s5000_test : public host_test {
//         protected:
//   	s5000 machine;
//   	s5000_test() { host.usb = &virtual_usb; plug_usb(h.time, machine); }
//   	~s5000_test() { unplug_all_usb(); }
//   };
//   machine.record = true;                           // transcript in machine.recorded
//   machine.strike(usb_fault::answer_missing, 3);    // silent at the third write from now
//
// In real time call time.run_in_real_time() before or after plugging, and unplug
// before a machine goes away.
//
// Knows nothing of: the system under src/, what the bytes mean.

#pragma once
#include "virtual/timeline.h"
#include "virtual/usb_machine.h"

namespace velmor
{

extern const usb_service virtual_usb;

void plug_usb(timeline &time, usb_machine &machine);
// The same into another socket than before.
void plug_usb_elsewhere(timeline &time, usb_machine &machine);
void unplug_usb(usb_machine &machine);
// Also forgets open handles, transfers and sockets, and lets devices be listed again.
void unplug_all_usb();
// Let list answer false, as on a host without USB.
void forbid_usb_list(bool forbidden);

// Seconds on the bus of one transfer of so many bytes.
double usb_transfer_time(std::size_t bytes);

} // namespace velmor
