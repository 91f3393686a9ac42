# The table of ratios and growth factors, from lines "round benchmark nanoseconds": see scripts/bench. A ratio is taken
# within a round, where its two figures were measured one behind the other; what is shown is the median of the rounds.

{ time[$2, $1] = $3; if ($1 > rounds) rounds = $1 }

function median(values, count,    i, j, value) {
    for (i = 2; i <= count; i++) {
        value = values[i]
        for (j = i - 1; j > 0 && values[j] > value; j--) values[j + 1] = values[j]
        values[j + 1] = value
    }
    return count % 2 ? values[(count + 1) / 2] : (values[count / 2] + values[count / 2 + 1]) / 2
}

function ratio(above, below,    round, count, values) {
    for (round = 1; round <= rounds; round++) {
        if (!((above, round) in time) || !((below, round) in time)) {
            printf "report.awk: no figure for %s over %s in round %d\n", above, below, round > "/dev/stderr"
            failed = 1
            exit 1
        }
        values[++count] = time[above, round] / time[below, round]
    }
    return median(values, count)
}

function row(quantity, measured, limit, digits) {
    printf "| %s | %.*f | ≤ %s | %s |\n", quantity, digits, measured, limit, measured <= limit ? "reached" : "missed"
}

# A figure for which nothing is to be reached.
function beside(quantity, measured) { printf "| %s | %.2f | | |\n", quantity, measured }

function over_floor(quantity, operation, floor, limit) { row(quantity, ratio(operation, floor), limit, 2) }

function growth(operation, card, large, small, limit) {
    row("`" operation "`, time per call: " card, ratio(operation large, operation small), limit, 2)
}

END {
    if (failed) exit 1
    print "| quantity | measured | to reach | verdict |"
    print "|---|--:|--:|---|"
    over_floor("`Listup` / floor, 11 × 9,090", "Listup/11/9090", "FloorOfListup/11/9090", 1.35)
    over_floor("`Listup` / floor, 1 × 9,999", "Listup/1/9999", "FloorOfListup/1/9999", 1.35)
    beside("`Listup` / the same floor, but asking for the pictures alone, 11 × 9,090", ratio("Listup/11/9090", "FloorOfPictures/11/9090"))
    over_floor("`Listup` with `DCF_ENTRY_TIME=dirent` / floor without any `fstatat`, 11 × 9,090", "dirent:Listup/11/9090", "dirent:FloorOfNames/11/9090", 3)
    over_floor("`Listup` with `DCF_ENTRY_TIME=dirent` / floor without any `fstatat`, 1 × 9,999", "dirent:Listup/1/9999", "dirent:FloorOfNames/1/9999", 3)
    over_floor("`GetFirst` and `GetNext` over all / floor, 11 × 9,090", "WalkNext/11/9090", "FloorOfBrowsing/11/9090", 1.5)
    over_floor("`GetAt` for every position / floor, 11 × 9,090", "GetAt/11/9090", "FloorOfBrowsing/11/9090", 1.5)
    over_floor("`GetAtSimply` for every position / floor, 900 × 111", "GetAtSimply/900/111", "FloorOfPaths/900/111", 2.5)
    over_floor("`DeleteSel` of every second file / floor, 1 × 9,999", "DeleteSel/1/9999", "FloorOfDeletion/1/9999", 1.15)
    split("GetFileListIndex SetCur SetWifiFlag", found)
    for (i = 1; i in found; i++) growth(found[i], "1 × 9,999 over 1 × 1,000", "/1/9999", "/1/1000", 1.5)
    split("GetCount GetFileCount SetSel IsSel SetCurIndex GetNewFileName", all)
    for (i = 1; i in all; i++) growth(all[i], "900 × 111 over 1 × 1,000", "/900/111", "/1/1000", 2)
    print "| metadata calls per kept entry in `Listup` | counted in `tests/cost/` | ≤ 1, 0 with `dirent` | |"
    print "| cold listing of a real exFAT folder, guest instructions per file, 9,999 files over 1,000 | `scripts/card-tests --instructions` counts it | ≤ 1.3 | |"
    row("memory per file after a listing of 100,000, in bytes", ratio("bytes:Listup/100/1000", "bytes:one"), 200, 0)
}
