// akaiusb.h - what the drivers of all USB samplers have in common: asking, and sample data
//
// Each operation opens the device, runs its requests and closes it. A request is section,
// item, arguments; the frame around it belongs to the transport, and what differs between the
// families is a row of usb_families.
//
// Called by the drivers of the S5000/6000, Z4/Z8 and MPC 4000.
// Knows nothing of: the requests of a model, windows other than the boxes it shows.

#pragma once
#include "src/usbqx.h"
#include "src/velmor.h"
#include "src/velmor_files.h"
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace velmor
{

// ---- Requests (akaiusb.cpp) ------------------------------------------------------------------

inline constexpr int scalar_capacity = 1024;
inline constexpr int list_capacity = 10240;
inline constexpr int download_capacity = 32768;

// An answer in its own buffer; past its end every byte reads as zero.
struct usb_answer {
	std::vector<u8> buffer;
	int length = 0;

	explicit usb_answer(int capacity) : buffer(static_cast<std::size_t>(capacity)) {}
	bounded_bytes bytes() const
	{
		return { std::span(buffer).first(static_cast<std::size_t>(length)) };
	}
};
// One request; false when it failed. The place that asks is named in the log.
bool ask_usb(_usbdev *usb, std::span<const u8> payload, usb_answer *answer,
	call_site where = call_site::current());
// The same with the words of the list operations for a failure.
bool ask_or_log(_usbdev *usb, std::span<const u8> payload, usb_answer *answer,
	call_site where = call_site::current());
inline constexpr u8 status_done = 0x44; // 'D'
// The status of an answer, where its family has it.
u8 usb_status(const _usbdev *usb, const usb_answer &answer);
// Section, item, text and its terminator.
std::vector<u8> text_request(u8 section, u8 item, std::string_view text);

// Names that stand one after the other, each ended by a zero, up to the end byte.
struct name_walk {
	bounded_bytes bytes;
	std::size_t at;
	std::optional<std::string> next();
};

// A count from outside, cut to what the record holds and never negative; what is cut is logged.
int bounded_count(i32 announced, int limit, const char *what);

// The device of the loaded sampler, opened; null when it is not there or does not open, which
// is logged.
_usbdev *loaded_usbdev();
open_usbdev open_loaded_usbdev();

const char *file_tag(const call_site &where);

// ---- Sample data (akaiusb_transfer.cpp) ----------------------------------------------------

inline constexpr u8 put_sample_command = 0x20;
inline constexpr u8 get_sample_command = 0x21;
inline constexpr u8 block_acknowledge[] = { 0x00 };
inline constexpr std::size_t upload_answer_size = 64;
inline constexpr std::size_t upload_answer_block_size = 4;
inline constexpr u32 max_upload_block = 1 << 20; // bytes; a larger one is refused
inline constexpr double busy_limit = 60;         // seconds of busy answers
inline constexpr double busy_limit_stopped = 10; // and after Stop was pressed
inline constexpr int max_busy_answers = 60000;
inline constexpr u64 max_trailing_bytes = 64 * 1024; // behind the data a header announces

u32 big_endian_32(bounded_bytes bytes, std::size_t at);
u32 little_endian_32(bounded_bytes bytes, std::size_t at);
void put_big_endian_32(u8 *bytes, u32 value);
// True for an answer of a sampler that wants to be asked again.
bool is_busy(bounded_bytes answer);

// The same for an answer that begins a transfer: the marker, and no size behind it.
bool is_busy_alone(bounded_bytes answer);

// How long the busy answers of one phase may last. The sampler is at work then, and Stop makes
// the wait shorter but does not break it off.
struct busy_watch {
	double since = -1, stopped_since = -1;
	int answers = 0;
	// Count one more; false when the limit is passed.
	bool goes_on();
};

// A file being uploaded, closed at the end of its scope.
struct upload_file {
	int file = -1;
	u64 size = 0;
	std::string name, basename; // basename: the name that the sampler gets

	// The base name of a path without extension: behind the last backslash, or from a forward
	// slash on, which stays.
	explicit upload_file(const char *path);
	~upload_file();
	upload_file(const upload_file &) = delete;
	// Open and measure; a failure is told in a box.
	bool open();
	// At most count bytes to bytes; -1 when the disk failed.
	long read(u8 *bytes, std::size_t count);
};

// A file of the spool being downloaded. It has its final name only when it is whole.
struct spool_file {
	fresh_file file;
	std::string name;

	explicit spool_file(const char *samplename);
	int open(); // a system code
	int write(std::span<const u8> bytes);
	int finish(u64 *size);
};

// Where the chunks of a downloaded header stand. whole is false for a header that is not
// format, one chunk, sample chunk, data.
struct sample_header {
	bool whole;
	u32 format_length, fact_length, data_length;
	std::size_t sample_chunk; // offset
};
sample_header parse_sample_header(bounded_bytes header);
void log_sample_header(bounded_bytes header, const sample_header &parts);

// The device for an upload or a question, or for a download, opened; null after a box. A
// device that does not open for a download ends the process.
open_usbdev open_for_transfer();
open_usbdev open_for_download();
// One framed request; a failure is told with the words of the operation.
bool ask_for_transfer(_usbdev *usb, std::span<const u8> payload, usb_answer *answer,
	const char *operation, call_site where = call_site::current());

// Tell a failure of a transfer: hide the bar, log the text, show it.
void tell_transfer_failed(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Raw bytes out and an answer of at most wanted bytes in; a failure is told with the words of
// the operation, "UPLOAD" or "DOWNLOAD".
struct raw_answer {
	std::array<u8, upload_answer_size> buffer = {};
	std::size_t length = 0;
	bounded_bytes bytes() const { return { std::span(buffer).first(length) }; }
};
struct raw_step {
	_usbdev *usb;
	const char *operation;
	const char *write_failure, *read_failure; // "PUT_SAMPLE", "GET_SAMPLE"
};
bool tell_raw_outcome(
	const raw_step &step, exchange_outcome outcome, call_site where = call_site::current());
bool exchange_raw(const raw_step &step, std::initializer_list<std::span<const u8>> runs,
	std::size_t wanted, raw_answer *answer, call_site where = call_site::current());
// The answer to what was sent, asked for again while the sampler is busy. busy_log says so.
bool finish_raw(const raw_step &step, bulk_exchange *exchange, raw_answer *answer,
	void (*busy_log)(int length), bool (*busy)(bounded_bytes answer) = is_busy,
	call_site where = call_site::current());
// Stop, asked for where the sampler has nothing under way. True when it was pressed: the sampler
// has been told to drop the transfer, and a box says so. what is "Upload" or "Download", left
// what the sampler and this computer hold now.
bool transfer_stopped(const raw_step &step, const char *what, const char *left);

// A block size that the sampler stated, against what can be; what is wrong is told.
bool usable_block_size(u32 size);
// As much of a sum as a progress bar can show.
int progress_value(u64 value);

// An upload under way, from block to block.
struct upload {
	raw_step step;
	upload_file &file;
	u32 block_size = 0; // as last stated
	u64 remaining = 0, sent = 0;
	std::vector<u8> buffer;

	upload(_usbdev *usb, upload_file &source)
		: step{ usb, "UPLOAD", "PUT_SAMPLE", "GET_SAMPLE" }, file(source),
		  remaining(source.size)
	{
	}
	// The command that announces the file, under that name.
	std::vector<u8> announcement(std::string_view name) const;
	// Take the next bytes of the file into the buffer; -1 after a box.
	long take(std::size_t wanted);
};

// A download under way. header and blocks land in buffer, which bounds both.
struct download {
	raw_step step;
	spool_file &file;
	std::vector<u8> buffer;
	u64 received = 0;  // bytes of sample data
	u32 announced = 0; // of them, by the header

	download(_usbdev *usb, spool_file &target, std::size_t capacity)
		: step{ usb, "DOWNLOAD", "GET_SAMPLE", "GET_SAMPLE" }, file(target),
		  buffer(capacity)
	{
	}
	bool open();
	// Read exactly count bytes to the buffer.
	bool read_exactly(std::size_t count);
	// The header, its shape tested, and told in the log.
	bool read_header(u32 length);
	bool write(std::size_t count);
	// A block length that the sampler stated, against the buffer and the header.
	bool usable_length(u32 length);
	// Stop, asked for in front of an acknowledge that would bring more.
	bool stopped() const;
	// Close the file and give it its name.
	bool finish();
};

} // namespace velmor
