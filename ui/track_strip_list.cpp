// track_strip_list.cpp - the tracks of a song under each other: a frame of words and a strip of notes

#include "ui/track_strip_list.h"
#include "src/velmor_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/window.h"
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QSlider>
#include <QToolButton>
#include <algorithm>

namespace velmor
{

static constexpr int row_tall = 132, row_gap = 8, ruler_tall = 30, color_edge = 5;
static constexpr int line_height = 24, cells_above = 88, cell_tall = 18, cells_across = 4;
static constexpr int span_seconds = 24; // that a strip shows

// ---- The frame of a track -------------------------------------------------------------------------

track_frame::track_frame(int window, int control, int track, QWidget *parent) : QWidget(parent)
{
	make_controls(window, control, track);
}

static void place(QWidget *widget, int id, const QRect &where, const QString &name)
{
	widget->setProperty("id", id);
	widget->setGeometry(where);
	widget->setAccessibleName(name);
	widget->setToolTip(name);
}

void track_frame::make_controls(int window, int control, int track)
{
	const QString which = qtr(", track %1").arg(track);
	channel = new QComboBox(this);
	place(channel, player_channel + track, { 116, 32, 76, 26 }, qtr("Forced Channel") + which);
	connect(channel, &QComboBox::activated, this, [=](int entry) {
		velmor_track(window, control, track_event::channel, track, entry);
	});
	volume = new QSlider(Qt::Horizontal, this);
	volume->setRange(0, 127);
	place(volume, 0, { 254, 32, 60, 26 }, qtr("Volume") + which);
	volume->setEnabled(false);
	volume->setToolTip(qtr("Every note is played as loud as the file has it"));
	mute = new QCheckBox("Mute", this);
	place(mute, player_mute + track, { 330, 32, 72, 26 }, "Mute" + which);
	connect(mute, &QCheckBox::clicked, this,
		[=] { velmor_track(window, control, track_event::mute, track, 0); });
	stack = new QToolButton(this);
	stack->setText(qtr("Sounding:"));
	stack->setAutoRaise(true);
	place(stack, player_stack + track, { 2, 61, 74, 22 }, qtr("Sounding notes") + which);
	stack->setToolTip(qtr("Write the sounding notes of this track to the log"));
	connect(stack, &QToolButton::clicked, this,
		[=] { velmor_track(window, control, track_event::sounding, track, 0); });
}

void track_frame::show_view(const track_view &view)
{
	if (channel->count() != static_cast<int>(view.channels.size())) {
		channel->clear();
		for (const std::string &name : view.channels)
			channel->addItem(QString::fromUtf8(name.c_str()));
	}
	if (!channel->view()->isVisible())
		channel->setCurrentIndex(view.forced_channel);
	volume->setValue(view.volume);
	mute->setChecked(view.muted);
	shown = view;
	setAccessibleName(QString::fromUtf8((view.title + " " + view.name).c_str()));
	setAccessibleDescription(QString::fromUtf8(view.state.c_str()));
	update();
}

static QString joined(const std::vector<std::string> &words)
{
	QStringList all;
	for (const std::string &word : words)
		all += QString::fromUtf8(word.c_str());
	return all.join(' ');
}

// The first of them is the one that was played last.
void track_frame::paint_cells(QPainter *painter) const
{
	const QPalette &colors = palette();
	QFont small = font();
	small.setPointSizeF(font().pointSizeF() * 0.85);
	const int wide = (width() - 16 - 3 * 4) / cells_across;
	for (std::size_t i = 0; i < shown.events.size(); i++) {
		const int column = static_cast<int>(i) % cells_across,
			  line = static_cast<int>(i) / cells_across;
		const QRect cell(8 + column * (wide + 4), cells_above + line * (cell_tall + 2),
			wide, cell_tall);
		const bool played = i == 0 && shown.colour == track_colour::running;
		painter->fillRect(cell, played ? mixed(colors.color(QPalette::Base),
							 colors.color(QPalette::Highlight), 0.14)
					       : colors.color(QPalette::Window));
		small.setBold(played);
		painter->setFont(small);
		painter->setPen(colors.color(played ? QPalette::Link : QPalette::Text));
		painter->drawText(cell, Qt::AlignCenter | Qt::TextSingleLine,
			QString::fromUtf8(shown.events[i].c_str()));
	}
}

void track_frame::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	const bool runs = shown.colour == track_colour::running;
	const auto text = [&](const QRect &where, QPalette::ColorRole role, const QString &words,
				  int align = Qt::AlignLeft) {
		painter.setPen(palette().color(role));
		painter.drawText(where, align | Qt::AlignVCenter | Qt::TextSingleLine,
			painter.fontMetrics().elidedText(words, Qt::ElideRight, where.width()));
	};
	const QString title = QString::fromUtf8(shown.title.c_str());
	const int behind = 16 + fontMetrics().horizontalAdvance(title);
	text({ 8, 6, behind, line_height }, QPalette::PlaceholderText, title);
	text({ 8, 32, 106, 26 }, QPalette::Text, "Forced Channel:");
	text({ 200, 32, 54, 26 }, QPalette::Text, "Volume:");
	text({ 80, 61, width() - 88, 22 }, QPalette::Link, joined(shown.sounding));
	const QString state = QString::fromUtf8((shown.info + " " + shown.state).c_str()).trimmed();
	const QFont plain = font();
	QFont bold = plain;
	bold.setBold(true);
	painter.setFont(runs ? bold : plain);
	const int wide = painter.fontMetrics().horizontalAdvance(state) + 2;
	text({ width() - 8 - wide, 6, wide, line_height },
		runs ? QPalette::Link : QPalette::PlaceholderText, state, Qt::AlignRight);
	painter.setFont(bold);
	text({ behind, 6, width() - 16 - wide - behind, line_height }, QPalette::Text,
		QString::fromUtf8(shown.name.c_str()));
	paint_cells(&painter);
	const QPalette::ColorRole edge = runs                                  ? QPalette::Highlight
					 : shown.colour == track_colour::muted ? QPalette::Midlight
									       : QPalette::Mid;
	painter.fillRect(0, 0, color_edge - 1, height(), palette().color(edge));
}

// ---- A row ------------------------------------------------------------------------------------------

track_row::track_row(int window, int control, int track, QWidget *parent)
	: QWidget(parent), frame(new track_frame(window, control, track, this)),
	  strip(new track_strip(this))
{
}

void track_row::resizeEvent(QResizeEvent *)
{
	const int left = track_frame::width_wanted;
	frame->setGeometry(1, 1, left - 1, height() - 2);
	strip->setGeometry(left + 1, 1, width() - left - 2, height() - 2);
}

void track_row::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	painter.fillRect(rect(), palette().color(QPalette::Base));
	painter.setPen(palette().color(QPalette::Mid));
	painter.drawRect(rect().adjusted(0, 0, -1, -1));
	painter.drawLine(track_frame::width_wanted, 0, track_frame::width_wanted, height());
}

// ---- The list ---------------------------------------------------------------------------------------

static QString empty_text_of(int window, int control)
{
	const caption_row *row = find_caption(window, control);
	return row && row->empty ? qtr(row->empty) : QString();
}

track_list::track_list(top_window *window, int control)
	: QAbstractScrollArea(window), window_id(window->id), control_id(control),
	  empty_text(empty_text_of(window->id, control)), ruler(new QWidget(this))
{
	enroll(window_id, control_id, this);
	setFrameShape(QFrame::NoFrame);
	setFocusPolicy(Qt::StrongFocus);
	setAcceptDrops(true);
	viewport()->setAcceptDrops(true);
	viewport()->setBackgroundRole(QPalette::Window);
	setViewportMargins(0, ruler_tall, 0, 0);
	setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
	setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
	ruler->installEventFilter(this);
	ruler->setAccessibleName(qtr("Time"));
	connect(verticalScrollBar(), &QScrollBar::actionTriggered, this,
		[this](int action) { tell_step(action); });
	setMinimumHeight(ruler_tall + row_tall + 2 * row_gap);
}

// Rows go with the list; nobody is told any more.
track_list::~track_list()
{
	arranging = true;
}

track_row *track_list::row_of(int track) const
{
	const auto found = rows.find(track);
	return found == rows.end() ? nullptr : found->second;
}

int track_list::row_width() const
{
	return viewport()->width() - between_controls;
}

void track_list::set_count(int count)
{
	// One of them may be on the way of the event that led here.
	for (const auto &[track, row] : rows) {
		row->hide();
		row->deleteLater();
	}
	rows.clear();
	tracks = std::max(count, 0);
	length = 0;
	span = {};
	position = -1;
	verticalScrollBar()->setValue(0);
	arrange();
	viewport()->update();
	ruler->update();
}

void track_list::set_track(int track, const track_view &view)
{
	if (track_row *row = row_of(track)) {
		row->frame->show_view(view);
		row->strip->show_muted(view.muted);
	}
}

void track_list::set_strip(int track, const strip_view &view)
{
	length = std::max<std::uint64_t>(view.length, 1);
	turn_to_position();
	if (track_row *row = row_of(track))
		row->strip->show_view(view);
}

static std::uint64_t ticks_between_lines(int speed)
{
	return static_cast<std::uint64_t>(std::max(speed, 1)) * 4;
}

// The song runs through a span and leaves an eighth of it to be seen of what comes before.
void track_list::turn_to_position()
{
	const std::uint64_t wide = static_cast<std::uint64_t>(std::max(speed, 1)) * span_seconds;
	const std::uint64_t at = position < 0 ? 0 : static_cast<std::uint64_t>(position);
	const std::uint64_t step = wide / 8 * 7;
	const std::uint64_t from = at < wide - wide / 16 || step == 0
					   ? 0
					   : (at - (wide - wide / 16)) / step * step + step;
	const song_span wanted = { from, from + wide };
	const bool turned = !(wanted == span);
	span = wanted;
	for (const auto &[track, row] : rows)
		row->strip->show_span(span, ticks_between_lines(speed));
	if (turned)
		ruler->update();
}

void track_list::set_position(std::int64_t ticks, int ticks_per_second)
{
	const auto column = [this](std::int64_t at) {
		return at < 0 ? -1
			      : static_cast<int>(track_strip::place_of(
					span, static_cast<std::uint64_t>(at), ruler->width()));
	};
	const int before = column(position);
	position = ticks;
	speed = ticks_per_second;
	turn_to_position();
	for (const auto &[track, row] : rows)
		row->strip->show_position(position);
	if (column(position) != before)
		ruler->update();
}

// ---- Which rows there are -----------------------------------------------------------------------------

// Rows that leave are put away before others are made; both may bring the system back here.
void track_list::arrange()
{
	if (arranging)
		return;
	arranging = true;
	constexpr int pitch = row_tall + row_gap;
	QScrollBar *bar = verticalScrollBar();
	bar->setSingleStep(pitch / 4);
	bar->setPageStep(viewport()->height());
	bar->setRange(0, std::max(0, tracks * pitch - row_gap - viewport()->height()));
	const int first = bar->value() / pitch;
	const int last = std::min(tracks - 1, (bar->value() + viewport()->height() - 1) / pitch);
	for (auto it = rows.begin(); it != rows.end();) {
		const auto [track, row] = *it;
		it = track < first || track > last ? rows.erase(it) : std::next(it);
		if (rows.contains(track))
			continue;
		row->hide();
		row->deleteLater();
		velmor_track(window_id, control_id, track_event::out_of_view, track, 0);
	}
	for (int track = first; track <= last; track++) {
		track_row *&row = rows[track];
		const bool fresh = !row;
		if (fresh)
			row = new track_row(window_id, control_id, track, viewport());
		row->setGeometry(0, track * pitch - bar->value(), row_width(), row_tall);
		if (!fresh)
			continue;
		row->strip->show_span(span, ticks_between_lines(speed));
		row->strip->show_position(position);
		velmor_track(window_id, control_id, track_event::in_view, track, 0);
		rows[track]->show();
	}
	arranging = false;
}

void track_list::scrollContentsBy(int, int)
{
	arrange();
}

void track_list::resizeEvent(QResizeEvent *)
{
	arrange();
	ruler->setGeometry(viewport()->x() + track_frame::width_wanted + 1,
		viewport()->y() - ruler_tall, row_width() - track_frame::width_wanted - 2,
		ruler_tall);
}

// The bar tells of a step before it makes it.
void track_list::tell_step(int action)
{
	if (action != QAbstractSlider::SliderSingleStepAdd &&
		action != QAbstractSlider::SliderSingleStepSub)
		return;
	const QScrollBar *bar = verticalScrollBar();
	velmor_track(
		window_id, control_id, track_event::scroll, bar->value(), bar->sliderPosition());
}

// ---- What stands around them ----------------------------------------------------------------------------

bool track_list::event(QEvent *event)
{
	if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
		ruler->update();
		viewport()->update();
	}
	return QAbstractScrollArea::event(event);
}

bool track_list::eventFilter(QObject *watched, QEvent *event)
{
	if (watched != ruler || event->type() != QEvent::Paint)
		return QAbstractScrollArea::eventFilter(watched, event);
	QPainter painter(ruler);
	paint_ruler(&painter);
	return true;
}

void track_list::paint_ruler(QPainter *painter) const
{
	if (!tracks)
		return;
	QFont small = font();
	small.setPointSizeF(font().pointSizeF() * 0.85);
	painter->setFont(small);
	const std::uint64_t grid = ticks_between_lines(speed);
	for (std::uint64_t at = (span.from + grid - 1) / grid * grid; at < span.to; at += grid) {
		const double x = track_strip::place_of(span, at, ruler->width());
		const std::uint64_t seconds = at / static_cast<std::uint64_t>(std::max(speed, 1));
		painter->setPen(palette().color(QPalette::Mid));
		painter->drawLine(QPointF(x, ruler_tall - 8), QPointF(x, ruler_tall));
		painter->setPen(palette().color(QPalette::PlaceholderText));
		painter->drawText(QPointF(x + 4, ruler_tall - 15),
			QString("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0')));
	}
	if (hasFocus())
		painter->fillRect(
			0, ruler_tall - 2, ruler->width(), 2, palette().color(QPalette::Link));
	if (position < 0)
		return;
	const double x =
		track_strip::place_of(span, static_cast<std::uint64_t>(position), ruler->width());
	// Below the numbers.
	const QPointF mark[] = { { x - 6, ruler_tall - 11.0 }, { x + 6, ruler_tall - 11.0 },
		{ x, ruler_tall - 1.0 } };
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(Qt::NoPen);
	painter->setBrush(palette().color(QPalette::Link));
	painter->drawPolygon(mark, 3);
}

void track_list::paintEvent(QPaintEvent *)
{
	if (tracks)
		return;
	QPainter painter(viewport());
	const QRect all = viewport()->rect().adjusted(0, 0, -between_controls, -1);
	draw_box(&painter, all, palette().color(QPalette::Base),
		palette().color(hasFocus() ? QPalette::Link : QPalette::Mid), hasFocus() ? 1.5 : 1);
	painter.setPen(palette().color(QPalette::PlaceholderText));
	painter.drawText(
		all.adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, empty_text);
}

// ---- Files that are dropped -------------------------------------------------------------------------------

void track_list::dragEnterEvent(QDragEnterEvent *event)
{
	if (dropped_paths(event->mimeData()).empty() || command_running())
		return;
	event->setDropAction(Qt::CopyAction);
	event->accept();
}

void track_list::dragMoveEvent(QDragMoveEvent *event)
{
	event->setDropAction(Qt::CopyAction);
	event->accept();
}

void track_list::dropEvent(QDropEvent *event)
{
	take_drop(this, event, window_id, control_id);
}

} // namespace velmor
