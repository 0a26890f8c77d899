# bash: sourced by the scripts.

end_with_help() {  # end_with_help [ARGUMENT]: prints what the script says of itself at its head; 0 for --help, else 64
    local status=64
    case ${1:-} in
        -h | --help) status=0 ;;
        *) exec >&2 ;;
    esac
    sed -n '2,${/^#/!q;s/^# \?//p}' "$(dirname "${BASH_SOURCE[0]}")/../$(basename "$0")"
    exit "$status"
}
