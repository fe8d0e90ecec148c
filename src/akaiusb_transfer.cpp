// akaiusb_transfer.cpp - what the sample transfers of all USB samplers have in common
//
// Sample data travels raw: after a framed selection the two sides exchange blocks on the
// same pipes, each followed by a one-byte acknowledge, and the sampler sets the pace. An
// answer that begins "AkaI" means that it is busy and wants to be asked again.
//
// A download is written under a temporary name, so that a file of the spool is whole or
// not there, and an old one stays until the new one is.
//
// Knows nothing of: the requests of a model.

#include "src/akaiusb.h"
#include "src/controls.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cstdarg>
#include <cstring>

namespace velmor
{

u32 big_endian_32(bounded_bytes b, std::size_t at)
{
	return u32{ b[at] } << 24 | u32{ b[at + 1] } << 16 | u32{ b[at + 2] } << 8 | b[at + 3];
}

u32 little_endian_32(bounded_bytes b, std::size_t at)
{
	return u32{ b[at + 3] } << 24 | u32{ b[at + 2] } << 16 | u32{ b[at + 1] } << 8 | b[at];
}

void put_big_endian_32(u8 *bytes, u32 value)
{
	for (int i = 0; i < 4; i++)
		bytes[i] = static_cast<u8>(value >> (24 - 8 * i));
}

bool is_busy(bounded_bytes answer)
{
	return answer.size() >= 4 && std::memcmp(answer.bytes.data(), "AkaI", 4) == 0;
}

bool is_busy_alone(bounded_bytes answer)
{
	return is_busy(answer) && big_endian_32(answer, upload_answer_block_size) == 0;
}

bool busy_watch::goes_on()
{
	const double now = host.clock->counter();
	if (since < 0)
		since = now;
	if (stopped_since < 0 && progress_stopped())
		stopped_since = now;
	const bool stopped = stopped_since >= 0 && now - stopped_since > busy_limit_stopped;
	return ++answers <= max_busy_answers && now - since <= busy_limit && !stopped;
}

// ---- Files -------------------------------------------------------------------------------

// Behind the last backslash; a forward slash stays as the first character.
static std::string base_name_of(const std::string &path)
{
	const std::size_t at = path.find_last_of("\\/");
	if (at == path.npos)
		return path;
	return path.substr(path[at] == '\\' ? at + 1 : at);
}

upload_file::upload_file(const char *path) : name(wave_path_of(path)), basename(base_name_of(path))
{
}

upload_file::~upload_file()
{
	if (file >= 0)
		host.files->close(file);
}

static const char *words_or_code(int code)
{
	const char *words = host.files->error_text(code);
	return words ? words : "Unknown error-code";
}

bool upload_file::open()
{
	file_info info = {};
	int code = host.files->open(name.c_str(), file_read, &file);
	if (code)
		file = -1;
	else
		code = host.files->stat(name.c_str(), &info);
	size = info.size;
	// A transfer states its size in 32 bits.
	const char *words = code                ? words_or_code(code)
			    : size > 0xFFFFFFFF ? "File too large"
						: nullptr;
	if (words)
		tell_transfer_failed("[F] Error stating [%s] (%s)", name.c_str(), words);
	return !words;
}

long upload_file::read(u8 *bytes, std::size_t count)
{
	std::size_t moved = 0;
	return host.files->read(file, bytes, count, &moved) ? -1 : static_cast<long>(moved);
}

spool_file::spool_file(const char *samplename)
	: name(current_config_path + "\\sample\\" + file_name_of(samplename) + ".wav")
{
}

int spool_file::open()
{
	return file.open(name);
}

int spool_file::write(std::span<const u8> bytes)
{
	return file.write(bytes.data(), bytes.size());
}

int spool_file::finish(u64 *size)
{
	const int code = file.finish();
	file_info info = {};
	if (!code)
		host.files->stat(name.c_str(), &info);
	*size = info.size;
	return code;
}

// ---- Header --------------------------------------------------------------------------------

sample_header parse_sample_header(bounded_bytes h)
{
	// The format chunk's body begins at 20; each chunk is 8 bytes and its length.
	sample_header parts = {};
	parts.format_length = little_endian_32(h, 16);
	const u64 first = u64{ 20 } + parts.format_length;
	if (first + 8 > h.size())
		return parts;
	parts.fact_length = little_endian_32(h, first + 4);
	const u64 second = first + 8 + parts.fact_length;
	if (second + 8 > h.size())
		return parts;
	parts.sample_chunk = second;
	const u64 data = second + 8 + little_endian_32(h, second + 4);
	if (data + 8 > h.size())
		return parts;
	parts.data_length = little_endian_32(h, data + 4);
	parts.whole = std::memcmp(h.bytes.data() + data, "data", 4) == 0;
	return parts;
}

void log_sample_header(bounded_bytes h, const sample_header &parts)
{
	// Offsets in the sample chunk as this program writes it.
	enum {
		unity_note = 20,
		loop_start = 52,
		loop_end = 56,
		semitone_tune = 71,
		fine_tune = 72,
		playmode = 74,
		play_start = 78,
		play_end = 82
	};
	const bounded_bytes chunk = h.from(parts.sample_chunk);
	const std::string chunk_name = chunk.from(0).text(0).substr(0, 4);
	log_line("[D] RAW_DATA_LEN: %d Bytes\r\n", static_cast<i32>(parts.data_length));
	log_line("[I] -------> Sample has %d Channels, %d Hz Sample-Rate, %d Bytes per "
		 "sample,DATA-Length %d, Format Length: %d, FACT_LEN: %d, Size: %d\r\n",
		h[22] | h[23] << 8, static_cast<i32>(little_endian_32(h, 24)), h[32] | h[33] << 8,
		static_cast<i32>(parts.data_length), static_cast<i32>(parts.format_length),
		static_cast<i32>(parts.fact_length), static_cast<i32>(h.size()));
	log_line("[I] -------> PITCH: [%s] LOOP-START: %d, LOOP-End: %d SAMPLE: [%.4s]\r\n",
		midi_note[chunk[unity_note] & 0x7F],
		static_cast<i32>(little_endian_32(chunk, loop_start)),
		static_cast<i32>(little_endian_32(chunk, loop_end)), chunk_name.c_str());
	log_line("[I] -------> START: %d, END: %d, PLAYMODE: %d, SEMI-TONE-TUNE: %d, FINE-TUNE: "
		 "%d\r\n",
		static_cast<i32>(little_endian_32(chunk, play_start)),
		static_cast<i32>(little_endian_32(chunk, play_end)), chunk[playmode],
		chunk[semitone_tune], chunk[fine_tune]);
}

// ---- What the user is told -------------------------------------------------------------------

void tell_transfer_failed(const char *format, ...)
{
	va_list arguments;
	va_start(arguments, format);
	char text[1536];
	std::vsnprintf(text, sizeof text, format, arguments);
	va_end(arguments);
	hide_progressbar(window_samples);
	log_line("%s\r\n", text);
	show_box("FATAL", "%s", text);
}

bool transfer_stopped(const raw_step &step, const char *what, const char *left)
{
	if (!progress_stopped())
		return false;
	const bool told = usb_break_off(step.usb);
	hide_progressbar(window_samples);
	log_line("[I] %s stopped\r\n", what);
	show_box("INFO", "%s stopped. %s %s", what,
		told ? tr("The sampler was told to drop the transfer.")
		     : tr("The sampler could not be told, and may wait for the rest until it is "
			  "switched off and on."),
		left);
	return true;
}

// ---- Raw steps ---------------------------------------------------------------------------------

bool tell_raw_outcome(const raw_step &step, exchange_outcome outcome, call_site where)
{
	if (outcome == exchange_done)
		return true;
	tell_transfer_failed("[F] %s FAILED (%s:%d) %s", step.operation, file_tag(where),
		static_cast<int>(where.line()),
		outcome == exchange_write_failed ? step.write_failure : step.read_failure);
	return false;
}

bool exchange_raw(const raw_step &step, std::initializer_list<std::span<const u8>> runs,
	std::size_t wanted, raw_answer *answer, call_site where)
{
	bulk_exchange e;
	begin_exchange(&e, step.usb, runs, std::min(wanted, answer->buffer.size()));
	return tell_raw_outcome(
		step, finish_exchange(&e, answer->buffer.data(), &answer->length), where);
}

bool finish_raw(const raw_step &step, bulk_exchange *e, raw_answer *answer,
	void (*busy_log)(int length), bool (*busy)(bounded_bytes answer), call_site where)
{
	busy_watch watch;
	for (const std::size_t wanted = e->wanted;; begin_exchange(e, step.usb, {}, wanted)) {
		if (!tell_raw_outcome(step,
			    finish_exchange(e, answer->buffer.data(), &answer->length), where))
			return false;
		if (!busy(answer->bytes()))
			return true;
		busy_log(static_cast<int>(answer->length));
		if (!watch.goes_on()) {
			tell_transfer_failed("[F] %s FAILED (%s:%d) %s [Sampler stays busy]",
				step.operation, file_tag(where), static_cast<int>(where.line()),
				step.read_failure);
			return false;
		}
	}
}

int progress_value(u64 value)
{
	return static_cast<int>(std::min<u64>(value, INT32_MAX));
}

// ---- Upload ------------------------------------------------------------------------------------

bool usable_block_size(u32 size)
{
	if (size > 0 && size <= max_upload_block)
		return true;
	tell_transfer_failed("[F] UPLOAD FAILED (%s:%d) PUT_SAMPLE [Block-Size: %u]", __FILE_NAME__,
		__LINE__, size);
	return false;
}

std::vector<u8> upload::announcement(std::string_view name) const
{
	std::vector<u8> command(5 + name.size());
	command[0] = put_sample_command;
	put_big_endian_32(&command[1], static_cast<u32>(file.size));
	std::copy(name.begin(), name.end(), command.begin() + 5);
	return command;
}

long upload::take(std::size_t wanted)
{
	if (buffer.size() < std::max<std::size_t>(wanted, block_size))
		buffer.resize(std::max<std::size_t>(wanted, block_size));
	const long count = file.read(buffer.data(), wanted);
	if (count > 0)
		return count;
	// The disk failed, or the file became shorter meanwhile.
	tell_transfer_failed("[F] UPLOAD FAILED (%s:%d) [Cannot read from %s]", __FILE_NAME__,
		__LINE__, file.name.c_str());
	return -1;
}

// ---- Download ----------------------------------------------------------------------------------

bool download::open()
{
	const int code = file.open();
	if (code)
		tell_transfer_failed("[F] Failed to open [%s] for writing [%s]", file.name.c_str(),
			words_or_code(code));
	return !code;
}

bool download::read_exactly(std::size_t count)
{
	bulk_exchange e;
	std::size_t got = 0;
	begin_exchange(&e, step.usb, {}, count);
	if (!tell_raw_outcome(step, finish_exchange(&e, buffer.data(), &got)))
		return false;
	if (got != count)
		tell_transfer_failed("[F] DOWNLOAD FAILED (%s:%d) GET_SAMPLE [SHORT READ %d/%d]",
			__FILE_NAME__, __LINE__, static_cast<int>(got), static_cast<int>(count));
	return got == count;
}

bool download::read_header(u32 length)
{
	if (length > buffer.size()) {
		tell_transfer_failed("[F] DOWNLOAD FAILED (%s:%d) GET_SAMPLE [Header of %u Bytes]",
			__FILE_NAME__, __LINE__, length);
		return false;
	}
	if (length && !read_exactly(length))
		return false;
	const bounded_bytes header = { std::span<const u8>(buffer).first(length) };
	const sample_header parts = parse_sample_header(header);
	if (!parts.whole) {
		tell_transfer_failed(
			"[F] DOWNLOAD FAILED (%s:%d) GET_SAMPLE [Header corrupted] READ %d/%d]",
			__FILE_NAME__, __LINE__, static_cast<int>(length),
			static_cast<int>(length));
		return false;
	}
	announced = parts.data_length;
	log_sample_header(header, parts);
	return true;
}

bool download::write(std::size_t count)
{
	const int code = file.write(std::span<const u8>(buffer).first(count));
	if (code)
		tell_transfer_failed("[F] DOWNLOAD FAILED (%s:%d) [Cannot write to %s: %s]",
			__FILE_NAME__, __LINE__, file.name.c_str(), words_or_code(code));
	return !code;
}

bool download::usable_length(u32 length)
{
	const bool fits = length <= buffer.size();
	if (fits && received + length <= u64{ announced } + max_trailing_bytes)
		return true;
	tell_transfer_failed("[F] DOWNLOAD FAILED (%s:%d) GET_SAMPLE [%s of %u Bytes]",
		__FILE_NAME__, __LINE__, fits ? "More than the header says: block" : "Block",
		length);
	return false;
}

bool download::stopped() const
{
	return received < announced && transfer_stopped(step, tr("Download"),
					       tr("What this computer held before is unchanged."));
}

bool download::finish()
{
	u64 size = 0;
	const int code = file.finish(&size);
	if (code) {
		tell_transfer_failed("[F] Failed to open [%s] for writing [%s]", file.name.c_str(),
			words_or_code(code));
		return false;
	}
	log_line("[I] Downloaded Sample successfully...(%d Bytes, %d Bytes Sample-Data)\r\n",
		static_cast<int>(size), static_cast<int>(received));
	return true;
}

// ---- Devices -------------------------------------------------------------------------------------

// The device for a transfer, or null after a box.
open_usbdev open_for_transfer()
{
	const char *name = current_sampler ? current_sampler->sampler_usbname : "";
	_usbdev *usb = current_sampler ? find_usbdev(name) : nullptr;
	if (!usb) {
		tell_transfer_failed("[F] Cannot find USB-Device for [%s]", name);
		return nullptr;
	}
	if (!open_midi_usb(usb)) {
		tell_transfer_failed("[F] Cannot open USB-Device for [%s]", name);
		return nullptr;
	}
	return open_usbdev(usb);
}

open_usbdev open_for_download()
{
	_usbdev *usb = current_sampler ? find_usbdev(current_sampler->sampler_usbname) : nullptr;
	if (!usb) {
		hide_progressbar(window_samples);
		show_box("INFO", "Cannot connect to sampler");
		return nullptr;
	}
	if (!open_midi_usb(usb)) {
		hide_progressbar(window_samples);
		show_box("INFO", "Failed to open USB-Device!");
		end_program(0);
		return nullptr;
	}
	return open_usbdev(usb);
}

bool ask_for_transfer(_usbdev *usb, std::span<const u8> payload, usb_answer *answer,
	const char *operation, call_site where)
{
	if (ask_usb(usb, payload, answer, where))
		return true;
	tell_transfer_failed("[F] %s FAILED (%s:%d) SYSEX", operation, file_tag(where),
		static_cast<int>(where.line()));
	return false;
}

} // namespace velmor
