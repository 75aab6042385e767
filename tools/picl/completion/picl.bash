# Completion of picl for bash: commands and options as its help tells them, names as the running property server does.

# Splits the line before the cursor into words without their quotes, into `words`. What was typed of the last one
# goes into `typed`, the quotation mark that is still open in it into `quote`.
_picl_split() {
    local text=${COMP_LINE:0:COMP_POINT} word= begun= c i start=0
    words=() quote=
    for ((i = 0; i < ${#text}; ++i)); do
        c=${text:i:1}
        if [[ $quote != "'" && $c == \\ ]]; then
            ((++i))
            word+=${text:i:1}
        elif [[ $quote ]]; then
            if [[ $c == "$quote" ]]; then quote=; else word+=$c; fi
        elif [[ $c == [\"\'] ]]; then
            quote=$c begun=1
        elif [[ $c == [[:blank:]] ]]; then
            [[ $word || $begun ]] && words+=("$word")
            word= begun= start=$((i + 1))
        else
            word+=$c
        fi
    done
    words+=("$word")
    typed=${text:start}
}

# Offers those of the lines on the standard input that begin with `current`, quoted as the word is.
_picl_offer() {
    local candidate prefix=${typed%"${typed##*[:=@]}"}
    while IFS= read -r candidate; do
        [[ ${candidate,,} == "${current,,}"* ]] || continue
        case $quote in
        "'") candidate=${candidate//"'"/"'\\''"} ;;
        '"') candidate=$(sed 's/[\\"$`]/\\&/g' <<<"$candidate") ;;
        *)
            printf -v candidate %q "$candidate"
            candidate=${candidate#"$prefix"} # readline keeps what stands before its own breaks of words
            ;;
        esac
        COMPREPLY+=("$candidate")
    done
}

_picl_ask() { # KIND: what the server knows, if there is one and it is quick
    _picl_offer < <("$program" complete "${server[@]}" --timeout 0.5 -- "$1" "$current" 2>/dev/null)
}

_picl_options() {
    _picl_offer < <("$program" $command --help 2>/dev/null | sed -n 's/^  \(-[^ ]*\).*/\1/p' | tr , '\n')
}

_picl_commands() {
    _picl_offer < <("$program" --help 2>/dev/null | sed -n '/^Subcommands:/,$s/^  \([a-z][a-z]*\).*/\1/p')
}

_picl() {
    local program=$1 command= current typed quote option= plain= position=0 i
    local -a words server=()
    COMPREPLY=()
    _picl_split
    current=${words[-1]}
    for ((i = 1; i < ${#words[@]} - 1; ++i)); do
        if [[ $option ]]; then
            [[ $option == --root || $option == --tcp ]] && server+=("$option" "${words[i]}")
            option=
        elif [[ ! $plain && ${words[i]} == -- ]]; then
            plain=1
        elif [[ ! $plain && ${words[i]} == -* ]]; then
            case $command:${words[i]} in
            *:--json | *:--guids | *:--all | *:--dry-run | *:--help | *:-h | serve:--tcp | serve:--quiet) ;;
            *) option=${words[i]} ;;
            esac
        elif [[ ! $command ]]; then
            command=${words[i]}
        else
            ((++position))
        fi
    done

    case $option in
    --root) compopt -o dirnames 2>/dev/null ;;
    -o | --output | --firmware) compopt -o default 2>/dev/null ;;
    --program) _picl_ask programs ;;
    --group) _picl_ask groups ;;
    ?*) ;;
    '')
        if [[ ! $plain && $current == -* ]]; then
            _picl_options
        else
            case $command:$position in
            :*) _picl_commands ;;
            get:* | watch:* | set:0) _picl_ask properties ;;
            dump:0) _picl_ask programs ;;
            load:0) compopt -o default 2>/dev/null ;;
            esac
        fi
        ;;
    esac
}

complete -F _picl picl
