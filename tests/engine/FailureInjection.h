#pragma once

#include "engine/kelOBWEngine.h"

/// Makes allocations and thread creations fail, anywhere in the program. The platform and the MP4
/// writer that come with it allocate nothing.
namespace failure {

/// The n-th allocation from now on, on any thread, throws std::bad_alloc; those after it succeed.
void failAllocation(long n);
/// Ends this. @return whether that allocation was reached.
bool allocationFailed();
/// How often the log has said since then what an exception was.
int causes();
/// Whether pthread_create fails in the program's own code.
void setThreadCreationFails(bool fails);

/// EncodeFrame waits while the gate is closed.
void setGateOpen(bool open);
/// State in the log of a refused start, which changes nothing.
int stateOf(kelOBWEngine& engine);

}  // namespace failure
