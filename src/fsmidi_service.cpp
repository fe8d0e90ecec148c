// fsmidi_service.cpp - the drive as a service: set up, mounted, served, unmounted
//
// Calls come on a thread of the host's drive and are answered on this one. While a call asks a
// sampler, interface events run, and calls that need no sampler are answered inside it; the
// others wait for their turn, so that two of them never meet on a sampler.
//
// Knows nothing of: what a call asks for, FUSE.

#include "src/diskqx.h"
#include <ctime>
#include <new>

namespace velmor
{

std::string MountPoint = "U:";
u32 DebugFlags = 0;
fs_status Result = status_success;
std::unique_ptr<PTFS> Ptfs;

static constexpr int wait_ms = 1000;
static constexpr char service_name[] = "velmorfs";

// ---- Calls ------------------------------------------------------------------------------------

static void answer_calls()
{
	static bool answering = false;
	const bool outermost = !answering;
	answering = true;
	host_drive->answer(outermost);
	if (outermost)
		answering = false;
}

static void calls_wait()
{
	host.ui->post(answer_calls);
}

// ---- The file system ------------------------------------------------------------------------------

static FSP_FSCTL_VOLUME_PARAMS volume_parameters(double made)
{
	return {
		.SectorSize = 4096,
		.SectorsPerAllocationUnit = 1,
		.VolumeCreationTime = static_cast<u64>(made),
		.VolumeSerialNumber = 123,
		.FileInfoTimeout = static_cast<u32>(listing_seconds * 1000),
		.CaseSensitiveSearch = false,
		.CasePreservedNames = true,
		.UnicodeOnDisk = true,
		.PersistentAcls = true,
		.PostCleanupWhenModifiedOnly = true,
		.FileSystemName = service_name,
	};
}

static drive_parameters parameters_of(const FSP_FSCTL_VOLUME_PARAMS &volume)
{
	return {
		.type = volume.FileSystemName,
		.root = "\\",
		.block_size = volume.SectorSize * volume.SectorsPerAllocationUnit,
		.keep_ms = static_cast<int>(volume.FileInfoTimeout),
		.serial = volume.VolumeSerialNumber,
		.made = static_cast<double>(volume.VolumeCreationTime),
		.talkative = DebugFlags != 0,
	};
}

static double creation_time()
{
	double made = 0;
	if (!host_drive->host_made(&made)) {
		log_line("STAT FAILED!!!");
		end_program(0);
	}
	const std::time_t seconds = static_cast<std::time_t>(made);
	const char *words = std::ctime(&seconds);
	log_line("Creation time for [%s]: %s", "\\", words ? words : "\n");
	return made;
}

static fs_status create_filesystem()
{
	const double made = creation_time();
	Ptfs.reset(new (std::nothrow) PTFS{ host_drive, u"C" });
	if (!Ptfs)
		return status_insufficient_resources;
	std::string why;
	const int code = host_drive->mount(
		parameters_of(volume_parameters(made)), sampler_drive, MountPoint.c_str(), &why);
	if (code == 0)
		return status_success;
	log_line("RESULT FSPFILESYSTEMCREATE: %d\n", code);
	display_error(code);
	log_line("[F] %s\r\n", why.c_str());
	return status_invalid_device_request;
}

fs_status SvcStart()
{
	log_line("[D] SVCSTART...\r");
	const fs_status created = create_filesystem();
	if (created != status_success) {
		log_line("cannot create file system");
		end_program(0);
		return created;
	}
	if (!host_drive->start(calls_wait)) {
		log_line("cannot start file system");
		host_drive->stop();
		end_program(0);
		return status_invalid_device_request;
	}
	return status_success;
}

fs_status SvcStop()
{
	log_line("[D] SVCEND...\r");
	return status_success;
}

// Until the program is to end, or somebody else has unmounted the drive.
static fs_status run_service(fs_status (*start)(), fs_status (*stop)())
{
	const fs_status started = start();
	if (started != status_success)
		return started;
	while (!close_requested() && !host_drive->unmounted())
		host.ui->pump(wait_ms);
	return stop();
}

// ---- Start ----------------------------------------------------------------------------------------

static void list_samplers()
{
	init_usb(1);
	for (std::size_t i = 0; i < usbdev.size(); i++)
		log_line("[D] FSQX: Sampler(%d) [%s]\r\n", static_cast<int>(i), usbdev[i].usb_name);
	refresh_samplers();
}

void start_filesystem()
{
	make_close_semaphore();
	files = 0;
	clear_fs_handles();
	forget_drive();
	list_samplers();
	if (!host_drive) {
		show_box("FATAL", "FAILED TO START WINFSP");
		end_program(0);
		return;
	}
	Result = run_service(SvcStart, SvcStop);
	host_drive->stop();
	Ptfs.reset();
	log_line("[D] FSPSERVICERUN STATUS: %d\r\n", static_cast<int>(Result));
	log_line("[D] FSPLOAD COMPLETED: %d\r\n", static_cast<int>(Result));
}

} // namespace velmor
