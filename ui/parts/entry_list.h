// entry_list.h - a list that knows what it shows: entries, silence, nothing, or old news
//
// An entry is a row of texts, its name first. A list with titles shows them in columns; one of
// two lines shows the second text under the name and the third at the right.

#pragma once
#include "platform/ui.h"
#include "ui/parts/icons.h"
#include <QTreeWidget>

class QPushButton;

namespace velmor
{

class top_window;
class told_label;

class entry_list : public QTreeWidget
{
public:
	entry_list(top_window *window, int control);

	// The titles of the columns; those that no entry has a text for are not shown.
	void set_columns(const QStringList &titles);
	void set_two_lines();
	void take_files();
	// The button that tries again stands in place of the entries when the sampler is silent.
	void set_retry(QPushButton *button);

	// Fill without telling the system, as only the user's choices are told.
	void fill(const std::vector<QStringList> &rows);
	void choose(int index);
	// The chosen entry, -1 when it is none or not to be seen.
	int chosen() const;
	// Hide every entry whose name does not hold these letters.
	void search(const QString &letters);
	// Words for a person; "" for the list's own.
	void set_state(list_state state, const QString &words);
	list_state state() const { return shown_state; }
	// How many entries there are, hidden ones too, and the name of one.
	int count() const { return topLevelItemCount(); }
	QString name_of(int index) const { return topLevelItem(index)->text(0); }
	bool hidden(int index) const { return topLevelItem(index)->isHidden(); }
	// Where a name stands, -1: nowhere.
	int place_of(const QString &name) const;
	QRect place_on_screen(int index) const { return visualItemRect(topLevelItem(index)); }

protected:
	void paintEvent(QPaintEvent *event) override;
	void drawRow(QPainter *painter, const QStyleOptionViewItem &option,
		const QModelIndex &index) const override;
	void resizeEvent(QResizeEvent *event) override;
	void focusInEvent(QFocusEvent *event) override;
	void focusOutEvent(QFocusEvent *event) override;
	void dragEnterEvent(QDragEnterEvent *event) override;
	void dragMoveEvent(QDragMoveEvent *event) override;
	void dragLeaveEvent(QDragLeaveEvent *event) override;
	void dropEvent(QDropEvent *event) override;

private:
	bool has_entries() const;
	bool match(int index) const;
	QString words_instead() const;
	void make_silence();
	void fit_columns(std::size_t texts);

	const int window_id, control_id;
	const icon entry_icon;
	QString letters_sought, empty_text, state_words;
	list_state shown_state = list_state::fresh;
	bool two_lines = false, takes_files = false;
	QWidget *silence = nullptr; // lies over the entries, with words and the button
	told_label *silent_words = nullptr;
};

} // namespace velmor
