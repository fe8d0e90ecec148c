// velmor_usb.cpp - the USB dialog: which samplers are there, what they say of themselves
//
// The dialog shows one device of the last scan. Its exclusive channel is shown in all three
// channel fields, so a sampler that is saved unchanged gets its control and MIDI channel one
// above it.
//
// Knows nothing of: toolkits, frames.

#include "src/controls.h"
#include "src/lcd.h"
#include "src/usbqx.h"
#include "src/velmor_window.h"
#include <cstdlib>

namespace velmor
{

// clang-format off
struct fact_field { usb_fact fact; int field; };
static constexpr fact_field fact_fields[] = {
	{ usb_fact::hardware, usb_hardware },
	{ usb_fact::version,  usb_version },
	{ usb_fact::name,     usb_name },
};
static constexpr int channel_fields[] = { usb_exclusive_channel, usb_midi_channel, usb_control_channel };
static constexpr int info_fields[]    = { usb_hardware, usb_version, usb_name, usb_exclusive_channel, usb_midi_channel, usb_control_channel };
// clang-format on

static void set_field(int field, const std::string &text)
{
	host.ui->set_text(window_usb, field, text.c_str());
}

// Sockets of the devices in the list, since a scan may have found others meanwhile.
static std::vector<std::string> listed;

// The device chosen in the list, or null.
static _usbdev *selected_device()
{
	const int chosen = host.ui->selection(window_usb, usb_device_list);
	if (chosen < 0)
		return nullptr;
	const auto index = static_cast<std::size_t>(chosen);
	if (index >= listed.size())
		return index < usbdev.size() ? &usbdev[index] : nullptr;
	for (_usbdev &usb : usbdev)
		if (usb.device_path == listed[index])
			return &usb;
	return nullptr;
}

// Open it, or end the process with the host's words.
static open_usbdev open_or_end(_usbdev *usb)
{
	if (open_midi_usb(usb))
		return open_usbdev(usb);
	display_error_text(__FILE_NAME__, __LINE__, host.usb->error_text(usb_last_result));
	end_program(0);
	return nullptr;
}

static void end_with(open_usbdev usb, const char *words)
{
	usb.reset();
	show_box("FATAL", "%s", words);
	end_program(0);
}

static bool ask(_usbdev *usb, std::span<const u8> command, std::vector<u8> *answer)
{
	int received = 0;
	answer->resize(1024);
	const bool done = _sysex_midi_usb(usb, command.data(), static_cast<int>(command.size()),
		answer->data(), static_cast<int>(answer->size()), &received, __FILE_NAME__,
		__LINE__);
	answer->resize(static_cast<std::size_t>(received));
	return done;
}

static std::string fact_text(const usb_family &family, usb_fact fact, bounded_bytes answer)
{
	if (fact == usb_fact::name)
		return usb_name_in(family, answer);
	if (fact == usb_fact::version) {
		const std::size_t at = usb_version_at(family, answer);
		return format_text("%d.%d", answer[at] & 0x7F, answer[at + 1] & 0x7F);
	}
	for (const usb_kind &kind : family.kinds)
		if (family.data_offset < answer.size() && answer[family.data_offset] == kind.answer)
			return kind.name;
	return family.any_kind;
}

static void clear_fields()
{
	for (const int field : info_fields)
		set_field(field, "");
}

// Ask an open device what it is and show it: the words for what failed, or null.
static const char *fill_fields(_usbdev *usb)
{
	const usb_family &family = family_of(*usb);
	set_field(usb_version, "unknown");
	for (const usb_question &question : family.questions) {
		std::vector<u8> answer;
		if (!ask(usb, question.command, &answer))
			return question.failure;
		for (const fact_field &row : fact_fields)
			if (row.fact == question.fact)
				set_field(row.field, fact_text(family, row.fact, { answer }));
	}
	for (const int field : channel_fields)
		set_field(field, format_text("%d", usb->sysex_channel));
	return nullptr;
}

static _usbdev *device_to_show()
{
	clear_fields();
	_usbdev *usb = selected_device();
	if (usb)
		log_line("[D] FILL_USB_INFO Retrieving Info for Sampler: [%s](%d)[%s]\r\n",
			usb->usb_name, usb->device_type, usb->device_path);
	else
		log_line("[I] No USB sampler found\r\n");
	return usb;
}

void fill_usb_info()
{
	_usbdev *usb = device_to_show();
	if (!usb)
		return;
	open_usbdev open = open_or_end(usb);
	const char *failure = open ? fill_fields(usb) : nullptr;
	if (failure)
		end_with(std::move(open), failure);
}

// Fields that do not belong to the chosen device would be written to it: when it cannot be
// asked they stay empty.
void choose_usb_device()
{
	host.ui->set_text(window_usb, usb_verdict, "");
	_usbdev *usb = device_to_show();
	if (!usb)
		return;
	const open_usbdev open(open_midi_usb(usb) ? usb : nullptr);
	if (open && !fill_fields(usb))
		return;
	clear_fields();
	show_box("ERROR", tr("[%s] did not say what it is. Is it switched on?"), usb->usb_name);
}

void update_usb_sampler_name()
{
	_usbdev *usb = selected_device();
	if (!usb) {
		show_box("INFO", tr("No USB sampler selected!"));
		return;
	}
	const std::string name = host.ui->get_text(window_usb, usb_name);
	if (name.empty()) {
		show_box("INFO", tr("Please enter a name for the sampler."));
		return;
	}
	open_usbdev open = open_or_end(usb);
	if (!open)
		return;
	log_line("[I] Setting new Sampler-Name: [%s] for Sampler: [%s]\r\n", name.c_str(),
		usb->usb_name);
	const std::span<const u8> set_name = family_of(*usb).set_name;
	std::vector<u8> command(set_name.begin(), set_name.end());
	command.insert(command.end(), name.begin(), name.end());
	command.push_back(0);
	std::vector<u8> answer;
	if (!ask(usb, command, &answer))
		end_with(std::move(open), "Cannot get Hardware-Type for AKAI S5000/S6000!");
}

// Only the low byte of a number in a field counts; what is no number is 0.
static u32 channel_in(int field)
{
	const std::string text = host.ui->get_text(window_usb, field);
	return static_cast<u32>(std::strtoul(text.c_str(), nullptr, 10)) & 0xFF;
}

void save_usb_sampler()
{
	const _usbdev *usb = selected_device();
	if (!usb) {
		show_box("INFO", tr("No USB sampler selected!"));
		return;
	}
	_sampler record = {};
	// The name is a file's name too, and a device can have any.
	copy_text(record.sampler_description, file_name_of(usb->usb_name));
	copy_text(record.sampler_usbname, usb->usb_name);
	record.sampler_type = static_cast<u32>(usb->device_type);
	record.sampler_midi = channel_in(usb_midi_channel) + 1;
	record.sampler_sysex = channel_in(usb_control_channel) + 1;
	record.sampler_sysex_channel = channel_in(usb_exclusive_channel);
	log_line("[I] Saving Sampler: [%s](%d)\r\n", record.sampler_description, usb->device_type);
	const std::string path =
		current_config_path + "\\" + record.sampler_description + ".sampler";
	log_line("[I] Saving Sampler: [%s](%d)[%s]\r\n", record.sampler_description,
		usb->device_type, path.c_str());
	if (may_store(record.sampler_description, path))
		(void)store_sampler(record);
}

void show_usb_sampler_setup()
{
	stop_panel();
	log_line("[D] Starting USB-Sampler Setup\r\n");
	open_window(window_usb);
	host.ui->set_text(window_usb, usb_verdict, "");
	init_usb(1);
	std::vector<std::string> names;
	listed.clear();
	for (const _usbdev &usb : usbdev) {
		names.emplace_back(usb.usb_name);
		listed.emplace_back(usb.device_path);
	}
	host.ui->set_list(window_usb, usb_device_list, names);
	if (!names.empty())
		host.ui->select(window_usb, usb_device_list, 0);
	fill_usb_info();
}

// ---- The window -------------------------------------------------------------------------

static void keep_usb_sampler()
{
	save_usb_sampler();
	empty_open_pages();
	host.ui->show(window_usb, 0, false);
}

static void show_usb_verdict(const std::string &words, text_role role)
{
	host.ui->set_text(window_usb, usb_verdict, words.c_str());
	host.ui->set_role(window_usb, usb_verdict, role);
}

// Whoever does not answer ends the program, in words of its own.
static void ask_usb_device()
{
	log_line("[D] Entering USB-Setup dialog...\r\n");
	fill_usb_info();
	auto text = [](int field) { return host.ui->get_text(window_usb, field); };
	if (selected_device())
		show_usb_verdict(
			format_text(tr("'%s' answered: %s, version %s."), text(usb_name).c_str(),
				text(usb_hardware).c_str(), text(usb_version).c_str()),
			text_role::good);
	else
		show_usb_verdict(
			tr("No sampler was found on the USB. Is it on, and its cable plugged "
			   "in? Open this window again to look again."),
			text_role::failed);
}

// A sampler on the USB has no bridge: only said in the log.
static void note_midi()
{
	log_line("Requesting MIDI instead of TCP\r\n");
}

static void rename_usb_sampler()
{
	update_usb_sampler_name();
	host.ui->show(window_usb, 0, false);
}

// clang-format off
static constexpr caption_row usb_captions[] = {
	// window          control                  caption, tooltip, empty
	{ window_usb,      0,                       "VELMOR Manage USB Samplers", nullptr, nullptr },
	{ window_usb,      usb_device_list,         own("Device:"), own("The samplers found on the USB"), own("No sampler found on the USB") },
	{ window_usb,      usb_hardware,            own("Hardware:"), own("What the sampler says it is"), nullptr },
	{ window_usb,      usb_version,             own("OS-Version:"), own("The version of its system"), nullptr },
	{ window_usb,      usb_name,                own("Sampler-Name:"), own("The sampler's own name; Update stores it in the sampler"), nullptr },
	{ window_usb,      usb_exclusive_channel,   own("Sysex-Ch:"), own("The exclusive channel"), nullptr },
	{ window_usb,      usb_midi_channel,        own("MIDI-Ch:"), own("The channel on which the sampler plays notes"), nullptr },
	{ window_usb,      usb_control_channel,     own("CTRL-Ch:"), own("The control channel"), nullptr },
	{ window_usb,      usb_device_info,         "Get Device Info", own("Ask the chosen sampler who it is"), nullptr },
	{ window_usb,      usb_update,              "&Update", own("Give the sampler the name in the field"), nullptr },
	{ window_usb,      control_ok,              "&Save", own("Keep this sampler in the list"), nullptr },
	{ window_usb,      control_cancel,          "&Cancel", own("Close without saving"), nullptr },
	{ window_usb,      usb_verdict,             own("Answer of the sampler"), nullptr, nullptr },
};
static constexpr command_row usb_commands[] = {
	{ window_usb,      control_ok,              keep_usb_sampler,          alone  },
	{ window_usb,      control_cancel,          hide_window<window_usb>,   always },
	{ window_usb,      usb_device_info,         ask_usb_device,            alone  },
	{ window_usb,      usb_update,              rename_usb_sampler,        alone  },
	{ window_usb,      sampler_tcp_off,         note_midi,                 alone  },
};
static constexpr command_row usb_selections[] = {
	{ window_usb,      usb_device_list,         choose_usb_device,         alone  },
};
// clang-format on

constinit const window_rows usb_rows = { usb_captions, usb_commands, usb_selections };

} // namespace velmor
