// test_ui_queue.cpp - several samples at once, by mouse and keys, and the window of their queue

#include "tests/support/fake_model.h"
#include "tests/ui_fixture.h"
#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>
#include <QProgressBar>
#include <QUrl>
#include <memory>

using namespace velmor;

namespace
{

class queue_windows : public windows
{
protected:
	queue_windows() : model(h)
	{
		model.names = { "KICK", "SNARE", "HAT" };
		for (const char *name : { "bell", "bass", "gong" })
			h.put_content(spooled(std::string(name) + ".wav"),
				wave_bytes(44100, 1, { 1, 2 }));
		host.ui->show(window_main, main_samples, true);
		press(window_main, main_samples);
		model.calls.clear();
	}
	std::string spooled(const std::string &name) { return h.config + "\\sample\\" + name; }
	entry_list *loaded() { return at<entry_list>(window_samples, samples_loaded_list); }
	entry_list *local() { return at<entry_list>(window_samples, samples_local_list); }
	QString tip(int control) { return at(window_samples, control)->toolTip(); }
	// Drag what is chosen in a list over another, and let it go there.
	QString drag(entry_list *from, entry_list *to, bool *taken)
	{
		const std::unique_ptr<QMimeData> data(from->mimeData());
		const QPoint middle = to->viewport()->rect().center();
		QDragEnterEvent enter(middle, Qt::CopyAction, data.get(), Qt::LeftButton, {});
		QApplication::sendEvent(to->viewport(), &enter);
		const QString words = to->words_of_drop();
		QDragMoveEvent move(middle, Qt::CopyAction, data.get(), Qt::LeftButton, {});
		QApplication::sendEvent(to->viewport(), &move);
		QDropEvent drop(middle, Qt::CopyAction, data.get(), Qt::LeftButton, {});
		*taken = enter.isAccepted() && move.isAccepted();
		if (*taken)
			QApplication::sendEvent(to->viewport(), &drop);
		QCoreApplication::processEvents();
		return words;
	}
	fake_model model;
};

} // namespace

TEST_F(queue_windows, keys_work_on_what_is_chosen_and_seen)
{
	entry_list *list = local();
	list->setFocus();
	QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier);
	EXPECT_EQ(list->all_chosen().size(), 3u);
	EXPECT_EQ(tip(samples_local_rename), "This is for one sample, and several are chosen.");
	QTest::keyClick(list, Qt::Key_F2);
	EXPECT_EQ(at(window_samples, 0)->focusWidget(), list) << "it is refused";
	type(window_samples, samples_local_search, "b");
	QTest::keyClick(list, Qt::Key_Delete);
	EXPECT_EQ(list->count(), 1) << "what is hidden is not chosen";
	EXPECT_TRUE(h.content(spooled("gong.wav")));
	press(window_progress, progress_close);
	at<QLineEdit>(window_samples, samples_local_search)->clear();

	choose(window_samples, samples_local_list, "gong");
	QTest::keyClick(list, Qt::Key_F2);
	auto *name = at<QLineEdit>(window_samples, samples_local_new_name);
	EXPECT_EQ(name->selectedText(), "gong");
	QTest::keyClicks(name, "tam");
	QTest::keyClick(name, Qt::Key_Return);
	EXPECT_TRUE(h.content(spooled("tam.wav")));
	QTest::keyClick(list, Qt::Key_Return);
	EXPECT_EQ(model.calls.front(), "uploadsample " + spooled("tam"));

	// A press with Ctrl takes the only one away; then there is nothing to work on.
	choose(window_samples, samples_loaded_list, "KICK");
	QTest::mouseClick(loaded()->viewport(), Qt::LeftButton, Qt::ControlModifier,
		loaded()->place_on_screen(0).center());
	EXPECT_EQ(loaded()->chosen(), -1);
	EXPECT_EQ(tip(samples_download), "Choose a sample on the sampler first.");
}

TEST_F(queue_windows, entries_are_dragged_between_the_lists_and_out)
{
	bool taken = false;
	local()->choose_several(std::vector{ 0, 2 });
	EXPECT_EQ(std::unique_ptr<QMimeData>(local()->mimeData())->urls(),
		(QList<QUrl>{ QUrl::fromLocalFile(
				      host.files->host_path(spooled("bass.wav").c_str()).c_str()),
			QUrl::fromLocalFile(
				host.files->host_path(spooled("gong.wav").c_str()).c_str()) }));
	drag(local(), local(), &taken);
	EXPECT_FALSE(taken) << "they are there already";
	EXPECT_EQ(drag(local(), loaded(), &taken), "Upload these 2 samples to the sampler");
	EXPECT_TRUE(taken);
	EXPECT_EQ(loaded()->count(), 5);
	EXPECT_EQ(loaded()->words_of_drop(), "");
	loaded()->choose(1);
	EXPECT_EQ(drag(loaded(), local(), &taken), "Download this sample to this computer");
	EXPECT_TRUE(h.content(spooled("SNARE.wav")));

	// What cannot be done is said, and not taken.
	model.silent = true;
	press(window_samples, samples_refresh);
	const std::size_t before = model.calls.size();
	EXPECT_EQ(drag(local(), loaded(), &taken),
		"Not now: the sampler's list could not be read. Try again first.");
	EXPECT_FALSE(taken);
	EXPECT_EQ(model.calls.size(), before);
}

TEST_F(queue_windows, one_window_has_a_queue_its_verdict_and_a_single_bar)
{
	loaded()->choose_several(std::vector{ 0, 1, 2 });
	auto *items = at<entry_list>(window_progress, progress_list);
	const QTreeWidgetItem *first = nullptr;
	model.on_step = [&](int step) {
		EXPECT_FALSE(at(window_samples, 0)->isEnabled());
		if (model.calls.back() == "downloadsample KICK" && step == 0)
			first = items->entry(0);
		if (model.calls.back() == "downloadsample SNARE" && step == 3)
			QTest::mouseClick(at(window_progress, progress_stop), Qt::LeftButton);
	};
	press(window_samples, samples_download);
	EXPECT_EQ(items->entry(0), first) << "nothing moves while it is filled again";
	EXPECT_EQ(items->entry(1)->text(1), "stopped, at 75 %");
	EXPECT_EQ(items->entry(1)->data(0, Qt::UserRole).toInt(),
		static_cast<int>(entry_mark::failed));
	EXPECT_EQ(at(window_progress, 0)->focusWidget(), at(window_progress, progress_again));
	QCoreApplication::processEvents();
	const int tall = at(window_progress, 0)->height();
	press(window_progress, progress_copy);
	EXPECT_TRUE(QGuiApplication::clipboard()->text().startsWith(
		"1 of 3 samples were downloaded\nYou stopped it in the middle of 'SNARE'.\n"));
	model.on_step = [&](int) {
		QCoreApplication::processEvents();
		EXPECT_FALSE(items->isVisible());
		EXPECT_LT(at(window_progress, 0)->height(), tall / 2);
	};
	choose(window_samples, samples_loaded_list, "HAT");
	press(window_samples, samples_download);
	EXPECT_FALSE(shown(window_progress));
}
