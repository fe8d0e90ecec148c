// akaiusb_programs.h - requests that change a program, for both USB drivers
//
// Not trusted: an answer without its beginning or its end, or without the value that was asked
// for, is a request that failed. A refused write ends nothing; it is counted.
//
// Knows nothing of: what a request means, windows.

#pragma once
#include "src/akaiprograms.h"
#include "src/akais5000.h"

namespace velmor
{

// What one operation carries from request to request.
struct program_writer {
	_usbdev *usb;
	bool begun = false; // something was written
	int refused = 0;    // writes
	usb_answer answer{ list_capacity };

	std::size_t data_at() const { return family_of(*usb).data_offset; }
	// No data is wanted, only that an answer came.
	bool ask(std::span<const u8> payload);
	// So many bytes of data are wanted.
	bool ask_data(std::span<const u8> payload, int size);
	bool write(std::span<const u8> payload);
	u8 status() const { return usb_status(usb, answer); }
	bool was_refused() const { return status() == status_refused; }
	u8 data(int at = 0) const
	{
		return answer.bytes()[data_at() + static_cast<std::size_t>(at)];
	}
	std::string text() const { return answer.bytes().text(data_at()); }
	// What is left of the program on the sampler, a sentence.
	const char *state() const;
	// True when the user wants no more, which is told.
	bool stopped() const;
	// Tell what was refused, when all is done.
	void tell_refused() const;
};

// Every value of a record, in the order of writing; false when one failed.
template <typename record, typename... zone_number>
bool write_values(program_writer *w, parameters<record> rows, record &r, zone_number... number)
{
	bool good = true;
	in_order_of_writing(rows, [&](const parameter<record> &row) {
		good = good && w->write(write_request(row, r, number...));
	});
	return good;
}

} // namespace velmor
