# Completion of velmorctl for bash; made by velmorctl --completion
_velmorctl()
{
	local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} verb= i
	local IFS=$' \t\n'
	COMPREPLY=()
	for ((i = 1; i < COMP_CWORD; i++)); do
		case ${COMP_WORDS[i]} in
		--sampler|--tcp) ((i++)) ;;
		-*) ;;
		*) verb+=${verb:+ }${COMP_WORDS[i]}; [[ $verb == program ]] || break ;;
		esac
	done
	case $before in
	--sampler)
		local demo=; [[ " ${COMP_WORDS[*]} " == *' --demo '* ]] && demo=--demo
		local name; while IFS= read -r name; do
			[[ $name == "$word"* ]] && COMPREPLY+=("${name// /\\ }")
		done < <(velmorctl $demo samplers 2>/dev/null | cut -f1)
		return ;;
	--bits) COMPREPLY=($(compgen -W '12 16 24' -- "$word")); return ;;
	--rate) COMPREPLY=($(compgen -W '16000 22000 32000 44100 48000 96000' -- "$word")); return ;;
	--channels) COMPREPLY=($(compgen -W '1 2' -- "$word")); return ;;
	--mix) COMPREPLY=($(compgen -W 'left right both average files' -- "$word")); return ;;
	esac
	local options='--sampler --demo --tcp --record --json --yes --verbose --completion --version --help'
	case $verb in
	'') COMPREPLY=($(compgen -W "samplers info ls get put rm mv import program backup restore undo panel key play monitor selftest replay $options" -- "$word")); return ;;
	program) COMPREPLY=($(compgen -W 'ls get put rm mv' -- "$word")); return ;;
	'ls') options+=' --local' ;;
	'get') options+=' --all' ;;
	'rm') options+=' --local' ;;
	'mv') options+=' --local' ;;
	'import') options+=' --bits --rate --channels --mix' ;;
	'program ls') options+=' --local' ;;
	'program rm') options+=' --local' ;;
	'program mv') options+=' --local' ;;
	'backup') options+=' --everything' ;;
	'restore') options+=' --everything --remove-others --plan' ;;
	'panel') options+=' --png' ;;
	'key') options+=' --times --type --list' ;;
	'play') options+=' --speed' ;;
	'monitor') options+=' --seconds' ;;
	'selftest') options+=' --answers --keep --forget' ;;
	esac
	if [[ $word == -* ]]; then
		COMPREPLY=($(compgen -W "$options" -- "$word"))
	else
		compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- "$word"))
	fi
}
complete -F _velmorctl velmorctl
