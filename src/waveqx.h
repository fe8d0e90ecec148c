// waveqx.h - audio files: the WAV files of the spool, conversion, import, AKP programs
//
// Called by the drivers (write_sample, test_sample, create_sample_from_file), by the
// sample manager (import, export, listing) and by the program manager (AKP programs).
// Owns the listing of the spool and the list of local programs. The layout of a file
// and what a conversion does to it: docs/wave-files.md.
//
// A file appears under its name whole or not at all (velmor_files.h).
//
// Windows are given by their id of controls.h, 0 for none. A path has backslashes.
//
// Knows nothing of: transports, how a model is spoken to, toolkits.

#pragma once
#include "platform/sound.h"
#include "src/resource.h"
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmor
{

// ---- Container (waveqx.cpp) ---------------------------------------------------------

// RIFF/WAVE is little-endian; all values are unsigned.
u16 wave_read_16bit(const u8 *at);
u32 wave_read_24bit(const u8 *at);
u32 wave_read_32bit(const u8 *at);
void wave_write_16bit(u8 *at, u32 value);
void wave_write_24bit(u8 *at, u32 value);
void wave_write_32bit(u8 *at, u32 value);

// The fixed 44 bytes that open every smpl chunk of write_sample; byte 12 is replaced by
// the original pitch.
inline constexpr int akai_defs_size = 44;
extern const u8 akai_defs[akai_defs_size];

// Bytes of the header that write_sample writes.
inline constexpr int wave_header_size = 144;

// The play mode as it stands in a file: S1000 and S2000 count theirs otherwise. Its own
// inverse; a mode without a counterpart comes back unchanged.
u8 recalculate_playmode(u8 mode);

// Where the WAV file of that base name is: "<base>.wav", or the name of an existing file
// that differs from it only in the case of its extension.
std::string wave_path_of(const std::string &filebase);

// The spool's base name of a sample: "<config>\sample\<name>", whatever the name holds.
std::string spool_filebase(const char *samplename);

// Write a sample, 16 bit mono, to _filebase + ".wav", or into the spool under its name
// when _filebase is null. Returns 0 on success and 1 on failure, which a box has told.
int write_sample(const _sample *sample, const char *_filebase);

// 1 if that file exists and is not empty, else 0.
int test_sample(const _sample *sample, const char *_filebase);

// Read "<filebase>.wav" into a record, which is cleared first: what it owned before is
// not freed. Returns 1 on success; on failure 0 and a log line, and the record holds its
// name alone. The chunks must stand in the order fmt, fact, smpl, data. sample_data is
// filled for frames of 2 and 3 bytes, and zero for all others. free_sample_data gives
// the blocks back.
int create_sample_from_file(const char *filebase, _sample *sample);

// Head of any WAV file; pitch is the unity note, or 255 without a smpl chunk. False after
// a log line.
bool get_wave_info(const char *filename, u8 *bits, u8 *channels, int *sample_rate, u8 *pitch);

// Bring a WAV file into the order that create_sample_from_file reads: fmt of 18 bytes,
// fact, smpl, data, whatever the order of the source. pitch is the unity note of a smpl chunk made here. False after a log
// line; an old target then stands as it was.
bool akai_it(const char *source, const char *target, u32 pitch);

// ---- Conversion (waveqx_resample.cpp) -------------------------------------------------

// Mode byte of resample.
enum : u8 {
	mix_mode_left = 0,  // left only; a mono source goes to the first slot
	mix_mode_right = 1, // right only; a mono source goes to the second slot
	mix_mode_split = 2, // average of both; a mono source goes to both slots
};

// 2 to the power n, by doubling a 32-bit word: 0 from 32 on.
u32 power2(u32 n);

// Convert a WAV file to another rate, depth and number of channels. The head and the
// chunks ahead of the data are kept, so akai_it has to follow. True when the target is
// written; false after a log line, and an old target then stands as it was. With a
// window, interface events run meanwhile, and Stop ends the work. pitch is not used.
bool resample(int progress_dialog, const char *source, const char *target, unsigned channels,
	unsigned mode, unsigned bits, u64 rate, unsigned pitch);

// How a conversion ended; code is the system's for a file that could not be read or written.
enum class conversion_end {
	done,
	stopped,
	unreadable,
	unwritable,
	unfinished, // written, but it cannot have its name
	no_wave,    // why_not_wave says more
	too_large,  // for memory, or for the 32 bits of a length
	no_order,   // a rate that a smpl chunk cannot tell
};
struct conversion_result {
	conversion_end end;
	int code;
};

struct conversion_wish {
	const char *source, *target;
	unsigned channels, mode, bits;
	u64 rate;
	u32 pitch; // unity note of a smpl chunk made here
	int window;
};

// The same conversion straight into the order of the spool, as akai_it would bring it there
// afterwards: a long file is written once.
conversion_result convert_for_spool(const conversion_wish &wish);

// ---- Import (waveqx_import.cpp) ---------------------------------------------------------

// The spool's samples, in the order of their names. Replaced whole by load_local_samples.
extern std::vector<_local_sample> local_sample;
extern int local_samples;

// mixing_mode of import_wave.
enum : u8 {
	import_left = 1,
	import_right = 2,
	import_mix = 4,
	import_both = 8,
	import_split = 16, // two files, "-L" and "-R"
};

// Bring a WAV file into the spool. 0 in bits, rate or channels keeps the file's value;
// original_pitch serves a file without a unity note. With a window, a percentage goes to
// samples_work_percent and the outcome to samples_work_outcome. Returns 1 on success.
// Stop ends it between blocks (progress_stopped is then true) and leaves no half file.
// import_failure then says why for a person to read.
int import_wave(const char *filename, int dialog, unsigned bits, int rate, unsigned channels,
	unsigned mixing_mode, unsigned original_pitch);

// Why the last import_wave or copy_folder failed, in one sentence or two; empty after a
// success, and when Stop ended it.
extern std::string import_failure;

// What kind of file this is, and what it lacks to be imported, as a sentence; empty for a WAV
// file that can be.
std::string why_not_wave(const char *path);

// List a folder, the spool for null. A folder that cannot be read ends the process.
void load_local_samples(const char *folder);

// Empty a folder, recursively; the folder itself stays. A link is removed, and what it
// points to is left alone.
void cleanup_dir(const char *folder);

// Copy every file of a folder into another one, replacing what is there. With a window,
// name, percentage, count and outcome go to its work controls.
bool copy_folder(int dialog, const char *source, const char *target);

// Take apart the answer of a file dialog: a folder and names, or one whole path, each
// ended by NUL, the last by two. True if any file is named; the caller frees each string
// and the array with std::free.
bool extract_files(const char *buffer, char ***files, int *count);

// ---- Sound files of other kinds (waveqx_sounds.cpp) ------------------------------------------

// A WAV file that import_wave takes as it stands, and that keeps its sound there: PCM of 12, 16
// or 24 bits, its format ahead of all else.
bool plain_wave(const char *path);
// Another sound file, which a library can read: what it is.
bool foreign_sound(const char *path, sound_shape *shape);
// Why neither is the case, as a sentence that names what the file is; empty where one is.
std::string why_not_sound(const char *path);
// import_wave for sound files of every kind: what it would make silence or noise of becomes a WAV
// file of 16 or 24 bits first, with the same rate and channels, its loop and root note.
int import_sound(const char *filename, int dialog, unsigned bits, int rate, unsigned channels,
	unsigned mixing_mode, unsigned original_pitch);

// ---- AKP programs (waveqx_akp.cpp) --------------------------------------------------------

// Programs without a sampler, in the order in which they were filed. Changed by
// add_local_pgm and the program manager; local_pgms follows the size.
extern std::vector<std::unique_ptr<_program>> local_pgm;
extern int local_pgms;

// Read a program file. The record is cleared first. A sampler must be loaded. False after
// a box; after one about a file that cannot be read the progress window is still up, for
// the caller to hide.
bool import_akp_file(const char *filename, _program *program);

// File a copy. A program of that name is asked about; the new one is then filed beside
// it. False when the user or the memory refused.
bool add_local_pgm(const _program *program);

// Ask whether the samples that a program names are to be imported from the folder of its
// AKP file, and import them.
void import_required_samples(int window, const char *filename, const _program *program);

// True if such files tell that field of a record.
bool akp_tells(std::string_view field);
// True if one byte of such a file fills both fields: most fill one of each family.
bool akp_has_in_one_byte(std::string_view field, std::string_view other);

// Two bytes as a little-endian value.
u16 get16val(const u8 *input);

} // namespace velmor
