# What one file costs in cards of each shape, from lines "round benchmark nanoseconds" of one round over all of them:
# see scripts/bench. Most benchmarks work on the whole card in one run.

{ time[$2] = $3 }

END {
    shapes = split("1/100 1/1000 1/9999 100/10 100/100 100/1000 900/1 900/11 900/111", shape)
    operations = split("Listup FloorOfListup WalkNext GetAt FloorOfBrowsing GetAtSimply FloorOfPaths DeleteSel FloorOfDeletion SetProtectAll FloorOfProtection GetFileListIndex SetCurIndex SetSel GetNewFileName", operation)
    once = " GetFileListIndex SetCurIndex SetSel GetNewFileName "
    printf "| operation |"
    for (s = 1; s <= shapes; s++) {
        split(shape[s], size, "/")
        printf " %s × %s |", size[1], size[2]
    }
    printf "\n|---|"
    for (s = 1; s <= shapes; s++) printf "--:|"
    print ""
    for (o = 1; o <= operations; o++) {
        printf "| %s |", operation[o]
        for (s = 1; s <= shapes; s++) {
            split(shape[s], size, "/")
            key = operation[o] "/" shape[s]
            calls = index(once, " " operation[o] " ") ? 1 : size[1] * size[2]
            if (operation[o] ~ /^(DeleteSel|FloorOfDeletion)$/) calls /= 2
            printf(key in time ? " %.0f |" : " – |", time[key] / calls)
        }
        print ""
    }
}
