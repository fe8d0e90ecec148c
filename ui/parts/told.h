// told.h - words that mean something, and the frames around them: text, card, heading

#pragma once
#include "platform/ui.h"
#include "ui/parts/icons.h"
#include "ui/parts/words.h"
#include <QFrame>
#include <QLabel>

namespace velmor
{

// A text in the colour of its meaning, with the mark of it where that is wanted. A line that
// may be cut shows its end as "..." and the whole of it as its tooltip.
class told_label : public QLabel
{
public:
	explicit told_label(QWidget *parent);
	void set_role(text_role role);
	text_role role() const { return meaning; }
	// Show a check, a triangle or a cross before the words.
	void set_marked();
	// Of any width: what does not fit is cut.
	void set_cut();
	// For screen readers: what the text is, said before it.
	void set_spoken(const QString &name);
	void say(const QString &words);

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;
	int heightForWidth(int width) const override;

protected:
	void paintEvent(QPaintEvent *event) override;
	bool event(QEvent *event) override;

private:
	int mark_width() const;

	text_role meaning = text_role::plain;
	bool marked = false, cut = false;
	QString spoken;
};

// An icon of its own size, in a role of the palette or in the colour of a meaning.
class icon_label : public QWidget
{
public:
	icon_label(icon which, int side, QPalette::ColorRole role, QWidget *parent);
	icon_label(icon which, int side, text_role meaning, QWidget *parent);

protected:
	void paintEvent(QPaintEvent *event) override;

private:
	const icon drawn;
	const QPalette::ColorRole color_role;
	const text_role meaning;
};

// Base on Window, with round corners.
class card : public QFrame
{
public:
	explicit card(QWidget *parent);
	// Its frame says that what fills it has the focus.
	void set_lit(bool focus);

protected:
	void paintEvent(QPaintEvent *event) override;

private:
	bool lit = false;
};

// A label so many times the desktop's size.
told_label *make_title(const QString &words, double size, bool bold, QWidget *parent);
// A hairline across.
QFrame *make_line(QWidget *parent);

} // namespace velmor
