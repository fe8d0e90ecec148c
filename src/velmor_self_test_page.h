// velmor_self_test_page.h - the window of the self-test

#pragma once
#include "src/velmor_window.h"

namespace velmor
{

extern const window_rows self_test_rows;

// Empty, with the ports that are chosen now.
void show_self_test();

} // namespace velmor
