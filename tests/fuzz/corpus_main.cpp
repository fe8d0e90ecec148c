// corpus_main.cpp - run a fuzz target over the files of a folder
//
// Usage: fuzz_NAME FOLDER. Fails when the folder holds nothing, so that a lost
// corpus cannot pass for a clean one.

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
	int inputs = 0;
	for (int i = 1; i < count; i++) {
		for (const auto &entry : std::filesystem::recursive_directory_iterator(words[i])) {
			if (!entry.is_regular_file())
				continue;
			std::ifstream file(entry.path(), std::ios::binary);
			const std::vector<std::uint8_t> bytes(
				std::istreambuf_iterator<char>(file), {});
			LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
			inputs++;
		}
	}
	std::printf("%d inputs\n", inputs);
	return inputs ? 0 : 1;
}
