// parts.cpp - what the windows are made of: controls enrolled by window and id

#include "ui/parts.h"
#include "platform/host.h"
#include "src/velmor_window.h"
#include "ui/qt_ui.h"
#include <QAction>
#include <QBoxLayout>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QDropEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <map>

namespace velmor
{

// ---- Ids ------------------------------------------------------------------------------------

// Everything enrolled. A destroyed window leaves nulls behind.
static std::map<std::pair<int, int>, QPointer<QObject>> controls;

static QObject *enrolled(int window, int control)
{
	const auto found = controls.find({ window, control });
	return found == controls.end() ? nullptr : found->second.data();
}

// A dialog is made when something of it is first needed, so that the main window is there at
// once.
struct dialog_maker {
	int window;
	void (*make)(QWidget *owner);
};

static constexpr dialog_maker dialogs[] = {
	{ window_samples, create_sample_manager },
	{ window_settings, create_settings_dialog },
	{ window_sampler, create_sampler_dialog },
	{ window_usb, create_usb_dialog },
	{ window_multis, create_multi_window },
	{ window_progress, create_progress_window },
};

static bool dialogs_wanted;

void let_dialogs_be_made(bool wanted)
{
	dialogs_wanted = wanted;
}

static void make_dialog(int window)
{
	auto *owner = qobject_cast<QWidget *>(enrolled(window_main, 0));
	for (const dialog_maker &row : dialogs)
		if (row.window == window && owner)
			row.make(owner);
}

QObject *find_control(int window, int control)
{
	if (dialogs_wanted && !enrolled(window, 0))
		make_dialog(window);
	return enrolled(window, control);
}

QWidget *find_widget(int window, int control)
{
	return qobject_cast<QWidget *>(find_control(window, control));
}

QString caption_of(int window, int control)
{
	const caption_row *row = find_caption(window, control);
	return row ? QString::fromUtf8(row->caption) : QString();
}

static QString without_marks(QString caption)
{
	return caption.remove('&').remove(':');
}

void enroll(int window, int control, QObject *object)
{
	controls[{ window, control }] = object;
	object->setProperty("id", control ? control : window);
	const caption_row *row = find_caption(window, control);
	auto *widget = qobject_cast<QWidget *>(object);
	if (!row || !widget)
		return;
	widget->setAccessibleName(without_marks(QString::fromUtf8(row->caption)));
	if (!row->tooltip)
		return;
	widget->setToolTip(QString::fromUtf8(row->tooltip));
	widget->setAccessibleDescription(QString::fromUtf8(row->tooltip));
}

// ---- Windows --------------------------------------------------------------------------------

top_window::top_window(int window, int close, QWidget *owner)
	: QWidget(owner, owner ? Qt::Dialog : Qt::Window), id(window), close_command(close)
{
	enroll(window, 0, this);
	setWindowTitle(caption_of(window, 0));
}

// The command hides the window, or ends the program: the system decides.
void top_window::closeEvent(QCloseEvent *event)
{
	event->ignore();
	velmor_command(id, close_command);
}

void top_window::keyPressEvent(QKeyEvent *event)
{
	if (event->matches(QKeySequence::Cancel) && close_command == control_cancel)
		velmor_command(id, close_command);
	else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
		velmor_command(id, control_ok);
	else
		QWidget::keyPressEvent(event);
}

// ---- Lists ----------------------------------------------------------------------------------

named_list::named_list(int window, int control, QWidget *parent)
	: QListWidget(parent), window_id(window), control_id(control)
{
	const caption_row *row = find_caption(window, control);
	if (row && row->empty)
		empty_text = QString::fromUtf8(row->empty);
	setUniformItemSizes(true);
	connect(this, &QListWidget::currentRowChanged, this,
		[this] { velmor_selection(window_id, control_id); });
}

void named_list::fill(const QStringList &names)
{
	const QSignalBlocker quiet(this);
	clear();
	addItems(names);
	for (int i = 0; i < count(); i++)
		item(i)->setHidden(!item(i)->text().contains(letters_sought, Qt::CaseInsensitive));
	viewport()->update();
}

void named_list::choose(int index)
{
	const QSignalBlocker quiet(this);
	setCurrentRow(index);
}

int named_list::chosen() const
{
	const QListWidgetItem *current = currentItem();
	return current && !current->isHidden() ? currentRow() : -1;
}

void named_list::search(const QString &letters)
{
	letters_sought = letters;
	int first = -1;
	for (int i = 0; i < count(); i++) {
		const bool found = item(i)->text().contains(letters, Qt::CaseInsensitive);
		item(i)->setHidden(!found);
		if (found && first < 0)
			first = i;
	}
	if (chosen() < 0 && first >= 0)
		setCurrentRow(first);
	viewport()->update();
}

void named_list::paintEvent(QPaintEvent *event)
{
	QListWidget::paintEvent(event);
	bool any = false;
	for (int i = 0; i < count() && !any; i++)
		any = !item(i)->isHidden();
	if (any)
		return;
	QPainter painter(viewport());
	painter.setPen(palette().color(QPalette::PlaceholderText));
	const int margin = fontMetrics().height() / 2;
	painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
		Qt::AlignCenter | Qt::TextWordWrap,
		count() ? QStringLiteral("No name holds these letters") : empty_text);
}

void named_list::take_files()
{
	setAcceptDrops(true);
	setDragDropMode(QAbstractItemView::DropOnly);
}

static std::vector<std::string> paths_of(const QMimeData *data)
{
	std::vector<std::string> paths;
	for (const QUrl &url : data->urls())
		if (url.isLocalFile())
			paths.push_back(
				host.files->system_path(url.toLocalFile().toUtf8().constData()));
	return paths;
}

void named_list::dragEnterEvent(QDragEnterEvent *event)
{
	const std::vector<std::string> paths = paths_of(event->mimeData());
	if (!acceptDrops() || paths.empty() || command_running())
		return;
	event->setDropAction(Qt::CopyAction);
	event->accept();
	velmor_hover(window_id, control_id, paths);
}

void named_list::dragMoveEvent(QDragMoveEvent *event)
{
	event->setDropAction(Qt::CopyAction);
	event->accept();
}

void named_list::dragLeaveEvent(QDragLeaveEvent *)
{
	velmor_hover(window_id, control_id, {});
}

// The work begins after the drop is over, so that the program the files come from is not
// kept waiting.
void named_list::dropEvent(QDropEvent *event)
{
	const std::vector<std::string> paths = paths_of(event->mimeData());
	event->setDropAction(Qt::CopyAction);
	event->accept();
	QMetaObject::invokeMethod(
		this, [this, paths] { velmor_drop(window_id, control_id, paths); },
		Qt::QueuedConnection);
}

// ---- Makers ---------------------------------------------------------------------------------

QPushButton *make_button(top_window *window, int control)
{
	const int id = window->id;
	if (!has_command(id, control))
		return nullptr;
	auto *button = new QPushButton(caption_of(id, control), window);
	button->setAutoDefault(true);
	enroll(id, control, button);
	QObject::connect(button, &QPushButton::clicked, button,
		[id, control] { velmor_command(id, control); });
	return button;
}

void make_entry(top_window *window, QMenu *menu, int control)
{
	const int id = window->id;
	if (!has_command(id, control))
		return;
	QAction *entry = menu->addAction(caption_of(id, control));
	enroll(id, control, entry);
	const caption_row *row = find_caption(id, control);
	if (row && row->tooltip)
		entry->setStatusTip(QString::fromUtf8(row->tooltip));
	QObject::connect(
		entry, &QAction::triggered, entry, [id, control] { velmor_command(id, control); });
}

named_list *make_list(top_window *window, int control)
{
	auto *list = new named_list(window->id, control, window);
	enroll(window->id, control, list);
	return list;
}

static void set_empty_text(QLineEdit *field, int window, int control)
{
	const caption_row *row = find_caption(window, control);
	if (row && row->empty)
		field->setPlaceholderText(QString::fromUtf8(row->empty));
}

QLineEdit *make_field(top_window *window, int control)
{
	auto *field = new QLineEdit(window);
	enroll(window->id, control, field);
	set_empty_text(field, window->id, control);
	return field;
}

QLineEdit *make_search(top_window *window, int control, named_list *list)
{
	QLineEdit *field = make_field(window, control);
	field->setClearButtonEnabled(true);
	QObject::connect(field, &QLineEdit::textChanged, list,
		[list](const QString &letters) { list->search(letters); });
	return field;
}

QLabel *make_text(top_window *window, int control)
{
	auto *label = new QLabel(window);
	label->setTextFormat(Qt::PlainText);
	label->setTextInteractionFlags(Qt::TextSelectableByMouse);
	enroll(window->id, control, label);
	return label;
}

QComboBox *make_choice(top_window *window, int control)
{
	const int id = window->id;
	auto *box = new QComboBox(window);
	box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
	enroll(id, control, box);
	QObject::connect(
		box, &QComboBox::activated, box, [id, control] { velmor_selection(id, control); });
	return box;
}

QRadioButton *make_option(top_window *window, int control, QButtonGroup *group)
{
	const int id = window->id;
	auto *option = new QRadioButton(caption_of(id, control), window);
	enroll(id, control, option);
	group->addButton(option);
	QObject::connect(option, &QRadioButton::clicked, option,
		[id, control] { velmor_selection(id, control); });
	return option;
}

QWidget *make_options(
	top_window *window, const QString &title, std::initializer_list<int> ids, int columns)
{
	auto *box = new QGroupBox(title, window);
	auto *grid = new QGridLayout(box);
	auto *group = new QButtonGroup(box);
	const int rows = (static_cast<int>(ids.size()) + columns - 1) / columns;
	int place = 0;
	for (int control : ids) {
		QRadioButton *option = make_option(window, control, group);
		option->setChecked(place == 0);
		grid->addWidget(option, place % rows, place / rows);
		place++;
	}
	grid->setRowStretch(rows, 1);
	return box;
}

void add_row(QFormLayout *form, int window, int control, QWidget *field)
{
	auto *label = new QLabel(caption_of(window, control), field->parentWidget());
	label->setBuddy(field);
	form->addRow(label, field);
}

void add_to(QBoxLayout *layout, std::initializer_list<QWidget *> widgets)
{
	for (QWidget *widget : widgets)
		if (widget)
			layout->addWidget(widget);
}

} // namespace velmor
