// s900_talk.h - a host with an S900 loaded, for conversations by transcript

#pragma once
#include "src/akais900.h"
#include "src/velmor_outcome.h"
#include "tests/support/transcript_midi.h"
#include "virtual/midi_ports.h"
#include "virtual/s900.h"

namespace velmor
{

class s900_talk : public host_test
{
protected:
	s900_talk()
	{
		h.use_sampler(model_s900, 0);
		dev().status = 1;
	}
	_dev_status &dev() { return *current_sampler->status; }
	void play(const std::string &script, const std::function<void()> &work)
	{
		h.boxes.clear();
		h.forget_log();
		transcript_midi port(h, script);
		work();
		EXPECT_TRUE(port.finished());
	}
	// Each line of the text was logged; one that ends in ".." as far as there.
	void expect_logged(std::string text)
	{
		const std::vector<std::string> log = h.log();
		for (std::size_t end; (end = text.find('\n')) != text.npos;
			text.erase(0, end + 1)) {
			std::string line = text.substr(0, end) + "\r\n";
			if (line.ends_with("..\r\n"))
				line.resize(line.size() - 4);
			EXPECT_TRUE(std::any_of(log.begin(), log.end(), [&](const std::string &l) {
				return l.starts_with(line);
			})) << line;
		}
	}
	void expect_box(const std::string &text, const char *caption)
	{
		ASSERT_EQ(h.boxes.size(), 1u);
		EXPECT_EQ(h.boxes[0], (shown_box{ text, caption }));
	}
	std::string last_box() const { return h.boxes.empty() ? "" : h.boxes.back().text; }
};

// The same with a machine on a cable. It hears every channel.
class s900_plugged : public s900_talk
{
protected:
	s900_plugged()
	{
		machine.omni = true;
		host.midi = &virtual_midi;
		port = plug_midi(h.time, machine.on_wire(h.time), "virtual");
		selected_midi_in_interface = selected_midi_out_interface = 0;
	}
	~s900_plugged()
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
	}
	void read_lists()
	{
		akai_s900_getstatus(1, 0, &dev());
		akai_s900_getproglist(1, 0, &dev());
		akai_s900_getsamplelist(1, 0, &dev());
	}
	// Work with one fault of the wire, and what comes late.
	void with_fault(wire_fault fault, const std::function<void()> &work)
	{
		h.boxes.clear();
		port_wire(port).set_fault(fault);
		work();
		h.time.run_until(h.time.now() + 5);
		port_wire(port).clear_faults();
	}
	s900_machine machine{ s900_model::s950 };
	int port;
};

} // namespace velmor
