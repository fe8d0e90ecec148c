// icons.cpp - the program's own icons: lines on a grid of 16, one stroke, tinted by the palette
//
// A picture is a path in the letters of SVG, with absolute places:
//
//   M x y   L x y   C x1 y1 x2 y2 x y   Z        as there
//   O x y r           a circle             D x y r   a filled one
//   R x y w h r       a rectangle with round corners
//   A x y r from by   a part of a circle, in degrees, counterclockwise from the right

#include "ui/parts/icons.h"
#include "src/controls.h"
#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <charconv>
#include <cstring>

namespace velmor
{

static constexpr double grid = 16, stroke = 1.5;

struct picture_row {
	icon which;
	const char *path;
};

// clang-format off
static constexpr picture_row pictures[] = {
	{ icon::program,      "R 1.5 1.5 13 13 3 M 5 6.5 L 5 9.5 M 8 4.5 L 8 11.5 M 11 6 L 11 10" },
	{ icon::midi,         "O 8 8 6.5 D 4.5 8 0.9 D 11.5 8 0.9 D 5.6 5.4 0.9 D 10.4 5.4 0.9 D 8 4.3 0.9 M 6.5 14.2 L 6.5 12.5 L 9.5 12.5 L 9.5 14.2" },
	{ icon::usb,          "M 8 1.5 L 8 12.5 M 6 3.7 L 8 1.2 L 10 3.7 M 8 11 L 4 8.5 L 4 6.5 M 8 9 L 12 6.8 L 12 4.8 D 8 13.4 1.6 D 4 5.6 1.2 M 11.2 4.4 L 12.8 4.4" },
	{ icon::plugged,      "M 5.5 2 L 5.5 5 M 10.5 2 L 10.5 5 M 3.5 5.5 L 12.5 5.5 L 12.5 8 C 12.5 10 11 11 8 11 C 5 11 3.5 10 3.5 8 Z M 8 11 L 8 14.5" },
	{ icon::unplugged,    "M 5.5 2 L 5.5 5 M 10.5 2 L 10.5 5 M 3.5 5.5 L 12.5 5.5 L 12.5 8 C 12.5 10 11 11 8 11 C 5 11 3.5 10 3.5 8 Z M 8 11 L 8 14.5 M 2 2 L 14 14" },
	{ icon::sampler,      "R 1 3.5 14 9 1.5 R 3.5 6 5 3 0.5 M 11 6.5 L 12.5 6.5 M 11 9.5 L 12.5 9.5" },
	{ icon::computer,     "R 1.5 2 13 9 1.2 M 8 11 L 8 14 M 5 14 L 11 14" },
	{ icon::wave,         "M 1.5 7.2 L 1.5 8.8 M 4.1 5 L 4.1 11 M 6.7 2 L 6.7 14 M 9.3 5 L 9.3 11 M 11.9 3.5 L 11.9 12.5 M 14.5 7 L 14.5 9" },
	{ icon::keys,         "R 1.5 2.5 13 11 1.2 M 5.8 9 L 5.8 13.5 M 10.2 9 L 10.2 13.5 M 5 2.5 L 5 9 L 6.8 9 L 6.8 2.5 M 9.2 2.5 L 9.2 9 L 11 9 L 11 2.5" },
	{ icon::layers,       "M 8 1.8 L 14 4.8 L 8 7.8 L 2 4.8 Z M 2 8 L 8 11 L 14 8 M 2 11.2 L 8 14.2 L 14 11.2" },
	{ icon::display,      "R 1.5 2 13 10 1.2 M 4 5 L 10 5 M 4 7.5 L 8 7.5 M 6 14.2 L 10 14.2" },
	{ icon::load,         "M 8 1.8 L 8 10 M 4.8 7 L 8 10.2 L 11.2 7 M 2 10 L 2 13.8 L 14 13.8 L 14 10" },
	{ icon::right,        "M 2 8 L 14 8 M 10 4 L 14 8 L 10 12" },
	{ icon::all_right,    "M 1.5 5.5 L 12 5.5 M 1.5 10.5 L 12 10.5 M 9 2 L 12.5 5.5 L 9.5 8 M 11 4 L 14.5 8 L 9 14" },
	{ icon::left,         "M 14 8 L 2 8 M 6 4 L 2 8 L 6 12" },
	{ icon::refresh,      "A 8 8 5.8 50 -300 M 11.8 0.9 L 11.7 4 L 8.6 4.2" },
	{ icon::pencil,       "M 2.2 13.8 L 3 10.4 L 11 2.4 L 13.6 5 L 5.6 13 Z M 9.3 4.1 L 11.9 6.7" },
	{ icon::info,         "O 8 8 6.5 M 8 7.4 L 8 11.4 D 8 4.9 0.9" },
	{ icon::trash,        "M 2.2 4 L 13.8 4 M 5.8 4 L 5.8 2 L 10.2 2 L 10.2 4 M 3.6 4 L 4.3 14 L 11.7 14 L 12.4 4 M 6.6 6.8 L 6.6 11.4 M 9.4 6.8 L 9.4 11.4" },
	{ icon::folder_in,    "M 1.5 13 L 1.5 3 L 6 3 L 7.5 5 L 14.5 5 L 14.5 13 Z M 8 6.5 L 8 11 M 6 9.2 L 8 11.2 L 10 9.2" },
	{ icon::folder_out,   "M 1.5 13 L 1.5 3 L 6 3 L 7.5 5 L 14.5 5 L 14.5 13 Z M 5 9 L 11 9 M 9 7 L 11 9 L 9 11" },
	{ icon::folder_clear, "M 1.5 13 L 1.5 3 L 6 3 L 7.5 5 L 14.5 5 L 14.5 13 Z M 6.2 7.2 L 9.8 10.8 M 9.8 7.2 L 6.2 10.8" },
	{ icon::undo,         "M 5.5 2.5 L 2 6 L 5.5 9.5 M 2 6 L 10 6 C 15.3 6 15.3 13.5 10 13.5 L 7 13.5" },
	{ icon::redo,         "M 10.5 2.5 L 14 6 L 10.5 9.5 M 14 6 L 6 6 C 0.7 6 0.7 13.5 6 13.5 L 9 13.5" },
	{ icon::plus,         "M 8 2.5 L 8 13.5 M 2.5 8 L 13.5 8" },
	{ icon::bolt,         "M 9 1.5 L 3.5 9 L 8 9 L 7 14.5 L 12.5 7 L 8 7 Z" },
	{ icon::more,         "D 3 8 1.3 D 8 8 1.3 D 13 8 1.3" },
	{ icon::document,     "M 3 1.5 L 9.5 1.5 L 13 5 L 13 14.5 L 3 14.5 Z M 9.5 1.5 L 9.5 5 L 13 5" },
	{ icon::document_in,  "M 8 1.5 L 3 1.5 L 3 14.5 L 13 14.5 L 13 8 M 14 2 L 7.5 8.5 M 7.5 4.5 L 7.5 8.5 L 11.5 8.5" },
	{ icon::envelope,     "M 1.5 13.5 L 5 3 L 8 8 L 11 8 L 14.5 13.5" },
	{ icon::good,         "O 8 8 6.5 M 5 8.2 L 7.2 10.4 L 11 6" },
	{ icon::careful,      "M 8 1.8 L 14.8 13.8 L 1.2 13.8 Z M 8 6.2 L 8 9.6 D 8 11.7 0.9" },
	{ icon::failed,       "O 8 8 6.5 M 5.6 5.6 L 10.4 10.4 M 10.4 5.6 L 5.6 10.4" },
	{ icon::waiting,      "O 8 8 6.5 M 8 4.4 L 8 8 L 10.4 9.6" },
	{ icon::skipped,      "O 8 8 6.5 M 5 8 L 11 8" },
	{ icon::idle,         "O 8 8 6.5" },
	{ icon::dot,          "D 8 8 6" },
	{ icon::fold_open,    "M 3 5.5 L 8 10.5 L 13 5.5" },
	{ icon::fold_closed,  "M 5.5 3 L 10.5 8 L 5.5 13" },
	{ icon::fold_up,      "M 3 10.5 L 8 5.5 L 13 10.5" },
	{ icon::copy,         "R 5.5 5.5 9 9 1.2 M 3.5 10.5 L 1.5 10.5 L 1.5 1.5 L 10.5 1.5 L 10.5 3.5" },
	{ icon::search,       "O 6.6 6.6 4.8 M 10.2 10.2 L 14.4 14.4" },
	{ icon::zoom_in,      "O 6.6 6.6 4.8 M 10.2 10.2 L 14.4 14.4 M 4.4 6.6 L 8.8 6.6 M 6.6 4.4 L 6.6 8.8" },
	{ icon::zoom_out,     "O 6.6 6.6 4.8 M 10.2 10.2 L 14.4 14.4 M 4.4 6.6 L 8.8 6.6" },
	{ icon::zoom_all,     "M 1.5 3 L 1.5 13 M 14.5 3 L 14.5 13 M 3.5 8 L 12.5 8 M 6 5.5 L 3.5 8 L 6 10.5 M 10 5.5 L 12.5 8 L 10 10.5" },
	{ icon::save,         "M 2 2 L 11.5 2 L 14 4.5 L 14 14 L 2 14 Z M 4.8 2 L 4.8 5.4 L 10.2 5.4 L 10.2 2 M 4.8 14 L 4.8 9 L 11.2 9 L 11.2 14" },
	{ icon::cancel,       "M 3.5 3.5 L 12.5 12.5 M 12.5 3.5 L 3.5 12.5" },
	{ icon::stop,         "R 3.5 3.5 9 9 0.8" },
	{ icon::settings,     "M 1.5 4.5 L 8 4.5 M 12 4.5 L 14.5 4.5 O 10 4.5 2 M 1.5 11.5 L 4 11.5 M 8 11.5 L 14.5 11.5 O 6 11.5 2" },
	{ icon::notes,        "D 4.2 12.3 2 D 11.6 10.9 2 M 6.2 12.3 L 6.2 3.6 L 13.6 2 L 13.6 10.9 M 6.2 6 L 13.6 4.4" },
	{ icon::play,         "M 4.5 2.5 L 13 8 L 4.5 13.5 Z" },
	{ icon::ear,          "M 2 8 L 4.5 8 L 6 4 L 8.5 12 L 10.5 6 L 11.5 8 L 14 8" },
};

struct control_row {
	int window, control;
	icon which;
};

static constexpr control_row controls[] = {
	{ window_main,     0,                     icon::program },
	{ window_main,     main_load,             icon::load },
	{ window_main,     main_log_save,         icon::save },
	{ window_main,     main_entry_edit,       icon::pencil },
	{ window_main,     main_entry_remove,     icon::trash },
	{ window_main,     main_read_again,       icon::refresh },
	{ window_main,     main_samples,          icon::wave },
	{ window_main,     main_programs,         icon::keys },
	{ window_main,     main_multis,           icon::layers },
	{ window_main,     main_lcd,              icon::display },
	{ window_main,     menu_midi_samplers,    icon::midi },
	{ window_main,     menu_usb_samplers,     icon::usb },
	{ window_main,     menu_settings,         icon::settings },
	{ window_settings, 0,                     icon::settings },
	{ window_self_test, 0,                    icon::midi },
	{ window_self_test, self_test_list,       icon::midi },
	{ window_settings, settings_self_test,    icon::good },
	{ window_sampler,  0,                     icon::midi },
	{ window_sampler,  sampler_device_info,   icon::info },
	{ window_sampler,  sampler_note_on,       icon::notes },
	{ window_sampler,  sampler_note_off,      icon::stop },
	{ window_sampler,  sampler_all_notes_off, icon::cancel },
	{ window_sampler,  sampler_monitor_on,    icon::ear },
	{ window_sampler,  sampler_monitor_off,   icon::stop },
	{ window_main,     menu_midi_files,       icon::notes },
	{ window_midi_files, 0,                   icon::notes },
	{ window_midi_files, player_load,         icon::folder_in },
	{ window_midi_files, player_unload,       icon::cancel },
	{ window_midi_files, player_play,         icon::play },
	{ window_midi_files, player_stop,         icon::stop },
	{ window_main,     menu_history,          icon::undo },
	{ window_history,  0,                     icon::undo },
	{ window_history,  history_list,          icon::document },
	{ window_history,  history_restore,       icon::undo },
	{ window_history,  history_delete,        icon::trash },
	{ window_history,  history_refresh,       icon::refresh },
	{ window_main,     menu_backup,           icon::save },
	{ window_backup,   0,                     icon::save },
	{ window_backup,   backup_list,           icon::document },
	{ window_backup,   backup_choose,         icon::folder_in },
	{ window_backup,   backup_begin,          icon::right },
	{ window_backup,   backup_restore,        icon::left },
	{ window_samples,  samples_compare,       icon::search },
	{ window_programs, programs_compare,      icon::search },
	{ window_multis,   multis_download,       icon::right },
	{ window_usb,      0,                     icon::usb },
	{ window_usb,      usb_device_info,       icon::info },
	{ window_usb,      usb_update,            icon::pencil },
	{ window_multis,   0,                     icon::layers },
	{ window_multis,   multis_list,           icon::layers },
	{ window_multis,   multis_refresh,        icon::refresh },
	{ window_multis,   multis_retry,          icon::refresh },
	{ window_programs, 0,                        icon::keys },
	{ window_programs, programs_refresh,         icon::refresh },
	{ window_programs, programs_retry,           icon::refresh },
	{ window_programs, programs_loaded_list,     icon::keys },
	{ window_programs, programs_local_list,      icon::document },
	{ window_programs, programs_information,     icon::info },
	{ window_programs, programs_download,        icon::right },
	{ window_programs, programs_loaded_rename,   icon::pencil },
	{ window_programs, programs_local_rename,    icon::pencil },
	{ window_programs, programs_loaded_delete,   icon::trash },
	{ window_programs, programs_local_delete,    icon::trash },
	{ window_programs, programs_upload,          icon::left },
	{ window_programs, programs_find_sample,     icon::search },
	{ window_programs, programs_import_akp,      icon::document_in },
	{ window_programs, programs_program_form,    icon::more },
	{ window_programs, programs_voice_form,      icon::more },
	{ window_programs, programs_zone_form,       icon::more },
	{ window_programs, programs_adsr,            icon::envelope },
	{ window_programs, programs_life_update,     icon::bolt },
	{ window_programs, programs_save_changes,    icon::save },
	{ window_programs, programs_add_keygroup,    icon::plus },
	{ window_programs, programs_delete_keygroup, icon::trash },
	{ window_programs, programs_undo,            icon::undo },
	{ window_programs, programs_redo,            icon::redo },
	{ window_panel,    0,                     icon::display },
	{ window_panel,    panel_copy,            icon::document },
	{ window_panel,    panel_save,            icon::save },
	{ window_progress, 0,                     icon::right },
	{ window_progress, progress_stop,         icon::stop },
	{ window_progress, progress_stop_after,   icon::skipped },
	{ window_progress, progress_copy,         icon::copy },
	{ window_progress, progress_again,        icon::refresh },
	{ window_samples,  0,                     icon::wave },
	{ window_samples,  samples_loaded_list,   icon::wave },
	{ window_samples,  samples_local_list,    icon::wave },
	{ window_samples,  samples_download,      icon::right },
	{ window_samples,  samples_download_all,  icon::all_right },
	{ window_samples,  samples_upload,        icon::left },
	{ window_samples,  samples_fit,           icon::good },
	{ window_samples,  samples_loaded_rename, icon::pencil },
	{ window_samples,  samples_local_rename,  icon::pencil },
	{ window_samples,  samples_loaded_info,   icon::info },
	{ window_samples,  samples_local_info,    icon::info },
	{ window_samples,  samples_loaded_delete, icon::trash },
	{ window_samples,  samples_local_delete,  icon::trash },
	{ window_samples,  samples_refresh,       icon::refresh },
	{ window_samples,  samples_retry,         icon::refresh },
	{ window_samples,  samples_import,        icon::folder_in },
	{ window_samples,  samples_export,        icon::folder_out },
	{ window_samples,  samples_clear,         icon::folder_clear },
};
// clang-format on

icon icon_of(int window, int control)
{
	if (control == status_undo || control == status_undo_sampler)
		return icon::undo;
	for (const control_row &row : controls)
		if (row.window == window && row.control == control)
			return row.which;
	return icon::none;
}

// ---- Painting -----------------------------------------------------------------------------------

struct icon_path {
	QPainterPath lines, filled;
};

// The numbers behind a letter.
static double next_number(const char **text)
{
	while (**text == ' ')
		(*text)++;
	double value = 0;
	*text = std::from_chars(*text, *text + std::strlen(*text), value).ptr;
	return value;
}

static void add_letter(icon_path *path, char letter, const char **text)
{
	const auto number = [text] { return next_number(text); };
	const double x = number(), y = number();
	if (letter == 'M') {
		path->lines.moveTo(x, y);
	} else if (letter == 'L') {
		path->lines.lineTo(x, y);
	} else if (letter == 'C') {
		const double x2 = number(), y2 = number(), to_x = number(), to_y = number();
		path->lines.cubicTo(x, y, x2, y2, to_x, to_y);
	} else if (letter == 'R') {
		const double width = number(), height = number(), round = number();
		path->lines.addRoundedRect(QRectF(x, y, width, height), round, round);
	} else if (letter == 'A') {
		const double r = number(), from = number(), by = number();
		const QRectF all(x - r, y - r, 2 * r, 2 * r);
		path->lines.arcMoveTo(all, from);
		path->lines.arcTo(all, from, by);
	} else {
		const double r = number();
		(letter == 'D' ? path->filled : path->lines).addEllipse(QPointF(x, y), r, r);
	}
}

static icon_path path_of(icon which)
{
	icon_path path;
	for (const picture_row &row : pictures) {
		if (row.which != which)
			continue;
		for (const char *text = row.path; *text;) {
			const char letter = *text++;
			if (letter == 'Z')
				path.lines.closeSubpath();
			else if (letter != ' ')
				add_letter(&path, letter, &text);
		}
	}
	return path;
}

void paint_icon(QPainter *painter, icon which, const QRectF &place, const QColor &color)
{
	if (which == icon::none)
		return;
	const icon_path path = path_of(which);
	const double side = std::min(place.width(), place.height());
	painter->save();
	painter->setRenderHint(QPainter::Antialiasing);
	painter->translate(place.center() - QPointF(side / 2, side / 2));
	painter->scale(side / grid, side / grid);
	painter->setPen(QPen(color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
	painter->setBrush(Qt::NoBrush);
	painter->drawPath(path.lines);
	painter->fillPath(path.filled, color);
	painter->restore();
}

// Painted anew each time, so that it follows the palette.
class drawn_icon : public QIconEngine
{
public:
	explicit drawn_icon(icon drawn) : which(drawn) {}
	void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
	{
		const QPalette palette = QApplication::palette();
		const QColor colors[] = { palette.color(QPalette::Dark),
			palette.color(QPalette::Disabled, QPalette::ButtonText),
			palette.color(QPalette::Dark), palette.color(QPalette::HighlightedText) };
		paint_icon(painter, which, rect, colors[mode]);
	}
	QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
	{
		QPixmap drawn(size);
		drawn.fill(Qt::transparent);
		QPainter painter(&drawn);
		paint(&painter, QRect({}, size), mode, state);
		return drawn;
	}
	QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
	{
		return { { 16, 16 }, { 32, 32 }, { 48, 48 } };
	}
	QIconEngine *clone() const override { return new drawn_icon(which); }

private:
	const icon which;
};

QIcon make_icon(icon which)
{
	return which == icon::none ? QIcon() : QIcon(new drawn_icon(which));
}

} // namespace velmor
