# Completion of bash for the programs of zv32-isp. What may stand there is told by zv32-isp-console/complete.

_zv32_isp() {
    local cur prev words cword found
    _init_completion -n := || return
    local complete=${BASH_SOURCE[0]%/*}/../../zv32-isp-console/complete
    mapfile -t COMPREPLY < <("$complete" "${words[@]:0:cword}" "$cur" 2>/dev/null)
    # A blank belongs behind a whole word, and a name with a blank in it is quoted.
    for found in "${COMPREPLY[@]}"; do
        case $found in
            *[/=@-]) compopt -o nospace 2>/dev/null ;;
            */*) compopt -o filenames 2>/dev/null ;;
        esac
    done
    __ltrim_colon_completions "$cur"
}
complete -F _zv32_isp ZV32_ISP_Console zv32-line zv32-look zv32-sim zv32-check-map
