// usb_requests.h - requests of the USB machines: forms of arguments, outcomes, reasons

#pragma once
#include "virtual/usb_machine.h"
#include <string>

namespace velmor
{

// The reasons of an "E" answer.
enum : std::uint8_t {
	refused_unknown = 0,
	refused_length = 1,
	refused_value = 2,
	refused_missing = 3,
	refused_sum = 4,
	refused_full = 5,
};

enum class request_form {
	bytes,      // `count` of them
	text,       // a text with its NUL
	loose_text, // the NUL may be missing
	any_text,   // a text with its NUL, of bytes of eight bits
	byte_text,  // a byte, then a text with its NUL
	block,      // three bytes, then groups of four, of which the last may lack one
};

struct request_arguments {
	usb_bytes bytes;
	std::string text;
};

struct request_outcome {
	char status;
	usb_bytes data;
};

// One thing that a machine can be asked. `form` and `count` say which arguments fit.
template <class machine> struct machine_request {
	std::uint8_t section, item;
	request_form form;
	std::size_t count;
	request_outcome (*run)(machine &m, const request_arguments &arguments);
};

// False if the arguments do not fit, or hold a byte of eight bits that is none of any_text.
bool take_arguments(request_form form, std::size_t count, std::span<const std::uint8_t> bytes,
	request_arguments *a);

inline request_outcome refuse(std::uint8_t reason)
{
	return { 'E', { reason } };
}
inline request_outcome done()
{
	return { 'D', {} };
}
inline request_outcome reply(usb_bytes data)
{
	return { 'R', std::move(data) };
}
void add_text(usb_bytes *data, const std::string &text);
request_outcome reply_text(const std::string &text);
// A number in groups of seven bits.
request_outcome reply_high_first(std::uint32_t value, int groups);
request_outcome reply_low_first(std::uint32_t value, int groups);

// Place of the entry of that name, or -1.
template <class list> int find_name(const list &all, const std::string &wanted)
{
	for (std::size_t i = 0; i < all.size(); i++)
		if (all[i].name == wanted)
			return static_cast<int>(i);
	return -1;
}

// The entry at a place, or null.
template <class list> auto *entry(list &all, int place)
{
	const bool there = place >= 0 && static_cast<std::size_t>(place) < all.size();
	return there ? &all[static_cast<std::size_t>(place)] : nullptr;
}

// Take an entry out, and leave *current on one that exists.
template <class list> void erase_entry(list *all, int *current)
{
	all->erase(all->begin() + *current);
	const int last = static_cast<int>(all->size()) - 1;
	*current = *current > last ? (last < 0 ? 0 : last) : *current;
}

template <class list> std::uint32_t count_of(const list &all)
{
	return static_cast<std::uint32_t>(all.size());
}

} // namespace velmor
