# Sourced by a test: makes $work, a folder of its own. It is removed with the test, and when the test
# is killed, as soon as everything that it has started has ended too.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
exec {work_alive}> >(exec setsid --fork sh -c 'cat; rm -rf "$0"' "$work" >/dev/null 2>&1)
