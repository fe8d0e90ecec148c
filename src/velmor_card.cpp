// velmor_card.cpp - what the main window tells of the samplers: each in the list, the loaded one on its card
//
// Knows nothing of: toolkits, models.

#include "src/controls.h"
#include "src/velmor.h"

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
	return way + format_text(", channel %u", static_cast<unsigned>(s.sampler_sysex_channel));
}

// What a configuration says, in a second line; nothing if it cannot be read.
static std::string details_of(const std::string &name)
{
	_sampler s = {};
	int file;
	const std::string path = current_config_path + "\\" + name + ".sampler";
	if (host.files->open(path.c_str(), file_read, &file))
		return "";
	std::size_t count = 0;
	const int code = host.files->read(file, &s, sizeof s, &count);
	(void)host.files->close(file);
	const std::string brand = code || count < sizeof s ? "" : brand_of(s);
	return brand.empty() ? "" : brand + " · " + way_to(s);
}

void show_sampler_list()
{
	const int chosen = host.ui->selection(window_main, main_sampler_list);
	std::vector<std::vector<std::string>> rows;
	for (const std::string &name : conf_sampler) {
		const bool loaded = current_sampler && current_sampler->sampler_description == name;
		rows.push_back({ name, details_of(name), loaded ? "loaded" : "" });
	}
	host.ui->set_rows(window_main, main_sampler_list, rows);
	if (chosen >= 0 && chosen < static_cast<int>(rows.size()))
		host.ui->select(window_main, main_sampler_list, chosen);
}

static void show_count(int control, int count, const char *what)
{
	host.ui->set_text(
		window_main, control, count > 0 ? format_text("%d %s", count, what).c_str() : "");
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
	show_count(main_card_samples, dev ? dev->samples : 0, "samples");
	show_count(main_card_programs, dev ? dev->programs : 0, "programs");
	show_count(main_card_multis, dev ? dev->multis : 0, "multis");
}

} // namespace velmor
