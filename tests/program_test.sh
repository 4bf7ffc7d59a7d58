#!/usr/bin/env bash
# The host program as its user sees it: the result last on standard output, one line on standard error
# for a failure, and the exit codes.
#
# The arguments are the command that starts the program: scripts/wine lanvoss.exe. With ON_RADIO=yes
# it uses the machine's radio, which is the fake one, and the real network.
set -uo pipefail
program=("$@")
on_radio=${ON_RADIO:-no}
source "$(dirname "$0")/own_folder.sh"
remote=192.168.49.20
[ "$on_radio" = no ] || remote=127.0.0.1
nothing="\"none\"$(printf ', "none"%.0s' {1..40})"
quick="\"appear_ms\": 20, \"pair_ms\": 20, \"open_ms\": 20, \"remote_address\": \"$remote\""
cat >"$work/quick.json" <<JSON
{"habits": {"enumeration_ms": 300},
 "peers": [{"name": "Cam", $quick},
           {"name": "Once", $quick, "openings": ["succeeds", $nothing]},
           {"name": "Refuses", $quick, "pairing_status": "AccessDenied", "openings": [$nothing]},
           {"name": "Hangs", "appear_ms": 20, "pairings": ["hangs"]}]}
JSON
sed 's/"enumeration_ms"/"simulates_echo": false, &/' "$work/quick.json" >"$work/raw.json"
failures=0
expect() { # EXIT-CODE LAST-LINE-OF-OUTPUT COMPLAINTS COMMAND...
  local code=$1 last=$2 complaints=$3
  shift 3
  "$@" >"$work/out" 2>"$work/err"
  local got=$?
  if [ "$got" -ne "$code" ] || [[ $(tail -n 1 "$work/out") != $last ]] ||
    [ "$(wc -l <"$work/err")" -ne "$complaints" ] || grep -q $'\r' "$work/out" "$work/err"; then
    echo "unexpected: $*: exit code $got, $(tail -n 1 "$work/out")"
    cat "$work/err"
    failures=$((failures + 1))
  fi
}
says() { # TEXT that the latest run has written
  if ! grep -qF -- "$1" "$work/out" "$work/err"; then
    echo "not said: $1"
    cat "$work/err"
    failures=$((failures + 1))
  fi
}
interrupted() { # COMMAND..., which begins its log when it can be interrupted
  "$@" <&0 & # or its input would be empty
  until [ -s "$work/out" ]; do sleep 0.1; done
  sleep 0.3
  kill -INT $!
  wait $!
}
prompt() { # SECONDS COMMAND...: whether its first line comes through a pipe within this time
  read -r -t "$1" < <("${@:2}")
  local got=$?
  wait $!
  return $got
}
fed() { printf '%b' "$1" | "${@:2}"; } # LINES COMMAND...
expect_results() { # RESULT-LINES of the latest run
  if ! diff <(printf '%s\n' "$@") <(grep '^> ' "$work/out"); then
    echo "unexpected results of a run"
    failures=$((failures + 1))
  fi
}
common=(--dir "$work" --verbose)
if [ "$on_radio" = yes ]; then
  export LANVOSS_FAKE_WINRT_SCENARIO=$work/quick.json
else
  common+=(--scenario "$work/quick.json")
fi

expect 0 "192.168.49.1,$remote" 0 "${program[@]}" ip Cam "${common[@]}"
cp "$work/out" "$work/cam.log"
expect 0 "192.168.49.1,$remote" 0 "${program[@]}" ip Cam "${common[@]}" --quiet
[ "$(wc -l <"$work/out")" -eq 1 ] || failures=$((failures + 1))
expect 0 "$work/cam.json" 0 "${program[@]}" timeline "$work/cam.log" "$work/cam.json"
expect 2 '' 1 "${program[@]}" timeline "$work/quick.json"
expect 0 Cam 0 "${program[@]}" watch Cam "${common[@]}"
expect 0 Hangs 0 "${program[@]}" watch "${common[@]}"
expect 6 '*' 1 "${program[@]}" ip Cam --direct "${common[@]}" # known, but not paired any more
expect 5 '*' 1 "${program[@]}" ip Refuses "${common[@]}"
expect 2 '' 1 "${program[@]}" ip '' "${common[@]}"
expect 2 '' 1 "${program[@]}" ip Cam --log "$work/none/log" "${common[@]}"
expect 2 '' 2 "${program[@]}" ip Cam --gap soon "${common[@]}"
expect 2 '' 2 "${program[@]}" watch --keep "${common[@]}"
expect 2 '' 1 "${program[@]}" ip Cam --scenario "$work/none.json"
expect 2 '' 1 "${program[@]}" ip Cam --timeline "$work/none/cam.svg" "${common[@]}"
expect 2 '' 2 "${program[@]}" ipp Cam
says 'no command ipp; did you mean ip?'
expect 2 '' 2 "${program[@]}" ip Cam --timelime=x.svg
says 'no option --timelime; did you mean --timeline?'
expect 2 '' 1 "${program[@]}" help scenario lst
says 'no command lst; did you mean list?'
expect 0 '*' 0 "${program[@]}" help ip
says 'lanvoss ip [OPTIONS]'
expect 0 'windows_field *' 0 "${program[@]}" scenario list
expect 2 '' 1 "${program[@]}" watch --scenario offise.json
says 'no scenario offise.json; did you mean office?; there are: office, silent, windows_field'
expect 0 'The simulated radio is ready*' 0 "${program[@]}" doctor --radio simulated
expect 130 '*' 1 interrupted "${program[@]}" ip Nobody "${common[@]}"
expect 130 '*' 1 interrupted "${program[@]}" watch Nobody "${common[@]}"

# A report has the log, and no name or address of it: not of a device that is called like a word of the
# log, not in words of the platform, not in a user's folder.
cat >"$work/private.log" <<'LOG'
[2026-11-23 07:52:45.001] 1 WatchDeviceAdded:watch id:WiFiDirect#42:ab:00:00:01:00
[2026-11-23 07:52:45.002] 2-2 WatchDeviceAdded:Zoé's Cam id:no-address-in-it
[2026-11-23 07:52:45.003] (watch) ConnDevice... name=watch id=WiFiDirect#42:ab:00:00:01:00
[2026-11-23 07:52:45.004] (watch) ConnDevice Err:no way to Zoé's Cam, 42-AB-00-00-01-00, fe80::42ab%p2p or 10.9.8.7.
[2026-11-23 07:52:45.005] (watch) Start Watcher Err:/home/zoe/x and C:\Users\zoe: driver 22.10.0.7, zoe
[2026-11-23 07:52:46.000] (watch) Devices connected on L2 layer, connecting to name(watch),time:9ms(1),watch:9ms(1),fromid:9ms(1) IPAddress: loc:10.9.8.1 remote:10.9.8.7
LOG
"${program[@]}" ip Cam --json "${common[@]}" >"$work/private.jsonl" 2>/dev/null
expect 0 'Names and addresses are masked.*' 0 "${program[@]}" report "$work/report.zip" \
  --log "$work/private.log" --log "$work/private.jsonl"
cp "$work/report.zip" "$work/first.zip"
expect 2 '' 1 "${program[@]}" report "$work/report.zip"
expect 2 '' 1 "${program[@]}" report "$work/none/report.zip"
expect 2 '' 1 "${program[@]}" report "$work/second.zip" --log "$work/quick.json"
expect 0 '*--log run.log' 0 "${program[@]}" report "$work/second.zip"
(cd "$work" && python3 -m zipfile -e report.zip packed)
packed=$work/packed
if ! cmp -s "$work/report.zip" "$work/first.zip" ||
  grep -rE "Zo|zoe|Cam|Refuses|Once|Hangs|42.[aA][bB]|fe80|10\.9\.8|192\.168|no-address" "$packed" ||
  ! grep -q '^\[2026-11-23 07:52:45.003\] (watch) ConnDevice... name=device-1 id=WiFiDirect#02:00:00:00:00:01$' \
    "$packed/log.txt" ||
  ! grep -q 'way to device-2, 02-00-00-00-00-01, 2001:db8::1%p2p or 198.18.0.1\.$' "$packed/log.txt" ||
  ! grep -q 'driver 22.10.0.7, user-1$' "$packed/log.txt" ||
  ! grep -q '198.18.0.2 to 198.18.0.1' "$packed/timeline.svg" ||
  ! grep -q '"kind":"deviceip","message":"198.18.0' "$packed/log-2.txt" || [ ! -s "$packed/timeline-2.svg" ]; then
  echo "unexpected: the members of a report"
  failures=$((failures + 1))
fi

app=$(dirname "$0")/../apps/lanvoss
for scenario in office silent.json "$app"/scenarios/windows_field.json; do
  expect 0 '*' 0 "${program[@]}" run 'sleep 1' --dir "$work" --scenario "$scenario"
done

expect 0 "Refuses*-*-* *:*:* *WiFiDirect#*" 0 "${program[@]}" devices --dir "$work"
expect 1 '' 1 "${program[@]}" devices --dir "$work/none"
expect 0 '*up 192.168.49.1,*' 0 interrupted "${program[@]}" keep Cam --log "$work/log" "${common[@]}"

expect 0 "the link is up: 192.168.49.1,$remote" 1 fed 'fly\nip Cam\nquit\nfly' "${program[@]}" shell --quiet \
  "${common[@]}"

# The manual and the completions know every command and option.
for word in $("${program[@]}" --help | sed -nE 's/^  (-[hV],)?((--)?[a-z]+) .*/\2/p'); do
  for file in manual/lanvoss.1 completions/{lanvoss.bash,_lanvoss,lanvoss.fish}; do
    if ! grep -qE -- "(^|[^a-z-])-{0,2}${word#--}([^a-z-]|$)" "$app/$file"; then
      echo "missing: $word in $file"
      failures=$((failures + 1))
    fi
  done
done

# Every line is an object, the last one the result, and nothing else is written.
expect 0 '{*' 0 "${program[@]}" ip Cam --json "${common[@]}"
if ! jq -es 'last.exit == 0 and last.kind == "result" and last.local == "192.168.49.1" and
    last.times_ms.search > 0 and
    any(.[]; .kind == "deviceip") and all(.[]; .time and .kind)' "$work/out" >/dev/null; then
  echo "unexpected: JSON lines"
  failures=$((failures + 1))
fi

sequence=('ip Cam' ping disconnect 'watch  Cam' 'sleep 200' abort stop ping)
expect 0 '*' 0 "${program[@]}" run "${sequence[@]}" "${common[@]}"
expect_results "> ip Cam -> 192.168.49.1,$remote" '> ping -> replies: 4' '> disconnect -> 1' \
  '> watch  Cam -> 0' '> sleep 200 -> done' '> abort -> 0' '> stop -> 0' '> ping -> no link to probe'
expect 6 '*' 1 "${program[@]}" run 'ip --direct Cam' ping "${common[@]}"
expect_results '> ip --direct Cam -> no link' '> ping -> no link to probe'
expect 2 '' 1 "${program[@]}" run ping 'ip --gap soon Cam' "${common[@]}"
expect 2 '*' 1 fed '# first\n\n abort \nfly\nstop\n' "${program[@]}" run "${common[@]}"
expect_results '> abort -> 0'
expect 2 '*' 1 fed '\r\n sleep 1\r\nfly\r\n' "${program[@]}" run "${common[@]}"
expect_results '> sleep 1 -> done'
expect 130 '*' 1 interrupted "${program[@]}" run 'sleep 20000' "${common[@]}"
expect 130 '*' 1 interrupted "${program[@]}" run "${common[@]}" < <(sleep 5)
expect 0 '' 0 prompt 2 "${program[@]}" run 'sleep 4000' "${common[@]}"

expect_doctor_to_read_devices() { # that are written into Wine's registry, and nothing else is there
  local devices='HKEY_LOCAL_MACHINE\System\CurrentControlSet\Enum\LanvossTest'
  local class='{4d36e972-e325-11ce-bfc1-08002be10318}'
  local drivers="HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Control\\Class\\$class"
  local version='{A8B865DD-2E3D-4094-AD97-E593A70C75D6}'
  cat >"$work/devices.reg" <<REG
REGEDIT4
[$devices\\Card\\1]
"ClassGUID"="$class"
"DeviceDesc"="Wi-Fi 6"
"Driver"="$class\\\\9001"
[$devices\\Card\\1\\Properties\\$version\\0002]
@=hex(ffff0010):00,00,e0,0e,fd,df,d7,01
[$devices\\Virtual\\1]
"ClassGUID"="$class"
"HardwareID"="{5d624f94-8850-40c3-a3fa-a4fd2080baf3}\\\\VWIFIMP_WFD"
"Driver"="$class\\\\9001"
[$devices\\Cable\\1]
"ClassGUID"="$class"
"DeviceDesc"="Ethernet"
[$drivers\\9001]
"*IfType"=dword:00000047
"DriverVersion"="22.10.0.7"
REG
  "${program[0]}" reg import "Z:$work/devices.reg" 2>/dev/null
  expect 3 '{*' 1 "${program[@]}" doctor --json
  if ! jq -e 'def has($state; $text): any(.findings[]; .state == $state and (.what | contains($text)));
      has("ok"; "the adapter Wi-Fi 6, driver 22.10.0.7 of 2021-11-23") and
      has("ok"; "a Microsoft Wi-Fi Direct Virtual Adapter") and
      has("missing"; "WLAN AutoConfig (WlanSvc) is not installed") and
      has("missing"; "WFDOpenHandle") and has("ok"; "Mobile Hotspot is off") and
      has("check"; "Firewall cannot be read") and ([.findings[].what] | tostring | contains("Ethernet") | not) and
      all(.findings[]; .state == "ok" or .fix != "")' "$work/out" >/dev/null; then
    echo "unexpected: what doctor finds"
    jq -c '.findings[]' "$work/out"
    failures=$((failures + 1))
  fi
  "${program[0]}" reg delete "$devices" /f >/dev/null
  "${program[0]}" reg delete "$drivers\\9001" /f >/dev/null
}
raw=(--dir "$work" --scenario "$work/raw.json")
unprivileged=() # takes the right to open raw sockets from a command that would have it
[ "$(id -u)" -ne 0 ] || unprivileged=(setpriv --bounding-set -net_raw --inh-caps -net_raw)
expect 0 "192.168.49.1,$remote" 0 "${program[@]}" ping Cam "${common[@]}"
if [[ ${program[-1]} == *.exe ]]; then
  expect_doctor_to_read_devices
  echo "skipped: missing the right to open raw sockets, which cannot be taken from it here"
else
  # It is not probed, and above all not unpaired.
  expect 3 '' 1 "${unprivileged[@]}" "${program[@]}" ping Cam --recover "${raw[@]}"
fi
exit $((failures > 0))
