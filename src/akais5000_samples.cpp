// akais5000_samples.cpp - samples of the S5000/6000: their parameters, upload, download, names
//
//   upload     > 20 size*4 name        < .... block-size*4      announce
//              > block, 00             < .... block-size*4      until the file is sent
//   download   > 21 hh ll              < length*4, header       hh ll: handle, 8 bits a byte
//              > 00                    < length*4, block        until a length of 0
//
// Block, acknowledge and the read of the answer are under way together: the bus does not
// wait for this program between blocks. The disk is written while the next length travels.
//
// Knows nothing of: the layout of a WAV file beyond the header's shape.

#include "src/akais5000.h"
#include "src/akaiusb_info.h"
#include "src/controls.h"
#include <algorithm>

namespace velmor
{

// clang-format off
static constexpr u8 section_sample = 0x0E, select_by_name = 0x05, select_by_index = 0x06;
static constexpr u8 rename_current = 0x09;
static constexpr u8 delete_current[] = { section_sample, 0x08 };
static constexpr u8 sample_count[]   = { section_sample, 0x10 };
static constexpr u8 sample_handle[]  = { section_sample, 0x13 };
static constexpr std::size_t wave_header_bytes = 144; // what the first pass takes of the file
static constexpr std::size_t length_answer_size = 4, shortest_selection = 6;

static constexpr const char *playmodes[] = {
	"NO LOOPING", "ONE SHOT", "LOOP IN REL", "LOOP UNTIL REL", "LIR->RETRIG", "PLAY->RETRIG",
};

static constexpr const char *failed_query = "GET CURRENT SAMPLE RATE";

static const sample_request info_requests[] = {
	// section       item offset form        field                     log word                      failure
	{ section_sample, 0x31, 9, &as_byte,   &_sample::channels,       nullptr,                      failed_query },
	{ section_sample, 0x48, 9, &as_byte,   &_sample::playback_mode,  nullptr,                      failed_query },
	{ section_sample, 0x40, 9, &as_word28, &_sample::start_position, "S5000 Current Sample start", failed_query },
	{ section_sample, 0x41, 9, &as_word28, &_sample::end_position,   "S5000 Current Sample end",   failed_query },
	{ section_sample, 0x33, 9, &as_word28, &_sample::sample_rate,    "S5000 Current Sample rate",  failed_query },
};

static const sample_info_model s5000_info = {
	.select_section = section_sample,
	.select_item    = select_by_name,
	.selected_log   = nullptr, // says nothing here
	.before_length  = info_requests,
	.length = { section_sample, 0x32, 9, &as_word28, &_sample::sample_length,  "S5000 Current Sample len", failed_query },
	.pitch  = { section_sample, 0x42, 9, &as_byte,   &_sample::original_pitch, nullptr,                    failed_query },
	.bits           = 16,      // this model has no request for it
};
// clang-format on

const char *akai_s5000_getplaymode(i32 playmode)
{
	static std::string text;
	const bool known = playmode >= 0 && playmode < static_cast<i32>(std::size(playmodes));
	text = known ? playmodes[playmode] : format_text("OTHER(%d)", playmode);
	return text.c_str();
}

void akai_s5000_sampleinfo(u8, u8, const char *samplename)
{
	read_sample_info(s5000_info, samplename);
}

void akai_s5000_renamesample(
	u8 exclusive_channel, u8 sysex_channel, const char *oldname, const char *newname)
{
	rename_usb_sample(exclusive_channel, sysex_channel, oldname, newname);
}

// ---- Upload ------------------------------------------------------------------------------

// What a stopped upload leaves.
static constexpr const char *nothing_replaced = "The sample is not on it.";
static constexpr const char *old_is_gone =
	"The sample of that name that it held before is gone, and the new one is not on it.";

// A sample of that name would stay beside the new one.
static bool delete_existing(_usbdev *usb, const std::string &name, const char **left)
{
	usb_answer answer(scalar_capacity);
	*left = nothing_replaced;
	if (!ask_for_transfer(
		    usb, text_request(section_sample, select_by_name, name), &answer, "UPLOAD"))
		return false;
	if (usb_status(usb, answer) != status_done)
		return true;
	log_line("Deleting currently selected Sample, because already resident in memory\r\n");
	*left = old_is_gone;
	return ask_for_transfer(usb, delete_current, &answer, "UPLOAD");
}

static void log_busy(int)
{
	log_line("[D] Sampler is still busy...\r\n");
}

// One block, its acknowledge and the sampler's answer, which states the next block's size.
// The first pass takes a header from the file, whatever the size of the block it sends.
// Behind the end of the file the block holds what the buffer held before.
static bool upload_block(upload *u, bool first, int step_size)
{
	const std::size_t wanted = first ? wave_header_bytes : u->block_size;
	if (!usable_block_size(u->block_size))
		return false;
	const long count = u->take(wanted);
	if (count < 0)
		return false;
	log_line("[D] Transferring: %d/%d Bytes of data!\r\n", static_cast<int>(count),
		static_cast<int>(u->block_size));
	bulk_exchange e;
	raw_answer answer;
	const std::span<const u8> block = std::span<const u8>(u->buffer).first(u->block_size);
	begin_exchange(&e, u->step.usb, { block, block_acknowledge }, upload_answer_size);
	if (!finish_raw(u->step, &e, &answer, log_busy))
		return false;
	u->sent += static_cast<u64>(count);
	u->remaining -= std::min<u64>(u->remaining, static_cast<u64>(count));
	u->block_size = big_endian_32(answer.bytes(), upload_answer_block_size);
	set_progressbar(step_size);
	log_line("[D] Upload Block-Size: %d [%d/%d]\r\n", static_cast<i32>(u->block_size),
		static_cast<i32>(u->sent), static_cast<i32>(u->file.size));
	return true;
}

// left: what the sampler holds when Stop is pressed, which is asked in front of each block.
static bool send_sample(upload *u, const char *left)
{
	raw_answer answer;
	bulk_exchange e;
	usb_unsettled(u->step.usb);
	const std::vector<u8> command = u->announcement(u->file.basename);
	begin_exchange(&e, u->step.usb, { command }, upload_answer_size);
	if (!finish_raw(u->step, &e, &answer, log_busy, is_busy_alone))
		return false;
	u->block_size = big_endian_32(answer.bytes(), upload_answer_block_size);
	log_line("[D] Upload Block-Size: %d\r\n", static_cast<i32>(u->block_size));
	// The whole file in hundredths of a block, so the bar is full from the first block on.
	const int step_size =
		u->block_size ? progress_value(u->file.size * 100 / u->block_size) : 0;
	log_line("[D] STEPSIZE: %d\r\n", step_size);
	for (bool first = true; u->remaining > 0; first = false)
		if (transfer_stopped(u->step, "Upload", left) || !upload_block(u, first, step_size))
			return false;
	usb_settled(u->step.usb);
	log_line("[I] Upload completed!\r\n");
	return true;
}

// The sampler has stored the new sample last. It is selected there and gets the file's
// name, whatever the sampler made of it.
static bool name_last_sample(_usbdev *usb, const std::string &name)
{
	usb_answer answer(scalar_capacity);
	log_line("[D] Request number of samples!\r\n");
	if (!ask_for_transfer(usb, sample_count, &answer, "UPLOAD"))
		return false;
	const usb_family &family = family_of(*usb);
	const i32 count = family.number(answer.bytes().from(family.data_offset), 2);
	log_line("[D] Loaded Samples: %d\r\n", count);
	if (count < 1) {
		tell_transfer_failed("[F] UPLOAD FAILED (%s:%d) SYSEX", __FILE_NAME__, __LINE__);
		return false;
	}
	u8 select[] = { section_sample, select_by_index, 0, 0 };
	as_word14.put(&select[2], count - 1);
	// The wording of the download for the last step is the program's own.
	return ask_for_transfer(usb, select, &answer, "UPLOAD") &&
	       ask_for_transfer(usb, text_request(section_sample, rename_current, name), &answer,
		       "DOWNLOAD");
}

void akai_s5000_uploadsample(const char *path)
{
	upload_file file(path);
	show_progressbar(
		window_samples, 0, format_text("Uploading [%s]...", file.basename.c_str()).c_str());
	if (!file.open())
		return;
	log_line("Uploading Sample-File: [%s], USB-DEVICE-NAME: [%s] SAMPLE-BASENAME: [%s] (%d "
		 "Bytes)\r\n",
		file.name.c_str(), current_sampler ? current_sampler->sampler_usbname : "",
		file.basename.c_str(), static_cast<i32>(file.size));
	open_usbdev usb = open_for_transfer();
	const char *left = nullptr;
	if (!usb || !delete_existing(usb.get(), file.basename, &left))
		return;
	upload u(usb.get(), file);
	if (!send_sample(&u, left) || !name_last_sample(usb.get(), file.basename))
		return;
	usb.reset();
	log_line("[D] Upload completed (Sample renamed)[%s]!\r\n", file.basename.c_str());
	hide_progressbar(window_samples);
}

// ---- Download ----------------------------------------------------------------------------

static bool select_for_download(_usbdev *usb, const char *samplename, i32 *handle)
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
	if (!ask_for_transfer(usb, sample_handle, &answer, "DOWNLOAD"))
		return false;
	*handle = answer.bytes()[9] * 128 + (answer.bytes()[10] & 0x7F);
	return true;
}

static bool ask_header(download *d, i32 handle)
{
	const u8 get_sample[] = { get_sample_command, static_cast<u8>(handle >> 8),
		static_cast<u8>(handle) };
	raw_answer answer;
	usb_unsettled(d->step.usb);
	if (!exchange_raw(d->step, { get_sample }, length_answer_size, &answer))
		return false;
	if (answer.length < length_answer_size)
		return tell_raw_outcome(d->step, exchange_read_failed);
	const u32 length = big_endian_32(answer.bytes(), 0);
	log_line("[D] Header-Length: %d Bytes\r\n", static_cast<i32>(length));
	if (!d->read_header(length))
		return false;
	set_progressbar(1);
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
	if (!tell_raw_outcome(d->step, finish_exchange(&e, answer.buffer.data(), &answer.length)))
		return false;
	if (answer.length < length_answer_size)
		return tell_raw_outcome(d->step, exchange_read_failed);
	*length = big_endian_32(answer.bytes(), 0);
	return true;
}

static bool receive_blocks(download *d)
{
	u32 length = 0;
	for (u32 to_write = 0;; to_write = length) {
		if (d->stopped() || !next_length(d, to_write, &length))
			return false;
		if (length)
			// Each block's share, not what has come in all.
			set_progressbar(progress_value(
				d->announced ? u64{ length } * 100 / d->announced : 100));
		log_line("[D] Data-Length: %d Bytes\r\n", static_cast<i32>(length));
		if (!length) {
			usb_settled(d->step.usb);
			return true;
		}
		if (!d->usable_length(length) || !d->read_exactly(length))
			return false;
		d->received += length;
	}
}

void akai_s5000_downloadsample(u8, u8, const char *samplename)
{
	log_line("[I] ########################## S5000 requesting Sample download for sample: %s "
		 "[%s]\r\n",
		samplename, current_sampler ? current_sampler->sampler_usbname : "");
	spool_file file(samplename);
	show_progressbar(window_samples, 0, format_text("Downloading [%s]...", samplename).c_str());
	const open_usbdev usb = open_for_download();
	if (!usb)
		return;
	download d(usb.get(), file, download_capacity);
	i32 handle = 0;
	if (!select_for_download(usb.get(), samplename, &handle) || !d.open() ||
		!ask_header(&d, handle) || !receive_blocks(&d) || !d.finish())
		return;
	hide_progressbar(window_samples);
}

} // namespace velmor
