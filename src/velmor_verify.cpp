// velmor_verify.cpp - what arrived, compared with what was meant to arrive
//
// Knows nothing of: windows.

#include "src/velmor_verify.h"
#include "src/akais900.h"
#include "src/velmor_backup_parts.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include <algorithm>
#include <map>

namespace velmor
{

static std::string quoted(const std::string &name)
{
	return "'" + name + "'";
}

static std::string base_of(const std::string &path)
{
	const std::string file = path.substr(path.rfind('\\') + 1);
	return equal_but_for_case(
		       file.substr(file.size() - std::min<std::size_t>(4, file.size())), ".wav")
		       ? file.substr(0, file.size() - 4)
		       : file;
}

// ---- Files --------------------------------------------------------------------------------------

// The values of a WAV file, in the order of the file: those of a stereo file are pairs.
struct audio {
	input_file file = {};
	u64 at = 0, values = 0;
	unsigned channels = 1, bits = 16, width = 2;
	u32 rate = 0;

	u32 value(u64 i)
	{
		u8 bytes[4] = {};
		(void)file.read(at + i * width, bytes, width); // zero behind the end
		return wave_read_32bit(bytes);
	}
};

static bool open_audio(const std::string &path, audio *a)
{
	wave_head head;
	if (a->file.measure(path.c_str()) || a->file.open(path.c_str()) ||
		read_wave_head(a->file, &head) || !head.channels ||
		head.bytespersample % head.channels || !head.bytespersample)
		return false;
	a->channels = head.channels;
	a->bits = head.bitspersample;
	a->width = head.bytespersample / head.channels;
	a->rate = head.sample_rate;
	const auto look = [&](const wave_chunk &chunk, u64) {
		if (!chunk.is("data"))
			return true;
		a->at = chunk.at + 8;
		a->values = wave_bytes_held(a->file, chunk) / a->width;
		return false;
	};
	return a->width <= 4 && !walk_chunks(a->file, head, look) && a->at;
}

u64 wave_frames(const std::string &path)
{
	audio a;
	return open_audio(path, &a) ? a.values / a.channels : 0;
}

struct value_differences {
	u64 count = 0, first = 0;
};

// Of the first values; what the sent file lacks of them is silence.
static value_differences count_differences(audio &sent, audio &arrived, u64 values, u32 mask)
{
	value_differences d;
	for (u64 i = 0; i < values; i++) {
		const u32 wanted = i < sent.values ? sent.value(i) & mask : 0;
		if (wanted == arrived.value(i))
			continue;
		d.first = d.count++ ? d.first : i;
	}
	return d;
}

// ---- What was meant to arrive -----------------------------------------------------------------------

// A dump's header counts the bytes of the file, with three bytes of seven bits.
static constexpr u64 longest_dump = 0x1FFFFF;

static bool sends_dumps(const _sampler_type &model, compared_way way)
{
	return way == compared_way::to_sampler && !(model.sampler_flags & flag_usb) &&
	       model.sampler_type != model_s900;
}

// Of what such a transfer makes of a file, that which has the length of what arrived.
static u64 values_due(bool dumped, const audio &sent, const audio &arrived)
{
	return !dumped || arrived.values == sent.values
		       ? sent.values
		       : std::min(sent.values * sent.width, longest_dump);
}

// A machine may not take the two lowest bits of a dump's words, since they travel in a place of
// their own.
static value_differences find_differences(bool dumped, audio &sent, audio &arrived, u64 values)
{
	constexpr u32 whole = 0xFFFFFFFF, without_lowest = 0xFFFC;
	const value_differences all = count_differences(sent, arrived, values, whole);
	if (!all.count || !dumped)
		return all;
	const value_differences most = count_differences(sent, arrived, values, without_lowest);
	return most.count < all.count ? most : all;
}

static std::string of_values(const value_differences &d, const audio &a, u64 values)
{
	const char *side = a.channels != 2 ? ""
			   : d.first % 2   ? tr(" on the right")
					   : tr(" on the left");
	return format_text(tr("%llu of %llu values differ, the first at %llu%s."),
		static_cast<unsigned long long>(d.count), static_cast<unsigned long long>(values),
		static_cast<unsigned long long>(d.first / a.channels), side);
}

// What the files are, where that is told to the sampler as it is.
static std::string shape_difference(const audio &sent, const audio &arrived)
{
	const struct {
		u32 sent, arrived;
		const char *words;
	} rows[] = {
		{ sent.channels, arrived.channels, tr("It has %u channels instead of %u.") },
		{ sent.bits, arrived.bits, tr("It has %u bits instead of %u.") },
		{ sent.rate, arrived.rate, tr("It has %u Hz instead of %u Hz.") },
	};
	for (const auto &row : rows)
		if (row.sent != row.arrived)
			return format_text(row.words, row.arrived, row.sent);
	return "";
}

std::string wave_difference(const _sampler_type &model, compared_way way, const std::string &sent,
	const std::string &arrived, u64 *values)
{
	audio a, b;
	for (const auto &[path, file] : { std::pair{ &sent, &a }, std::pair{ &arrived, &b } })
		if (!open_audio(*path, file))
			return format_text(tr("[%s] cannot be read."),
				host.files->host_path(path->c_str()).c_str());
	const bool all = way == compared_way::from_sampler || (model.sampler_flags & flag_usb);
	const std::string shape = all ? shape_difference(a, b) : "";
	if (!shape.empty() || a.width != b.width)
		return shape.empty() ? tr("Its values have another size.") : shape;
	const bool dumped = sends_dumps(model, way);
	const u64 due = values_due(dumped, a, b);
	*values = std::min(due, b.values);
	const value_differences d = find_differences(dumped, a, b, *values);
	std::string words = d.count ? of_values(d, a, *values) : "";
	if (due != b.values)
		words = format_text(tr("%llu values were meant to arrive, and %llu did."),
				static_cast<unsigned long long>(due),
				static_cast<unsigned long long>(b.values)) +
			(words.empty() ? "" : " " + words);
	return words;
}

// ---- With the sampler ---------------------------------------------------------------------------------

// As a sampler may call a file: in other letters, cut, and with a full stop for what it lacks.
static bool may_be_called(const std::string &file, const std::string &name)
{
	constexpr std::size_t shortest_cut = 10;
	if (file.size() < name.size() || (file.size() > name.size() && name.size() < shortest_cut))
		return false;
	return std::equal(name.begin(), name.end(), file.begin(),
		[](char c, char f) { return lower(c) == lower(f) || c == '.'; });
}

static std::string name_on_sampler(const std::string &file)
{
	const std::vector<std::string> names = loaded_names();
	if (std::ranges::find(names, file) != names.end())
		return file;
	const auto found = std::ranges::find_if(names, [&](const std::string &name) {
		return may_be_called(file, without_end_blanks(name));
	});
	return found == names.end() ? "" : *found;
}

// While one runs, its own transfers are not compared.
static bool comparing = false;

struct comparison {
	comparison() { comparing = true; }
	~comparison() { comparing = false; }
	comparison(const comparison &) = delete;
};

static outcome read_back(const std::string &path, compared_way way, const std::string &name)
{
	const comparison running;
	const spool_elsewhere beside(current_config_path + "\\compare");
	outcome came = download_sample(name);
	came.told = troubles(came.told);
	if (!came.done())
		return came;
	u64 values = 0;
	const std::string words =
		wave_difference(*get_sampler(static_cast<i32>(current_sampler->sampler_type)), way,
			path, wave_path_of(spool_filebase(name.c_str())), &values);
	if (words.empty())
		return { .words = format_text(tr("%s on the sampler is as it was meant to arrive: "
						 "%llu values were compared."),
				 quoted(name).c_str(), static_cast<unsigned long long>(values)) };
	return {
		.how = ending::refused, .words = quoted(name) + ": " + words, .caption = "WARNING"
	};
}

outcome compare_sample(const std::string &path, compared_way way, const std::string &told_name)
{
	outcome ready = offers_download();
	if (ready.done())
		ready = have_sample_list();
	if (!ready.done())
		return ready;
	const std::string name = told_name.empty() ? name_on_sampler(base_of(path)) : told_name;
	if (name.empty())
		return { .how = ending::refused,
			.words = format_text(tr("The sampler holds no sample called %s."),
				quoted(base_of(path)).c_str()) };
	return read_back(path, way, name);
}

// ---- Programs -----------------------------------------------------------------------------------------

// The values that are not 0, by section and name, in the order of the text; of a section that
// begins, the name alone.
using named_values = std::vector<std::pair<std::string, std::string>>;

static named_values values_of(const std::string &text)
{
	named_values values;
	std::string keygroup, section;
	std::size_t end = 0;
	for (std::size_t at = text.find("[program]"); at < text.size(); at = end + 1) {
		end = std::min(text.find('\n', at), text.size());
		const std::string line = text.substr(at, end - at);
		const std::size_t sign = line.find(" = ");
		if (sign != line.npos)
			values.push_back({ section + line.substr(0, sign), line.substr(sign + 3) });
		if (!line.starts_with("[keygroup") && !line.starts_with("[zone"))
			continue;
		const std::string inside = line.substr(1, line.size() - 2);
		keygroup = inside[0] == 'k' ? inside : keygroup;
		section = (inside[0] == 'k' ? inside : keygroup + ", " + inside) + ": ";
		values.push_back({ section, "" });
	}
	return values;
}

struct parameter_difference {
	std::string name, due, is;
};

// In the order of the wanted program, and then what is too many.
static std::vector<parameter_difference> parameter_differences(
	const named_values &due, const named_values &are)
{
	std::vector<parameter_difference> all;
	const std::map<std::string, std::string> wanted(due.begin(), due.end());
	const std::map<std::string, std::string> held(are.begin(), are.end());
	for (const auto &[name, value] : due) {
		const auto at = held.find(name);
		if (at == held.end() || at->second != value)
			all.push_back({ name, value, at == held.end() ? "0" : at->second });
	}
	for (const auto &[name, value] : are)
		if (!wanted.contains(name))
			all.push_back({ name, "0", value });
	return all;
}

std::string program_difference(const _program &wanted, const _program &held)
{
	const named_values due = values_of(backup_text(wanted)), are = values_of(backup_text(held));
	const std::vector<parameter_difference> all = parameter_differences(due, are);
	if (all.empty())
		return "";
	const parameter_difference &first = all.front();
	const std::string count = format_text(tr("%zu of %zu parameters differ, the first is %s"),
		all.size(), std::max(due.size(), are.size()), first.name.c_str());
	if (first.name.ends_with(": "))
		return count + (first.due == "0" ? tr("too many.") : tr("missing."));
	return count +
	       format_text(tr(", which is %s instead of %s."), first.is.c_str(), first.due.c_str());
}

// With the list as it was read last.
static outcome compare_listed(const _program &wanted)
{
	const std::string name = without_end_blanks(wanted.name);
	const std::vector<std::string> names = loaded_programs();
	const auto found = std::ranges::find_if(
		names, [&](const std::string &one) { return equal_but_for_case(one, name); });
	if (found == names.end())
		return { .how = ending::refused,
			.words = format_text(tr("The sampler holds no program called %s."),
				quoted(name).c_str()) };
	const std::string words = program_difference(wanted,
		current_sampler->status->program[static_cast<std::size_t>(found - names.begin())]);
	if (words.empty())
		return { .words = format_text(tr("%s on the sampler is the same program."),
				 quoted(name).c_str()) };
	return {
		.how = ending::refused, .words = quoted(name) + ": " + words, .caption = "WARNING"
	};
}

outcome compare_program(const _program &wanted)
{
	const auto copy = std::make_unique<_program>(wanted); // it may be of the list itself
	const outcome read = read_programs_again();
	return read.done() ? compare_listed(*copy) : read;
}

// ---- Behind every transfer -----------------------------------------------------------------------------

static constexpr const char *setting_key = "samples_verify";

bool verify_always()
{
	char value[setting_size];
	return load_key(setting_key, value) == 0 && value[0] == '1';
}

void set_verify_always(bool wanted)
{
	(void)save_key(setting_key, wanted ? "1" : "0");
}

static bool is_due(const outcome &transfer)
{
	return transfer.done() && !comparing && verify_always();
}

// One that differs is told instead of the success.
static outcome with_comparison(outcome transfer, outcome compared)
{
	if (compared.done()) {
		transfer.line += std::string(" ") + tr("It was compared and is the same.");
		return transfer;
	}
	compared.line =
		transfer.line + " " +
		(compared.how == ending::stopped            ? tr("The comparison was stopped.")
			: compared.how == ending::no_answer ? tr("It could not be compared.")
							    : tr("It is not the same."));
	return compared;
}

outcome verified_upload(outcome sent, const std::string &path)
{
	if (!is_due(sent))
		return sent;
	return with_comparison(
		std::move(sent), compare_sample(wave_path_of(path), compared_way::to_sampler));
}

outcome verified_download(outcome came, const std::string &name)
{
	if (!is_due(came))
		return came;
	const std::string path = wave_path_of(spool_filebase(name.c_str()));
	return with_comparison(
		std::move(came), compare_sample(path, compared_way::from_sampler, name));
}

outcome verified_program(outcome sent, const _program &wanted, bool list_is_new)
{
	if (!is_due(sent))
		return sent;
	return with_comparison(
		std::move(sent), list_is_new ? compare_listed(wanted) : compare_program(wanted));
}

} // namespace velmor
