#!/usr/bin/env bash
# A small control panel: what there is, why it is as it is, what a change would do, what happens.
#   examples/clients/client.sh PATTERN CONTROL NAME=VALUE...
#
# Each gdbus is a client of its own: what it has of Begin and Watch ends with its answer. So the
# transaction is one of `start`, and the signal that of the first interface.
set -euo pipefail
dest=org.tavrel.transaction
committed=4294967295 nobodys=4294967294 # transactions: what everybody sees; one that is not open
writable=4 has_value=64                 # flags of GetState

first() { gdbus call --session -d $dest -o /transaction -m org.tavrel.transaction."$1" -- "${@:2}"; }
begin() { first start | grep -ow '[0-9]*'; }
second() { gdbus call --session -d $dest -o /parameters -m org.tavrel.parameters1."$1" -- "${@:2}"; }

# The rows of an answer, one a line. Between fields is US, between the items of a field RS, between
# the parts of an item GS. Types, such as the uint32 that gdbus prints, are passed over.
US=$'\037' RS=$'\036' GS=$'\035'
rows() {
  grep -oE "'([^'\\]|\\\\.)*'|\"([^\"\\]|\\\\.)*\"|@[^ ]+|[a-z][a-z0-9]*|-?[0-9]+|[][(){},:]" |
    awk -v us=$US -v rs=$RS -v gs=$GS '
      /^[@a-z]/ { next } /^[[({]$/ { depth++; next }
      /^[])}]$/ { if (--depth == 2) print ""; next }
      /^,$/ { printf "%s", depth == 3 ? us : depth == 4 ? rs : depth == 5 ? gs : ""; next }
      /^:$/ { printf " is "; next }
      /^[^0-9-]/ { $0 = substr($0, 2, length($0) - 2) }
      { printf "%s", $0 }'
}
items() { sed "s/$RS/, /g" <<<"$1"; }
discover() {
  second List "$1" | rows | while IFS=$US read -r name access indices line level; do
    echo "$name $access, line $line, level $level, indices: $(items "$indices")"
  done
}
show() {
  second GetState "$1" "['$2']" | rows | while IFS=$US read -r name flags value _; do
    ((flags & has_value)) || value='(none)'
    ((flags & writable)) && can=writable || can='not writable'
    echo "$name = $value, $can"
  done
  second Explain "$1" "$2" | rows | while IFS=$US read -r question answer line statement used; do
    ((line)) && because=", line $line: $statement" || because=
    echo "  $question: $answer$because${used:+; ${used//$RS/; }}"
  done
}

# A call that fails, and what a client does about it. The second interface has a name for each
# error; the first has one for all, and only its text tells the cause.
wrong() {
  local error remedy='tell the user'
  error=$("$@" 2>&1) && return
  case $error in
    *Error.UnknownTransaction:* | *'invalid transaction id'*) remedy='begin anew' ;;
    *Error.UnknownParameter:*) remedy='list them' ;;
    *Error.InvalidPattern:*) remedy='mend it' ;;
    *Error.TooLarge:*) remedy='ask for less' ;;
  esac
  echo "error: ${error#*GDBus.Error:*: }; $remedy"
}
go_wrong() {
  wrong second List '['
  wrong second Explain $committed nonsense
  wrong second Preview $nobodys
  wrong first commit $nobodys
  wrong first set "$id" 'input_select[1]' radio
  first set "$id" 'input_name[1]' "$(head -c 100000 /dev/zero | tr '\0' x)" >/dev/null
  wrong second GetState "$id" "['input_name[1]'$(printf ", 'input_name[1]'%.0s" {2..400})]"
  first end "$id" >/dev/null # Nothing of this is to be committed.
  id=$(begin)
}

# What if? Only this transaction sees what is staged in it.
try_out() {
  for wish in "$@"; do first set "$id" "${wish%%=*}" "${wish#*=}" >/dev/null; done
  second Preview "$id" | rows | while IFS=$US read -r name old new causes; do
    # The rows of the second list, which is of the refused, have two fields.
    [ -z "$causes" ] || echo "would change $name: $old -> $new, because of $(items "$causes")"
    [ -n "$causes" ] || echo "would refuse $name: $old"
  done
}

# The commits since the last look; the signal has no old values. The limits of whoever uses a
# parameter may have changed with it.
report() {
  while IFS=$US read -r serial _ _ changes; do
    ((serial > ${seen:-0})) || continue
    seen=$serial changes=$(tr $RS '\n' <<<"$changes")
    sed "s/\(.*\)$GS\(.*\)$GS/commit $serial changed \1: \2 -> /" <<<"$changes"
    for name in $(grep -o '^[^[]*' <<<"${changes//$GS/[}"); do second GetDefinition "$name"; done |
      sed -n "s/.*'used-by': <\[\([^]]*\).*/\1/p" | tr -d "' " | tr , '\n' | sort -u | paste -sd, |
      sed -n "s/,/, /g; s/^./commit $serial touched the limits of &/p"
  done < <(second History 0 | rows)
}
on_service() {
  echo 'service: there'
  local was_there=$id
  # Transactions end with the daemon, so each run of it is begun anew, once its values are there.
  second WaitReady >/dev/null && id=$(begin) && seen=$(second History 1 | rows | cut -d $US -f 1)
  [ -z "$was_there" ] || { show "$id" "$2" && exit; }
  discover "$1"
  show $committed "$2"
  go_wrong
  try_out "${@:3}"
  show "$id" "$2"
  # A commit cuts values, and passes over others, without an error: the signal tells.
  first commit "$id" >/dev/null
}

# Says who has the name, too: the daemon may come after its clients, and it may be restarted.
exec {monitor}< <(exec gdbus monitor --session -d $dest -o /transaction)
id='' watcher=$!
trap 'kill $watcher; first end "$id" >/dev/null' EXIT
while read -r -u "$monitor" line; do
  case $line in
    *'does not have an owner') echo 'service: none' ;;
    *'is owned by'*) on_service "$@" || true ;;
    /transaction:*) report || true ;;
  esac
done
