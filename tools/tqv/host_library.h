// The old spelling of tqv/host/host_library.h, left while bench/ and tests/host still include it;
// delete it once they name the host folder.
#pragma once

#include "tqv/host/host_library.h"
