/// @file
/// The platform's log. The library calls it and brings none: a device links its own, a workstation the host layer.
#ifndef DLOG_H
#define DLOG_H

#ifdef __cplusplus
extern "C" {
#endif

/// Writes one line to a log buffer. May be called from any thread.
/// @param logId log buffer; the library uses 3 (applications).
/// @param priority the library uses 4 (information).
/// @param tag the library uses "MM_FLIST".
/// @param format a printf format; the library uses "%s: %s(%d) > %s" with source file name, function, line and a
///        message that starts with the terminal reset sequence and ends with the same and a newline.
/// @return ignored by the library.
int __dlog_print(int logId, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif

#endif
