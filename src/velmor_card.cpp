// velmor_card.cpp - what the main window tells of the samplers: each in the list, the loaded one on its card
//
// Knows nothing of: toolkits, models.

#include "src/usbqx.h"
#include "src/velmor_window.h"
#include <algorithm>

namespace velmor
{

static std::string brand_of(const _sampler &s)
{
	const _sampler_type *model = get_sampler(static_cast<i32>(s.sampler_type));
	return model ? model->sampler_brand : "";
}

static std::string way_to(const _sampler &s)
{
	const std::string way = s.sampler_usbname[0] ? "USB" : "MIDI";
	return way +
	       format_text(tr(", channel %u"), static_cast<unsigned>(s.sampler_sysex_channel));
}

bool read_configuration(const std::string &name, _sampler *record)
{
	int file;
	if (host.files->open(sampler_file(name.c_str()).c_str(), file_read, &file))
		return false;
	std::size_t count = 0;
	const int code = host.files->read(file, record, sizeof *record, &count);
	(void)host.files->close(file);
	record->sampler_description[sizeof record->sampler_description - 1] = '\0';
	record->sampler_usbname[sizeof record->sampler_usbname - 1] = '\0';
	return !code && count == sizeof *record;
}

// ---- What is plugged in ----------------------------------------------------------------------

// Names of the samplers on the USB that are plugged in now, as far as the last scan knows them.
static std::vector<std::string> plugged_names()
{
	std::vector<std::string> names;
	std::vector<usb_device> devices;
	if (!host.usb->list(&devices))
		return names;
	for (const _usbdev &usb : usbdev)
		if (std::any_of(devices.begin(), devices.end(), [&](const usb_device &device) {
			    return device.path == usb.device_path;
		    }))
			names.emplace_back(usb.usb_name);
	return names;
}

static std::vector<std::string> shown_plugged;

void update_plugged_entries()
{
	// Before the first scan nobody knows which sampler a device is.
	if (!usb_init_done || command_running() || usb_in_use() || plugged_names() == shown_plugged)
		return;
	show_sampler_list();
}

static const char *plug_of(const _sampler &s)
{
	if (!s.sampler_usbname[0] || !usb_init_done)
		return "";
	const bool plugged = std::find(shown_plugged.begin(), shown_plugged.end(),
				     s.sampler_usbname) != shown_plugged.end();
	return plugged ? "plugged in" : "not plugged in";
}

// ---- The list --------------------------------------------------------------------------------

// Its name, what the configuration says, whether it is loaded, and whether it is plugged in;
// the name alone if the configuration cannot be read.
static std::vector<std::string> row_of(const std::string &name)
{
	_sampler s = {};
	const bool loaded = current_sampler && current_sampler->sampler_description == name;
	std::vector<std::string> row = { name, "", loaded ? tr("loaded") : "", "" };
	const std::string brand = read_configuration(name, &s) ? brand_of(s) : "";
	if (brand.empty())
		return row;
	row[3] = plug_of(s);
	row[1] = brand + " · " +
		 (row[3].empty()                  ? way_to(s)
			 : row[3] == "plugged in" ? tr("USB, plugged in")
						  : tr("USB, not plugged in"));
	return row;
}

void show_sampler_list()
{
	const int chosen = host.ui->selection(window_main, main_sampler_list);
	shown_plugged = usb_init_done ? plugged_names() : std::vector<std::string>();
	std::vector<std::vector<std::string>> rows;
	for (const std::string &name : conf_sampler)
		rows.push_back(row_of(name));
	host.ui->set_rows(window_main, main_sampler_list, rows);
	if (chosen >= 0 && chosen < static_cast<int>(rows.size()))
		host.ui->select(window_main, main_sampler_list, chosen);
	update_entry_commands();
}

static void show_count(int control, int count, noun what)
{
	host.ui->set_text(window_main, control, count > 0 ? counted(count, what).c_str() : "");
}

void show_loaded_card()
{
	const _sampler *s = current_sampler;
	host.ui->show(window_main, main_card, s != nullptr);
	if (!s)
		return;
	host.ui->set_text(window_main, main_card_name, s->sampler_description);
	host.ui->set_text(window_main, main_card_way, (brand_of(*s) + " · " + way_to(*s)).c_str());
	const _dev_status *dev = s->status;
	show_count(main_card_samples, dev ? dev->samples : 0, noun::sample);
	show_count(main_card_programs, dev ? dev->programs : 0, noun::program);
	show_count(main_card_multis, dev ? dev->multis : 0, noun::multi);
}

} // namespace velmor
