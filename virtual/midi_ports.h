// midi_ports.h - MIDI ports of a host with virtual machines at the far end
//
// A machine is plugged in where a cable would be: it becomes one output and one input
// of the table virtual_midi, both with the port's name, at the end of both lists.
// Bytes take the time of a real wire. With the timeline in virtual time everything
// happens while the timeline runs, on its caller's thread; with the timeline in real
// time the machines live on its thread, and the table is still called from the main
// thread alone.
//
// A test, with its test_host h:
//
//	s1000_machine machine(s1000_model::s3000, 5); // exclusive channel 5
//	host.midi = &virtual_midi;
//	const int port = plug_midi(h.time, machine, "Demo S3000");
//	port_wire(port).set_fault({ .kind = wire_fault_kind::silent, .exchange = 2 });
//	... the system opens "Demo S3000" and talks ...
//	unplug_all_midi(); // before machine and h go
//
// Called by tests, the demo and the benchmarks.
// Knows nothing of: what the messages mean, the system under src/.

#pragma once
#include "platform/midi.h"
#include "virtual/wire.h"

namespace velmor
{

class s1000_machine;

extern const midi_service virtual_midi;

// Plug a machine in. Gives back the number of its port, which no later port will have.
int plug_midi(
	timeline &time, midi_machine machine, const char *port_name, wire_settings settings = {});
int plug_midi(
	timeline &time, s1000_machine &machine, const char *port_name, wire_settings settings = {});

// The wire of a plugged port, for its settings and faults.
midi_wire &port_wire(int port);

// Pull one cable: the port leaves the lists, and whoever has it open sees it fail.
void unplug_midi(int port);
// Pull all cables, forget every port, handle and the wake function.
void unplug_all_midi();

} // namespace velmor
