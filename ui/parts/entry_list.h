// entry_list.h - a list that knows what it shows: entries, silence, nothing, or old news
//
// An entry is a row of texts, its name first. A list with titles shows them in columns; one of
// two lines shows the second text under the name and the third at the right.
//
// A click on a title sorts by its column, a second one the other way round, and a third one puts
// the entries back in the order in which they came. An entry is known by its place in that order,
// wherever it stands on the screen.

#pragma once
#include "platform/ui.h"
#include "ui/parts/icons.h"
#include <QTreeWidget>
#include <functional>

class QMimeData;
class QPushButton;

namespace velmor
{

class top_window;
class told_label;

// The files of a drop, by the system's paths.
std::vector<std::string> dropped_paths(const QMimeData *data);
// Hand the files of a drop on that widget to the control. The work begins after the drop is over, so
// that the program the files come from is not kept waiting.
void take_drop(QObject *widget, QDropEvent *event, int window, int control);

// What can be done with the chosen entries: a button of the window, by keys and from the menu of
// the entries too. One with a field begins there, with the name of the entry.
struct entry_command {
	int control;
	QList<int> keys;
	int field = 0;
};

// Entries that are dragged over another list are work for a button. The words say what would
// happen to one, and to several ("%1").
struct entry_drag {
	int command;
	const char *one, *several;
};

class entry_list : public QTreeWidget
{
public:
	entry_list(top_window *window, int control);

	// The titles of the columns; those that no entry has a text for are not shown.
	void set_columns(const QStringList &titles);
	void set_two_lines();
	// A column of words, that takes the room that is left, too.
	void set_wide(int column);
	// Columns of words, which stand at the left.
	void set_words(const QList<int> &columns);
	void take_files();
	// Several entries can be chosen at once.
	void take_several();
	// The first of them is the main action: Enter and a double click do it.
	void set_commands(const std::vector<entry_command> &commands);
	// Its entries can be dragged to that list; to other programs, as these files.
	void set_drag(entry_list *to, const entry_drag &drag);
	void set_drag_files(std::function<std::vector<std::string>()> files);
	// Entries of the same names stay where they are when they are filled again.
	void keep_places() { keeps_places = true; }
	// The button that tries again stands in place of the entries when the sampler is silent.
	void set_retry(QPushButton *button);

	// Fill without telling the system, as only the user's choices are told.
	void fill(const std::vector<QStringList> &rows);
	void choose(int index);
	// The chosen entry, -1 when it is none or not to be seen.
	int chosen() const;
	void choose_several(std::span<const int> places);
	// As they stand on the screen.
	std::vector<int> all_chosen() const;
	// One for each entry, from the first on.
	void set_marks(std::span<const entry_mark> marks);
	// What is dragged: the chosen entries, and their files.
	QMimeData *mimeData(const QList<QTreeWidgetItem *> &items = {}) const override;
	// What would happen to the entries that hover over it.
	QString words_of_drop() const { return drop_words; }
	// Hide every entry whose name does not hold these letters.
	void search(const QString &letters);
	// Words for a person; "" for the list's own.
	void set_state(list_state state, const QString &words);
	list_state state() const { return shown_state; }
	// How many entries there are, hidden ones too, and the name of one.
	int count() const { return static_cast<int>(entries.size()); }
	QTreeWidgetItem *entry(int index) const { return entries[static_cast<std::size_t>(index)]; }
	QString name_of(int index) const { return entry(index)->text(0); }
	bool hidden(int index) const { return entry(index)->isHidden(); }
	// Where a name stands, -1: nowhere.
	int place_of(const QString &name) const;
	QRect place_on_screen(int index) const { return visualItemRect(entry(index)); }
	// -1: in the order in which they came.
	void sort_by(int column, Qt::SortOrder order);
	int sorted_by() const { return sort_column; }

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
	void keyPressEvent(QKeyEvent *event) override;
	void contextMenuEvent(QContextMenuEvent *event) override;
	void startDrag(Qt::DropActions) override;

private:
	void tell_choice();
	bool fill_again(const std::vector<QStringList> &rows);
	void run_command(const entry_command &command);
	QString words_for_drop(const QDropEvent *event, bool *possible) const;
	void show_drop_words(const QString &words);
	void paint_drop_words(QPainter *painter) const;
	Qt::Alignment alignment_of(int column) const;
	bool has_entries() const;
	bool match(const QTreeWidgetItem *item) const;
	void sort_by_title(int column);
	void sort_again();
	QString words_instead() const;
	void make_silence();
	void fit_columns(std::size_t texts);
	int width_for(int column) const;

	const int window_id, control_id;
	const icon entry_icon;
	QString letters_sought, empty_text, state_words;
	list_state shown_state = list_state::fresh;
	bool two_lines = false, takes_files = false, several = false, keeps_places = false;
	int wide_column = 0;
	QList<int> word_columns;
	std::vector<int> told_choice; // the current entry, then all
	std::vector<entry_command> commands;
	entry_list *drag_target = nullptr;
	entry_drag drag = {};
	std::function<std::vector<std::string>()> drag_files;
	QString drop_words;                     // what would happen, while entries hover
	std::vector<QTreeWidgetItem *> entries; // in the order in which they came
	int sort_column = -1;
	Qt::SortOrder sort_order = Qt::AscendingOrder;
	QWidget *silence = nullptr; // lies over the entries, with words and the button
	told_label *silent_words = nullptr;
};

} // namespace velmor
