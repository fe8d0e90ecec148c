// bench_wave.cpp - conversions against libsamplerate's linear converter and sox, side by side
//
// Usage: bench_wave [MINUTES...]   (1 and 60 when none are given)
//
// Every measure is a process of its own, started from here, best of three: wall and
// processor time of the whole file, from start to end, and peak memory. "itself" is the
// conversion without reading and writing: for this program resample() on files in
// memory, for libsamplerate the time inside its calls. sox runs with -D and its linear
// converter. Files are mono noise under /var/tmp, and /dev/shm for "itself".
//
// Promises: no slower, by processor time, than the faster of the two, and no more memory
// than the source and 16 MB.

#include "platform/backends.h"
#include "src/waveqx.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <samplerate.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace velmor;

namespace
{

struct bench_row {
	const char *name;
	u32 bits, rate, new_bits, new_rate;
};

constexpr bench_row rows[] = {
	{ "44100 -> 22050 Hz", 16, 44100, 16, 22050 },
	{ "48000 -> 44100 Hz", 16, 48000, 16, 44100 },
	{ "16 -> 12 bits", 16, 44100, 12, 44100 },
	{ "24 -> 16 bits", 24, 44100, 16, 44100 },
};

double now()
{
	using namespace std::chrono;
	return duration<double>(steady_clock::now().time_since_epoch()).count();
}

constexpr u32 head_size = 44;

void put_head(u8 *head, u32 bits, u32 rate, u32 data_size)
{
	const u32 frame = bits / 8;
	std::memcpy(head, "RIFF", 4);
	wave_write_32bit(head + 4, data_size + head_size - 8);
	std::memcpy(head + 8, "WAVEfmt ", 8);
	wave_write_32bit(head + 16, 16);
	wave_write_16bit(head + 20, 1);
	wave_write_16bit(head + 22, 1);
	wave_write_32bit(head + 24, rate);
	wave_write_32bit(head + 28, rate * frame);
	wave_write_16bit(head + 32, frame);
	wave_write_16bit(head + 34, bits);
	std::memcpy(head + 36, "data", 4);
	wave_write_32bit(head + 40, data_size);
}

void make_source(const std::string &path, const bench_row &row, u32 minutes)
{
	const u32 data_size = row.rate * 60 * minutes * (row.bits / 8);
	std::FILE *file = std::fopen(path.c_str(), "wb");
	u8 head[head_size];
	put_head(head, row.bits, row.rate, data_size);
	std::fwrite(head, 1, sizeof head, file);
	std::vector<u8> block(96 * 1024);
	u32 noise = 1;
	for (u32 done = 0; done < data_size;) {
		for (u8 &byte : block)
			byte = static_cast<u8>((noise = noise * 1664525 + 1013904223) >> 24);
		const u32 part = std::min<u32>(data_size - done, static_cast<u32>(block.size()));
		std::fwrite(block.data(), 1, part, file);
		done += part;
	}
	std::fclose(file);
}

// ---- The contestants; each prints the seconds of the conversion itself ------------------

int run_ours(const bench_row &row, const char *source, const char *target)
{
	static ui_service ui = {};
	ui.exists = [](int, int) { return false; };
	static const clock_service still = { .time_of_day = [] { return 0.0; },
		.counter = [] { return 0.0; },
		.sleep_ms = [](int) {} };
	// The others do not wait for the disk either.
	static files_service files = posix_files;
	files.sync = [](int) { return 0; };
	files.sync_folder = [](const char *) { return 0; };
	host.ui = &ui;
	host.clock = &still;
	host.files = &files;
	const double start = now();
	const bool done =
		resample(0, source, target, 1, mix_mode_left, row.new_bits, row.new_rate, 60);
	std::printf("%f\n", now() - start);
	return done ? 0 : 1;
}

int run_samplerate(const bench_row &row, const char *source, const char *target)
{
	static constexpr long block = 32 * 1024;
	std::FILE *in = std::fopen(source, "rb"), *out = std::fopen(target, "wb");
	int error = 0;
	SRC_STATE *state = src_new(SRC_LINEAR, 1, &error);
	if (!in || !out || !state)
		return 1;
	u8 head[head_size];
	if (std::fread(head, 1, head_size, in) != head_size)
		return 1;
	std::fwrite(head, 1, head_size, out);
	const std::size_t frame = row.bits / 8;
	std::vector<u8> raw(block * frame);
	std::vector<short> words(block * 3);
	std::vector<float> from(block), to(block * 3);
	SRC_DATA data = {};
	data.src_ratio = double(row.new_rate) / row.rate;
	double itself = 0;
	for (bool last = false; !last;) {
		const std::size_t got = std::fread(raw.data(), frame, block, in);
		last = got < block;
		const double start = now();
		if (frame == 2)
			src_short_to_float_array(reinterpret_cast<short *>(raw.data()), from.data(),
				static_cast<int>(got));
		else
			for (std::size_t i = 0; i < got; i++)
				from[i] = static_cast<float>(static_cast<i32>(
						  wave_read_24bit(raw.data() + 3 * i) << 8)) *
					  (1.0f / 2147483648.0f);
		data.data_in = from.data();
		data.input_frames = static_cast<long>(got);
		data.data_out = to.data();
		data.output_frames = block * 3;
		data.end_of_input = last;
		if (src_process(state, &data))
			return 1;
		src_float_to_short_array(
			to.data(), words.data(), static_cast<int>(data.output_frames_gen));
		itself += now() - start;
		std::fwrite(words.data(), 2, static_cast<std::size_t>(data.output_frames_gen), out);
	}
	src_delete(state);
	std::fclose(in);
	std::printf("%f\n", itself);
	return std::fclose(out);
}

int run_sox(const bench_row &row, const char *source, const char *target)
{
	// No WAV of sox has 12 bits: the same work is a shift by 4 of 16 bits.
	const char *no_rate[] = { "sox", "-D", source, "-b", "16", target,
		row.new_bits == 12 ? "vol" : nullptr, "0.0625", nullptr };
	const std::string rate = std::to_string(row.new_rate);
	const char *with_rate[] = { "sox", "-D", source, "-b", "16", target, "rate", "-q",
		rate.c_str(), nullptr };
	execvp("sox", const_cast<char **>(row.rate == row.new_rate ? no_rate : with_rate));
	return 1;
}

struct contestant {
	const char *name;
	int (*run)(const bench_row &, const char *, const char *);
};

constexpr contestant contestants[] = {
	{ "velmor", run_ours },
	{ "libsamplerate linear", run_samplerate },
	{ "sox -D", run_sox },
};

// ---- Measuring ------------------------------------------------------------------------------

struct measure {
	double wall = 1e9, cpu = 1e9, itself = 1e9, megabytes = 0;
	bool ran = false;
};

measure once(std::size_t who, std::size_t row, const std::string &source, const std::string &target)
{
	int ends[2];
	if (pipe(ends) != 0)
		return {};
	const double start = now();
	const pid_t child = fork();
	if (child == 0) {
		dup2(ends[1], 1);
		const std::string w = std::to_string(who), r = std::to_string(row);
		execl("/proc/self/exe", "bench_wave", "--run", w.c_str(), r.c_str(), source.c_str(),
			target.c_str(), nullptr);
		_exit(127);
	}
	close(ends[1]);
	int status = 0;
	rusage used = {};
	wait4(child, &status, 0, &used);
	measure m;
	m.wall = now() - start;
	m.ran = status == 0;
	auto seconds = [](const timeval &t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
	m.cpu = seconds(used.ru_utime) + seconds(used.ru_stime);
	m.megabytes = double(used.ru_maxrss) / 1024;
	char text[64] = {};
	if (read(ends[0], text, sizeof text - 1) > 0)
		m.itself = std::atof(text);
	close(ends[0]);
	return m;
}

measure best_of_three(
	std::size_t who, std::size_t row, const std::string &source, const std::string &target)
{
	measure best;
	for (int i = 0; i < 3; i++) {
		const measure m = once(who, row, source, target);
		best.wall = std::min(best.wall, m.wall);
		best.cpu = std::min(best.cpu, m.cpu);
		best.itself = std::min(best.itself, m.itself);
		best.megabytes = std::max(best.megabytes, m.megabytes);
		best.ran = m.ran;
	}
	return best;
}

bool compare(std::size_t r, u32 minutes, const std::string &folder)
{
	const bench_row &row = rows[r];
	const std::string source = folder + "/in.wav", target = folder + "/out.wav";
	const std::string near = "/dev/shm/velmor-bench-in.wav",
			  near_target = "/dev/shm/velmor-bench-out.wav";
	make_source(source, row, minutes);
	const double size = double(std::filesystem::file_size(source)) / (1024 * 1024);
	std::printf("%s, %u min mono (%.0f MB)\n", row.name, minutes, size);
	measure results[std::size(contestants)];
	for (std::size_t who = 0; who < std::size(contestants); who++) {
		measure &m = results[who] = best_of_three(who, r, source, target);
		if (who == 0) {
			std::filesystem::copy_file(
				source, near, std::filesystem::copy_options::overwrite_existing);
			m.itself = best_of_three(who, r, near, near_target).itself;
			std::filesystem::remove(near);
			std::filesystem::remove(near_target);
		}
		std::printf("  %-22s wall %8.3f s  cpu %8.3f s  ", contestants[who].name, m.wall,
			m.cpu);
		if (m.itself < 1e8)
			std::printf("itself %8.3f s", m.itself);
		else
			std::printf("itself        -  ");
		std::printf("  peak %7.1f MB%s\n", m.megabytes, m.ran ? "" : "  FAILED");
	}
	double fastest = 1e9;
	for (std::size_t who = 1; who < std::size(contestants); who++)
		if (results[who].ran)
			fastest = std::min(fastest, results[who].cpu);
	const bool kept =
		results[0].ran && results[0].cpu <= fastest && results[0].megabytes <= size + 16;
	std::printf("  %s\n", kept ? "kept" : "WORSE THAN PROMISED");
	return kept;
}

} // namespace

int main(int count, char **words)
{
	if (count == 6 && std::strcmp(words[1], "--run") == 0)
		return contestants[std::atoi(words[2])].run(
			rows[std::atoi(words[3])], words[4], words[5]);
	std::vector<u32> lengths;
	for (int i = 1; i < count; i++)
		lengths.push_back(static_cast<u32>(std::atoi(words[i])));
	if (lengths.empty())
		lengths = { 1, 60 };
	// An hour of sound takes room: TMPDIR names a disk that has it.
	std::string folder =
		(std::filesystem::temp_directory_path() / "velmor-bench-XXXXXX").string();
	if (!mkdtemp(folder.data()))
		return 1;
	std::filesystem::current_path(folder); // the log goes here
	bool kept = true;
	for (const u32 minutes : lengths)
		for (std::size_t r = 0; r < std::size(rows); r++)
			kept &= compare(r, minutes, folder);
	std::filesystem::remove_all(folder);
	return kept ? 0 : 1;
}
