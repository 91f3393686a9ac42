// LibraryMemory: what the library takes through operator new, counted and, where it is asked for, refused. What the
// test itself, the fakes and the client's part of an operation take is let through: the nearest code that is no code of
// the standard library decides. One thread.
#ifndef TESTS_FAULTS_LIBRARY_MEMORY_H
#define TESTS_FAULTS_LIBRARY_MEMORY_H

namespace dcftest {

class LibraryMemory {
public:
    /// Watches until destruction. @param nth the request that is refused, 0 for none. @param persistent and every later
    /// one, too.
    explicit LibraryMemory(int nth = 0, bool persistent = false);
    ~LibraryMemory();
    LibraryMemory(const LibraryMemory&) = delete;
    LibraryMemory& operator=(const LibraryMemory&) = delete;

    /// Requests of the library seen by this object.
    int Requests() const {
        return m_requests;
    }
    int Refused() const {
        return m_refused;
    }
    /// Blocks that the library took under any object and that were not given back.
    static long Live();

    // For operator new.

    static LibraryMemory* Watching();
    /// Counts a request. @return whether it is granted.
    bool Request();

private:
    int m_nth;
    bool m_persistent;
    int m_requests = 0;
    int m_refused = 0;
};

} // namespace dcftest

#endif
