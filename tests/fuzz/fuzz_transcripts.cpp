// fuzz_transcripts.cpp - any text as a transcript: read by both readers, written, and read again
//
// What the program reads it writes so that nothing is lost, and the virtual sampler that answers
// from the text does not fall over it.

#include "src/velmor_transcript.h"
#include "virtual/replay.h"
#include <algorithm>
#include <cstdlib>

using namespace velmor;

static std::string text_of(const transcript &t)
{
	std::string text = head_text(t);
	for (const crossing &c : t.crossings)
		text += crossing_text(c);
	return text;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string_view text(reinterpret_cast<const char *>(data), size);
	transcript first, second;
	// Runs of megabytes only cost time.
	const std::size_t star = std::min(text.find('*'), size);
	const std::size_t digits = text.find_first_not_of("*0123456789", star) - star;
	if (size > 4096 || star != std::min(text.rfind('*'), size) || (star < size && digits > 5))
		return 0;
	replay_script script(text, false);
	for (int i = 0; i < 3 && script.wrong().empty(); i++)
		script.hear({ data, size }, true);
	if (!read_transcript(text, &first).empty())
		return 0;
	leave_names_out(first.crossings, { "KICK", "A name", "xyz" });
	if (!read_transcript(text_of(first), &second).empty() ||
		first.crossings.size() != second.crossings.size())
		std::abort();
	for (std::size_t i = 0; i < first.crossings.size(); i++)
		if (first.crossings[i].bytes != second.crossings[i].bytes ||
			first.crossings[i].asked != second.crossings[i].asked)
			std::abort();
	return 0;
}
