// told.cpp - words that mean something, and the frames around them: text, card, heading

#include "ui/parts/told.h"
#include "ui/parts/palette.h"
#include "ui/parts/style.h"
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace velmor
{

// ---- Text -----------------------------------------------------------------------------------------

struct mark_row {
	text_role role;
	icon mark;
};

static constexpr mark_row marks[] = {
	{ text_role::plain, icon::idle },
	{ text_role::quiet, icon::idle },
	{ text_role::good, icon::good },
	{ text_role::careful, icon::careful },
	{ text_role::failed, icon::failed },
};

static icon mark_of(text_role role)
{
	for (const mark_row &row : marks)
		if (row.role == role)
			return row.mark;
	return icon::none;
}

told_label::told_label(QWidget *parent) : QLabel(parent)
{
	setTextFormat(Qt::PlainText);
	setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void told_label::set_role(text_role role)
{
	meaning = role;
	update();
}

void told_label::set_marked()
{
	marked = true;
}

void told_label::set_cut()
{
	cut = true;
	setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void told_label::set_spoken(const QString &name)
{
	spoken = name;
	say(text());
}

void told_label::say(const QString &words)
{
	setText(words);
	const QString one_line = QString(words).replace('\n', ' ');
	setAccessibleName(spoken.isEmpty()     ? one_line
			  : one_line.isEmpty() ? spoken
					       : spoken + ": " + one_line);
}

int told_label::mark_width() const
{
	return marked ? icon_size + between_controls : 0;
}

QSize told_label::sizeHint() const
{
	const QSize words = QLabel::sizeHint();
	return { words.width() + mark_width(), std::max(words.height(), marked * icon_size) };
}

QSize told_label::minimumSizeHint() const
{
	const QSize words = QLabel::minimumSizeHint();
	return { cut ? 0 : words.width() + mark_width(), words.height() };
}

int told_label::heightForWidth(int width) const
{
	return wordWrap() ? QLabel::heightForWidth(width - mark_width()) : -1;
}

void told_label::paintEvent(QPaintEvent *)
{
	if (text().isEmpty())
		return;
	QPainter painter(this);
	const QColor color =
		isEnabled() ? role_color(palette(), meaning) : palette().color(QPalette::Text);
	const QRect area = contentsRect();
	const QFontMetrics metrics = fontMetrics();
	if (marked)
		paint_icon(&painter, mark_of(meaning),
			QRectF(area.left(),
				wordWrap() ? area.top() + (metrics.height() - icon_size) / 2.0
					   : area.center().y() + 1 - icon_size / 2.0,
				icon_size, icon_size),
			meaning == text_role::plain ? palette().color(QPalette::Dark) : color);
	const QRect place = area.adjusted(mark_width(), 0, 0, 0);
	// Beside a mark the words need no colour.
	painter.setPen(marked ? palette().color(foregroundRole()) : color);
	const QString words = cut && !text().contains('\n')
				      ? metrics.elidedText(text(), Qt::ElideRight, place.width())
				      : text();
	painter.drawText(
		place, static_cast<int>(alignment()) | (wordWrap() ? Qt::TextWordWrap : 0), words);
}

bool told_label::event(QEvent *event)
{
	if (event->type() != QEvent::ToolTip || !cut || toolTip().size())
		return QLabel::event(event);
	if (fontMetrics().horizontalAdvance(text()) > width() - mark_width())
		QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text(), this);
	return true;
}

// ---- Icons ----------------------------------------------------------------------------------------

icon_label::icon_label(icon which, int side, QPalette::ColorRole role, QWidget *parent)
	: QWidget(parent), drawn(which), color_role(role), meaning(text_role::plain)
{
	setFixedSize(side, side);
}

icon_label::icon_label(icon which, int side, text_role role, QWidget *parent)
	: QWidget(parent), drawn(which), color_role(QPalette::NoRole), meaning(role)
{
	setFixedSize(side, side);
}

void icon_label::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	paint_icon(&painter, drawn, rect(),
		color_role == QPalette::NoRole ? role_color(palette(), meaning)
					       : palette().color(color_role));
}

// ---- Frames ---------------------------------------------------------------------------------------

card::card(QWidget *parent) : QFrame(parent)
{
	setBackgroundRole(QPalette::Base);
}

void card::set_lit(bool focus)
{
	lit = focus;
	update();
}

void card::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	draw_box(&painter, rect(), palette().color(QPalette::Base),
		palette().color(lit ? QPalette::Link : QPalette::Midlight), lit ? 1.5 : 1,
		card_corner);
}

told_label *make_title(const QString &words, double size, bool bold, QWidget *parent)
{
	auto *label = new told_label(parent);
	QFont font = label->font();
	if (font.pointSizeF() > 0)
		font.setPointSizeF(font.pointSizeF() * size);
	font.setBold(bold);
	label->setFont(font);
	label->say(words);
	return label;
}

QFrame *make_line(QWidget *parent)
{
	auto *line = new QFrame(parent);
	line->setFixedHeight(1);
	line->setAutoFillBackground(true);
	line->setBackgroundRole(QPalette::Midlight);
	return line;
}

} // namespace velmor
