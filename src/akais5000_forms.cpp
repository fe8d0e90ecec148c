// akais5000_forms.cpp - the voice and the zone form of the S5000 and S6000
//
// In the voice form a number that is typed moves its bar, and the bar stores; in the zone form
// it only moves the bar. Two fields of the zone form have the id 27005: what is typed behind
// "Velocity Start:" is taken for the zone level's field, and that one is read.
//
// Knows nothing of: toolkits, the wire.

#include "src/akai_forms.h"

namespace velmor
{

bool keygroup_setup_busy, setup_busy;

// ---- Lists ----------------------------------------------------------------------------------

static constexpr const char *off_on[] = { "OFF", "ON" };
static constexpr const char *fx_overrides[] = { "OFF", "FX 1", "FX 2", "RV 3", "RV 4" };
static constexpr const char *levels[] = { "-30 dB", "-24 dB", "-18 dB", "-12 dB", "-6 dB", "0 dB",
	"+6 dB", "+12 dB", "+18 dB", "+24 dB", "+30 dB" };
static constexpr const char *attenuations[] = { "0 dB", "6 dB", "12 dB", "18 dB", "24 dB",
	"30 dB" };
static constexpr const char *filter_modes[] = { "2-Pole", "4-Pole", "2-Pole LP+", "2-Pole BP",
	"4-Pole BP", "2-Pole BP+", "1-Pole HP", "2-Pole HP", "1-Pole HP+", "LO<>HI", "LO<>BAND",
	"BAND<>HI", "NOTCH 1", "NOTCH 2", "NOTCH 3", "WIDE NOTCH", "HI-NOTCH", "PEAK 1", "PEAK 2",
	"PEAK 3", "WIDE PEAK", "HI PEAK", "PHASER 1", "PHASER 2", "BI-PHASE", "VOWELISER" };

static std::vector<form_item> mute_groups()
{
	return numbers_after("OFF", 32);
}

static std::vector<form_item> playmodes()
{
	return { { 0, "No Loop", 27045 }, { 1, "One Shot", 27041 }, { 2, "Loop in Release", 27042 },
		{ 3, "Loop until Release", 27043 }, { 4, "LIR->Retrigger", 27044 },
		{ 5, "Play Retrigger", 27065 }, { 6, "As Sample", 27040 } };
}

// All at once, eight pairs, sixteen single outputs.
static std::vector<form_item> outputs()
{
	std::vector<form_item> items = { { 0, "Multi", 27011 } };
	for (int pair = 1; pair <= 8; pair++)
		items.push_back(
			{ pair, format_text("%d/%d", 2 * pair - 1, 2 * pair), 27011 + pair });
	for (int output = 1; output <= 16; output++)
		items.push_back({ 8 + output, std::to_string(output), 27020 + output });
	return items;
}

// ---- Rows -----------------------------------------------------------------------------------

static constexpr form_table_row heading(const char *words)
{
	return { .kind = row_kind::heading, .label = words };
}

static constexpr form_table_row list(const char *label, int id, named_field<_keygroup> field,
	form_items items, const char *apply_word)
{
	return { .kind = row_kind::choice,
		.label = label,
		.id = id,
		.field = field,
		.items = items,
		.apply_word = apply_word };
}

static constexpr form_table_row bar(const char *label, int id, int field_id, any_field field,
	const char *log_word, form_range range, form_range typed)
{
	return { .kind = row_kind::slider,
		.label = label,
		.id = id,
		.field_id = field_id,
		.field = field,
		.bar = range,
		.edit = typed,
		.log_word = log_word };
}

static constexpr form_table_row bar(const char *label, int id, named_field<_keygroup> field,
	const char *log_word, int low, int high)
{
	return bar(label, id, id + 1, field, log_word, { low, high }, { low, high });
}

static constexpr form_table_row button(
	const char *label, int id, named_field<_keyzone> field, applying apply)
{
	return {
		.kind = row_kind::check, .label = label, .id = id, .field = field, .apply = apply
	};
}

// clang-format off
static constexpr form_table_row voice_rows[] = {
	heading("General"),
	//   label              id     field                                                 items                     word when applied
	list("Note-Low:",       27001, field_of<&_keygroup::low_note>,                        note_items<0, 127>,       "NOTE_LOW"),
	list("Note-High:",      27002, field_of<&_keygroup::high_note>,                       note_items<0, 127>,       "NOTE_HIGH"),
	list("Mute-Group:",     27003, field_of<&_keygroup::mute_group>,                      mute_groups,              "MUTE_GROUP"),
	list("FX-Override:",    27004, field_of<&_keygroup::fx_override>,                     word_items<fx_overrides>, "NOTE_LOW"),
	bar("FX-Sendlevel:",    27005, field_of<&_keygroup::fx_sendlevel>,                    "fx_sendlevel",              0, 100),
	list("Zone-Crossfade:", 27007, field_of<&_keygroup::crossfade>,                       word_items<off_on>,       "MUTE_GROUP"),
	list("Keygroup-Level:", 27008, field_of<&_keygroup::s5000_keygroup_level>,            word_items<levels>,       "NOTE_LOW"),
	heading("Pitch/Amp"),
	//  label               id     field                                                  log word                   range
	bar("Semitone-Tune:",   27009, field_of<&_keygroup::s5000_semitone_tune>,             "semitone_tune",           -36, 36),
	bar("Fine-Tune:",       27011, 27012, field_of<&_keygroup::s5000_fine_tune>,          "fine_tune", { -36, 36 }, { -50, 50 }),
	bar("Pitch-Mod1 Lvl:",  27013, field_of<&_keygroup::s5000_pitch_mod1_val>,            "pitch_mod1_val",         -100, 100),
	bar("Pitch-Mod2 Lvl:",  27015, field_of<&_keygroup::s5000_pitch_mod2_val>,            "pitch_mod2_val",         -100, 100),
	bar("Amp-Mod Lvl:",     27017, field_of<&_keygroup::s5000_amp_mod1_val>,              "amp_mod1_val",           -100, 100),
	heading("Filter"),
	list("Filter-Mode:",    27019, field_of<&_keygroup::s5000_filter_mode>,               word_items<filter_modes>, "NOTE_LOW"),
	bar("Cutoff Freq:",     27020, field_of<&_keygroup::s5000_filter_cutoff>,             "filter_cutoff",             0, 100),
	bar("Resonance:",       27022, field_of<&_keygroup::s5000_filter_resonance>,          "filter_resonance",          0, 15),
	bar("Keyboard Track:",  27024, field_of<&_keygroup::s5000_filter_keyboard_track>,     "filter_keyboard_track",   -36, 36),
	bar("Mod1 Input Lvl:",  27026, field_of<&_keygroup::s5000_filter_mod1_input>,         "filter_mod1_input",      -100, 100),
	bar("Mod2 Input Lvl:",  27028, field_of<&_keygroup::s5000_filter_mod2_input>,         "filter_mod2_input",      -100, 100),
	bar("Mod3 Input Lvl:",  27030, field_of<&_keygroup::s5000_filter_mod3_input>,         "filter_mod3_input",      -100, 100),
	list("Attenuation:",    27032, field_of<&_keygroup::s5000_filter_attenuation>,        word_items<attenuations>, "NOTE_LOW"),
	heading("Amp Envelope"), // drawn, and empty
	heading("Filter Envelope"),
	bar("Attack:",          27033, field_of<&_keygroup::filter_attack>,                   "filter_attack",             0, 100),
	bar("Velocity-Attack:", 27035, field_of<&_keygroup::s1000_env1_velocity_attack>,      "velocity_attack",        -100, 100),
	bar("Decay:",           27037, field_of<&_keygroup::filter_decay>,                    "filter_decay",              0, 100),
	bar("Sustain:",         27039, field_of<&_keygroup::filter_sustain>,                  "filter_sustain",            0, 100),
	bar("Release:",         27041, field_of<&_keygroup::filter_release>,                  "filter_release",            0, 100),
	bar("ON Vel-Rel:",      27043, field_of<&_keygroup::s5000_env1_on_velocity_release>,  "on_velocity_release",    -100, 100),
	bar("OFF Vel-Rel:",     27045, field_of<&_keygroup::s1000_env1_off_velocity_release>, "off_velocity_release",   -100, 100),
	bar("Key-Scale:",       27047, field_of<&_keygroup::s1000_env1_key_scaling>,          "key_scaling",            -100, 100),
	bar("Depth:",           27049, field_of<&_keygroup::s5000_env1_depth>,                "depth",                  -100, 100),
};

static constexpr form_table_row zone_rows[] = {
	//  label                      bar    field  field                                    log word         bar               typed
	bar("Zone Level:\n\n",         27004, 27005, field_of<&_keyzone::zone_level>,         "zone_level",     { -100, 100 },   { -600, 60 }),
	bar("Zone Panning(L/R):\n\n",  27007, 27008, field_of<&_keyzone::zone_panning>,       "zone_panning",   { -50, 50 },     { -50, 50 }),
	bar("Fine Tune:\n\n",          27049, 27050, field_of<&_keyzone::fine_tune>,          "fine_tune",      { -50, 50 },     { -50, 50 }),
	bar("Semitone Tune:\n\n",      27052, 27053, field_of<&_keyzone::semitone_tune>,      "semitone_tune",  { -36, 36 },     { -36, 36 }),
	bar("Velocity Start:\n\n",     27055, 27005, field_of<&_keyzone::velocity_start>,     "velocity_start", { -9999, 9999 }, { -9999, 9999 }),
	button("Mute",           27037, field_of<&_keyzone::zone_mute>,           applying::to_all),
	button("Solo",           27038, field_of<&_keyzone::zone_solo>,           applying::alone),
	button("Keyboard Track", 27039, field_of<&_keyzone::zone_keyboard_track>, applying::to_all),
	{ .kind = row_kind::radio, .label = "Sample Playmode",   .field = field_of<&_keyzone::zone_playback>, .items = playmodes, .refresh = akai_s5000_sample_setcheck },
	{ .kind = row_kind::radio, .label = "Output Management", .field = field_of<&_keyzone::zone_output>,   .items = outputs,   .refresh = akai_s5000_output_setcheck },
};

static constexpr form_table voice_form = {
	.control            = form_of_keygroup,
	.rows               = voice_rows,
	.shown_for          = nullptr,
	.callback           = akai_s5000_voice_assign_callback,
	.busy               = &keygroup_setup_busy,
	.field_follows_drag = false,
};
static constexpr form_table zone_form = {
	.control            = form_of_keyzone,
	.rows               = zone_rows,
	.shown_for          = nullptr,
	.callback           = akai_s5000_zone_assign_callback,
	.busy               = &setup_busy,
	.typing_stores      = false,
	.field_follows_drag = false,
	.keyzones           = 4, // whatever the keygroup says
};
// clang-format on

// ---- Slots ----------------------------------------------------------------------------------

void akai_s5000_voice_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting Voice-Output Window for Akai S5000 (PGM: %d, KG: %d, KZ: %d)\r\n",
		pgm, kg, kz);
	open_form(voice_form, window, pgm, kg, kz);
}

void akai_s5000_voice_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (keygroup_setup_busy)
		return;
	log_line("[D] Requesting Voice-Output CALLBACK Window for Akai S5000 (PGM: %d, KG: %d, "
		 "KZ: %d)\r\n",
		pgm, kg, kz);
	take_form_event(voice_form, window, pgm, kg, kz, message, first, second);
}

void akai_s5000_zone_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting ZONE-Output Window for Akai S5000 (PGM: %d, KG: %d, KZ: %d)\r\n",
		pgm, kg, kz);
	open_form(zone_form, window, pgm, kg, kz);
}

void akai_s5000_zone_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (setup_busy)
		return;
	log_line("[D] Requesting ZONEVoice-Output CALLBACK Window for Akai S5000 (PGM: %d, KG: %d, "
		 "KZ: %d) APPLY_ALL: %d\r\n",
		pgm, kg, kz, apply_all_keyzones());
	take_form_event(zone_form, window, pgm, kg, kz, message, first, second);
}

void akai_s5000_prog_assign(int, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting KEYGROUPRAM ZONE-Output Window for Akai S5000 (PGM: %d, KG: %d, "
		 "KZ: %d)\r\n",
		pgm, kg, kz);
}

void akai_s5000_prog_assign_callback(
	int, i32 pgm, i32 kg, i32 kz, unsigned, std::uintptr_t, std::intptr_t)
{
	log_line("[D] Requesting KEYGROUPRAM ZONEVoice-Output CALLBACK Window for Akai S5000 (PGM: "
		 "%d, KG: %d, KZ: %d)\r\n",
		pgm, kg, kz);
}

void akai_s5000_sample_setcheck(i32 pgm, i32 kg, i32 kz)
{
	show_form_field(zone_form, field_of<&_keyzone::zone_playback>, pgm, kg, kz);
}

void akai_s5000_output_setcheck(i32 pgm, i32 kg, i32 kz)
{
	show_form_field(zone_form, field_of<&_keyzone::zone_output>, pgm, kg, kz);
}

} // namespace velmor
