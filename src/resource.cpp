// resource.cpp - the table of models, note names, and the selection

#include "src/resource.h"
#include "src/akai_forms.h"
#include "src/akais1000.h"
#include "src/akais5000.h"
#include "src/akais900.h"
#include "src/akaiz4.h"
#include <cstdio>
#include <cstdlib>

namespace velmor
{

// clang-format off
// What tells the models of the S1000 family apart.
struct s1000_family_model {
	const char *brand;
	i32 id;
	u8 flags;
	list_operation getstatus;
	sample_operation downloadsample, infosample;
};
static consteval _sampler_type s1000_family(const s1000_family_model &own)
{
	return {
		.userlevel                = 0,
		.sampler_brand            = own.brand,
		.sampler_flags            = own.flags,
		.lcd_pixel_data_length    = 0,
		.lcd_control_data_length  = 0,
		.lcd_width                = 0,
		.lcd_height               = 0,
		.default_keyzones         = 4,
		.sampler_type             = own.id,
		.ctrl                     = nullptr,  // no panel
		.getstatus                = own.getstatus,
		.getproglist              = akai_s1000_getproglist,
		.getsamplelist            = akai_s1000_getsamplelist,
		.getmultilist             = akai_s1000_getmultilist,
		.renamesample             = akai_s1000_sample_rename,
		.downloadsample           = own.downloadsample,
		.infosample               = own.infosample,
		.uploadsample             = akai_s2000_sample_upload,
		.getplaymode              = akai_s1000_getplaymode,
		.getpanel                 = nullptr,  // no panel
		.saveprogram              = akai_s1000_prog_save,
		.deleteprogram            = akai_s1000_prog_delete,
		.renameprogram            = akai_s1000_prog_rename,
		.assignvoice              = akai_s1000_key_assign,
		.assignvoice_callback     = akai_s1000_key_assign_callback,
		.assignpad                = nullptr,  // only the MPC 4000 has pads
		.assignpad_callback       = nullptr,  // only the MPC 4000 has pads
		.assignqlink              = nullptr,  // no model has it
		.assignqlink_callback     = nullptr,  // no model has it
		.assignvelocity           = akai_s1000_velocity_assign,
		.assignvelocity_callback  = akai_s1000_velocity_assign_callback,
		.assignprog               = akai_s1000_prog_assign,
		.assignprog_callback      = akai_s1000_prog_assign_callback,
		.del_keygroup             = akai_s1000_del_keygroup,
	};
}

// A row that no sampler is behind.
struct row_without_operations {
	const char *brand;
	i32 id;
	u8 flags;
	i32 userlevel;
};
static consteval _sampler_type no_operations(const row_without_operations &own)
{
	return {
		.userlevel                = own.userlevel,
		.sampler_brand            = own.brand,
		.sampler_flags            = own.flags,
		.lcd_pixel_data_length    = 0,
		.lcd_control_data_length  = 0,
		.lcd_width                = 0,
		.lcd_height               = 0,
		.default_keyzones         = 0,
		.sampler_type             = own.id,
		.ctrl                     = nullptr,  // no panel
		.getstatus                = nullptr,
		.getproglist              = nullptr,
		.getsamplelist            = nullptr,
		.getmultilist             = nullptr,
		.renamesample             = nullptr,
		.downloadsample           = nullptr,
		.infosample               = nullptr,
		.uploadsample             = nullptr,
		.getplaymode              = nullptr,
		.getpanel                 = nullptr,
		.saveprogram              = nullptr,
		.deleteprogram            = nullptr,
		.renameprogram            = nullptr,
		.assignvoice              = nullptr,
		.assignvoice_callback     = nullptr,
		.assignpad                = nullptr,
		.assignpad_callback       = nullptr,
		.assignqlink              = nullptr,
		.assignqlink_callback     = nullptr,
		.assignvelocity           = nullptr,
		.assignvelocity_callback  = nullptr,
		.assignprog               = nullptr,
		.assignprog_callback      = nullptr,
		.del_keygroup             = nullptr,
	};
}

// In the order of the brand list. The S3200 repeats the id of the S3000: every
// look-up by id finds the S3000 first, and both rows hold the same operations.
_sampler_type sampler_type[11] = {
	//              brand      id             flags  userlevel
	no_operations({ "Generic", model_generic, 0x00,  0 }),
	{
		.userlevel                = 0,
		.sampler_brand            = "Akai S900/950",
		.sampler_flags            = 0x00,
		.lcd_pixel_data_length    = 0,
		.lcd_control_data_length  = 0,
		.lcd_width                = 0,
		.lcd_height               = 0,
		.default_keyzones         = 2,
		.sampler_type             = model_s900,
		.ctrl                     = nullptr,  // no panel
		.getstatus                = akai_s900_getstatus,
		.getproglist              = akai_s900_getproglist,
		.getsamplelist            = akai_s900_getsamplelist,
		.getmultilist             = akai_s900_getmultilist,
		.renamesample             = nullptr,  // the machine takes no such request
		.downloadsample           = akai_s900_download_sample,
		.infosample               = akai_s900_sample_info,
		.uploadsample             = akai_s900_upload_sample,
		.getplaymode              = nullptr,  // its modes have no names
		.getpanel                 = nullptr,  // no panel
		.saveprogram              = akai_s900_save_program,
		.deleteprogram            = nullptr,  // the machine takes no such request
		.renameprogram            = nullptr,  // the machine takes no such request
		.assignvoice              = akai_s900_voice_assign,
		.assignvoice_callback     = akai_s900_voice_assign_callback,
		.assignpad                = nullptr,  // only the MPC 4000 has pads
		.assignpad_callback       = nullptr,  // only the MPC 4000 has pads
		.assignqlink              = nullptr,  // no model has it
		.assignqlink_callback     = nullptr,  // no model has it
		.assignvelocity           = akai_s900_velocity_assign,
		.assignvelocity_callback  = akai_s900_velocity_assign_callback,
		.assignprog               = akai_s900_prog_assign,
		.assignprog_callback      = akai_s900_prog_assign_callback,
		.del_keygroup             = nullptr,  // the machine takes no such request
	},
	//             brand                 id           flags        getstatus             downloadsample              infosample
	s1000_family({ "Akai S1000, S1100",  model_s1000, 0x00,        akai_s1000_getstatus, akai_s1000_sample_download, akai_s1000_sample_info }),
	s1000_family({ "Akai S2000",         model_s2000, flag_multis, akai_s2000_getstatus, akai_s2000_sample_download, akai_s2000_sample_info }),
	s1000_family({ "Akai S2800",         model_s2800, flag_multis, akai_s2000_getstatus, akai_s2000_sample_download, akai_s2000_sample_info }),
	s1000_family({ "Akai S3000/S3000XL", model_s3000, flag_multis, akai_s2000_getstatus, akai_s2000_sample_download, akai_s2000_sample_info }),
	s1000_family({ "Akai S3200",         model_s3000, flag_multis, akai_s2000_getstatus, akai_s2000_sample_download, akai_s2000_sample_info }),
	{
		.userlevel                = 0,
		.sampler_brand            = "Akai S5000/6000",
		.sampler_flags            = flag_multis | flag_usb | flag_unused | flag_lcd,
		.lcd_pixel_data_length    = 9600,
		.lcd_control_data_length  = 18,
		.lcd_width                = 320,
		.lcd_height               = 240,
		.default_keyzones         = 4,
		.sampler_type             = model_s5000,
		.ctrl                     = nullptr,  // built at start-up
		.getstatus                = akai_s5000_getstatus,
		.getproglist              = akai_s5000_getproglist,
		.getsamplelist            = akai_s5000_getsamplelist,
		.getmultilist             = akai_s5000_getmultilist,
		.renamesample             = akai_s5000_renamesample,
		.downloadsample           = akai_s5000_downloadsample,
		.infosample               = akai_s5000_sampleinfo,
		.uploadsample             = akai_s5000_uploadsample,
		.getplaymode              = akai_s5000_getplaymode,
		.getpanel                 = akai_s5000_getpanel,
		.saveprogram              = akai_s5000_program_save,
		.deleteprogram            = akai_s5000_program_delete,
		.renameprogram            = akai_s5000_program_rename,
		.assignvoice              = akai_s5000_voice_assign,
		.assignvoice_callback     = akai_s5000_voice_assign_callback,
		.assignpad                = nullptr,  // the model has no pads
		.assignpad_callback       = nullptr,  // the model has no pads
		.assignqlink              = nullptr,  // no model has it
		.assignqlink_callback     = nullptr,  // no model has it
		.assignvelocity           = akai_s5000_zone_assign,
		.assignvelocity_callback  = akai_s5000_zone_assign_callback,
		.assignprog               = akai_s5000_prog_assign,
		.assignprog_callback      = akai_s5000_prog_assign_callback,
		.del_keygroup             = akai_s1000_del_keygroup,
	},
	{
		.userlevel                = 0,
		.sampler_brand            = "Akai Z4/Z8",
		.sampler_flags            = flag_multis | flag_usb | flag_unused | flag_lcd,
		.lcd_pixel_data_length    = 1860,
		.lcd_control_data_length  = 18,
		.lcd_width                = 248,
		.lcd_height               = 60,
		.default_keyzones         = 4,
		.sampler_type             = model_z4,
		.ctrl                     = nullptr,  // built at start-up
		.getstatus                = akai_z4_getstatus,
		.getproglist              = akai_z4_getproglist,
		.getsamplelist            = akai_z4_getsamplelist,
		.getmultilist             = akai_z4_getmultilist,
		.renamesample             = akai_z4_renamesample,
		.downloadsample           = akai_z4_downloadsample,
		.infosample               = akai_z4_sampleinfo,
		.uploadsample             = akai_z4_uploadsample,
		.getplaymode              = akai_z4_getplaymode,
		.getpanel                 = akai_z4_getpanel,
		.saveprogram              = akai_z4_saveprogram,
		.deleteprogram            = akai_z4_deleteprogram,
		.renameprogram            = akai_z4_renameprogram,
		.assignvoice              = akai_z4_voice_assign,
		.assignvoice_callback     = akai_z4_voice_assign_callback,
		.assignpad                = nullptr,  // the model has no pads
		.assignpad_callback       = nullptr,  // the model has no pads
		.assignqlink              = nullptr,  // no model has it
		.assignqlink_callback     = nullptr,  // no model has it
		.assignvelocity           = akai_z4_keyzone_assign,
		.assignvelocity_callback  = akai_z4_keyzone_assign_callback,
		.assignprog               = akai_z4_prog_assign,
		.assignprog_callback      = akai_z4_prog_assign_callback,
		.del_keygroup             = nullptr,  // the model has no such request
	},
	{
		.userlevel                = 0,
		.sampler_brand            = "Akai MPC 4000",
		.sampler_flags            = flag_multis | flag_usb | flag_unused | flag_lcd,
		.lcd_pixel_data_length    = 9600,
		.lcd_control_data_length  = 18,
		.lcd_width                = 320,
		.lcd_height               = 240,
		.default_keyzones         = 4,
		.sampler_type             = model_mpc4000,
		.ctrl                     = nullptr,  // its keys cannot be pressed from here
		.getstatus                = akai_mpc_getstatus,
		.getproglist              = akai_z4_getproglist,
		.getsamplelist            = akai_z4_getsamplelist,
		.getmultilist             = akai_z4_getmultilist,
		.renamesample             = akai_z4_renamesample,
		.downloadsample           = akai_z4_downloadsample,
		.infosample               = akai_z4_sampleinfo,
		.uploadsample             = akai_z4_uploadsample,
		.getplaymode              = akai_z4_getplaymode,
		.getpanel                 = akai_mpc_getpanel,
		.saveprogram              = akai_z4_saveprogram,
		.deleteprogram            = akai_z4_deleteprogram,
		.renameprogram            = akai_z4_renameprogram,
		.assignvoice              = akai_z4_voice_assign,
		.assignvoice_callback     = akai_z4_voice_assign_callback,
		.assignpad                = akai_mpc_pad_assign,
		.assignpad_callback       = akai_mpc_pad_assign_callback,
		.assignqlink              = nullptr,  // no model has it
		.assignqlink_callback     = nullptr,  // no model has it
		.assignvelocity           = nullptr,  // no form for the MPC
		.assignvelocity_callback  = nullptr,  // no form for the MPC
		.assignprog               = nullptr,  // no form for the MPC
		.assignprog_callback      = nullptr,  // no form for the MPC
		.del_keygroup             = nullptr,  // the model has no such request
	},
	no_operations({ nullptr, -1, 0xFF, 2 }), // the end
};
// clang-format on

_sampler *current_sampler = nullptr;
i32 current_pgm_index = 0, current_keygroup_index = 0, current_keyzone_index = 0;

_sampler_type *get_sampler(i32 id)
{
	for (_sampler_type *row = sampler_type; row->sampler_brand; row++)
		if (row->sampler_type == id)
			return row;
	return nullptr;
}

int get_sampler_type_count()
{
	int count = 0;
	while (sampler_type[count].sampler_brand)
		count++;
	return count;
}

i32 get_sampler_brand_id(i32 index)
{
	return index >= 0 && index < get_sampler_type_count() ? sampler_type[index].sampler_type
							      : 0;
}

i32 get_sampler_brand_index(i32 id)
{
	const _sampler_type *row = get_sampler(id);
	return row ? static_cast<i32>(row - sampler_type) : 0;
}

// Texts that live as long as the program: count of them, first to last, then null.
template <std::size_t count> struct text_table {
	char text[count][5] = {};
	constexpr std::array<const char *, count + 1> pointers() const
	{
		std::array<const char *, count + 1> list = {};
		for (std::size_t i = 0; i < count; i++)
			list[i] = text[i];
		return list;
	}
};

static constexpr void put_number(char *to, int number)
{
	int power = 1;
	if (number < 0) {
		*to++ = '-';
		number = -number;
	}
	while (number / power >= 10)
		power *= 10;
	for (; power; power /= 10)
		*to++ = static_cast<char>('0' + number / power % 10);
}

template <std::size_t count> static constexpr text_table<count> numbers_from(int first)
{
	text_table<count> table;
	for (std::size_t i = 0; i < count; i++)
		put_number(table.text[i], first + static_cast<int>(i));
	return table;
}

static constexpr text_table<128> note_names()
{
	constexpr const char *letters[] = { "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A",
		"A#", "B" };
	text_table<128> table;
	for (int note = 0; note < 128; note++) {
		char *to = table.text[note];
		for (const char *letter = letters[note % 12]; *letter; letter++)
			*to++ = *letter;
		put_number(to, note / 12 - 2);
	}
	return table;
}

static constexpr text_table<128> note_texts = note_names();
static constexpr text_table<16> channel_texts = numbers_from<16>(1);
static constexpr text_table<129> exclusive_texts = numbers_from<129>(0);
const std::array<const char *, 129> midi_note = note_texts.pointers();
const std::array<const char *, 17> midi_channel = channel_texts.pointers();
const std::array<const char *, 130> sysex_chan = exclusive_texts.pointers();

const char *display_midi_note(int note)
{
	static char text[32];
	std::snprintf(text, sizeof text, "%d (%s)", note, midi_note[note & 0x7F]);
	return text;
}

_dev_status *allocate_dev_status()
{
	// calloc of this size takes fresh zeroed pages, so only what is touched costs memory.
	return static_cast<_dev_status *>(std::calloc(1, sizeof(_dev_status)));
}

void free_sample_data(_sample *sample)
{
	std::free(sample->sample_data);
	std::free(sample->sample_byte);
	sample->sample_data = nullptr;
	sample->sample_byte = nullptr;
}

} // namespace velmor
