// test_alsa_thru.cpp - what an input passes on, between what is written to the output

#include "platform/alsa/ports.h"
#include "tests/support/test_host.h"

namespace
{

using namespace velmor;

// Three bytes are a message; real time stands for itself.
int by_threes(midi_sorter *sorter, unsigned char byte, unsigned char *message)
{
	if (byte >= 0xF8) {
		message[0] = byte;
		return 1;
	}
	sorter->message[sorter->count++] = byte;
	if (sorter->count < 3)
		return 0;
	std::copy_n(sorter->message, 3, message);
	sorter->count = 0;
	return 3;
}

class alsa_thru : public testing::Test
{
protected:
	alsa_thru()
	{
		in.listening = true;
		in.capacity = 10000;
		in.thru.to = port;
		in.thru.judge = by_threes;
	}
	void write(std::string_view bytes)
	{
		const std::vector<u8> run = hex(bytes);
		port->out.add(run.data(), run.size());
	}
	void comes(std::string_view bytes)
	{
		const std::vector<u8> run = hex(bytes);
		in.take(run.data(), run.size());
	}
	std::shared_ptr<output_port> port = std::make_shared<output_port>();
	receiver in;
};

TEST_F(alsa_thru, nothing_falls_into_a_message_that_is_written_in_parts)
{
	comes("90 3C 40");
	write("F0 47 FE"); // real time ends no message
	comes("91 3D");
	comes("41 F8 80 3C 40");
	EXPECT_EQ(port->out.waiting, hex("90 3C 40 F0 47 FE F8"));
	write("01 F7");
	EXPECT_EQ(port->out.waiting, hex("90 3C 40 F0 47 FE F8 01 F7 91 3D 41 80 3C 40"));
	comes("92 01 02");
	EXPECT_EQ(std::vector<u8>(port->out.waiting.end() - 3, port->out.waiting.end()),
		hex("92 01 02"));
	EXPECT_EQ(in.kept.size(), 13u) << "all of it is heard, too";
}

TEST_F(alsa_thru, what_waits_has_a_bound)
{
	write("F0");
	comes("90*9000 F8");
	EXPECT_LE(port->out.held.size(), 4096u);
	EXPECT_EQ(port->out.held.size() % 3, 0u);
	write("F7");
	comes("F8*400000"); // faster than any cable sends it
	EXPECT_LE(port->out.waiting.size(), 1u << 18);
	const std::size_t waiting = port->out.waiting.size();
	port->out.failed = ENODEV;
	comes("90*3 F8");
	EXPECT_EQ(port->out.waiting.size(), waiting);
}

} // namespace
