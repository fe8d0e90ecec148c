// qtaudio.cpp - the loudspeaker of the computer, by a module that is loaded when it is needed
//
// Qt Multimedia brings two dozen libraries along, which would make every start of the program
// longer by a third. So what plays is a module (player.cpp), and who never plays never loads it.

#include "platform/audio.h"
#include <climits>
#include <dlfcn.h>
#include <unistd.h>

namespace velmor
{

static std::string folder_of_program()
{
	char path[PATH_MAX];
	const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
	const std::string whole(path, length > 0 ? static_cast<std::size_t>(length) : 0);
	return whole.substr(0, whole.rfind('/'));
}

// It stays in memory: threads of the sound system may live as long as the process.
static const audio_service *load_module(std::string *why)
{
	const std::string program = folder_of_program();
	for (const char *folder : { "/", "/" VELMOR_AUDIO_FOLDER "/" }) {
		const std::string path = program + folder + "velmor-audio.so";
		void *module = access(path.c_str(), R_OK) == 0
				       ? dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)
				       : nullptr;
		if (module)
			return static_cast<const audio_service *>(dlsym(module, "velmor_audio"));
		if (access(path.c_str(), R_OK) == 0)
			*why = dlerror();
	}
	return nullptr;
}

static const audio_service *the_module;

static std::string play(const played_sound &sound)
{
	std::string why;
	if (!the_module)
		the_module = load_module(&why);
	if (the_module)
		return the_module->play(sound);
	return why.empty()
		       ? "The part of this program that plays samples is not installed: "
			 "velmor-audio.so."
		       : "The part of this program that plays samples cannot be loaded: " + why +
				 ".";
}

static void stop()
{
	if (the_module)
		the_module->stop();
}

static std::int64_t position()
{
	return the_module ? the_module->position() : -1;
}

extern const audio_service qt_audio;
const audio_service qt_audio = { .play = play, .stop = stop, .position = position };

} // namespace velmor
