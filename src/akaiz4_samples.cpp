// akaiz4_samples.cpp - samples of the Z4/Z8 and MPC 4000: parameters, upload, download, names
//
//   upload     > 20 size*4 name.wav    < .... block-size*4      announce
//              > block, 00             < .... block-size*4      until the file is sent
//                                      < 5 bytes                it is stored
//   download   > 21 handle*4           < .... length*4, header
//              > 00                    < .... length*4, block   until a length of 0
//
// The four bytes in front of a size or length are "AkaI" while the sampler is busy; four
// zeros during an upload mean that it refuses the rest.
//
// Knows nothing of: the layout of a WAV file beyond the header's shape.

#include "src/akais5000.h"
#include "src/akaiusb_info.h"
#include "src/akaiz4.h"
#include "src/controls.h"
#include <algorithm>

namespace velmor
{

// clang-format off
static constexpr u8 section_sample = 0x1C, select_by_name = 0x04;
static constexpr u8 sample_handle[]   = { section_sample, 0x05 };
static constexpr u8 sample_playmode[] = { 0x1F, 0x26 };
static constexpr std::size_t download_buffer = 327680, shortest_selection = 6;
static constexpr std::size_t length_answer_size = 8, length_answer_value = 4, shortest_length = 4;
static constexpr std::size_t final_answer_size = 5, header_range = 42;
static constexpr std::size_t upload_slack = 1024;
static constexpr int header_delay_ms = 500; // the sampler needs it to get the sample ready

static constexpr const char *playmodes[] = { "NO LOOPING", "LOOPING", "ONE SHOT" };

static constexpr const char *failed_rate = "GET CURRENT SAMPLE RATE";
static constexpr const char *failed_mode = "GET CURRENT PLAYBACK MODE";

// Start, end and length come highest group first, unlike every other value of this model;
// start and end stand one byte further. The log says S5000 here too.
static const sample_request info_requests[] = {
	// item       offset form         field                     log word                      failure
	{ 0x1F, 0x52, 8, &as_byte,     &_sample::bitspersample,  nullptr,                      failed_rate },
	{ 0x1F, 0x51, 8, &as_z4_rate,  &_sample::sample_rate,    "Z4 Current Sample rate",     failed_rate },
	{ 0x1F, 0x55, 8, &as_byte,     &_sample::channels,       nullptr,                      failed_mode },
	{ 0x1F, 0x26, 8, &as_byte,     &_sample::playback_mode,  nullptr,                      failed_mode },
	{ 0x1F, 0x20, 9, &as_word28,   &_sample::start_position, "S5000 Current Sample start", failed_rate },
	{ 0x1F, 0x21, 9, &as_word28,   &_sample::end_position,   "S5000 Current Sample end",   failed_rate },
};

static const sample_info_model z4_info = {
	.select_section = section_sample,
	.select_item    = select_by_name,
	.selected_log   = "[D] Current Sample set at Z4/Z8\r\n",
	.before_length  = info_requests,
	.length = { 0x1F, 0x50, 8, &as_word28, &_sample::sample_length,  "S5000 Current Sample len", failed_rate },
	.pitch  = { 0x1F, 0x24, 8, &as_byte,   &_sample::original_pitch, nullptr,                    failed_rate },
	.bits           = 0,       // asked
};
// clang-format on

const char *akai_z4_getplaymode(i32 playmode)
{
	static std::string text;
	const bool known = playmode >= 0 && playmode < static_cast<i32>(std::size(playmodes));
	text = known ? playmodes[playmode] : format_text("OTHER(%d)", playmode);
	return text.c_str();
}

void akai_z4_sampleinfo(u8, u8, const char *samplename)
{
	read_sample_info(z4_info, samplename);
}

void akai_z4_renamesample(
	u8 exclusive_channel, u8 sysex_channel, const char *oldname, const char *newname)
{
	rename_usb_sample(exclusive_channel, sysex_channel, oldname, newname);
}

// ---- Upload ------------------------------------------------------------------------------

static void log_busy(int length)
{
	log_line("[D] Sampler is still busy...[%d]\r\n", length);
}

// What a block led to.
enum class block_outcome {
	sent,
	refused,
	failed
};

// A new block begins with an empty buffer; behind the end of the file it holds zeros.
static void renew_buffer(upload *u, std::size_t slack)
{
	u->buffer.assign(std::min<std::size_t>(u->block_size, max_upload_block) + slack, 0);
}

static block_outcome upload_block(upload *u)
{
	if (!usable_block_size(u->block_size))
		return block_outcome::failed;
	const long count = u->take(u->block_size);
	if (count < 0)
		return block_outcome::failed;
	log_line("[D] Transferring: %d/%d Bytes of data!\r\n", static_cast<int>(count),
		static_cast<int>(u->block_size));
	bulk_exchange e;
	raw_answer answer;
	const std::span<const u8> block = std::span<const u8>(u->buffer).first(u->block_size);
	begin_exchange(&e, u->step.usb, { block, block_acknowledge }, upload_answer_size);
	u->sent += static_cast<u64>(count);
	set_progressbar(progress_value(u->sent));
	if (!finish_raw(u->step, &e, &answer, log_busy))
		return block_outcome::failed;
	const bounded_bytes a = answer.bytes();
	const u32 next = big_endian_32(a, upload_answer_block_size);
	u->block_size = next;
	if (next)
		renew_buffer(u, upload_slack);
	log_line("[D] Upload Block-Size: %d [%d/%d], Response from Z4: %d Bytes [%02X %02X %02X "
		 "%02X]\r\n",
		static_cast<i32>(next), static_cast<i32>(u->sent), static_cast<i32>(u->file.size),
		static_cast<int>(a.size()), a[0], a[1], a[2], a[3]);
	if (a.size() >= 4 && big_endian_32(a, 0) == 0)
		return block_outcome::refused;
	u->remaining -= std::min<u64>(u->remaining, static_cast<u64>(count));
	return block_outcome::sent;
}

// The sampler goes on telling its state until five bytes say that it is done.
static bool await_final_answer(upload *u, int *length)
{
	busy_watch watch;
	raw_answer answer;
	while (watch.goes_on()) {
		if (!exchange_raw(u->step, {}, upload_answer_size, &answer))
			return false;
		*length = static_cast<int>(answer.length);
		if (is_busy(answer.bytes()))
			log_line("[D] Sampler is still end-busy...[%d]\r\n", *length);
		else if (answer.length == final_answer_size)
			return true;
		else
			log_line("[D] Sampler is still sending some status...[%d]\r\n", *length);
	}
	tell_transfer_failed("[F] UPLOAD FAILED (%s:%d) GET_SAMPLE [Sampler stays busy]",
		__FILE_NAME__, __LINE__);
	return false;
}

static bool announce(upload *u)
{
	const std::vector<u8> command = u->announcement(u->file.basename + ".wav");
	raw_answer answer;
	log_line("[D] Z4 --> UPLOAD REQUEST [%s]\r\n", hex_text(command).c_str());
	bulk_exchange e;
	begin_exchange(&e, u->step.usb, { command }, upload_answer_size);
	if (!finish_raw(u->step, &e, &answer, log_busy, is_busy_alone))
		return false;
	const std::string dump = hex_text(answer.bytes().bytes);
	log_line("[D] Z4 <-- UPLOAD RESPONSE [%s]\r\n", dump.c_str());
	u->block_size = big_endian_32(answer.bytes(), upload_answer_block_size);
	log_line("[D] Upload Block-Size: %d (Response from Sampler: %d Bytes) [%s]\r\n",
		static_cast<i32>(u->block_size), static_cast<int>(answer.length), dump.c_str());
	renew_buffer(u, 0);
	log_line("[D] STEPSIZE: %d\r\n", 0);
	return true;
}

static bool send_sample(upload *u)
{
	usb_unsettled(u->step.usb);
	if (!announce(u))
		return false;
	block_outcome outcome = block_outcome::sent;
	while (u->remaining > 0 && outcome == block_outcome::sent) {
		if (transfer_stopped(u->step, "Upload", "The sample is not on it."))
			return false;
		outcome = upload_block(u);
	}
	int length = 0;
	if (outcome == block_outcome::failed || !await_final_answer(u, &length))
		return false;
	usb_settled(u->step.usb);
	log_line("[I] Upload %s! Received final confirmation! (%d Bytes)\r\n",
		outcome == block_outcome::refused ? "failed" : "completed", length);
	return true;
}

void akai_z4_uploadsample(const char *path)
{
	upload_file file(path);
	if (!file.open())
		return;
	log_line("Uploading Sample-File: [%s], USB-DEVICE-NAME: [%s] SAMPLE-BASENAME: [%s] (%d "
		 "Bytes)\r\n",
		file.name.c_str(), current_sampler ? current_sampler->sampler_usbname : "",
		file.basename.c_str(), static_cast<i32>(file.size));
	show_progressbar(window_samples, progress_value(file.size),
		format_text("Uploading [%s]...", file.basename.c_str()).c_str());
	open_usbdev usb = open_for_transfer();
	if (!usb)
		return;
	upload u(usb.get(), file);
	if (!send_sample(&u))
		return;
	usb_answer answer(scalar_capacity);
	const bool answers = ask_usb(usb.get(), sample_playmode, &answer);
	usb.reset();
	if (!answers) {
		log_line("[D] SYSEX-TEST FAILED AFTER TRANSFER!!!\r\n");
		hide_progressbar(window_samples);
		return;
	}
	// Nothing was renamed, and after a refusal nothing is complete: only the log tells.
	log_line("[D] Upload completed (Sample renamed)[%s]!\r\n", file.basename.c_str());
	hide_progressbar(window_samples);
	show_box("INFO", "Sample [%s] successfully uploaded!", file.basename.c_str());
}

// ---- Download ----------------------------------------------------------------------------

static bool select_for_download(_usbdev *usb, const char *samplename, u32 *handle)
{
	usb_answer answer(download_capacity);
	if (!ask_for_transfer(usb, text_request(section_sample, select_by_name, samplename),
		    &answer, "DOWNLOAD"))
		return false;
	if (answer.bytes().size() < shortest_selection || usb_status(usb, answer) != status_done) {
		tell_transfer_failed(
			"[F] DOWNLOAD FAILED (%s:%d) BAD RESPONSE", __FILE_NAME__, __LINE__);
		return false;
	}
	log_line("[D] Current Sample selected [%s]\r\n", samplename);
	if (!ask_for_transfer(usb, sample_handle, &answer, "DOWNLOAD"))
		return false;
	const usb_family &family = family_of(*usb);
	*handle = static_cast<u32>(family.number(answer.bytes().from(family.data_offset), 4));
	return true;
}

// The sampler gets the sample ready; windows live meanwhile.
static void wait_for_header()
{
	const double until = host.clock->counter() + header_delay_ms / 1000.0;
	for (double left; (left = until - host.clock->counter()) > 1e-9;)
		host.ui->pump(std::clamp(static_cast<int>(left * 1000 + 0.5), 1, 100));
}

// The first answer of a download; the busy marker alone is none.
static exchange_outcome read_header_length(_usbdev *usb, raw_answer *answer)
{
	busy_watch watch;
	for (;;) {
		bulk_exchange e;
		begin_exchange(&e, usb, {}, length_answer_size);
		const exchange_outcome outcome =
			finish_exchange(&e, answer->buffer.data(), &answer->length);
		if (outcome != exchange_done || !is_busy_alone(answer->bytes()))
			return outcome;
		log_busy(static_cast<int>(answer->length));
		if (!watch.goes_on())
			return exchange_read_failed;
	}
}

static bool ask_header(download *d, u32 handle, const char *caption)
{
	u8 get_sample[5] = { get_sample_command };
	put_big_endian_32(&get_sample[1], handle);
	log_line("[D] SAMPLE HANDLE: 0x%08X (Request: [%s])\r\n", handle,
		hex_text(get_sample).c_str());
	raw_answer answer;
	bulk_exchange e;
	usb_unsettled(d->step.usb);
	begin_exchange(&e, d->step.usb, { get_sample }, 0);
	if (!tell_raw_outcome(d->step, finish_exchange(&e, nullptr, &answer.length)))
		return false;
	wait_for_header();
	const exchange_outcome outcome = read_header_length(d->step.usb, &answer);
	if (outcome != exchange_done || answer.length < shortest_length) {
		tell_transfer_failed("[F] DOWNLOAD FAILED (%s:%d) GET_SAMPLE [%d], RESULT_LEN: %d",
			__FILE_NAME__, __LINE__, outcome == exchange_done,
			static_cast<int>(answer.length));
		return false;
	}
	const u32 length = big_endian_32(answer.bytes(), length_answer_value);
	log_line("[D] Header-Length: %d Bytes RESULT-LEN: %d Bytes [%s]\r\n",
		static_cast<i32>(length), static_cast<int>(answer.length),
		hex_text(answer.bytes().bytes).c_str());
	if (!d->read_header(length))
		return false;
	const bounded_bytes header = { std::span<const u8>(d->buffer).first(length) };
	show_progressbar(
		window_samples, progress_value(little_endian_32(header, header_range)), caption);
	return d->write(length);
}

// The length of the next block, asked for with the acknowledge of what came before; what
// lies in the buffer goes to the disk meanwhile.
static bool next_length(download *d, std::size_t to_write, u32 *length)
{
	bulk_exchange e;
	raw_answer answer;
	begin_exchange(&e, d->step.usb, { block_acknowledge }, length_answer_size);
	if (to_write && !d->write(to_write)) {
		abandon_exchange(&e);
		return false;
	}
	if (!finish_raw(d->step, &e, &answer, log_busy))
		return false;
	if (answer.length < length_answer_size)
		return tell_raw_outcome(d->step, exchange_read_failed);
	*length = big_endian_32(answer.bytes(), length_answer_value);
	log_line("[D] Data-Length: %d Bytes [%s]\r\n", static_cast<i32>(*length),
		hex_text(answer.bytes().bytes).c_str());
	return true;
}

static bool receive_blocks(download *d)
{
	u32 length = 0;
	for (u32 to_write = 0;; to_write = length) {
		if (d->stopped() || !next_length(d, to_write, &length))
			return false;
		if (!length) {
			usb_settled(d->step.usb);
			return true;
		}
		if (!d->usable_length(length) || !d->read_exactly(length))
			return false;
		d->received += length;
		set_progressbar(progress_value(d->received));
	}
}

void akai_z4_downloadsample(u8, u8, const char *samplename)
{
	log_line("[I] ########################## Z4 requesting Sample download for sample: %s "
		 "[%s]\r\n",
		samplename, current_sampler ? current_sampler->sampler_usbname : "");
	spool_file file(samplename);
	const std::string caption = format_text("Downloading [%s]", samplename);
	show_progressbar(window_samples, 0, caption.c_str());
	open_usbdev usb = open_for_download();
	if (!usb)
		return;
	download d(usb.get(), file, download_buffer);
	u32 handle = 0;
	if (!select_for_download(usb.get(), samplename, &handle) || !d.open() ||
		!ask_header(&d, handle, caption.c_str()) || !receive_blocks(&d) || !d.finish())
		return;
	usb.reset();
	hide_progressbar(window_samples);
	show_box("INFO", "Sample successfully downloaded!");
}

} // namespace velmor
