// A trace log that keeps nothing: linked before the collector's library, it takes the place of the real one,
// so that what is measured is the work beside the trace.

#include "addTrcKord.h"

int32_t addTrcKord(const char*, const char*, const char*)
{
    return 0;
}

void trace(const kordRec*, const char*, const char*, ...) {}
