// corpus_main.cpp - run a fuzz target over the files of folders
//
// Usage: fuzz_NAME FOLDER... Fails when they hold nothing, so that a lost corpus cannot
// pass for a clean one. The files are found before the first runs: a target may change the
// current directory.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int count, char **words)
{
	std::vector<std::filesystem::path> paths;
	for (int i = 1; i < count; i++)
		for (const auto &entry : std::filesystem::recursive_directory_iterator(words[i]))
			if (entry.is_regular_file())
				paths.push_back(std::filesystem::absolute(entry.path()));
	for (const auto &path : paths) {
		std::ifstream file(path, std::ios::binary);
		const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
		LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
	}
	std::printf("%zu inputs\n", paths.size());
	return paths.empty() ? 1 : 0;
}
