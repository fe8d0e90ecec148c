// test_files.cpp - the door to the disk, and files that appear whole or not at all

#include "platform/backends.h"
#include "src/velmor_files.h"
#include "tests/support/wave_files.h"
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmor
{

namespace fs = std::filesystem;
using strings = std::vector<std::string>;

class files : public host_test
{
protected:
	std::string root = h.root + "/files"; // host path
	std::string system = posix_files.system_path(root.c_str());

	files() { fs::create_directory(root); }
	std::string at(const std::string &name) const { return system + "\\" + name; }
};

TEST_F(files, backslashes_inside_slashes_outside)
{
	EXPECT_EQ(system.find('/'), std::string::npos);
	EXPECT_EQ(posix_files.host_path(system.c_str()), root);
	EXPECT_EQ(posix_files.make_folder(at("sample").c_str()), 0);
	EXPECT_TRUE(posix_files.exists_already(posix_files.make_folder(at("sample").c_str())));

	const std::string path = at("sample\\PIANO C3.wav");
	int file = -1;
	for (const file_mode mode : { file_exclusive, file_append }) {
		ASSERT_EQ(posix_files.open(path.c_str(), mode, &file), 0);
		ASSERT_EQ(posix_files.write(file, "RIFFdata", 8), 0);
		EXPECT_EQ(posix_files.sync(file), 0);
		EXPECT_EQ(posix_files.close(file), 0);
	}
	EXPECT_TRUE(
		posix_files.exists_already(posix_files.open(path.c_str(), file_exclusive, &file)));
	EXPECT_EQ(posix_files.sync_folder(at("sample").c_str()), 0);
	EXPECT_TRUE(posix_files.not_found(posix_files.sync_folder(at("none").c_str())));

	file_info info;
	ASSERT_EQ(posix_files.stat(at("sample/PIANO C3.wav").c_str(), &info), 0);
	EXPECT_TRUE(info.regular && !info.folder && info.size == 16);

	char text[32];
	std::size_t moved = 0;
	ASSERT_EQ(posix_files.open(path.c_str(), file_read, &file), 0);
	ASSERT_EQ(posix_files.seek(file, 4), 0);
	ASSERT_EQ(posix_files.read(file, text, sizeof text, &moved), 0);
	EXPECT_EQ(std::string(text, moved), "dataRIFFdata");
	ASSERT_EQ(posix_files.read(file, text, sizeof text, &moved), 0);
	EXPECT_EQ(moved, 0u);
	EXPECT_NE(posix_files.write(file, "x", 1), 0) << "opened for reading";
	EXPECT_EQ(posix_files.close(file), 0);
	EXPECT_NE(posix_files.close(file), 0) << "closed twice";
}

TEST_F(files, lists_names_that_can_be_written_inside)
{
	for (const char *name : { "b.wav", "A.wav", ".hidden", "two\\words" })
		std::ofstream(root + "/" + name) << "x";
	fs::create_directory(root + "/sub");
	std::vector<std::string> names = { "stale" };
	ASSERT_EQ(posix_files.list(system.c_str(), &names), 0);
	std::sort(names.begin(), names.end());
	EXPECT_EQ(names, (std::vector<std::string>{ ".hidden", "A.wav", "b.wav", "sub" }));
	EXPECT_TRUE(posix_files.not_found(posix_files.list(at("none").c_str(), &names)));
	EXPECT_TRUE(names.empty());
	EXPECT_EQ(posix_files.list(at("b.wav").c_str(), &names), ENOTDIR);
}

TEST_F(files, renaming_replaces_and_removing_keeps_what_is_full)
{
	std::ofstream(root + "/new") << "new";
	std::ofstream(root + "/old") << "older";
	EXPECT_EQ(posix_files.rename(at("new").c_str(), at("old").c_str()), 0);
	EXPECT_EQ(fs::file_size(root + "/old"), 3u);
	EXPECT_TRUE(posix_files.not_found(posix_files.remove(at("new").c_str())));

	fs::create_directory(root + "/sub");
	std::ofstream(root + "/sub/kept") << "x";
	EXPECT_EQ(posix_files.remove_folder(at("sub").c_str()), ENOTEMPTY);
	EXPECT_NE(posix_files.remove(at("sub").c_str()), 0) << "a folder is no file";
	EXPECT_EQ(posix_files.remove(at("sub\\kept").c_str()), 0);
	EXPECT_EQ(posix_files.remove_folder(at("sub").c_str()), 0);
}

// The limit on the size of a file cuts a write short, as a disk does that fills up within it.
TEST_F(files, a_full_disk_is_a_failure)
{
	int file = -1;
	ASSERT_EQ(posix_files.open("\\dev\\full", file_create, &file), 0);
	EXPECT_EQ(posix_files.write(file, "x", 1), ENOSPC);
	EXPECT_STREQ(posix_files.error_text(ENOSPC), "No space left on device");
	EXPECT_TRUE(posix_files.disk_full(ENOSPC) && posix_files.disk_full(EDQUOT));
	EXPECT_FALSE(posix_files.disk_full(EIO));
	posix_files.close(file);
	std::signal(SIGXFSZ, SIG_IGN);
	rlimit before;
	getrlimit(RLIMIT_FSIZE, &before);
	const rlimit small = { 1000, before.rlim_max };
	ASSERT_EQ(posix_files.open(at("sample.wav").c_str(), file_create, &file), 0);
	setrlimit(RLIMIT_FSIZE, &small);
	const std::vector<char> block(1500);
	const int code = posix_files.write(file, block.data(), block.size());
	setrlimit(RLIMIT_FSIZE, &before);
	std::signal(SIGXFSZ, SIG_DFL);
	posix_files.close(file);
	EXPECT_EQ(code, EFBIG);
	EXPECT_EQ(fs::file_size(root + "/sample.wav"), 1000u);
}

TEST_F(files, places_that_refuse)
{
	int file = -1;
	EXPECT_TRUE(posix_files.not_found(
		posix_files.open(at("none\\a.wav").c_str(), file_create, &file)));
	EXPECT_EQ(posix_files.open(system.c_str(), file_create, &file), EISDIR);
	EXPECT_EQ(posix_files.make_folder("\\proc\\velmor"), ENOENT);
	EXPECT_EQ(posix_files.error_text(99999), nullptr);
	if (geteuid() == 0)
		return; // nothing refuses the administrator
	fs::permissions(root, fs::perms::owner_read | fs::perms::owner_exec);
	EXPECT_EQ(posix_files.open(at("a.wav").c_str(), file_create, &file), EACCES);
	fs::permissions(root, fs::perms::owner_all);
}

// ---- Files that appear whole or not at all ---------------------------------------------------

// What is done to the disk, in order, and which step fails.
struct disk_trace {
	static inline strings steps;
	static inline std::string failing;
	static inline int names_taken;
	files_service service = *host.files;

	static bool fails(const std::string &name)
	{
		steps.push_back(name);
		return name == failing;
	}
	disk_trace()
	{
		steps.clear();
		failing.clear();
		names_taken = 0;
		service.open = [](const char *path, file_mode mode, int *file) {
			if (mode == file_exclusive && names_taken-- > 0)
				return EEXIST;
			return mode == file_exclusive && fails("create")
				       ? EIO
				       : posix_files.open(path, mode, file);
		};
		service.write = [](int file, const void *from, std::size_t count) {
			return fails("write") ? ENOSPC : posix_files.write(file, from, count);
		};
		service.sync = [](int file) {
			return fails("sync") ? EIO : posix_files.sync(file);
		};
		service.rename = [](const char *from, const char *to) {
			return fails("rename") ? EIO : posix_files.rename(from, to);
		};
		service.sync_folder = [](const char *path) {
			return fails("sync folder") ? EIO : posix_files.sync_folder(path);
		};
		host.files = &service;
	}
};

TEST_F(files, a_file_is_on_the_disk_before_it_has_its_name)
{
	disk_trace disk;
	const strings whole = { "create", "write", "sync", "rename", "sync folder" };
	EXPECT_EQ(write_whole_file(at("a"), "new", 3), 0);
	EXPECT_EQ(disk.steps, whole);
	// A configuration is such a file.
	disk.steps.clear();
	current_run_mode.diagnostics = false;
	_sampler record = {};
	copy_text(record.sampler_description, "rack");
	EXPECT_EQ(store_sampler(record), 0);
	EXPECT_EQ(disk.steps, whole);
	EXPECT_EQ(h.content(h.config + "\\rack.sampler")->size(), 536u);
	for (const char *step : { "create", "write", "sync", "rename" }) {
		disk.failing = step;
		EXPECT_EQ(write_whole_file(at("a"), "newer", 5),
			std::string(step) == "write" ? ENOSPC : EIO);
		EXPECT_EQ(h.content(at("a")), text("new")) << step;
		EXPECT_EQ(names_in(system), strings{ "a" }) << step;
	}
}

TEST_F(files, a_temporary_name_is_never_shared)
{
	disk_trace disk;
	disk.names_taken = 3;
	fresh_file one, other;
	ASSERT_EQ(one.open(at("a")), 0);
	ASSERT_EQ(other.open(at("a")), 0);
	const strings names = names_in(system);
	ASSERT_EQ(names.size(), 2u);
	for (const std::string &name : names) {
		EXPECT_TRUE(name.starts_with(format_text("~velmor%d-", getpid()))) << name;
		EXPECT_TRUE(is_temporary_name(name));
	}
	ASSERT_EQ(one.write("one", 3) + other.write("other", 5), 0);
	ASSERT_EQ(one.finish(), 0);
	EXPECT_EQ(h.content(at("a")), text("one"));
	ASSERT_EQ(other.finish(), 0);
	EXPECT_EQ(h.content(at("a")), text("other"));
	{
		fresh_file unfinished;
		ASSERT_EQ(unfinished.open(at("a")), 0);
	}
	EXPECT_EQ(names_in(system), strings{ "a" });
}

TEST_F(files, what_dead_processes_left_goes_at_the_start)
{
	const pid_t child = fork();
	if (child == 0)
		_exit(0);
	waitpid(child, nullptr, 0);
	const strings kept = { "a.tmp", "~velmor1-0.tmp", "~velmorx-1.tmp", "~velmor.tmp" };
	const strings left = { format_text("~velmor%d-12.tmp", child), "~velmor0.tmp",
		format_text("~velmor%d-0.tmp", getpid()) };
	for (const strings &names : { kept, left })
		for (const std::string &name : names)
			h.put_content(h.config + "\\sample\\" + name, {});
	h.settings = { { "sampler_config_path", h.config } };
	load_settings();
	strings expected = kept;
	std::sort(expected.begin(), expected.end());
	EXPECT_EQ(names_in(h.config + "\\sample"), expected);
	EXPECT_TRUE(h.logged(
		"[I] Removed what an earlier run left: [" + h.config + "\\sample\\~velmor0.tmp]"));
}

} // namespace velmor
