// velmor_backup_manifest.cpp - what a folder with a backup holds, as text
//
//   VELMOR backup 1
//   sampler = "Rack"
//   model = "Akai S3000/S3000XL"
//   complete = yes
//
//   [sample]
//   name = "KICK"
//   file = "KICK.wav"
//   size = 12044
//   sha256 = 9f86d081884c7d659a2feaa0c55ad015a3bf4f1b2b0b822cd15d6c15b0f00a08
//   list = "5000 words, 44100 Hz, pitch 60, 0 to 4999"
//
//   [multi]
//   name = "Live"
//
//   end = <sha256 of all the text above>
//
// Nothing in it is taken that does not agree with its last line: a name that leaves the folder, a
// number out of range or half of a file are refused by line and reason.
//
// Knows nothing of: samplers, windows.

#include "src/velmor_backup.h"
#include "src/velmor_checksum.h"
#include "src/velmor_files.h"
#include "src/velmor_library.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <charconv>

namespace velmor
{

static constexpr const char *first_line = "VELMOR backup 1";
static constexpr u64 largest_manifest = 8u << 20; // 1536 entries take less than 2 MB
static constexpr std::size_t sum_digits = 64;

struct kind_row {
	const char *name, *folder, *extension;
};
static constexpr kind_row kinds[] = {
	{ "program", "programs", ".program" },
	{ "sample", "samples", ".wav" },
	{ "multi", nullptr, nullptr },
};

static const kind_row &row_of(backup_kind kind)
{
	return kinds[static_cast<std::size_t>(kind)];
}

const char *kind_name(backup_kind kind)
{
	return row_of(kind).name;
}

std::string manifest_path(const std::string &folder)
{
	return folder + "\\manifest.txt";
}

std::string path_of_entry(const std::string &folder, const backup_entry &entry)
{
	const char *place = row_of(entry.kind).folder;
	return place ? folder + "\\" + place + "\\" + entry.file : "";
}

// ---- Writing --------------------------------------------------------------------------------

static std::string entry_text(const backup_entry &entry)
{
	std::string out = std::string("\n[") + kind_name(entry.kind) +
			  "]\nname = " + quoted_text(entry.name) + "\n";
	if (entry.file.empty())
		return out;
	out += "file = " + quoted_text(entry.file) + "\n" +
	       format_text("size = %llu\n", static_cast<unsigned long long>(entry.size)) +
	       "sha256 = " + entry.sum + "\n";
	return entry.facts.empty() ? out : out + "list = " + quoted_text(entry.facts) + "\n";
}

std::string manifest_text(const backup_manifest &manifest)
{
	std::string out = std::string(first_line) + "\nsampler = " + quoted_text(manifest.sampler) +
			  "\nmodel = " + quoted_text(manifest.model) +
			  "\ncomplete = " + (manifest.complete ? "yes" : "no") + "\n";
	for (const backup_entry &entry : manifest.entries)
		out += entry_text(entry);
	return out + "\nend = " + checksum_of_text(out) + "\n";
}

outcome write_manifest(const std::string &folder, const backup_manifest &manifest)
{
	const std::string path = manifest_path(folder), text = manifest_text(manifest);
	const int code = write_whole_file(path, text.data(), text.size());
	if (!code)
		return {};
	return {
		.how = ending::local_failed, .words = write_failure(path, code), .caption = "ERROR"
	};
}

// ---- Reading --------------------------------------------------------------------------------

static bool whole_number(std::string_view text, u64 *value)
{
	const auto result = std::from_chars(text.data(), text.data() + text.size(), *value);
	return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

static bool is_sum(std::string_view text)
{
	return text.size() == sum_digits && text.find_first_not_of("0123456789abcdef") == text.npos;
}

static bool take_text(std::string_view value, std::string *text)
{
	text->clear();
	return unquoted(value, text);
}

// A name of a file that stays in its folder, with the extension of its kind.
static bool is_file_of(backup_kind kind, const std::string &file)
{
	const char *extension = row_of(kind).extension;
	return extension && file == file_name_of(file) && file.ends_with(extension) &&
	       file.size() > std::string_view(extension).size();
}

// One line of a section; "" or what is wrong with it.
static const char *take_pair(
	backup_manifest *m, bool in_entry, std::string_view name, std::string_view value)
{
	if (!in_entry) {
		if (name == "sampler" || name == "model")
			return take_text(value, name == "model" ? &m->model : &m->sampler)
				       ? ""
				       : tr("This is no text in quotation marks.");
		m->complete = value == "yes";
		return name == "complete" && (m->complete || value == "no")
			       ? ""
			       : tr("Nobody knows this line.");
	}
	backup_entry &e = m->entries.back();
	if (name == "name" || name == "list")
		return take_text(value, name == "name" ? &e.name : &e.facts)
			       ? ""
			       : tr("This is no text in quotation marks.");
	if (name == "file")
		return take_text(value, &e.file) && is_file_of(e.kind, e.file)
			       ? ""
			       : tr("This is no file of the backup.");
	if (name == "size")
		return whole_number(value, &e.size) ? "" : tr("This is no number.");
	if (name != "sha256")
		return tr("Nobody knows this line.");
	e.sum = value;
	return is_sum(value) ? "" : tr("This is no checksum.");
}

// "" or what is wrong with a section, once it is over.
static const char *check_entry(const backup_manifest &m)
{
	if (m.entries.empty())
		return "";
	const backup_entry &e = m.entries.back();
	const bool whole = e.kind == backup_kind::multi ? e.file.empty() && e.sum.empty()
							: !e.file.empty() && !e.sum.empty();
	return whole && !e.name.empty() ? "" : tr("The section above lacks a line.");
}

static const char *take_line(backup_manifest *m, std::string_view line)
{
	if (line.empty())
		return "";
	if (line.front() == '[') {
		const char *why = check_entry(*m);
		if (*why)
			return why;
		for (const backup_kind kind :
			{ backup_kind::program, backup_kind::sample, backup_kind::multi })
			if (line == std::string("[") + kind_name(kind) + "]") {
				m->entries.push_back({ .kind = kind });
				return "";
			}
		return tr("This is no section of a backup.");
	}
	const std::size_t sign = line.find(" = ");
	if (sign == line.npos)
		return tr("This line says nothing.");
	return take_pair(m, !m->entries.empty(), line.substr(0, sign), line.substr(sign + 3));
}

// The text in front of the line that ends it; the whole where it has none.
static std::string_view checked_part(std::string_view text, bool *good)
{
	const std::size_t end = text.rfind("\nend = ");
	*good = end != text.npos &&
		text.substr(end) == "\nend = " + checksum_of_text(text.substr(0, end)) + "\n";
	return text.substr(0, end);
}

std::string read_manifest_text(std::string_view text, backup_manifest *manifest)
{
	*manifest = {};
	bool good = false;
	std::string_view rest = checked_part(text, &good);
	for (int number = 1; !rest.empty(); number++) {
		const std::size_t end = std::min(rest.find('\n'), rest.size());
		const std::string_view line = rest.substr(0, end);
		const char *why = number > 1           ? take_line(manifest, line)
				  : line == first_line ? ""
						       : tr("This is no manifest of a backup.");
		if (*why)
			return format_text(tr("Line %d: %s"), number, why);
		rest.remove_prefix(std::min(end + 1, rest.size()));
	}
	if (!good)
		return tr("Its last line does not agree with the others: it was changed or is not "
			  "whole.");
	return check_entry(*manifest);
}

static outcome damaged(const std::string &path, const std::string &why)
{
	return { .how = ending::local_failed,
		.words = format_text(tr("The manifest [%s] is damaged. %s"),
			host.files->host_path(path.c_str()).c_str(), why.c_str()),
		.caption = "WARNING" };
}

outcome read_manifest(const std::string &folder, backup_manifest *manifest)
{
	const std::string path = manifest_path(folder);
	*manifest = {};
	input_file file;
	int code = file.measure(path.c_str());
	if (code && host.files->not_found(code))
		return { .how = ending::refused,
			.words = format_text(tr("There is no backup in [%s]."),
				host.files->host_path(folder.c_str()).c_str()) };
	code = code ? code : file.open(path.c_str());
	if (!code && file.size > largest_manifest)
		return damaged(path, tr("It is too large."));
	std::string text(code ? 0 : static_cast<std::size_t>(file.size), '\0');
	code = code ? code : file.read(0, text.data(), text.size());
	if (code)
		return damaged(path, read_failure(path, code));
	const std::string why = read_manifest_text(text, manifest);
	return why.empty() ? outcome{} : damaged(path, why);
}

} // namespace velmor
