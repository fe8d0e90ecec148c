// test_files.cpp - the door to the disk: backslashes, full disks, folders that refuse

#include "platform/backends.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

using namespace velmor;
namespace fs = std::filesystem;

class files : public testing::Test
{
protected:
	std::string root;   // host path
	std::string system; // the same with backslashes

	void SetUp() override
	{
		char pattern[] = "/tmp/velmor-files-XXXXXX";
		root = mkdtemp(pattern);
		system = posix_files.system_path(root.c_str());
	}
	void TearDown() override { fs::remove_all(root); }

	std::string at(const char *name) const { return system + "\\" + name; }
};

TEST_F(files, backslashes_inside_slashes_outside)
{
	EXPECT_EQ(system.find('/'), std::string::npos);
	EXPECT_EQ(posix_files.host_path(system.c_str()), root);
	EXPECT_EQ(posix_files.make_folder(at("sample").c_str()), 0);
	const int again = posix_files.make_folder(at("sample").c_str());
	EXPECT_TRUE(posix_files.exists_already(again));
	EXPECT_TRUE(fs::is_directory(root + "/sample"));

	int file = -1;
	ASSERT_EQ(posix_files.open(at("sample\\PIANO C3.wav").c_str(), file_create, &file), 0);
	ASSERT_EQ(posix_files.write(file, "RIFFdata", 8), 0);
	EXPECT_EQ(posix_files.sync(file), 0);
	EXPECT_EQ(posix_files.close(file), 0);
	ASSERT_EQ(posix_files.open(at("sample\\PIANO C3.wav").c_str(), file_append, &file), 0);
	ASSERT_EQ(posix_files.write(file, "more", 4), 0);
	EXPECT_EQ(posix_files.close(file), 0);

	file_info info;
	ASSERT_EQ(posix_files.stat(at("sample/PIANO C3.wav").c_str(), &info), 0);
	EXPECT_TRUE(info.regular && !info.folder && info.size == 12);

	char bytes[32];
	std::size_t moved = 0;
	ASSERT_EQ(posix_files.open(at("sample\\PIANO C3.wav").c_str(), file_read, &file), 0);
	ASSERT_EQ(posix_files.seek(file, 4), 0);
	ASSERT_EQ(posix_files.read(file, bytes, sizeof bytes, &moved), 0);
	EXPECT_EQ(std::string(bytes, moved), "datamore");
	ASSERT_EQ(posix_files.read(file, bytes, sizeof bytes, &moved), 0);
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

TEST_F(files, a_full_disk_is_a_failure)
{
	int file = -1;
	ASSERT_EQ(posix_files.open("\\dev\\full", file_create, &file), 0);
	EXPECT_EQ(posix_files.write(file, "x", 1), ENOSPC);
	EXPECT_STREQ(posix_files.error_text(ENOSPC), "No space left on device");
	posix_files.close(file);
}

// The limit on the size of a file cuts a write short, as a disk does that fills up within it.
TEST_F(files, a_write_cut_short_is_a_failure)
{
	std::signal(SIGXFSZ, SIG_IGN);
	rlimit before;
	getrlimit(RLIMIT_FSIZE, &before);
	const rlimit small = { 1000, before.rlim_max };
	int file = -1;
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

} // namespace
