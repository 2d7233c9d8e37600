#!/usr/bin/env bash
# Prints what a demo directory holds after its collection, and exits 0 only if nothing is missing:
# tools/check_demo.sh DIRECTORY
set -euo pipefail
demo=$1
sql() { sqlite3 -batch -cmd '.timeout 5000' "$demo/Kolmar.mdb" "$@"; }

missing=0
# One thing that must be there: need WHAT HAVE WANT
need() {
  if [ "$2" != "$3" ]; then
    echo "MISSING  $1: $2 instead of $3"
    missing=1
  fi
}

# Values that the collection did not touch keep the mark of demo_register.
untouched="select count(*) from configdata_detail d where lastvalue = -999999"
figure="select group_concat(f, '; ') from (select description || ' ' || round(lastvalue, 2) || ' ' || unit f
  from configdata_detail where description in ('Volume Yesterday', 'Flowing Pressure', 'Cumulative Standard Volume', 'Pressure')"

echo
echo "Stations"
while IFS='|' read -r location name protocol mode sampled; do
  left=$(sql "$untouched and d.locationID = $location")
  values=$(sql "select count(*) from configdata_detail where locationID = $location and lastvalue <> -999999")
  printf '  %-18s %-7s %-5s %-9s %4s values  %s\n' "$name" "$protocol" "$mode" \
    "$([ "$sampled" = 1 ] && echo collected || echo FAILED)" "$values" \
    "$(sql "$figure and locationID = $location and StreamNo = 1)")"
  need "the outcome of $name" "$sampled" 1
  need "values of $name that were not collected" "$left" 0
  need "the outcome row of $name" \
    "$(sql "select group_concat(how || ' ' || result) from outcome where locationID = $location")" "schedule collected"
  need "the gas day of $name" \
    "$(sql "select count(*) from gasday where locationID = $location and dayflow is not null and pressure is not null")" 1
  need "the day of $name in LogParam" "$(sql "select count(*) from LogParam where LocationId = $location")" 1
done < <(sql "select locationID, consumer, protocol, mode, sampledtoday from configdata_master order by 1")
need "stations" "$(sql 'select count(*) from configdata_master')" 5
need "streams in Scheduler" "$(sql 'select count(*) from Scheduler')" 5

echo
echo "Workbooks"
shopt -s nullglob
books=("$demo"/scheduler/*.xls)
lines=0
for book in "${books[@]}"; do
  echo "  $book"
  tr -d '\r' <"$book" | sed 's/^/    /'
  lines=$((lines + $(grep -cE '^[0-9]+'$'\t' "$book")))
done
# Each stream that was collected has a line for every value that its model's list names.
need "values in the workbooks" "$lines" \
  "$(sql "select count(*) from Scheduler s join sched_ParaList p on p.RTU_Type = case
            when s.RTU_Type like 'TeleCorrector%' then 'TC' when s.RTU_Type like 'Tele%' then 'TF' else s.RTU_Type end")"
need "workbooks" "${#books[@]}" 4

echo
echo "Mail"
mails=("$demo"/mail/*.eml)
for mail in "${mails[@]}"; do
  echo "  $mail"
  grep -iE '^(from|to|subject|date):|filename=' "$mail" | tr -d '\r' | sed 's/^/    /'
  need "the report in $mail" "$(grep -c 'filename="\?daily_report.rtf' "$mail")" 1
done
need "mails" "${#mails[@]}" 1

echo
[ -s "$demo/RTU_Err.log" ] && { echo "RTU_Err.log"; sed 's/^/    /' "$demo/RTU_Err.log"; echo; }
if [ "$missing" -ne 0 ]; then
  echo "Not everything is there; see above."
  exit 1
fi
echo "All of it is there. Database $demo/Kolmar.mdb, workbooks $demo/scheduler, report $demo/daily_report.rtf"
