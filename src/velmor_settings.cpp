// velmor_settings.cpp - the user's settings, and the folder tree for all that is stored
//
// Four text values per user, and a run mode. Devices are stored by their place in
// the host's list, not by name, so a change of hardware shifts what a stored index
// means; only an index past the end is noticed.
//
//   <user root>\VELMOR\CONFIG      the .sampler files; the user may choose another folder
//                     \sample      the spool: .wav and .info files
//                     \pgm \multi \setup
//                     \temp \midi_dumps   made by those who use them
//
// Knows nothing of: where the host keeps settings.

#include "src/controls.h"
#include "src/velmor.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace velmor
{

std::string current_config_path;

std::string file_name_of(std::string_view name)
{
	std::string out;
	for (const char c : name) {
		const u8 byte = static_cast<u8>(c);
		const bool unsafe =
			byte < 0x20 || byte == 0x7F || c == '/' || c == '\\' || c == ':';
		out += unsafe ? '_' : c;
	}
	if (out.empty() || out == "." || out == "..")
		out.assign(out.empty() ? 1 : out.size(), '_');
	return out;
}

} // namespace velmor
