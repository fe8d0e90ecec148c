# Real ALSA: two virtual MIDI interfaces with a cable each way between them.
set -e
modprobe snd-seq
modprobe snd-virmidi midi_devs=2
modprobe snd-seq-midi
client() { aconnect -l | awk -F'[ :]+' '/^client.*Virtual Raw MIDI/ { print $2 }' | sed -n "$1p"; }
aconnect "$(client 1):0" "$(client 2):0"
aconnect "$(client 2):0" "$(client 1):0"

run() { "$VELMOR_BUILD/tests/machine/$1" --gtest_color=no "${@:2}"; }
run machine_midi
run machine_sampler
run machine_monitor
run machine_player
run machine_midi --gtest_also_run_disabled_tests --gtest_filter='*interface_that_is_pulled*'
