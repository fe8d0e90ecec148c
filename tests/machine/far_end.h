// far_end.h - the other end of a MIDI cable, held through ALSA itself
//
// Shares nothing with the back end under test.

#pragma once
#include <alsa/asoundlib.h>
#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <vector>

namespace velmor
{

using u8 = std::uint8_t;

// Deadline for what a test expects to come.
inline constexpr auto patience = std::chrono::seconds(15);

class raw_far_end
{
public:
	explicit raw_far_end(const char *device)
	{
		EXPECT_EQ(snd_rawmidi_open(&in, &out, device, SND_RAWMIDI_NONBLOCK), 0);
		snd_rawmidi_params_t *params;
		snd_rawmidi_params_alloca(&params);
		snd_rawmidi_params_current(in, params);
		snd_rawmidi_params_set_buffer_size(in, params, 262144);
		EXPECT_EQ(snd_rawmidi_params(in, params), 0);
		u8 byte;
		while (snd_rawmidi_read(in, &byte, 1) > 0) // the first read also switches it on
			;
		snd_rawmidi_nonblock(out, 0);
	}
	~raw_far_end()
	{
		snd_rawmidi_close(in);
		snd_rawmidi_close(out);
	}
	raw_far_end(const raw_far_end &) = delete;

	void write(const std::vector<u8> &bytes)
	{
		EXPECT_EQ(snd_rawmidi_write(out, bytes.data(), bytes.size()),
			static_cast<ssize_t>(bytes.size()));
		snd_rawmidi_drain(out);
	}

	// What is there now, after a rest of at most so many milliseconds.
	std::vector<u8> take(int milliseconds)
	{
		pollfd file;
		snd_rawmidi_poll_descriptors(in, &file, 1);
		std::vector<u8> block(65536);
		// Both directions are one file, which blocks since the constructor.
		if (poll(&file, 1, milliseconds) != 1 || !(file.revents & POLLIN))
			return {};
		const ssize_t n = snd_rawmidi_read(in, block.data(), block.size());
		block.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
		return block;
	}

	std::vector<u8> read(std::size_t count)
	{
		std::vector<u8> got;
		const auto end = std::chrono::steady_clock::now() + patience;
		while (got.size() < count && std::chrono::steady_clock::now() < end) {
			const std::vector<u8> block = take(20);
			got.insert(got.end(), block.begin(), block.end());
		}
		return got;
	}

private:
	snd_rawmidi_t *in = nullptr, *out = nullptr;
};

// A program with one port, with the small pools that a client has by itself.
class soft_synth
{
public:
	explicit soft_synth(const char *name)
	{
		EXPECT_EQ(snd_seq_open(&seq, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK), 0);
		snd_seq_set_client_name(seq, name);
		port = snd_seq_create_simple_port(seq, "synth",
			SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE |
				SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ,
			SND_SEQ_PORT_TYPE_MIDI_GENERIC);
		snd_midi_event_new(16, &decoder);
		snd_midi_event_no_status(decoder, 1);
	}
	~soft_synth()
	{
		snd_midi_event_free(decoder);
		snd_seq_close(seq);
	}
	soft_synth(const soft_synth &) = delete;

	// System Exclusive to whoever listens.
	void write(std::vector<u8> bytes)
	{
		for (std::size_t at = 0; at < bytes.size(); at += 256) {
			snd_seq_event_t event;
			snd_seq_ev_clear(&event);
			snd_seq_ev_set_source(&event, port);
			snd_seq_ev_set_subs(&event);
			snd_seq_ev_set_direct(&event);
			snd_seq_ev_set_sysex(&event,
				static_cast<unsigned>(
					std::min<std::size_t>(256, bytes.size() - at)),
				bytes.data() + at);
			snd_seq_event_output_direct(seq, &event);
		}
	}

	std::vector<u8> read(std::size_t count)
	{
		std::vector<u8> got;
		const auto end = std::chrono::steady_clock::now() + patience;
		pollfd file;
		snd_seq_poll_descriptors(seq, &file, 1, POLLIN);
		while (got.size() < count && std::chrono::steady_clock::now() < end) {
			poll(&file, 1, 20);
			snd_seq_event_t *event = nullptr;
			for (int result; (result = snd_seq_event_input(seq, &event)) != -EAGAIN;) {
				lost += result == -ENOSPC;
				if (result >= 0)
					take(event, &got);
			}
		}
		return got;
	}
	int overruns() const { return lost; }

private:
	snd_seq_t *seq = nullptr;
	snd_midi_event_t *decoder = nullptr;
	int port = -1, lost = 0;

	void take(const snd_seq_event_t *event, std::vector<u8> *got)
	{
		if (event->type == SND_SEQ_EVENT_SYSEX) {
			const u8 *bytes = static_cast<const u8 *>(event->data.ext.ptr);
			got->insert(got->end(), bytes, bytes + event->data.ext.len);
			return;
		}
		u8 bytes[16];
		const long n = snd_midi_event_decode(decoder, bytes, sizeof bytes, event);
		if (n > 0)
			got->insert(got->end(), bytes, bytes + n);
	}
};

} // namespace velmor
