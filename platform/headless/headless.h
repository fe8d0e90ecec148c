// headless.h - what a program without windows decides before it starts

#pragma once

namespace velmor
{

// Answer to every question: true is OK. A program that must not overwrite anything says
// false.
extern bool headless_answers;

// The control that holds the log. What is appended to its text goes to standard output.
struct headless_place {
	int window, control;
};
extern headless_place headless_log;

} // namespace velmor
