// akaiusb_info.cpp - the parameters of a sample, and its name, on all USB samplers
//
// Knows nothing of: the requests of a model.

#include "src/akaiusb_info.h"
#include <cstring>

namespace velmor
{

// ---- Parameters of a sample --------------------------------------------------------------------

static _sample *find_loaded_sample(const char *samplename)
{
	_dev_status *dev = current_sampler ? current_sampler->status : nullptr;
	for (int i = 0; dev && i < dev->samples; i++)
		if (std::strcmp(dev->sample[i].name, samplename) == 0)
			return &dev->sample[i];
	return nullptr;
}

static bool ask_sample_value(_usbdev *usb, const sample_request &row, i32 *value)
{
	usb_answer answer(scalar_capacity);
	const u8 payload[] = { row.section, row.item };
	if (!ask_usb(usb, payload, &answer)) {
		tell_transfer_failed("[F] %s (%s:%d) SYSEX", row.failure, __FILE_NAME__, __LINE__);
		return false;
	}
	*value = row.form->get(answer.bytes().from(static_cast<std::size_t>(row.offset)));
	if (row.log_word)
		log_line("[D] %s: %d\n", row.log_word, *value);
	return true;
}

static bool select_sample(_usbdev *usb, const sample_info_model &model, const char *samplename)
{
	usb_answer answer(scalar_capacity);
	const bool asked = ask_usb(
		usb, text_request(model.select_section, model.select_item, samplename), &answer);
	if (asked && model.selected_log)
		log_line("%s", model.selected_log);
	if (asked && usb_status(usb, answer) == status_done)
		return true;
	tell_transfer_failed(
		"[F] SET CURRENT SAMPLE FAILED (%s:%d) SYSEX", __FILE_NAME__, __LINE__);
	return false;
}

static void ask_sample_values(_usbdev *usb, const sample_info_model &model, _sample *sample)
{
	i32 value = 0;
	if (model.bits)
		sample->bitspersample = model.bits;
	for (const sample_request &row : model.before_length) {
		if (!ask_sample_value(usb, row, &value))
			return;
		row.field.set(sample, value);
	}
	if (!ask_sample_value(usb, model.length, &value))
		return;
	// The record gets seconds here, not words.
	const u64 rate = sample->sample_rate;
	sample->sample_length = rate ? static_cast<u64>(static_cast<u32>(value)) / rate : 0;
	if (ask_sample_value(usb, model.pitch, &value))
		model.pitch.field.set(sample, value);
}

void read_sample_info(const sample_info_model &model, const char *samplename)
{
	_sample *sample = find_loaded_sample(samplename);
	if (!sample) {
		show_box("FATAL", "Invalid sample!");
		return;
	}
	log_line("Retrieving information for sample '%s' (Internal INDEX: %d)\r\n", samplename,
		static_cast<int>(sample - current_sampler->status->sample));
	const open_usbdev usb = open_for_transfer();
	if (usb && select_sample(usb.get(), model, samplename))
		ask_sample_values(usb.get(), model, sample);
}

// ---- Renaming and deleting -----------------------------------------------------------------------

static std::string seven_bit_name(const char *name)
{
	std::string text = name;
	for (char &c : text)
		c = static_cast<char>(c & 0x7F);
	return text;
}

void rename_usb_sample(
	u8 exclusive_channel, u8 sysex_channel, const char *oldname, const char *newname)
{
	// The same section on the Z4 as well. Whether the selection found the name is not looked
	// at: an unknown one changes whichever sample was current.
	constexpr u8 section = 0x0E, select = 0x05, rename = 0x09, remove = 0x08;
	log_line("[D] Requesting Akai S5000 SAMPLE_%s on Exclusive Channel: %d [SYSEX-CHANNEL: %d] "
		 "[%s] --> [%s]\r\n",
		newname ? "RENAME" : "DELETE", exclusive_channel, sysex_channel, oldname,
		newname ? newname : "NULL");
	const open_usbdev usb = open_loaded_usbdev();
	usb_answer answer(scalar_capacity);
	if (!usb || !ask_or_log(usb.get(), text_request(section, select, seven_bit_name(oldname)),
			    &answer))
		return;
	log_line("[D] Set current sample...\r\n");
	static constexpr u8 delete_current[] = { section, remove };
	const bool done =
		newname ? ask_or_log(usb.get(),
				  text_request(section, rename, seven_bit_name(newname)), &answer)
			: ask_or_log(usb.get(), delete_current, &answer);
	if (done)
		log_line("[D] S5000 %s current sample!\r\n", newname ? "RENAMED" : "DELETED");
}

} // namespace velmor
