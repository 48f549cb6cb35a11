# Completion of ostrelctl in fish: a file of this name in a folder of $fish_complete_path, such as
# ~/.config/fish/completions.

function __ostrelctl_complete
    set -l typed (commandline -opc)
    # A quote may be open.
    set -l raw (commandline -ct | string collect)
    set -l last (string unescape -- $raw; or string unescape -- $raw"'"; or string unescape -- $raw'"')
    set -q last[1]; or set last ''
    set -l lines ($typed[1] complete words $typed[2..] $last 2>/dev/null)
    if test "$lines[1]" != files
        printf '%s\n' $lines[2..]
        return
    end
    set -l start (string match --regex -- '^--[^=]*=' $last; or echo)
    printf '%s\n' $start(__fish_complete_path (string replace -- "$start" '' $last))
end

complete --command ostrelctl --no-files --keep-order --arguments '(__ostrelctl_complete)'
