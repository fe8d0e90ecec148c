// usbqx_probe.cpp - the proof, at load, that a USB sampler answers
//
//   Z family   20 05   volumes: from offset 14 on, 6 bytes and a name each
//   S5000      02 03   its name, then
//              10 05   disks: from offset 9 to the end byte, an entry each:
//                      high, low (the disk's id, 7 bits each), type, format, SCSI id,
//                      one more byte, name
//
// What the lists say goes to the log alone; the drive reads its disks for itself.
//
// Knows nothing of: configurations other than the loaded one.

#include "src/usbqx_pipe.h"
#include <array>

namespace velmor
{

// clang-format off
static constexpr u8 list_disks      = 0x05; // behind the family's section
static constexpr u8 reported_name[] = { 0x02, 0x03 };
enum { volumes_start = 14, volume_header = 6, shortest_volumes = 20 };
enum { disks_start = 9, disk_id_high = 0, disk_id_low = 1, disk_type = 2, disk_format = 3, disk_scsi = 4, disk_name = 6 };
// clang-format on

static bounded_bytes ask_probe(
	_usbdev *usb, std::span<const u8> command, int number, std::array<u8, 1024> *answer)
{
	int received = 0;
	_sysex_midi_usb(usb, command.data(), static_cast<int>(command.size()), answer->data(),
		static_cast<int>(answer->size()), &received, __FILE_NAME__, __LINE__);
	log_line("[D] Response-Len(%d): %d\r\n", number, received);
	return { std::span<const u8>(*answer).first(static_cast<std::size_t>(received)) };
}

// The byte shown with a name is the first of the header that follows it.
static void log_volumes(bounded_bytes list)
{
	if (list.size() < shortest_volumes)
		return;
	for (std::size_t i = volumes_start; i + volume_header < list.size();) {
		const std::string name = list.text(i + volume_header);
		const std::size_t end = i + volume_header + name.size();
		i = end + 1;
		if (i >= list.size())
			return;
		log_line("[I] Volume: [%s] [0x%02X]\r\n", name.c_str(), list[i]);
		if (end + volume_header >= list.size())
			return;
	}
}

static void log_disks(bounded_bytes list)
{
	for (std::size_t i = disks_start; i < list.size() && list[i] != usb_end_byte;) {
		const bounded_bytes disk = list.from(i);
		const std::string name = disk.text(disk_name);
		log_line("[D] --> DISK_INFO!!! DISK-ID: %d, FORMAT: %d, SCSI-ID: %d, Type: %d, "
			 "Name: "
			 "[%s]\r\n",
			disk[disk_id_high] * 128 + disk[disk_id_low], disk[disk_format],
			disk[disk_scsi], disk[disk_type], name.c_str());
		i += disk_name + name.size() + 1;
	}
}

void log_disks_of(_usbdev *usb)
{
	std::array<u8, 1024> answer;
	const u8 disk_list[] = { family_of(*usb).disk_section, list_disks };
	ask_probe(usb, reported_name, 1, &answer);
	log_disks(ask_probe(usb, disk_list, 2, &answer));
}

void log_volumes_of(_usbdev *usb)
{
	std::array<u8, 1024> answer;
	const u8 volume_list[] = { family_of(*usb).disk_section, list_disks };
	log_volumes(ask_probe(usb, volume_list, 1, &answer));
}

void probe_usb_sampler()
{
	_usbdev *usb = find_usbdev(current_sampler->sampler_usbname);
	if (!usb) {
		show_box("FATAL", "Could not find USB-Interface for [%s]",
			current_sampler->sampler_usbname);
		end_program(0);
		return;
	}
	// Opening asks the sampler for its channel, so this has no lasting effect.
	usb->sysex_channel = static_cast<u8>(current_sampler->sampler_sysex_channel);
	if (!open_midi_usb(usb)) {
		show_box("FATAL", "Could not open USB-Interface for [%s]",
			current_sampler->sampler_usbname);
		end_program(0);
		return;
	}
	family_of(*usb).log_contents(usb);
	close_midi_usb(usb);
}

} // namespace velmor
