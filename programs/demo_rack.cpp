// demo_rack.cpp - the virtual samplers of the demo, their configurations, and a folder of its own

#include "programs/demo_rack.h"
#include "platform/backends.h"
#include "src/velmor.h"
#include "virtual/midi_ports.h"
#include "virtual/usb_bus.h"
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace velmor
{

static constexpr std::size_t most_played = 1 << 20; // bytes; a demo may run for days

// ---- What is plugged in -----------------------------------------------------------------------

// A machine that is switched off takes nothing and says nothing.
static midi_machine while_on(midi_machine machine, const bool *on)
{
	machine.answer = [hear = machine.answer, on](machine::byte_view message) {
		return *on ? hear(message) : machine::bytes();
	};
	return machine;
}

void plug_in(demo_rack *r)
{
	fill_s3000(r->s3000);
	fill_s1000(r->s1000);
	fill_demo(r->s900);
	// The S900 stands first: it alone hears a dump in parts.
	midi_machine cable = on_one_cable({ r->s900.on_wire(r->time),
		while_on(r->s3000.on_wire(), &r->s3000_on), r->s1000.on_wire() });
	cable.played = [r](machine::byte_view notes) {
		r->played.insert(r->played.end(), notes.begin(), notes.end());
		if (r->played.size() > most_played)
			r->played.clear();
	};
	plug_midi(r->time, std::move(cable), "Demo MIDI cable");
	const auto deaf = [](machine::byte_view) { return machine::bytes(); };
	r->keyboard = plug_midi(r->time, { deaf, deaf, deaf }, "Demo keyboard");
	fill_demo(r->usb_s5000);
	plug_usb(r->time, r->usb_s5000);
	fill_demo(r->usb_z8);
	plug_usb(r->time, r->usb_z8);
}

// ---- Where everything lies ----------------------------------------------------------------------

struct configuration {
	const char *name;
	i32 model;
	u8 channel; // exclusive, from 0
	const char *usb_name;
	u8 control; // the channel that an S900 is asked on, from 1
};
static constexpr configuration configurations[] = {
	{ "Demo S3000", model_s3000, 0, "", 1 },
	{ "Demo S1000", model_s1000, 2, "", 1 },
	{ "Demo S900", model_s900, 3, "", 4 },
	{ "Demo S5000", model_s5000, 0, "Demo S5000", 1 },
	{ "Demo Z8", model_z4, 0, "Demo Z8", 1 },
};

void write_demo_configurations(const std::string &root)
{
	for (const configuration &c : configurations) {
		const std::string path = root + "/VELMOR/CONFIG/" + c.name + ".sampler";
		if (std::filesystem::exists(path))
			continue;
		_sampler sampler = {};
		copy_text(sampler.sampler_description, c.name);
		copy_text(sampler.sampler_usbname, c.usb_name);
		sampler.sampler_type = static_cast<u32>(c.model);
		sampler.sampler_sysex = c.control;
		sampler.sampler_midi = 1;
		sampler.sampler_sysex_channel = c.channel;
		std::ofstream file(path, std::ios::binary);
		file.write(reinterpret_cast<const char *>(&sampler), sizeof sampler);
	}
}

void use_demo_folder(const std::string &root)
{
	std::filesystem::create_directories(root + "/VELMOR/CONFIG");
	setenv("LOCALAPPDATA", root.c_str(), 1);
	setenv("XDG_CONFIG_HOME", (root + "/settings").c_str(), 1);
	for (const char *key : { "midi_in", "midi_out" })
		posix_settings.save_key(key, "0");
	posix_settings.save_key("midi_in_mon", "1");
}

std::string demo_folder()
{
	const char *root = posix_settings.user_root();
	return root ? posix_files.host_path(root) + "/VELMOR-Demo" : "";
}

} // namespace velmor
