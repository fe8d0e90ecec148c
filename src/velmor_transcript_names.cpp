// velmor_transcript_names.cpp - other words in place of the names in a transcript
//
// A name travels as ASCII with a zero behind it (USB), as ASCII in a field of nine, plain or two
// bytes a character (S900), or in the codes of the S1000 family in a field of twelve, plain or in
// nibbles. What stands in its place has its length in each of them. Over MIDI it has the same
// exclusive-or, on the USB the same sum of seven bits, since the machines' checksums are those.
//
// Knows nothing of: messages. A name is found wherever it stands.

#include "src/akais1000.h"
#include "src/velmor_transcript.h"
#include <algorithm>
#include <bitset>
#include <map>

namespace velmor
{

using byte_list = std::vector<u8>;

static constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789#+-.";
static constexpr std::size_t shortest_name = 3, longest_name = 64;
static constexpr std::size_t key_size = 4; // bytes by which a place is looked up

// ---- The words -------------------------------------------------------------------------------

static int sum_of(std::string_view text, bool sums)
{
	int sum = 0;
	for (const char c : text)
		sum = sums ? sum + c : sum ^ c;
	return sum & 0x7F;
}

// The front of the words: the last letters of a number.
static std::string numbered(std::size_t index, std::size_t length)
{
	std::string text(length, 'N');
	for (std::size_t at = length; at-- > 0 && index; index /= 36)
		text[at] = letters[index % 36];
	return text;
}

using name_set = std::set<std::string>;

// Two or three letters behind it that make up for the sum, and a word that is not taken. "" where
// none do.
static std::string with_sum(
	std::string front, std::size_t length, int wanted, bool sums, const name_set &taken)
{
	if (front.size() == length)
		return sum_of(front, sums) == wanted && !taken.contains(front) ? front : "";
	for (const char c : letters)
		if (std::string all = with_sum(front + c, length, wanted, sums, taken);
			!all.empty())
			return all;
	return "";
}

// Of the bits 32 and 64 each of the letters has one, a small letter both: a name with an odd number
// of those has no exclusive-or that letters alone give.
static std::string other_word(
	const std::string &name, std::size_t *index, bool sums, const name_set &taken)
{
	const std::size_t length = name.size(), open = length < 5 ? 2 : 3;
	const int wanted = sum_of(name, sums);
	std::string other;
	for (int tries = 0; tries < 8 && other.empty(); tries++) {
		std::string front = numbered(++*index, length - open);
		other = with_sum(front, length, wanted, sums, taken);
		front[0] = 'n';
		if (other.empty())
			other = with_sum(front, length, wanted, sums, taken);
	}
	return other.empty() ? std::string(length, 'N') : other;
}

using name_map = std::map<std::string, std::string>;

static name_map other_words(const name_set &names, bool sums)
{
	name_map words;
	name_set taken(names);
	std::size_t index = 0;
	for (const std::string &name : names) {
		if (name.size() < shortest_name || name.size() > longest_name)
			continue;
		words[name] = other_word(name, &index, sums, taken);
		taken.insert(words[name]);
	}
	return words;
}

// ---- The codes -------------------------------------------------------------------------------

static byte_list plain(const std::string &name, std::size_t size, u8 fill)
{
	byte_list bytes(name.begin(), name.end());
	bytes.resize(std::max(size, name.size()), fill);
	return bytes;
}

static byte_list coded(const std::string &name)
{
	byte_list bytes(akai_name_size + 1);
	make_akai_name(name.c_str(), bytes.data(), akai_name_size);
	bytes.pop_back();
	return bytes;
}

static byte_list spread(const byte_list &bytes, int bits)
{
	byte_list out;
	for (const u8 byte : bytes) {
		out.push_back(byte & ((1 << bits) - 1));
		out.push_back(static_cast<u8>(byte >> bits));
	}
	return out;
}

struct pattern {
	byte_list from, to;
	bool apart; // only where no letter stands in front
};

static std::vector<pattern> patterns_of(const std::string &name, const std::string &other, bool usb)
{
	if (usb)
		return { { plain(name, name.size() + 1, 0), plain(other, name.size() + 1, 0),
			true } };
	std::vector<pattern> rows;
	if (name.size() <= akai_name_size) {
		rows.push_back({ coded(name), coded(other), false });
		rows.push_back({ spread(coded(name), 4), spread(coded(other), 4), false });
	}
	constexpr std::size_t s900_name = 9;
	for (const u8 fill : { u8{ ' ' }, u8{ 0 } }) {
		if (name.size() > s900_name + 1)
			break;
		const byte_list from = plain(name, s900_name, fill),
				to = plain(other, s900_name, fill);
		rows.push_back({ from, to, true });
		rows.push_back({ spread(from, 7), spread(to, 7), false });
	}
	return rows;
}

struct pattern_index {
	std::multimap<u32, pattern> rows = {};
	std::bitset<1 << 16> begins = {}; // first two bytes of any: most places are none
};

static u32 key_of(const u8 *bytes)
{
	return static_cast<u32>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) | u32{ bytes[3] } << 24;
}

static void add_pattern(pattern_index *index, pattern row)
{
	const u32 key = key_of(row.from.data());
	index->begins.set(key & 0xFFFF);
	index->rows.emplace(key, std::move(row));
}

static pattern_index index_of(const name_map &words, bool usb)
{
	pattern_index index;
	for (const auto &[name, other] : words)
		for (pattern &row : patterns_of(name, other, usb))
			if (row.from.size() >= key_size)
				add_pattern(&index, std::move(row));
	return index;
}

// The longest that stands at that place, or null.
static const pattern *found_at(const pattern_index &index, const byte_list &bytes, std::size_t at)
{
	const pattern *best = nullptr;
	const u32 key = key_of(bytes.data() + at);
	if (!index.begins[key & 0xFFFF])
		return nullptr;
	const auto [begin, end] = index.rows.equal_range(key);
	for (auto row = begin; row != end; ++row) {
		const pattern &p = row->second;
		if (p.from.size() > bytes.size() - at ||
			(best && best->from.size() >= p.from.size()))
			continue;
		if (p.apart && at && bytes[at - 1] > ' ' && bytes[at - 1] < 0x7F)
			continue;
		if (std::equal(p.from.begin(), p.from.end(),
			    bytes.begin() + static_cast<std::ptrdiff_t>(at)))
			best = &p;
	}
	return best;
}

static void replace_names(byte_list *bytes, const pattern_index &index)
{
	for (std::size_t at = 0; at + key_size <= bytes->size();) {
		const pattern *found = found_at(index, *bytes, at);
		if (found)
			std::ranges::copy(
				found->to, bytes->begin() + static_cast<std::ptrdiff_t>(at));
		at += found ? found->to.size() : 1;
	}
}

// ---- All of it -------------------------------------------------------------------------------

// A name may begin in one event and end in the next of its line and direction.
static std::size_t end_of_stream(std::span<const crossing> all, std::size_t from)
{
	std::size_t end = from + 1;
	while (end < all.size() &&
		(!all[end].note.empty() ||
			(all[end].sent == all[from].sent && all[end].line == all[from].line)))
		end++;
	return end;
}

static void replace_in_stream(std::span<crossing> stream, const pattern_index &index)
{
	byte_list bytes;
	for (const crossing &c : stream)
		bytes.insert(bytes.end(), c.bytes.begin(), c.bytes.end());
	replace_names(&bytes, index);
	auto from = bytes.begin();
	for (crossing &c : stream) {
		const auto end = from + static_cast<std::ptrdiff_t>(c.bytes.size());
		c.bytes.assign(from, end);
		from = end;
	}
}

void leave_names_out(std::span<crossing> crossings, const std::set<std::string> &names)
{
	const pattern_index midi = index_of(other_words(names, false), false);
	const pattern_index usb = index_of(other_words(names, true), true);
	for (std::size_t from = 0, end; from < crossings.size(); from = end) {
		end = end_of_stream(crossings, from);
		const bool on_usb = crossings[from].line == wire_line::usb;
		replace_in_stream(crossings.subspan(from, end - from), on_usb ? usb : midi);
	}
}

} // namespace velmor
