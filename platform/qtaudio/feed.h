// feed.h - a sound as a loudspeaker asks for it: piece by piece, its loop without a gap
//
// Knows nothing of: toolkits, devices.

#pragma once
#include "platform/audio.h"
#include <algorithm>

namespace velmor
{

class sound_feed
{
public:
	explicit sound_feed(const played_sound &played)
		: sound(played), frames(played.channels ? played.words.size() / played.channels : 0)
	{
		if (sound.loop_end > frames || sound.loop_start >= sound.loop_end)
			sound.loop_start = sound.loop_end = 0;
	}
	bool loops() const { return sound.loop_end > 0; }
	std::uint64_t frame_count() const { return frames; }

	// The next frames into words. Fewer only at the end of a sound without a loop.
	std::size_t read(std::int16_t *words, std::size_t wanted)
	{
		std::size_t given = 0;
		while (given < wanted) {
			const std::uint64_t end = loops() ? sound.loop_end : frames;
			const auto part = static_cast<std::size_t>(
				std::min<std::uint64_t>(wanted - given, end - at));
			std::copy_n(sound.words.data() + at * sound.channels, part * sound.channels,
				words + given * sound.channels);
			given += part;
			at += part;
			if (at < end)
				continue;
			if (!loops())
				break;
			at = sound.loop_start;
		}
		return given;
	}

	// The frame that is heard when so many were; -1 behind the end.
	std::int64_t heard(std::uint64_t played) const
	{
		if (loops() && played >= sound.loop_end)
			played = sound.loop_start +
				 (played - sound.loop_end) % (sound.loop_end - sound.loop_start);
		return played < frames ? static_cast<std::int64_t>(played) : -1;
	}

private:
	played_sound sound;
	std::uint64_t frames, at = 0;
};

} // namespace velmor
