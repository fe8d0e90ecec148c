// settings.h - small text values and the one folder that belong to a user

#pragma once

namespace velmor
{

// Room for a value with its terminator. Longer values are refused by save_key.
inline constexpr int setting_size = 1025;

struct settings_service {
	// Read a value into setting_size bytes. 0, 2 when it does not exist, or a system code.
	int (*load_key)(const char *name, char *value);
	// Write a value: 0 or a system code. A crash at any moment leaves the old or the new value
	// of every key, never a mixture.
	int (*save_key)(const char *name, const char *value);
	// The user's data folder, written with backslashes, or null when the system tells none.
	const char *(*user_root)();
	// Words for a code, in a static buffer that the next call overwrites, or null.
	const char *(*error_text)(int code);
};

} // namespace velmor
