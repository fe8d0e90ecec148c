// first_start.cpp - the two ways to a first sampler, where none is set up yet

#include "ui/first_start.h"
#include "src/velmor_window.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/qt_ui.h"
#include <QBoxLayout>
#include <QPainter>
#include <QPointer>
#include <QPushButton>

namespace velmor
{

static QPointer<QWidget> shown;

struct way_row {
	int command;
	icon picture;
	const char *title, *words;
	const char *cables[2]; // one that goes both ways, or one there and one back
};

// clang-format off
static constexpr way_row ways[] = {
	{ menu_midi_samplers, icon::midi, own("A sampler on MIDI"),
	  own("S900 to S3200, with MIDI IN and MIDI OUT both connected to this computer. You name the model and the exclusive channel that its own MIDI page shows."),
	  { own("OUT to IN"), own("IN from OUT") } },
	{ menu_usb_samplers, icon::usb, own("A sampler on USB"),
	  own("S5000, S6000, Z4, Z8 or MPC 4000 on a USB cable. Switch it on; it is found by itself, and its name and version are read."),
	  { own("USB cable"), nullptr } },
};
// clang-format on

// ---- How it is wired --------------------------------------------------------------------------

static constexpr int least_cable = 220;

class wiring : public QWidget
{
public:
	wiring(const way_row &shown_way, QWidget *parent) : QWidget(parent), way(shown_way)
	{
		setFixedHeight(88);
		setMinimumWidth(least_cable);
	}

protected:
	void paintEvent(QPaintEvent *event) override;

private:
	void paint_end(QPainter *painter, const QRect &place, icon which, const char *name) const;
	void paint_cable(
		QPainter *painter, QPointF from, QPointF to, bool both, const char *name) const;
	const way_row &way;
};

void wiring::paint_end(QPainter *painter, const QRect &place, icon which, const char *name) const
{
	draw_box(painter, place, palette().color(QPalette::AlternateBase),
		palette().color(QPalette::Midlight), 1, card_corner);
	paint_icon(painter, which, QRectF(place.center().x() - 16, place.top() + 16, 32, 32),
		palette().color(QPalette::Dark));
	painter->setPen(palette().color(QPalette::Text));
	painter->drawText(
		place.adjusted(0, 0, 0, -12), Qt::AlignHCenter | Qt::AlignBottom, qtr(name));
}

void wiring::paint_cable(
	QPainter *painter, QPointF from, QPointF to, bool both, const char *name) const
{
	painter->setPen(QPen(palette().color(QPalette::Link), 1.5, Qt::SolidLine, Qt::RoundCap));
	painter->drawLine(from, to);
	const double way_on = to.x() > from.x() ? 1 : -1;
	for (const double side : { -4.0, 4.0 }) {
		painter->drawLine(to, to + QPointF(-5 * way_on, side));
		if (both)
			painter->drawLine(from, from + QPointF(5 * way_on, side));
	}
	painter->setPen(palette().color(QPalette::Text));
	const double left = std::min(from.x(), to.x());
	painter->drawText(QRectF(left, from.y() - 22, std::abs(to.x() - from.x()), 18),
		Qt::AlignCenter, qtr(name));
}

void wiring::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	painter.setRenderHint(QPainter::Antialiasing);
	const int end = 76;
	paint_end(&painter, QRect(0, 0, end, height()), icon::computer, own("computer"));
	paint_end(&painter, QRect(width() - end, 0, end, height()), icon::sampler, own("sampler"));
	const double left = end + 8, right = width() - end - 8;
	if (way.cables[1]) {
		paint_cable(&painter, { left, 36 }, { right, 36 }, false, way.cables[0]);
		paint_cable(&painter, { right, 72 }, { left, 72 }, false, way.cables[1]);
	} else {
		paint_cable(&painter, { left, 52 }, { right, 52 }, true, way.cables[0]);
	}
}

// ---- The cards --------------------------------------------------------------------------------

static QWidget *make_way(top_window *window, const way_row &way, bool main)
{
	auto *box = new card(window);
	auto *column = new QVBoxLayout(box);
	column->setContentsMargins(24, 20, 24, 24);
	column->setSpacing(between_panels);
	auto *head = new QHBoxLayout;
	head->setSpacing(12);
	head->addWidget(new icon_label(way.picture, big_icon_size, QPalette::Link, box));
	head->addWidget(make_title(qtr(way.title), 1.3, true, box), 1);
	column->addLayout(head);
	column->addWidget(new wiring(way, box));
	auto *words = new told_label(box);
	words->say(qtr(way.words));
	words->setWordWrap(true);
	words->setAlignment(Qt::AlignLeft | Qt::AlignTop);
	// A layout does not know how high words are that go on in the next line.
	words->setMinimumHeight(words->heightForWidth(least_cable));
	column->addWidget(words, 1);
	// It opens what the entry of the menu opens.
	auto *button = new QPushButton(caption_of(window_main, way.command).remove('&'), box);
	button->setIcon(make_icon(way.picture));
	button->setProperty("main", main);
	button->setMinimumHeight(36);
	QObject::connect(button, &QPushButton::clicked, button,
		[command = way.command] { velmor_command(window_main, command); });
	column->addWidget(button);
	return box;
}

// Made when it is first wanted, as most starts are not the first.
static QWidget *make_page(top_window *window)
{
	auto *all = new QWidget(window);
	auto *column = new QVBoxLayout(all);
	column->setContentsMargins(0, 0, 0, 0);
	column->setSpacing(between_controls);
	column->addWidget(make_title(qtr("How is your sampler connected?"), 1.3, true, all));
	auto *words = new told_label(all);
	words->set_role(text_role::quiet);
	words->say(qtr("Choose one way. More samplers can be added later, of either kind."));
	column->addWidget(words);
	auto *cards = new QHBoxLayout;
	cards->setSpacing(between_panels);
	for (const way_row &way : ways)
		cards->addWidget(make_way(window, way, &way == ways), 1);
	column->addLayout(cards, 1);
	return all;
}

void show_first_start(QBoxLayout *place, bool wanted)
{
	if (wanted && !shown) {
		auto *window = static_cast<top_window *>(find_widget(window_main, 0));
		shown = make_page(window);
		place->insertWidget(0, shown);
		window->letter_buttons();
	}
	if (shown)
		shown->setVisible(wanted);
	// The list beside it says why.
	if (QWidget *load = find_widget(window_main, main_load))
		load->setEnabled(!wanted);
}

} // namespace velmor
