// velmor_usb.cpp - the USB dialog: which samplers are there, what they say of themselves
//
// The dialog shows one device of the last scan. Its exclusive channel is shown in all three
// channel fields, so a sampler that is saved unchanged gets its control and MIDI channel one
// above it.
//
// Knows nothing of: toolkits, frames.

#include "src/controls.h"
#include "src/usbqx.h"
#include "src/velmor.h"
#include <array>
#include <cstdlib>

namespace velmor
{

// How a field's text comes out of an answer.
enum class info_kind {
	hardware,
	version,
	text
};

struct info_row {
	bool s5000; // else the Z family
	u8 command[2];
	int field;
	std::size_t offset;
	info_kind kind;
	const char *failure;
};

struct hardware_names {
	const char *name[3];
	const char *other;
};

// clang-format off
static constexpr const char *no_z_hardware = "Cannot get Hardware-Type for AKAI Z/MPC!";
static constexpr const char *no_hardware   = "Cannot get Hardware-Type for AKAI S5000/S6000!";
static constexpr const char *no_version    = "Cannot get OS-Version for AKAI S5000/S6000!";
static constexpr const char *no_name       = "Cannot get Sampler-Name for AKAI S5000/S6000!";

static constexpr info_row info_rows[] = {
	// s5000 command        field         offset kind                 words for a failure
	{ false, { 0x04, 0x04 }, usb_hardware, 8, info_kind::hardware, no_z_hardware },
	{ false, { 0x04, 0x00 }, usb_version,  8, info_kind::version,  no_hardware },   // so worded
	{ false, { 0x07, 0x01 }, usb_name,     8, info_kind::text,     no_hardware },   // so worded
	{ true,  { 0x02, 0x04 }, usb_hardware, 9, info_kind::hardware, no_hardware },
	{ true,  { 0x02, 0x00 }, usb_version,  9, info_kind::version,  no_version },
	{ true,  { 0x02, 0x03 }, usb_name,     9, info_kind::text,     no_name },
};
static constexpr hardware_names s5000_hardware = { { "S5000", "S6000", nullptr }, "S5000/S6000" };
static constexpr hardware_names z4_hardware    = { { "Z4", "Z8", "MPC" },         "Z4/Z8/MPC4000" };

static constexpr int channel_fields[] = { usb_exclusive_channel, usb_midi_channel, usb_control_channel };
static constexpr int info_fields[]    = { usb_hardware, usb_version, usb_name, usb_exclusive_channel, usb_midi_channel, usb_control_channel };
static constexpr u8 s5000_set_name[]  = { 0x02, 0x02 };
static constexpr u8 z4_set_name[]     = { 0x00, 0x06, 0x01 };
// clang-format on

static void set_field(int field, const std::string &text)
{
	host.ui->set_text(window_usb, field, text.c_str());
}

// The device chosen in the list, or null.
static _usbdev *selected_device()
{
	const int index = host.ui->selection(window_usb, usb_device_list);
	return index >= 0 && index < usbdevs ? &usbdev[static_cast<std::size_t>(index)] : nullptr;
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

static std::string info_text(const info_row &row, bounded_bytes answer)
{
	if (row.kind == info_kind::text)
		return answer.text(row.offset);
	if (row.kind == info_kind::version)
		return format_text(
			"%d.%d", answer[row.offset] & 0x7F, answer[row.offset + 1] & 0x7F);
	const hardware_names &names = row.s5000 ? s5000_hardware : z4_hardware;
	const bool told = row.offset < answer.size() && answer[row.offset] < std::size(names.name);
	const char *name = told ? names.name[answer[row.offset]] : nullptr;
	return name ? name : names.other;
}

void fill_usb_info()
{
	for (const int field : info_fields)
		set_field(field, "");
	_usbdev *usb = selected_device();
	if (!usb) {
		log_line("[I] No USB sampler found\r\n");
		return;
	}
	log_line("[D] FILL_USB_INFO Retrieving Info for Sampler: [%s](%d)[%s]\r\n", usb->usb_name,
		usb->device_type, usb->device_path);
	open_usbdev open = open_or_end(usb);
	if (!open)
		return;
	set_field(usb_version, "unknown");
	for (const info_row &row : info_rows) {
		if (row.s5000 != (usb->device_type == model_s5000))
			continue;
		std::array<u8, 1024> answer;
		int received = 0;
		if (!_sysex_midi_usb(usb, row.command, sizeof row.command, answer.data(),
			    static_cast<int>(answer.size()), &received, __FILE_NAME__, __LINE__))
			return end_with(std::move(open), row.failure);
		const std::span<const u8> bytes(answer.data(), static_cast<std::size_t>(received));
		set_field(row.field, info_text(row, { bytes }));
	}
	for (const int field : channel_fields)
		set_field(field, format_text("%d", usb->sysex_channel));
}

void update_usb_sampler_name()
{
	_usbdev *usb = selected_device();
	if (!usb) {
		show_box("INFO", "No USB sampler selected!");
		return;
	}
	open_usbdev open = open_or_end(usb);
	if (!open)
		return;
	const std::string name = host.ui->get_text(window_usb, usb_name);
	log_line("[I] Setting new Sampler-Name: [%s] for Sampler: [%s]\r\n", name.c_str(),
		usb->usb_name);
	std::vector<u8> command;
	if (usb->device_type == model_s5000)
		command.assign(std::begin(s5000_set_name), std::end(s5000_set_name));
	else
		command.assign(std::begin(z4_set_name), std::end(z4_set_name));
	command.insert(command.end(), name.begin(), name.end());
	command.push_back(0);
	std::array<u8, 1024> answer;
	int received = 0;
	if (!_sysex_midi_usb(usb, command.data(), static_cast<int>(command.size()), answer.data(),
		    static_cast<int>(answer.size()), &received, __FILE_NAME__, __LINE__))
		end_with(std::move(open), no_hardware);
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
		show_box("INFO", "No USB sampler selected!");
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
	log_line("[D] Starting USB-Sampler Setup\r\n");
	host.ui->show(window_usb, 0, true);
	init_usb(1);
	std::vector<std::string> names;
	for (const _usbdev &usb : usbdev)
		names.emplace_back(usb.usb_name);
	host.ui->set_list(window_usb, usb_device_list, names);
	if (!names.empty())
		host.ui->select(window_usb, usb_device_list, 0);
	fill_usb_info();
}

} // namespace velmor
