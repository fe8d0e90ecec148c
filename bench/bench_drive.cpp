// bench_drive.cpp - listing a sampler's disks against what bus and machine need
//
// A walk through every folder of a volume, as a program on the drive makes it, in virtual time
// on a virtual full-speed bus. A folder that is listed again within a second costs nothing.
//
// Ends with 1 when a measure misses its mark.

#include "bench/usb_measure.h"
#include "src/diskqx.h"
#include "virtual/demo_disks.h"
#include "virtual/s5000.h"

namespace velmor
{
namespace
{

constexpr std::size_t folders = 50, files_each = 200;

std::vector<drive_entry> list(const std::string &path)
{
	std::vector<drive_entry> entries;
	drive_folder folder = nullptr;
	if (sampler_drive.open_folder(path, &folder) != drive_ok)
		return {};
	if (sampler_drive.list_folder({ .may_ask = true, .waited = 0 }, folder, path, &entries) !=
		drive_ok)
		entries.clear();
	sampler_drive.close_folder(folder);
	return entries;
}

// Files below a path, which every folder is asked for once.
std::size_t walk(const std::string &path)
{
	std::size_t found = 0;
	for (const drive_entry &entry : list(path))
		found += entry.folder ? walk(entry.path) : entry.size > 0;
	return found;
}

void measure(test_host &h, s5000 &machine)
{
	compare("walk of 50 folders of 200 files", h, machine,
		[] { return walk("\\Bench") == folders * files_each; });
	const std::string last = "\\Bench\\BENCH\\FOLDER 050";
	machine.recorded.clear();
	machine.record = true;
	const bool whole = list(last).size() == files_each;
	char measure[80];
	std::snprintf(measure, sizeof measure, "%zu messages", machine.recorded.size());
	report("the last folder again, within a second", measure,
		whole && machine.recorded.empty());
}

} // namespace
} // namespace velmor

int main()
{
	using namespace velmor;
	test_host h;
	s5000 machine;
	machine.name = "Bench";
	fill_disk_for_benchmark(&machine.disks, folders, files_each);
	host.usb = &virtual_usb;
	plug_usb(h.time, machine);
	current_run_mode.diagnostics = false;
	init_usb(1);
	forget_drive();
	measure(h, machine);
	unplug_all_usb();
	return missed;
}
