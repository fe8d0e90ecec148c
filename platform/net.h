// net.h - one byte stream to a far end, for the TCP bridge
//
// Nothing here blocks: the caller pumps the interface and asks again. Results
// of type int are 0 for success, otherwise a code for which error_text has words.

#pragma once
#include <cstddef>

namespace velmor
{

struct net_service {
	// Begin to connect to a dotted IPv4 address. What is none fails at once. Success means that the attempt is under way.
	int (*connect)(const char *address, unsigned short port, int *handle);
	// 1 connected, 0 still trying, negative refused or failed (the code is minus the result).
	int (*connected)(int handle);
	// Send what fits now. Returns the count taken, 0 if nothing fits, negative on failure.
	long (*send)(int handle, const unsigned char *bytes, std::size_t count);
	// Take what has come. Returns the count, 0 if nothing came yet, negative when the far end
	// closed or failed.
	long (*receive)(int handle, unsigned char *bytes, std::size_t capacity);
	void (*close)(int handle);

	// wake is called, from any thread, when a connection is made, breaks, or can be read.
	void (*on_arrival)(void (*wake)());
	const char *(*error_text)(int code);
};

} // namespace velmor
