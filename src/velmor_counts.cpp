// velmor_counts.cpp - how many of what, in words

#include "src/velmor_counts.h"
#include "src/velmor.h"
#include <cstddef>

namespace velmor
{

struct noun_row {
	const char *one, *many;
};
static constexpr noun_row nouns[] = {
	{ own("%d keygroup"), own("%d keygroups") },
	{ own("%d keyzone"), own("%d keyzones") },
	{ own("%d sample"), own("%d samples") },
	{ own("%d program"), own("%d programs") },
	{ own("%d multi"), own("%d multis") },
	{ own("%d parameter"), own("%d parameters") },
	{ own("%d value"), own("%d values") },
	{ own("%d change"), own("%d changes") },
	{ own("%d track"), own("%d tracks") },
};

std::string counted(int count, noun of)
{
	const noun_row &row = nouns[static_cast<std::size_t>(of)];
	return format_text(tr(count == 1 ? row.one : row.many), count);
}

} // namespace velmor
