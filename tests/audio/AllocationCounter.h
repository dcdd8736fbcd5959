#pragma once

/// Allocations that the calling thread has made with operator new since it began. An executable that is linked with
/// AllocationCounter.cpp counts them all. Any thread.
int allocationsOfThisThread();
