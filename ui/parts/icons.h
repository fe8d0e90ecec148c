// icons.h - the program's own icons: lines on a grid of 16, one stroke, tinted by the palette
//
// An icon stands beside words, never instead of them; only what folds has none.

#pragma once
#include <QIcon>

class QPainter;

namespace velmor
{

enum class icon {
	none,
	program, // the program itself
	midi,
	usb,
	plugged,
	unplugged,
	sampler,
	computer,
	wave,
	keys,
	layers,
	display,
	load,
	right,
	all_right,
	left,
	refresh,
	pencil,
	info,
	trash,
	folder_in,
	folder_out,
	folder_clear,
	undo,
	redo,
	plus,
	bolt,
	more,
	document,
	document_in,
	envelope,
	good,
	careful,
	failed,
	waiting,
	skipped,
	idle,
	dot,
	fold_open,
	fold_closed,
	fold_up,
	copy,
	search,
	zoom_in,
	zoom_out,
	zoom_all,
	save,
	cancel,
	stop,
	settings,
	notes,
	play,
	ear,
};

// The icon of a window (control 0) or of a control, none where it has none.
icon icon_of(int window, int control);
void paint_icon(QPainter *painter, icon which, const QRectF &place, const QColor &color);
// Painted in the palette's colours of the moment.
QIcon make_icon(icon which);

} // namespace velmor
