// usb_sampler.h - what the S5000 and Z families share on USB
//
// Three kinds of messages come from the host: the wake-up, frames that begin with
// 10 and tell their length, and raw commands for bulk data. Until it is woken the
// machine hears nothing. Raw commands:
//
//   20 size*4 name          here comes a WAV file of that size; size high byte first
//   21 handle               send me that sample
//   00                      go on: after each block, in either direction
//   01 00                   send the display: its pixels, then 18 bytes
//
// The machine paces a transfer: each of its answers states how many bytes the next
// block has. While it is busy it says "AkaI" and nothing else. A block that comes
// short, or a go-on that is none, ends the transfer with zeros.
//
// The settings below make the machine as awkward as real ones are, or worse.
//
// Knows nothing of: the system under src/.

#pragma once
#include "virtual/disks.h"
#include "virtual/usb_machine.h"
#include "virtual/wave_image.h"
#include <memory>
#include <string>

namespace velmor
{

class front_panel;
class screen_canvas;

struct usb_sample {
	std::string name;
	usb_bytes wave;           // a WAV file
	std::uint32_t handle = 0; // given by the machine
};

class usb_sampler : public usb_machine
{
public:
	std::string name;
	std::uint8_t version_major = 2, version_minor = 10;
	std::vector<usb_sample> samples;
	disk_rack disks;
	// Of the display, a bit a pixel, as it was last sent. The machine draws its pages into it
	// when it is asked, or leaves alone what somebody has put there.
	usb_bytes picture;
	bool shows_pages = false;
	std::vector<usb_bytes> key_presses; // payloads of the front panel that it took, in order

	int channel = 0;              // exclusive channel; a frame for another one is not for us
	double latency = 0.0005;      // seconds from a request to its answer
	double block_latency = 0.002; // and from a block to what follows it
	bool asleep_at_power_on = true;
	// Each answer is preceded by an "O", that the request has arrived, until the host
	// switches confirmations off.
	bool confirms_at_power_on = false;
	// Stated one after the other, the last one again and again.
	std::vector<std::uint32_t> block_sizes = { 16384 };
	int busy = 0; // so many "AkaI" before each answer in a transfer; endlessly if negative
	double busy_interval = 0.010;
	bool display_busy = false;
	// A wake-up breaks off what goes on, and drops answers that nobody has read; or keeps them.
	bool keeps_unread = false;
	// Whether an empty packet ends an answer whose last packet is full.
	bool empty_packets = true;
	// Wake-ups that came inside a block, in front of its go-on, or before what was sent was read;
	// and blocks that came short.
	int interrupted = 0;
	int refuse_after = -1; // an upload is refused when it has so many blocks

	usb_sampler();
	~usb_sampler() override;
	void add_sample(std::string sample_name, usb_bytes wave);
	void plugged_in() override;
	// Its pages as they were last drawn, which is when the host asked for them.
	const screen_canvas &canvas() const;

protected:
	enum class awake_state {
		asleep,
		half,
		awake
	};
	awake_state awake = awake_state::asleep;
	bool confirms = false;
	int current_sample = 0;
	std::unique_ptr<front_panel> panel; // made by the family
	request_outcome heard_panel(std::span<const std::uint8_t> payload);

	// The family's own part.
	virtual bool heard_wake_up(std::span<const std::uint8_t> message) = 0;
	virtual void heard_frame(std::span<const std::uint8_t> frame) = 0;
	virtual void heard_raw(std::span<const std::uint8_t> message) = 0;       // the rest
	virtual int find_handle(std::span<const std::uint8_t> handle) const = 0; // -1: none
	virtual std::size_t handle_size() const = 0;
	virtual std::size_t length_answer_size() const = 0; // 4 or 8, the length at its end
	virtual std::string name_of_upload(std::string told) const = 0;
	virtual void store_upload(usb_sample sample) = 0;
	// File bytes that the first block holds, however large it is; 0: the whole block.
	virtual std::size_t first_block_bytes() const = 0;
	virtual void upload_is_over() = 0; // after the last answer to a block

	std::size_t message_size(std::span<const std::uint8_t> come, bool ended) const override;
	void handle(std::span<const std::uint8_t> message) override;
	// A message whose size the host knows, and one whose size it does not.
	void say(usb_bytes bytes, double delay)
	{
		answer({ .bytes = std::move(bytes), .delay = delay });
	}
	void say_framed(usb_bytes bytes, double longer = 0)
	{
		answer({ .bytes = std::move(bytes),
			.delay = latency + longer,
			.closed = empty_packets });
	}
	void say_busy();
	void forget_transfer();
	bool inside_block() const;
	const usb_sample *sample_now() const;
	wave_facts facts_now() const;
	// The part of a transfer that answers with zeros when it refuses.
	void refuse_transfer();

private:
	enum class phase {
		framed,
		upload_block,
		upload_go_on,
		download
	};
	phase doing = phase::framed;
	std::uint32_t next_handle = 0x181; // has bits above the seventh
	std::size_t next_block_size = 0;   // entry of block_sizes
	usb_sample arriving;
	std::size_t upload_size = 0, block = 0, answers = 0, blocks_taken = 0;
	bool block_was_short = false;
	usb_bytes leaving;
	std::size_t left_at = 0;

	std::uint32_t state_block_size();
	void begin_upload(std::span<const std::uint8_t> message);
	void take_block(std::span<const std::uint8_t> message);
	void end_block(std::span<const std::uint8_t> message);
	void answer_block();
	void begin_download(std::span<const std::uint8_t> message);
	void send_block(std::span<const std::uint8_t> message);
	void say_length(std::size_t length);
	void send_display();
};

// Text up to a NUL, or nothing if there is none or bytes follow it.
bool take_text(std::span<const std::uint8_t> bytes, std::string *text);

} // namespace velmor
