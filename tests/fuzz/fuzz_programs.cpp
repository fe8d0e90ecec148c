// fuzz_programs.cpp - any bytes as a program file of this computer, or as an AKP program
//
// The first byte chooses what is done:
//
//   0    the rest is the text of a program
//   1    it is the file of a program, in a folder that holds another one
//   2    it is an AKP file
//
// What is refused is refused with a reason and changes nothing. What is taken, written and read
// again is the same, to the byte of its text.

#include "src/velmor_akp.h"
#include "src/velmor_library.h"
#include "src/waveqx.h"
#include "tests/fuzz/limits.h"
#include <algorithm>
#include <cstdlib>

namespace velmor
{
namespace
{

std::unique_ptr<test_host> h;
std::string folder, file, akp;

void require(bool holds)
{
	if (!holds)
		std::abort();
}

void check_counts(const _program &program)
{
	require(program.keygroups >= 0 && program.keygroups <= max_keygroups);
	for (const _keygroup &keygroup : program.keygroup)
		require(keygroup.keyzones >= 0 && keygroup.keyzones <= max_keyzones);
}

// The same program and the same lines of others come back, and no model makes it fail.
void read_again(const _program &program, const kept_lines &kept)
{
	check_counts(program);
	const std::string text = program_text(program, kept);
	kept_lines kept_again;
	program_refusal why;
	const auto again = read_program_text(text, &kept_again, &why);
	require(again && why.reason.empty() && kept_again == kept);
	require(program_text(*again, kept_again) == text);
	require(again->sampler_type == program.sampler_type &&
		again->keygroups == program.keygroups &&
		std::string_view(again->name) == program.name);
	const auto any = text.size() % static_cast<std::size_t>(get_sampler_type_count());
	const akp_gap gap = gap_of_akp(program, sampler_type[any]);
	require(gap.left_behind.size() <= not_known(program, sampler_type[any]).size());
}

void read_text(std::string_view text)
{
	kept_lines kept;
	program_refusal why;
	const auto program = read_program_text(text, &kept, &why);
	const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
	require(why.line >= 0 && why.line <= lines);
	require(program ? why.reason.empty() : why.reason.ends_with("."));
	if (program)
		read_again(*program, kept);
}

std::string good_text()
{
	return "model = Generic\n\n[program]\nname = \"GOOD\"\npolyphony = 16\n";
}

bool is_good(const _program &program)
{
	return program_text(program) == good_text();
}

void read_folder(std::span<const u8> bytes)
{
	const std::string good = good_text();
	forget_local_programs(); // of the input before
	h->put_content(
		folder + "\\A.program", { reinterpret_cast<const u8 *>(good.data()), good.size() });
	h->put_content(file, bytes);
	const outcome loaded = load_local_programs();
	require(local_pgm.size() == (loaded.done() ? 2u : 1u) && is_good(*local_pgm.front()));
	require(std::ranges::equal(*h->content(file), bytes));
	if (!loaded.done()) {
		require(loaded.words.find(", line ") != std::string::npos);
		return;
	}
	const _program before = *local_pgm.back();
	require(save_local_program(*local_pgm.back()).done());
	require(load_local_programs().done() && local_pgm.size() == 2);
	require(program_text(*local_pgm.back()) == program_text(before));
}

void read_akp(std::span<const u8> bytes)
{
	static const auto program = std::make_unique<_program>();
	h->put_content(akp, bytes);
	if (import_akp_file(akp.c_str(), program.get()))
		read_again(*program, {});
}

void begin()
{
	h = std::make_unique<test_host>();
	h->use_sampler(model_s5000, 0);
	folder = program_folder();
	file = folder + "\\in.program";
	akp = h->config + "\\in.akp";
	current_run_mode.diagnostics = false;
	host.files->make_folder(folder.c_str());
}

} // namespace
} // namespace velmor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	using namespace velmor;
	if (size < 1 || size > 65536)
		return 0;
	if (!h)
		begin();
	renew_limits(*h);
	h->boxes.clear();
	h->progress = {};
	const std::span<const u8> rest(data + 1, size - 1);
	switch (data[0] % 3) {
	case 0:
		read_text({ reinterpret_cast<const char *>(rest.data()), rest.size() });
		break;
	case 1:
		read_folder(rest);
		break;
	default:
		read_akp(rest);
	}
	require(h->temporary_files() == 0);
	return 0;
}
