// velmor_work.h - what can be done with a sampler and with the spool, by names
//
// The workflows. Each takes names and paths, asks drivers and files, and gives an outcome; none
// needs a window. Windows read their selection and call, the command line reads its arguments
// and calls. Questions that a workflow has to ask go through ask_box.
//
// The drivers find a sample by its place in the list last read, or take the next free number.
// So whatever is sent to a machine is sent from a list that is fresh: the guard in front of each
// workflow reads it again where it is not, and refuses in words where that fails.
//
// Main thread only. Knows nothing of: windows, models.

#pragma once
#include "src/resource.h"
#include "src/velmor_outcome.h"
#include "src/velmor_queue.h"
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace velmor
{

// ---- How the sampler is reached (velmor_line.cpp) -------------------------------------------

// A sampler as it is asked: the loaded one, or one that a dialog describes.
struct reached {
	const _sampler_type *model;
	int exclusive_channel;
	std::string usb_name; // of a model on the USB
};
reached loaded_reached();
// "MIDI 'USB MIDI 1'", "TCP 192.168.0.10:9999", "USB 'Z8'".
std::string way_text(const reached &to);
// It answered.
std::string answer_words(const reached &to, const std::string &version);
// Nobody answered: on which way, and what to try.
std::string silence_words(const reached &to);
// Somebody answered, but not as this model does.
std::string stranger_words(const reached &to);
// The loaded sampler, its way, and whether it answered last. The role tells good from bad.
struct line_report {
	std::string text;
	text_role role;
};
line_report report_line();
// What the way to the loaded sampler consists of. Changes with every part of it.
std::string way_key();
// A time of day as "12:04:31".
std::string clock_text(double time_of_day);

// ---- The lists of the loaded sampler (velmor_lists.cpp) --------------------------------------

enum class freshness {
	never, // not read since the sampler was loaded
	read,
	stale, // an exchange failed, or the way to the sampler changed since
};

// What is known of one list.
struct known_list {
	double asked_at = 0;   // time of day of the last try; 0: none
	bool was_read = false; // in an earlier try, or in this one
	bool silent = false;   // the last try failed
	std::string words;     // of that failure
	std::string way;       // way_key of the last try
	unsigned failures = 0; // of the line, when it was read
	freshness state() const;
};
struct sampler_lists {
	known_list samples, programs, multis;
};
extern sampler_lists the_lists;

// Another sampler: nothing is known of its lists.
void forget_lists();
// "" where a sampler of that model may be asked; otherwise who has its way, a sentence.
std::string why_way_is_taken(const _sampler_type &model);
// The row of the loaded sampler, or null and the words for it.
const _sampler_type *loaded_model(outcome *why);
// Done where the loaded model has that list; otherwise the words for it.
outcome offers_list(list_operation _sampler_type::*slot);
u8 control_channel();
u8 exclusive_channel();
// Read status and samples. Not done: the list holds nothing, or what it held is stale.
outcome read_sample_list();
// Read status, samples, programs and multis.
outcome read_multi_list();
// A list that had to be read first could not be: the outcome of the work that was to follow.
outcome nothing_sent(outcome read);
// The list of samples, read anew unless it is fresh. Not done: nothing may be sent.
outcome have_sample_list();
// Names of the list last read.
std::vector<std::string> loaded_names();
// Read status, samples and programs. Forgets the edits of the loaded programs.
outcome read_program_list();

// What a driver told besides success.
std::vector<kept_box> troubles(std::vector<kept_box> told);
// The list could not be read again, so nobody knows how the work ended.
outcome unknown_end(const outcome &read, const std::string &what);

// Make a configuration current.
outcome load_by_name(const std::string &name);
// Ask a sampler that is described by a dialog alone; the words say who answered.
outcome get_device_info(
	u8 control_channel, i32 brand_id, u8 sysex_channel, char *result, int *_maxlen);

// What an import makes of a file; 0 keeps what it has.
struct import_options {
	int bits, rate, channels;
	int mixing; // as import_wave takes it
};

// What an upload to a model would make of a WAV file of the spool (velmor_preview.cpp).
struct upload_verdict {
	bool sends; // the sound arrives; otherwise the upload is to be refused with the words
	bool helps; // import_wave with this conversion, of the file itself, makes it arrive
	import_options conversion;
	std::string words; // a sentence or two; what arrives, where it does
};
upload_verdict upload_check(const _sampler_type &model, const std::string &path);

// ---- Samples on the sampler (velmor_samples.cpp) ---------------------------------------------

// True if the spool holds a sample that a download of that name would replace.
bool in_spool(const std::string &name);
// Done where the loaded model can do it; otherwise the words for it.
outcome offers_download();
outcome offers_upload();
// Fetch a sample into the spool, over one of its name.
outcome download_sample(const std::string &name);
// The same from a list that is known to be fresh.
outcome fetch_sample(const std::string &name);
// Send a file of the spool; path is without extension. What would arrive as silence is refused
// in front of the transfer. The list is read again behind it.
outcome upload_sample(const std::string &path);
// The list is read again, and decides.
outcome rename_sample(const std::string &name, const std::string &new_name);
outcome delete_sample(const std::string &name);
// Ask about a sample, and give its record.
outcome ask_sample(const std::string &name, const _sample **record);

// ---- Many samples (velmor_sample_queues.cpp) --------------------------------------------------

// Each of them runs the waiting items of a queue and gives one verdict.
// Fetch samples of these names, over those of the spool.
outcome download_samples(work_queue *queue, const queue_view *view = nullptr);
// Send files of the spool, by their paths without extension. What would arrive as silence is
// refused, or converted first where that helps and is wanted.
outcome upload_samples(work_queue *queue, bool convert, const queue_view *view = nullptr);
// From the sampler, and from the spool, where one undo puts all of them back.
outcome delete_samples(work_queue *queue, const queue_view *view = nullptr);
outcome delete_locals(work_queue *queue, const queue_view *view = nullptr);

// ---- Samples of the spool (velmor_spool.cpp) --------------------------------------------------

std::string spool_folder();
// The files go to the folder "deleted" beside the spool; undo_last puts them back.
outcome delete_local(const std::string &name);
// Asks before it replaces a sample; what is replaced goes to "deleted".
outcome rename_local(const std::string &name, const std::string &new_name);
outcome export_spool_to(const std::string &folder);
outcome clear_spool_folder();

// Bring WAV files into the spool; the options are asked for each. A window, or 0, shows how far
// it is. Ends at the first file that fails.
outcome import_files(std::span<const std::string> paths,
	const std::function<import_options()> &options, int window);

// ---- What can be put back (velmor_spool.cpp) --------------------------------------------------

// Files that stand elsewhere now, and where they came from, in the order of the way back.
struct undo_step {
	std::string line; // what putting it back is, in a sentence
	struct move {
		std::string now, before;
	};
	std::vector<move> moves;
	void (*show)() = nullptr; // what came back, where the spool's pages do not
};
void remember_undo(const undo_step &step);
// Convert a sample of the spool in its place; the way back is added to a step.
outcome convert_local(const std::string &name, const import_options &options, undo_step *undo);
bool can_undo();
outcome undo_last();
void forget_undo();
// Make one step of all that came since there were so many.
std::size_t undo_steps_kept();
void join_undo(std::size_t since, const std::string &line);

} // namespace velmor
