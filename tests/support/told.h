// told.h - what a record holds, in the words of its table: "low_note 24, high_note 96"

#pragma once
#include "src/parameters.h"
#include <string>

namespace velmor
{

template <typename record> std::string told(parameters<record> table, const record &r)
{
	std::string text;
	for (const auto &row : table) {
		text += std::string(text.empty() ? "" : ", ") + row.field.name + " ";
		if (const auto *name =
				std::get_if<typename member<record>::text>(&row.field.at.field))
			text += std::string(r.*(*name));
		else
			text += std::to_string(row.field.at.get(r));
	}
	return text;
}

} // namespace velmor
