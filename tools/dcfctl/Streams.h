// Keeps the tool's own output apart from whatever the library prints, and is the last net under an assertion of the
// library. Called by main first of all; the rehearsal's children call Silence.
#ifndef DCFCTL_STREAMS_H
#define DCFCTL_STREAMS_H

namespace dcfctl {

/// Gives the tool's output a descriptor of its own and leaves the library a standard output that goes nowhere, so that
/// a line which the library prints never stands in the middle of a document. Descriptors 0, 1 and 2 are open
/// afterwards, whatever the caller closed: no file that is opened later can take their place and receive the output.
/// @return the descriptor of the real standard output.
int SeparateOutput();

/// Sends standard output and standard error nowhere.
void Silence();

/// When the library ends on a broken condition in spite of all that was looked at before, one line goes to standard
/// error and the process exits with "incomplete" instead of dying by a signal.
void CatchAborts();

/// What is to be done before that line: the screen is given back by it. Null for nothing.
/// @param action calls only what a signal handler may.
void BeforeLastLine(void (*action)());

} // namespace dcfctl

#endif
