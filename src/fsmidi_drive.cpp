// fsmidi_drive.cpp - the drive as the host mounts it: listings that are kept, names, faults
//
// A program that walks a folder asks for each name in it, and a file manager for many that are
// not. All of them are looked up in the last listing of the folder, which costs no request: what
// a listing does not hold is not there. A listing itself is served again for a second.
//
// A sampler that failed has failed for everybody who waits: for a second no call asks it again.
//
// Knows nothing of: requests to a sampler, the host's file system.

#include "src/diskqx.h"
#include <algorithm>
#include <cstring>
#include <map>
#include <set>

namespace velmor
{

static constexpr char drive_root[] = "\\";

struct kept_listing {
	double at; // host.clock->counter()
	std::vector<drive_entry> entries;
};
static std::map<std::string, kept_listing> listings; // by path of the drive

struct kept_fault {
	double at;
	drive_result fault;
};
static std::map<std::string, kept_fault> faults; // by sampler

static double now()
{
	return host.clock->counter();
}

static bool younger(double at, double seconds)
{
	return now() - at < seconds;
}

// ---- What is plugged in -----------------------------------------------------------------------

using bus_places = std::set<std::pair<std::string, std::string>>; // path, address
static bus_places scanned;
static double scanned_at = 0;
static bool never_scanned = true;

void forget_drive()
{
	listings.clear();
	faults.clear();
	scanned.clear();
	never_scanned = true;
}

static bool places_on_bus(bus_places *places)
{
	std::vector<usb_device> present;
	if (!host.usb->list(&present))
		return false;
	for (const usb_device &d : present)
		if (d.vendor == akai_vendor && family_of_product(d.product))
			places->insert({ d.path, d.address });
	return true;
}

static bool is_listed(const std::pair<std::string, std::string> &place)
{
	return std::any_of(usbdev.begin(), usbdev.end(), [&place](const _usbdev &d) {
		return d.device_path == place.first && d.address == place.second;
	});
}

static bool all_listed(const bus_places &places)
{
	return std::all_of(places.begin(), places.end(), is_listed);
}

// A sampler that another program uses just now does not answer a look for samplers.
static void keep_present(const std::vector<_usbdev> &before, const bus_places &places)
{
	for (const _usbdev &device : before) {
		const std::pair<std::string, std::string> place = { device.device_path,
			device.address };
		if (places.contains(place) && !is_listed(place))
			usbdev.push_back(device);
	}
	usbdevs = static_cast<int>(usbdev.size());
}

static void tell_silent(const bus_places &places)
{
	for (const auto &place : places)
		if (!is_listed(place))
			log_line("[W] The USB sampler at [%s] is not shown: it does not answer, or "
				 "another program is using it.\r\n",
				place.first.c_str());
}

static void remember_scan(const bus_places &places)
{
	scanned = places;
	scanned_at = now();
	never_scanned = false;
	tell_silent(places);
}

static void scan_again(const bus_places &places)
{
	const std::vector<_usbdev> before = usbdev;
	init_usb(1);
	keep_present(before, places);
	remember_scan(places);
	listings.clear();
	faults.clear();
}

static bool has_gone(const _usbdev &device, const bus_places &places)
{
	return !places.contains({ device.device_path, device.address });
}

void refresh_samplers()
{
	bus_places places;
	if (usb_in_use() || !places_on_bus(&places))
		return;
	if (never_scanned && usb_init_done)
		remember_scan(places); // at start-up, a moment ago
	const bool changed = never_scanned || places != scanned ||
			     std::any_of(usbdev.begin(), usbdev.end(),
				     [&places](const _usbdev &d) { return has_gone(d, places); });
	if (changed || (!all_listed(places) && !younger(scanned_at, rescan_seconds)))
		scan_again(places);
}

// ---- Listings -----------------------------------------------------------------------------------

static const kept_listing *kept(const std::string &path, double seconds)
{
	const auto found = listings.find(path);
	if (found == listings.end() || !younger(found->second.at, seconds))
		return nullptr;
	return &found->second;
}

static void keep(const std::string &path, std::vector<drive_entry> &&entries)
{
	if (listings.size() >= most_kept_listings) {
		const auto oldest = std::min_element(listings.begin(), listings.end(),
			[](const auto &a, const auto &b) { return a.second.at < b.second.at; });
		listings.erase(oldest);
	}
	listings[path] = { now(), std::move(entries) };
}

// "KICK" a second time is "KICK‹2›": no byte is shown as these marks.
static std::string unlike(std::map<std::string, int> *taken, const std::string &name)
{
	int &times = (*taken)[name];
	if (++times == 1)
		return name;
	return name + "\u2039" + std::to_string(times) + "\u203A";
}

static std::vector<drive_entry> entries_of(
	const std::string &path, std::span<const FSP_FSCTL_DIR_INFO> records)
{
	static constexpr std::size_t dots = 2; // "." and ".." stand first
	std::vector<drive_entry> entries;
	std::map<std::string, int> taken;
	for (const FSP_FSCTL_DIR_INFO &record : records.subspan(std::min(dots, records.size()))) {
		const bool folder = record.FileInfo.FileAttributes & attribute_folder;
		// One whose name is no single part of a path cannot be asked for.
		const std::string own = (path == drive_root ? "" : path) + "\\" + record.FileName;
		entries.push_back({ unlike(&taken, shown_name(record.FileName)),
			is_reachable(record.FileName) ? own : "", folder,
			record.FileInfo.FileSize });
	}
	return entries;
}

// ---- Faults ---------------------------------------------------------------------------------------

static std::string sampler_of(const std::string &path)
{
	const std::vector<std::string> parts = path_tokens(path);
	return parts.empty() ? "" : parts[0];
}

// Of the line, and not of one folder.
static bool is_of_sampler(drive_result fault)
{
	return fault == drive_no_device || fault == drive_busy || fault == drive_denied ||
	       fault == drive_timed_out;
}

static void tell_fault(const std::string &path, drive_result fault)
{
	static constexpr struct {
		drive_result fault;
		const char *words;
	} rows[] = {
		{ drive_busy, "cannot be listed: another program is using the sampler." },
		{ drive_no_device, "cannot be listed: the sampler was unplugged or switched off." },
		{ drive_timed_out, "cannot be listed: the sampler did not answer in time." },
		{ drive_denied, "cannot be listed: this user may not open the sampler." },
		{ drive_not_found, "cannot be listed: the sampler does not have it any more." },
		{ drive_failed, "cannot be listed: the sampler's answer makes no sense." },
	};
	for (const auto &row : rows)
		if (row.fault == fault)
			log_line("[W] [%s] %s\r\n", path.c_str(), row.words);
}

static void forget_sampler(const std::string &sampler)
{
	const std::string below = "\\" + sampler;
	std::erase_if(listings, [&below](const auto &row) {
		return row.first == below || row.first.starts_with(below + "\\");
	});
	listings.erase(drive_root);
}

static drive_result failed_with(const std::string &path, drive_result fault)
{
	const std::string sampler = sampler_of(path);
	tell_fault(path, fault);
	if (is_of_sampler(fault))
		faults[sampler] = { now(), fault };
	if (fault == drive_no_device)
		forget_sampler(sampler);
	return fault;
}

// ---- Asking ---------------------------------------------------------------------------------------

static constexpr u32 whole_listing = 0xFFFFFFFF;

// The listing that the operations give, kept; null when fault tells why not.
static const kept_listing *ask(
	PTFS_FILE_CONTEXT *context, const std::string &path, drive_result *fault)
{
	std::vector<FSP_FSCTL_DIR_INFO> records;
	u32 transferred = 0;
	fs_fault = drive_ok;
	const fs_status status = PtfsInterface.ReadDirectory(
		context, nullptr, nullptr, &records, whole_listing, &transferred);
	if (status == status_success && fs_fault == drive_ok) {
		keep(path, entries_of(path, records));
		return &listings[path];
	}
	*fault = failed_with(path, fs_fault == drive_ok ? drive_failed : fs_fault);
	return nullptr;
}

static drive_result open_folder(const std::string &path, drive_folder *folder)
{
	static constexpr u32 directory_file = 1;
	PTFS_FILE_CONTEXT *context = nullptr;
	*folder = nullptr;
	if (path.empty())
		return drive_refused;
	const fs_status status =
		PtfsInterface.Open(path.c_str(), directory_file, &context, nullptr);
	*folder = context;
	if (status == status_success)
		return drive_ok;
	return status == status_insufficient_resources ? drive_too_many : drive_not_found;
}

static void close_folder(drive_folder folder)
{
	PtfsInterface.Close(static_cast<PTFS_FILE_CONTEXT *>(folder));
}

// A listing not older than that, kept or asked for. folder is null where nobody has it open.
static const kept_listing *listing(const drive_call &call, drive_folder folder,
	const std::string &path, double seconds, drive_result *fault)
{
	if (const kept_listing *known = kept(path, seconds))
		return known;
	const auto failed = faults.find(sampler_of(path));
	if (failed != faults.end() && younger(failed->second.at, listing_seconds)) {
		*fault = failed->second.fault;
		return nullptr;
	}
	*fault = call.waited > call_seconds ? drive_timed_out : drive_later;
	if (!call.may_ask || *fault == drive_timed_out)
		return nullptr;
	const double deadline = now() + call_seconds - call.waited;
	if (path == drive_root)
		refresh_samplers();
	drive_folder own = folder;
	if (!own && (*fault = open_folder(path, &own)) != drive_ok)
		return nullptr;
	current_fs_caller = { deadline, call.given_up };
	const kept_listing *asked = ask(static_cast<PTFS_FILE_CONTEXT *>(own), path, fault);
	if (!folder)
		close_folder(own);
	current_fs_caller = {};
	return asked;
}

static drive_result list_folder(const drive_call &call, drive_folder folder,
	const std::string &path, std::vector<drive_entry> *entries)
{
	drive_result fault = drive_ok;
	const kept_listing *known = listing(call, folder, path, listing_seconds, &fault);
	if (!known)
		return fault;
	*entries = known->entries;
	return drive_ok;
}

// A name as it is; else in another case, as the samplers see it.
static const drive_entry *entry_in(const kept_listing &known, const std::string &name)
{
	const drive_entry *alike = nullptr;
	for (const drive_entry &entry : known.entries) {
		if (entry.name == name)
			return &entry;
		if (!alike && same_without_case(entry.name, name))
			alike = &entry;
	}
	return alike;
}

static drive_result find(const drive_call &call, const std::string &folder, const std::string &name,
	drive_entry *entry)
{
	drive_result fault = drive_ok;
	// Looking at the bus costs no request, so what is plugged in is always news.
	const double seconds = folder == drive_root ? listing_seconds : name_seconds;
	const kept_listing *known = listing(call, nullptr, folder, seconds, &fault);
	if (!known)
		return fault;
	const drive_entry *found = entry_in(*known, name);
	if (!found)
		return drive_not_found;
	*entry = *found;
	return drive_ok;
}

// ---- The rest ---------------------------------------------------------------------------------------

static drive_result read_file(const std::string &)
{
	const fs_status status = PtfsInterface.Read(nullptr, nullptr, 0, 0, nullptr);
	return status == status_success ? drive_ok : drive_refused;
}

// Figures that programs can reckon with: no more than an EiB, and no more free than there is.
static drive_result sizes(drive_sizes *told)
{
	static constexpr u64 most = u64{ 1 } << 60;
	FSP_FSCTL_VOLUME_INFO info = {};
	if (PtfsInterface.GetVolumeInfo(&info) != status_success)
		return drive_failed;
	told->label.assign(
		info.VolumeLabel, info.VolumeLabel + info.VolumeLabelLength / sizeof(char16_t));
	told->total = std::min(info.TotalSize, most);
	told->free = std::min(info.FreeSize, told->total / 10 * 8);
	return drive_ok;
}

const drive_operations sampler_drive = {
	.find = find,
	.open_folder = open_folder,
	.list_folder = list_folder,
	.close_folder = close_folder,
	.read_file = read_file,
	.sizes = sizes,
};

} // namespace velmor
