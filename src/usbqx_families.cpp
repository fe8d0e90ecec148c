// usbqx_families.cpp - the families of USB samplers: how each is woken, asked, framed and read
//
//   S5000 request   10 ll ll F0 47 5E cc 00 00 command ss F7   ll: bytes from F0 on, low first
//                                                              cc: channel with 0x20 set
//                                                              ss: sum of the command, 7 bits
//   Z4 request      10 ll ll F0 47 5F cc command F7
//
// To add a family: one row, and a driver for its requests.
//
// Knows nothing of: pipes, windows.

#include "src/usbqx.h"
#include "src/usbqx_pipe.h"
#include <array>

namespace velmor
{

// ---- Bytes -------------------------------------------------------------------------------

u8 akai_s5000_calc_checksum(const u8 *bytes, int length)
{
	unsigned sum = 0;
	for (int i = 4; length >= 5 && i < length; i++)
		sum += bytes[i];
	return static_cast<u8>(sum & 0x7F);
}

static void put_length(std::vector<u8> *frame)
{
	const std::size_t length = frame->size() - 3;
	(*frame)[1] = static_cast<u8>(length);
	(*frame)[2] = static_cast<u8>(length >> 8);
}

static std::vector<u8> z4_frame(u8 channel, std::span<const u8> command)
{
	std::vector<u8> frame = { 0x10, 0x00, 0x00, 0xF0, 0x47, 0x5F, channel };
	frame.insert(frame.end(), command.begin(), command.end());
	frame.push_back(usb_end_byte);
	put_length(&frame);
	return frame;
}

static std::vector<u8> s5000_frame(u8 channel, std::span<const u8> command)
{
	const u8 ored = channel | 0x20;
	std::vector<u8> frame = { 0x10, 0x00, 0x00, 0xF0, 0x47, 0x5E, ored, 0x00, 0x00 };
	frame.insert(frame.end(), command.begin(), command.end());
	frame.push_back(
		akai_s5000_calc_checksum(frame.data() + 3, static_cast<int>(frame.size()) - 3));
	frame.push_back(usb_end_byte);
	put_length(&frame);
	return frame;
}

static i32 high_first(bounded_bytes bytes, int groups)
{
	i32 value = 0;
	for (int i = 0; i < groups; i++)
		value = value << 7 | (bytes[static_cast<std::size_t>(i)] & 0x7F);
	return value;
}

static i32 low_first(bounded_bytes bytes, int groups)
{
	i32 value = 0;
	for (int i = groups; i-- > 0;)
		value = value << 7 | (bytes[static_cast<std::size_t>(i)] & 0x7F);
	return value;
}

// ---- Rows --------------------------------------------------------------------------------

// clang-format off
static constexpr auto s5000_wake_1       = std::to_array<u8>({ 0x03, 0x14 });
static constexpr auto s5000_wake_2       = std::to_array<u8>({ 0x04, 0x03 });
static constexpr auto z4_wake            = std::to_array<u8>({ 0x03, 0x01 });
//                                            0     1     2     3     4     5     6     7     8     9    10    11    12    13
static constexpr auto s5000_first_query  = std::to_array<u8>(
                                          { 0x10, 0x0B, 0x00, 0xF0, 0x47, 0x5E, 0x20, 0x00, 0x00, 0x00, 0x01, 0x00, 0x01, 0xF7 });
static constexpr auto s5000_second_query = std::to_array<u8>(
                                          { 0x10, 0x0B, 0x00, 0xF0, 0x47, 0x5E, 0x20, 0x00, 0x00, 0x00, 0x03, 0x01, 0x04, 0xF7 });
static constexpr auto s5000_name_query   = std::to_array<u8>(
                                          { 0x10, 0x0A, 0x00, 0xF0, 0x47, 0x5E, 0x20, 0x00, 0x00, 0x02, 0x03, 0x05, 0xF7 });
static constexpr auto z4_first_query     = std::to_array<u8>(
                                          { 0x10, 0x08, 0x00, 0xF0, 0x47, 0x5F, 0x00, 0x00, 0x01, 0x00, 0xF7 });
static constexpr auto z4_name_query      = std::to_array<u8>(
                                          { 0x10, 0x07, 0x00, 0xF0, 0x47, 0x5F, 0x00, 0x07, 0x01, 0xF7 });
static constexpr auto z4_hardware_query  = std::to_array<u8>(
                                          { 0x10, 0x07, 0x00, 0xF0, 0x47, 0x5F, 0x00, 0x04, 0x04, 0xF7 });

static constexpr std::span<const u8> s5000_wake[] = { s5000_wake_1, s5000_wake_2 };
static constexpr std::span<const u8> z4_wakes[]   = { z4_wake, z4_wake };

static constexpr usb_query s5000_queries[] = { { s5000_first_query, 5, "O" }, { s5000_second_query, 5, "O" } };
static constexpr usb_query z4_queries[]    = { { z4_first_query, 4, "O" } };

static constexpr u8 s5000_set_name[] = { 0x02, 0x02 };
static constexpr u8 z4_set_name[]    = { 0x00, 0x06, 0x01 };

static constexpr const char *no_z_hardware = "Cannot get Hardware-Type for AKAI Z/MPC!";
static constexpr const char *no_hardware   = "Cannot get Hardware-Type for AKAI S5000/S6000!";
static constexpr const char *no_version    = "Cannot get OS-Version for AKAI S5000/S6000!";
static constexpr const char *no_name       = "Cannot get Sampler-Name for AKAI S5000/S6000!";

static constexpr usb_question s5000_questions[] = {
	{ usb_fact::hardware, { 0x02, 0x04 }, no_hardware },
	{ usb_fact::version,  { 0x02, 0x00 }, no_version },
	{ usb_fact::name,     { 0x02, 0x03 }, no_name },
};
static constexpr usb_question z4_questions[] = {
	{ usb_fact::hardware, { 0x04, 0x04 }, no_z_hardware },
	{ usb_fact::version,  { 0x04, 0x00 }, no_hardware }, // so worded
	{ usb_fact::name,     { 0x07, 0x01 }, no_hardware }, // so worded
};
static constexpr usb_kind s5000_kinds[] = { { 0, model_s5000, "S5000" }, { 1, model_s5000, "S6000" } };
static constexpr usb_kind z4_kinds[]    = { { 0, model_z4, "Z4" }, { 1, model_z4, "Z8" }, { 2, model_mpc4000, "MPC" } };

static constexpr usb_family s5000_family = {
	.model          = model_s5000,
	.product        = 0x5E,
	.scan_wake      = s5000_wake,
	.open_wake      = s5000_wake,
	.resets_pipes   = true,
	.opening        = { s5000_first_query, 6, "O" },
	.channel_offset = 3,
	.scan_queries   = s5000_queries,
	.name_query     = { s5000_name_query, 6, "DO" },
	.hardware_query = {},
	.frame          = s5000_frame,
	.stray_ends     = false,
	.padded         = false,
	.status_offset  = 6,
	.data_offset    = 9,
	.number         = high_first,
	.disk_section   = 0x10,
	.set_name       = s5000_set_name,
	.questions      = s5000_questions,
	.kinds          = s5000_kinds,
	.any_kind       = "S5000/S6000",
	.log_contents   = log_disks_of,
};

static constexpr usb_family z4_family = {
	.model          = model_z4,
	.product        = 0x5F, // the hardware query tells an MPC apart
	.scan_wake      = z4_wakes,
	.open_wake      = std::span(z4_wakes).first(1),
	.resets_pipes   = false,
	.opening        = {},
	.channel_offset = 0,
	.scan_queries   = z4_queries,
	.name_query     = { z4_name_query, 4, "O" },
	.hardware_query = { z4_hardware_query, 4, "O" },
	.frame          = z4_frame,
	.stray_ends     = true,
	.padded         = true,
	.status_offset  = 4,
	.data_offset    = 8,
	.number         = low_first,
	.disk_section   = 0x20,
	.set_name       = z4_set_name,
	.questions      = z4_questions,
	.kinds          = z4_kinds,
	.any_kind       = "Z4/Z8/MPC4000",
	.log_contents   = log_volumes_of,
};
// clang-format on

// Awake from the start, so that a scan does not wake it; else a Z4.
static consteval usb_family mpc_of(usb_family row)
{
	row.model = model_mpc4000;
	row.product = 0x61;
	row.scan_wake = {};
	return row;
}

static constexpr usb_family rows[] = { s5000_family, z4_family, mpc_of(z4_family) };
const std::span<const usb_family> usb_families = rows;

// ---- Look-ups ----------------------------------------------------------------------------

const usb_family *family_of_product(u16 product)
{
	for (const usb_family &row : rows)
		if (row.product == product)
			return &row;
	return nullptr;
}

// A device of no type is framed as an S5000, as it is the first family.
const usb_family &family_of(const _usbdev &usb)
{
	for (const usb_family &row : rows)
		if (row.model == usb.device_type)
			return row;
	return rows[0];
}

std::size_t usb_version_at(const usb_family &family, bounded_bytes answer)
{
	return family.data_offset + (family.padded && answer[family.data_offset] == 0);
}

std::string usb_name_in(const usb_family &family, bounded_bytes answer)
{
	const std::size_t at = usb_version_at(family, answer);
	return answer[at] == usb_end_byte ? "" : answer.text(at);
}

} // namespace velmor
