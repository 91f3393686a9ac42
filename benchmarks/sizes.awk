# What one file costs in cards of each shape, from lines "round benchmark nanoseconds" of one round over all of them:
# see scripts/bench.

{ time[$2] = $3 }

END {
    shapes = split("1/100 1/1000 1/9999 100/10 100/100 100/1000 900/1 900/11 900/111", shape)
    operations = split("Listup FloorOfListup WalkNext GetAt FloorOfBrowsing GetAtSimply FloorOfPaths DeleteSel FloorOfDeletion SetProtectAll FloorOfProtection GetFileListIndex SetCurIndex SelectAll GetNewFileName", operation)
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
            key = operation[o] "/" shape[s]
            printf(key in time ? " %.0f |" : " – |", time[key])
        }
        print ""
    }
}
