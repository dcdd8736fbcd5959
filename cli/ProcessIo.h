#pragma once

#include "cli/Io.h"

/// The surroundings of this process: its standard streams, its terminal, the clock and its signals. Call once, before
/// anything is read or written. The streams are those of the standard library and are not owned.
Io processIo();
