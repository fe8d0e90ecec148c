// test_mount.cpp - the drive as other programs see it: mounted by the kernel, walked by ls and find
//
// Sizes, modes, refusals, what a walk costs on the bus, names, and endings.

#include "tests/support/mount_fixture.h"
#include <functional>
#include <regex>
#include <set>
#include <sys/xattr.h>

namespace velmor
{

// ---- Listing -----------------------------------------------------------------------------------

static constexpr std::size_t all_files = 205; // of the two machines below

static void fill_studio(rack &r)
{
	disk_folder many = { "MANY", {}, {} };
	for (unsigned i = 0; i < 200; i++)
		many.files.push_back({ "File " + std::to_string(1000 + i), i << 16 });
	r.big.name = "Big One";
	r.big.disks.volumes = {
		{ 130, 1, 2, 0, 1, "WORK",
			{ { "DRUMS",
				  { { "Kit 1", {},
					  { { "kick.wav", 1000 }, { "snare.wav", 70000 } } } },
				  { { "loop.wav", 0x0FFFFFFF } } },
				many },
			{ { "root.akp", 7 } } },
		{ 5, 2, 2, 4, 0, "CD ROM", { { "EMPTY", {}, {} } } },
	};
	r.small.name = "Small";
	r.small.disks.volumes = { { 257, 1, 2, 0, 1, "DISK", {}, { { "a.wav", 5 } } } };
}

TEST_F(mount_test, everything_is_listed_with_its_size_and_nothing_may_be_written)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	EXPECT_EQ(lines_of({ "find", point, "-type", "d", "-printf", "%m %P\n" }),
		"555 \n555 Big One\n555 Big One/CD ROM\n555 Big One/CD ROM/EMPTY\n"
		"555 Big One/WORK\n555 Big One/WORK/DRUMS\n555 Big One/WORK/DRUMS/Kit 1\n"
		"555 Big One/WORK/MANY\n555 Small\n555 Small/DISK\n");
	std::string expected = "444 1000 Big One/WORK/DRUMS/Kit 1/kick.wav\n"
			       "444 70000 Big One/WORK/DRUMS/Kit 1/snare.wav\n"
			       "444 268435455 Big One/WORK/DRUMS/loop.wav\n"
			       "444 7 Big One/WORK/root.akp\n444 5 Small/DISK/a.wav\n";
	EXPECT_EQ(lines_of({ "sh", "-c",
			  "find '" + point + "' -type f -printf '%m %s %P\\n' | grep -v MANY" }),
		lines_of({ "printf", "%s", expected }));
	const std::string many =
		lines_of({ "find", in("Big One/WORK/MANY"), "-type", "f", "-printf", "%s %f\n" });
	EXPECT_EQ(std::count(many.begin(), many.end(), '\n'), 200);
	EXPECT_NE(many.find("13041664 File 1199\n"), many.npos) << many;
	EXPECT_NE(many.find("65536 File 1001\n"), many.npos);

	struct stat facts;
	ASSERT_EQ(stat(in("Big One/WORK/root.akp").c_str(), &facts), 0);
	EXPECT_EQ(facts.st_uid, getuid());
	EXPECT_EQ(facts.st_gid, getgid());
	const ending whole = done({ "ls", "-lR", point });
	EXPECT_EQ(whole.status, 0) << whole.said;
	EXPECT_NE(whole.said.find("-r--r--r--"), whole.said.npos);
	EXPECT_EQ(lines_of({ "findmnt", "-no", "FSTYPE,OPTIONS", point }).substr(0, 17),
		"fuse.velmorfs ro,");

	const std::string file = in("Big One/WORK/root.akp"), local = folder + "/local";
	std::filesystem::create_directory(folder + "/out");
	ASSERT_EQ(done({ "touch", local }).status, 0);
	tell("forget");
	for (const words &refused : { words{ "cp", local, in("Small/DISK/b") },
		     words{ "mkdir", in("new") }, words{ "rm", "-f", file },
		     words{ "rmdir", in("Small") }, words{ "touch", file },
		     words{ "chmod", "600", file }, words{ "ln", "-s", local, in("link") },
		     words{ "mv", file, in("Big One/WORK/other") } }) {
		const ending e = done(refused);
		EXPECT_EQ(e.status, 1) << refused[0];
		EXPECT_NE(e.said.find("Read-only file system"), e.said.npos)
			<< refused[0] << ": " << e.said;
	}
	EXPECT_EQ(done({ "cp", file, folder + "/out/" }).status, 1);
	EXPECT_TRUE(std::filesystem::is_empty(folder + "/out"));
	EXPECT_NE(done({ "head", "-c1", file }).status, 0);
	EXPECT_EQ(tell("traffic"), "|") << "neither a refusal nor contents cost an exchange";
}

// ---- What listing costs ------------------------------------------------------------------------

// Whole listings one after the other, each in an opening of its own: volumes, and then perhaps
// the way to a folder and all that is in it.
static bool is_whole_listings(const std::string &traffic)
{
	static const std::regex rule("(\\.+(nl(src*DFd*(fz)*)?)?)*");
	return std::regex_match(traffic, rule);
}

static std::size_t count(const std::string &traffic, char letter)
{
	return static_cast<std::size_t>(std::count(traffic.begin(), traffic.end(), letter));
}

// List each folder and do what file managers do: look for files of their own beside the others.
static void walk_like_a_file_manager(const std::string &path)
{
	std::error_code ignored;
	std::vector<std::string> folders;
	for (const auto &entry : std::filesystem::directory_iterator(path, ignored)) {
		struct stat facts;
		if (stat(entry.path().c_str(), &facts) == 0 && S_ISDIR(facts.st_mode))
			folders.push_back(entry.path());
		for (const char *list : { "user.icon", "security.capability" })
			(void)getxattr(entry.path().c_str(), list, nullptr, 0);
	}
	for (const char *name : { ".Trash", ".Trash-0", "autorun.inf", "Autorun.inf", ".hidden",
		     "desktop.ini", ".directory", ".DS_Store", ".xdg-volume-info" })
		EXPECT_NE(access((path + "/" + name).c_str(), F_OK), 0) << name;
	for (const std::string &folder : folders)
		walk_like_a_file_manager(folder);
}

TEST_F(mount_test, a_walk_costs_one_listing_a_folder_whoever_walks)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	const std::function<void()> walks[] = {
		[&] {
			lines_of({ "ls", "-lR", point });
		},
		[&] {
			lines_of({ "find", point, "-ls" });
		},
		[&] { walk_like_a_file_manager(point); },
		[&] { // two at once, and whatever they ask for in between
			const walker first = run({ "ls", "-lR", point }),
				     second = run({ "find", point, "-ls" });
			const walker third = run({ "ls", "-l", in("Big One/WORK/MANY") });
			EXPECT_EQ(
				finish(first).status | finish(second).status | finish(third).status,
				0);
		},
	};
	for (const auto &walk : walks) {
		tell("age");
		tell("forget");
		walk();
		const std::string traffic = tell("traffic");
		const std::size_t bar = traffic.find('|');
		for (const std::string &one : { traffic.substr(0, bar), traffic.substr(bar + 1) })
			EXPECT_TRUE(is_whole_listings(one)) << one;
		EXPECT_EQ(count(traffic, 'f'), all_files);
		EXPECT_EQ(count(traffic, 'z'), all_files);
		EXPECT_EQ(count(traffic, 'd'), 4u); // DRUMS, Kit 1, MANY, EMPTY
		EXPECT_EQ(count(traffic, 'D'), 7u); // and of the three volumes
		EXPECT_EQ(count(traffic, 'l'), 9u); // and of the two samplers
		tell("forget");
		walk(); // again, within the second
		EXPECT_EQ(tell("traffic"), "|");
	}
}

// ---- Names -------------------------------------------------------------------------------------

static void fill_names(rack &r)
{
	std::vector<disk_file> all;
	for (unsigned byte = 1; byte < 256; byte++) {
		char name[8];
		std::snprintf(name, sizeof name, "%02X_%c_", byte, static_cast<char>(byte));
		all.push_back({ name, byte });
	}
	const std::vector<disk_file> inside = { { "inside", 4711 } };
	std::vector<disk_folder> folders;
	for (const char *name : { ".", "..", "../../etc", "a/b", "a\x01\n\xE4", " ", "-rf" })
		folders.push_back({ name, {}, inside });
	folders.push_back({ std::string(255, 'x'), {}, inside });
	folders.push_back({ std::string(255, '\xE4'), {}, inside });
	r.big.name = "Big/..";
	r.big.disks.volumes = { { 1, 1, 2, 0, 1, "..", folders, all } };
	r.small.name = "Small";
	// The first two can be shown, and not asked for.
	r.small.disks.volumes = { { 1, 1, 2, 0, 1, "" }, { 2, 1, 2, 0, 1, "a\\b" },
		{ 3, 1, 2, 0, 1, "c", {}, { { "d", 1 } } } };
}

TEST_F(mount_test, every_name_stays_in_its_folder_and_is_another_one)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_names));
	const auto found = done({ "find", in("Big\u2215.."), "-name", "*_", "-size", "-10k",
		"-printf", "%s %f\\0" });
	EXPECT_EQ(found.status, 0) << found.said;
	std::set<std::string> names;
	std::istringstream text(found.said);
	for (std::string entry; std::getline(text, entry, '\0');) {
		char start[16];
		const int size = std::stoi(entry);
		std::snprintf(start, sizeof start, "%d %02X_", size, static_cast<unsigned>(size));
		EXPECT_TRUE(entry.starts_with(start)) << entry;
		names.insert(entry);
	}
	EXPECT_EQ(names.size(), 255u);
	for (const char *name :
		{ "65 41_A_", "7 07_\u2407_", "47 2F_\u2215_", "228 E4_\u00E4_", "247 F7_\u00F7_" })
		EXPECT_TRUE(names.contains(name)) << name;
	EXPECT_EQ(done({ "find", in("Big\u2215.."), "-name", "inside", "-size", "4711c", "-printf",
			       "x" })
			  .said,
		std::string(9, 'x'));
	EXPECT_EQ(lines_of({ "ls", in("Small"), in("Small/c") }),
		lines_of({ "printf", "%s",
			"\n" + in("Small") + ":\na\u2216b\nc\n\u2205\n" + in("Small/c") +
				":\nd\n" }));
	for (const char *name : { "Small/\u2205", "Small/a\u2216b" })
		EXPECT_NE(done({ "ls", in(name) }).said.find("Operation not supported"),
			std::string::npos);
	EXPECT_EQ(done({ "sh", "-c", "find '" + point + "' | iconv -f UTF-8 -t UTF-8 >/dev/null" })
			  .status,
		0);
	EXPECT_EQ(lines_of({ "ls", point }), "Big\u2215..\nSmall\n");
}

// ---- Another program, and endings -----------------------------------------------------------------------------------

TEST_F(mount_test, a_sampler_in_use_is_busy_and_there_again_when_it_is_free)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	tell("hold");
	const ending e = done({ "ls", in("Big One/WORK") });
	EXPECT_NE(e.said.find("Device or resource busy"), e.said.npos) << e.said;
	EXPECT_EQ(lines_of({ "ls", in("Small/DISK") }), "a.wav\n");
	const std::string log = done({ "cat", folder + "/log" }).said;
	EXPECT_NE(log.find("[\\Big One] cannot be listed: another program is using the sampler."),
		log.npos)
		<< log;
	tell("release");
	tell("age");
	EXPECT_EQ(lines_of({ "ls", in("Big One/WORK/DRUMS") }), "Kit 1\nloop.wav\n");
}

TEST_F(mount_test, a_sampler_that_is_unplugged_ends_what_waits_for_it_and_the_others_stay)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	lines_of({ "ls", in("Big One/WORK") });
	tell("age");
	tell("slow");
	const walker first = run({ "ls", "-l", in("Big One/WORK/MANY") });
	while (count(tell("traffic"), 'f') < 3)
		poll(nullptr, 0, 5);
	const walker second = run({ "ls", "-l", in("Big One/CD ROM/EMPTY") });
	poll(nullptr, 0, 50);
	const auto pulled = steady::now();
	tell("unplug");
	EXPECT_NE(finish(first).status, 0);
	EXPECT_NE(finish(second).status, 0);
	EXPECT_LT(steady::now() - pulled, std::chrono::seconds(10)) << "a listing took 20 s";
	EXPECT_EQ(lines_of({ "ls", point }), "Small\n");
	EXPECT_EQ(lines_of({ "ls", in("Small/DISK") }), "a.wav\n");
	tell("fast");
	tell("plug");
	tell("age");
	EXPECT_EQ(lines_of({ "ls", point }), "Big One\nSmall\n");
	EXPECT_EQ(lines_of({ "ls", in("Big One/WORK/DRUMS") }), "Kit 1\nloop.wav\n");
}

TEST_F(mount_test, a_killed_drive_is_mounted_over_and_signals_unmount)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	kill_server();
	EXPECT_NE(done({ "ls", point }).said.find("Transport endpoint is not connected"),
		std::string::npos);
	for (const int signal : { SIGTERM, SIGINT, 0 }) {
		SCOPED_TRACE(signal);
		ASSERT_NO_FATAL_FAILURE(start(fill_studio));
		EXPECT_EQ(lines_of({ "ls", point }), "Big One\nSmall\n");
		tell("slow");
		const walker busy = run({ "ls", "-lR", point });
		while (count(tell("traffic"), 'f') < 1)
			poll(nullptr, 0, 5);
		if (signal)
			kill(server, signal);
		else // from outside
			unmount();
		finish(busy);
		EXPECT_EQ(end_of_server(), 0);
		EXPECT_FALSE(is_mounted());
		EXPECT_TRUE(std::filesystem::is_empty(point));
	}
}

// ---- The program -------------------------------------------------------------------------------

TEST_F(mount_test, the_program_mounts_its_demo_and_says_why_it_does_not)
{
	const char *const program = getenv("VELMORFS");
	ASSERT_TRUE(program) << "VELMORFS names the program";
	const walker running = run({ program, "--demo", point });
	server = running.pid;
	ASSERT_NO_FATAL_FAILURE(await_mount());
	EXPECT_EQ(lines_of({ "ls", point }), "Demo S5000\nDemo Z8\n");
	EXPECT_EQ(lines_of({ "ls", in("Demo S5000") }),
		"DRUM LOOPS\nFLOPPY\nHARD DISK\nMULTISAMPLES\nSTRINGS CD\n");
	EXPECT_EQ(lines_of({ "find", in("Demo Z8/PADS CD"), "-type", "f", "-printf", "%P\n" }),
		"Contents.txt\nGLASS/Glass C4.wav\nGLASS/Glass Pad.akp\nWARM/Warm C2.wav\n"
		"WARM/Warm C4.wav\nWARM/Warm Pad.akp\n");
	EXPECT_NE(done({ program, "--demo", point }).status, 0) << "it is mounted there already";
	kill(server, SIGTERM);
	EXPECT_EQ(end_of_server(), 0);
	EXPECT_FALSE(is_mounted());
	close(running.out);

	std::filesystem::create_directory(folder + "/full");
	std::filesystem::create_directory(folder + "/full/of");
	for (const words &wrong : { words{ program }, words{ program, "--what" },
		     words{ program, "--demo" }, words{ program, "--demo", folder + "/missing" },
		     words{ program, "--demo", folder + "/log" } }) {
		const ending e = done(wrong);
		EXPECT_NE(e.status, 0) << wrong.back();
		EXPECT_NE(e.said.find("velmorfs"), e.said.npos) << e.said;
	}
}

} // namespace velmor
