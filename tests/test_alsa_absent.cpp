// test_alsa_absent.cpp - ALSA on a machine without sound: empty lists, clear words, no noise
//
// What ports do is tried on the kernel's own ALSA by tests/machine.

#include "platform/backends.h"
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace
{

using namespace velmor;

TEST(alsa_absent, lists_nothing_and_does_not_complain)
{
	if (access("/dev/snd", F_OK) == 0)
		GTEST_SKIP() << "this machine has sound";
	testing::internal::CaptureStderr();
	EXPECT_EQ(alsa_midi.outputs(), 0);
	EXPECT_EQ(alsa_midi.inputs(), 0);
	EXPECT_STREQ(alsa_midi.output_name(0), "");
	int handle = 0;
	const int code = alsa_midi.open_output(-1, &handle);
	ASSERT_NE(code, 0);
	EXPECT_STREQ(alsa_midi.error_text(code),
		"There is no such MIDI port. Choose one in the settings");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(alsa_absent, what_is_not_open_answers_with_a_code)
{
	unsigned char byte = 0xF0;
	int handle = 0;
	EXPECT_NE(alsa_midi.open_input(-1, &handle), 0);
	EXPECT_NE(alsa_midi.open_output(1000, &handle), 0);
	EXPECT_NE(alsa_midi.write(99, &byte, 1), 0);
	EXPECT_LT(alsa_midi.leaving(99), 0);
	EXPECT_NE(alsa_midi.arm(99, &byte, 1), 0);
	EXPECT_EQ(alsa_midi.received(99), 0u);
	EXPECT_NE(alsa_midi.input_error(99), 0);
	alsa_midi.disarm(99);
	alsa_midi.close_input(99);
	alsa_midi.close_output(99);
	EXPECT_STREQ(alsa_midi.input_name(-1), "");
}

TEST(alsa_absent, words_say_what_to_do)
{
	struct row {
		int code;
		const char *word;
	};
	const row rows[] = { { EBUSY, "another program" }, { EACCES, "group \"audio\"" },
		{ ENODEV, "Plug the interface in again" }, { 123456, "Unknown MIDI error" } };
	for (const row &r : rows)
		EXPECT_NE(std::string(alsa_midi.error_text(r.code)).find(r.word), std::string::npos)
			<< alsa_midi.error_text(r.code);
}

} // namespace
