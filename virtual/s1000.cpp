// s1000.cpp - a sampler of the S1000 family: its own exclusive messages
//
// A message is a row of function_rows: function, length, and who serves it. By then
// channel, maker, family and length are right, so the arguments can be read as they stand.

#include "virtual/s1000.h"
#include <algorithm>
#include <utility>

namespace velmor
{

using machine::byte_view;
using machine::bytes;

// A frame is F0 47 cc ff 48, its arguments, F7.
enum {
	frame_channel = 2,
	frame_function = 3,
	frame_family = 4,
	frame_index = 5,    // program or sample, two groups of seven bits
	frame_keygroup = 7, // behind the program's index
	frame_block = 7,    // nibbles of a program or a sample header
	frame_keygroup_block = 8,
	words_offset = 7, // of a request for sample words, four groups of seven bits
	words_count = 11,
};
static constexpr std::uint8_t maker = 0x47, family = 0x48, reply_function = 0x16;
static constexpr std::size_t most_keygroups = 99, words_in_packet = 40;

enum : std::uint8_t {
	program_identity = 1,
	keygroup_identity = 2,
	header_identity = 3,
};

enum { // places in the blocks that matter to the machine itself
	block_address = 1,
	block_name = 3,
	program_keygroups = 42,
	header_rate = 1,
	header_pitch = 2,
	header_loops = 16,
	header_playback = 19,
	header_length = 26,
	header_start = 30,
	header_end = 34,
	header_loop_at = 38,
	header_loop_coarse = 44,
	header_loop_time = 48,
	header_rate_word = 138,
};
static constexpr std::uint8_t playback_loop = 0, playback_no_loop = 2, last_playback = 3;
static constexpr std::uint8_t last_character = 40, highest_note = 127;
static constexpr std::uint32_t loop_time_hold = 9999;

// clang-format off
static constexpr struct model_row {
	const char *name;
	std::size_t block_size;
	std::uint8_t version_major, version_minor;
	std::size_t words, blocks;
} model_rows[] = {
	{ "s1000", 150, 4, 40, 1048576,  1500 },
	{ "s2000", 192, 1, 30, 1048576,  2046 },
	{ "s2800", 192, 1, 70, 1048576,  2046 },
	{ "s3000", 192, 2,  0, 4194304,  2046 },
};
// clang-format on

static const model_row &row_of(s1000_model model)
{
	return model_rows[static_cast<std::size_t>(model)];
}

bool read_s1000_model(std::string_view text, s1000_model *model)
{
	for (std::size_t i = 0; i < std::size(model_rows); i++)
		if (text == model_rows[i].name) {
			*model = static_cast<s1000_model>(i);
			return true;
		}
	return false;
}

s1000_machine::s1000_machine(s1000_model m, std::uint8_t exclusive_channel)
	: channel(exclusive_channel), word_room(row_of(m).words), block_room(row_of(m).blocks),
	  model(m)
{
}

// ---- Memory ------------------------------------------------------------------------

std::size_t s1000_machine::block_size() const
{
	return row_of(model).block_size;
}

std::size_t s1000_machine::words_free() const
{
	std::size_t used = 0;
	for (const stored_sample &s : samples)
		used += s.words.size();
	return word_room - std::min(word_room, used);
}

std::size_t s1000_machine::blocks_free() const
{
	std::size_t used = samples.size();
	for (const stored_program &p : programs)
		used += 1 + p.keygroups.size();
	return block_room - std::min(block_room, used);
}

void s1000_machine::place(bytes &block)
{
	machine::put_number(block, block_address, next_address, 2);
	next_address = static_cast<std::uint16_t>(next_address + block_size());
}

struct preset {
	std::size_t at;
	std::uint8_t value;
};

static bytes preset_block(std::size_t size, std::span<const preset> presets)
{
	bytes block(size);
	for (const preset &p : presets)
		if (p.at < size)
			block[p.at] = p.value;
	return block;
}

// clang-format off
// 32 voices, whole keyboard, program number 1, channel 1, no individual output, level 99,
// bend two semitones; modulation as a player expects it.
static constexpr preset program_presets[] = {
	{ 0, program_identity }, { 17, 31 }, { 18, 1 }, { 19, 24 }, { 20, 127 }, { 22, 255 },
	{ 23, 99 }, { 25, 80 }, { 26, 20 }, { 33, 50 }, { 36, 30 }, { 39, 2 }, { 41, 1 },
	{ 73, 2 }, { 76, 8 }, { 77, 6 }, { 78, 12 }, { 79, 6 }, { 80, 3 }, { 81, 6 }, { 82, 6 },
	{ 83, 6 }, { 84, 5 }, { 85, 8 }, { 86, 10 }, { 88, 5 },
};
// Whole keyboard, filter open and following it, an organ's envelope with a short release,
// velocity zones that each take everything, no mute group.
static constexpr preset keygroup_presets[] = {
	{ 0, keygroup_identity }, { 3, 24 }, { 4, 127 }, { 7, 99 }, { 8, 12 },
	{ 13, 50 }, { 14, 99 }, { 15, 45 }, { 21, 50 }, { 22, 99 }, { 23, 45 },
	{ 47, 127 }, { 53, 0 }, { 71, 127 }, { 95, 127 }, { 119, 127 },
	{ 156, 99 }, { 157, 50 }, { 158, 99 }, { 160, 255 },
};
// clang-format on

bytes s1000_machine::new_program(std::string_view name) const
{
	bytes block = preset_block(block_size(), program_presets);
	machine::put_name(block, block_name, name);
	return block;
}

bytes s1000_machine::new_keygroup() const
{
	bytes block = preset_block(block_size(), keygroup_presets);
	for (std::size_t zone = 0; zone < 4; zone++)
		machine::put_name(block, 34 + 24 * zone, "");
	return block;
}

stored_program &s1000_machine::add_program(std::string_view name, std::size_t keygroups)
{
	stored_program p = { .common = new_program(name), .keygroups = {} };
	p.common[program_keygroups] = static_cast<std::uint8_t>(keygroups);
	place(p.common);
	for (std::size_t k = 0; k < keygroups; k++) {
		p.keygroups.push_back(new_keygroup());
		place(p.keygroups.back());
	}
	programs.push_back(std::move(p));
	return programs.back();
}

stored_sample &s1000_machine::add_sample(
	std::string_view name, unsigned rate, std::vector<std::int16_t> words)
{
	const auto length = static_cast<std::uint32_t>(words.size());
	bytes header(block_size());
	header[0] = header_identity;
	header[header_rate] = rate > 33075; // 44100 Hz, or 22050 Hz
	header[header_pitch] = 60;
	header[header_playback] = playback_no_loop;
	machine::put_name(header, block_name, name);
	machine::put_number(header, header_length, length, 4);
	machine::put_number(header, header_end, length ? length - 1 : 0, 4);
	machine::put_number(header, header_rate_word, rate, 2);
	samples.push_back({ .header = std::move(header), .words = std::move(words) });
	return samples.back();
}

void set_loop(stored_sample &sample, std::uint32_t first, std::uint32_t last)
{
	sample.header[header_loops] = 1;
	sample.header[header_playback] = playback_loop;
	machine::put_number(sample.header, header_loop_at, last, 4);
	machine::put_number(sample.header, header_loop_coarse, last - first, 4);
	machine::put_number(sample.header, header_loop_time, loop_time_hold, 2);
}

// ---- Frames ------------------------------------------------------------------------

bytes s1000_machine::frame(std::uint8_t function) const
{
	return { 0xF0, maker, channel, function, family };
}

bytes s1000_machine::reply(bool done) const
{
	bytes message = frame(reply_function);
	message.push_back(done ? 0 : 1);
	message.push_back(0xF7);
	return message;
}

bool s1000_machine::for_me(byte_view message) const
{
	return message.size() >= 6 && message[1] == maker && message[frame_channel] == channel &&
	       message[frame_family] == family;
}

stored_program *s1000_machine::program_at(byte_view message)
{
	const std::size_t index = machine::number_from_sevens(message, frame_index, 2);
	return index < programs.size() ? &programs[index] : nullptr;
}

stored_sample *s1000_machine::sample_at(byte_view message)
{
	const std::size_t index = machine::number_from_sevens(message, frame_index, 2);
	return index < samples.size() ? &samples[index] : nullptr;
}

// The block that a message carries from at to its end; nothing when it is none of ours.
std::optional<bytes> s1000_machine::block_in(
	byte_view message, std::size_t at, std::uint8_t identity) const
{
	if (message.size() != at + 2 * block_size() + 1)
		return std::nullopt;
	auto block = machine::block_from_nibbles(message.subspan(at, 2 * block_size()));
	if (block && block->front() != identity)
		return std::nullopt;
	return block;
}

struct s1000_machine::function_row {
	std::uint8_t function;
	std::size_t length; // 0: as long as its block makes it
	bytes (s1000_machine::*serve)(byte_view message);
};

// clang-format off
const s1000_machine::function_row s1000_machine::function_rows[] = {
	{ 0x00,  6, &s1000_machine::give_status },
	{ 0x02,  6, &s1000_machine::give_programs },
	{ 0x04,  6, &s1000_machine::give_samples },
	{ 0x06,  8, &s1000_machine::give_program },
	{ 0x07,  0, &s1000_machine::take_program },
	{ 0x08,  9, &s1000_machine::give_keygroup },
	{ 0x09,  0, &s1000_machine::take_keygroup },
	{ 0x0A,  8, &s1000_machine::give_header },
	{ 0x0B,  0, &s1000_machine::take_header },
	{ 0x0C, 18, &s1000_machine::give_words },
	{ 0x12,  8, &s1000_machine::delete_program },
	{ 0x13,  9, &s1000_machine::delete_keygroup },
	{ 0x14,  8, &s1000_machine::delete_sample },
};
// clang-format on

bytes s1000_machine::answer(byte_view message)
{
	if (heard.size() == 10000)
		heard.pop_front();
	heard.emplace_back(message.begin(), message.end());
	if (message.size() >= 4 && message[1] == 0x7E)
		return dump_message(message);
	if (!for_me(message))
		return {};
	if (message[frame_function] != 0x07)
		gap.reset();
	for (const function_row &row : function_rows)
		if (row.function == message[frame_function]) {
			const std::size_t least = row.function == 0x09 ? 9 : 8;
			if (row.length ? message.size() != row.length : message.size() < least)
				return reply(false);
			return (this->*row.serve)(message);
		}
	return {};
}

bytes s1000_machine::refuse(byte_view message) const
{
	if (message.size() >= 4 && message[1] == 0x7E)
		return handshake(0x7E, message.size() == 127 ? message[4] : 0);
	return for_me(message) ? reply(false) : bytes();
}

bytes s1000_machine::wait(byte_view message) const
{
	return handshake(0x7C, message.size() == 127 ? message[4] : 0);
}

midi_machine s1000_machine::on_wire()
{
	return { .answer = [this](byte_view m) { return answer(m); },
		.refuse = [this](byte_view m) { return refuse(m); },
		.wait = [this](byte_view m) { return wait(m); } };
}

// ---- Status and lists --------------------------------------------------------------

// Version, blocks and words that it has and has free, and its channel.
bytes s1000_machine::give_status(byte_view)
{
	const auto number = [](std::size_t n) { return static_cast<std::uint32_t>(n); };
	bytes message = frame(0x01);
	message.push_back(row_of(model).version_minor);
	message.push_back(row_of(model).version_major);
	machine::append_sevens(message, number(block_room), 2);
	machine::append_sevens(message, number(blocks_free()), 2);
	machine::append_sevens(message, number(word_room), 4);
	machine::append_sevens(message, number(words_free()), 4);
	message.push_back(channel);
	message.push_back(0xF7);
	return message;
}

// A count and the twelve name bytes out of each block.
template <typename list, typename block_of>
static bytes name_list(bytes message, const list &things, block_of block)
{
	machine::append_sevens(message, static_cast<std::uint32_t>(things.size()), 2);
	for (const auto &thing : things) {
		const auto name = block(thing).begin() + block_name;
		message.insert(message.end(), name, name + machine::name_size);
	}
	message.push_back(0xF7);
	return message;
}

bytes s1000_machine::give_programs(byte_view)
{
	return name_list(frame(0x03), programs,
		[](const stored_program &p) -> const bytes & { return p.common; });
}

bytes s1000_machine::give_samples(byte_view)
{
	return name_list(frame(0x05), samples,
		[](const stored_sample &s) -> const bytes & { return s.header; });
}

// ---- Programs and keygroups --------------------------------------------------------

// The arguments of the request come back in the answer, and the block behind them.
static bytes block_answer(bytes message, byte_view arguments, byte_view block)
{
	message.insert(message.end(), arguments.begin(), arguments.end());
	machine::append_nibbles(message, block);
	message.push_back(0xF7);
	return message;
}

bytes s1000_machine::give_program(byte_view message)
{
	const stored_program *p = program_at(message);
	return p ? block_answer(frame(0x07), message.subspan(frame_index, 2), p->common)
		 : reply(false);
}

// The number of keygroups is the machine's own once a program exists.
bytes s1000_machine::take_program(byte_view message)
{
	auto block = block_in(message, frame_block, program_identity);
	if (!block)
		return reply(false);
	const std::size_t index = machine::number_from_sevens(message, frame_index, 2);
	const bool fills_gap = std::exchange(gap, std::nullopt) == index;
	if (stored_program *p = fills_gap ? nullptr : program_at(message)) {
		std::copy_n(p->common.begin() + block_address, 2, block->begin() + block_address);
		(*block)[program_keygroups] = p->common[program_keygroups];
		p->common = std::move(*block);
		return reply(true);
	}
	if (!fills_gap && index != programs.size())
		return reply(false);
	return create_program(index, std::move(*block));
}

bytes s1000_machine::create_program(std::size_t index, bytes block)
{
	const std::size_t keygroups = block[program_keygroups];
	if (keygroups > most_keygroups || 1 + keygroups > blocks_free())
		return reply(false);
	stored_program &p = add_program("", keygroups);
	std::copy_n(p.common.begin() + block_address, 2, block.begin() + block_address);
	p.common = std::move(block);
	std::rotate(programs.begin() + static_cast<std::ptrdiff_t>(index), programs.end() - 1,
		programs.end());
	return reply(true);
}

bytes s1000_machine::give_keygroup(byte_view message)
{
	const stored_program *p = program_at(message);
	const std::size_t k = message[frame_keygroup];
	if (!p || k >= p->keygroups.size())
		return reply(false);
	return block_answer(frame(0x09), message.subspan(frame_index, 3), p->keygroups[k]);
}

// Behind the last keygroup it adds one, with a new block when the message brings none.
bytes s1000_machine::take_keygroup(byte_view message)
{
	stored_program *p = program_at(message);
	const std::size_t k = message[frame_keygroup];
	if (!p || k > p->keygroups.size())
		return reply(false);
	const bool added = k == p->keygroups.size();
	if (added && (k == most_keygroups || !blocks_free()))
		return reply(false);
	auto block = block_in(message, frame_keygroup_block, keygroup_identity);
	if (!block && added && message.size() == frame_keygroup_block + 1)
		block = new_keygroup();
	if (!block)
		return reply(false);
	if (added) {
		place(*block);
		p->keygroups.push_back(std::move(*block));
		p->common[program_keygroups]++;
	} else {
		bytes &old = p->keygroups[k];
		std::copy_n(old.begin() + block_address, 2, block->begin() + block_address);
		old = std::move(*block);
	}
	return reply(true);
}

bytes s1000_machine::delete_program(byte_view message)
{
	const stored_program *p = program_at(message);
	if (!p)
		return reply(false);
	const auto index = p - programs.data();
	programs.erase(programs.begin() + index);
	if (!closes_gaps)
		gap = static_cast<std::size_t>(index);
	return reply(true);
}

bytes s1000_machine::delete_keygroup(byte_view message)
{
	stored_program *p = program_at(message);
	const std::size_t k = message[frame_keygroup];
	if (!p || k >= p->keygroups.size())
		return reply(false);
	p->keygroups.erase(p->keygroups.begin() + static_cast<std::ptrdiff_t>(k));
	p->common[program_keygroups]--;
	return reply(true);
}

// ---- Samples -----------------------------------------------------------------------

bytes s1000_machine::give_header(byte_view message)
{
	const stored_sample *s = sample_at(message);
	return s ? block_answer(frame(0x0B), message.subspan(frame_index, 2), s->header)
		 : reply(false);
}

// Whether a header can be that of a sample of so many words: a name of its alphabet, a note and
// a playback mode that there are, start, end and loop inside the words, and the length itself,
// which is the memory's, so that a header of another length belongs to another sample.
static bool header_fits(byte_view header, std::size_t words)
{
	const auto number = [&](std::size_t at) { return machine::get_number(header, at, 4); };
	const auto name = header.subspan(block_name, machine::name_size);
	const bool named = std::all_of(
		name.begin(), name.end(), [](std::uint8_t c) { return c <= last_character; });
	const bool ranged = number(header_start) <= number(header_end) &&
			    number(header_end) < std::max<std::size_t>(words, 1);
	const bool looped = number(header_loop_at) <= words &&
			    number(header_loop_coarse) <= number(header_loop_at);
	return named && ranged && looped && number(header_length) == words &&
	       header[header_pitch] <= highest_note && header[header_playback] <= last_playback;
}

// A header renames a sample and sets its parameters.
bytes s1000_machine::take_header(byte_view message)
{
	stored_sample *s = sample_at(message);
	auto block = block_in(message, frame_block, header_identity);
	if (!s || !block || !header_fits(*block, s->words.size()))
		return reply(false);
	s->header = std::move(*block);
	return reply(true);
}

// One data packet of a dump: up to 40 words from an offset, the rest of it zero. Every
// request is a dump of its own, so its packet has number 0.
bytes s1000_machine::give_words(byte_view message)
{
	const stored_sample *s = sample_at(message);
	const std::size_t from = machine::number_from_sevens(message, words_offset, 4);
	const std::size_t count = message[words_count];
	if (!s || count < 1 || count > words_in_packet || from + count > s->words.size())
		return reply(false);
	bytes packet = { 0xF0, 0x7E, channel, 0x02, 0x00 };
	for (std::size_t i = 0; i < count; i++)
		machine::append_word(packet, s->words[from + i]);
	packet.resize(125);
	std::uint8_t sum = 0;
	for (std::size_t i = 1; i < 125; i++)
		sum ^= packet[i];
	packet.push_back(sum & 0x7F);
	packet.push_back(0xF7);
	return packet;
}

bytes s1000_machine::delete_sample(byte_view message)
{
	const stored_sample *s = sample_at(message);
	if (!s)
		return reply(false);
	samples.erase(samples.begin() + (s - samples.data()));
	receiving.reset();
	return reply(true);
}

} // namespace velmor
