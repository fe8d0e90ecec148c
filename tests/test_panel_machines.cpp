// test_panel_machines.cpp - the front panel against the virtual machines that draw their pages
//
// What the driver shows is compared pixel by pixel with what the machine drew, before the bits
// were put in the order of the wire. Every control of a table is worked, and none is refused.

#include "src/lcd.h"
#include "tests/support/usb_fixture.h"
#include "virtual/demo_usb.h"
#include "virtual/screen_canvas.h"

using namespace velmor;

namespace
{

class panel_machines : public usb_test
{
protected:
	usb_sampler *machine = nullptr;

	template <class model> void plug(model &m, i32 id)
	{
		fill_demo(m);
		machine = &m;
		m.name = "Studio";
		host.usb = &virtual_usb;
		plug_usb(h.time, m);
		h.use_sampler(id, 0, "Studio");
		init_usb(1);
		init_sampler_struct();
	}
	const _sampler_type &row()
	{
		return *get_sampler(static_cast<i32>(current_sampler->sampler_type));
	}
	// Rows of 0 and 1, from what the driver made of an answer.
	std::vector<std::string> fetched()
	{
		std::vector<u8> pixels(row().lcd_pixel_data_length), control(18);
		u32 length = row().lcd_pixel_data_length, control_length = 18;
		row().getpanel(pixels.data(), &length, control.data(), &control_length);
		EXPECT_EQ(length, pixels.size());
		const std::vector<u8> bits = lcd_picture(row(), pixels);
		std::vector<std::string> rows;
		const std::size_t width = row().lcd_width;
		for (std::size_t i = 0; i < bits.size() * 8; i++) {
			if (i % width == 0)
				rows.emplace_back();
			rows.back() += bits[i / 8] << i % 8 & 0x80 ? '#' : '.';
		}
		return rows;
	}
	std::vector<std::string> drawn() const
	{
		const screen_canvas &c = machine->canvas();
		std::vector<std::string> rows(static_cast<std::size_t>(c.height));
		for (int y = 0; y < c.height; y++)
			for (int x = 0; x < c.width; x++)
				rows[static_cast<std::size_t>(y)] += c.dark(x, y) ? '#' : '.';
		return rows;
	}
	// The machine draws when it is asked. True if the driver shows the same.
	bool shows_what_is_drawn()
	{
		const std::vector<std::string> rows = fetched();
		return rows == drawn();
	}
	void work_every_control()
	{
		EXPECT_TRUE(shows_what_is_drawn());
		for (const _sampler_ctrl *c = row().ctrl; c && c->name; c++) {
			SCOPED_TRACE(c->name);
			machine->key_presses.clear();
			work_panel_control(*c, 1);
			EXPECT_EQ(
				machine->key_presses.size(), c->ctrl_type == ctrl_button ? 2u : 1u);
			EXPECT_TRUE(shows_what_is_drawn());
		}
	}
};

TEST_F(panel_machines, every_control_of_an_s5000_shows_what_the_machine_drew)
{
	s5000 rack;
	plug(rack, model_s5000);
	work_every_control();
	work_panel_control(row().ctrl[5], 1); // UTILITIES
	for (const char key : { 'V', 'o', 'x', '\r' })
		type_panel_character(row(), static_cast<u8>(key));
	EXPECT_EQ(rack.name, "Vox");
}

TEST_F(panel_machines, every_control_of_a_z8_shows_what_the_machine_drew)
{
	z4 rack(z4_model::z8);
	plug(rack, model_z4);
	work_every_control();
	work_panel_control(row().ctrl[19], 1); // Program
	work_panel_control(row().ctrl[10], 3); // three steps of the wheel
	for (const char key : { 'P', 'a', 'd', '\r' })
		type_panel_character(row(), static_cast<u8>(key));
	EXPECT_EQ(rack.programs[3].name, "Pad");
}

TEST_F(panel_machines, an_mpc_shows_what_it_drew_and_is_told_no_character)
{
	z4 rack(z4_model::mpc4000);
	plug(rack, model_mpc4000);
	const std::vector<std::string> before = fetched();
	EXPECT_TRUE(before == drawn());
	EXPECT_NE(before[4].find("##"), std::string::npos); // its title
	type_panel_character(row(), 'A');
	EXPECT_TRUE(rack.key_presses.empty());
	rack.programs[0].name = "Renamed";
	const std::vector<std::string> after = fetched();
	EXPECT_TRUE(after == drawn());
	EXPECT_TRUE(after != before) << "it draws what it holds now";
}

} // namespace
