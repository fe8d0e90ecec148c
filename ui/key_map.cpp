// key_map.cpp - a keyboard with its keygroups: places, mouse and keys
//
// A keygroup is a bar over its keys, and its zones are bands of velocity above the bar. What
// would lie over each other shares the room. The mouse chooses, drags the edges of what is
// chosen, and plays the keys: harder the lower a key is hit. A note ends whatever happens to the
// mouse.

#include "ui/key_map.h"
#include "src/resource.h"
#include "src/velmor_window.h"
#include "ui/parts/style.h"
#include "ui/parts/words.h"
#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace velmor
{

static constexpr int whites_of_all = 75, bar_height = 20, key_height = 50, left_room = 38, grip = 5;
static constexpr int key_velocity = 100; // of a note that the computer's keys play

key_map::key_map(int window, int control, const QString &said, QWidget *parent)
	: QWidget(parent), window_id(window), control_id(control), empty_text(said)
{
	setMouseTracking(true);
	setFocusPolicy(Qt::StrongFocus);
	setMinimumHeight(168);
	setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
	show_view(nullptr);
}

QSize key_map::sizeHint() const
{
	return { 720, 176 };
}

// ---- What is shown ----------------------------------------------------------------------------

static bool same_group(const key_group_view &one, const key_group_view &other)
{
	const auto same = [](const key_zone_view &a, const key_zone_view &b) {
		return a.low_velocity == b.low_velocity && a.high_velocity == b.high_velocity &&
		       a.name == b.name && a.missing == b.missing;
	};
	return one.low_note == other.low_note && one.high_note == other.high_note &&
	       std::equal(one.zones.begin(), one.zones.end(), other.zones.begin(),
		       other.zones.end(), same);
}

// Numbers that no keyboard has are shown at its ends.
static key_map_view within_keyboard(key_map_view view)
{
	for (key_group_view &group : view.groups) {
		group.low_note = std::clamp(group.low_note, 0, 127);
		group.high_note = std::clamp(group.high_note, group.low_note, 127);
		for (key_zone_view &zone : group.zones) {
			zone.low_velocity = std::clamp(zone.low_velocity, 0, 127);
			zone.high_velocity = std::clamp(zone.high_velocity, zone.low_velocity, 127);
		}
	}
	return view;
}

// The picture of the others stays while only the chosen keygroup changes.
void key_map::show_view(const key_map_view *shown)
{
	key_map_view next =
		shown ? within_keyboard(*shown) : key_map_view{ {}, -1, -1, -1, 0, false };
	bool same = !shown == empty && next.group == view.group &&
		    next.groups.size() == view.groups.size();
	for (int i = 0; same && i < static_cast<int>(next.groups.size()); i++) {
		const auto index = static_cast<std::size_t>(i);
		same = i == next.group || same_group(next.groups[index], view.groups[index]);
	}
	empty = !shown;
	view = std::move(next);
	const auto lanes = bar_lanes.size();
	const lane before = view.group >= 0 && static_cast<std::size_t>(view.group) < lanes
				    ? bar_lanes[static_cast<std::size_t>(view.group)]
				    : lane();
	arrange();
	const lane now = chosen_group() ? bar_lanes[static_cast<std::size_t>(view.group)] : lane();
	stale |= !same || before.of != now.of;
	say_chosen();
	update();
}

// The first lane that is free from a low end on; lanes are told by their last high ends.
static int free_lane(std::vector<int> *ends, int low, int high)
{
	const auto found =
		std::find_if(ends->begin(), ends->end(), [low](int end) { return end < low; });
	const auto at = static_cast<int>(found - ends->begin());
	if (found == ends->end())
		ends->push_back(high);
	else
		*found = high;
	return at;
}

// Letters that all names have at their front, back to a whole word.
static qsizetype shared_letters(const std::set<QString> &names)
{
	if (names.size() < 2)
		return 0;
	const QString &first = *names.begin(), &last = *names.rbegin();
	qsizetype count = 0;
	while (count < std::min(first.size(), last.size()) && first[count] == last[count])
		count++;
	while (count > 0 && first[count - 1].isLetterOrNumber())
		count--;
	return count;
}

void key_map::arrange()
{
	bar_lanes.assign(view.groups.size(), {});
	band_lanes.assign(view.groups.size(), {});
	std::set<QString> names, backwards;
	std::vector<std::size_t> order(view.groups.size());
	for (std::size_t i = 0; i < order.size(); i++)
		order[i] = i;
	std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
		return view.groups[a].low_note < view.groups[b].low_note;
	});
	std::vector<int> ends;
	for (const std::size_t i : order)
		bar_lanes[i].at =
			free_lane(&ends, view.groups[i].low_note, view.groups[i].high_note);
	for (std::size_t i = 0; i < order.size(); i++) {
		bar_lanes[i].of = std::max(1, static_cast<int>(ends.size()));
		std::vector<int> columns;
		for (const key_zone_view &zone : view.groups[i].zones) {
			band_lanes[i].emplace_back();
			if (zone.name.empty())
				continue;
			// Zones stand in any order, so a column is taken for good once it is used.
			int at = 0;
			for (std::size_t other = 0; other + 1 < band_lanes[i].size(); other++) {
				const key_zone_view &earlier = view.groups[i].zones[other];
				if (!earlier.name.empty() &&
					earlier.low_velocity <= zone.high_velocity &&
					zone.low_velocity <= earlier.high_velocity)
					at = std::max(at, band_lanes[i][other].at + 1);
			}
			band_lanes[i].back().at = at;
			for (int column = static_cast<int>(columns.size()); column <= at; column++)
				columns.push_back(0);
			QString name = QString::fromUtf8(zone.name.c_str());
			names.insert(name);
			std::reverse(name.begin(), name.end());
			backwards.insert(name);
		}
		for (lane &l : band_lanes[i])
			l.of = std::max<int>(1, static_cast<int>(columns.size()));
	}
	shared_front = shared_letters(names);
	shared_end = shared_letters(backwards);
}

// ---- Places -------------------------------------------------------------------------------------

// Where the room over a key begins, in white keys: five keys share the room of the first three
// white ones of an octave, seven that of the other four.
static double front_of(int note)
{
	const int key = note % 12;
	return note >= 128 ? whites_of_all
			   : note / 12 * 7 + (key < 5 ? key * 3 / 5.0 : 3 + (key - 5) * 4 / 7.0);
}

static bool is_black(int note)
{
	return (0x54A >> note % 12) & 1;
}

static int white_before(int note)
{
	static constexpr int places[] = { 0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6 };
	return note / 12 * 7 + places[note % 12];
}

QRectF key_map::keys_area() const
{
	return { static_cast<double>(left_room), static_cast<double>(height() - 8 - key_height),
		static_cast<double>(width() - left_room - 12), static_cast<double>(key_height) };
}

QRectF key_map::bars_area() const
{
	const QRectF keys = keys_area();
	const int lanes = bar_lanes.empty() ? 1 : bar_lanes[0].of;
	const double high = bar_height + std::min(lanes - 1, 3) * 8;
	return { keys.left(), keys.top() - 4 - high, keys.width(), high };
}

QRectF key_map::bands_area() const
{
	const QRectF bars = bars_area();
	return { bars.left(), 12, bars.width(), bars.top() - 16 };
}

double key_map::x_of(double whites) const
{
	const QRectF keys = keys_area();
	return keys.left() + whites * keys.width() / whites_of_all;
}

double key_map::y_of(double velocity) const
{
	const QRectF bands = bands_area();
	return bands.bottom() - velocity * bands.height() / 128;
}

int key_map::note_at(double x) const
{
	const QRectF keys = keys_area();
	const double whites = (x - keys.left()) * whites_of_all / keys.width();
	int note = 0;
	while (note < 127 && front_of(note + 1) <= whites)
		note++;
	return note;
}

int key_map::velocity_at(double y) const
{
	const QRectF bands = bands_area();
	return std::clamp(
		static_cast<int>((bands.bottom() - y) * 128 / std::max(1.0, bands.height())), 0,
		127);
}

static double black_height(const QRectF &keys)
{
	return keys.height() * 0.6;
}

// The key under a place, -1: none.
int key_map::key_at(const QPointF &at) const
{
	const QRectF keys = keys_area();
	if (!keys.contains(at))
		return -1;
	const int above = note_at(at.x());
	if (is_black(above) && at.y() < keys.top() + black_height(keys))
		return above;
	static constexpr int whites[] = { 0, 2, 4, 5, 7, 9, 11 };
	const int white = std::clamp(
		static_cast<int>((at.x() - keys.left()) * whites_of_all / keys.width()), 0, 74);
	return white / 7 * 12 + whites[white % 7];
}

int key_map::velocity_on_key(int note, double y) const
{
	const QRectF keys = keys_area();
	const double length = is_black(note) ? black_height(keys) : keys.height();
	return std::clamp(static_cast<int>(std::lround((y - keys.top()) * 127 / length)), 1, 127);
}

QRectF key_map::white_key(int note) const
{
	const QRectF keys = keys_area();
	const double left = x_of(white_before(note));
	return { left, keys.top(), x_of(white_before(note) + 1) - left, keys.height() };
}

QRectF key_map::black_key(int note) const
{
	const QRectF keys = keys_area();
	const double left = x_of(front_of(note));
	return { left, keys.top(), x_of(front_of(note + 1)) - left, black_height(keys) };
}

bool key_map::is_black_key(int note)
{
	return is_black(note);
}

double key_map::middle_of(int note) const
{
	return x_of((front_of(note) + front_of(note + 1)) / 2);
}

QPointF key_map::on_key(int note, int velocity) const
{
	const QRectF keys = keys_area();
	const double length = is_black(note) ? black_height(keys) : keys.height();
	const double x = is_black(note) ? x_of((front_of(note) + front_of(note + 1)) / 2)
					: x_of(white_before(note) + 0.5);
	return { x, keys.top() + velocity * length / 127 };
}

QRectF key_map::group_bar(int group) const
{
	const auto i = static_cast<std::size_t>(group);
	const QRectF bars = bars_area();
	const double each = bars.height() / bar_lanes[i].of;
	const double left = x_of(front_of(view.groups[i].low_note));
	const double right = x_of(front_of(view.groups[i].high_note + 1));
	return { left, bars.top() + bar_lanes[i].at * each, right - left, each };
}

QRectF key_map::zone_band(int group, int zone) const
{
	const QRectF bar = group_bar(group);
	const auto i = static_cast<std::size_t>(group), z = static_cast<std::size_t>(zone);
	const key_zone_view &shown = view.groups[i].zones[z];
	const lane &column = band_lanes[i][z];
	const double wide = bar.width() / column.of;
	const double top = y_of(shown.high_velocity + 1);
	return { bar.left() + column.at * wide, top, wide, y_of(shown.low_velocity) - top };
}

// ---- What is where --------------------------------------------------------------------------------

const key_group_view *key_map::chosen_group() const
{
	return view.group >= 0 && static_cast<std::size_t>(view.group) < view.groups.size()
		       ? &view.groups[static_cast<std::size_t>(view.group)]
		       : nullptr;
}

const key_zone_view *key_map::chosen_zone() const
{
	const key_group_view *group = chosen_group();
	return group && view.zone >= 0 && static_cast<std::size_t>(view.zone) < group->zones.size()
		       ? &group->zones[static_cast<std::size_t>(view.zone)]
		       : nullptr;
}

// Bars and bands under a place; of a keygroup without a band there, the keygroup.
std::vector<key_map::place> key_map::places_at(const QPointF &at) const
{
	std::vector<place> found;
	const bool on_bands = bands_area().contains(at);
	for (int group = 0; group < static_cast<int>(view.groups.size()); group++) {
		const QRectF bar = group_bar(group);
		if (bar.contains(at))
			found.push_back({ group, -1 });
		if (!on_bands || at.x() < bar.left() || at.x() >= bar.right())
			continue;
		const std::vector<key_zone_view> &zones =
			view.groups[static_cast<std::size_t>(group)].zones;
		const std::size_t before = found.size();
		for (int zone = 0; zone < static_cast<int>(zones.size()); zone++)
			if (!zones[static_cast<std::size_t>(zone)].name.empty() &&
				zone_band(group, zone).contains(at))
				found.push_back({ group, zone });
		if (found.size() == before)
			found.push_back({ group, -1 });
	}
	return found;
}

// An edge of what is chosen. Over a narrow keygroup each edge has its own half.
key_map::edge key_map::edge_at(const QPointF &at) const
{
	if (!chosen_group())
		return { key_map_event::choose, 0 };
	const QRectF bar = group_bar(view.group);
	const QRectF sides(bar.left() - grip, bands_area().top(), bar.width() + 2 * grip,
		bar.bottom() - bands_area().top());
	const bool beside_bar = at.y() < bands_area().bottom() || (at.y() >= bar.top());
	if (sides.contains(at) && beside_bar) {
		const bool nearer_left = at.x() < bar.center().x();
		const double to = std::abs(at.x() - (nearer_left ? bar.left() : bar.right()));
		if (to <= std::clamp(bar.width() / 4, 2.0, static_cast<double>(grip)))
			return nearer_left
				       ? edge{ key_map_event::low_note, chosen_group()->low_note }
				       : edge{ key_map_event::high_note,
						 chosen_group()->high_note };
	}
	if (!chosen_zone() || chosen_zone()->name.empty())
		return { key_map_event::choose, 0 };
	const QRectF band = zone_band(view.group, view.zone);
	if (at.x() < band.left() || at.x() >= band.right())
		return { key_map_event::choose, 0 };
	const double room = std::clamp(band.height() / 4, 2.0, static_cast<double>(grip));
	if (std::abs(at.y() - band.top()) <= room)
		return { key_map_event::high_velocity, chosen_zone()->high_velocity };
	if (std::abs(at.y() - band.bottom()) <= room)
		return { key_map_event::low_velocity, chosen_zone()->low_velocity };
	return { key_map_event::choose, 0 };
}

// ---- Telling ----------------------------------------------------------------------------------------

void key_map::tell(key_map_event event, int group, int zone, int value, int amount) const
{
	velmor_key_map(window_id, control_id, event, group, zone, value, amount);
}

void key_map::choose(const place &wanted)
{
	if (wanted.group >= 0 && (wanted.group != view.group || wanted.zone != view.zone))
		tell(key_map_event::choose, wanted.group, wanted.zone);
}

int key_map::edge_value(key_map_event which) const
{
	switch (which) {
	case key_map_event::low_note:
		return chosen_group()->low_note;
	case key_map_event::high_note:
		return chosen_group()->high_note;
	case key_map_event::low_velocity:
		return chosen_zone()->low_velocity;
	default:
		return chosen_zone()->high_velocity;
	}
}

// An edge stops at the other edge.
void key_map::drag_to(key_map_event which, int value)
{
	const bool velocity =
		which == key_map_event::low_velocity || which == key_map_event::high_velocity;
	if (!chosen_group() || (velocity && !chosen_zone()))
		return;
	if (which == key_map_event::low_note)
		value = std::clamp(value, 0, chosen_group()->high_note);
	else if (which == key_map_event::high_note)
		value = std::clamp(value, chosen_group()->low_note, 127);
	else if (which == key_map_event::low_velocity)
		value = std::clamp(value, 0, chosen_zone()->high_velocity);
	else
		value = std::clamp(value, chosen_zone()->low_velocity, 127);
	if (value == edge_value(which))
		return;
	dragged.value = value;
	tell(which, view.group, velocity ? view.zone : -1, value);
}

void key_map::press_key(int note, int velocity)
{
	if (note == sounding_note || !view.takes_notes)
		return;
	release_key();
	if (note >= 0 && velmor_key_map(window_id, control_id, key_map_event::note_on, view.group,
				 view.zone, note, velocity))
		sounding_note = note;
}

void key_map::release_key()
{
	if (sounding_note >= 0)
		tell(key_map_event::note_off, view.group, view.zone,
			std::exchange(sounding_note, -1));
}

void key_map::end_movement()
{
	release_key();
	if (dragged.event != key_map_event::choose) {
		const edge was = std::exchange(dragged, { key_map_event::choose, 0 });
		tell(key_map_event::drag_end, view.group, view.zone, was.value);
	}
}

// ---- Mouse --------------------------------------------------------------------------------------------

void key_map::mousePressEvent(QMouseEvent *event)
{
	const QPointF at = event->position();
	if (event->button() != Qt::LeftButton || empty)
		return QWidget::mousePressEvent(event);
	if (const int note = key_at(at); note >= 0)
		return press_key(note, velocity_on_key(note, at.y()));
	dragged = edge_at(at);
	if (dragged.event != key_map_event::choose)
		return;
	// Another press at the same place goes to what lies under it.
	const std::vector<place> found = places_at(at);
	if (found.empty())
		return;
	const auto chosen = std::find_if(found.begin(), found.end(), [this](const place &p) {
		return p.group == view.group && (p.zone == view.zone || p.zone < 0);
	});
	choose(chosen == found.end() || chosen + 1 == found.end() ? found.front() : chosen[1]);
}

// Of what is chosen already, where that lies under the mouse too.
void key_map::contextMenuEvent(QContextMenuEvent *event)
{
	if (!menu || empty)
		return QWidget::contextMenuEvent(event);
	const std::vector<place> found = places_at(event->pos());
	const bool by_mouse = event->reason() == QContextMenuEvent::Mouse;
	if (by_mouse && !found.empty() &&
		std::find(found.begin(), found.end(), place{ view.group, view.zone }) ==
			found.end())
		choose(found.front());
	menu->popup(by_mouse ? event->globalPos() : mapToGlobal(rect().center()));
}

void key_map::mouseMoveEvent(QMouseEvent *event)
{
	const QPointF at = event->position();
	if (!(event->buttons() & Qt::LeftButton)) {
		const key_map_event which = edge_at(at).event;
		setCursor(which == key_map_event::choose ? Qt::ArrowCursor
			  : which == key_map_event::low_note || which == key_map_event::high_note
				  ? Qt::SizeHorCursor
				  : Qt::SizeVerCursor);
		return;
	}
	if (sounding_note >= 0) {
		const int note = key_at(at);
		if (note < 0)
			release_key();
		else
			press_key(note, velocity_on_key(note, at.y()));
		return;
	}
	if (dragged.event == key_map_event::low_note || dragged.event == key_map_event::high_note)
		drag_to(dragged.event, note_at(at.x()));
	else if (dragged.event != key_map_event::choose)
		drag_to(dragged.event, velocity_at(at.y()));
}

void key_map::mouseReleaseEvent(QMouseEvent *event)
{
	if (event->button() == Qt::LeftButton)
		end_movement();
}

// ---- Keys -----------------------------------------------------------------------------------------------

// Shift and a cursor key move the upper edge of what is chosen, Ctrl the lower one.
void key_map::step(int key, bool low, int by)
{
	const bool across = key == Qt::Key_Left || key == Qt::Key_Right;
	const key_map_event which =
		across ? low ? key_map_event::low_note : key_map_event::high_note
		: low  ? key_map_event::low_velocity
		       : key_map_event::high_velocity;
	if (!chosen_group() || (!across && !chosen_zone()))
		return;
	drag_to(which, edge_value(which) + by);
	tell(key_map_event::drag_end, view.group, view.zone, edge_value(which));
}

void key_map::keyPressEvent(QKeyEvent *event)
{
	const int key = event->key();
	const bool less = key == Qt::Key_Left || key == Qt::Key_Down;
	const bool more = key == Qt::Key_Right || key == Qt::Key_Up;
	if (key == Qt::Key_Space && chosen_group()) {
		if (!event->isAutoRepeat())
			press_key((chosen_group()->low_note + chosen_group()->high_note) / 2,
				key_velocity);
		return;
	}
	if (empty || (!less && !more) || view.groups.empty())
		return QWidget::keyPressEvent(event);
	const int by = more ? 1 : -1;
	if (event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier))
		return step(key, event->modifiers() & Qt::ControlModifier, by);
	const bool across = key == Qt::Key_Left || key == Qt::Key_Right;
	const int groups = static_cast<int>(view.groups.size());
	if (across)
		return choose({ std::clamp(view.group + by, 0, groups - 1), -1 });
	const int zones = chosen_group() ? static_cast<int>(chosen_group()->zones.size()) : 0;
	if (zones)
		choose({ view.group, std::clamp(view.zone + by, 0, zones - 1) });
}

void key_map::keyReleaseEvent(QKeyEvent *event)
{
	if (event->key() == Qt::Key_Space && !event->isAutoRepeat())
		release_key();
	else
		QWidget::keyReleaseEvent(event);
}

// ---- What ends a movement -----------------------------------------------------------------------------

void key_map::focusInEvent(QFocusEvent *)
{
	update();
}

void key_map::focusOutEvent(QFocusEvent *)
{
	release_key();
	update();
}

void key_map::changeEvent(QEvent *event)
{
	if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
		event->type() == QEvent::StyleChange)
		stale = true;
	if ((event->type() == QEvent::ActivationChange && !isActiveWindow()) ||
		(event->type() == QEvent::EnabledChange && !isEnabled()))
		end_movement();
	QWidget::changeEvent(event);
}

bool key_map::event(QEvent *event)
{
	if (event->type() == QEvent::Hide || event->type() == QEvent::UngrabMouse ||
		event->type() == QEvent::WindowDeactivate)
		end_movement();
	if (event->type() != QEvent::ToolTip)
		return QWidget::event(event);
	const auto *help = static_cast<QHelpEvent *>(event);
	QStringList words;
	for (const place &at : places_at(help->pos()))
		words += words_of(at);
	QToolTip::showText(help->globalPos(), words.join('\n'), this);
	return true;
}

// ---- Words ------------------------------------------------------------------------------------------------

static QString name_of(int note)
{
	return QString::fromUtf8(midi_note[static_cast<std::size_t>(note & 0x7F)]);
}

QString key_map::words_of(const place &at) const
{
	const key_group_view &group = view.groups[static_cast<std::size_t>(at.group)];
	QString words = qtr("Keygroup %1, %2 to %3")
				.arg(at.group + 1)
				.arg(name_of(group.low_note), name_of(group.high_note));
	if (at.zone < 0 || static_cast<std::size_t>(at.zone) >= group.zones.size())
		return words;
	const key_zone_view &zone = group.zones[static_cast<std::size_t>(at.zone)];
	words += qtr(", Keyzone %1: ").arg(at.zone + 1);
	words += zone.name.empty() ? qtr("no sample") : QString::fromUtf8(zone.name.c_str());
	words += zone.missing ? qtr(" (not loaded)") : "";
	return words + qtr(", velocity %1 to %2").arg(zone.low_velocity).arg(zone.high_velocity);
}

void key_map::say_chosen()
{
	const QString words = chosen_group() ? words_of({ view.group, view.zone })
			      : empty        ? empty_text
					     : qtr("no keygroup chosen");
	setAccessibleName(qtr("Key map: ") + words);
}

QString key_map::short_name(const std::string &name) const
{
	const QString all = QString::fromUtf8(name.c_str());
	const QString part =
		all.mid(shared_front, all.size() - shared_front - shared_end).trimmed();
	return part.isEmpty() ? all : part;
}

} // namespace velmor
