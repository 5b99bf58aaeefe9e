#include "FailingAllocator.h"

#include <cstdlib>
#include <new>

namespace {

// The tests run on one thread; a plain counter is enough.
long Countdown = -1;
long Live = 0;

void* Allocate(std::size_t size) {
  if (Countdown == 0) {
    Countdown = -1;
    throw std::bad_alloc();
  }
  if (Countdown > 0) --Countdown;
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++Live;
  return block;
}

void Release(void* block) noexcept {
  if (block == nullptr) return;
  --Live;
  std::free(block);
}

}  // namespace

namespace NuTest {

void FailAllocationAfter(long allowed) { Countdown = allowed; }
void AllowAllAllocations() { Countdown = -1; }
long LiveAllocations() { return Live; }

}  // namespace NuTest

// Every form a library or the standard library may call, so that no block crosses allocators.
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  try {
    return Allocate(size);
  } catch (std::bad_alloc const&) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
  try {
    return Allocate(size);
  } catch (std::bad_alloc const&) {
    return nullptr;
  }
}
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete[](void* block, std::size_t) noexcept { Release(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { Release(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept { Release(block); }
