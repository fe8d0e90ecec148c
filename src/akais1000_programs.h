// akais1000_programs.h - what saving, deleting and renaming programs of the S1000 family share
//
// Included by akais1000_programs.cpp, akais1000_rename.cpp and akais1000_kept.cpp alone.

#pragma once
#include "src/akaiprograms.h"
#include "src/akais1000.h"
#include <optional>

namespace velmor
{

using akai_bytes = std::vector<u8>;

enum { // of a program's block
	program_keygroups = 42,
	program_unknown = 43
};

inline constexpr char save_box[] = "Saving/Updating failed!!!";
inline constexpr char nothing_changed[] = "Nothing was changed on the sampler.";

inline u8 s1000_channel()
{
	return static_cast<u8>(current_sampler->sampler_sysex_channel);
}

// What came back: done, or the sampler has no such thing, or will not do it.
bool is_done(const akai_answer &a);
bool is_refusal(const akai_answer &a);
// The block of that program; nothing when it is not there whole.
std::optional<akai_bytes> program_in(const akai_answer &a, int index);
// The same of a keygroup, whose answer may be empty.
std::optional<akai_bytes> keygroup_in(const akai_answer &a, int index, int k);
// A failed port has already said so in a box of its own.
void tell_failed(const akai_answer &answer, const char *box, const char *state);

// A head, a block in nibbles, and the end.
akai_bytes with_block(std::span<const u8> head, std::span<const u8> data);
akai_answer ask_program(int index);
akai_answer ask_keygroup(int index, int k);
// note ends the line of the log, which creating has longer than updating.
akai_answer send_program(int index, const akai_bytes &common, const std::string &note = "");
akai_answer send_deletion(int index);
void log_program(const akai_answer &answer, const akai_bytes &common);

// The list of the sampler's programs, or nothing when none came, which is told in that box.
std::optional<akai_answer> ask_program_list(const char *box);
// The place of exactly that name; -1, and a box, where there is none.
int find_exactly(const akai_answer &list, const char *name, const char *box);

} // namespace velmor
