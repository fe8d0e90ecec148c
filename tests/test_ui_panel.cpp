// test_ui_panel.cpp - the window with a sampler's screen and keys, driven offscreen

#include "src/lcd.h"
#include "src/usbqx.h"
#include "tests/ui_fixture.h"
#include "ui/parts/palette.h"
#include "ui/parts/pixel_picture.h"
#include "ui/parts/told.h"
#include <QClipboard>
#include <QImage>
#include <QScrollArea>
#include <QWheelEvent>

using namespace velmor;

namespace
{

std::vector<std::string> worked; // what reached the sampler
std::string chosen_path;

// The window over a sampler that gives a picture, without a line.
class panel_window_test : public windows
{
protected:
	panel_window_test()
	{
		testing::internal::CaptureStdout();
		init_sampler_struct();
		testing::internal::GetCapturedStdout();
		ui.choose_new_file = [](const char *, const char *, const char *name) {
			worked.push_back(name);
			return chosen_path;
		};
		worked.clear();
	}
	~panel_window_test() override
	{
		if (model)
			model->getpanel = getpanel;
	}
	// The first eight pixels of the picture are 1000 0011, the rest is light.
	void open(i32 id)
	{
		h.use_sampler(id, 1, "Studio");
		model = get_sampler(id);
		getpanel = model->getpanel;
		model->getpanel = [](u8 *pixels, u32 *length, u8 *, u32 *) {
			const bool s5000 = current_sampler->sampler_type == model_s5000;
			std::fill_n(pixels, *length, s5000 ? 0xFF : 0x00);
			pixels[0] = s5000 ? 0x3E : 0x83;
			last_lcd_answer = answer;
		};
		answer = lcd_answer::picture;
		velmor_command(window_main, main_lcd);
		QApplication::processEvents();
		QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
	}
	pixel_picture *screen() { return at<pixel_picture>(window_panel, panel_picture); }
	QString words() { return at<told_label>(window_panel, panel_state)->text(); }
	void set_scale(int number)
	{
		QTest::mouseClick(at(window_panel, panel_scale_1 + number - 1), Qt::LeftButton);
		QApplication::processEvents();
	}
	_sampler_type *model = nullptr;
	void (*getpanel)(u8 *, u32 *, u8 *, u32 *) = nullptr;
	static inline lcd_answer answer;
};

} // namespace

TEST_F(panel_window_test, pixels_are_square_at_every_scale_and_keys_stand_at_it_too)
{
	const QRgb black = qRgb(0, 0, 0);
	for (const auto &[id, light, key, width] :
		{ std::tuple(model_s5000, qRgb(255, 255, 255), 18003, 100),
			std::tuple(model_z4, qRgb(0xF0, 0xF0, 0xF0), 18009, 50) }) {
		open(id);
		for (const int times : { 3, 1, 2 }) {
			SCOPED_TRACE(times);
			set_scale(times);
			EXPECT_EQ(screen()->size(),
				times * QSize(static_cast<int>(model->lcd_width),
						static_cast<int>(model->lcd_height)));
			const QImage seen = screen()->grab().toImage();
			const auto pixel = [&](int x, int y) {
				return seen.pixel(x, y) | 0xFF000000;
			};
			for (int x = 0; x < 9 * times; x++)
				for (int y = 0; y < 2 * times; y++) {
					const int bit = x / times;
					const bool dark =
						y < times && (bit == 0 || bit == 6 || bit == 7);
					ASSERT_EQ(pixel(x, y), dark ? black : light)
						<< x << " " << y;
				}
			// From the corner of the screen, as the table counts.
			const _sampler_ctrl &row = model->ctrl[key - panel_first_key];
			const QWidget *button = at(window_panel, key);
			const int raised = id == model_z4 ? 30 : 0; // the screen, not the keys
			EXPECT_EQ(button->size(), times * QSize(width, 20));
			EXPECT_EQ(button->pos() - screen()->pos(),
				times * QPoint(row.x_pos, row.y_pos + raised));
			const QSize room = QGuiApplication::primaryScreen()->availableSize();
			EXPECT_LE(at(window_panel, 0)->width(), room.width());
			EXPECT_LE(at(window_panel, 0)->height(), room.height());
		}
		EXPECT_EQ(at(window_panel, key)->accessibleName(),
			QString(id == model_z4 ? "Window key" : "EDIT PROGRAM key"));
	}
	// The keys of the model before are gone.
	EXPECT_EQ(at(window_panel, 0)->findChildren<QPushButton *>().size(), 24 + 5 + 2);
}

TEST_F(panel_window_test, keys_are_pressed_by_mouse_and_whatever_is_typed_goes_to_the_sampler)
{
	open(model_mpc4000); // which takes the characters and sends nothing
	set_scale(1);
	h.forget_log();
	const auto typed = [&] {
		std::string all;
		for (const std::string &line : h.log())
			if (int number = 0; std::sscanf(
				    line.c_str(), "Received WM_KEYDOWN! for LCD (%d)", &number))
				all += static_cast<char>(number);
		h.forget_log();
		return all;
	};
	EXPECT_TRUE(screen()->hasFocus());
	QTest::keyClicks(screen(), "Ab1");
	QTest::keyClick(screen(), Qt::Key_Escape);
	QTest::keyClick(screen(), Qt::Key_Return);
	QTest::keyClick(at(window_panel, panel_copy), 'x');
	EXPECT_EQ(typed(), "Ab1\x1B\rx");
	EXPECT_TRUE(shown(window_panel));
	open(model_z4);
	auto *key = at<QPushButton>(window_panel, 18003);
	bool down = false;
	usbdev.clear();
	h.on_pump = [&] { down |= key->isChecked(); };
	// Nobody is on the line: the press tries, is told, and leaves the key up.
	QTest::mouseClick(key, Qt::LeftButton);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "USB-ERROR (100)", "FATAL" }));
	EXPECT_FALSE(key->isChecked());
	const QImage up = key->grab().toImage();
	host.ui->set_checked(window_panel, 18003, true);
	EXPECT_NE(key->grab().toImage(), up);
	at(window_panel, 0)->close();
	EXPECT_FALSE(shown(window_panel));
	EXPECT_EQ(timer_active, -1);
}

TEST_F(panel_window_test, the_state_stands_across_the_picture)
{
	open(model_z4);
	auto *label = at<told_label>(window_panel, panel_state);
	EXPECT_FALSE(label->isVisible());
	for (const bool dark : { false, true }) {
		use_palette(dark);
		for (const lcd_answer wrong :
			{ lcd_answer::busy, lcd_answer::absent, lcd_answer::failed }) {
			answer = wrong;
			lcd_timer_proc();
			QApplication::processEvents();
			EXPECT_TRUE(label->isVisible());
			EXPECT_TRUE(label->geometry().intersects(screen()->geometry()));
			EXPECT_GE(label->height(), label->heightForWidth(label->width()));
			EXPECT_FALSE(at(window_panel, panel_save)->isEnabled());
		}
	}
	use_palette(false);
	answer = lcd_answer::picture;
	lcd_timer_proc();
	EXPECT_FALSE(label->isVisible());
	EXPECT_TRUE(at(window_panel, panel_save)->isEnabled());
}

TEST_F(panel_window_test, the_picture_is_copied_and_saved_as_it_is_shown)
{
	open(model_z4);
	set_scale(2);
	press(window_panel, panel_copy);
	const QImage copied = QGuiApplication::clipboard()->image();
	EXPECT_EQ(copied.size(), QSize(496, 120));
	EXPECT_EQ(copied.pixel(1, 1), qRgb(0, 0, 0));
	EXPECT_EQ(copied.pixel(2, 0), qRgb(0xF0, 0xF0, 0xF0));
	chosen_path = h.config + "\\shot";
	press(window_panel, panel_save);
	EXPECT_EQ(worked, std::vector<std::string>{ "test sampler.png" });
	const std::optional<std::vector<u8>> bytes = h.content(h.config + "\\shot.png");
	ASSERT_TRUE(bytes);
	const QImage saved = QImage::fromData(bytes->data(), static_cast<int>(bytes->size()));
	EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32),
		copied.convertToFormat(QImage::Format_RGB32));
	chosen_path = h.config + "\\no such folder\\shot.png";
	press(window_panel, panel_save);
	ASSERT_FALSE(h.boxes.empty());
	EXPECT_EQ(h.boxes.back().caption, "ERROR");
	EXPECT_TRUE(h.boxes.back().text.starts_with("The picture could not be saved as "));
	chosen_path.clear();
	press(window_panel, panel_save);
	EXPECT_EQ(h.boxes.size(), 1u);
}
