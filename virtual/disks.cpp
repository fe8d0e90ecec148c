// disks.cpp - the disks of a virtual USB sampler, and where it stands on them

#include "virtual/disks.h"
#include <algorithm>

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;
using args = const request_arguments &;

// ---- Where the machine stands ------------------------------------------------------------

static bool same_but_for_case(const std::string &a, const std::string &b)
{
	const auto small = [](char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
	return std::equal(a.begin(), a.end(), b.begin(), b.end(),
		[small](char x, char y) { return small(x) == small(y); });
}

struct disk_place {
	const std::vector<disk_folder> *folders;
	const std::vector<disk_file> *files;
};

static const disk_folder *find_folder(const std::vector<disk_folder> &all, const std::string &name)
{
	for (const disk_folder &f : all)
		if (same_but_for_case(f.name, name))
			return &f;
	return nullptr;
}

// False without a volume, or when what it stood in is gone.
static bool stand(const disk_rack &d, disk_place *here)
{
	const disk_volume *v = entry(d.volumes, d.volume);
	if (!v || v->ejected)
		return false;
	*here = { &v->folders, &v->files };
	for (const std::string &name : d.path) {
		const disk_folder *f = find_folder(*here->folders, name);
		if (!f)
			return false;
		*here = { &f->folders, &f->files };
	}
	return true;
}

static int high_first(args a)
{
	return a.bytes[0] << 7 | a.bytes[1];
}

static int number_in(const disk_rack &d, args a)
{
	return d.low_first ? a.bytes[1] << 7 | a.bytes[0] : high_first(a);
}

// ---- Volumes -----------------------------------------------------------------------------

static request_outcome select_volume(disk_rack &d, args a)
{
	const int wanted = number_in(d, a);
	for (std::size_t i = 0; i < d.volumes.size(); i++) {
		const int place = static_cast<int>(i);
		if (d.volumes[i].id != wanted || d.volumes[i].ejected)
			continue;
		if (d.volume != place)
			d.path.clear();
		d.volume = place;
		return done();
	}
	return refuse(refused_missing);
}

static std::uint32_t told(int instead, std::size_t count)
{
	return static_cast<std::uint32_t>(instead < 0 ? static_cast<int>(count) : instead);
}

static request_outcome count_volumes(disk_rack &d, args)
{
	return reply_high_first(told(d.volumes_told, d.volumes.size()), 1);
}

static request_outcome list_volumes(disk_rack &d, args)
{
	usb_bytes data;
	for (const disk_volume &v : d.volumes) {
		const auto high = static_cast<std::uint8_t>(v.id >> 7 & 0x7F);
		const auto low = static_cast<std::uint8_t>(v.id & 0x7F);
		data.insert(data.end(), { d.low_first ? low : high, d.low_first ? high : low,
						v.type, v.format, v.scsi_id, v.writable });
		add_text(&data, v.name);
	}
	data.resize(std::min(data.size(), d.list_ends));
	return reply(std::move(data));
}

// ---- Folders and files -------------------------------------------------------------------

static request_outcome enter_folder(disk_rack &d, args a)
{
	disk_place here = {};
	if (a.text.empty() && entry(d.volumes, d.volume) && !d.volumes[d.volume].ejected) {
		d.path.clear();
		return done();
	}
	if (!stand(d, &here) || !find_folder(*here.folders, a.text))
		return refuse(refused_missing);
	d.path.push_back(a.text);
	return done();
}

static request_outcome tell_name(const disk_rack &d, const std::string &name)
{
	request_outcome outcome = reply_text(name);
	if (d.bare_names)
		outcome.data.pop_back();
	return outcome;
}

template <auto list, int disk_rack::*instead> static request_outcome count_here(disk_rack &d, args)
{
	disk_place here = {};
	return stand(d, &here) ? reply_high_first(told(d.*instead, (here.*list)->size()), 2)
			       : refuse(refused_missing);
}

template <auto list> static request_outcome name_here(disk_rack &d, args a)
{
	disk_place here = {};
	const auto *one = stand(d, &here) ? entry(*(here.*list), number_in(d, a)) : nullptr;
	return one ? tell_name(d, one->name) : refuse(refused_missing);
}

static request_outcome size_here(disk_rack &d, args a)
{
	disk_place here = {};
	const disk_file *one = stand(d, &here) ? entry(*here.files, high_first(a)) : nullptr;
	return one ? reply_high_first(one->size, 4) : refuse(refused_missing);
}

static const struct {
	std::uint8_t item;
	request_form form;
	std::size_t count;
	request_outcome (*run)(disk_rack &d, args a);
} rows[] = {
	{ 0x02, request_form::bytes, 2, select_volume },
	{ 0x04, request_form::bytes, 0, count_volumes },
	{ 0x05, request_form::bytes, 0, list_volumes },
	{ 0x10, request_form::bytes, 0,
		count_here<&disk_place::folders, &disk_rack::folders_told> },
	{ 0x11, request_form::bytes, 2, name_here<&disk_place::folders> },
	{ 0x13, request_form::any_text, 0, enter_folder },
	{ 0x20, request_form::bytes, 0, count_here<&disk_place::files, &disk_rack::files_told> },
	{ 0x21, request_form::bytes, 2, name_here<&disk_place::files> },
	{ disk_size_item, request_form::bytes, 2, size_here },
};

request_outcome disk_request(disk_rack &disks, std::uint8_t item, bytes_in arguments)
{
	for (const auto &row : rows) {
		request_arguments a = {};
		if (row.item != item)
			continue;
		return take_arguments(row.form, row.count, arguments, &a) ? row.run(disks, a)
									  : refuse(refused_length);
	}
	return refuse(refused_unknown);
}

} // namespace velmor
