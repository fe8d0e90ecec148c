// sequencer.cpp - ALSA sequencer ports: soft synths and the kernel's own loop
//
// Observed: one event of more than a few hundred bytes, or many of them with the pools
// of 200 cells that a client begins with, and bytes of a System Exclusive message vanish
// without an error at the sender. In events of 256 bytes with pools of 2000 cells
// nothing is lost. A receiver whose own pool is small still needs time, so a long
// message is paced at eight times the speed of a MIDI cable.

#include "platform/alsa/ports.h"
#include <algorithm>
#include <alsa/asoundlib.h>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <set>

namespace velmor
{

static constexpr char client_name[] = "VELMOR Sysex-Tools";
static constexpr std::size_t event_bytes = 256;
static constexpr std::size_t pool_cells = 2000;
static constexpr int pause_ms = 10; // after each full event
static constexpr int tries_ms = 2000;

// Clients of this back end, which are not ports to choose.
static std::mutex own_lock;
static std::set<int> own_clients;

static void close_client(snd_seq_t *client)
{
	if (!client)
		return;
	{
		const std::lock_guard hold(own_lock);
		own_clients.erase(snd_seq_client_id(client));
	}
	snd_seq_close(client);
}

static int open_client(snd_seq_t **client)
{
	const int result = snd_seq_open(client, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK);
	if (result < 0) {
		*client = nullptr;
		return -result;
	}
	const std::lock_guard hold(own_lock);
	own_clients.insert(snd_seq_client_id(*client));
	snd_seq_set_client_name(*client, client_name);
	return 0;
}

// ---- List -------------------------------------------------------------------------------

static bool mirrors_raw_port(snd_seq_client_info_t *client, const std::vector<alsa_port> &raw)
{
	if (snd_seq_client_info_get_type(client) != SND_SEQ_KERNEL_CLIENT)
		return false;
	const int card = snd_seq_client_info_get_card(client);
	return std::any_of(raw.begin(), raw.end(),
		[card](const alsa_port &port) { return port.card == card; });
}

static bool is_listed(snd_seq_client_info_t *client, const std::vector<alsa_port> &raw)
{
	const int id = snd_seq_client_info_get_client(client);
	const std::lock_guard hold(own_lock);
	return id != SND_SEQ_CLIENT_SYSTEM && !own_clients.contains(id) &&
	       !mirrors_raw_port(client, raw);
}

static void list_client(
	snd_seq_t *seq, snd_seq_client_info_t *client, bool outputs, std::vector<alsa_port> *ports)
{
	const unsigned wanted = outputs ? SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE
					: SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ;
	const std::string who = snd_seq_client_info_get_name(client);
	snd_seq_port_info_t *info;
	snd_seq_port_info_alloca(&info);
	snd_seq_port_info_set_client(info, snd_seq_client_info_get_client(client));
	snd_seq_port_info_set_port(info, -1);
	while (snd_seq_query_next_port(seq, info) >= 0) {
		const unsigned can = snd_seq_port_info_get_capability(info);
		if ((can & wanted) != wanted || (can & SND_SEQ_PORT_CAP_NO_EXPORT))
			continue;
		alsa_port port;
		const std::string own = snd_seq_port_info_get_name(info);
		port.name = own.find(who) == own.npos ? who + ": " + own : own;
		port.client = snd_seq_port_info_get_client(info);
		port.port = snd_seq_port_info_get_port(info);
		ports->push_back(port);
	}
}

void list_sequencer_ports(
	bool outputs, const std::vector<alsa_port> &raw, std::vector<alsa_port> *ports)
{
	snd_seq_t *seq;
	if (open_client(&seq))
		return;
	snd_seq_client_info_t *client;
	snd_seq_client_info_alloca(&client);
	snd_seq_client_info_set_client(client, -1);
	while (snd_seq_query_next_client(seq, client) >= 0)
		if (is_listed(client, raw))
			list_client(seq, client, outputs, ports);
	close_client(seq);
}

// ---- Input ------------------------------------------------------------------------------

struct sequencer_input : input_port {
	snd_seq_t *seq = nullptr;
	snd_midi_event_t *decoder = nullptr;
	std::atomic<bool> ending = false;

	~sequencer_input() override
	{
		ending = true;
		stop.ring();
		if (reader.joinable())
			reader.join();
		if (decoder)
			snd_midi_event_free(decoder);
		close_client(seq);
	}
};

static void take_event(sequencer_input *port, const snd_seq_event_t *event)
{
	unsigned char bytes[16];
	switch (event->type) {
	case SND_SEQ_EVENT_SYSEX:
		port->in.take(static_cast<const unsigned char *>(event->data.ext.ptr),
			event->data.ext.len);
		break;
	case SND_SEQ_EVENT_PORT_UNSUBSCRIBED: // the other end left, or someone cut the line
		port->in.fail(ENODEV);
		break;
	default: {
		const long n = snd_midi_event_decode(port->decoder, bytes, sizeof bytes, event);
		if (n > 0)
			port->in.take(bytes, static_cast<std::size_t>(n));
	}
	}
}

// Take all that is there, with in.lock held. False when the client failed.
static bool take_events(sequencer_input *port)
{
	for (;;) {
		snd_seq_event_t *event = nullptr;
		const int result = snd_seq_event_input(port->seq, &event);
		if (result == -EAGAIN)
			return true;
		if (result == -ENOSPC)
			port->in.fail(input_overrun); // the kernel has emptied its pool
		else if (result < 0 && result != -EINTR)
			port->in.fail(-result);
		else if (event)
			take_event(port, event);
		if (result < 0 && result != -ENOSPC && result != -EINTR)
			return false;
	}
}

static void read_events(sequencer_input *port)
{
	pollfd files[2] = { { .fd = port->stop.fd, .events = POLLIN, .revents = 0 } };
	if (snd_seq_poll_descriptors(port->seq, files + 1, 1, POLLIN) != 1)
		return;
	for (bool alive = true; alive;) {
		if (poll(files, 2, -1) < 0 && errno != EINTR)
			return;
		if (port->ending)
			return;
		{
			const std::lock_guard hold(port->in.lock);
			alive = take_events(port);
		}
		wake_the_system();
	}
}

int open_sequencer_input(const alsa_port &port, std::unique_ptr<input_port> *opened)
{
	auto fresh = std::make_unique<sequencer_input>();
	if (const int code = open_client(&fresh->seq))
		return code;
	if (const int result = snd_midi_event_new(event_bytes, &fresh->decoder); result < 0)
		return -result;
	snd_midi_event_no_status(fresh->decoder, 1); // every message with its own status byte
	snd_seq_set_client_pool_input(fresh->seq, pool_cells);
	const int own = snd_seq_create_simple_port(fresh->seq, "in",
		SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE | SND_SEQ_PORT_CAP_NO_EXPORT,
		SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
	if (own < 0)
		return -own;
	if (const int result = snd_seq_connect_from(fresh->seq, own, port.client, port.port);
		result < 0)
		return -result;
	fresh->catch_up = [](input_port *p) { take_events(static_cast<sequencer_input *>(p)); };
	fresh->look = [](input_port *) {};
	fresh->reader = std::thread(read_events, fresh.get());
	*opened = std::move(fresh);
	return 0;
}

// ---- Output -----------------------------------------------------------------------------

struct sequencer_output : output_port {
	snd_seq_t *seq = nullptr;
	snd_midi_event_t *encoder = nullptr;
	alsa_port to;
	int own_port = -1;
	std::vector<unsigned char> exclusive; // System Exclusive bytes not sent yet
	bool in_exclusive = false;
	std::size_t taken = 0; // bytes the thread has out of the queue; out.lock guards it

	~sequencer_output() override
	{
		ending = true;
		changed.ring();
		if (writer.joinable())
			writer.join();
		if (encoder)
			snd_midi_event_free(encoder);
		close_client(seq);
	}
};

// Sleep, or less when the port is being closed. False when it is.
static bool rest(sequencer_output *port, int milliseconds)
{
	pollfd file = { .fd = port->changed.fd, .events = POLLIN, .revents = 0 };
	for (; milliseconds > 0 && !port->ending; milliseconds -= 2) {
		poll(&file, 1, 2);
		if (file.revents)
			std::this_thread::sleep_for(std::chrono::milliseconds(2));
	}
	return !port->ending;
}

// Send one event, again while the pools are full.
static int send_event(sequencer_output *port, snd_seq_event_t *event)
{
	snd_seq_ev_set_source(event, port->own_port);
	snd_seq_ev_set_dest(event, port->to.client, port->to.port);
	snd_seq_ev_set_direct(event);
	for (int waited = 0;; waited += 2) {
		const int result = snd_seq_event_output_direct(port->seq, event);
		if (result >= 0)
			return 0;
		if (result != -EAGAIN && result != -ENOMEM && result != -EINTR)
			return -result;
		if (waited >= tries_ms || !rest(port, 2))
			return receiver_too_slow;
	}
}

static int send_exclusive(sequencer_output *port)
{
	if (port->exclusive.empty())
		return 0;
	snd_seq_event_t event;
	snd_seq_ev_clear(&event);
	snd_seq_ev_set_sysex(
		&event, static_cast<unsigned>(port->exclusive.size()), port->exclusive.data());
	const bool full = port->exclusive.size() == event_bytes;
	const int code = send_event(port, &event);
	port->exclusive.clear();
	if (!code && full)
		rest(port, pause_ms);
	return code;
}

static int send_other(sequencer_output *port, unsigned char byte)
{
	snd_seq_event_t event;
	snd_seq_ev_clear(&event);
	if (snd_midi_event_encode_byte(port->encoder, byte, &event) != 1)
		return 0;
	return send_event(port, &event);
}

// A System Exclusive message runs from F0 to F7, or to any status byte but those of real
// time, which may stand within it.
static int send_byte(sequencer_output *port, unsigned char byte)
{
	const bool real_time = byte >= 0xF8;
	if (byte == 0xF0 || (port->in_exclusive && !real_time && byte >= 0x80 && byte != 0xF7)) {
		if (const int code = send_exclusive(port))
			return code;
		snd_midi_event_reset_encode(port->encoder);
		port->in_exclusive = byte == 0xF0;
	}
	if (!port->in_exclusive)
		return send_other(port, byte);
	if (real_time) {
		const int code = send_exclusive(port);
		return code ? code : send_other(port, byte);
	}
	port->exclusive.push_back(byte);
	port->in_exclusive = byte != 0xF7;
	return !port->in_exclusive || port->exclusive.size() == event_bytes ? send_exclusive(port)
									    : 0;
}

static void write_events(sequencer_output *port)
{
	for (int code = 0; !code && !port->ending;) {
		std::vector<unsigned char> bytes;
		{
			const std::lock_guard hold(port->out.lock);
			bytes.swap(port->out.waiting);
			port->taken = bytes.size();
		}
		for (std::size_t i = 0; i < bytes.size() && !code && !port->ending; i++)
			code = send_byte(port, bytes[i]);
		// Part of a message was handed over: it is not held back for the rest.
		if (!code)
			code = send_exclusive(port);
		{
			const std::lock_guard hold(port->out.lock);
			port->taken = 0;
			port->out.failed = code;
		}
		if (!bytes.empty())
			wake_the_system();
		pollfd file = { .fd = port->changed.fd, .events = POLLIN, .revents = 0 };
		{
			const std::lock_guard hold(port->out.lock);
			if (!port->out.waiting.empty())
				continue;
		}
		if (!code && !port->ending)
			poll(&file, 1, -1);
		port->changed.silence();
	}
}

int open_sequencer_output(const alsa_port &port, std::unique_ptr<output_port> *opened)
{
	auto fresh = std::make_unique<sequencer_output>();
	fresh->to = port;
	if (const int code = open_client(&fresh->seq))
		return code;
	if (const int result = snd_midi_event_new(event_bytes, &fresh->encoder); result < 0)
		return -result;
	snd_seq_set_client_pool_output(fresh->seq, pool_cells);
	fresh->own_port = snd_seq_create_simple_port(fresh->seq, "out",
		SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ | SND_SEQ_PORT_CAP_NO_EXPORT,
		SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
	if (fresh->own_port < 0)
		return -fresh->own_port;
	// Events are addressed to the port, so that its end is an error and not silence; the
	// subscription is for ports that open their hardware by it.
	if (const int result =
			snd_seq_connect_to(fresh->seq, fresh->own_port, port.client, port.port);
		result < 0)
		return -result;
	fresh->on_the_way = [](output_port *p) {
		return static_cast<long>(static_cast<sequencer_output *>(p)->taken);
	};
	fresh->writer = std::thread(write_events, fresh.get());
	*opened = std::move(fresh);
	return 0;
}

} // namespace velmor
