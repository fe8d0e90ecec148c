// test_settings_file.cpp - settings on the disk: any text, any crash, two processes at once

#include "platform/backends.h"
#include "tests/support/test_host.h"
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <set>
#include <sstream>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace velmor;
namespace fs = std::filesystem;

class settings_file : public testing::Test
{
protected:
	std::string home;

	void SetUp() override
	{
		home = new_scratch_folder();
		unsetenv("XDG_CONFIG_HOME");
		unsetenv("XDG_DATA_HOME");
		unsetenv("LOCALAPPDATA");
		setenv("HOME", home.c_str(), 1);
	}
	void TearDown() override { fs::remove_all(home); }

	std::string folder() const { return home + "/.config/VELMOR"; }
	void write_file(const std::string &content) const
	{
		fs::create_directories(folder());
		std::ofstream(folder() + "/settings", std::ios::binary) << content;
	}
	std::string file() const
	{
		std::ifstream in(folder() + "/settings", std::ios::binary);
		std::stringstream all;
		all << in.rdbuf();
		return all.str();
	}
};

std::string stored(const char *name)
{
	char value[setting_size];
	const int code = posix_settings.load_key(name, value);
	return code ? "code " + std::to_string(code) : value;
}

// Run what in a process of its own; what it says about its end is waitpid's.
template <typename work> int in_a_process(work what)
{
	const pid_t child = fork();
	if (child == 0) {
		const rlimit no_core = { 0, 0 };
		setrlimit(RLIMIT_CORE, &no_core);
		what();
		_exit(0);
	}
	int status = 0;
	waitpid(child, &status, 0);
	return status;
}

TEST_F(settings_file, a_first_run_reads_absent_values)
{
	EXPECT_EQ(stored("midi_in"), "code 2");
	EXPECT_EQ(posix_settings.save_key("midi_in", "-1"), 0);
	EXPECT_EQ(posix_settings.save_key("sampler_config_path", "\\home\\ann\\CONFIG"), 0);
	EXPECT_EQ(posix_settings.save_key("midi_in", "3"), 0);
	EXPECT_EQ(stored("midi_in"), "3");
	EXPECT_EQ(stored("midi_out"), "code 2");
	EXPECT_EQ(file(), "midi_in=3\nsampler_config_path=\\\\home\\\\ann\\\\CONFIG\n");
}

TEST_F(settings_file, any_text_survives)
{
	const std::string texts[] = { "", " ", "=", "a=b", "line\nfeed", "return\r", "\\", "\\x41",
		"\\\\n", "#", "\x01\x7F\x1B", "S\xC3\xA4mpler",
		std::string(setting_size - 1, '\n') };
	for (const std::string &text : texts) {
		EXPECT_EQ(posix_settings.save_key("k", text.c_str()), 0);
		EXPECT_EQ(stored("k"), text);
		EXPECT_EQ(posix_settings.save_key(("n" + text.substr(0, 9)).c_str(), "name"), 0);
		EXPECT_EQ(stored(("n" + text.substr(0, 9)).c_str()), "name");
		EXPECT_EQ(stored("k"), text);
	}
	EXPECT_EQ(posix_settings.save_key("k", std::string(setting_size, 'x').c_str()), EOVERFLOW);
	EXPECT_EQ(posix_settings.save_key("", "x"), EINVAL);
	EXPECT_EQ(stored("k"), texts[std::size(texts) - 1]);
}

TEST_F(settings_file, what_someone_wrote_by_hand_is_kept)
{
	write_file("# my studio\r\nmidi_in=2\r\nmidi_inner=5\r\n\r\nmidi_out=7\\");
	EXPECT_EQ(stored("midi_in"), "2");
	EXPECT_EQ(stored("midi_out"), "7");
	EXPECT_EQ(posix_settings.save_key("midi_in", "4"), 0);
	EXPECT_EQ(file(), "# my studio\nmidi_in=4\nmidi_inner=5\n\nmidi_out=7\\\n");
	write_file("k=" + std::string(5000, 'x') + "\nj=1\n");
	EXPECT_EQ(stored("k"), "code " + std::to_string(EOVERFLOW));
	EXPECT_EQ(stored("j"), "1");
}

// The limit on the size of a file ends the process in the middle of its write.
TEST_F(settings_file, a_crash_at_any_byte_keeps_every_old_value)
{
	ASSERT_EQ(posix_settings.save_key("midi_in", "1"), 0);
	ASSERT_EQ(posix_settings.save_key("midi_out", "2"), 0);
	const std::string before = file();
	const std::string longer = "midi_in=1000000\nmidi_out=2\n";
	for (std::size_t size = 0; size < longer.size(); size++) {
		const int status = in_a_process([size] {
			const rlimit limit = { size, size };
			setrlimit(RLIMIT_FSIZE, &limit);
			posix_settings.save_key("midi_in", "1000000");
		});
		ASSERT_TRUE(WIFSIGNALED(status)) << "the write of byte " << size << " went through";
		ASSERT_EQ(file(), before) << size;
		ASSERT_EQ(stored("midi_in") + stored("midi_out"), "12");
	}
	EXPECT_EQ(posix_settings.save_key("midi_in", "1000000"), 0);
	EXPECT_EQ(file(), longer) << "what the crashes left behind was in the way";
	std::ofstream(folder() + "/settings.1.new") << "another program is writing this";
	std::ofstream(folder() + "/settings.new.bak") << "no file of ours";
	EXPECT_EQ(posix_settings.save_key("midi_in", "2"), 0);
	std::set<std::string> names;
	for (const auto &entry : fs::directory_iterator(folder()))
		names.insert(entry.path().filename());
	EXPECT_EQ(names, (std::set<std::string>{ "settings", "settings.1.new", "settings.lock",
				 "settings.new.bak" }));
}

// End the process at its next call of that number.
void die_at(unsigned number)
{
	sock_filter program[] = {
		BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
		BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
		BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
		BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
	};
	const sock_fprog filter = { static_cast<unsigned short>(std::size(program)), program };
	if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
		prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
		_exit(77);
}

TEST_F(settings_file, a_crash_between_steps_keeps_the_old_value_or_the_new)
{
	const unsigned steps[] = { SYS_openat, SYS_flock, SYS_write, SYS_fsync, SYS_rename,
		SYS_close };
	ASSERT_EQ(posix_settings.save_key("midi_out", "2"), 0);
	for (const unsigned step : steps) {
		ASSERT_EQ(posix_settings.save_key("midi_in", "old"), 0);
		const int status = in_a_process([step] {
			die_at(step);
			posix_settings.save_key("midi_in", "new");
		});
		if (WIFEXITED(status) && WEXITSTATUS(status) == 77)
			GTEST_SKIP() << "this kernel does not filter system calls";
		ASSERT_TRUE(WIFSIGNALED(status)) << "system call " << step << " is not made";
		EXPECT_TRUE(stored("midi_in") == "old" || stored("midi_in") == "new") << step;
		EXPECT_EQ(stored("midi_out"), "2") << step;
	}
}

TEST_F(settings_file, two_processes_lose_nothing_of_each_other)
{
	constexpr int rounds = 40;
	const auto save_rounds = [](const char *name) {
		for (int i = 1; i <= rounds; i++)
			if (posix_settings.save_key(name, std::to_string(i).c_str()) != 0)
				_exit(1);
	};
	const pid_t other = fork();
	if (other == 0) {
		save_rounds("theirs");
		_exit(0);
	}
	// While they save, the other's value only ever grows: no rename brings back an old one.
	int seen = 0;
	for (int i = 1; i <= rounds; i++) {
		ASSERT_EQ(posix_settings.save_key("ours", std::to_string(i).c_str()), 0);
		const std::string theirs = stored("theirs");
		if (theirs != "code 2") {
			EXPECT_GE(std::stoi(theirs), seen);
			seen = std::stoi(theirs);
		}
		EXPECT_EQ(stored("ours"), std::to_string(i));
	}
	int status = 1;
	waitpid(other, &status, 0);
	EXPECT_EQ(status, 0);
	EXPECT_EQ(stored("ours") + " " + stored("theirs"), "40 40");
}

TEST_F(settings_file, a_place_that_cannot_be_written_is_a_code_with_words)
{
	std::ofstream(home + "/.config") << "a file where the folder should be";
	EXPECT_EQ(posix_settings.save_key("midi_in", "1"), ENOTDIR);
	EXPECT_STREQ(posix_settings.error_text(ENOTDIR), "Not a directory");
	EXPECT_EQ(posix_settings.error_text(99999), nullptr);
	fs::remove(home + "/.config");
	fs::create_directories(folder() + "/settings");
	EXPECT_EQ(stored("midi_in"), "code " + std::to_string(EISDIR));
	EXPECT_EQ(posix_settings.save_key("midi_in", "1"), EISDIR);
}

TEST_F(settings_file, the_users_folder)
{
	setenv("LOCALAPPDATA", (home + "/local").c_str(), 1);
	std::string expected = home + "/local";
	for (char &c : expected)
		c = c == '/' ? '\\' : c;
	EXPECT_EQ(std::string(posix_settings.user_root()), expected);
	EXPECT_TRUE(fs::is_directory(home + "/local"));

	unsetenv("LOCALAPPDATA");
	EXPECT_TRUE(std::string(posix_settings.user_root()).ends_with("\\.local\\share"));
	EXPECT_TRUE(fs::is_directory(home + "/.local/share"));
	setenv("XDG_DATA_HOME", "relative", 1); // counts as unset
	EXPECT_TRUE(std::string(posix_settings.user_root()).ends_with("\\.local\\share"));
	setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
	EXPECT_TRUE(std::string(posix_settings.user_root()).ends_with("\\data"));

	unsetenv("XDG_DATA_HOME");
	unsetenv("HOME");
	EXPECT_EQ(posix_settings.user_root(), nullptr);
	EXPECT_EQ(stored("midi_in"), "code 2");
	EXPECT_NE(posix_settings.save_key("midi_in", "1"), 0);
}

} // namespace
