// fake_model.cpp - a model whose operations are recorded, for tests of what calls them

#include "tests/support/fake_model.h"
#include "src/velmor_outcome.h"
#include <algorithm>

namespace velmor
{

static fake_model *the_fake;

// Note what was asked for, and whether an answer comes.
static bool answers(const std::string &call)
{
	the_fake->calls.push_back(call);
	const bool lost = the_fake->silent || the_fake->answers_lost > 0;
	the_fake->answers_lost -= the_fake->answers_lost > 0;
	if (lost)
		line_silent("No answer came.");
	else
		line_answered();
	return !lost;
}

static void fake_status(u8 control, u8 exclusive, _dev_status *dev)
{
	if (answers(format_text("getstatus %d %d", control, exclusive)))
		dev->status = 1;
}

static void fake_list(u8 control, u8 exclusive, _dev_status *dev)
{
	if (dev->status != 1 || !answers(format_text("getsamplelist %d %d", control, exclusive)))
		return;
	dev->samples = static_cast<i32>(the_fake->names.size());
	for (std::size_t i = 0; i < the_fake->names.size(); i++)
		copy_text(dev->sample[i].name, the_fake->names[i]);
}

static void fake_rename(u8, u8, const char *oldname, const char *newname)
{
	if (!answers(newname ? format_text("renamesample %s %s", oldname, newname)
			     : format_text("renamesample %s (delete)", oldname)) ||
		the_fake->refuses)
		return;
	const auto found = std::find(the_fake->names.begin(), the_fake->names.end(), oldname);
	if (found == the_fake->names.end())
		return;
	if (newname)
		*found = newname;
	else
		the_fake->names.erase(found);
}

static void fake_download(u8, u8, const char *name)
{
	if (!answers(format_text("downloadsample %s", name)) || the_fake->download_fails) {
		show_box("ERROR", "Failed to save sample!");
		return;
	}
	show_progressbar(0, the_fake->download_steps, "Downloading");
	for (int step = 0; step < the_fake->download_steps; step++) {
		set_progressbar(step);
		host.ui->pump(10);
		if (the_fake->on_step)
			the_fake->on_step(step);
		if (progress_stopped())
			break;
	}
	hide_progressbar(0);
	if (!progress_stopped())
		the_test_host->put_content(
			the_test_host->config + "\\sample\\" + file_name_of(name) + ".wav",
			wave_bytes(44100, 1, { 1, 2, 3, 4 }));
}

static void fake_info(u8, u8, const char *name)
{
	if (!answers(format_text("infosample %s", name)))
		return;
	for (_sample &s : current_sampler->status->sample) {
		if (s.name != std::string(name))
			continue;
		s.original_pitch = 60;
		s.sample_rate = 44100;
		s.start_position = 0;
		s.end_position = 88200;
		s.channels = 1;
		s.bitspersample = 16;
		s.playback_mode = 1;
		return;
	}
}

static void fake_upload(const char *path)
{
	if (!answers(format_text("uploadsample %s", path))) {
		show_box("ERROR", "Upload failed (received bad header ACK)");
		return;
	}
	const std::string whole = path;
	if (!the_fake->refuses)
		the_fake->names.push_back(whole.substr(whole.rfind('\\') + 1));
	show_box("INFO", "Sample successfully uploaded!");
}

static const char *fake_playmode(i32 mode)
{
	return mode == 1 ? "LOOP" : nullptr;
}

fake_model::fake_model(test_host &h)
	: row(sampler_type[get_sampler_brand_index(model_s3000)]), before(row)
{
	the_fake = this;
	row.getstatus = fake_status;
	row.getsamplelist = fake_list;
	row.renamesample = fake_rename;
	row.downloadsample = fake_download;
	row.infosample = fake_info;
	row.uploadsample = fake_upload;
	row.getplaymode = fake_playmode;
	h.use_sampler(model_s3000, 7);
}

fake_model::~fake_model()
{
	row = before;
	the_fake = nullptr;
}

static void put(std::vector<u8> *bytes, u32 value, int count)
{
	for (int i = 0; i < count; i++)
		bytes->push_back(static_cast<u8>(value >> (8 * i)));
}

static void put(std::vector<u8> *bytes, std::string_view text)
{
	bytes->insert(bytes->end(), text.begin(), text.end());
}

std::vector<u8> wave_bytes(
	u32 rate, unsigned channels, const std::vector<int> &words, u32 loop_start, u32 loop_end)
{
	const u32 data = static_cast<u32>(words.size()) * 2;
	std::vector<u8> b;
	put(&b, "RIFF");
	put(&b, 126 + data, 4);
	put(&b, "WAVEfmt ");
	put(&b, 18, 4);
	put(&b, 1, 2);
	put(&b, channels, 2);
	put(&b, rate, 4);
	put(&b, rate * 2 * channels, 4);
	put(&b, 2 * channels, 2);
	put(&b, 16, 2);
	put(&b, 0, 2);
	put(&b, "fact");
	put(&b, 4, 4);
	put(&b, data / 2 / channels, 4);
	put(&b, "smpl");
	put(&b, 60, 4);
	b.insert(b.end(), 12, 0);
	put(&b, 60, 4); // unity note
	b.insert(b.end(), 12, 0);
	put(&b, loop_end > loop_start ? 1 : 0, 4);
	put(&b, 0, 4);
	b.insert(b.end(), 8, 0);
	put(&b, loop_start, 4);
	put(&b, loop_end, 4);
	b.insert(b.end(), 8, 0);
	put(&b, "data");
	put(&b, data, 4);
	for (int word : words)
		put(&b, static_cast<u32>(word), 2);
	return b;
}

} // namespace velmor
