// transcript_usb.h - a USB service that plays the device's side of a written transcript
//
//   # words        what this step is, shown when it fails
//   > bytes        one transfer to the OUT pipe, exactly these; 'text' stands for its letters
//   < bytes        one message of the device, in packets of 64; no bytes: an empty packet
//   ! silence      the read under way gets nothing and runs into its deadline
//   ! stall        the next transfer of the direction asked for is refused by the pipe
//   ! cut n        the next transfer out moves only n bytes
//   ! unplug       from here on the device is gone
//   ! wait ms      the device does nothing for so long
//
// Bytes are hexadecimal words; 00*384 is a repetition. A read waits until everything
// written down before its answer has been sent, so a driver may submit it early. Each
// transfer takes the time of its bytes on a full-speed bus; time is the test's.

#pragma once
#include "tests/support/test_host.h"
#include <list>

namespace velmor
{

class transcript_usb
{
public:
	// Plug in a device of that product, with bulk pipes 2 (OUT) and 0x82 (IN), under the
	// path "usb:1".
	transcript_usb(test_host &test, u16 product);
	~transcript_usb();

	// Go on with these steps.
	void play(const char *steps);
	// Steps that have not happened.
	int steps_left() const { return static_cast<int>(steps.size()); }

	std::vector<usb_device> devices;
	int open_result = usb_ok, claim_result = usb_ok;
	bool can_list = true;
	void (*wake)() = nullptr;
	int opened = 0, closed = 0;
	std::vector<int> claimed;    // interface numbers, in order
	std::vector<u8> reset;       // pipes, in order
	double longest_transfer = 0; // seconds from submit to end
	int most_in_flight = 0;

private:
	struct step {
		char kind; // '>', '<' or the first letter of a fault
		std::string words;
		std::vector<u8> bytes;
		int number;
		std::size_t taken = 0; // bytes handed out
	};
	struct transfer {
		int id;
		bool in;
		u8 *buffer;
		std::size_t count;
		double submitted, deadline;
		int result = usb_pending;
		std::size_t moved = 0;
		bool matched = false;
	};

	friend struct transcript_calls;
	int submit(u8 pipe, u8 *buffer, std::size_t count, int deadline_ms, int *id);
	int finished(int id, std::size_t *moved);
	void cancel(int id);
	void go_on();
	bool take_step(transfer &t);
	void hand_out(transfer &t);
	void match_write(transfer &t);
	void end(transfer &t, int result, std::size_t moved, double after);
	transfer *find(int id);

	test_host &host_of_test;
	std::list<step> steps;
	std::list<transfer> transfers;
	static int next_id; // never one of an earlier transcript
	bool unplugged = false, waiting = false;
	std::size_t cut = 0;
	bool cut_next = false;
	int submits = 0;
	std::string words;
};

} // namespace velmor
