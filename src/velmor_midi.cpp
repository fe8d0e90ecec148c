// velmor_midi.cpp - reading a Standard MIDI File
//
//   head    "MThd" 00000006 ffff nnnn dddd     format, tracks, parts of a quarter note
//   track   "MTrk" length, then events         big-endian, 32 bits
//   event   delta, status, data                delta in the head's parts, variable length
//
// Every time is brought to 960 ticks a quarter by a whole factor, 960 / dddd: a division that
// does not divide 960 is rounded, and one above it makes all times 0. A division in SMPTE frames
// is not told apart. Nor is running status restored: such an event has no status byte, and the
// player leaves it out.
//
// A track ends where its chunk ends; the end-of-track event is an event like others. A length
// that is wrong reads what stands there, zeros behind the end of the file.
//
// Knows nothing of: ports, timing, windows but the words it shows.

#include "src/velmor_midi.h"
#include "src/velmor_log.h"
#include <algorithm>
#include <cstring>
#include <new>

namespace velmor
{

_midif current_midi_file;
int have_midi_file = 0;

static constexpr std::size_t head_size = 14, chunk_head_size = 8;
static constexpr std::size_t most_logged = 256; // bytes of an event
static constexpr u8 status_bit = 0x80, exclusive = 0xF0, meta_status = 0xFF;

// ---- Numbers ----------------------------------------------------------------------------------

u32 read_midi32bit(const bounded_bytes &bytes)
{
	return u32{ bytes[0] } << 24 | u32{ bytes[1] } << 16 | u32{ bytes[2] } << 8 | bytes[3];
}

u16 read_midi16bit(const bounded_bytes &bytes)
{
	return static_cast<u16>(bytes[0] << 8 | bytes[1]);
}

u32 read_midivar(const bounded_bytes &bytes, int *_length)
{
	u32 value = 0;
	int count = 0;
	do
		value = value << 7 | (bytes[static_cast<std::size_t>(count++)] & 0x7F);
	while (count < 4 && bytes[static_cast<std::size_t>(count - 1)] & 0x80);
	*_length = count;
	return value;
}

// ---- Events -----------------------------------------------------------------------------------

// A track being read.
struct track_walk {
	_midif *file;
	_midi_track *track;
	bounded_bytes bytes;    // from the first event to the end of the file
	std::size_t at = 0;     // in them
	int channel_length = 0; // of the last channel event

	int number() const { return track->events - 1; }
	bounded_bytes here() const { return bytes.from(at); }
	u32 variable()
	{
		int length;
		const u32 value = read_midivar(here(), &length);
		at += static_cast<std::size_t>(length);
		return value;
	}
};

static std::string logged_hex(const bounded_bytes &bytes)
{
	const std::size_t count = std::min(bytes.size(), most_logged);
	return hex_text(bytes.bytes.first(count)) + (bytes.size() > count ? "..." : "");
}

// Give an event so many bytes, zeros so far, with a NUL behind them.
static u8 *give_data(_midi_event *event, std::size_t count)
{
	event->data_len = static_cast<int>(count);
	if (!count)
		return nullptr;
	event->data = std::make_unique<u8[]>(count + 1);
	return event->data.get();
}

static void copy_bytes(u8 *to, const bounded_bytes &from, std::size_t count)
{
	const std::size_t there = std::min(count, from.size());
	if (there)
		std::memcpy(to, from.bytes.data(), there);
}

static void take_bytes(track_walk *walk, _midi_event *event, std::size_t count)
{
	copy_bytes(give_data(event, count), walk->here(), count);
	walk->at += count;
}

// A length that the file states. No data reaches behind its end, and all data together is bounded:
// a file whose lengths claim its bytes over and over is none.
static bool take_length(track_walk *walk, std::size_t *claimed, std::size_t *there)
{
	*claimed = walk->variable();
	*there = std::min(*claimed, walk->here().size());
	walk->file->all_data += *there;
	if (walk->file->all_data <= max_midi_image)
		return true;
	log_line("[D] The lengths in this MIDI-File cannot be true\r\n");
	return false;
}

// The status byte is not kept, except where the data begins with one more 0xF0. An exclusive
// message counts one byte more than it brings.
static bool take_system(track_walk *walk, _midi_event *event)
{
	const bool is_exclusive = walk->here()[0] == exclusive;
	walk->at++;
	std::size_t claimed, there;
	if (!take_length(walk, &claimed, &there))
		return false;
	const bounded_bytes from = walk->here();
	const std::size_t count = there + is_exclusive;
	u8 *data = give_data(event, count);
	if (data && from[0] == exclusive) {
		data[0] = exclusive;
		copy_bytes(data + 1, from, std::min(there, count - 1));
	} else {
		copy_bytes(data, from, there);
	}
	walk->at += claimed;
	return true;
}

static bool take_channel_event(track_walk *walk, _midi_event *event)
{
	const u8 status = walk->here()[0];
	if (status & status_bit)
		walk->channel_length = (status & 0xE0) == 0xC0 ? 2 : 3;
	take_bytes(walk, event, static_cast<std::size_t>(walk->channel_length));
	return true;
}

// ---- Meta events ------------------------------------------------------------------------------

static void log_end_of_track(track_walk *walk, const _midi_event &)
{
	log_line("[D] END OF TRACK FOUND...Event: %d\r\n", walk->number());
}

static void log_tempo(track_walk *, const _midi_event &event)
{
	const bounded_bytes data = event.bytes();
	log_line("[D] TEMPO: %d\r\n", data[0] << 16 | data[1] << 8 | data[2]);
}

static void take_time_signature(track_walk *walk, const _midi_event &event)
{
	const bounded_bytes data = event.bytes();
	_midi_track *track = walk->track;
	track->takt_zaehler = data[0];
	track->takt_nenner = 1 << std::min<int>(data[1], 30);
	track->takt_len = data[0] * walk->file->division * 4 / track->takt_nenner;
}

static void log_text(track_walk *, const _midi_event &event)
{
	if (!current_run_mode.diagnostics)
		return;
	const bounded_bytes data = event.bytes();
	const bool text = event.meta_type == meta_track_name || event.meta_type == meta_instrument;
	log_line("[D] META-DATA[0x%02X] --> %d Bytes [%s]\r\n", event.meta_type, event.data_len,
		text ? data.text(0).substr(0, most_logged).c_str() : logged_hex(data).c_str());
}

// Events of a fixed length have it in their type; their length byte is kept and not believed.
struct meta_row {
	int first, last; // types
	int length;      // -1: as the file says
	void (*then)(track_walk *walk, const _midi_event &event);
};
static constexpr meta_row meta_rows[] = {
	{ 0x01, meta_text_last, -1, log_text },
	{ meta_channel, meta_port, 1, nullptr },
	{ meta_end_of_track, meta_end_of_track, 0, log_end_of_track },
	{ meta_tempo, meta_tempo, 3, log_tempo },
	{ meta_time_signature, meta_time_signature, 4, take_time_signature },
	{ meta_key_signature, meta_key_signature, 2, nullptr },
	{ meta_sequencer, meta_sequencer, -1, log_text },
};

static bool take_meta_data(track_walk *walk, _midi_event *event, const meta_row &row)
{
	if (row.length >= 0) {
		event->meta_sub_type = walk->here()[0];
		walk->at++;
		take_bytes(walk, event, static_cast<std::size_t>(row.length));
		return true;
	}
	std::size_t claimed, there;
	if (!take_length(walk, &claimed, &there))
		return false;
	take_bytes(walk, event, there);
	walk->at += claimed - there;
	return true;
}

static bool take_meta(track_walk *walk, _midi_event *event)
{
	event->meta_type = walk->here()[1];
	walk->at += 2;
	for (const meta_row &row : meta_rows) {
		if (event->meta_type < row.first || event->meta_type > row.last)
			continue;
		if (!take_meta_data(walk, event, row))
			return false;
		if (row.then)
			row.then(walk, *event);
		return true;
	}
	show_box("ERROR", "Bad META-Event (0x%02X)", event->meta_type);
	return false;
}

// ---- Tracks -----------------------------------------------------------------------------------

static int ticks_of_a_part(int division)
{
	return division ? midi_grid / division : 0;
}

static bool may_grow(const _midif &file)
{
	if (file.all_events < max_midi_events)
		return true;
	log_line("[D] More than %d events in this MIDI-File\r\n", max_midi_events);
	return false;
}

static void log_event(const track_walk &walk, const _midi_event &event)
{
	if (!current_run_mode.diagnostics)
		return;
	log_line("[D] Event: %d DELTA: %d [%s], META-TYPE: %d, NEW_OFFSET: %d\r\n", walk.number(),
		static_cast<int>(event.delta_time), logged_hex(event.bytes()).c_str(),
		event.meta_type, static_cast<int>(walk.at));
}

static bool read_event(track_walk *walk, u64 *time)
{
	_midi_track *track = walk->track;
	if (!may_grow(*walk->file))
		return false;
	_midi_event &event = track->event.emplace_back();
	track->events++;
	walk->file->all_events++;
	event.delta_time =
		u64{ walk->variable() } * static_cast<u64>(ticks_of_a_part(walk->file->division));
	event.absolute_time = *time += event.delta_time;
	const u8 status = walk->here()[0];
	const auto take = status == meta_status ? take_meta
			  : status >= exclusive ? take_system
						: take_channel_event;
	if (!take(walk, &event))
		return false;
	log_event(*walk, event);
	return true;
}

// Up to the chunk's length, or to the end of the file where that comes first.
static bool read_events(track_walk *walk, std::size_t length)
{
	const std::size_t end = std::min(length, walk->bytes.size());
	u64 time = 0;
	while (walk->at < end)
		if (!read_event(walk, &time))
			return false;
	return true;
}

static bool read_chunk(
	_midif *file, _midi_track *track, const bounded_bytes &data, std::size_t *offset)
{
	const bounded_bytes chunk = data.from(*offset);
	const char name[] = { static_cast<char>(chunk[0]), static_cast<char>(chunk[1]),
		static_cast<char>(chunk[2]), static_cast<char>(chunk[3]), '\0' };
	const u32 length = read_midi32bit(chunk.from(4));
	log_line("Chunk-Head: [%.4s] Length: %d Bytes\r\n", name, static_cast<int>(length));
	if (std::strcmp(name, "MTrk") != 0)
		return false;
	track_walk walk = { .file = file, .track = track, .bytes = chunk.from(chunk_head_size) };
	if (!read_events(&walk, length))
		return false;
	*offset += length + chunk_head_size;
	return true;
}

int read_midi_track(
	_midif *file, _midi_track *track, const bounded_bytes &data, std::size_t *offset)
{
	try {
		*track = {};
		track->takt_len = file->division * 4;
		return read_chunk(file, track, data, offset);
	} catch (const std::bad_alloc &) {
		show_box("FATAL", "Cannot allocate memory");
		end_program(0);
		return 0;
	}
}

// ---- The file ---------------------------------------------------------------------------------

void free_midi(_midif *file)
{
	stop_midi_file(file);
	remove_midi_tracks(file);
	if (file == &current_midi_file)
		have_midi_file = 0;
	*file = {};
}

static bool read_whole(int handle, std::vector<u8> *image)
{
	std::size_t moved = 0;
	return host.files->read(handle, image->data(), image->size(), &moved) == 0 &&
	       moved == image->size();
}

// The whole file. False: it cannot be had, which is logged.
static bool read_image(const char *path, std::vector<u8> *image)
{
	file_info info;
	if (host.files->stat(path, &info) != 0) {
		log_line("[D] Cannot stat MIDI-FIle: [%s]\r\n", path);
		return false;
	}
	int handle;
	if (!info.regular || host.files->open(path, file_read, &handle) != 0) {
		log_line("[D] Cannot open MIDI-FIle: [%s]\r\n", path);
		return false;
	}
	bool read = info.size <= max_midi_image;
	try {
		image->resize(read ? static_cast<std::size_t>(info.size) : 0);
	} catch (const std::bad_alloc &) {
		(void)host.files->close(handle);
		log_line("[D] Cannot allocate %d Bytes of memory\r\n", static_cast<int>(info.size));
		show_box("FATAL", "Out of memory!!!");
		end_program(0);
		return false;
	}
	read = read && read_whole(handle, image);
	(void)host.files->close(handle);
	if (!read)
		log_line("[D] Cannot read from MIDI-FIle: [%s]\r\n", path);
	return read;
}

static bool is_head(const bounded_bytes &image)
{
	return image.size() >= 4 && std::memcmp(image.bytes.data(), "MThd", 4) == 0 &&
	       read_midi32bit(image.from(4)) == 6;
}

static bool give_tracks(_midif *file)
{
	try {
		file->track.resize(static_cast<std::size_t>(file->ntrks));
		return true;
	} catch (const std::bad_alloc &) {
		show_box("FATAL", "Out of memory!");
		end_program(0);
		return false;
	}
}

static bool read_tracks(_midif *file, const bounded_bytes &image)
{
	std::size_t offset = head_size;
	for (_midi_track &track : file->track)
		if (!read_midi_track(file, &track, image, &offset))
			return false;
	log_line(
		"[D] Current MIDI-File: [%s], Format: %d, NTRKS: %d, DIVISION: %d [OFFSET: %d]\r\n",
		file->name, file->format, file->ntrks, file->division, static_cast<int>(offset));
	return true;
}

static bool read_file(const char *path, _midif *file)
{
	const box_keeper shown_later; // when the log is whole
	const log_batch batch;
	std::vector<u8> bytes;
	if (!read_image(path, &bytes))
		return false;
	const bounded_bytes image = { bytes };
	if (!is_head(image)) {
		log_line("[D] Cannot read from MIDI-FIle: [%s] Invalid header!\r\n", path);
		return false;
	}
	file->format = read_midi16bit(image.from(8));
	file->ntrks = read_midi16bit(image.from(10));
	file->division = read_midi16bit(image.from(12));
	copy_text(file->name, path);
	return give_tracks(file) && read_tracks(file, image);
}

int open_midi_file(int window, const char *path)
{
	have_midi_file = 0;
	free_midi(&current_midi_file);
	_midif file;
	file.parent_window = window;
	if (!read_file(path, &file))
		return 0;
	current_midi_file = std::move(file);
	host.ui->set_text(window, 0,
		format_text("[D] Current MIDI-File: [%s]", current_midi_file.name).c_str());
	have_midi_file = 1;
	show_midi_tracks(&current_midi_file);
	return 1;
}

} // namespace velmor
