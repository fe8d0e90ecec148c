// controls.h - the windows and controls of the program by their ids
//
// An id is unique in its window only. Windows carry the id as a property, so a
// test finds a control as the system does. What a control says and does stands in
// the tables of its window, in the file of its work.

#pragma once

namespace velmor
{

enum window_id : int {
	window_main = 101,
	window_midi_files = 9015,
	window_settings = 9502,
	window_sampler = 10000,
	window_samples = 13001,
	window_programs = 13002,
	window_multis = 13003,
	window_progress = 16000,
	window_panel = 18999,
	window_usb = 20000,
	window_history = 20100,
	window_backup = 20200,
	window_self_test = 20300,
};

// Every dialog.
enum : int {
	control_ok = 1,
	control_cancel = 2,
};

// The foot of every window.
enum status_control : int {
	status_line = 60001,         // how the sampler is reached, and whether it answered last
	status_outcome = 60002,      // how the last work ended, in a sentence
	status_undo = 60003,         // shown where there is something to put back
	status_undo_sampler = 60004, // the same on the sampler
};

// The forms of a program, its keygroup and its keyzone, in a window that shows them, and the
// boxes that let a value go to all.
enum : int {
	form_of_program = 60051,
	form_of_keygroup = 60052,
	form_of_keyzone = 60053,
	apply_to_keygroups = 60054,
	apply_to_keyzones = 60055,
};

enum main_control : int {
	menu_exit = 9001,
	menu_settings = 9002,
	menu_midi_samplers = 9003,
	menu_usb_samplers = 9004,
	menu_midi_files = 9005,
	menu_history = 9006,
	menu_backup = 9007,
	menu_record = 9008,       // "Record traffic", on or off
	menu_record_names = 9009, // "Leave names out", of the next recording
	main_log = 9900,
	main_sampler_list = 9901,
	main_load = 12000,
	main_samples = 12001,
	main_programs = 12002,
	main_multis = 12003,
	main_lcd = 12004,
	main_card = 60041, // what is loaded, and how many of what it holds
	main_card_name = 60042,
	main_card_way = 60043,
	main_card_samples = 60044,
	main_card_programs = 60045,
	main_card_multis = 60046,
	main_log_whole = 60047, // also what the text of the log has let go of
	main_log_save = 60048,
	main_entry_edit = 60049, // what can be done with the chosen entry
	main_entry_remove = 60050,
	main_entry_folder = 60056,
	main_read_again = 60057,
};

enum settings_control : int {
	settings_config_path = 9700,
	settings_midi_in = 9701,
	settings_midi_in_mon = 9702,
	settings_midi_out = 9703,
	settings_found = 9999, // "MIDI-OUT found: ..."
	settings_self_test = 9710,
};

enum sampler_control : int {
	sampler_name = 10001,
	sampler_brand_list = 10002,
	sampler_midi_list = 10003,
	sampler_control_list = 10004,
	sampler_exclusive_list = 10005,
	sampler_note_on = 10100,
	sampler_note_off = 10101,
	sampler_device_info = 10102,
	sampler_monitor_on = 10103,
	sampler_monitor_off = 10104,
	sampler_pitch_list = 10110,
	sampler_velocity_list = 10111,
	sampler_all_notes_off = 16997,
	sampler_tcp_group = 39000, // holds the others
	sampler_tcp_address = 39001,
	sampler_tcp_port = 39002,
	sampler_tcp_on = 39003,
	sampler_tcp_off = 39004,
	sampler_tcp_status = 39005,
	sampler_verdict = 60031,       // who answered Get Device Info, or that nobody did
	sampler_monitor_state = 60033, // whether it runs, and how much has come
	sampler_midi_in_text = 60034,  // the chosen ports, by name
	sampler_midi_out_text = 60035,
};

enum progress_control : int {
	progress_bar = 16001,
	progress_info = 16002,
	progress_time_left = 16003,
	progress_stop = 16004,
	// Of a queue, and of its verdict in the same window.
	progress_item = 16010,  // which one
	progress_rate = 16011,  // bytes a second
	progress_count = 16012, // "3 of 8 samples done"
	progress_whole = 16013, // a bar
	progress_whole_left = 16014,
	progress_list = 16015,
	progress_stop_after = 16016, // "Stop after this one"
	progress_title = 16017,
	progress_reason = 16018,
	progress_counts = 16019, // done, skipped, failed, not tried
	progress_copy = 16020,
	progress_again = 16021, // "Try the failed again"
	progress_close = 16022,
	progress_note = 16023, // what Stop leaves
};

// What was kept of a sampler before it was changed.
enum history_control : int {
	history_list = 20101,
	history_restore = 20102,
	history_delete = 20103,
	history_folder = 20104,  // where it lies
	history_limit = 20105,   // how large it may become
	history_size = 20106,    // how many steps, and how large they are
	history_samples = 20107, // also samples, where that takes long
	history_on = 20108,      // anything at all
	history_refresh = 20109,
};

// A whole sampler in a folder.
enum backup_control : int {
	backup_folder = 20201,
	backup_choose = 20202,
	backup_list = 20203, // what there is, and what would be done
	backup_begin = 20204,
	backup_restore = 20205,
	backup_facts = 20206,
	backup_verify = 20207,     // compare after each transfer
	backup_everything = 20208, // also what looks as it did
	backup_remove = 20209,     // a restore deletes what the folder does not hold
};

// Whether an interface passes on what it is given.
enum self_test_control : int {
	self_test_way = 20301, // a loop cable, or the sampler's echo
	self_test_begin = 20302,
	self_test_list = 20303,
	self_test_verdict = 20304,
	self_test_keep = 20305,   // use what was found
	self_test_forget = 20306, // and no longer
};

// The sample manager. A side is loaded (on the sampler) or local (in the spool).
enum samples_control : int {
	samples_loaded_list = 16100,
	samples_loaded_search = 16101,
	samples_download = 16102,
	samples_loaded_delete = 16103,
	samples_loaded_rename = 16104,
	samples_loaded_new_name = 16105,
	samples_loaded_info = 16106,
	samples_download_all = 16107,
	samples_refresh = 16108,
	samples_local_list = 16200,
	samples_local_search = 16201,
	samples_upload = 16202,
	samples_local_delete = 16203,
	samples_local_rename = 16204,
	samples_local_new_name = 16205,
	samples_local_info = 16206,
	samples_waveform = 16207,
	samples_detail_origin = 16300, // what display_sample_information shows, of both sides
	samples_detail_name = 16301,
	samples_detail_pitch = 16302,
	samples_detail_rate = 16303,
	samples_detail_seconds = 16304,
	samples_detail_channels = 16305,
	samples_detail_bits = 16306,
	samples_detail_playmode = 16307,
	samples_import = 16400,
	samples_export = 16401,
	samples_clear = 16402,
	samples_bits_keep = 16410,
	samples_bits_16 = 16411,
	samples_bits_12 = 16412,
	samples_bits_24 = 16413,
	samples_rate_keep = 16420,
	samples_rate_16000 = 16421,
	samples_rate_22000 = 16422,
	samples_rate_32000 = 16423,
	samples_rate_44100 = 16424,
	samples_rate_48000 = 16425,
	samples_rate_96000 = 16426,
	samples_channels_keep = 16430,
	samples_channels_1 = 16431,
	samples_channels_2 = 16432,
	samples_mix_left = 16440,
	samples_mix_right = 16441,
	samples_mix_both_to_one = 16442,
	samples_mix_both = 16443,
	samples_mix_files = 16444,
	samples_import_preview = 16450, // the file
	samples_preview_becomes = 16451,
	samples_preview_lost = 16452,
	samples_preview_upload = 16453,
	samples_exact = 16460,   // exact length, and all of the header, to the S1000 family
	samples_fit = 16461,     // make the chosen samples what the sampler takes
	samples_rate = 16462,    // bytes a second on this connection
	samples_verify = 16463,  // compare after each transfer
	samples_compare = 16464, // "Compare with the sampler", of the chosen local sample
	samples_play = 16608,
	samples_work_file = 16510,
	samples_work_percent = 16511,
	samples_work_count = 16512,
	samples_work_outcome = 16513,
	samples_loaded_heading = 60011, // how many, and when they were read
	samples_local_heading = 60012,
	samples_retry = 60021, // in place of a list that could not be read
};

// The program manager, without its forms. A side is loaded (on the sampler) or local.
enum programs_control : int {
	programs_refresh = control_ok,
	programs_loaded_list = 17100,
	programs_loaded_search = 17101,
	programs_information = 17102,
	programs_download = 17103,
	programs_loaded_rename = 17104,
	programs_loaded_new_name = 17105,
	programs_loaded_delete = 17106,
	programs_local_list = 17200,
	programs_local_search = 17201,
	programs_upload = 17202,
	programs_import_akp = 17203,
	programs_local_delete = 17204,
	programs_local_rename = 17205,
	programs_local_new_name = 17206,
	programs_keygroup_list = 17300,  // "Keygroup %d"
	programs_keyzone_list = 17301,   // "Keyzone %d"
	programs_keygroup_facts = 17302, // of how many, from which key to which
	programs_zone_sample = 17303,    // the sample of the chosen zone, from the sampler's list
	programs_voice_form = 17304,     // "Keygroup Specials Management"
	programs_zone_form = 17305,      // "Keyzone Special Parameters"
	programs_program_form = 17306,   // "Program-Specials Management"
	programs_adsr = 17307,           // "ADSR Management"
	programs_life_update = 12020,
	programs_save_changes = 17310,
	programs_add_keygroup = 17311,
	programs_delete_keygroup = 17312,
	programs_undo = 17313,
	programs_redo = 17314,
	programs_key_map = 17400,
	programs_amp_envelope = 17410,
	programs_filter_envelope = 17411,
	programs_aux_envelope = 17412,
	programs_adsr_form = 17413,       // the sixteen envelope values, and those of the second
	programs_second_envelope = 17414, // of the S1000 family
	programs_tabs = 17420,            // 0 program, 1 keygroup, 2 keyzone, 3 envelopes
	programs_unsent = 17421,          // "3 changes unsent"
	programs_title = 17422,           // of what the chosen tab shows
	programs_find_sample = 17423,     // "Find in the spool and upload", of a missing sample
	programs_compare = 17424,         // the same of the chosen local program
	programs_loaded_heading = 60014,
	programs_local_heading = 60015,
	programs_retry = 60024,
};

enum usb_control : int {
	usb_update = 30000,
	usb_device_info = 10102,
	usb_device_list = 20001,
	usb_hardware = 21000,
	usb_version = 21001,
	usb_name = 21002,
	usb_exclusive_channel = 21003,
	usb_midi_channel = 21004,
	usb_control_channel = 21005,
	usb_verdict = 60032, // who answered Get Device Info, or that nobody did
};

// The front panel. The machine's own keys have the ids of its table, from the first one on.
enum panel_control : int {
	panel_first_key = 18000,
	panel_picture = 60061,
	panel_state = 60062, // words across the picture: busy, gone
	panel_copy = 60063,
	panel_save = 60064,
	panel_scale_1 = 60065, // pixels of the desktop to one of the picture
	panel_scale_2 = 60066,
	panel_scale_3 = 60067,
};

// The player. A track's controls have its number added.
enum player_control : int {
	player_load = 9101,
	player_unload = 9102,
	player_play = 9103,
	player_stop = 9104,
	player_speed = 9105,       // "Playback Speed", a bar
	player_speed_field = 9106, // its number
	player_tracks = 9107,      // the frames, and the strips beside them
	player_file = 9108,        // which file, or why there is none
	player_sounding = 9109,    // the sounding notes of all tracks
	player_speed_form = 9111,
	player_clock = 9110, // how far the song is, in minutes and seconds
	player_mute = 9300,
	player_channel = 9350,
	player_stack = 9400,
};

enum multis_control : int {
	multis_refresh = control_ok,
	multis_list = 23000,
	multis_download = 23001,
	multis_heading = 60013, // how many, and when they were read
	multis_retry = 60023,   // in place of a list that could not be read
};

} // namespace velmor
