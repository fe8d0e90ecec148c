// akaiprograms.h - what the drivers share that write programs
//
// A save, a renaming or a deletion reports as every operation of a model does, through boxes and
// the log. Some ends have no words there: a refused value, keygroups that were not taken, Stop.
// program_outcome holds how the last of these operations ended, with words for a person, and a
// workflow reads it when the operation has come back.
//
// A model that cannot rename takes the program off the sampler and puts it back. What it took is
// kept here when it could not put it back whole, so that nothing of it is lost.
//
// Main thread only. Knows nothing of: protocols, windows.

#pragma once
#include "src/resource.h"
#include "src/velmor_outcome.h"
#include <memory>
#include <span>
#include <string>

namespace velmor
{

// How the last operation that wrote programs ended.
extern outcome program_outcome;
// The last save added keygroups which did not take everything. The record as it was before that
// save is to be saved once more: a save changes it, so whoever saves keeps a copy.
extern bool save_once_more;

// Each such operation begins with this: nothing is known of its end, and nothing kept.
void begin_program_operation();
// The first end that is told counts; an operation that tells none is done.
void program_ended(ending how, const char *words);
// Done, with something to tell.
void program_done_but(const char *words);

// Entry index of a local array, or, with local null, of the loaded tree. Null, which is told,
// where there is none.
_program *program_to_write(i32 index, _program *local);
// As many as an operation sends, whatever the record says; what is left out is logged.
int sent_count(i32 count, int most, const char *what);
// Bytes for a line of the log that nobody may want.
std::string log_dump(std::span<const u8> bytes);

// The program that a failed renaming has taken off the sampler, under its old name; null when
// there is none. Whoever takes it keeps it on this computer.
std::unique_ptr<_program> take_rescued_program();
// The loaded program that stood behind a renamed one. A machine that closes the gap of a deleted
// program may have put the renamed one over it: keep it when the next list has no such name.
std::unique_ptr<_program> take_endangered_program();
void rescue_program(std::unique_ptr<_program> program);
void endanger_program(std::unique_ptr<_program> program);

} // namespace velmor
