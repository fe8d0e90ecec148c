// disks.h - the disks of a virtual USB sampler, and where it stands on them
//
// A tree of volumes, folders and files, of which only names and sizes are told. The items of
// the machine's section about disks:
//
//   02 handle*2    work on that volume, at its root; on the same again: where it stood
//   04             how many volumes: one byte
//   05             the volumes, one behind the other:
//                  handle*2 type format physical-id writable name 00
//   13 name 00     go into a folder, in capitals or not; without a name: back to the root
//   10             how many folders are here: two bytes
//   11 index*2     the name of a folder
//   20, 21         the same of files
//   23 index*2     the size of a file: four bytes of seven bits
//
// Indexes count from 0. The S5000 takes and tells handles and indexes high byte first, the
// Z family low byte first; counts, sizes and the index of 23 have the high byte first on
// both. What does not exist is refused, and the machine stays where it stands. Bytes of a
// name may have eight bits, those of numbers may not.
//
// Where it stands is kept from request to request, until it is switched off.
//
// Knows nothing of: frames, offsets, the system under src/.

#pragma once
#include "virtual/usb_requests.h"

namespace velmor
{

struct disk_file {
	std::string name;
	std::uint32_t size;
};

struct disk_folder {
	std::string name;
	std::vector<disk_folder> folders;
	std::vector<disk_file> files;
};

struct disk_volume {
	std::uint16_t id; // its handle
	std::uint8_t type, format, scsi_id, writable;
	std::string name;
	std::vector<disk_folder> folders = {};
	std::vector<disk_file> files = {};
	bool ejected = false; // still listed, and cannot be worked on
};

struct disk_rack {
	std::vector<disk_volume> volumes;
	bool low_first = false; // the order of handles and indexes

	// Where the machine stands: place of the volume, -1 for none, and the folders below it.
	int volume = -1;
	std::vector<std::string> path;
	void forget_place() { volume = -1, path.clear(); }

	// Machines that are slow, or lie.
	double latency = 0; // seconds that a request about disks takes longer than others
	int volumes_told = -1, folders_told = -1,
	    files_told = -1;              // other counts than the true ones
	std::size_t list_ends = SIZE_MAX; // the list of volumes breaks off after so many bytes
	bool bare_names = false;          // no NUL behind names of folders and files

	auto begin() const { return volumes.begin(); }
	auto end() const { return volumes.end(); }
};

inline constexpr std::uint8_t disk_size_item = 0x23;

// What the machine does and says; arguments is what follows the item.
request_outcome disk_request(
	disk_rack &disks, std::uint8_t item, std::span<const std::uint8_t> arguments);

} // namespace velmor
