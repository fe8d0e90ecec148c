// windowed.h - a program with windows where there may be no display
//
// Qt ends a program that finds no display by abort. Here it becomes a sentence and
// status 1, whatever was wrong with the display.

#pragma once
#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>

namespace velmor
{

// Around the making of the QApplication: a word from Qt that ends the program is then about
// the display, and what it said before is of no use to anybody else.
class while_finding_a_display
{
public:
	while_finding_a_display() : before(qInstallMessageHandler(hear)) {}
	~while_finding_a_display()
	{
		qInstallMessageHandler(before);
		std::fputs(heard().toUtf8().constData(), stderr);
	}
	while_finding_a_display(const while_finding_a_display &) = delete;

private:
	static QString &heard()
	{
		static QString words;
		return words;
	}
	static void hear(QtMsgType type, const QMessageLogContext &, const QString &words)
	{
		if (type != QtFatalMsg) {
			heard() += words + "\n";
			return;
		}
		std::fputs("There is no display to open windows on. Start the program in a desktop "
			   "session, or set DISPLAY or WAYLAND_DISPLAY.\n",
			stderr);
		std::_Exit(1);
	}

	QtMessageHandler before;
};

} // namespace velmor
