// The interface's destructor, which anchors its virtual table in the library.
#include "ISFileList.h"

ISFileList::~ISFileList() = default;
