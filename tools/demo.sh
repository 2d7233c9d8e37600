#!/usr/bin/env bash
# Shows the main job on demo data: five stations of a simulated field on pseudo-terminals, a mail server on loopback.
# With a display the program opens on them; without one each station is collected once by the unattended program, and
# this prints what was collected and where it lies. Exits 0 only if all of it is there.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$PWD/build/release
demo=$PWD/build/demo

rm -rf "$demo"
mkdir -p "$demo/scheduler" "$demo/field" "$demo/mail"
cp "$build/Kolmar.mdb" "$demo/"
cp -r "$build/webpages" "$demo/"

children=()
end() { [ ${#children[@]} -eq 0 ] || kill "${children[@]}" 2>/dev/null || true; wait 2>/dev/null || true; }
trap end EXIT

sql() { sqlite3 -batch -cmd '.timeout 5000' "$demo/Kolmar.mdb" "$@"; }

# Waits until a line of a log begins with a word: wait_for FILE WORD SECONDS
wait_for() {
  for _ in $(seq $(($3 * 10))); do
    grep -q "^$2" "$1" 2>/dev/null && return 0
    sleep 0.1
  done
  echo "demo: no '$2' in $1" >&2
  return 1
}

# The program's first tick comes one minute after its start; its minute is the contract hour of the demo stations.
# Near the end of a minute the start could fall into the next one.
while [ "$(date +%-S)" -ge 50 ]; do sleep 1; done
contract_hour=$(date -d '+1 minute' +%H:%M)
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  contract_hour=$(date -d '+3 minutes' +%H:%M)
fi

"$build/demo_register" "$demo" "$contract_hour"
"$build/fieldsim/fieldsim" --directory "$demo" --modem 'COM3=NO CARRIER,CONNECT' >"$demo/field.log" 2>&1 &
children+=($!)
/usr/bin/python3 tests/support/smtp_sink.py "$demo/mail" >"$demo/mail.log" 2>&1 &
children+=($!)
wait_for "$demo/field.log" ready 10
wait_for "$demo/mail.log" listening 10
sql "update mail_server set url='smtp://127.0.0.1:$(awk '/^listening/ {print $2; exit}' "$demo/mail.log")', sender='station@norwen.example';
     delete from email_settings;
     insert into email_settings values('operator@norwen.example','','','Daily report','The gas day of the demo stations.');"

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "The stations are collected at $contract_hour. First login: operator, password operator."
  "$build/norwen" --directory "$demo"
  exit
fi

# What a collection leaves untouched keeps this mark, so that a missing value can be told from a zero.
sql 'update configdata_detail set lastvalue = -999999'
echo "Collecting five stations at $contract_hour, unattended; this takes about three minutes ..."
QT_QPA_PLATFORM=offscreen "$build/norwen" --directory "$demo" --unattended >"$demo/norwen.log" 2>&1 &
program=$!
children+=($program)

# The mail goes out behind the last station.
for _ in $(seq 300); do
  compgen -G "$demo/mail/*.eml" >/dev/null && break
  kill -0 "$program" 2>/dev/null || { echo "demo: the program has ended"; cat "$demo/norwen.log"; exit 1; }
  sleep 1
done
kill -TERM "$program"
wait "$program" || true

tools/check_demo.sh "$demo"
