// s900.cpp - an S900 or S950: its frames, programs and sample headers
//
// A message is a row of function_rows: function, length, and who serves it. By then
// channel, maker, family and length are right.

#include "virtual/s900.h"
#include <algorithm>
#include <cctype>

namespace velmor
{

using machine::byte_view;
using machine::bytes;

// A frame is F0 47 cc ff 40 nn 00, its data, F7.
enum {
	frame_channel = 2,
	frame_function = 3,
	frame_family = 4,
	frame_number = 5,
	frame_zero = 6,
	frame_data = 7,
	request_size = 8,
};
static constexpr std::uint8_t maker = 0x47, family = 0x40;
static constexpr std::uint8_t program_data = 0x0A, catalogue = 0x0B, header_data = 0x0C;
static constexpr std::size_t common_size = 38, keygroup_size = 70, header_size = 60;
static constexpr std::size_t name_size = 10;

enum { // places in the blocks that matter to the machine itself
	program_keygroups = 23,
	keygroup_soft = 24, // name of the sample
	keygroup_loud = 46,
};

// clang-format off
static constexpr struct model_row {
	const char *name;
	std::size_t words, keygroups, numbers;
} model_rows[] = {
	{ "s900",  512000,  64, 32 },
	{ "s950", 1536000, 128, 99 },
};
// clang-format on

static const model_row &row_of(s900_model model)
{
	return model_rows[static_cast<std::size_t>(model)];
}

bool read_s900_model(std::string_view text, s900_model *model)
{
	for (std::size_t i = 0; i < std::size(model_rows); i++)
		if (text == model_rows[i].name) {
			*model = static_cast<s900_model>(i);
			return true;
		}
	return false;
}

s900_machine::s900_machine(s900_model m, std::uint8_t exclusive_channel)
	: channel(exclusive_channel), word_room(row_of(m).words),
	  keygroup_room(row_of(m).keygroups), number_room(row_of(m).numbers), model(m)
{
}

midi_machine s900_machine::on_wire(timeline &time)
{
	clock = [&time] { return time.now(); };
	const auto nothing = [](byte_view) { return bytes(); };
	return { .answer = [this](byte_view m) { return answer(m); },
		.refuse = nothing,
		.wait = nothing,
		.part = [this](std::size_t at, byte_view fresh) { return part(at, fresh); } };
}

// ---- Memory ------------------------------------------------------------------------

static std::size_t left_of(std::size_t room, std::size_t used)
{
	return room - std::min(room, used);
}

std::size_t s900_machine::words_free() const
{
	std::size_t used = 0;
	for (const s900_sample &s : samples)
		used += s.words.size();
	return left_of(word_room, used);
}

std::size_t s900_machine::keygroups_free() const
{
	std::size_t used = 0;
	for (const s900_program &p : programs)
		used += p.keygroups.size();
	return left_of(keygroup_room, used);
}

template <typename list> static auto find_number(list &things, std::uint8_t number)
{
	const auto found = std::find_if(things.begin(), things.end(),
		[&](const auto &thing) { return thing.number == number; });
	return found == things.end() ? nullptr : &*found;
}

template <typename list> static std::uint8_t free_number(const list &things)
{
	std::uint8_t number = 0;
	while (find_number(things, number))
		number++;
	return number;
}

s900_program *s900_machine::program_of(std::uint8_t number)
{
	return find_number(programs, number);
}

s900_sample *s900_machine::sample_of(std::uint8_t number)
{
	return find_number(samples, number);
}

void s900_machine::put_name(bytes &block, std::size_t at, std::string_view text)
{
	for (std::size_t i = 0; i < name_size && at + i < block.size(); i++)
		block[at + i] = static_cast<std::uint8_t>(
			i < text.size() ? std::toupper(static_cast<unsigned char>(text[i])) : ' ');
}

std::string s900_machine::get_name(byte_view block, std::size_t at)
{
	std::string text;
	for (std::size_t i = at; i < at + name_size && i < block.size(); i++)
		text += static_cast<char>(block[i]);
	while (text.ends_with(' '))
		text.pop_back();
	return text;
}

// Whole keyboard, velocity switch off, an organ's envelope with a short release, filters
// open, LFO free, any output, no samples.
bytes s900_machine::new_keygroup() const
{
	static constexpr struct {
		std::size_t at;
		std::uint8_t value;
	} presets[] = { { 0, 127 }, { 1, 24 }, { 2, 128 }, { 5, 99 }, { 6, 30 }, { 7, 10 },
		{ 8, 50 }, { 11, 30 }, { 14, 99 }, { 15, 64 }, { 16, 42 }, { 18, 4 }, { 19, 255 },
		{ 22, 50 }, { 38, 64 }, { 44, 99 }, { 66, 99 } };
	bytes block(keygroup_size);
	for (const auto &p : presets)
		block[p.at] = p.value;
	put_name(block, keygroup_soft, "");
	put_name(block, keygroup_loud, "");
	return block;
}

s900_program &s900_machine::add_program(std::string_view name, std::size_t keygroups)
{
	bytes common(common_size);
	put_name(common, 0, name);
	common[program_keygroups] = static_cast<std::uint8_t>(keygroups);
	programs.push_back({ .number = free_number(programs),
		.common = std::move(common),
		.keygroups = std::vector<bytes>(keygroups, new_keygroup()) });
	return programs.back();
}

s900_sample &s900_machine::add_sample(
	std::string_view name, unsigned rate, std::vector<std::int16_t> words)
{
	for (std::int16_t &w : words)
		w = std::clamp<std::int16_t>(w, -2048, 2047);
	s900_sample made = { .number = free_number(samples),
		.header = bytes(header_size),
		.words = std::move(words) };
	put_name(made.header, 0, name);
	machine::put_number(made.header, header_pitch, 60 * 16, 2);
	describe(made, rate);
	samples.push_back(std::move(made));
	return samples.back();
}

void s900_machine::describe(s900_sample &sample, unsigned rate)
{
	const auto length = static_cast<std::uint32_t>(sample.words.size());
	sample.header[header_mode] = one_shot;
	machine::put_number(sample.header, header_rate, rate, 2);
	machine::put_number(sample.header, header_length, length, 4);
	machine::put_number(sample.header, header_end, length, 4);
	machine::put_number(sample.header, header_loop_start, 0, 4);
	machine::put_number(sample.header, header_loop_length, 0, 4);
}

void s900_machine::set_loop(s900_sample &sample, std::uint32_t first, std::uint32_t last)
{
	sample.header[header_mode] = looping;
	machine::put_number(sample.header, header_loop_start, first, 4);
	machine::put_number(sample.header, header_loop_length, last - first, 4);
}

// ---- Frames ------------------------------------------------------------------------

static std::uint8_t exclusive_or(byte_view data)
{
	std::uint8_t sum = 0;
	for (const std::uint8_t b : data)
		sum ^= b;
	return sum;
}

// A5 is appended as 25 01.
bytes s900_machine::data_message(std::uint8_t function, std::uint8_t number, byte_view block) const
{
	bytes message = { 0xF0, maker, channel, function, family, number, 0 };
	for (const std::uint8_t b : block) {
		message.push_back(b & 0x7F);
		message.push_back(b >> 7);
	}
	message.push_back(exclusive_or(byte_view(message).subspan(frame_data)));
	message.push_back(0xF7);
	return message;
}

// The block that a message carries, when its checksum and all its pairs are right.
static std::optional<bytes> block_in(byte_view message)
{
	if (message.size() < frame_data + 2)
		return std::nullopt;
	const byte_view pairs = message.subspan(frame_data, message.size() - frame_data - 2);
	if (pairs.size() % 2 || exclusive_or(pairs) != message[message.size() - 2])
		return std::nullopt;
	bytes block;
	for (std::size_t i = 0; i < pairs.size(); i += 2) {
		if (pairs[i] > 0x7F || pairs[i + 1] > 1)
			return std::nullopt;
		block.push_back(static_cast<std::uint8_t>(pairs[i] | pairs[i + 1] << 7));
	}
	return block;
}

bool s900_machine::for_me(byte_view message) const
{
	return message.size() >= request_size && message[1] == maker &&
	       (omni || message[frame_channel] == channel) && message[frame_family] == family;
}

struct s900_machine::function_row {
	std::uint8_t function;
	std::size_t length; // 0: as long as its block makes it
	bool numbered;      // or the number is 0
	bytes (s900_machine::*serve)(byte_view message);
};

// clang-format off
const s900_machine::function_row s900_machine::function_rows[] = {
	{ 0x02,         request_size, true,  &s900_machine::give_program },
	{ 0x03,         request_size, false, &s900_machine::give_catalogue },
	{ 0x04,         request_size, true,  &s900_machine::give_header },
	{ 0x05,         request_size, false, &s900_machine::common_on },
	{ 0x06,         request_size, false, &s900_machine::common_off },
	{ program_data, 0,            true,  &s900_machine::take_program },
	{ header_data,  0,            true,  &s900_machine::take_header },
};
// clang-format on

bytes s900_machine::answer(byte_view message)
{
	if (heard.size() == 1000)
		heard.pop_front();
	heard.emplace_back(message.begin(), message.end());
	if (message.size() >= 4 && message[1] == 0x7E)
		return dump_message(message);
	receiving.reset();
	if (early(deaf_until) || !for_me(message))
		return {};
	sending.reset();
	for (const function_row &row : function_rows)
		if (row.function == message[frame_function] &&
			(!row.length || row.length == message.size()) &&
			(row.numbered || !message[frame_number]) && !message[frame_zero])
			return (this->*row.serve)(message);
	return {};
}

// ---- Programs, catalogue, headers --------------------------------------------------

bytes s900_machine::give_catalogue(byte_view)
{
	bytes message = { 0xF0, maker, channel, catalogue, family, 0, 0 };
	const auto list = [&](char type, std::uint8_t number, const bytes &block) {
		message.push_back(static_cast<std::uint8_t>(type));
		message.push_back(number);
		message.insert(message.end(), block.begin(), block.begin() + name_size);
	};
	for (const s900_program &p : programs)
		list('P', p.number, p.common);
	for (const s900_sample &s : samples)
		list('S', s.number, s.header);
	message.push_back(0xF7);
	return message;
}

bytes s900_machine::give_program(byte_view message)
{
	const s900_program *p = program_of(message[frame_number]);
	if (!p)
		return {};
	bytes block = p->common;
	for (const bytes &k : p->keygroups)
		block.insert(block.end(), k.begin(), k.end());
	return data_message(program_data, p->number, block);
}

bytes s900_machine::give_header(byte_view message)
{
	const s900_sample *s = sample_of(message[frame_number]);
	return s ? data_message(header_data, s->number, s->header) : bytes();
}

// A name that its display can show.
static bool is_name(byte_view name)
{
	return std::all_of(
		name.begin(), name.end(), [](std::uint8_t c) { return c >= 0x20 && c < 0x7F; });
}

// The program says how many keygroups follow it, and as many must.
bytes s900_machine::take_program(byte_view message)
{
	const auto block = block_in(message);
	const std::uint8_t number = message[frame_number];
	if (!block || block->size() < common_size || number >= number_room)
		return {};
	const std::size_t count = (*block)[program_keygroups];
	s900_program *old = program_of(number);
	if (block->size() != common_size + count * keygroup_size ||
		!is_name(byte_view(*block).first(name_size)) ||
		count > keygroups_free() + (old ? old->keygroups.size() : 0))
		return {};
	s900_program made = { .number = number,
		.common = bytes(block->begin(), block->begin() + common_size),
		.keygroups = {} };
	for (auto at = block->begin() + common_size; at != block->end(); at += keygroup_size)
		made.keygroups.emplace_back(at, at + keygroup_size);
	if (old)
		*old = std::move(made);
	else
		programs.push_back(std::move(made));
	return {};
}

// A header names a sample and sets its pitch, rate and loop. Its length is the memory's, so
// a header of another length belongs to another sample.
bytes s900_machine::take_header(byte_view message)
{
	const auto block = block_in(message);
	s900_sample *s = sample_of(message[frame_number]);
	if (!s || !block || block->size() != header_size ||
		!is_name(byte_view(*block).first(name_size)))
		return {};
	const std::uint8_t mode = (*block)[header_mode];
	const std::uint64_t loop_end =
		std::uint64_t{ machine::get_number(*block, header_loop_start, 4) } +
		machine::get_number(*block, header_loop_length, 4);
	if (machine::get_number(*block, header_length, 4) == s->words.size() &&
		loop_end <= s->words.size() &&
		(mode == one_shot || mode == looping || mode == alternating))
		s->header = *block;
	return {};
}

bytes s900_machine::common_on(byte_view)
{
	common_exclusive = true;
	return {};
}

bytes s900_machine::common_off(byte_view)
{
	common_exclusive = false;
	return {};
}

} // namespace velmor
