# The pictures of docs/performance.md: gnuplot -c pictures.gp DATA FOLDER. For light and dark backgrounds alike, what
# is not a curve is grey.
data = ARG1
folder = ARG2
grey = "#808080"

set encoding utf8
set border 3 linecolor rgb grey
set tics nomirror textcolor rgb grey noenhanced
set key noenhanced textcolor rgb grey left top reverse Left samplen 2
set title textcolor rgb grey
set xlabel textcolor rgb grey
set ylabel textcolor rgb grey
set grid xtics ytics linetype 1 linecolor rgb grey linewidth 0.2
set linetype 1 linecolor rgb "#e8590c" linewidth 3 pointtype 7
set linetype 2 linecolor rgb "#1c7ed6" linewidth 1.5 pointtype 5
set linetype 3 linecolor rgb "#2b8a3e" linewidth 1.5 pointtype 9
set linetype 4 linecolor rgb "#9c36b5" linewidth 1.5 pointtype 11
set linetype 5 linecolor rgb grey linewidth 1.5 pointtype 4

# --- Each subject's cost beside its best peer's and its limit's.

ratios = "< awk -F'\t' '\
  NR == 1 { next }\
  { key = $1 ($3 > 0 ? \", \" $3 : \"\") ($4 > 1 ? \", \" $4 \" threads\" : \"\") }\
  $2 == \"own\" { if (key) keys[++count] = key; own[key] = $5; next }\
  $2 == \"limit\" { limit[key] = $5; next }\
  $2 ~ / [(]less[)]$/ { next }\
  !(key in peer) || $5 < peer[key] { peer[key] = $5 }\
  END { for (i = count; i > 0; --i) { k = keys[i];\
    print (peer[k] > 0 && own[k] > 0 ? own[k] / peer[k] : \"NaN\") \"\\t\"\
          (limit[k] > 0 && own[k] > 0 ? own[k] / limit[k] : \"NaN\") \"\\t\" k } }' '".data."'"
rows = int(system("awk -F'\t' '$2 == \"own\"' '".data."' | wc -l"))
set terminal svg size 820, 70 + 16 * rows font "sans-serif,11"
set output folder."/ratios.svg"
set datafile separator tab
set lmargin 58
set logscale x
set xrange [0.1:10]
set yrange [-1:rows]
set xtics ("1/10" 0.1, "1/4" 0.25, "1/2" 0.5, "1" 1, "2" 2, "4" 4, "10" 10)
set title "Time of the library, divided by that of its best peer (bars) and by the limit (dots)" offset -25
set key off
clamp(r) = r < 0.1 ? 0.1 : r > 10 ? 10 : r
plot ratios using (1):0:(clamp($1) < 1 ? clamp($1) : 1):(clamp($1) < 1 ? 1 : clamp($1)):($0 - 0.35):($0 + 0.35):($1 < 1 ? 0x2b8a3e : 0xe8590c):ytic(3) \
       with boxxyerror linecolor rgb variable fillstyle solid 0.8 noborder, \
     ratios using (clamp($2)):0 with points linecolor rgb grey pointtype 7 pointsize 0.4
set datafile separator whitespace
set autoscale
set xtics autofreq
set lmargin -1

# --- How costs grow.

contenders(subject) = system("awk -F'\t' '$1 == \"".subject."\" && !seen[$2]++ { printf \"\\\"%s\\\" \", $2 }' '".data."'")
curve(subject, contender) = "< awk -F'\t' '$1 == \"".subject."\" && $2 == \"".contender."\" && $4 == 1 { print $3, $5 }' '".data."'"
overThreads(subject, contender) = "< awk -F'\t' '$1 == \"".subject."\" && $2 == \"".contender."\" && $3 == 1000 { print $4, $5 }' '".data."'"
line(i) = word(names, i) eq "limit" ? 5 : i
set ylabel "nanoseconds" offset 1
set title offset 0

set terminal svg size 820, 620 font "sans-serif,12"
set output folder."/spline.svg"
set logscale xy
set xlabel "points"
set format x "10^{%L}"
set tics enhanced
set multiplot layout 2, 2
do for [each in "'SplineQTX.calc, random x' 'SplineQTX.calc, rising x' 'SplineQTX construction, per point'"] {
  names = contenders(each)
  set title each
  if (each[1:14] ne "SplineQTX.calc") { set key on at screen 0.6, 0.35 left top }
  plot for [i = 1:words(names)] curve(each, word(names, i)) using 1:2 with linespoints linetype line(i) title word(names, i)
}
unset multiplot
set key on at graph 0, screen 0.25 left top
set bmargin 10
set yrange [1:*]

set terminal svg size 820, 420 font "sans-serif,12"
set output folder."/queue.svg"
set multiplot layout 1, 2
each = "AtomicQueueQTX, Push and PopFirst"
names = contenders(each)
set title "Push and PopFirst, one thread"
set xlabel "elements in the queue"
plot for [i = 1:words(names)] curve(each, word(names, i)) using 1:2 with linespoints linetype line(i) title word(names, i)
set title "Push and PopFirst, 1000 elements"
set xlabel "threads"
unset logscale x
set format x "%g"
set xtics (1, 2, 4, 8)
plot for [i = 1:words(names)] overThreads(each, word(names, i)) using 1:2 with linespoints linetype line(i) title word(names, i)
unset multiplot
set autoscale
unset logscale y

set output folder."/text.svg"
set multiplot layout 1, 2
set xlabel "digits"
set xtics (1, 5, 10, 19, 30, 39)
set yrange [0:*]
do for [each in "'Int128 from text' 'Int128 to text'"] {
  names = contenders(each)
  set title each
  plot for [i = 1:words(names)] curve(each, word(names, i)) using 1:2 with linespoints linetype line(i) title word(names, i)
}
unset multiplot
