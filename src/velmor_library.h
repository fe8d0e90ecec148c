// velmor_library.h - the programs of this computer, each a text file
//
//   <configuration folder>\pgm\<name>.program
//
//   model = Akai S3000/S3000XL
//   [program]
//   name = "PIANO 1"
//   [keygroup 1]
//   low_note = 24
//   [zone 1]
//   samplename = "PIANO C3"
//
// One parameter a line, under the name of its field in the record; one that is not named is 0.
// Texts stand in quotation marks, and what is no plain letter in them is \xNN. What a file says
// beyond what this program knows stays in it.
//
// local_pgm (waveqx.h) is the list of these programs, those of the folder and what was imported.
//
// Main thread only. Knows nothing of: windows, the wire.

#pragma once
#include "src/velmor_outcome.h"
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmor
{

// ---- The text -------------------------------------------------------------------------------

// Lines that are kept though nobody knows them, by their section: "" in front of the first,
// "program", "keygroup 1", "keygroup 1 zone 1".
struct kept_line {
	std::string section, text;
	bool operator==(const kept_line &) const = default;
};
using kept_lines = std::vector<kept_line>;

std::string program_text(const _program &program, const kept_lines &kept = {});
// A text in quotation marks, and back; false for what is none.
std::string quoted_text(std::string_view text);
bool unquoted(std::string_view text, std::string *out);
// Null, and line and reason of what is refused, or the program.
struct program_refusal {
	int line = 0;
	std::string reason;
};
std::unique_ptr<_program> read_program_text(
	std::string_view text, kept_lines *kept, program_refusal *why);

// A text as it stands in such a file, in quotation marks; what is no plain letter is \xNN.
std::string quoted_text(std::string_view text);
// The same taken back, behind what out holds: false for a text that is none.
bool unquoted(std::string_view text, std::string *out);

// ---- The folder -----------------------------------------------------------------------------

std::string program_folder();
// Bring local_pgm in line with the folder. Programs with edits that are not saved stay as they
// are. What a file was refused for is told; its program is not listed.
outcome load_local_programs();
// Forget them and their files; for tests.
void forget_local_programs();
// The file of a listed program, "" before it has one.
std::string file_of_program(const _program &program);
// Write a listed program to its file, or to a free name.
outcome save_local_program(const _program &program);
// A copy becomes a program of this computer, beside one of its name; nothing is asked. The
// words say where.
outcome keep_program(const _program &program);
// The file goes to the folder "deleted" of the configurations.
outcome delete_local_program(int index);
outcome rename_local_program(int index, const std::string &new_name);

// ---- Between models ---------------------------------------------------------------------------

// What a model's programs are written with, by the names of the fields; none where that has no
// tables.
using parameter_names = std::set<std::string_view>;
parameter_names parameters_of(const _sampler_type &model);
// What a program holds that a model of another family does not know: names of parameters. Empty
// where both are of one family.
std::vector<std::string> not_carried(const _program &program, const _sampler_type &to);
// The same of a program that no model has had.
std::vector<std::string> not_known(const _program &program, const _sampler_type &to);
// They are written and read alike.
bool same_family(const _sampler_type &one, const _sampler_type &other);

} // namespace velmor
