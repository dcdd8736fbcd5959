#pragma once

/// True if the process was asked to end (Ctrl-C, or the end of its terminal or session) since the first call. The first
/// call makes those signals do nothing but be remembered; until then they end the process, since nothing is under way.
/// Thread: main only.
bool interruptRequested();
