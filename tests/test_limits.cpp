// test_limits.cpp - a system that goes on without end fails its test and does not hang it

#include "tests/support/test_host.h"

namespace velmor
{

TEST_F(host_test, what_never_ends_fails)
{
	EXPECT_THROW(for (;;) host.ui->pump(100), limit_reached);
	EXPECT_THROW(for (;;) host.ui->pump(0), limit_reached);
	h.limits.calls_at_a_moment = 1000;
	EXPECT_THROW(for (;;) host.clock->sleep_ms(50), limit_reached);
	EXPECT_THROW(for (;;) log_line("[I] again\r\n"), limit_reached);
	h.limits.disk_bytes = 100000;
	int file = -1;
	ASSERT_EQ(host.files->open("endless", file_create, &file), 0);
	const std::vector<u8> block(1000);
	EXPECT_THROW(for (;;) host.files->write(file, block.data(), block.size()), limit_reached);
	host.files->close(file);
}

// Another test may have left these behind, in whatever order they run.
TEST_F(host_test, each_begins_like_a_program_that_starts)
{
	stop_progress();
	use_tcp = 1;
	tcp_port = 1;
	selected_midi_in_interface = the_outHandle = 3;
	conf_sampler = { "old" };
	test_host fresh;
	EXPECT_FALSE(progress_stopped());
	EXPECT_EQ(use_tcp, 0);
	EXPECT_EQ(tcp_port, 9999);
	EXPECT_EQ(selected_midi_in_interface, -1);
	EXPECT_EQ(the_outHandle, -1);
	EXPECT_TRUE(conf_sampler.empty());
}

} // namespace velmor
