// test_usb_transport.cpp - finding, waking, opening and talking to samplers on USB

#include "src/controls.h"
#include "src/velmor_outcome.h"
#include "src/velmor_window.h"
#include "tests/support/usb_fixture.h"

using namespace velmor;

namespace
{

// The scan of an S5000 of that name, up to its entry, and the test of the entry.
const char *const s5000_scan = R"(
	# wake up
	> 03 14
	> 04 03
	# first query, answered in two packets
	> 10 0B 00 F0 47 5E 20 00 00 00 01 00 01 F7
	< F0 47 5E 20 00 4F 4F 00 01 F7
	< F0 47 5E 20 00 00 44 00 01 F7
	# second query
	> 10 0B 00 F0 47 5E 20 00 00 00 03 01 04 F7
	< F0 47 5E 20 00 00 44 00 03 F7
	# name query, after what the queries before left behind
	> 10 0A 00 F0 47 5E 20 00 00 02 03 05 F7
	< F0 47 5E 20 00 00 4F 02 03 F7
	< F0 47 5E 20 00 00 44 02 03 F7
	< F0 47 5E 20 00 00 52 02 03 'Studio' 00 F7
)";
const char *const s5000_open = R"(
	# open
	> 03 14
	> 04 03
	> 10 0B 00 F0 47 5E 20 00 00 00 01 00 01 F7
	< F0 47 5E 23 00 00 4F 00 01 F7
	< F0 47 5E 23 00 00 44 00 01 F7
)";
// The channel is now 3: 20 or 03. Sum of the command: 04 + 04.
const char *const s5000_test = R"(
	> 10 0A 00 F0 47 5E 23 00 00 04 04 08 F7
	< F0 47 5E 23 00 00 44 04 04 F7
)";
const char *const z4_scan = R"(
	# wake up, twice
	> 03 01
	> 03 01
	# first query
	> 10 08 00 F0 47 5F 00 00 01 00 F7
	< F0 47 5F 00 4F F7
	< F0 47 5F 00 44 F7
	# name
	> 10 07 00 F0 47 5F 00 07 01 F7
	< F0 47 5F 00 52 07 01 00 'Rack' 00 F7
	# hardware
	> 10 07 00 F0 47 5F 00 04 04 F7
	< F0 47 5F 00 4F 04 04 F7
)";
const char *const z4_open = R"(
	# open
	> 03 01
)";
const char *const z4_test = R"(
	> 10 07 00 F0 47 5F 00 04 04 F7
	< F0 47 5F 00 52 04 04 00 01 F7
)";

class usb_transport : public usb_test
{
protected:
	// An open Z4.
	_usbdev *opened(transcript_usb *wire)
	{
		_usbdev *usb = listed(model_z4);
		wire->play("> 03 01");
		EXPECT_TRUE(open_midi_usb(usb));
		return usb;
	}
	// Ask it for its version.
	bool ask(_usbdev *usb, int room = 1024)
	{
		static constexpr u8 version[] = { 0x04, 0x00 };
		return _sysex_midi_usb(usb, version, 2, answer, room, &received, "here.cpp", 9);
	}
	u8 answer[1024];
	int received = -1;
};
const char *const ask_version = "> 10 07 00 F0 47 5F 00 04 00 F7";

TEST_F(usb_transport, an_s5000_is_found_by_its_own_name)
{
	transcript_usb wire(h, 0x5E);
	wire.play(s5000_scan);
	wire.play(s5000_open);
	wire.play(s5000_test);
	init_usb(1);
	EXPECT_EQ(wire.steps_left(), 0);
	ASSERT_EQ(usbdevs, 1);
	EXPECT_STREQ(usbdev[0].usb_name, "Studio");
	EXPECT_STREQ(usbdev[0].device_path, "usb:1");
	EXPECT_EQ(usbdev[0].device_type, 1002);
	EXPECT_EQ(usbdev[0].pipe_id, 2);
	EXPECT_EQ(usb_init_done, 1);
	EXPECT_EQ(wire.reset, hex("02 82"));
	EXPECT_EQ(find_usbdev("Studio"), &usbdev[0]);
	EXPECT_EQ(find_usbdev("studio"), nullptr);
	expect_logged({ "[D] Initializing USB-Subsystem...[FORCED]",
		"[D] PID of AKAI-Device: 94 (0x5E)",
		"[D] QUERIED INTERFACE-ID: 0 --> bLength: 9, bInterfaceClass: 255, "
		"Endpoints: 2",
		"[D] Received S5000/6000 Sampler-Name [Studio]",
		"[D] Device Sysex-Channel: 3 opened", "[D] USB Device closed SYSEX-CHANNEL: [3]" });
	h.forget_log();
	init_usb(0);
	EXPECT_EQ(h.log(),
		(std::vector<std::string>{ "[D] Initializing USB-Subsystem...[NOT FORCED]\r\n",
			"Not initializing USB-Subsystem...(already done)\r\n" }));
}

TEST_F(usb_transport, a_z8_and_an_mpc_differ_by_one_byte)
{
	struct {
		const char *hardware;
		i32 type;
		const char *log;
		const char *name; // at byte 8, or at byte 9 behind a zero
	} rows[] = {
		{ "< F0 47 5F 00 52 04 04 00 00 F7", 1003, "[D] Sampler-Type: Z4", "'Rack' 00" },
		{ "< F0 47 5F 00 52 04 04 00 01 F7", 1003, "[D] Sampler-Type: Z8", "00 'Rack' 00" },
		{ "< F0 47 5F 00 52 04 04 00 02 F7", 1004, "[D] Sampler-Type: MPC", "'Rack' 00" },
	};
	for (const auto &row : rows) {
		transcript_usb wire(h, 0x5F);
		std::string scan = z4_scan;
		scan.replace(scan.find("'Rack' 00"), 9, row.name);
		wire.play(scan.c_str());
		wire.play(row.hardware);
		wire.play(z4_open);
		wire.play(z4_test);
		init_usb(1);
		EXPECT_EQ(wire.steps_left(), 0);
		ASSERT_EQ(usbdevs, 1);
		EXPECT_STREQ(usbdev[0].usb_name, "Rack");
		EXPECT_EQ(usbdev[0].device_type, row.type);
		EXPECT_TRUE(h.logged(row.log));
	}
}

TEST_F(usb_transport, other_devices_and_interfaces_without_an_out_pipe_are_left_alone)
{
	transcript_usb wire(h, 0x5F);
	usb_device other = wire.devices[0], keyboard = other;
	other.vendor = 0x0499;
	keyboard.product = 0x62; // of the same maker
	wire.devices[0].interfaces = {
		{ .number = 0, .interface_class = 1, .pipes = {} },
		{ .number = 1, .interface_class = 3, .pipes = { { 0x81, 3, 8 } } },
		{ .number = 4,
			.interface_class = 255,
			.pipes = { { 0x81, 2, 8 }, { 0x82, 2, 64 }, { 0x02, 2, 32 } } },
	};
	wire.devices.push_back(other);
	wire.devices.push_back(keyboard);
	wire.play(z4_scan);
	wire.play("< F0 47 5F 00 52 04 04 00 00 F7");
	wire.play(z4_open);
	wire.play(z4_test);
	init_usb(1);
	ASSERT_EQ(usbdevs, 1);
	EXPECT_EQ(usbdev[0].interface_index, 2);
	EXPECT_EQ(usbdev[0].packet_size, 64) << "of the IN pipe of that number";
	EXPECT_EQ(wire.opened, 2) << "for the scan and its test";
	EXPECT_EQ(wire.claimed, (std::vector<int>{ 0, 4, 4 }));
	expect_logged({ "[D] Interface-Index: 0, No [OUT] Interface found for this index!",
		"[D] Interface-Index: 1, No [OUT] Interface found for this index!",
		"[D] Interface-Index: 2, [OUT] Interface found for this index and opened "
		"successfully!" });
}

TEST_F(usb_transport, no_device_is_a_finished_scan_and_no_list_ends_the_process)
{
	transcript_usb wire(h, 0x5F);
	wire.devices.clear();
	init_usb(1);
	EXPECT_EQ(usbdevs, 0);
	EXPECT_EQ(usb_init_done, 1);
	wire.can_list = false;
	EXPECT_THROW(init_usb(1), process_ended);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text, "Failed");
}

// A sampler that says nothing costs one deadline, and is not listed. Its answer may still come
// before the next scan, which drops it.
TEST_F(usb_transport, a_silent_device_is_not_listed)
{
	transcript_usb wire(h, 0x5F);
	wire.play("> 03 01 \n > 03 01 \n > 10 08 00 F0 47 5F 00 00 01 00 F7 \n ! silence");
	EXPECT_NEAR(took([] { init_usb(1); }), 5, 0.1);
	EXPECT_EQ(usbdevs, 0);
	EXPECT_EQ(wire.steps_left(), 0);
	EXPECT_TRUE(h.logged("[W] USB device [usb:1] did not answer"));
	wire.play("# late \n ! wait 3000 \n < F0 47 5F 00 44 F7 \n > 03 01 \n > 03 01");
	wire.play(z4_scan);
	wire.play("< F0 47 5F 00 52 04 04 00 00 F7");
	wire.play(z4_open);
	wire.play(z4_test);
	EXPECT_NEAR(took([] { init_usb(1); }), 3.2, 0.1);
	ASSERT_EQ(usbdevs, 1);
	EXPECT_STREQ(usbdev[0].usb_name, "Rack");
}

TEST_F(usb_transport, an_answer_that_never_ends_is_left_after_64_packets)
{
	transcript_usb wire(h, 0x5F);
	wire.play("> 03 01 \n > 03 01 \n > 10 08 00 F0 47 5F 00 00 01 00 F7");
	for (int i = 0; i < 64; i++)
		wire.play("< F0 47 5F 00 4F F7");
	wire.play("> 10 07 00 F0 47 5F 00 07 01 F7 \n ! unplug");
	init_usb(1);
	EXPECT_TRUE(h.logged("[W] USB device does not end its answer"));
	EXPECT_EQ(usbdevs, 0);
}

TEST_F(usb_transport, a_denied_device_names_the_rule_once)
{
	transcript_usb wire(h, 0x5E);
	wire.open_result = usb_denied;
	init_usb(1);
	init_usb(1);
	const std::string line = "[W] No access to the USB sampler at [usb:1]: Access denied: "
				 "install the udev rule 60-velmor.rules\r\n";
	const auto log = h.log();
	EXPECT_EQ(std::count(log.begin(), log.end(), line), 1);
	EXPECT_EQ(usbdevs, 0);
	wire.open_result = usb_busy; // access is granted now
	init_usb(1);
	wire.open_result = usb_denied;
	h.forget_log();
	init_usb(1);
	EXPECT_TRUE(h.logged(line));
}

TEST_F(usb_transport, frames_of_both_families)
{
	transcript_usb wire(h, 0x5E);
	_usbdev *usb = listed(model_s5000);
	wire.play(s5000_open);
	ASSERT_TRUE(open_midi_usb(usb));
	wire.play("> 10 0B 00 F0 47 5E 23 00 00 00 04 00 04 F7 \n < F0 47 5E 23 00 00 44 F7");
	const u8 checksum_off[] = { 0x00, 0x04, 0x00 };
	EXPECT_TRUE(_sysex_midi_usb(usb, checksum_off, 3, answer, 1024, &received, "here.cpp", 1));
	EXPECT_EQ(received, 8);
	EXPECT_EQ(wire.most_in_flight, 2) << "the read waits while the request travels";
	// Sum 02 + 02 + 7F + 7F = 102, in seven bits 02. Nothing is read.
	wire.play("> 10 0C 00 F0 47 5E 23 00 00 02 02 7F 7F 02 F7");
	const u8 sum[] = { 0x02, 0x02, 0x7F, 0x7F };
	EXPECT_TRUE(_sysex_midi_usb(usb, sum, 4, nullptr, 0, &received, "here.cpp", 1));
	EXPECT_EQ(received, 0);
	close_midi_usb(usb);
	close_midi_usb(usb);
	EXPECT_EQ(wire.closed, 1);

	usb = opened(&wire);
	// Stray end bytes stand before the answer; the request goes out in two parts.
	wire.play("! cut 4");
	wire.play(ask_version);
	wire.play("> 47 5F 00 04 00 F7 \n < F7 \n < F7 \n < F0 47 5F 00 52 F7");
	EXPECT_TRUE(ask(usb));
	EXPECT_EQ(received, 6);
	close_midi_usb(usb);
	EXPECT_EQ(wire.steps_left(), 0);
}

// Where an answer ends: with a short packet, or with an end byte in the last place of a full
// one. An empty packet may follow, or not.
TEST_F(usb_transport, ends_of_answers)
{
	struct {
		const char *answer;
		int room, received;
		const char *behind = "";
	} rows[] = {
		{ "< 41*63 F7", 1024, 64 },
		{ "< 41*63 F7", 1024, 64, "<" },
		{ "< 41*127 F7", 1024, 128 },
		{ "< F7*63 41 02", 1024, 65 },
		{ "< 41*130 F7", 1024, 131 },
		// What finds no room is read too, or it would answer the next request.
		{ "< 41*64 41*30 F7", 64, 64 },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.answer);
		transcript_usb wire(h, 0x5F);
		_usbdev *usb = opened(&wire);
		for (int times = 0; times < 2; times++) {
			wire.play(ask_version);
			wire.play(times ? row.behind : "");
			wire.play(row.answer);
			EXPECT_LT(took([&] { EXPECT_TRUE(ask(usb, row.room)); }), 0.01);
			EXPECT_EQ(received, row.received);
		}
		wire.play(ask_version);
		wire.play(row.behind);
		wire.play("< 42 F7");
		EXPECT_TRUE(ask(usb));
		EXPECT_EQ(answer[0], 0x42);
		EXPECT_EQ(wire.steps_left(), 0);
		close_midi_usb(usb);
	}
	EXPECT_TRUE(h.logged("[W] An answer is longer than 64 Bytes, its end is lost"));
}

// What failed tells the line, and the request behind it gets its own answer: on the device that
// is still open, and on the next opening, which wakes a sampler twice more.
TEST_F(usb_transport, failures_of_an_exchange)
{
	const std::string version = ask_version;
	const std::string again = version + " \n < 42 F7";
	struct {
		std::string steps;
		const char *log;
		double seconds;
		const char *late; // bytes
	} rows[] = {
		{ version + " \n ! silence", "[D] USB_READ FAILED! ((here.cpp:9) [Timed out])", 5,
			"< 41 F7 \n < 41 F7" },
		{ version + " \n ! stall", "[D] USB_READ FAILED! ((here.cpp:9) [Stalled])", 0, "" },
		{ "! stall", "[D] USB_WRITE FAILED! ((here.cpp:9) [Stalled])", 0, "< 41*64" },
		{ "! unplug", "[D] USB_WRITE FAILED! ((here.cpp:9) [No such device])", 0, nullptr },
	};
	h.use_sampler(model_z4, 0, "Studio");
	for (const auto &row : rows)
		for (const bool closed : { false, true }) {
			SCOPED_TRACE(row.log);
			transcript_usb wire(h, 0x5F);
			_usbdev *usb = opened(&wire);
			wire.play(row.steps.c_str());
			const line_watch line;
			const double seconds = took([&] { EXPECT_FALSE(ask(usb)); });
			EXPECT_EQ(received, 0);
			EXPECT_NEAR(seconds, row.seconds, 0.01);
			EXPECT_TRUE(h.logged(row.log));
			EXPECT_TRUE(line.failed() && !line.heard());
			if (row.late) {
				wire.play(row.late);
				if (closed) {
					close_midi_usb(usb);
					wire.play("> 03 01 \n > 03 01 \n > 03 01");
					EXPECT_TRUE(open_midi_usb(usb));
				}
				wire.play(again.c_str());
				EXPECT_TRUE(ask(usb));
				EXPECT_EQ(answer[0], 0x42);
				EXPECT_TRUE(line.heard());
			}
			EXPECT_EQ(wire.steps_left(), 0);
			close_midi_usb(usb);
		}
}

// A pipe that does not become quiet is read for two seconds, and the sampler woken then.
TEST_F(usb_transport, a_device_that_does_not_stop_sending)
{
	transcript_usb wire(h, 0x5F);
	_usbdev *usb = opened(&wire);
	usb_unsettled(usb);
	for (int i = 0; i < 40; i++)
		wire.play("! wait 50 \n < 01*8");
	wire.play("> 03 01 \n > 03 01");
	EXPECT_NEAR(took([&] { EXPECT_TRUE(usb_break_off(usb)); }), 2.1, 0.1);
	EXPECT_EQ(wire.steps_left(), 0);
	EXPECT_TRUE(h.logged("[W] USB device does not stop sending"));
	close_midi_usb(usb);
}

// A device may put a length and the data behind it into one packet. A request forgets them.
TEST_F(usb_transport, raw_bytes_left_over_from_a_packet_are_the_next_read)
{
	transcript_usb wire(h, 0x5F);
	_usbdev *usb = opened(&wire);
	wire.play("> 21 00 \n < 00 00 00 46 01*59 \n < 02*11 \n < 05*20");
	const u8 get[] = { 0x21, 0x00 };
	EXPECT_TRUE(write_midi_usb(usb, get, 2));
	EXPECT_TRUE(write_midi_usb(usb, get, 0));
	EXPECT_TRUE(read_midi_usb(usb, answer, 4, &received));
	EXPECT_EQ(received, 4);
	EXPECT_EQ(answer[3], 0x46);
	EXPECT_TRUE(read_midi_usb(usb, answer, 59, &received));
	EXPECT_EQ(received, 59);
	EXPECT_EQ(answer[58], 1);
	EXPECT_TRUE(read_midi_usb(usb, answer, 11, &received));
	EXPECT_EQ(answer[10], 2);
	EXPECT_TRUE(read_midi_usb(usb, answer, 4, &received));
	wire.play(ask_version);
	wire.play("< 41 F7");
	EXPECT_TRUE(ask(usb));
	EXPECT_EQ(received, 2);
	close_midi_usb(usb);
}

// The acknowledge behind it is on its way already, so the rest cannot follow.
TEST_F(usb_transport, an_earlier_run_sent_in_part_is_a_failure)
{
	transcript_usb wire(h, 0x5F);
	_usbdev *usb = opened(&wire);
	wire.play("! cut 2 \n > 01 02 03 \n > 00");
	const u8 block[] = { 1, 2, 3 }, acknowledge[] = { 0 };
	bulk_exchange e;
	std::size_t count = 0;
	begin_exchange(&e, usb, { block, acknowledge }, 4);
	EXPECT_EQ(finish_exchange(&e, answer, &count), exchange_write_failed);
	EXPECT_EQ(wire.steps_left(), 0);
	close_midi_usb(usb);
}

// Nothing but its deadline breaks off a raw transfer: not Stop, and not one of long ago.
TEST_F(usb_transport, stop_does_not_cut_raw_bytes)
{
	transcript_usb wire(h, 0x5F);
	_usbdev *usb = opened(&wire);
	stop_progress();
	wire.play("! wait 3000 \n < 01*64");
	EXPECT_TRUE(read_midi_usb(usb, answer, 64, &received));
	EXPECT_EQ(received, 64);
	wire.play("! silence");
	EXPECT_NEAR(
		took([&] { EXPECT_FALSE(read_midi_usb(usb, answer, 64, &received)); }), 10, 0.1);
	EXPECT_EQ(received, 0);
	forget_stop();
	close_midi_usb(usb);
}

TEST_F(usb_transport, opening_fails_cleanly)
{
	transcript_usb wire(h, 0x5E);
	_usbdev *usb = listed(model_s5000);
	wire.claim_result = usb_busy;
	EXPECT_FALSE(open_midi_usb(usb));
	wire.claim_result = usb_ok;
	wire.play("> 03 14 \n ! stall");
	EXPECT_FALSE(open_midi_usb(usb));
	EXPECT_EQ(usb->device_handle, no_usb_handle);
	EXPECT_EQ(wire.reset, hex("02")) << "the pipe that refused";
	bool second = false;
	for (const std::string &line : h.log())
		second |= line.starts_with("[F] (S5000/6000) USB_WRITE FAILED! 2. Init Sequence (");
	EXPECT_TRUE(second);
	// A second operation from inside a wait of the first does not get the device.
	wire.play("> 03 14 \n > 04 03 \n > 03 14 \n > 04 03");
	wire.play(s5000_open);
	ASSERT_TRUE(open_midi_usb(usb));
	EXPECT_TRUE(usb_in_use());
	EXPECT_FALSE(open_midi_usb(usb));
	init_usb(1);
	EXPECT_EQ(&usbdev[0], usb) << "the list stays while a device is open";
	EXPECT_TRUE(h.logged("[W] Not initializing USB-Subsystem while a device is in use"));
	close_midi_usb(usb);
}

TEST_F(usb_transport, words_for_pipes)
{
	EXPECT_STREQ(get_usb_pipedirection({ 0x82, 2, 64 }), "IN");
	EXPECT_STREQ(get_usb_pipedirection({ 0x02, 2, 64 }), "OUT");
	const char *types[] = { "CONTROL", "ISOCHRONOUS", "BULK", "INTERRUPT", "UNKNOWN" };
	for (u8 type = 0; type < 5; type++)
		EXPECT_STREQ(get_usb_pipetype({ 0x02, type, 64 }), types[type]);
}

TEST_F(usb_transport, the_probe_lists_volumes_and_disks)
{
	transcript_usb wire(h, 0x5F);
	listed(model_z4);
	h.use_sampler(model_z4, 0, "Studio");
	wire.play("> 03 01");
	// 14 bytes, then entries: a header of 6 bytes and a name each. The byte shown with a name
	// is the first of the next header; the last one has too little behind it to go on.
	wire.play("> 10 07 00 F0 47 5F 00 20 05 F7 \n"
		  "< 00*14 01 00*5 'HD' 00 02 00*5 'ROM' 00 F7");
	probe_usb_sampler();
	expect_logged({ "[D] Response-Len(1): 34", "[I] Volume: [HD] [0x02]",
		"[I] Volume: [ROM] [0xF7]" });

	listed(model_s5000);
	h.use_sampler(model_s5000, 0, "Studio");
	wire.play(s5000_open);
	wire.play("> 10 0A 00 F0 47 5E 23 00 00 02 03 05 F7 \n < 00*9 'Studio' 00 F7 \n"
		  "> 10 0A 00 F0 47 5E 23 00 00 10 05 15 F7 \n"
		  "< 00*9 01 02 03 04 05 00 'DISK 1' 00 F7");
	probe_usb_sampler();
	expect_logged({ "[D] Response-Len(2): 23",
		"[D] --> DISK_INFO!!! DISK-ID: 130, FORMAT: 4, SCSI-ID: 5, Type: 3, "
		"Name: [DISK 1]" });
	EXPECT_EQ(wire.steps_left(), 0);
}

TEST_F(usb_transport, a_probe_without_its_device_ends_the_process)
{
	transcript_usb wire(h, 0x5E);
	listed(model_s5000);
	h.use_sampler(model_s5000, 0, "Elsewhere");
	EXPECT_THROW(probe_usb_sampler(), process_ended);
	h.use_sampler(model_s5000, 0, "Studio");
	wire.open_result = usb_no_device;
	EXPECT_THROW(probe_usb_sampler(), process_ended);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{
				   { "Could not find USB-Interface for [Elsewhere]", "FATAL" },
				   { "Could not open USB-Interface for [Studio]", "FATAL" } }));
}

// ---- The dialog ------------------------------------------------------------------------

TEST_F(usb_transport, the_dialog_shows_what_a_sampler_says_of_itself)
{
	transcript_usb wire(h, 0x5E);
	wire.play(s5000_scan);
	wire.play(s5000_open);
	wire.play(s5000_test);
	wire.play(s5000_open);
	wire.play("> 10 0A 00 F0 47 5E 23 00 00 02 04 06 F7 \n < 00*9 01 F7 \n"
		  "> 10 0A 00 F0 47 5E 23 00 00 02 00 02 F7 \n < 00*9 02 0E F7 \n"
		  "> 10 0A 00 F0 47 5E 23 00 00 02 03 05 F7 \n < 00*9 'Studio' 00 F7");
	show_usb_sampler_setup();
	EXPECT_EQ(wire.steps_left(), 0);
	EXPECT_EQ((h.lists[{ window_usb, usb_device_list }]), std::vector<std::string>{ "Studio" });
	EXPECT_EQ((h.texts[{ window_usb, usb_hardware }]), "S6000");
	EXPECT_EQ((h.texts[{ window_usb, usb_version }]), "2.14");
	EXPECT_EQ((h.texts[{ window_usb, usb_name }]), "Studio");
	EXPECT_EQ((h.texts[{ window_usb, usb_exclusive_channel }]), "3");

	save_usb_sampler();
	ASSERT_TRUE(current_sampler);
	EXPECT_STREQ(current_sampler->sampler_description, "Studio");
	EXPECT_STREQ(current_sampler->sampler_usbname, "Studio");
	EXPECT_EQ(current_sampler->sampler_type, 1002u);
	EXPECT_EQ(current_sampler->sampler_sysex, 4u);
	EXPECT_EQ(current_sampler->sampler_midi, 4u);
	EXPECT_EQ(current_sampler->sampler_sysex_channel, 3u);
	const auto file = h.content(h.config + "\\Studio.sampler");
	ASSERT_TRUE(file);
	EXPECT_EQ(file->size(), 536u);
	EXPECT_EQ(hex_text(std::span(*file).subspan(512, 4)), "EA 03 00 00");
	current_sampler = nullptr;
}

TEST_F(usb_transport, a_sampler_gets_another_name)
{
	transcript_usb wire(h, 0x5F);
	listed(model_z4);
	h.selections[{ window_usb, usb_device_list }] = 0;
	update_usb_sampler_name();
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Please enter a name for the sampler.", "INFO" }));
	h.texts[{ window_usb, usb_name }] = "Live";
	// 00 06 01, four letters and the end: 8 bytes and 5 are 0D.
	wire.play("> 03 01 \n > 10 0D 00 F0 47 5F 00 00 06 01 'Live' 00 F7 \n < F0 47 5F 00 44 F7");
	update_usb_sampler_name();
	EXPECT_EQ(wire.steps_left(), 0);
	EXPECT_TRUE(h.logged("[I] Setting new Sampler-Name: [Live] for Sampler: [Studio]"));
	wire.play("> 03 01 \n ! unplug");
	EXPECT_THROW(update_usb_sampler_name(), process_ended);
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "Cannot get Hardware-Type for AKAI S5000/S6000!", "FATAL" }));
}

// Version and name stand at byte 8, or behind a zero. A device that cannot be asked leaves the
// fields empty and ends nothing.
TEST_F(usb_transport, choosing_a_device_fills_the_fields)
{
	transcript_usb wire(h, 0x5F);
	listed(model_z4);
	h.selections[{ window_usb, usb_device_list }] = 0;
	wire.play("> 03 01 \n > 10 07 00 F0 47 5F 00 04 04 F7 \n < 00*8 07 F7 \n"
		  "> 10 07 00 F0 47 5F 00 04 00 F7 \n < 00*8 00 01 05 F7 \n"
		  "> 10 07 00 F0 47 5F 00 07 01 F7 \n < 00*8 00 'Rack' 00 F7");
	EXPECT_TRUE(velmor_selection(window_usb, usb_device_list));
	EXPECT_EQ((h.texts[{ window_usb, usb_hardware }]), "Z4/Z8/MPC4000");
	EXPECT_EQ((h.texts[{ window_usb, usb_version }]), "1.5");
	EXPECT_EQ((h.texts[{ window_usb, usb_name }]), "Rack");
	wire.play("> 03 01 \n > 10 07 00 F0 47 5F 00 04 04 F7 \n < 00*8 07 F7 \n"
		  "> 10 07 00 F0 47 5F 00 04 00 F7 \n ! silence");
	velmor_selection(window_usb, usb_device_list);
	EXPECT_EQ((h.texts[{ window_usb, usb_hardware }]), "");
	EXPECT_EQ((h.texts[{ window_usb, usb_name }]), "");
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "[Studio] did not say what it is. Is it switched on?", "ERROR" }));
	EXPECT_EQ(wire.steps_left(), 0);
}

TEST_F(usb_transport, a_dialog_without_a_device_is_empty)
{
	transcript_usb wire(h, 0x5F);
	wire.devices.clear();
	show_usb_sampler_setup();
	EXPECT_TRUE((h.lists[{ window_usb, usb_device_list }]).empty());
	EXPECT_EQ((h.texts[{ window_usb, usb_hardware }]), "");
	EXPECT_TRUE(h.logged("[I] No USB sampler found"));
	save_usb_sampler();
	update_usb_sampler_name();
	EXPECT_EQ(h.boxes, (std::vector<shown_box>(2, { "No USB sampler selected!", "INFO" })));
}

} // namespace
