#!/usr/bin/env bash
# Runs the benchmark programs under Wine in Xvfb and prints one table: each
# figure with its platform baseline from the same run and their ratio.  The
# full run also writes the table to docs/BENCHMARKS.md.
# Usage: bench.sh [--smoke]   (--smoke: smallest size, one repetition)
set -uo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
mode="${1:-}"
args=()
[ "$mode" = "--smoke" ] && args=(--smoke)
raw="$root/build/bench-results.tsv"
: > "$raw"
failed=0
for exe in bench_feed bench_psf bench_paint; do
    echo "== $exe ${args[*]:-}" >&2
    QV_FORCE_XVFB=1 "$root/scripts/with-display.sh" "$root/scripts/wine-run.sh" \
        "$root/build/win/bench/$exe.exe" "${args[@]}" 2> >(grep -v fixme >&2) | tr -d '\r' | grep -E '^(ROW|NOTE)' >> "$raw"
    status=("${PIPESTATUS[@]}")
    if [ "${status[0]}" -ne 0 ]; then
        echo "$exe failed (exit ${status[0]})" >&2
        failed=1
    fi
done

# The DV reader, natively, over a 10-minute 625/50 tape: ten seconds that
# ffmpeg encodes once, joined sixty times (a recording every ten seconds).
# The smoke run reads the short test tape instead.
tapes="$root/build/native/dv-tapes"
"$root/tests/dv/make-tapes.sh" "$tapes"
tape="$tapes/pal.dv"
if [ "$mode" != "--smoke" ]; then
    tape="$root/build/bench-dv/ten-minutes.dv"
    if [ ! -s "$tape" ]; then
        mkdir -p "$(dirname "$tape")"
        ffmpeg -v error -y -f lavfi -i testsrc2=size=720x576:rate=25 -f lavfi -i sine=sample_rate=48000 -t 10 \
            -target pal-dv -timecode 00:00:00:00 -metadata creation_time=2004-05-01T10:00:00 "$tape.part"
        for _ in $(seq 60); do cat "$tape.part"; done > "$tape" && rm "$tape.part"
    fi
fi
echo "== bench_dv ${args[*]:-}" >&2
"$root/build/native/bench_dv" "$tape" "${args[@]}" | grep -E '^(ROW|NOTE)' >> "$raw" || { echo "bench_dv failed" >&2; failed=1; }

# The reference host's deck over the same tape, under Wine: loading it, and a
# quick scan at the fastest deck speed into the pre-scan dialog.
echo "== bench_deck ${args[*]:-}" >&2
QV_FORCE_XVFB=1 "$root/scripts/with-display.sh" "$root/scripts/wine-run.sh" "$root/build/win/bench/bench_deck.exe" \
    "Z:${tape//\//\\}" "${args[@]}" 2> >(grep -v fixme >&2) | tr -d '\r' | grep -E '^(ROW|NOTE)' >> "$raw"
[ "${PIPESTATUS[0]}" -eq 0 ] || { echo "bench_deck failed" >&2; failed=1; }

table() {
    echo "| Figure | Unit | Min | Median | Max | Baseline | Baseline median | Ratio | Target |"
    echo "|---|---|---:|---:|---:|---|---:|---:|---|"
    awk -F'\t' '$1 == "ROW" {
        target = ($12 == "-" || $12 == "") ? "" : $12 " (" $13 ")"
        base = ($7 == "-") ? "" : $7
        printf "| %s | %s | %.4g | %.4g | %.4g | %s | %s | %s | %s |\n", $2, $3, $4, $5, $6, base, ($7 == "-") ? "" : sprintf("%.4g", $9), $11, target
    }' "$raw"
    awk -F'\t' '$1 == "NOTE" { printf "\n%s", $2 } END { print "" }' "$raw"
}

table
if [ "$mode" != "--smoke" ]; then
    mem_gib=$(awk '/MemTotal/ { printf "%.0f", $2 / 1048576 }' /proc/meminfo)
    {
        echo "# Benchmarks"
        echo
        echo "Measured $(date -u +%Y-%m-%d) on $(nproc) cores, ${mem_gib} GiB, $(wine64 --version 2>/dev/null || echo Wine) under Xvfb,"
        echo "with \`make bench\` (scripts/bench.sh). Each figure is the median of at least five runs, with the"
        echo "platform's own cost for the comparable job measured in the same run; the ratio is of the medians."
        echo
        table
        cat <<'NOTES'

## Reading the table

Each figure is set against the platform's own cheapest way to do the comparable job, with the
target. A second row for the same figure, without a target, sets it against a cost of the
platform's that the first baseline does not pay.

### Scene list, scene feed and list files

- **The list is virtual.** Row r of the scene list shows scene r of the scene table: the list asks
  the scene for a cell's text when it draws the cell or when the text is read back, and holds no
  data of its own. A scan raises the row count as scenes come; opening a file or switching the view
  sets it once. A list row built per scene cost 40 to 200 µs under Wine, more the longer the list,
  and was nearly all of an open.
- **Feed baselines.** The first is the list control's own cheapest fill: rows inserted with the
  list's drawing held, then drawn once. The second writes the bytes a scene holds (record, thumbnail
  header and 14,400 bytes of pixels) into fresh memory. The first write to a fresh page costs a page
  fault: on this virtual machine 10 to 45 µs a page, by its load (a native program measures the
  same), so keeping a scene's thumbnail costs 40 to 160 µs, more than a row of the plain list. The
  feed costs that and about 25 µs more (the row count, the selection, the title, the store's
  bookkeeping). Against the plain list it cannot come within 1.5 while it keeps the thumbnails.
  A third row shows the same list left to draw itself after every row.
- **Quick scan.** Each begin and end of a quick scan used to post a message to the dialog's thread,
  and the dialog read the keyboard with another: six round trips to the window system per scene, 0.2
  to 0.3 ms each on a loaded machine, which left the dialog minutes behind a fast host. The feed now
  queues its notifications and posts one message when none is on its way; the dialog takes all that
  wait and refreshes the title and reads the keyboard once for them. The host's thread and the
  dialog then work side by side: a quick scan costs per scene what the normal feed does, and its
  last row is complete within a second of the host's last end.
- **Opening a file.** The reader alone reads about as fast as `CopyFileA` copies the file; the open
  then keeps what it read, and the second baseline, which reads the same file into fresh memory,
  pays the same page faults. At 1,000 scenes some memory freed by the previous open is used again;
  at 32,767 the freed memory goes back to the system and is faulted in anew, so the cost per scene
  comes out higher at the larger size.
- **Saving.** A save writes a new file beside the old one and then replaces it, so a save that fails
  leaves the old file whole. The second baseline does the same with `CopyFileA`: replacing a file
  costs the file system (ext4 here writes the new file's data out before it lets it replace another)
  a third as much again as the copy. The list goes out 64 KiB at a time; a megabyte of buffer, fresh
  at every save, cost a third of a 1,000-scene save.
- **Memory per scene.** Private bytes per scene compare the process before the dialog opened with the
  process after the scan. Heap space freed by earlier runs is reused, so the figure can come out below
  the bytes stored.
- **Full repaint.** Wine takes 10 to 60 ms for a repaint of the list whatever is drawn in it; the
  module's own drawing of the six rows takes about a millisecond. While scenes come, the list is
  drawn once each time the dialog has taken the scenes waiting.

### DV tapes

- **DV reader.** Frames found in a raw DV file and described (time code, recording date and time, record
  start mark, damage) and the recordings among them, against reading the same bytes with nothing done.
  Both read the file from the page cache, so the baseline is what memory and the C library give.
- **The deck on a DV tape.** Loading a tape into the reference host's deck reads it through once to find
  its frames and recordings and decodes one small picture per recording. A quick scan at the fastest
  speed reads one frame in 64, as a deck's trick play does, and feeds each recording to the dialog with
  its thumbnail as the head passes it; its baseline is reading those frames alone.
NOTES
    } > "$root/docs/BENCHMARKS.md"
    echo "written to docs/BENCHMARKS.md" >&2
fi
exit $failed
