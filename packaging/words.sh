#!/usr/bin/env bash
# words.sh - bring the files of translations/ up to date with the sources: new words come in
# unfinished, words that are gone go.
set -euo pipefail
cd "$(dirname "$0")/.."
. packaging/packages.sh
need qt6-l10n-tools perl-base
PATH=$PATH:/usr/lib/qt6/bin
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
# lupdate takes free functions for members of whatever stands before them, so it is given a
# list in which each text names its context.
find src ui platform \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z |
	xargs -0 perl -0777 -ne 'while (/\b(?:tr|own|qtr)\(\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\)/g) {
		(my $words = $1) =~ s/"\s+"//g;
		print "QT_TRANSLATE_NOOP(\"velmor\", $words)\n" }' | sort -u >"$folder/words.cpp"
for language in translations/*.ts; do
	lupdate -silent -no-obsolete -locations none "$folder/words.cpp" -ts "$language"
done
