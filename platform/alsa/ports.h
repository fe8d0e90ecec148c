// ports.h - what the two kinds of ALSA ports have in common
//
// Included by the files of this folder. A raw port is a device file, byte-exact and
// paced by the hardware. A sequencer port is a program (a soft synth) or the kernel's
// loop. midi_alsa.cpp lists both and hands out handles.

#pragma once
#include "platform/midi.h"
#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velmor
{

// Codes beside the errno values that ALSA gives.
enum alsa_code : int {
	input_overrun = 10101,
	port_not_listed,
	receiver_too_slow,
};

struct alsa_port {
	std::string name;           // as a musician knows it
	std::string device;         // "hw:1,0,0" of a raw port, empty for the sequencer
	int card = -1;              // of a raw port
	int client = -1, port = -1; // of a sequencer port
};

// Called by the threads of the ports; does nothing before a wake is installed.
void wake_the_system();

// An eventfd that ends the sleep of a thread.
struct bell {
	int fd;
	bell();
	~bell();
	bell(const bell &) = delete;
	void ring();
	void silence();
};

struct output_port;

// What is passed on of an input, and where to. The thread of the input goes through here.
struct passing_on {
	std::shared_ptr<output_port> to; // null: nothing is
	midi_judge judge = nullptr;
	midi_sorter sorter = {};

	void take(const unsigned char *bytes, std::size_t count);
};

// Where the bytes of a port go for one that opened it: into an armed buffer, or into a store of
// its own.
struct receiver {
	unsigned char *buffer = nullptr;
	std::size_t capacity = 0, filled = 0;
	bool listening = false;
	std::vector<unsigned char> kept; // of a listener, at most capacity
	passing_on thru;
	int error = 0; // first thing that went wrong since it began

	bool active() const { return buffer || listening; }
	void take(const unsigned char *bytes, std::size_t count);
};

// All who receive from a port, served by the thread of the port. Everything with lock held.
struct incoming {
	std::mutex lock;
	std::vector<receiver *> receivers;
	int gone = 0; // what ended the port

	void take(const unsigned char *bytes, std::size_t count);
	void fail(int code);
};

// What an output still has to send, emptied by the thread of the port.
struct outgoing {
	std::mutex lock;
	std::vector<unsigned char> waiting;
	int failed = 0;                  // nothing is sent any more
	bool in_exclusive = false;       // the last byte written belongs to a message that goes on
	std::vector<unsigned char> held; // messages passed on, until it has ended

	// Both with lock held.
	void add(const unsigned char *bytes, std::size_t count);
	void pass_on(const unsigned char *message, std::size_t count);
};

// An open port. The functions are called on the main thread.
struct input_port {
	incoming in;
	bell stop;
	std::thread reader;
	// Hand on what came before, with in.lock held.
	void (*catch_up)(input_port *port) = nullptr;
	// Find out what the thread has not seen yet, with in.lock held.
	void (*look)(input_port *port) = nullptr;
	virtual ~input_port() = default;
};

struct output_port {
	outgoing out;
	bell changed; // bytes to send, or the end
	std::atomic<bool> ending = false;
	std::thread writer;
	// Bytes that were handed on and are known not to have left, with out.lock held.
	long (*on_the_way)(output_port *port) = nullptr;
	virtual ~output_port() = default;
};

// rawmidi.cpp
void list_raw_ports(bool outputs, std::vector<alsa_port> *ports);
int open_raw_input(const alsa_port &port, std::unique_ptr<input_port> *opened);
int open_raw_output(const alsa_port &port, std::unique_ptr<output_port> *opened);

// sequencer.cpp: ports behind the raw ones, without those that only mirror a card of raw.
void list_sequencer_ports(
	bool outputs, const std::vector<alsa_port> &raw, std::vector<alsa_port> *ports);
int open_sequencer_input(const alsa_port &port, std::unique_ptr<input_port> *opened);
int open_sequencer_output(const alsa_port &port, std::unique_ptr<output_port> *opened);

} // namespace velmor
