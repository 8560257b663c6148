// The precompiled header belongs to a library, and a library needs a source.
#include "tests/kit/Precompiled.h"
