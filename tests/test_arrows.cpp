// test_arrows.cpp - which room may include what
//
// programs -> ui -> src -> platform/*.h. A back end knows its own service header
// and its library. virtual/ never includes src/, so that a misreading in one end
// cannot hide in the other.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

struct room {
	const char *folder;    // a folder of the house, below which every source is checked
	const char *allowed;   // of our own headers
	const char *forbidden; // of the host's and the libraries'
};

constexpr char toolkits[] =
	"Q[A-Z].*|Qt.*|alsa/.*|libusb.*|sndfile.*|fuse.*|sys/(socket|ioctl|mman|stat).*|"
	"netinet/.*|arpa/.*|unistd\\.h|fcntl\\.h|dirent\\.h|poll\\.h|windows\\.h";

constexpr room rooms[] = {
	{ "src", "src/.*\\.h|platform/[a-z]+\\.h", toolkits },
	{ "ui", "ui/.*\\.h|src/.*\\.h|platform/[a-z]+\\.h", "alsa/.*|libusb.*|fuse.*" },
	{ "virtual", "virtual/.*\\.h|platform/[a-z]+\\.h",
		"Q[A-Z].*|Qt.*|alsa/.*|libusb.*|fuse.*" },
	{ "platform/posix",
		"platform/(clock|files|settings|net|signals|words)\\.h|platform/posix/.*\\.h",
		"Q[A-Z].*|alsa/.*|libusb.*|fuse.*" },
	{ "platform/headless", "platform/ui\\.h|platform/headless/.*\\.h",
		"Q[A-Z].*|alsa/.*|libusb.*|fuse.*" },
	{ "platform/alsa", "platform/(midi|words)\\.h|platform/alsa/.*\\.h",
		"Q[A-Z].*|libusb.*|fuse.*" },
	{ "platform/fuse", "platform/drive\\.h|platform/fuse/.*\\.h", "Q[A-Z].*|alsa/.*|libusb.*" },
	{ "platform/libusb", "platform/usb\\.h|platform/libusb/.*\\.h", "Q[A-Z].*|alsa/.*|fuse.*" },
	{ "platform/qtaudio", "platform/audio\\.h|platform/qtaudio/.*\\.h",
		"alsa/.*|libusb.*|fuse.*" },
	{ "platform/sndfile", "platform/sound\\.h", "Q[A-Z].*|alsa/.*|libusb.*|fuse.*" },
};

std::vector<fs::path> sources_in(const fs::path &folder)
{
	std::vector<fs::path> found;
	if (fs::exists(folder))
		for (const auto &entry : fs::recursive_directory_iterator(folder))
			if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h")
				found.push_back(entry.path());
	return found;
}

TEST(arrows, every_room_includes_only_what_it_may)
{
	const char *top = std::getenv("VELMOR_SOURCE");
	ASSERT_TRUE(top) << "run by ctest, which names the source folder";
	const std::regex include(R"re(\s*#\s*include\s*([<"])([^>"]+)[>"].*)re");
	for (const room &r : rooms) {
		const std::regex allowed(r.allowed), forbidden(r.forbidden);
		int includes = 0;
		for (const fs::path &path : sources_in(fs::path(top) / r.folder)) {
			std::ifstream file(path);
			std::smatch found;
			for (std::string line; std::getline(file, line);) {
				if (!std::regex_match(line, found, include))
					continue;
				includes++;
				const std::string name = found[2];
				if (found[1] == "\"")
					EXPECT_TRUE(std::regex_match(name, allowed))
						<< path << " includes " << name;
				else
					EXPECT_FALSE(std::regex_match(name, forbidden))
						<< path << " includes " << name;
			}
		}
		EXPECT_GT(includes, 0) << r.folder << " holds no source";
	}
}

// A back end of one service has no business with another.
TEST(arrows, a_back_end_file_knows_one_service)
{
	const char *top = std::getenv("VELMOR_SOURCE");
	ASSERT_TRUE(top);
	const std::regex service(R"re(#include "platform/(?!words)[a-z]+\.h")re");
	for (const auto &folder : fs::directory_iterator(fs::path(top) / "platform")) {
		if (!folder.is_directory())
			continue;
		for (const fs::path &path : sources_in(folder)) {
			std::ifstream file(path);
			int services = 0;
			for (std::string line; std::getline(file, line);)
				services += std::regex_search(line, service);
			EXPECT_LE(services, 1) << path;
		}
	}
}

} // namespace
