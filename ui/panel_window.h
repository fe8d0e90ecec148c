// panel_window.h - a sampler's screen with its keys around it

#pragma once
#include "platform/ui.h"

namespace velmor
{

// What the ui service does for the panel.
void build_panel(int window, const panel_view *view);
void copy_bitmap(const bitmap_view *view, int scale);
bool save_bitmap(const char *path, const bitmap_view *view, int scale);

} // namespace velmor
