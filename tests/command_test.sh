#!/bin/sh
# Runs the command as a user would. Usage: command_test.sh PROGRAM SAMPLE_DIRECTORY [EMULATOR]. Line ends of Windows
# count as those of here.
# Each case: exit status, a pattern for standard output, one for standard error (- for an empty stream), arguments.
program=$1
sample=$2
emulator=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cases=0
failures=0

check() {
    status=$1 out=$2 err=$3
    shift 3
    $emulator "$program" "$@" <"$work/in" >"$work/out" 2>"$work/err"
    got=$?
    sed -i 's/\r$//' "$work/out" "$work/err"
    cases=$((cases + 1))
    for stream in out err; do
        eval pattern=\$$stream
        if [ "$pattern" = - ]; then
            [ ! -s "$work/$stream" ]
        else
            grep -qE -e "$pattern" "$work/$stream"
        fi || {
            echo "$*: std$stream is not \"$pattern\":"
            cat "$work/$stream"
            failures=$((failures + 1))
        }
    done
    [ $got = "$status" ] || {
        echo "$*: exit status $got, not $status"
        failures=$((failures + 1))
    }
}

printf '\357\273\277''52.5 13.4 100 Ort Ä\r\n' >"$work/in"
check 0 '^ *52\.498595283 +13\.398258473 +140\.9639  Ort Ä$' - transform --from 101 --to 201 -d "$sample"
check 0 '^ *3785273\.0479 +901657\.6570 +5036881\.2583' - transform --from 101 --to 202 -d "$sample"
check 0 '^ *52\.498595283 .*Ä$' - transform --from 101 --to 201 -d "$sample" "$work/in"
check 0 '^ *52\.498595283 +13\.398258472 +139\.3263  Ort Ä$' - transform --from 101 --to 201 -d "$sample" --height n
check 0 '^ *52\.498595283 +13\.398258473 +140\.9639 +101\.6376  Ort Ä$' - \
    transform --from 101 --to 201 -d "$sample" --heights
printf '52.5 13.4 100 A\032\n52.5 13.4 100 B\n' >"$work/in"
check 0 '^ *52\.498595283 .* B$' - transform --from 101 --to 201 -d "$sample"
printf '52.498595283 13.398258472 100\n' >"$work/in"
# echo 13.398258472 52.498595283 139.3263 | cct -d 4 +proj=cart +ellps=GRS80
check 0 '^ *3785272\.07[0-9]+ +901657\.4259 +5036879\.95[0-9]+$' - transform --from 201 --to 202 -d "$sample" --height n
check 2 - 'status 93: Zur Lagestatusangabe existiert keine' transform --from 101 --to 999 -d "$sample"
check 2 - 'Definitionsdatei /none.DEFAULT kann zum Lesen nicht geöffnet' transform --from 1 --to 2 -d /none
check 2 - 'more than 99 characters' list -d "$(printf 'd%.0s' $(seq 100))"
check 2 - 'cannot be opened' transform --from 101 --to 201 -d "$sample" "$work/none"
check 2 - '--height' transform --from 101 --to 201 --height x -d "$sample"
printf '5812561.1624 33388982.4028 103.1135 Rauenberg\n' >"$work/in"
check 0 '^ *5814068\.9341 +4592988\.2976 +62\.0000  Rauenberg$' - transform --from 203 --to 103 -d "$sample"
check 0 '^ *13891\.397. +22383\.398. +62\.0000  Rauenberg$' - transform --from 203 --to 105 -d "$sample"
printf '52.5 13.4\n' >"$work/in"
check 0 '^ *52\.498595[0-9]+ +13\.398258[0-9]+$' - transform --from 101 --to 201 -d "$sample"
check 1 '\* +52\.5 13\.4  the third' 'input:1: the third coordinate is missing' transform --from 102 --to 201 -d "$sample"
printf '# note\n\n52.5 13,4 1\n52.5\n1 2 3x\n1 inf\n52 13 7 good' >"$work/in"
check 1 '  good$' '4 of 5 points failed: 4 unreadable' transform --from 101 --to 201 -d "$sample"
check 1 '^# note$' 'input:3: not a number: "13,4"' transform --from 101 --to 201 -d "$sample"
check 0 '^301 +4178 .*Krassowski +System 42/83 geographisch$' - list -d "$sample"
check 0 '^20 +scale of the datum transformation +1\.00000101 +1\.0000067' - show 301 -d "$sample"
check 2 - 'status 93' show 999 -d "$sample"
check 0 'Maßstabs zum Zwischensystem$' - message 86 x.tra
check 1 - 'no message' message 3
check 2 - . message twelve
check 2 - . unknown
check 0 'Lesefehler in a(�)+b😀(�)+ beim' - message 8 "$(printf 'a\340\200\200b\360\237\230\200\377\303')"
check 0 '^lagestatus [0-9]' - --version
check 0 'transform' - --help
mkdir "$work/Größe – neu" "$work/Łódź"
for directory in "$work/Größe – neu" "$work/Łódź"; do
    cp "$sample"/* "$directory"
done
check 0 'Gauß-Krüger' - list -d "$work/Größe – neu"
case $program in
*.exe) check 2 - 'Łódź: .*Windows-1252' list -d "$work/Łódź" ;;
*) check 0 'Gauß-Krüger' - list -d "$work/Łódź" ;;
esac
printf '52.5 13.4 100 Ort Ä\n' >"$work/Łódź/pünkte"
check 0 '^ *52\.498595283 .*Ä$' - transform --from 101 --to 201 -d "$work/Größe – neu/" "$work/Łódź/pünkte"
cp "$sample"/* "$work/"
# A file without its second column serves as a source.
LC_ALL=C sed -i 's/^\([-0-9.e]*\)  *[-0-9.e]*$/\1/' "$work/system-42-83-geographisch.tra"
check 0 '^301 .*System 42/83 geographisch \(source only: status 70\)$' - list -d "$work"
check 0 '^14 +translation in Y +-126\.4 +- +m$' - show 301 -d "$work"
# Without a height model: the place is there, what needs a normal height is marked or fails.
rm "$work/hoehe.ini"
printf '52 13 7 P\n' >"$work/in"
missing='1110 Datei .*hoehe\.ini existiert nicht'
check 0 '^ *51\.9986[0-9]* +12\.9983[0-9]* +[0-9.]+  P$' - transform --from 101 --to 201 -d "$work"
check 0 '^ *52\.0[0-9]* +13\.0[0-9]* +[-0-9.]+  P$' - transform --from 201 --to 101 -d "$work"
check 1 "^ *51\.9986[0-9]* +12\.9983[0-9]* +[0-9.]+ +\*  P  $missing" '1 of 1 points failed: 1 with status 1110' \
    transform --from 101 --to 201 -d "$work" --heights
check 1 "^ *51\.9986[0-9]* +12\.9983[0-9]* +\*  P  $missing" 1110 transform --from 101 --to 201 -d "$work" --height n
check 1 "^ *\* +\* +\*  P  $missing" 1110 transform --from 101 --to 202 -d "$work" --height n
printf '60 13\n' >"$work/in2"
check 0 '^ *59\.99[0-9]* +12\.99[0-9]*$' - transform --from 101 --to 201 -d "$work" --height n "$work/in2"
printf '3784636.7911 901627.6631 5036427.9577\n' >"$work/in2"
check 0 '^ *58[0-9.]+ +333[0-9.]+ +[-0-9.]+$' - transform --from 202 --to 203 -d "$work" --height n "$work/in2"
check 0 '^ *52[0-9.]+ +13[0-9.]+ +[-0-9.]+$' - transform --from 202 --to 101 -d "$work" --height n "$work/in2"
check 1 "^ *52[0-9.]+ +13[0-9.]+ +[-0-9.]+ +\\*  $missing" 1110 transform --from 202 --to 101 -d "$work" --height n --heights "$work/in2"
check 0 '^ *57[0-9.]+ +33[0-9.]+ +7\.0000  P$' - transform --from 201 --to 203 -d "$work"
check 0 '^ *[0-9.]+ +[0-9.]+ +[0-9.]+  P$' - transform --from 101 --to 202 -d "$work" --heights
printf '52 13\n' >"$work/in2"
check 0 '^ *51[0-9.]+ +12[0-9.]+$' - transform --from 101 --to 201 -d "$work" --heights "$work/in2"
check 0 '^ *[0-9.]+ +[0-9.]+ +[0-9.]+$' - transform --from 101 --to 202 -d "$work" "$work/in2"
printf '0 0 0 P\n' >"$work/in2"
check 1 '^ *\* +\* +\*  P  90 Keine' 'status 90' transform --from 202 --to 201 -d "$work" "$work/in2"
check 1 "^ *\* +\* +\*  P  $missing" 'status 1110' transform --from 201 --to 203 -d "$work" --height n
printf '52 13 7\n' >"$work/in"
check 0 '^ *3834198\.6183 +885064\.4592 +5002813\.0793$' - transform --from 301 --to 202 -d "$work"
printf '101\n' >"$work/etrs89-geographisch.tra"
check 1 '^201 .*status 9: Lesefehler in etrs89-geographisch.tra beim Vergleichen' - list -d "$work"
check 2 - 'etrs89-geographisch.tra beim Vergleichen' transform --from 101 --to 201 -d "$work"
$emulator "$program" transform --from 101 --to 201 -d "$sample" <"$work" 2>/dev/null && failures=$((failures + 1))
[ -e /dev/full ] && $emulator "$program" message 93 >/dev/full 2>/dev/null && failures=$((failures + 1))

echo "$((cases - failures)) passed, $failures failed"
[ $failures = 0 ]
