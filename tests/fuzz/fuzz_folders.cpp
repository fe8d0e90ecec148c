// fuzz_folders.cpp - the folders of a fuzz target stay what they were when it was started
//
// A target works in a scratch folder of its own. The names of corpus folders, and the place
// where a failing input is written, are made absolute before that.

#include <filesystem>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *count, char ***words)
{
	static std::vector<std::string> kept;
	static std::vector<char *> pointers;
	bool artifacts = false;
	for (int i = 0; i < *count; i++) {
		const std::string word = (*words)[i];
		artifacts |= word.starts_with("-artifact_prefix=");
		const bool path = i > 0 && !word.starts_with("-");
		kept.push_back(path ? std::filesystem::absolute(word).string() : word);
	}
	if (!artifacts)
		kept.push_back(
			"-artifact_prefix=" + std::filesystem::current_path().string() + "/");
	for (std::string &word : kept)
		pointers.push_back(word.data());
	*count = static_cast<int>(pointers.size());
	pointers.push_back(nullptr);
	*words = pointers.data();
	return 0;
}
