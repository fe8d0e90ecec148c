// entry_list.cpp - a list that knows what it shows: entries, silence, nothing, or old news

#include "ui/parts/entry_list.h"
#include "src/velmor_window.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <algorithm>

namespace velmor
{

// ---- Two lines --------------------------------------------------------------------------------

class two_line_entry : public QStyledItemDelegate
{
public:
	using QStyledItemDelegate::QStyledItemDelegate;
	QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const override
	{
		return { 0, std::max<int>(two_line_height, option.fontMetrics.height() * 2 + 16) };
	}
	void paint(QPainter *painter, const QStyleOptionViewItem &option,
		const QModelIndex &index) const override;
};

void two_line_entry::paint(
	QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
	const bool chosen = option.state & QStyle::State_Selected;
	const QPalette &palette = option.palette;
	const auto color = [&](QPalette::ColorRole role) {
		return palette.color(chosen ? QPalette::HighlightedText : role);
	};
	const QString details = index.siblingAtColumn(1).data().toString();
	const QString mark = index.siblingAtColumn(2).data().toString();
	if (chosen)
		painter->fillRect(option.rect, palette.color(QPalette::Highlight));
	else
		painter->fillRect(QRect(option.rect.left() + 48, option.rect.bottom(),
					  option.rect.width() - 48, 1),
			palette.color(QPalette::Midlight));
	const icon way = details.contains("USB") ? icon::usb : icon::midi;
	paint_icon(painter, way,
		QRectF(option.rect.left() + 14, option.rect.center().y() - 9, 20, 20),
		color(QPalette::Dark));
	QRect words = option.rect.adjusted(48, 6, -12, -6);
	const QString plug = index.siblingAtColumn(3).data().toString();
	if (!plug.isEmpty()) {
		paint_icon(painter, plug == "plugged in" ? icon::plugged : icon::unplugged,
			QRectF(words.right() - icon_size, option.rect.center().y() - icon_size / 2,
				icon_size, icon_size),
			color(QPalette::Dark));
		words.setRight(words.right() - icon_size - 8);
	}
	painter->setPen(color(QPalette::Text));
	painter->drawText(words, Qt::AlignRight | Qt::AlignTop, mark);
	QFont bold = option.font;
	bold.setBold(true);
	painter->setFont(bold);
	const int room = words.width() -
			 (mark.isEmpty() ? 0 : option.fontMetrics.horizontalAdvance(mark) + 8);
	const Qt::Alignment upper = details.isEmpty() ? Qt::AlignVCenter : Qt::AlignTop;
	painter->drawText(words, static_cast<int>(Qt::AlignLeft | upper),
		QFontMetrics(bold).elidedText(index.data().toString(), Qt::ElideRight, room));
	QFont small = option.font;
	small.setPointSizeF(small.pointSizeF() * 0.95);
	painter->setFont(small);
	painter->setPen(color(QPalette::PlaceholderText));
	painter->drawText(words, Qt::AlignLeft | Qt::AlignBottom,
		QFontMetrics(small).elidedText(details, Qt::ElideRight, words.width()));
}

// ---- Making -----------------------------------------------------------------------------------

entry_list::entry_list(top_window *window, int control)
	: QTreeWidget(window), window_id(window->id), control_id(control),
	  entry_icon(icon_of(window->id, control))
{
	const caption_row *row = find_caption(window_id, control);
	if (row && row->empty)
		empty_text = qtr(row->empty);
	setRootIsDecorated(false);
	setItemsExpandable(false);
	setUniformRowHeights(true);
	setAllColumnsShowFocus(true);
	setTextElideMode(Qt::ElideRight);
	setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
	setIconSize({ icon_size, icon_size });
	header()->setSectionsMovable(false);
	header()->setStretchLastSection(false);
	setColumnCount(1);
	header()->hide();
	header()->setSectionResizeMode(0, QHeaderView::Stretch);
	connect(this, &QTreeWidget::currentItemChanged, this, &entry_list::tell_choice);
}

// Numbers stand at the right.
Qt::Alignment entry_list::alignment_of(int column) const
{
	return (column && !word_columns.contains(column) ? Qt::AlignRight : Qt::AlignLeft) |
	       Qt::AlignVCenter;
}

void entry_list::set_wide(int column)
{
	wide_column = column;
	header()->setSectionResizeMode(column, QHeaderView::Stretch);
	set_words({ column });
}

void entry_list::set_words(const QList<int> &columns)
{
	word_columns += columns;
	for (const int column : columns)
		headerItem()->setTextAlignment(column, alignment_of(column));
}

void entry_list::set_columns(const QStringList &titles)
{
	setColumnCount(static_cast<int>(titles.size()));
	setHeaderLabels(titles);
	header()->show();
	for (int column = 0; column < columnCount(); column++) {
		header()->setSectionResizeMode(
			column, column ? QHeaderView::Fixed : QHeaderView::Stretch);
		headerItem()->setTextAlignment(column, alignment_of(column));
	}
	header()->setSectionsClickable(true);
	connect(header(), &QHeaderView::sectionClicked, this, &entry_list::sort_by_title);
	fit_columns(1);
}

void entry_list::set_two_lines()
{
	two_lines = true;
	setColumnCount(4);
	for (int column = 1; column < 4; column++)
		setColumnHidden(column, true);
	setItemDelegate(new two_line_entry(this));
}

// As wide as its longest text. Measuring every text of a long list would take longer than
// filling it.
int entry_list::width_for(int column) const
{
	const auto longest = std::max_element(entries.begin(), entries.end(),
		[column](const QTreeWidgetItem *one, const QTreeWidgetItem *other) {
			return one->text(column).size() < other->text(column).size();
		});
	const int title = header()->sectionSizeHint(column);
	return longest == entries.end()
		       ? title
		       : std::max(title, sizeHintForIndex(indexFromItem(*longest, column)).width() +
						 fontMetrics().averageCharWidth());
}

// A column without a text in any entry only takes room.
void entry_list::fit_columns(std::size_t texts)
{
	for (int column = 1; column < columnCount() && !two_lines; column++) {
		const bool empty = static_cast<std::size_t>(column) >= texts;
		setColumnHidden(column, empty);
		if (!empty && column != wide_column)
			header()->resizeSection(column, width_for(column));
	}
}

void entry_list::take_files()
{
	takes_files = true;
	setAcceptDrops(true);
	setDragDropMode(QAbstractItemView::DropOnly);
}

// ---- Sorting ----------------------------------------------------------------------------------

// An entry with its place among those that came. A number stands in front of its unit; behind the
// name's column what begins with none comes first.
class placed_entry : public QTreeWidgetItem
{
public:
	placed_entry(const QStringList &texts, int at) : QTreeWidgetItem(texts), place(at) {}
	// What it is compared by from now on; -1: by its place.
	void set_key(int column)
	{
		is_number = column < 0;
		number = place;
		if (column > 0)
			number = text(column).section(' ', 0, 0).toDouble(&is_number);
		words = column < 0 ? QString() : text(column).toCaseFolded();
	}
	bool operator<(const QTreeWidgetItem &item) const override
	{
		const auto &other = static_cast<const placed_entry &>(item);
		if (is_number != other.is_number)
			return other.is_number;
		return is_number ? number < other.number : words < other.words;
	}

private:
	const int place;
	bool is_number = true;
	double number = 0;
	QString words;
};

void entry_list::sort_again()
{
	for (QTreeWidgetItem *item : entries)
		static_cast<placed_entry *>(item)->set_key(sort_column);
	sortItems(std::max(sort_column, 0), sort_order);
	header()->setSortIndicatorShown(sort_column >= 0);
}

void entry_list::sort_by(int column, Qt::SortOrder order)
{
	sort_column = column;
	sort_order = column < 0 ? Qt::AscendingOrder : order;
	sort_again();
	if (currentItem())
		scrollToItem(currentItem());
}

void entry_list::sort_by_title(int column)
{
	const bool same = column == sort_column;
	if (same && sort_order == Qt::DescendingOrder)
		sort_by(-1, Qt::AscendingOrder);
	else
		sort_by(column, same ? Qt::DescendingOrder : Qt::AscendingOrder);
}

// ---- Entries ----------------------------------------------------------------------------------

bool entry_list::match(const QTreeWidgetItem *item) const
{
	return item->text(0).contains(letters_sought, Qt::CaseInsensitive);
}

void entry_list::fill(const std::vector<QStringList> &rows)
{
	const QSignalBlocker quiet(this);
	if (keeps_places && fill_again(rows))
		return;
	entries.clear();
	clear();
	std::size_t texts = 1;
	const QIcon picture = two_lines ? QIcon() : make_icon(entry_icon);
	for (const QStringList &row : rows) {
		auto *item = new placed_entry(row, count());
		texts = std::max(texts, static_cast<std::size_t>(row.size()));
		item->setIcon(0, picture);
		for (int column = 1; column < row.size(); column++)
			item->setTextAlignment(column, alignment_of(column));
		entries.push_back(item);
	}
	addTopLevelItems({ entries.begin(), entries.end() });
	fit_columns(texts);
	if (sort_column >= 0)
		sort_again();
	for (QTreeWidgetItem *item : entries)
		if (!letters_sought.isEmpty())
			item->setHidden(!match(item));
	told_choice = {};
	viewport()->update();
}

// The same entries with other texts: nothing moves on the screen. False: they are others.
bool entry_list::fill_again(const std::vector<QStringList> &rows)
{
	if (rows.size() != entries.size() || rows.empty())
		return false;
	for (int i = 0; i < count(); i++)
		if (name_of(i) != rows[static_cast<std::size_t>(i)].value(0))
			return false;
	qsizetype texts = 1;
	for (int i = 0; i < count(); i++) {
		const QStringList &row = rows[static_cast<std::size_t>(i)];
		texts = std::max(texts, row.size());
		for (int column = 1; column < columnCount(); column++)
			if (entry(i)->text(column) != row.value(column))
				entry(i)->setText(column, row.value(column));
	}
	fit_columns(static_cast<std::size_t>(texts));
	return true;
}

void entry_list::choose(int index)
{
	const QSignalBlocker quiet(this);
	setCurrentItem(index >= 0 && index < count() ? entry(index) : nullptr);
	if (index < 0)
		clearSelection();
	told_choice = all_chosen();
	told_choice.insert(told_choice.begin(), chosen());
}

bool entry_list::has_entries() const
{
	return shown_state == list_state::fresh || shown_state == list_state::stale;
}

int entry_list::chosen() const
{
	QTreeWidgetItem *current = currentItem();
	if (several && (!current || !current->isSelected() || current->isHidden())) {
		const std::vector<int> all = all_chosen();
		return all.empty() ? -1 : all.front();
	}
	const auto found = std::find(entries.begin(), entries.end(), current);
	return found != entries.end() && !current->isHidden() && has_entries()
		       ? static_cast<int>(found - entries.begin())
		       : -1;
}

int entry_list::place_of(const QString &name) const
{
	for (int i = 0; i < count(); i++)
		if (name_of(i) == name)
			return i;
	return -1;
}

void entry_list::search(const QString &letters)
{
	letters_sought = letters;
	QTreeWidgetItem *first = nullptr;
	for (int i = 0; i < topLevelItemCount(); i++) {
		QTreeWidgetItem *item = topLevelItem(i);
		item->setHidden(!match(item));
		if (!item->isHidden() && !first)
			first = item;
	}
	if (chosen() < 0 && first)
		setCurrentItem(first);
	if (several)
		tell_choice(); // what is hidden is not chosen
	viewport()->update();
}

// ---- States -----------------------------------------------------------------------------------

// The words stand where the entries would: same frame, same place.
void entry_list::make_silence()
{
	silence = new card(this);
	silence->setAutoFillBackground(true);
	silence->setBackgroundRole(QPalette::Window);
	silence->setFocusPolicy(Qt::NoFocus);
	auto *column = new QVBoxLayout(silence);
	column->setContentsMargins(margin_side, between_controls, margin_side, between_controls);
	auto *head = new QHBoxLayout;
	head->addWidget(new icon_label(icon::unplugged, 28, text_role::careful, silence));
	told_label *title = make_title(qtr("The sampler did not answer"), 1.3, true, silence);
	title->setWordWrap(true);
	head->addWidget(title, 1);
	silent_words = new told_label(silence);
	silent_words->setWordWrap(true);
	column->addStretch();
	column->addLayout(head);
	column->addWidget(silent_words);
	column->addStretch();
	silence->hide();
}

void entry_list::set_retry(QPushButton *button)
{
	if (!silence)
		make_silence();
	if (!button)
		return;
	button->setProperty("main", true);
	auto *column = static_cast<QVBoxLayout *>(silence->layout());
	column->insertWidget(column->count() - 1, button, 0, Qt::AlignLeft);
}

void entry_list::set_state(list_state state, const QString &words)
{
	shown_state = state;
	state_words = words;
	const bool silent = state == list_state::silent;
	if (silent && !silence)
		make_silence();
	const bool had_focus = hasFocus();
	if (silence) {
		silent_words->say(words);
		silence->setVisible(silent);
		silence->setGeometry(rect());
		silence->raise();
	}
	setVerticalScrollBarPolicy(silent ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
	setFocusPolicy(silent ? Qt::NoFocus : Qt::WheelFocus);
	if (auto *retry = silence ? silence->findChild<QPushButton *>() : nullptr;
		retry && silent && had_focus)
		retry->setFocus();
	setAccessibleDescription(has_entries() ? words : words_instead());
	viewport()->setToolTip(state == list_state::stale ? words : QString());
	viewport()->update();
}

QString entry_list::words_instead() const
{
	if (shown_state == list_state::silent)
		return qtr("The sampler did not answer. %1").arg(state_words);
	if (!state_words.isEmpty() && !has_entries())
		return state_words;
	if (shown_state == list_state::unread)
		return qtr("Not read yet");
	return has_entries() && count() ? qtr("No name holds these letters") : empty_text;
}

void entry_list::paintEvent(QPaintEvent *event)
{
	bool any = false;
	for (int i = 0; i < count() && !any && has_entries(); i++)
		any = !hidden(i);
	if (any) {
		QTreeWidget::paintEvent(event);
		if (QPainter painter(viewport()); !drop_words.isEmpty())
			paint_drop_words(&painter);
		return;
	}
	QPainter painter(viewport());
	if (!drop_words.isEmpty())
		return paint_drop_words(&painter);
	painter.setPen(palette().color(QPalette::PlaceholderText));
	const int margin = fontMetrics().height();
	painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
		Qt::AlignCenter | Qt::TextWordWrap, words_instead());
}

// Entries that may no longer be true are paler.
void entry_list::drawRow(
	QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
	QStyleOptionViewItem row = option;
	if (shown_state == list_state::stale)
		row.palette.setColor(QPalette::Text, row.palette.color(QPalette::PlaceholderText));
	QTreeWidget::drawRow(painter, row, index);
}

void entry_list::resizeEvent(QResizeEvent *event)
{
	QTreeWidget::resizeEvent(event);
	if (silence)
		silence->setGeometry(rect());
}

// The frame shows the focus too.
void entry_list::focusInEvent(QFocusEvent *event)
{
	QTreeWidget::focusInEvent(event);
	update();
}

void entry_list::focusOutEvent(QFocusEvent *event)
{
	QTreeWidget::focusOutEvent(event);
	update();
}

} // namespace velmor
