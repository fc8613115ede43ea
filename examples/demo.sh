#!/bin/sh
# Shows the tool at work on the plans of this folder: examples/demo.sh ORLF [FOLDER]
# ORLF is the built tool, FOLDER takes the chart (the tool's own folder by default).
set -eu

orlf=${1:?usage: demo.sh ORLF [FOLDER]}
output=${2:-$(dirname "$orlf")}
here=$(dirname "$0")
mkdir -p "$output"

say() { printf '\n== %s\n\n' "$1"; }
# Shows a command as it would be typed, then runs it.
run() {
  printf '$ orlf'
  for word in "$@"; do
    case $word in
      *[!A-Za-z0-9_./:,=+%@-]*) printf " '%s'" "$word" ;;
      *) printf ' %s' "$word" ;;
    esac
  done
  printf '\n'
  "$orlf" "$@"
}

say "Payment dates of a mortgage: the last weekday of each month"
run dates --freq monthly --by-weekday=-1weekday --start 2024-01-31T09:30:00 --count 6 --tz America/New_York

say "The mortgage over 30 years, then savings, drawn"
run plan "$here/mortgage.json" --on 2024-02-01 2029-02-01 2034-02-01 2039-02-01 2044-02-01 2049-02-01 \
  2054-02-01 2059-02-01 2064-02-01 --chart "$output/mortgage.svg"

say "A loan with level payments: its amortization table, abridged"
run loan --principal 300000 --rate 4.5% --compounding 12 --payments 12 --periods 360 --schedule >"$output/loan.txt"
sed -n '1,14p' "$output/loan.txt"
echo '...'
tail -n 3 "$output/loan.txt"

say "A rule in words, and its dates"
run describe 'RRULE:FREQ=MONTHLY;BYDAY=2TU,-1FR'
run dates --rule 'RRULE:FREQ=MONTHLY;BYDAY=2TU,-1FR' --start 2024-01-01 --count 4

say "What could be borrowed, to be paid off a year earlier"
run plan "$here/mortgage.json" --solve-principal 0 --on 2053-02-01

say "Amounts as people type them"
for amount in '$1,000.50' '1.234,56' '(12.50)' '3 1/2' '1,23,456' '12%' '5 USD'; do
  printf '  %-12s %s\n' "$amount" "$("$orlf" amount -- "$amount")"
done

say "Dates as people type them"
run date 2/13/21 13/2/2021 2021-02-13 'Feb 3, 2021' 3/4 5 --today 2021-02-10

say "A sum in a German field of amounts"
run calc '1.234,50 + zwei*[3-1]' --locale de_DE --steps

say "A bank's statement as XML"
run ofx2xml "$here/statement.ofx" --pretty

say "Is 03/04/24 in March or in April? A later date of the same column tells"
printf 'Date;Amount\n03/04/24;-5.00\n03/14/24;12.50\n' >"$output/dates.csv"
run infer-dates "$output/dates.csv" --column 1

say "A bank's statement as QIF: the dates tell their order, or the job asks"
run qif "$here/../tests/data/csv/csv2ofx/schwab-checking.csv" --account Checking -o "$output/statement.qif"
sed -n '1,12p' "$output/statement.qif"

say "Spans of dates, up to an end that is no part of them"
run span 2024-01-01 2025-01-01 --compact
run span 2024-11-01 2025-03-01 --compact
run span 2024-01-05 2024-01-08 --locale de_DE

say "A backup brought into line with its books: first what that would do"
rm -rf "$output/books" "$output/backup"
mkdir -p "$output/books/2024" "$output/backup/2022"
echo 'Rent;-800' >"$output/books/2024/may.csv"
echo 'Cash;Savings' >"$output/books/accounts.csv"
echo 'Cash' >"$output/backup/accounts.csv"
echo 'Rent;-700' >"$output/backup/2022/may.csv"
run mirror "$output/books" "$output/backup" --dry-run
run mirror "$output/books" "$output/backup"

say "The books packed under a password, and a new folder made of them"
rm -rf "$output/books.aar" "$output/books_again"
echo 'correct horse battery staple' >"$output/password.txt"
run archive "$output/books" "$output/books.aar" --password-file "$output/password.txt"
run extract "$output/books.aar" "$output/books_again" --password-file "$output/password.txt"
diff -r "$output/books" "$output/books_again"

say "The application for a loan as a process: checked, drawn, and walked by commands from a pipe"
run process check "$here/loan_application.xml"
run process graph "$here/loan_application.xml" -o "$output/loan_application.dot"
if command -v dot >/dev/null; then
  run process graph "$here/loan_application.xml" -o "$output/loan_application.svg"
fi
printf '%s\n' begin next back forward next retired next next alone other cancel |
  run process run "$here/loan_application.xml" >"$output/walk.txt"
sed -n '1,14p' "$output/walk.txt"
echo '...'
tail -n 2 "$output/walk.txt"

say "Passwords in a file under a password"
rm -f "$output/passwords.store" "$output/passwords.store.lock"
printf 'correct horse' >"$output/store-password.txt"
printf 's3cret' >"$output/bank-password.txt"
run store create "$output/passwords.store" --password-file "$output/store-password.txt"
run store set "$output/passwords.store" bank ann --password-file "$output/store-password.txt" \
  --value-file "$output/bank-password.txt"
run store list "$output/passwords.store" --password-file "$output/store-password.txt"
run store get "$output/passwords.store" bank ann --password-file "$output/store-password.txt"
echo 'The same under a wrong password:'
printf 'wrong horse' | "$orlf" store get "$output/passwords.store" bank ann --password-file - || true

say "A file watched over an atomic save: a new file is written beside it and renamed to its name"
printf 'old\n' >"$output/watched.txt"
: >"$output/watch.txt"  # what an earlier run has left says "started" too
"$orlf" watch "$output/watched.txt" --once >"$output/watch.txt" &
watcher=$!
until grep -q started "$output/watch.txt"; do sleep 0.05; done
printf 'new\n' >"$output/watched.txt.new"
mv "$output/watched.txt.new" "$output/watched.txt"
wait "$watcher"
printf '$ orlf watch watched.txt --once &\n$ mv watched.txt.new watched.txt\n'
cat "$output/watch.txt"

say "A statement fetched from a bank that wants a token: the log shows neither it nor the password"
: >"$output/port.txt"
python3 "$here/bank_server.py" >"$output/port.txt" &
bank=$!
trap 'kill "$bank" 2>/dev/null || :' EXIT
until [ -s "$output/port.txt" ]; do sleep 0.05; done
address="http://127.0.0.1:$(cat "$output/port.txt")/statement"
printf 'Authorization: Bearer 4f1c9a77e2\n' >"$output/token.txt"
rm -f "$output/web.log" "$output/fetched.json"
run fetch "$address?password=swordfish" --retry-auth "@$output/token.txt" --log "$output/web.log" \
  --mask password,iban >"$output/fetched.json"
cat "$output/fetched.json"
run modified "$address"
run fetch "$address" --header "@$output/token.txt" -o "$output/statement.json"
run fetch "$address" --header "@$output/token.txt" -o "$output/statement.json" --if-newer
printf '$ cat web.log\n'
cat "$output/web.log"
if grep -q -e 4f1c9a77e2 -e swordfish -e DE02120300000000202051 "$output/web.log"; then
  echo 'a secret stands in the log' >&2
  exit 1
fi

printf '\nThe chart is in %s, the process in %s\n' "$output/mortgage.svg" "$output/loan_application.dot"
