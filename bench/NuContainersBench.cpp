// Costs that the containers promise: amortised growth, no allocation on reuse, and a Map that
// is one table read.
#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuMapping3D.h>
#include <Nu.Core.Math/NuMatrix.h>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

// Growing one element at a time doubles the capacity, so the cost per element stays flat.
void ArrayGrowByOne(benchmark::State& state) {
  auto const length = static_cast<unsigned long>(state.range(0));
  for (auto _ : state) {
    Nu::CNuArrayDouble array;
    for (unsigned long i = 1; i <= length; ++i) array.Resize(i);
    benchmark::DoNotOptimize(array.GetPointer());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ArrayGrowByOne)->Range(1 << 6, 1 << 16);

// Delete keeps the block: refilling a used array touches no allocator, only the zeroing.
void ArrayReuseAfterDelete(benchmark::State& state) {
  auto const length = static_cast<unsigned long>(state.range(0));
  Nu::CNuArrayDouble array(length);
  for (auto _ : state) {
    array.Delete();
    array.New(length);
    benchmark::DoNotOptimize(array.GetPointer());
  }
  state.SetBytesProcessed(state.iterations() * state.range(0) * 8);
}
BENCHMARK(ArrayReuseAfterDelete)->Range(1 << 6, 1 << 16);

// New reshapes in place; Resize always pays a new block and a copy by position.
void MatrixNewInPlace(benchmark::State& state) {
  auto const side = static_cast<unsigned long>(state.range(0));
  Nu::CNuMatrix<double> matrix(side, side);
  for (auto _ : state) {
    matrix.New(side / 2, side * 2);
    matrix.New(side, side);
    benchmark::DoNotOptimize(matrix.GetPointer());
  }
}
BENCHMARK(MatrixNewInPlace)->Range(16, 1024);

void MatrixResizeByPosition(benchmark::State& state) {
  auto const side = static_cast<unsigned long>(state.range(0));
  Nu::CNuMatrix<double> matrix(side, side);
  for (auto _ : state) {
    matrix.Resize(side / 2, side * 2);
    matrix.Resize(side, side);
    benchmark::DoNotOptimize(matrix.GetPointer());
  }
  state.SetBytesProcessed(state.iterations() * state.range(0) * state.range(0) * 8 * 2);
}
BENCHMARK(MatrixResizeByPosition)->Range(16, 1024);

// Map: no allocation, one division per axis and one table read.
void MappingMap(benchmark::State& state) {
  Nu::CNuMapping3D mapping;
  std::vector<float> const nodes(64 * 64 * 16, 0.5f);
  mapping.Create(0, 0, 0, 64, 64, 16, 64, 64, 16, nodes.data());
  float x = 0.25f;
  for (auto _ : state) {
    float y = 31.5f;
    float z = 7.25f;
    benchmark::DoNotOptimize(mapping.Map(x, y, z));
    benchmark::DoNotOptimize(z);
    x = x < 62.0f ? x + 1.0f : 0.25f;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(MappingMap);

}  // namespace
