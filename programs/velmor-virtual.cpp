// velmor-virtual.cpp - serve one virtual sampler over TCP, to the bridge of the program

#include "programs/options.h"
#include "virtual/demo_content.h"
#include "virtual/replay.h"
#include "virtual/tcp_server.h"
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

using namespace velmor;

static const char usage[] =
	"Usage: velmor-virtual --tcp PORT [options]\n"
	"Serve a virtual sampler with demo contents on 127.0.0.1:PORT, in real time.\n"
	"Port 0 takes any free port and says which.\n"
	"\n"
	"  --tcp PORT        port to listen on, 0 to 65535\n"
	"  --model MODEL     s900, s950, s1000, s2000, s2800 or s3000 (default: s3000)\n"
	"  --channel N       exclusive channel of the machine, 0 to 127 (default: 0)\n"
	"  --replay FILE     answer as the sampler did whose traffic was recorded in FILE, a\n"
	"                    transcript over MIDI or TCP; what was never asked in it gets no "
	"answer\n"
	"  --no-wire-delay   answer at once instead of at the speed of a MIDI cable\n"
	"  --fault FAULT     KIND[:EXCHANGE[+][:SECONDS]], may be given more than once:\n"
	"                    at the nth message to the machine, with + from then on\n"
	"  --version         show the version\n"
	"  --help            show this text\n"
	"\n"
	"Kinds of faults: ";

struct options {
	bool help = false;
	int port = -1;
	int channel = 0;
	s1000_model model = s1000_model::s3000;
	std::optional<s900_model> older; // instead of model
	wire_settings settings;
	std::string replay; // a transcript, instead of a model
	std::vector<wire_fault> faults;
};

static bool read_model(const char *text, options *o)
{
	s900_model older = {};
	o->older.reset();
	if (read_s900_model(text, &older))
		o->older = older;
	return o->older || read_s1000_model(text, &o->model);
}

static bool read_number(const char *text, int most, int *value)
{
	const char *end = text + std::strlen(text);
	const auto [stopped, code] = std::from_chars(text, end, *value);
	return code == std::errc() && stopped == end && *value >= 0 && *value <= most;
}

// One option with its value. "" or what is wrong with it.
static std::string read_option(const std::string &name, const char *value, options *o)
{
	wire_fault fault = {};
	if (name == "--tcp")
		return read_number(value, 65535, &o->port) ? "" : "no such port";
	if (name == "--channel")
		return read_number(value, 127, &o->channel) ? "" : "no such channel";
	if (name == "--replay") {
		o->replay = value;
		return "";
	}
	if (name == "--model")
		return read_model(value, o) ? "" : "no such model";
	if (!read_wire_fault(value, &fault))
		return "no such fault";
	o->faults.push_back(fault);
	return "";
}

static std::string read_options(int count, char **words, options *o)
{
	for (int i = 1; i < count; i++) {
		const std::string name = words[i];
		if (name == "--help") {
			o->help = true;
		} else if (name == "--no-wire-delay") {
			o->settings = no_wire_delay;
		} else if (name == "--tcp" || name == "--channel" || name == "--model" ||
			   name == "--fault" || name == "--replay") {
			if (++i == count)
				return name + " needs a value";
			const std::string wrong = read_option(name, words[i], o);
			if (!wrong.empty())
				return name + " " + words[i] + ": " + wrong;
		} else {
			return name + ": no such option";
		}
	}
	return o->help || o->port >= 0 ? "" : "--tcp PORT is missing";
}

static tcp_server *running;

static void end_serving(int)
{
	if (running)
		running->stop();
}

static int fail(const std::string &wrong)
{
	std::fprintf(stderr, "velmor-virtual: %s\n", wrong.c_str());
	return 1;
}

// Serve what is at the end of a wire until a signal comes.
static int serve(const options &o, timeline &time, midi_wire &wire)
{
	for (const wire_fault &fault : o.faults)
		wire.set_fault(fault);
	tcp_server server(wire);
	const std::string wrong = server.listen(static_cast<unsigned short>(o.port));
	if (!wrong.empty())
		return fail(wrong);
	running = &server;
	std::signal(SIGINT, end_serving);
	std::signal(SIGTERM, end_serving);
	std::signal(SIGPIPE, SIG_IGN);
	std::printf("listening on 127.0.0.1:%d\n", server.port());
	std::fflush(stdout);
	time.run_in_real_time();
	server.serve();
	time.stop();
	std::signal(SIGINT, SIG_DFL);
	std::signal(SIGTERM, SIG_DFL);
	running = nullptr;
	return 0;
}

static int serve_transcript(const options &o)
{
	std::ifstream file(o.replay, std::ios::binary);
	std::ostringstream text;
	if (!file || !(text << file.rdbuf()))
		return fail(o.replay + ": cannot be read");
	replay_sampler sampler(text.str(), false);
	if (!sampler.wrong().empty())
		return fail(o.replay + ": " + sampler.wrong());
	if (sampler.on_usb())
		return fail(
			o.replay + ": was recorded on the USB, which cannot be served over TCP");
	timeline time;
	midi_wire *port = nullptr;
	midi_wire wire(time,
		sampler.on_wire(
			time, [&port](machine::bytes late) { port->play(std::move(late)); }),
		o.settings);
	port = &wire;
	const int status = serve(o, time, wire);
	if (sampler.unknown())
		std::fprintf(stderr, "velmor-virtual: %d messages stand nowhere in %s\n",
			sampler.unknown(), o.replay.c_str());
	return status;
}

static int serve_model(const options &o)
{
	timeline time;
	s1000_machine machine(o.model, static_cast<std::uint8_t>(o.channel));
	s900_machine older(
		o.older.value_or(s900_model::s900), static_cast<std::uint8_t>(o.channel));
	fill_demo(machine);
	fill_demo(older);
	older.takes_time = o.settings.byte_time > 0;
	midi_wire wire(time, o.older ? older.on_wire(time) : machine.on_wire(), o.settings);
	return serve(o, time, wire);
}

int main(int count, char **words)
{
	const std::string help = usage + wire_fault_names() + "\n";
	if (answered(count, words, "velmor-virtual", help.c_str()))
		return 0;
	options o;
	const std::string wrong = read_options(count, words, &o);
	if (!wrong.empty()) {
		std::fprintf(stderr, "velmor-virtual: %s\nTry 'velmor-virtual --help'.\n",
			wrong.c_str());
		return 2;
	}
	if (o.help) {
		std::fputs(help.c_str(), stdout);
		return 0;
	}
	return o.replay.empty() ? serve_model(o) : serve_transcript(o);
}
