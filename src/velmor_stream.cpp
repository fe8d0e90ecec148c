// velmor_stream.cpp - the chosen MIDI ports, or the bridge, as one stream

#include "src/velmor_stream.h"
#include "src/velmor.h"
#include "src/velmor_pace.h"
#include <algorithm>
#include <cmath>
#include <iterator>

namespace velmor
{

static constexpr double byte_seconds = 10 / 31250.0, patience = 3;
static constexpr std::size_t listen_room = 1 << 20;

void pump_until(double moment)
{
	const double left = moment - host.clock->counter();
	host.ui->pump(static_cast<int>(std::ceil(std::clamp(left * 1000, 0.0, 100.0))));
}

byte_stream::byte_stream() : over_tcp(use_tcp != 0) {}

byte_stream::~byte_stream()
{
	if (over_tcp)
		stop_listening_to_tcp();
	else if (input >= 0)
		host.midi->close_input(input);
}

std::string byte_stream::open()
{
	if (over_tcp) {
		listen_to_tcp();
		return "";
	}
	int code = open_midi_output();
	if (!code)
		code = host.midi->open_input(selected_midi_in_interface, &input);
	input = code ? -1 : input;
	if (!code)
		code = host.midi->listen(input, listen_room);
	return code ? host.midi->error_text(code) : "";
}

std::string byte_stream::send(const std::vector<u8> &bytes)
{
	if (over_tcp)
		return send_tcp(bytes) ? "" : why_tcp_failed();
	const int code = write_output(the_outHandle, bytes.data(), bytes.size());
	if (code)
		return host.midi->error_text(code);
	const double end =
		host.clock->counter() + static_cast<double>(bytes.size()) * byte_seconds + patience;
	long leaving;
	while ((leaving = host.midi->leaving(the_outHandle)) > 0 && !progress_stopped()) {
		if (host.clock->counter() >= end)
			return tr(
				"The MIDI output does not send. Is the interface still connected?");
		pump_until(host.clock->counter() +
			   std::max(static_cast<double>(leaving) * byte_seconds, 0.001));
	}
	return leaving < 0 ? host.midi->error_text(static_cast<int>(-leaving)) : "";
}

std::string byte_stream::take(std::vector<u8> *come)
{
	u8 bytes[1024];
	long count;
	while ((count = over_tcp ? take_tcp(bytes, sizeof bytes)
				 : static_cast<long>(host.midi->take(input, bytes, sizeof bytes))) >
		0)
		std::copy_if(bytes, bytes + count, std::back_inserter(*come),
			[](u8 byte) { return byte < 0xF8; });
	if (count < 0)
		return why_tcp_failed();
	const int code = over_tcp ? 0 : host.midi->input_error(input);
	return code ? host.midi->error_text(code) : "";
}

} // namespace velmor
