// racks.h - a loaded sampler of each family with a little in it, for tests that do the same with all
//
// Two programs and three samples. What the memory holds is told in the machine's own bytes.

#pragma once
#include "src/usbqx.h"
#include "src/velmor_programs.h"
#include "tests/support/test_host.h"
#include "virtual/akai_codec.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include "virtual/s5000.h"
#include "virtual/s900.h"
#include "virtual/usb_bus.h"
#include "virtual/z4.h"
#include <memory>

namespace velmor
{

using levels = std::vector<std::int16_t>;

inline levels ramp(int count, int step)
{
	levels words;
	for (int i = 0; i < count; i++)
		words.push_back(static_cast<std::int16_t>((i * step) % 4096 - 2048));
	return words;
}

inline std::string text_of(const std::string &name, const levels &words)
{
	std::string text = name + ":";
	for (const auto word : words)
		text += " " + std::to_string(word);
	return text + "\n";
}

template <typename bytes> std::string text_of(const bytes &all)
{
	return hex_text({ all.data(), all.size() }) + "\n";
}

// A machine with two programs and three samples, and what its memory holds in its own bytes.
struct rack {
	i32 model;
	const char *first_plan, *second_plan; // after a wipe, and behind the restore
	rack(i32 which, const char *first, const char *second)
		: model(which), first_plan(first), second_plan(second)
	{
	}
	virtual ~rack() = default;
	virtual void wipe() = 0;
	virtual std::string memory() const = 0;
	virtual std::vector<std::vector<u8>> heard() const = 0;
	virtual void forget_heard() = 0;
	virtual void change_sample() = 0;
	virtual void change_program() = 0;
	virtual void fall_silent(int exchange) = 0; // from then on
	virtual void recover() = 0;
};

struct midi_rack : rack {
	using rack::rack;
	int port = 0;
	void plug(test_host &h, midi_machine machine)
	{
		host.midi = &virtual_midi;
		port = plug_midi(h.time, std::move(machine), "virtual");
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
		h.use_sampler(model, 5);
	}
	~midi_rack() override
	{
		close_midi_output();
		unplug_all_midi();
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = -1;
	}
	void fall_silent(int exchange) override
	{
		port_wire(port).set_fault({ wire_fault_kind::silent, exchange, true });
	}
	void recover() override { port_wire(port).clear_faults(); }
};

struct s1000_rack : midi_rack {
	s1000_machine machine;
	s1000_rack(test_host &h, s1000_model which, i32 id)
		: midi_rack(id, "Send 5.", "Keep 5 as they are."), machine(which, 5)
	{
		machine.add_program("PIANO", 2);
		machine.add_program("BASS", 1);
		machine::put_name(machine.programs[0].keygroups[1], 34, "KICK");
		machine.programs[0].keygroups[1][3] = 40;
		machine.add_sample("KICK", 44100, ramp(90, 7));
		machine.add_sample("SNARE", 22050, ramp(40, 11));
		machine.add_sample("HAT", 44100, ramp(3, 900));
		plug(h, machine.on_wire());
	}
	void wipe() override { machine.programs.clear(), machine.samples.clear(); }
	std::string memory() const override
	{
		std::string text;
		for (const stored_program &p : machine.programs) {
			auto blocks = p.keygroups;
			blocks.insert(blocks.begin(), p.common);
			for (auto &block : blocks)
				text += known(block);
		}
		for (const stored_sample &s : machine.samples) {
			text += text_of(machine::get_name(s.header, 3), s.words);
		}
		return text;
	}
	std::vector<std::vector<u8>> heard() const override
	{
		return { machine.heard.begin(), machine.heard.end() };
	}
	void forget_heard() override { machine.heard.clear(); }
	// Where a block lies in memory, and what of a program no document tells, stay behind.
	static std::string known(machine::bytes block)
	{
		for (const std::size_t i : { 1, 2, 43, 62, 63, 64, 70, 87 })
			block[i] = i < 3 || block[0] == 1 ? 0 : block[i];
		return text_of(block);
	}
	void change_sample() override { machine.samples[1].header[2]++; }
	void change_program() override { machine.programs[0].keygroups[0][3]++; }
};

// It makes no program, nor do those on the USB: a wipe changes what is in them.
struct s900_rack : midi_rack {
	s900_machine machine{ s900_model::s950, 5 };
	explicit s900_rack(test_host &h)
		: midi_rack(model_s900, "Send 3, replace 2.", "Keep 5 as they are.")
	{
		machine.add_program("PIANO", 2);
		machine.add_program("BASS", 1);
		machine.add_sample("KICK", 6000, ramp(90, 7));
		machine.add_sample("SNARE", 6000, ramp(60, 11));
		machine.add_sample("HAT", 6000, ramp(200, 9));
		plug(h, machine.on_wire(h.time));
		current_sampler->sampler_sysex = 6;
		machine.omni = true;
	}
	void wipe() override
	{
		machine.samples.clear();
		for (auto &p : machine.programs)
			for (auto &k : p.keygroups)
				k[1] = 60;
	}
	std::string memory() const override
	{
		std::string text;
		for (const auto &p : machine.programs)
			for (const auto &k : p.keygroups)
				text += text_of(k);
		for (const auto &s : machine.samples)
			text += text_of(s900_machine::get_name(s.header, 0), s.words);
		return text;
	}
	std::vector<std::vector<u8>> heard() const override
	{
		return { machine.heard.begin(), machine.heard.end() };
	}
	void forget_heard() override { machine.heard.clear(); }
	void change_sample() override { machine.samples[1].header[22] += 16; }
	void change_program() override { machine.programs[0].keygroups[0][1]--; }
};

template <class sampler> struct usb_rack : rack {
	sampler machine;
	template <typename... arguments>
	usb_rack(test_host &h, i32 id, arguments... which)
		: rack(id, "Send 3, replace 1.", ""), machine(which...)
	{
		fill();
		first_plan = sizeof...(which) ? "Send 3, replace 1, keep 1 as they are."
					      : "Send 3, replace 1, keep 2 as they are.";
		second_plan = sizeof...(which) ? "Keep 5 as they are." : "Keep 6 as they are.";
		for (const char *name : { "Kick", "KICK", "Snare L/R" })
			machine.add_sample(name,
				make_wave(ramp(90 + static_cast<int>(machine.samples.size()), 7),
					{ .channels = 1, .rate = 32000, .note = 38 }));
		machine.name = "Studio";
		machine.record = true;
		host.usb = &virtual_usb;
		plug_usb(h.time, machine);
		init_usb(1);
		h.use_sampler(id, 0, "Studio");
	}
	~usb_rack() override
	{
		unplug_all_usb();
		usbdev.clear();
		usbdevs = usb_init_done = 0;
	}
	void fill();
	std::string programs() const;
	void wipe() override { machine.samples.clear(), change_program(); }
	std::string memory() const override
	{
		std::string text = programs();
		for (const usb_sample &s : machine.samples)
			text += s.name + " " + text_of(s.wave);
		return text;
	}
	std::vector<std::vector<u8>> heard() const override
	{
		std::vector<std::vector<u8>> all;
		for (const usb_crossing &c : machine.recorded)
			if (c.from_host)
				all.push_back(c.bytes);
		return all;
	}
	void forget_heard() override { machine.recorded.clear(); }
	void change_sample() override
	{
		machine.samples[1].wave = make_wave(ramp(70, 3), { .channels = 1 });
	}
	void change_program() override;
	void fall_silent(int exchange) override
	{
		machine.strike(usb_fault::answer_missing, exchange, 100000);
	}
	void recover() override { machine.troubles.clear(), machine.plugged_in(); }
};

template <> inline void usb_rack<s5000>::fill()
{
	machine.multis = { "Live" };
	machine.programs.push_back({ "Grand", std::vector<s5000_keygroup>(2) });
	machine.programs.push_back({ "Bass", std::vector<s5000_keygroup>(1) });
	machine.programs[0].keygroups[1].at(0x04)[0] = 40;
	machine.programs[0].keygroups[1].zones[2].sample = "Snare L/R";
}
template <> inline void usb_rack<s5000>::change_program()
{
	machine.programs[0].keygroups[0].at(0x04)[0] = 31;
}
template <> inline std::string usb_rack<s5000>::programs() const
{
	std::string text;
	for (const s5000_program &p : machine.programs)
		for (const s5000_keygroup &k : p.keygroups) {
			text += p.name + " " + k.zones[2].sample + " " + text_of(k.amp);
			for (const auto &row : k.value)
				for (const auto &value : row)
					text += text_of(value);
		}
	return text;
}
template <> inline void usb_rack<z4>::fill()
{
	machine.add_program("Grand", std::vector<z4_keygroup>(2));
	machine.add_program("Bass", std::vector<z4_keygroup>(1));
	machine.programs[0].keygroups[1].low_note = 40;
	machine.programs[0].keygroups[1].zones[2].sample = "Snare L/R";
	machine.programs[0].keygroups[1].zones[2].level = { 1, 5, 0 };
}
template <> inline void usb_rack<z4>::change_program()
{
	machine.programs[0].keygroups[0].low_note = 31;
}
template <> inline std::string usb_rack<z4>::programs() const
{
	std::string text;
	for (const z4_program &p : machine.programs)
		for (const z4_keygroup &k : p.keygroups) {
			text += format_text("%s %d to %d, %d %d\n", p.name.c_str(), k.low_note,
				k.high_note, p.polyphony, p.reassignment);
			for (const z4_zone &zone : k.zones)
				text += zone.sample + " " + text_of(zone.level);
		}
	return text;
}

template <class of, auto... which> std::unique_ptr<rack> make_rack(test_host &h)
{
	return std::make_unique<of>(h, which...);
}

// clang-format off
inline const std::pair<const char *, std::unique_ptr<rack> (*)(test_host &h)> families[] = {
	{ "S900",    make_rack<s900_rack> },
	{ "S1000",   make_rack<s1000_rack, s1000_model::s1000, i32{ model_s1000 }> },
	{ "S3000",   make_rack<s1000_rack, s1000_model::s3000, i32{ model_s3000 }> },
	{ "S5000",   make_rack<usb_rack<s5000>, i32{ model_s5000 }> },
	{ "Z8",      make_rack<usb_rack<z4>, i32{ model_z4 }, z4_model::z8> },
	{ "MPC4000", make_rack<usb_rack<z4>, i32{ model_mpc4000 }, z4_model::mpc4000> },
};
// clang-format on

} // namespace velmor
