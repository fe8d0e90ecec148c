# Real ALSA: two virtual MIDI interfaces with a cable each way between them.
set -e
modprobe snd-seq
modprobe snd-virmidi midi_devs=2
modprobe snd-seq-midi
first=$(aconnect -l | awk -F'[ :]+' '/^client.*VirMIDI|^client.*Virtual Raw MIDI/ { print $2; exit }')
second=$(aconnect -l | awk -F'[ :]+' '/^client.*VirMIDI|^client.*Virtual Raw MIDI/ { at = $2 } END { print at }')
aconnect "$first:0" "$second:0"
aconnect "$second:0" "$first:0"
"$VELMOR_BUILD/tests/machine/machine_midi" --gtest_brief=1 --gtest_color=no
"$VELMOR_BUILD/tests/machine/machine_midi" --gtest_brief=1 --gtest_color=no \
	--gtest_also_run_disabled_tests --gtest_filter='*interface_that_is_pulled*'
