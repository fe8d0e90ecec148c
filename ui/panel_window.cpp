// panel_window.cpp - a sampler's screen with its keys around it
//
// Screen and keys stand on a board at one scale, a whole number of the desktop's own pixels for
// each of the screen, so that its pixels are square. What the desktop has no room for is scrolled.
//
// Whatever is typed goes to the sampler, wherever the focus is, but for what moves the focus and
// presses a button.

#include "ui/panel_window.h"
#include "platform/host.h"
#include "src/lcd.h"
#include "src/velmor_window.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/pixel_picture.h"
#include "ui/parts/place.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/qt_ui.h"
#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QSaveFile>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <cmath>
#include <iterator>

namespace velmor
{

static constexpr int scale_controls[] = { panel_scale_1, panel_scale_2, panel_scale_3 };
static constexpr QRgb outline_color = qRgb(0x7F, 0x7F, 0x7F);
static constexpr int outline_width = 2;                          // in pixels of the screen
static constexpr double letter_height = 0.55, letter_room = 0.9; // parts of a key

// ---- Keys ------------------------------------------------------------------------------------

// A click leaves the focus with the screen, and Enter is typed there.
static void leave_focus(QPushButton *button)
{
	button->setFocusPolicy(Qt::TabFocus);
	button->setAutoDefault(false);
}

// The system alone says when it is down.
class panel_key : public QPushButton
{
public:
	const panel_key_view key;

	panel_key(const panel_key_view &shown, QWidget *parent) : QPushButton(parent), key(shown)
	{
		setText(QString::fromStdString(key.name));
		setCheckable(true);
		leave_focus(this);
		enroll(window_panel, key.id, this);
		setAccessibleName(text() + (key.wheel ? qtr(", one step") : qtr(" key")));
		if (key.wheel)
			setToolTip(
				qtr("One step of the wheel. The mouse wheel over the screen turns "
				    "it too."));
		connect(this, &QPushButton::clicked, this,
			[id = key.id] { velmor_command(window_panel, id); });
	}

protected:
	void nextCheckState() override {}
	void paintEvent(QPaintEvent *event) override;
};

// A name that is too long for its key is written smaller.
static QFont fitting_font(const QFont &font, const QString &words, const QSize &room)
{
	QFont fits = font;
	double height = room.height() * letter_height;
	fits.setPixelSize(std::max(1, static_cast<int>(height)));
	const double width = QFontMetricsF(fits).horizontalAdvance(words);
	if (width > room.width() * letter_room)
		height *= room.width() * letter_room / width;
	fits.setPixelSize(std::max(1, static_cast<int>(height)));
	return fits;
}

void panel_key::paintEvent(QPaintEvent *)
{
	const bool down = isChecked() || isDown();
	const QPalette &colors = palette();
	const QColor plain = colors.color(QPalette::Button);
	const QColor fill = down ? colors.color(QPalette::Highlight)
			    : underMouse() && isEnabled()
				    ? mixed(plain, colors.color(QPalette::Highlight), 0.12)
				    : plain;
	QPainter painter(this);
	draw_box(&painter, rect(), fill, colors.color(hasFocus() ? QPalette::Link : QPalette::Mid),
		hasFocus() ? 1.5 : 1);
	painter.setFont(fitting_font(font(), text(), size()));
	painter.setPen(colors.color(down ? QPalette::HighlightedText : QPalette::ButtonText));
	painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

// ---- Board -----------------------------------------------------------------------------------

class panel_board : public QWidget
{
public:
	panel_board(top_window *window, QWidget *parent);
	void build(const panel_view *shown);
	void set_scale(int number);
	QSize size_at(int number) const;

	pixel_picture *const picture;

protected:
	void paintEvent(QPaintEvent *event) override;
	bool event(QEvent *event) override;
	void mousePressEvent(QMouseEvent *event) override { tell_mouse(event, mouse_action::down); }
	void mouseReleaseEvent(QMouseEvent *event) override { tell_mouse(event, mouse_action::up); }

private:
	double unit_at(int number) const;
	QRect placed(int x, int y, int width, int height) const;
	void place_words();
	void tell_mouse(const QMouseEvent *event, mouse_action action);

	told_label *const words;
	panel_view view = {};
	std::vector<panel_key *> keys;
	double unit = 1;
};

// Words on a strip across the screen, which is faded behind them: it is not the machine's now.
class panel_words : public told_label
{
public:
	panel_words(QWidget *parent, pixel_picture *screen) : told_label(parent), behind(screen)
	{
		setWordWrap(true);
		setAlignment(Qt::AlignCenter);
		setMargin(between_controls);
		hide();
	}

protected:
	bool event(QEvent *event) override
	{
		if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent)
			behind->set_faded(!isHidden());
		return told_label::event(event);
	}
	void paintEvent(QPaintEvent *event) override
	{
		QPainter painter(this);
		draw_box(&painter, rect(), palette().color(QPalette::Base),
			palette().color(QPalette::Dark));
		painter.end();
		told_label::paintEvent(event);
	}

private:
	pixel_picture *const behind;
};

panel_board::panel_board(top_window *window, QWidget *parent)
	: QWidget(parent), picture(make_picture(window, panel_picture)),
	  words(new panel_words(this, picture))
{
	picture->setParent(this);
	enroll(window_panel, panel_state, words);
}

// A key may be the very one whose press led here, so it goes later.
void panel_board::build(const panel_view *shown)
{
	for (panel_key *key : keys) {
		key->hide();
		key->deleteLater();
	}
	keys.clear();
	if (shown)
		view = *shown;
	view.keys.clear();
	for (const panel_key_view &row : shown ? shown->keys : std::vector<panel_key_view>()) {
		keys.push_back(new panel_key(row, this));
		keys.back()->show();
	}
	words->raise();
	picture->set_light(0xFF000000 | lcd_light());
}

// Pixels of the desktop's own, in those of its windows.
double panel_board::unit_at(int number) const
{
	const double ratio = devicePixelRatioF();
	return std::max(1.0, std::floor(number * ratio)) / ratio;
}

QSize panel_board::size_at(int number) const
{
	const double each = unit_at(number);
	return { static_cast<int>(std::ceil(view.width * each)),
		static_cast<int>(std::ceil(view.height * each)) };
}

QRect panel_board::placed(int x, int y, int width, int height) const
{
	return QRectF(x * unit, y * unit, width * unit, height * unit).toAlignedRect();
}

void panel_board::set_scale(int number)
{
	unit = unit_at(number);
	setFixedSize(size_at(number));
	picture->setGeometry(
		placed(view.picture_x, view.picture_y, view.picture_width, view.picture_height));
	for (panel_key *k : keys)
		k->setGeometry(placed(k->key.x, k->key.y, k->key.width, k->key.height));
	place_words();
	update();
}

// As wide as the screen, and as high as the words; above and below it where it is low.
void panel_board::place_words()
{
	const QRect screen = picture->geometry();
	const int height = words->heightForWidth(screen.width());
	words->setGeometry(screen.left(), std::max(0, screen.center().y() - height / 2),
		screen.width(), height);
}

void panel_board::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	const int width = static_cast<int>(std::ceil(outline_width * unit));
	if (view.width)
		painter.fillRect(picture->geometry().adjusted(-width, -width, width, width),
			picture->hasFocus() ? palette().color(QPalette::Link)
					    : QColor(outline_color));
}

// Asked for when the words have changed.
bool panel_board::event(QEvent *event)
{
	if (event->type() == QEvent::LayoutRequest)
		place_words();
	return QWidget::event(event);
}

// Beside the screen, as the screen tells it too.
void panel_board::tell_mouse(const QMouseEvent *event, mouse_action action)
{
	const QPointF at = (event->position() - picture->pos()) / unit;
	if (event->button() == Qt::RightButton)
		velmor_mouse(window_panel, panel_picture, static_cast<int>(std::floor(at.x())),
			static_cast<int>(std::floor(at.y())), action, 2);
}

// ---- Window ----------------------------------------------------------------------------------

class panel_window : public top_window
{
public:
	explicit panel_window(QWidget *owner);
	void build(const panel_view *view);

protected:
	void keyPressEvent(QKeyEvent *event) override;
	void showEvent(QShowEvent *event) override;

private:
	void make_head();
	void choose_fitting_scale();
	void choose_scale(int number);
	std::string setting() const;
	QSize size_for(const QSize &board_size) const;
	void fit(int number);
	void show_screen();

	told_label *facts;
	QList<QPushButton *> scales;
	QScrollArea *area;
	panel_board *board;
	int scale = 0; // 0 until one was chosen
	QSize pixels;  // of the machine's screen
};

panel_window::panel_window(QWidget *owner) : top_window(window_panel, control_cancel, owner)
{
	keeps_size = false;
	make_head();
	area = new QScrollArea(this);
	area->setFrameShape(QFrame::NoFrame);
	area->setFocusPolicy(Qt::NoFocus);
	area->setAlignment(Qt::AlignCenter);
	area->setBackgroundRole(QPalette::Midlight);
	board = new panel_board(this, area);
	area->setWidget(board);
	content->addWidget(area, 1);
	finish();
}

void panel_window::make_head()
{
	auto *head = new QHBoxLayout;
	facts = new told_label(this);
	facts->set_role(text_role::quiet);
	head->addWidget(facts);
	head->addStretch();
	auto *size = new told_label(this);
	size->say(qtr("Size"));
	size->set_role(text_role::quiet);
	head->addWidget(size);
	for (const int control : scale_controls) {
		QPushButton *button = make_button(this, control);
		button->setCheckable(true);
		leave_focus(button);
		tell_apart(button, qtr("size of the screen"));
		connect(button, &QPushButton::toggled, this, [this, control](bool on) {
			if (on)
				fit(control - panel_scale_1 + 1);
		});
		// Chosen by a hand it stays, in later runs too.
		connect(button, &QPushButton::clicked, this,
			[this] { keep_setting(setting().c_str(), scale); });
		scales += button;
		head->addWidget(button);
	}
	head->addSpacing(between_panels);
	for (const int control : { panel_copy, panel_save }) {
		QPushButton *button = make_button(this, control);
		leave_focus(button);
		head->addWidget(button);
	}
	content->addLayout(head);
}

// With the head, the status line and the margins around it.
QSize panel_window::size_for(const QSize &board_size) const
{
	return board_size +
	       QSize(2 * margin_side + 2,
		       2 * margin_above + button_height + between_controls + status_height + 4);
}

// The largest that this desktop has room for, until a user chooses.
void panel_window::choose_fitting_scale()
{
	const QSize room = QGuiApplication::primaryScreen()->availableSize() - QSize(16, 48);
	int number = static_cast<int>(scales.size());
	for (; number > 1; number--) {
		const QSize wanted = size_for(board->size_at(number));
		if (wanted.width() <= room.width() && wanted.height() <= room.height())
			break;
	}
	choose_scale(number);
}

void panel_window::choose_scale(int number)
{
	scales[number - 1]->setChecked(true);
	fit(number);
}

// For each size of a screen one.
std::string panel_window::setting() const
{
	return format_text("panel_scale_%dx%d", pixels.width(), pixels.height());
}

void panel_window::fit(int number)
{
	scale = number;
	board->set_scale(number);
	const QSize wanted = size_for(board->size());
	const QSize screen = QGuiApplication::primaryScreen()->availableSize();
	const int bar = wanted.width() > screen.width() - 16
				? area->horizontalScrollBar()->sizeHint().height()
				: 0;
	open_at(wanted + QSize(0, bar));
	show_screen();
}

// Where not all of the board is in view, the screen is.
void panel_window::show_screen()
{
	const QPoint middle = board->picture->geometry().center();
	const QSize seen = area->viewport()->size();
	area->horizontalScrollBar()->setValue(middle.x() - seen.width() / 2);
	area->verticalScrollBar()->setValue(middle.y() - seen.height() / 2);
}

void panel_window::build(const panel_view *view)
{
	board->build(view);
	if (!view)
		return;
	facts->say(qtr("%1 × %2 pixels").arg(view->picture_width).arg(view->picture_height));
	const QSize before = pixels;
	pixels = { view->picture_width, view->picture_height };
	const int kept = kept_setting(setting().c_str());
	if (scale && pixels == before)
		fit(scale);
	else if (kept >= 1 && kept <= static_cast<int>(scales.size()))
		choose_scale(kept);
	else
		choose_fitting_scale();
}

void panel_window::keyPressEvent(QKeyEvent *event)
{
	if (!event->text().isEmpty() && !event->isAutoRepeat())
		velmor_key(window_panel, panel_picture, event->key(), event->text().toStdString(),
			true);
}

void panel_window::showEvent(QShowEvent *event)
{
	top_window::showEvent(event);
	board->picture->setFocus();
	show_screen();
}

void create_panel_window(QWidget *owner)
{
	new panel_window(owner);
}

// ---- The service -----------------------------------------------------------------------------

void build_panel(int window, const panel_view *view)
{
	if (auto *panel = dynamic_cast<panel_window *>(find_widget(window, 0)))
		panel->build(view);
}

static QImage picture_of(const bitmap_view *view, int scale)
{
	QImage image;
	enlarge(&image, *view, scale, 0xFF000000 | lcd_light());
	return image;
}

void copy_bitmap(const bitmap_view *view, int scale)
{
	QGuiApplication::clipboard()->setImage(picture_of(view, scale));
}

// Whole under its name, or not at all.
bool save_bitmap(const char *path, const bitmap_view *view, int scale)
{
	QSaveFile file(QString::fromStdString(host.files->host_path(path)));
	return file.open(QIODevice::WriteOnly) && picture_of(view, scale).save(&file, "PNG") &&
	       file.commit();
}

} // namespace velmor
