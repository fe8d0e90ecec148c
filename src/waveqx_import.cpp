// waveqx_import.cpp - foreign WAV files into the spool, and the chores of its folder
//
// A file is converted straight into the folder sample, under its own name with the
// extension that it came with, and appears there when it is complete. The folder temp,
// where earlier versions converted, is emptied at each import.
//
// No import shows a box: its caller does, who knows how many files there are. Why one
// failed stands in import_failure.
//
// Knows nothing of: what is inside a WAV file.

#include "src/controls.h"
#include "src/velmor.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

std::vector<_local_sample> local_sample;
int local_samples = 0;
std::string import_failure;

static void show_text(int window, int control, const std::string &text)
{
	if (window)
		host.ui->set_text(window, control, text.c_str());
}

static std::string name_in(const std::string &path)
{
	return path.substr(path.rfind('\\') + 1);
}

// ---- One file into the spool ----------------------------------------------------------

namespace
{

struct import_job {
	std::string source;
	int dialog;
	u32 bits, channels, mixing_mode, pitch;
	u64 rate;

	int end(const char *outcome, const char *percent, int result) const
	{
		show_text(dialog, samples_work_outcome, outcome);
		if (percent)
			show_text(dialog, samples_work_percent, percent);
		return result;
	}
};

// Which call of resample a wish and a file lead to; channels 0 for none.
struct import_case {
	u32 channels, mode;
	const char *logged;
};

} // namespace

static import_case case_of(u32 wanted, u32 present, u32 mixing_mode)
{
	static constexpr import_case none = { 0, 0, nullptr };
	if (wanted == 0)
		return { present, mix_mode_left, nullptr };
	if (mixing_mode & import_split)
		return present == 1 ? import_case{ wanted, mix_mode_left, nullptr } : none;
	if (present == 2) {
		switch (mixing_mode) {
		case import_left:
			return { wanted, mix_mode_left, nullptr };
		case import_right:
			return { wanted, mix_mode_right, nullptr };
		case import_mix:
			return { wanted, mix_mode_split, nullptr };
		default:
			return none;
		}
	}
	if (wanted != 2)
		return none;
	switch (mixing_mode) {
	case import_left:
		return { 2, mix_mode_left, "MIX_MODE_L" };
	case import_right:
		return { 2, mix_mode_right, "MIX_MODE_R" };
	case import_both:
		return { 2, mix_mode_split, "MIX_MODE_SPLIT" };
	default:
		return none;
	}
}

static std::string no_way_words(u32 channels)
{
	return channels == 1
		       ? tr("It has one channel, and these options make nothing of it. Choose "
			    "Keep original for the channels.")
		       : format_text(tr("It has %u channels, and these options make nothing of "
					"them. Choose Keep original for the channels."),
				 channels);
}

static std::string spool_name(const std::string &name)
{
	return current_config_path + "\\sample\\" + file_name_of(name);
}

// For a person, who knows the name of the file.
static std::string reason_of(
	const import_job &job, const std::string &target, const conversion_result &result)
{
	switch (result.end) {
	case conversion_end::done:
	case conversion_end::stopped:
		return "";
	case conversion_end::unreadable:
		return read_failure(job.source, result.code);
	case conversion_end::unwritable:
	case conversion_end::unfinished:
		return write_failure(target, result.code);
	case conversion_end::too_large:
		return tr("The result would be larger than a WAV file, or this computer's memory, "
			  "can hold.");
	case conversion_end::no_order:
		return tr("Its new rate or depth cannot be told in a file of the spool. Choose "
			  "another one.");
	case conversion_end::no_wave:
		break;
	}
	const std::string why = why_not_wave(job.source.c_str());
	return why.empty() ? tr("The rate asked for is none.") : why;
}

struct shown_end {
	const char *outcome, *percent; // null: the percentage stays
};

// A file that is converted and cannot take its place is not the conversion's fault.
static shown_end shown_for(const conversion_result &result, const char *percent)
{
	switch (result.end) {
	case conversion_end::done:
		return { "Success!", percent };
	case conversion_end::stopped:
		return { "Stopped!", "100 %" };
	case conversion_end::unfinished:
	case conversion_end::no_order:
		return { "Internal error converting file!", nullptr };
	default:
		return { "Resampling failed!", "100 %" };
	}
}

// percent is shown with the success.
static int import_one(const import_job &job, const import_case &way, const std::string &target,
	const char *percent)
{
	if (way.logged)
		log_line("[D] Creating %s FROM: [%s] --> [%s]\r\n", way.logged, job.source.c_str(),
			target.c_str());
	const conversion_result result = convert_for_spool({ job.source.c_str(), target.c_str(),
		way.channels, way.mode, job.bits, job.rate, job.pitch, job.dialog });
	import_failure = reason_of(job, target, result);
	const shown_end shown = shown_for(result, percent);
	return job.end(shown.outcome, shown.percent, result.end == conversion_end::done);
}

static int import_two(const import_job &job)
{
	const std::string name = name_in(job.source);
	const std::string base = name.substr(0, name.rfind('.'));
	if (!import_one(job, { 1, mix_mode_left, nullptr }, spool_name(base + "-L.wav"), "50 %"))
		return 0;
	return import_one(
		job, { 1, mix_mode_right, nullptr }, spool_name(base + "-R.wav"), "100 %");
}

// A file that somebody imports out of that very folder must outlive it.
static void empty_temporary_folder(const std::string &source)
{
	const std::string folder = current_config_path + "\\temp";
	host.files->make_folder(folder.c_str());
	if (!source.starts_with(folder + "\\"))
		cleanup_dir(folder.c_str());
}

int import_wave(const char *filename, int dialog, unsigned bits, int rate, unsigned channels,
	unsigned mixing_mode, unsigned original_pitch)
{
	u8 file_bits = 0, file_channels = 0, file_pitch = 0;
	int file_rate = 0;
	show_text(dialog, samples_work_percent, "1 %");
	import_failure.clear();
	if (!get_wave_info(filename, &file_bits, &file_channels, &file_rate, &file_pitch)) {
		import_failure = why_not_wave(filename);
		show_text(dialog, samples_work_outcome, "Cannot analyze original file");
		return 0;
	}
	log_line("[D] Original-Sample: [%s] Bits: %d, Channels: %d, Rate: %d Hz, Pitch: %d\r\n",
		filename, file_bits, file_channels, file_rate, file_pitch);
	empty_temporary_folder(filename);

	const u8 wanted_bits = static_cast<u8>(bits),
		 wanted_pitch = static_cast<u8>(original_pitch);
	const u8 wanted_channels = static_cast<u8>(channels);
	const import_job job = {
		.source = filename,
		.dialog = dialog,
		.bits = wanted_bits ? wanted_bits : file_bits,
		.channels = wanted_channels,
		.mixing_mode = static_cast<u8>(mixing_mode),
		.pitch = file_pitch < 255 || !wanted_pitch ? file_pitch : wanted_pitch,
		.rate = static_cast<u32>(rate ? rate : file_rate),
	};
	if (job.channels && (job.mixing_mode & import_split) && file_channels == 2)
		return import_two(job);
	const import_case way = case_of(job.channels, file_channels, job.mixing_mode);
	if (job.channels && !way.channels) {
		import_failure = no_way_words(file_channels);
		return 0;
	}
	return import_one(job, way, spool_name(name_in(job.source)), "100 %");
}

// ---- The list of the spool ----------------------------------------------------------------

static bool is_wave_name(std::string_view name)
{
	return name.size() > 4 && equal_but_for_case(name.substr(name.size() - 4), ".wav");
}

static bool local_sample_name_comparer(const _local_sample &a, const _local_sample &b)
{
	const std::string_view x = a.displayname, y = b.displayname;
	return std::lexicographical_compare(
		x.begin(), x.end(), y.begin(), y.end(), [](char c, char d) {
			return static_cast<u8>(lower(c)) < static_cast<u8>(lower(d));
		});
}

void load_local_samples(const char *folder_name)
{
	const std::string folder = folder_name ? folder_name : current_config_path + "\\sample";
	local_sample.clear();
	local_samples = 0;
	log_line("[I] Fetching Sample-List from [%s]\r\n", folder.c_str());
	host.files->make_folder(folder.c_str());
	std::vector<std::string> names;
	if (host.files->list(folder.c_str(), &names) != 0) {
		show_box("FATAL", "Cannot open directory: [%s]", folder.c_str());
		end_program(0);
		return;
	}
	for (const std::string &name : names) {
		const std::string path = folder + "\\" + name;
		_local_sample entry = {};
		// Cut to fit, a path would name another file.
		if (!is_wave_name(name) || path.size() - 4 >= sizeof entry.pathname ||
			name.size() - 4 >= sizeof entry.displayname)
			continue;
		copy_text(entry.pathname, std::string_view(path).substr(0, path.size() - 4));
		copy_text(entry.displayname, std::string_view(name).substr(0, name.size() - 4));
		local_sample.push_back(entry);
	}
	std::stable_sort(local_sample.begin(), local_sample.end(), local_sample_name_comparer);
	local_samples = static_cast<int>(local_sample.size());
}

// ---- Folder chores ------------------------------------------------------------------------

static void cleanup_entry(const std::string &path)
{
	file_info info = {};
	if (host.files->stat(path.c_str(), &info) != 0) {
		log_line("[W] Cannot stat [%s]\r\n", path.c_str());
		return;
	}
	if (info.link || info.regular) {
		log_line("[D] Processing file [%s]\r\n", path.c_str());
		host.files->remove(path.c_str());
	} else if (info.folder) {
		log_line("[D] Processing directory [%s]\r\n", path.c_str());
		cleanup_dir(path.c_str());
		host.files->remove_folder(path.c_str());
	} else {
		log_line("[W] Unknown Mode: 0x%04X for [%s]\r\n", 0, path.c_str());
	}
}

void cleanup_dir(const char *folder)
{
	log_line("[D] Cleaning up [%s]\r\n", folder);
	std::vector<std::string> names;
	if (host.files->list(folder, &names) != 0) {
		log_line("[D] Cannot open [%s]\r\n", folder);
		return;
	}
	for (const std::string &name : names)
		cleanup_entry(std::string(folder) + "\\" + name);
}

struct copy_failure {
	std::string words;    // "" when all went well
	bool missing = false; // the source is gone, which alone does not end a copy
};

static copy_failure copy_file(const std::string &source, const std::string &target)
{
	file_info info = {};
	if (host.files->stat(source.c_str(), &info) != 0)
		return { "Cannot stat [" + source + "]", true };
	auto failed = [](const std::string &words, const std::string &why) -> copy_failure {
		import_failure = why;
		return { words };
	};
	input_file from;
	// A pipe would wait for its other end.
	int code = from.measure(source.c_str());
	if (!code)
		code = from.open(source.c_str());
	if (code)
		return failed("Cannot open [" + source + "]", read_failure(source, code));
	fresh_file to;
	if ((code = to.open(target)))
		return failed(
			"Cannot open [" + target + "] for writing", write_failure(target, code));
	int source_code = 0;
	code = copy_bytes(from, 0, from.size, to, &source_code);
	if (source_code)
		return failed("Cannot read [" + source + "]", read_failure(source, source_code));
	if (!code)
		code = to.finish();
	return code ? failed("Cannot write to [" + target + "]", write_failure(target, code))
		    : copy_failure{};
}

// A disk that does not tell cases apart would put one file over another: true where the
// target's name is taken by an entry that was copied before.
static bool taken_in_another_case(
	const std::vector<std::string> &names, std::size_t at, const std::string &target_folder)
{
	const bool twin = std::any_of(names.begin(), names.begin() + static_cast<long>(at),
		[&](const std::string &earlier) { return equal_but_for_case(earlier, names[at]); });
	file_info info = {};
	if (!twin || host.files->stat((target_folder + "\\" + names[at]).c_str(), &info) != 0)
		return false;
	std::vector<std::string> there;
	host.files->list(target_folder.c_str(), &there);
	return std::find(there.begin(), there.end(), names[at]) == there.end();
}

// "" when everything was copied.
static std::string copy_entries(int dialog, const std::vector<std::string> &names,
	const std::string &source, const std::string &target)
{
	const int count = static_cast<int>(names.size());
	for (int i = 0; i < count; i++) {
		const std::string &name = names[static_cast<std::size_t>(i)];
		const std::string from = source + "\\" + name, to = target + "\\" + name;
		show_text(dialog, samples_work_file, from);
		log_line("[D] Copying [%s] to [%s]\r\n", from.c_str(), to.c_str());
		show_text(dialog, samples_work_percent, format_text("%.02f %%", i * 100.0 / count));
		show_text(dialog, samples_work_count, format_text("%d/%d", i + 1, count));
		set_progressbar(i);
		if (progress_stopped())
			return "Stopped!";
		if (taken_in_another_case(names, static_cast<std::size_t>(i), target)) {
			import_failure = format_text(tr("The folder does not tell %s from another "
							"sample whose name differs by case alone."),
				name.c_str());
			return "Cannot open [" + to + "] for writing";
		}
		const copy_failure failure = copy_file(from, to);
		if (!failure.words.empty() && !failure.missing)
			return failure.words;
		if (failure.missing)
			show_text(dialog, samples_work_outcome, failure.words);
	}
	return "";
}

bool copy_folder(int dialog, const char *source, const char *target)
{
	for (const int control : { samples_work_file, samples_work_percent, samples_work_count,
		     samples_work_outcome })
		show_text(dialog, control, "");
	auto plain = [](std::string path) {
		while (path.size() > 1 && path.back() == '\\')
			path.pop_back();
		return path;
	};
	const std::string from = plain(source), to = plain(target);
	import_failure.clear();
	if (from == to) {
		import_failure = tr("The export folder is the spool itself. Choose another one.");
		show_text(dialog, samples_work_outcome, "Export Folder is Spool-Directory!");
		return false;
	}
	std::vector<std::string> names;
	if (const int code = host.files->list(from.c_str(), &names)) {
		import_failure = read_failure(from, code);
		show_text(dialog, samples_work_outcome, "Cannot open [" + from + "]");
		return false;
	}
	std::erase_if(names, [](const std::string &name) { return is_temporary_name(name); });
	remove_left_files(to);
	show_progressbar(dialog, static_cast<int>(names.size()), "Copying files...");
	const std::string failure = copy_entries(dialog, names, from, to);
	if (failure.empty())
		show_text(dialog, samples_work_percent, "100 %");
	hide_progressbar(dialog);
	if (!failure.empty())
		show_text(dialog, samples_work_outcome, failure);
	return failure.empty();
}

// ---- The answer of a file dialog ------------------------------------------------------------

static constexpr std::size_t files_buffer_size = 10240;

static char *new_string(const std::string &text)
{
	char *out = static_cast<char *>(std::malloc(text.size() + 1));
	if (out)
		std::memcpy(out, text.c_str(), text.size() + 1);
	return out;
}

bool extract_files(const char *buffer, char ***files, int *count)
{
	std::vector<std::string> strings;
	for (std::size_t at = 0; at < files_buffer_size && buffer[at];) {
		const std::size_t length = strnlen(buffer + at, files_buffer_size - at);
		strings.emplace_back(buffer + at, length);
		at += length + 1;
	}
	*files = nullptr;
	*count = 0;
	for (std::size_t i = 1; i < strings.size(); i++)
		strings[i] = strings[0] + "\\" + strings[i];
	if (strings.size() > 1)
		strings.erase(strings.begin());
	if (strings.empty())
		return false;
	*files = static_cast<char **>(std::calloc(strings.size(), sizeof(char *)));
	for (const std::string &path : strings)
		if (char *copy = *files ? new_string(path) : nullptr)
			(*files)[(*count)++] = copy;
	return *count > 0;
}

} // namespace velmor
