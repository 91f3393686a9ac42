// The keys of the browser, in the one table from which its help is drawn and against which the man page is tested.
// Plain constants.
#ifndef DCFCTL_BROWSE_KEYS_H
#define DCFCTL_BROWSE_KEYS_H

namespace dcfctl {

struct BrowseKeyRow {
    const char* keys;
    const char* meaning;
};

inline constexpr BrowseKeyRow kBrowseKeys[] = {
    {"Down, Right", "to the next file"},
    {"Up, Left", "to the previous file"},
    {"PageDown, PageUp", "a screenful on, or back"},
    {"Home, End", "to the first file, to the last one"},
    {"0 to 9", "a position, then Enter: to that file"},
    {"/", "a path or a part of one, then Enter: to that file"},
    {"n", "to the next file with that part"},
    {"Space", "select the file; again: no more"},
    {"c", "select nothing"},
    {"p", "protect the selected files or the one here; again: no more"},
    {"w", "mark them for transfer; again: no more"},
    {"d", "delete them, after a question"},
    {"i", "what is odd about the card"},
    {"r", "list the card anew"},
    {"?", "this help"},
    {"q", "leave"},
};

} // namespace dcfctl

#endif
