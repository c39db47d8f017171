# bash completion for quillon-export

_quillon_export()
{
    local cur prev words cword split
    _init_completion -s || return

    local formats='pdf svg png mid wav ogg mp3 abc musicxml mxl ly txt tune measure-log page-log print-log'
    case $prev in
    -o | --output | --tuning-file) _filedir ;;
    --format) COMPREPLY=($(compgen -W "$formats" -- "$cur")) ;;
    --from) COMPREPLY=($(compgen -W 'abc musicxml mxl mid txt' -- "$cur")) ;;
    --strings) COMPREPLY=($(compgen -W '4 5 6' -- "$cur")) ;;
    --center-title) COMPREPLY=($(compgen -W 'yes no' -- "$cur")) ;;
    --look) COMPREPLY=($(compgen -W 'engraved plain' -- "$cur")) ;;
    --paper) COMPREPLY=($(compgen -W 'letter a4' -- "$cur")) ;;
    --tempo | --tuning | --capo | --position | --instrument | --*-font | --*-size | --left | \
        --right | --top | --stave-space | --measures | --dpi | --speed | --loop | --help | -h) ;;
    *)
        if [[ $cur == -* ]]; then
            COMPREPLY=($(compgen -W '-o --output --check --order --format --from --strings --tempo
                --tuning --tuning-file --capo --position --instrument --body-font --body-size
                --title-font --title-size --left --right --top --stave-space --center-title --look
                --measures --crop --paper --no-empty-page --dpi --text --speed --loop --count-in
                --click --help' -- "$cur"))
        else
            _filedir '@(gui|bjo|bss|abc|musicxml|xml|mxl|mid|midi|txt|tab)'
        fi
        ;;
    esac
} && complete -F _quillon_export quillon-export
