// options.h - what the command lines of the programs share
//
// Every program answers --help and --version without a display, and says in a sentence
// what is wrong with a word that it does not know.

#pragma once
#include <cstdio>
#include <cstring>

namespace velmor
{

// True when the first word was --help or --version, and has been answered.
inline bool answered(int argc, char **argv, const char *program, const char *help)
{
	if (argc != 2)
		return false;
	if (!std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h"))
		std::fputs(help, stdout);
	else if (!std::strcmp(argv[1], "--version"))
		std::printf("%s %s\n", program, VELMOR_VERSION);
	else
		return false;
	return true;
}

} // namespace velmor
