// ctl_fixture.h - a studio of virtual samplers, and velmorctl run in it
//
// Each studio is a host of its own, so that two can do the same and be compared.

#pragma once
#include "programs/ctl.h"
#include "src/usbqx.h"
#include "tests/support/test_host.h"
#include "virtual/demo_usb.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include "virtual/usb_bus.h"
#include <cstdlib>

namespace velmor
{

using lines = std::vector<std::string>;

inline lines operator+(lines a, const lines &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

// What crossed each wire, both ways.
struct traffic {
	lines midi, usb;
	bool operator==(const traffic &) const = default;
	traffic operator+(const traffic &b) const { return { midi + b.midi, usb + b.usb }; }
};

// Take what stands at the end off it.
inline void take_end(lines *all, const lines &end)
{
	ASSERT_TRUE(
		all->size() >= end.size() && std::equal(end.rbegin(), end.rend(), all->rbegin()));
	all->resize(all->size() - end.size());
}

// A host with an S3000 on its MIDI cable and an S5000 on its USB, both configured.
struct studio {
	test_host h;
	s1000_machine s3000{ s1000_model::s3000, 0 };
	s5000 usb;
	lines crossed; // MIDI, both ways
	bool ticking = false;
	int port;

	explicit studio(std::size_t words = 300)
	{
		for (const char *name : { "KICK", "SNARE" })
			s3000.add_sample(name, 44100, std::vector<std::int16_t>(words, 1000));
		for (const char *name : { "DRUMS", "BASS" })
			s3000.add_program(name, 2);
		fill_demo(usb);
		usb.record = true;
		midi_machine wire = s3000.on_wire();
		wire.answer = [this](machine::byte_view message) {
			const machine::bytes answer = s3000.answer(message);
			crossed.push_back("> " + hex_text(message));
			crossed.push_back("< " + hex_text(answer));
			return answer;
		};
		wire.played = [this](machine::byte_view notes) {
			crossed.push_back("played " + hex_text(notes));
		};
		host.midi = &virtual_midi;
		host.usb = &virtual_usb;
		port = plug_midi(h.time, std::move(wire), "Cable");
		plug_usb(h.time, usb);
		h.settings = { { "midi_in", "0" }, { "midi_out", "0" }, { "midi_in_mon", "0" } };
		configure("Rack", model_s3000, "");
		configure("Studio", model_s5000, "Demo S5000");
		h.time.run_until(1); // whatever a plug brings
	}
	~studio()
	{
		close_midi_output();
		unplug_all_midi();
		unplug_all_usb();
		forget_unread_usb();
	}
	void configure(const char *name, i32 model, const char *usb_name)
	{
		_sampler s = {};
		copy_text(s.sampler_description, name);
		copy_text(s.sampler_usbname, usb_name);
		s.sampler_type = static_cast<u32>(model);
		s.sampler_sysex = s.sampler_midi = 1;
		h.put_content(h.config + "\\" + name + ".sampler",
			{ reinterpret_cast<const u8 *>(&s), sizeof s });
	}
	// What crossed the wires since the last call.
	traffic take()
	{
		traffic all = { std::exchange(crossed, {}), {} };
		for (const usb_crossing &c : std::exchange(usb.recorded, {}))
			all.usb.push_back((c.from_host ? "> " : "< ") + hex_text(c.bytes));
		return all;
	}
	// Timers tick with every pump.
	void tick()
	{
		h.on_pump = [this] {
			if (std::exchange(ticking, true))
				return;
			for (const auto timers = h.timers; const auto &[id, timer] : timers)
				if (h.timers.contains(id))
					timer.tick();
			ticking = false;
		};
	}
};

struct ran {
	int status;
	std::string results, words;
};

inline ran ctl(const lines &words)
{
	ctl_call call;
	ran r = { exit_usage, "", read_ctl(words, &call) };
	if (!r.words.empty())
		return r;
	char *text[2];
	std::size_t sizes[2];
	std::FILE *streams[2];
	for (int i = 0; i < 2; i++)
		streams[i] = open_memstream(&text[i], &sizes[i]);
	r.status = run_ctl(call, { .results = streams[0], .words = streams[1] });
	for (int i = 0; i < 2; i++) {
		std::fclose(streams[i]);
		(i ? r.words : r.results) = text[i];
		std::free(text[i]);
	}
	return r;
}

} // namespace velmor
