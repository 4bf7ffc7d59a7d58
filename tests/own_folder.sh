# Sourced by a test: makes $work, a folder for this test alone. It is removed when the test ends; when
# the test is killed, as soon as all processes that it has started have ended.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
exec {work_alive}> >(exec setsid --fork sh -c 'cat; rm -rf "$0"' "$work" >/dev/null 2>&1)
