#pragma once

/// A program linked with CountingAllocations.cpp counts what every allocator
/// of the process, operator new among them, takes from the C library.
namespace allocations {

/// Allocations and reallocations of all threads so far.
long count();

} // namespace allocations
