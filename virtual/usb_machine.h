// usb_machine.h - a device with one bulk pipe each way, as the bus sees it
//
// A virtual sampler derives from usb_machine, says where a message of the host
// ends, and answers. The bus (usb_bus.h) moves the bytes and knows the time; a
// gadget driver may move them instead. Nothing here knows what the bytes mean.
//
// Knows nothing of: the system under src/.

#pragma once
#include "platform/usb.h"
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace velmor
{

inline constexpr std::size_t usb_packet = 64; // bytes of a full packet at full speed

using usb_bytes = std::vector<std::uint8_t>;

enum class usb_fault {
	none,
	write_fails,         // the host's write ends with an error, the machine hears nothing
	write_stalls,        // the pipe to the machine stalls until it is reset
	write_short,         // half of the packets are taken, the host is told so
	write_hangs,         // the machine does not take the bytes until the host gives up
	answer_missing,      // the machine does what it is told and says nothing
	answer_late,         // the answer comes `seconds` later
	answer_short,        // only `bytes` of each answer come
	answer_garbled,      // bits of each answer are turned over
	answer_fails,        // the read of the answer ends with an error
	answer_stalls,       // the pipe from the machine stalls until it is reset
	unplugged,           // the plug is pulled in the middle of the write
	unplugged_answering, // the plug is pulled when the answer is half read
};

struct usb_trouble {
	usb_fault what;
	int first, last; // writes of the host that it strikes, counted from 1
	double seconds = 0;
	std::size_t bytes = 0;
};

// One message of the machine, which waits until the host reads it.
struct usb_message {
	usb_bytes bytes;
	double delay = 0;    // seconds after the host's message until it can be read
	int repeats = 0;     // sent so many times more, endlessly if negative,
	double interval = 0; // each this many seconds after the one before
	// An empty packet follows where the last one is full. Without it a host that asked for more
	// goes on waiting.
	bool closed = false;
	usb_fault fault = usb_fault::none;
	// The bus keeps these.
	bool posted = false;
	double ready = 0; // when it can be read
	std::size_t taken = 0;
	bool awaited = false;
	bool read = false; // but for the empty packet behind it
};

struct usb_crossing {
	bool from_host;
	usb_bytes bytes;
	bool operator==(const usb_crossing &) const = default;
};

class usb_machine
{
public:
	// How the machine presents itself. The first bulk pipe each way carries the traffic.
	std::uint16_t vendor = 0, product = 0;
	std::string product_name;
	std::vector<usb_interface> interfaces = { { 0, 0xFF,
		{ { 0x02, 2, usb_packet }, { 0x82, 2, usb_packet } } } };
	bool denied = false; // this user may not open it
	bool held = false;   // another program has claimed it

	// Strike the host's write number `at`, counted from now on with 1, and `times - 1` more.
	usb_trouble &strike(usb_fault what, int at = 1, int times = 1);
	std::vector<usb_trouble> troubles;
	int writes = 0; // of the host, so far

	// With record set, every whole message each way, in order.
	bool record = false;
	std::vector<usb_crossing> recorded;

	// Bytes from the host; ended says that a short packet came with them.
	void take(std::span<const std::uint8_t> bytes, bool ended);
	std::deque<usb_message> outbox; // what waits to be read

	// The machine's power comes back: everything it keeps for a host is forgotten.
	virtual void plugged_in() { pending.clear(), outbox.clear(); }

	usb_machine() = default;
	virtual ~usb_machine();
	usb_machine(const usb_machine &) = delete;
	usb_machine &operator=(const usb_machine &) = delete;

protected:
	// Bytes of the first whole message in what has come, 0 while more must come. A short
	// packet ends a message: with ended set, more will not come.
	virtual std::size_t message_size(std::span<const std::uint8_t> come, bool ended) const = 0;
	virtual void handle(std::span<const std::uint8_t> message) = 0;
	void answer(usb_message message);

private:
	usb_bytes pending;
};

} // namespace velmor
