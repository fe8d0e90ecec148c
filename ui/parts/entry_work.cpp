// entry_work.cpp - what is done with the entries of a list: choosing several, keys, menu, drags

#include "platform/host.h"
#include "src/velmor_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/words.h"
#include "ui/qt_ui.h"
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDrag>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <map>

namespace velmor
{

// ---- Choosing several -------------------------------------------------------------------------

void entry_list::take_several()
{
	several = true;
	setSelectionMode(QAbstractItemView::ExtendedSelection);
	connect(this, &QTreeWidget::itemSelectionChanged, this, &entry_list::tell_choice);
}

// One press changes the current entry and what is chosen, which is one choice.
void entry_list::tell_choice()
{
	if (several) {
		std::vector<int> now = all_chosen();
		now.insert(now.begin(), chosen());
		if (now == told_choice)
			return;
		told_choice = now;
	}
	velmor_selection(window_id, control_id);
}

std::vector<int> entry_list::all_chosen() const
{
	std::vector<int> places;
	if (!several) {
		if (const int place = chosen(); place >= 0)
			places.push_back(place);
		return places;
	}
	std::map<const QTreeWidgetItem *, int> place_of_item;
	for (int i = 0; i < count(); i++)
		place_of_item[entry(i)] = i;
	for (int i = 0; i < topLevelItemCount() && has_entries(); i++)
		if (const QTreeWidgetItem *item = topLevelItem(i);
			item->isSelected() && !item->isHidden())
			places.push_back(place_of_item[item]);
	return places;
}

void entry_list::choose_several(std::span<const int> places)
{
	choose(places.empty() ? -1 : places.front());
	const QSignalBlocker quiet(this);
	for (const int place : places)
		if (place >= 0 && place < count())
			entry(place)->setSelected(true);
	told_choice = all_chosen();
	told_choice.insert(told_choice.begin(), chosen());
}

// ---- Marks ------------------------------------------------------------------------------------

struct mark_look {
	entry_mark mark;
	icon picture;
	text_role role;       // of the mark
	text_role words_role; // of what stands behind the name
};

static constexpr mark_look looks[] = {
	{ entry_mark::waiting, icon::waiting, text_role::quiet, text_role::quiet },
	{ entry_mark::running, icon::right, text_role::plain, text_role::plain },
	{ entry_mark::done, icon::good, text_role::good, text_role::plain },
	{ entry_mark::skipped, icon::skipped, text_role::careful, text_role::careful },
	{ entry_mark::failed, icon::failed, text_role::failed, text_role::failed },
};

static const mark_look *look_of(const QModelIndex &index)
{
	const QVariant mark = index.siblingAtColumn(0).data(Qt::UserRole);
	for (const mark_look &look : looks)
		if (mark.isValid() && mark.toInt() == static_cast<int>(look.mark))
			return &look;
	return nullptr;
}

// The mark stands where the icon of an entry does, in the colour of its meaning.
class marked_entry : public QStyledItemDelegate
{
public:
	using QStyledItemDelegate::QStyledItemDelegate;
	void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
	{
		QStyledItemDelegate::initStyleOption(option, index);
		const mark_look *look = look_of(index);
		if (!look)
			return;
		option->font.setBold(look->mark == entry_mark::running);
		const bool quiet = look->words_role == text_role::quiet;
		if (index.column() == 1 || quiet)
			option->palette.setColor(
				QPalette::Text, role_color(option->palette, look->words_role));
	}
	void paint(QPainter *painter, const QStyleOptionViewItem &option,
		const QModelIndex &index) const override
	{
		QStyledItemDelegate::paint(painter, option, index);
		const mark_look *look = look_of(index);
		if (!look || index.column())
			return;
		QStyleOptionViewItem whole = option;
		initStyleOption(&whole, index);
		const QRect place = whole.widget->style()->subElementRect(
			QStyle::SE_ItemViewItemDecoration, &whole, whole.widget);
		const bool chosen = option.state & QStyle::State_Selected;
		QColor color = role_color(option.palette, look->role);
		if (look->mark == entry_mark::running)
			color = option.palette.color(QPalette::Link);
		paint_icon(painter, look->picture, place,
			chosen ? option.palette.color(QPalette::HighlightedText) : color);
	}
};

void entry_list::set_marks(std::span<const entry_mark> marks)
{
	if (!dynamic_cast<marked_entry *>(itemDelegate()))
		setItemDelegate(new marked_entry(this));
	const QSignalBlocker quiet(this);
	QPixmap room(icon_size, icon_size);
	room.fill(Qt::transparent);
	for (int i = 0; i < count() && i < static_cast<int>(marks.size()); i++) {
		const int mark = static_cast<int>(marks[static_cast<std::size_t>(i)]);
		const QVariant before = entry(i)->data(0, Qt::UserRole);
		if (before.isValid() && before.toInt() == mark)
			continue;
		entry(i)->setIcon(0, room);
		entry(i)->setData(0, Qt::UserRole, mark);
		if (mark == static_cast<int>(entry_mark::running))
			scrollToItem(entry(i));
	}
}

// ---- Commands ---------------------------------------------------------------------------------

void entry_list::set_commands(const std::vector<entry_command> &wanted)
{
	commands = wanted;
	connect(this, &QTreeWidget::itemDoubleClicked, this,
		[this] { run_command(commands.front()); });
}

// What cannot be done says why, beside the entry.
void entry_list::run_command(const entry_command &command)
{
	const QWidget *button = find_widget(window_id, command.control);
	if (!button)
		return;
	if (!button->isEnabled()) {
		const QRect at = currentItem() ? visualItemRect(currentItem()) : QRect();
		QToolTip::showText(
			viewport()->mapToGlobal(at.bottomLeft()), button->toolTip(), this);
		return;
	}
	auto *field = command.field
			      ? qobject_cast<QLineEdit *>(find_widget(window_id, command.field))
			      : nullptr;
	if (!field) {
		velmor_command(window_id, command.control);
		return;
	}
	if (field->text().isEmpty() && chosen() >= 0)
		field->setText(name_of(chosen()));
	field->setFocus();
	field->selectAll();
}

void entry_list::keyPressEvent(QKeyEvent *event)
{
	const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
	for (const entry_command &command : commands)
		if (plain && command.keys.contains(event->key()))
			return run_command(command);
	QTreeWidget::keyPressEvent(event);
}

void entry_list::contextMenuEvent(QContextMenuEvent *event)
{
	if (commands.empty() || all_chosen().empty())
		return QTreeWidget::contextMenuEvent(event);
	auto *menu = new QMenu(this);
	menu->setAttribute(Qt::WA_DeleteOnClose);
	menu->setToolTipsVisible(true);
	for (const entry_command &command : commands) {
		const QWidget *button = find_widget(window_id, command.control);
		if (!button)
			continue;
		QAction *entry = menu->addAction(make_icon(icon_of(window_id, command.control)),
			caption_of(window_id, command.control));
		if (!command.keys.isEmpty())
			entry->setShortcut(QKeySequence(command.keys.front()));
		entry->setEnabled(button->isEnabled());
		entry->setToolTip(button->toolTip());
		connect(entry, &QAction::triggered, this,
			[this, command] { run_command(command); });
	}
	menu->popup(event->globalPos());
}

// ---- Entries that are dragged -----------------------------------------------------------------

void entry_list::set_drag(entry_list *to, const entry_drag &work)
{
	drag_target = to;
	drag = work;
	setDragEnabled(true);
	to->setAcceptDrops(true);
	to->setDropIndicatorShown(false);
}

void entry_list::set_drag_files(std::function<std::vector<std::string>()> files)
{
	drag_files = std::move(files);
}

// Which list of this process its entries come from, for other lists; other programs see files.
static const char *const entries_format = "application/x-velmor-entries";

static QByteArray name_of_list(int window, int control)
{
	return QByteArray::number(QCoreApplication::applicationPid()) + ' ' +
	       QByteArray::number(window) + ' ' + QByteArray::number(control);
}

static entry_list *dragged_list(const QMimeData *data)
{
	const QList<QByteArray> words = data->data(entries_format).split(' ');
	if (words.size() != 3)
		return nullptr;
	const int window = words[1].toInt(), control = words[2].toInt();
	return data->data(entries_format) == name_of_list(window, control)
		       ? dynamic_cast<entry_list *>(find_widget(window, control))
		       : nullptr;
}

QMimeData *entry_list::mimeData(const QList<QTreeWidgetItem *> &) const
{
	auto *carried = new QMimeData;
	carried->setData(entries_format, name_of_list(window_id, control_id));
	QList<QUrl> urls;
	if (drag_files)
		for (const std::string &path : drag_files())
			urls += QUrl::fromLocalFile(
				QString::fromUtf8(host.files->host_path(path.c_str()).c_str()));
	if (!urls.isEmpty())
		carried->setUrls(urls);
	return carried;
}

// A copy, whatever another program makes of it: nothing is taken away here.
void entry_list::startDrag(Qt::DropActions)
{
	if (all_chosen().empty() || command_running())
		return;
	auto *carried = new QDrag(this);
	carried->setMimeData(mimeData(selectedItems()));
	carried->setPixmap(make_icon(entry_icon).pixmap(big_icon_size, big_icon_size));
	carried->exec(Qt::CopyAction, Qt::CopyAction);
}

// Of a drag that comes from another list here; "" for all else.
QString entry_list::words_for_drop(const QDropEvent *event, bool *possible) const
{
	const entry_list *from = dragged_list(event->mimeData());
	*possible = false;
	if (!from || from->drag_target != this)
		return {};
	const QWidget *button = find_widget(from->window_id, from->drag.command);
	*possible = button && button->isEnabled();
	if (!*possible)
		return button ? button->toolTip() : QString();
	const qsizetype count = static_cast<qsizetype>(from->all_chosen().size());
	return count == 1 ? qtr(from->drag.one) : qtr(from->drag.several).arg(count);
}

void entry_list::show_drop_words(const QString &words)
{
	drop_words = words;
	viewport()->update();
}

// In a frame around the whole list, since it does not matter where in it they are dropped.
void entry_list::paint_drop_words(QPainter *painter) const
{
	const QColor accent = palette().color(QPalette::Highlight);
	painter->setPen(QPen(accent, 3));
	painter->setBrush(Qt::NoBrush);
	painter->drawRect(viewport()->rect().adjusted(1, 1, -2, -2));
	QRect foot = viewport()->rect();
	foot.setTop(foot.bottom() - 2 * fontMetrics().height());
	painter->fillRect(foot, accent);
	painter->setPen(palette().color(QPalette::HighlightedText));
	painter->drawText(foot.adjusted(between_controls, 0, -between_controls, 0),
		Qt::AlignCenter | Qt::TextWordWrap, drop_words);
}

// ---- Files ------------------------------------------------------------------------------------

std::vector<std::string> dropped_paths(const QMimeData *data)
{
	std::vector<std::string> paths;
	for (const QUrl &url : data->urls())
		if (url.isLocalFile())
			paths.push_back(
				host.files->system_path(url.toLocalFile().toUtf8().constData()));
	return paths;
}

void take_drop(QObject *widget, QDropEvent *event, int window, int control)
{
	const std::vector<std::string> paths = dropped_paths(event->mimeData());
	event->setDropAction(Qt::CopyAction);
	event->accept();
	QMetaObject::invokeMethod(
		widget, [=] { velmor_drop(window, control, paths); }, Qt::QueuedConnection);
}

void entry_list::dragEnterEvent(QDragEnterEvent *event)
{
	bool possible = false;
	if (const QString words = words_for_drop(event, &possible); !words.isEmpty()) {
		show_drop_words(words);
		event->accept(); // to hear when it leaves
		return;
	}
	if (dragged_list(event->mimeData()))
		return; // entries are no files to a list of ours
	const std::vector<std::string> paths = dropped_paths(event->mimeData());
	if (!takes_files || paths.empty() || command_running())
		return;
	event->setDropAction(Qt::CopyAction);
	event->accept();
	velmor_hover(window_id, control_id, paths);
}

void entry_list::dragMoveEvent(QDragMoveEvent *event)
{
	bool possible = true;
	if (!drop_words.isEmpty())
		words_for_drop(event, &possible);
	if (!possible)
		return event->ignore();
	event->setDropAction(Qt::CopyAction);
	event->accept();
}

void entry_list::dragLeaveEvent(QDragLeaveEvent *)
{
	if (!drop_words.isEmpty())
		return show_drop_words({});
	velmor_hover(window_id, control_id, {});
}

void entry_list::dropEvent(QDropEvent *event)
{
	bool possible = false;
	const QString words = words_for_drop(event, &possible);
	show_drop_words({});
	if (possible) {
		const entry_list *from = dragged_list(event->mimeData());
		event->setDropAction(Qt::CopyAction);
		event->accept();
		QMetaObject::invokeMethod(
			this,
			[id = from->window_id, command = from->drag.command] {
				velmor_command(id, command);
			},
			Qt::QueuedConnection);
		return;
	}
	if (!words.isEmpty() || dragged_list(event->mimeData()))
		return event->ignore();
	take_drop(this, event, window_id, control_id);
}

} // namespace velmor
