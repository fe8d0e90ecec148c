// akaimidi.cpp - what the drivers of MIDI samplers share: asking, answers, counts

#include "src/akaimidi.h"
#include <algorithm>
#include <cmath>

namespace velmor
{

akai_answer ask_akai(std::span<const u8> message, int room, akai_exchange exchange)
{
	akai_answer answer = { std::vector<u8>(static_cast<std::size_t>(room)), false };
	int length = room;
	exchange(message.data(), static_cast<int>(message.size()), answer.bytes.data(), &length, 1);
	// A failed port leaves the length as it was, over a cleared buffer.
	answer.port_failed = length == room && answer.bytes[0] == 0;
	length = answer.port_failed ? 0 : std::clamp(length, 0, room);
	answer.bytes.resize(static_cast<std::size_t>(length));
	return answer;
}

bool tell_akai(std::span<const u8> message)
{
	int nothing = 0;
	send_midi_string_ex(message.data(), static_cast<int>(message.size()), nullptr, &nothing, 0);
	// An output that failed is closed.
	return use_tcp ? why_tcp_failed().empty() : the_outHandle >= 0;
}

void akai_pause(int milliseconds)
{
	const double end = host.clock->counter() + milliseconds / 1000.0;
	for (;;) {
		const double rest = (end - host.clock->counter()) * 1000;
		if (rest <= 0)
			return;
		host.ui->pump(static_cast<int>(std::ceil(std::min(rest, 100.0))));
	}
}

bool akai_interrupted(const akai_answer &answer)
{
	return answer.port_failed || progress_stopped();
}

int akai_kept_count(int count, int room, const char *what)
{
	if (count > room)
		log_line("[W] The sampler counts %d %s, %d are read\r\n", count, what, room);
	return std::min(count, room);
}

} // namespace velmor
