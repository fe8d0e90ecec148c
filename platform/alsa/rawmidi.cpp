// rawmidi.cpp - ALSA raw MIDI: device files, byte for byte
//
// Observed: the kernel tells an input overrun nowhere but in the port's status, and
// closing an output waits up to 10 seconds for its bytes. The wake-up mark of an output
// stands one byte below the size of its buffer, the highest that the library allows, so
// that poll reports it writable when at most one byte has not been taken by the hardware.

#include "platform/alsa/ports.h"
#include <alsa/asoundlib.h>
#include <cerrno>
#include <chrono>
#include <poll.h>

namespace velmor
{

static constexpr std::size_t kernel_input_bytes = 65536;
static constexpr std::size_t kernel_output_bytes = 16384;

// ---- List -------------------------------------------------------------------------------

// The name of a port, led by the card's where it does not say it already.
static std::string port_name(const std::string &card, const std::string &port)
{
	if (port.empty() || card.empty())
		return card + port;
	return port.find(card) == port.npos ? card + ": " + port : port;
}

static void list_device(snd_ctl_t *control, snd_rawmidi_info_t *info, const std::string &card_name,
	int card, int device, std::vector<alsa_port> *ports)
{
	const std::string address = "hw:" + std::to_string(card) + "," + std::to_string(device);
	unsigned subdevices = 1;
	for (unsigned sub = 0; sub < subdevices; sub++) {
		snd_rawmidi_info_set_subdevice(info, sub);
		if (snd_ctl_rawmidi_info(control, info) < 0)
			return;
		subdevices = snd_rawmidi_info_get_subdevices_count(info);
		const std::string own = snd_rawmidi_info_get_subdevice_name(info);
		alsa_port port;
		port.card = card;
		// Subdevices without names are interchangeable: one port, and ALSA picks a free one.
		port.device = own.empty() ? address : address + "," + std::to_string(sub);
		port.name =
			port_name(card_name, own.empty() ? snd_rawmidi_info_get_name(info) : own);
		ports->push_back(port);
		if (own.empty())
			return;
	}
}

static void list_card(int card, bool outputs, std::vector<alsa_port> *ports)
{
	snd_ctl_t *control;
	if (snd_ctl_open(&control, ("hw:" + std::to_string(card)).c_str(), SND_CTL_NONBLOCK) < 0)
		return;
	snd_ctl_card_info_t *about;
	snd_ctl_card_info_alloca(&about);
	const bool named = snd_ctl_card_info(control, about) >= 0;
	const std::string card_name = named ? snd_ctl_card_info_get_name(about) : "";
	snd_rawmidi_info_t *info;
	snd_rawmidi_info_alloca(&info);
	for (int device = -1; snd_ctl_rawmidi_next_device(control, &device) >= 0 && device >= 0;) {
		snd_rawmidi_info_set_device(info, device);
		snd_rawmidi_info_set_stream(
			info, outputs ? SND_RAWMIDI_STREAM_OUTPUT : SND_RAWMIDI_STREAM_INPUT);
		list_device(control, info, card_name, card, device, ports);
	}
	snd_ctl_close(control);
}

void list_raw_ports(bool outputs, std::vector<alsa_port> *ports)
{
	for (int card = -1; snd_card_next(&card) >= 0 && card >= 0;)
		list_card(card, outputs, ports);
}

// ---- Common to both directions ----------------------------------------------------------

static int set_buffer(snd_rawmidi_t *raw, std::size_t bytes, std::size_t wake_at)
{
	snd_rawmidi_params_t *params;
	snd_rawmidi_params_alloca(&params);
	int result = snd_rawmidi_params_current(raw, params);
	if (result >= 0)
		result = snd_rawmidi_params_set_buffer_size(raw, params, bytes);
	if (result >= 0)
		result = snd_rawmidi_params_set_avail_min(raw, params, wake_at);
	// Otherwise ALSA sends a byte FE of its own when the port is closed.
	if (result >= 0)
		result = snd_rawmidi_params_set_no_active_sensing(raw, params, 1);
	if (result >= 0)
		result = snd_rawmidi_params(raw, params);
	return result < 0 ? -result : 0;
}

// Sleep until the port is ready or the bell rings. 0, or ENODEV when the port is gone.
static int wait_for(snd_rawmidi_t *raw, const bell &b, bool port_too, bool *ready)
{
	pollfd files[2] = { { .fd = b.fd, .events = POLLIN, .revents = 0 } };
	if (snd_rawmidi_poll_descriptors(raw, files + 1, 1) != 1)
		return ENODEV;
	if (!port_too)
		files[1].events = 0; // errors are told even so
	while (poll(files, 2, -1) < 0)
		if (errno != EINTR)
			return errno;
	*ready = files[1].revents & (POLLIN | POLLOUT);
	return files[1].revents & (POLLERR | POLLHUP | POLLNVAL) ? ENODEV : 0;
}

// ---- Input ------------------------------------------------------------------------------

struct raw_input : input_port {
	snd_rawmidi_t *raw = nullptr;
	std::atomic<bool> ending = false;

	~raw_input() override
	{
		ending = true;
		stop.ring();
		if (reader.joinable())
			reader.join();
		if (raw)
			snd_rawmidi_close(raw);
	}
};

static void look_for_overrun(input_port *port)
{
	snd_rawmidi_status_t *status;
	snd_rawmidi_status_alloca(&status);
	const int result = snd_rawmidi_status(static_cast<raw_input *>(port)->raw, status);
	if (result < 0)
		port->in.fail(-result);
	else if (snd_rawmidi_status_get_xruns(status) > 0)
		port->in.fail(input_overrun);
}

// Take all that is there. False when the port failed.
static bool read_available(raw_input *port)
{
	unsigned char block[4096];
	for (;;) {
		const ssize_t n = snd_rawmidi_read(port->raw, block, sizeof block);
		if (n > 0)
			port->in.take(block, static_cast<std::size_t>(n));
		else if (n == -EINTR)
			continue;
		else if (n < 0 && n != -EAGAIN)
			port->in.fail(static_cast<int>(-n));
		if (n <= 0)
			return n == 0 || n == -EAGAIN;
	}
}

static void hand_on_old_bytes(input_port *port)
{
	read_available(static_cast<raw_input *>(port));
	look_for_overrun(port);
}

static void read_until_the_end(raw_input *port)
{
	for (bool alive = true; alive;) {
		bool ready;
		const int code = wait_for(port->raw, port->stop, true, &ready);
		if (port->ending)
			return;
		{
			const std::lock_guard hold(port->in.lock);
			if (ready && !code)
				alive = read_available(port);
			look_for_overrun(port);
			if (code)
				port->in.fail(code);
		}
		alive = alive && !code;
		wake_the_system();
	}
}

int open_raw_input(const alsa_port &port, std::unique_ptr<input_port> *opened)
{
	auto fresh = std::make_unique<raw_input>();
	const int result =
		snd_rawmidi_open(&fresh->raw, nullptr, port.device.c_str(), SND_RAWMIDI_NONBLOCK);
	if (result < 0) {
		fresh->raw = nullptr;
		return -result;
	}
	if (const int code = set_buffer(fresh->raw, kernel_input_bytes, 1))
		return code;
	fresh->catch_up = hand_on_old_bytes;
	fresh->look = look_for_overrun;
	fresh->reader = std::thread(read_until_the_end, fresh.get());
	*opened = std::move(fresh);
	return 0;
}

// ---- Output -----------------------------------------------------------------------------

struct raw_output : output_port {
	snd_rawmidi_t *raw = nullptr;
	bool in_kernel = false; // the kernel may still hold bytes; out.lock guards it

	~raw_output() override
	{
		ending = true;
		changed.ring();
		if (writer.joinable())
			writer.join();
		if (!raw)
			return;
		snd_rawmidi_drop(raw); // what is left would hold up the close
		snd_rawmidi_close(raw);
	}
};

static long bytes_in_kernel(output_port *port)
{
	raw_output *self = static_cast<raw_output *>(port);
	if (!self->in_kernel)
		return 0;
	snd_rawmidi_status_t *status;
	snd_rawmidi_status_alloca(&status);
	const int result = snd_rawmidi_status(self->raw, status);
	if (result < 0) {
		self->out.failed = -result;
		return 0;
	}
	const std::size_t free_bytes = snd_rawmidi_status_get_avail(status);
	return free_bytes < kernel_output_bytes
		       ? static_cast<long>(kernel_output_bytes - free_bytes)
		       : 0;
}

// With out.lock held and the kernel's buffer all but empty: fill it again. 0 or a code.
static int refill(raw_output *port)
{
	std::vector<unsigned char> &waiting = port->out.waiting;
	if (waiting.empty()) {
		port->in_kernel = bytes_in_kernel(port) > 0;
		return port->out.failed;
	}
	const ssize_t n = snd_rawmidi_write(port->raw, waiting.data(), waiting.size());
	if (n < 0)
		return n == -EAGAIN || n == -EINTR ? 0 : static_cast<int>(-n);
	waiting.erase(waiting.begin(), waiting.begin() + n);
	port->in_kernel = port->in_kernel || n > 0;
	return 0;
}

static void write_until_the_end(raw_output *port)
{
	for (int code = 0; !code;) {
		bool busy, ready = false, last_byte = false;
		{
			const std::lock_guard hold(port->out.lock);
			busy = port->in_kernel || !port->out.waiting.empty();
		}
		code = wait_for(port->raw, port->changed, busy, &ready);
		port->changed.silence();
		if (port->ending)
			return;
		if (!ready && !code)
			continue;
		{
			const std::lock_guard hold(port->out.lock);
			const bool nothing_waited = port->out.waiting.empty();
			if (!code)
				code = refill(port);
			port->out.failed = code;
			last_byte = nothing_waited && port->in_kernel;
		}
		if (last_byte && !code) // takes a cable a third of a millisecond
			std::this_thread::sleep_for(std::chrono::microseconds(400));
		else
			wake_the_system();
	}
}

int open_raw_output(const alsa_port &port, std::unique_ptr<output_port> *opened)
{
	auto fresh = std::make_unique<raw_output>();
	const int result =
		snd_rawmidi_open(nullptr, &fresh->raw, port.device.c_str(), SND_RAWMIDI_NONBLOCK);
	if (result < 0) {
		fresh->raw = nullptr;
		return -result;
	}
	if (const int code = set_buffer(fresh->raw, kernel_output_bytes, kernel_output_bytes - 1))
		return code;
	fresh->on_the_way = bytes_in_kernel;
	fresh->writer = std::thread(write_until_the_end, fresh.get());
	*opened = std::move(fresh);
	return 0;
}

} // namespace velmor
