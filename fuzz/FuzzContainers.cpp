// Random operations on two int arrays against a plain model: values, lengths, the bounds raise, and
// the block kept wherever the growth rule (old length + max(old length, added)) does not move it.
#include <Nu.Core.Ex/NuArrayInt.h>
#include "FuzzInput.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  NuFuzz::CInput input(data, size);
  Nu::CNuArrayInt arrays[2];
  std::vector<int> models[2];
  std::size_t capacities[2] = {};
  while (!input.Empty()) {
    unsigned int const op = input.Below(6), which = input.Below(2);
    unsigned long const a = input.Below(40);
    Nu::CNuArrayInt& array = arrays[which];
    std::vector<int>& model = models[which];
    std::size_t& capacity = capacities[which];
    std::size_t const length = op == 2 ? 0 : op == 5 ? models[1 - which].size() : a;
    bool const moves = op != 3 && op != 4 && length > capacity;
    if (moves) capacity = model.size() + std::max(model.size(), length - model.size());
    void const* block = array.GetPointer();
    switch (op) {
      case 0: array.New(a); break;
      case 1: array.Resize(a); break;
      case 2: array.Delete(); break;
      case 3: array.Reset(); std::fill(model.begin(), model.end(), 0); break;
      case 4: if (a < model.size()) array[a] = model[a] = input.Take<int>(); break;
      default: array.CopyFrom(&arrays[1 - which]); model = models[1 - which]; break;
    }
    if (op < 3) model.resize(length, 0);
    bool raised = false;
    try { (void)array[model.size()]; } catch (Nu::CNuException const&) { raised = true; }
    if (!raised || (!moves && array.GetPointer() != block) || array.Length() != model.size()) std::abort();
    for (std::size_t i = 0; i < model.size(); ++i)
      if (array[i] != model[i]) std::abort();
  }
  return 0;
}
