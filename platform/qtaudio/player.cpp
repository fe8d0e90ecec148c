// player.cpp - a sound to the default output of the computer, through Qt Multimedia
//
// A module of its own: see qtaudio.cpp. The sink pulls from a device that never ends while the
// sound loops, so that there is no gap at its seam.

#include "platform/qtaudio/feed.h"
#include <QAudioDevice>
#include <QAudioSink>
#include <QIODevice>
#include <QMediaDevices>
#include <utility>

namespace velmor
{

// After a sound without a loop comes some silence: a sink that has nothing to say ends before
// what it was given last is heard.
static constexpr double silence_seconds = 0.5;

class feed_device : public QIODevice
{
public:
	explicit feed_device(const played_sound &sound)
		: feed(sound), frame_bytes(static_cast<qint64>(sound.channels) * 2),
		  silence(static_cast<qint64>(sound.sample_rate * silence_seconds))
	{
		open(QIODevice::ReadOnly | QIODevice::Unbuffered);
	}
	bool isSequential() const override { return true; }
	bool atEnd() const override { return silence <= 0; }
	// Always some: the sink asks when it has room.
	qint64 bytesAvailable() const override { return atEnd() ? 0 : 1 << 20; }

	sound_feed feed;

protected:
	qint64 readData(char *data, qint64 bytes) override
	{
		const qint64 wanted = bytes / frame_bytes;
		auto *words = reinterpret_cast<std::int16_t *>(data);
		const auto given =
			static_cast<qint64>(feed.read(words, static_cast<std::size_t>(wanted)));
		const qint64 quiet = std::clamp<qint64>(wanted - given, 0, silence);
		std::fill_n(data + given * frame_bytes, quiet * frame_bytes, 0);
		silence -= quiet;
		return (given + quiet) * frame_bytes;
	}
	qint64 writeData(const char *, qint64) override { return -1; }

private:
	qint64 frame_bytes, silence; // in frames
};

// Never destroyed at the end of the process, when what they need has gone already.
static feed_device *device;
static QAudioSink *sink;

static void forget()
{
	if (sink)
		sink->reset();
	delete std::exchange(sink, nullptr);
	delete std::exchange(device, nullptr);
}

static std::string play(const played_sound &sound)
{
	forget();
	const QAudioDevice output = QMediaDevices::defaultAudioOutput();
	if (output.isNull())
		return "This computer has no sound output that is switched on.";
	QAudioFormat format;
	format.setSampleRate(static_cast<int>(sound.sample_rate));
	format.setChannelCount(static_cast<int>(sound.channels));
	format.setSampleFormat(QAudioFormat::Int16);
	device = new feed_device(sound);
	sink = new QAudioSink(output, format);
	sink->start(device);
	if (sink->error() == QAudio::NoError)
		return "";
	const std::string name = output.description().toStdString();
	forget();
	return "The sound output '" + name + "' of this computer does not play.";
}

// An output that was taken away stops by itself.
static std::int64_t position()
{
	if (!sink || sink->state() == QAudio::StoppedState)
		return -1;
	const double seconds = static_cast<double>(sink->processedUSecs()) / 1e6;
	const auto frames = static_cast<std::uint64_t>(seconds * sink->format().sampleRate());
	return device->atEnd() && sink->state() == QAudio::IdleState ? -1
								     : device->feed.heard(frames);
}

// Of a sound that is over the last words may still be on their way to the ear, but the sink has
// taken them all.
static void stop()
{
	const bool over = sink && sink->state() != QAudio::StoppedState && position() < 0;
	if (!over)
		forget();
}

static constexpr audio_service service = { .play = play, .stop = stop, .position = position };

} // namespace velmor

extern "C" __attribute__((visibility("default"))) const velmor::audio_service velmor_audio;
extern "C" const velmor::audio_service velmor_audio = velmor::service;
