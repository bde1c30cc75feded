# Completion of zo's command line in bash.

_zo() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= word
    local -A options=(
        [info]=""
        [ls]="--class --where"
        [schema]="--json --svg"
        [dump]="--class --uid --follow --json --jsonl"
        [sql]="--csv --json --jsonl"
        [export]="--sqlite --jsonl --force"
        [diff]="--by --abs --rel -n -q --schema"
        [report]="-o --output --objects"
        [verify]="--quick -n --most"
        [salvage]="-o --output --schema-from"
    )
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ -v options[$word] ]]; then
            command=$word
            break
        fi
    done
    COMPREPLY=()
    case $previous in
    --color)
        mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$current")
        return
        ;;
    --language)
        mapfile -t COMPREPLY < <(compgen -W "pt-BR en-US es-MX" -- "$current")
        return
        ;;
    --class | --by)
        # The classes of the file that is named already, or all names of their fields.
        local file names='"name":"[^"]*","abstract"'
        [ "$previous" = --by ] && names='"name":"[^"]*","kind"'
        for word in "${COMP_WORDS[@]:2}"; do [ -f "$word" ] && file=$word; done
        [ -n "${file:-}" ] && mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" schema --json "$file" 2>/dev/null |
            grep -o "$names" | cut -d '"' -f 4 | sort -u)" -- "$current")
        return
        ;;
    --where | --uid | --follow | --abs | --rel | --objects | -n | --most) return ;;
    esac
    if [ -z "$command" ]; then
        mapfile -t COMPREPLY < <(compgen -W "${!options[*]} --help --version --color --language" -- "$current")
    elif [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "${options[$command]} --help --color --language" -- "$current")
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F _zo zo
