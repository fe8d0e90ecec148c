// screen_drawings.h - what stands beside the rows of a page

#pragma once
#include "virtual/screen.h"

namespace velmor
{

void draw_mix(screen &s, screen_canvas &c, screen_box b);
void draw_effects(screen &s, screen_canvas &c, screen_box b);
void draw_wave(screen &s, screen_canvas &c, screen_box b);
void draw_meter(screen &s, screen_canvas &c, screen_box b);
void draw_memory(screen &s, screen_canvas &c, screen_box b);

} // namespace velmor
