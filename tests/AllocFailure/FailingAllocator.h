#pragma once

namespace NuTest {

// The replaced global operator new of this test binary lets `allowed` more allocations succeed,
// fails the one after them with std::bad_alloc, and then lets everything pass again.
void FailAllocationAfter(long allowed);
void AllowAllAllocations();
// Blocks handed out by operator new and not yet returned, for leak checks around a call.
long LiveAllocations();

}  // namespace NuTest
