// Random operation sequences on the 1-D and 2-D containers against a plain model: values,
// lengths and dimensions, block stability where the growth rule promises it, and the raises.
#include <Nu.Core.Ex/NuArray2DInt.h>
#include <Nu.Core.Ex/NuArrayInt.h>
#include <Nu.Core.Ex/NuArrayUInt.h>

#include "FuzzInput.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

struct CArrayModel {
  std::vector<int> Values;
  std::size_t Capacity = 0;

  // Length changes never move the block unless the capacity rule says it grows.
  bool Grow(std::size_t length) {
    bool moved = false;
    if (length > Capacity) {
      std::size_t const added = length - Values.size();
      Capacity = Values.size() + std::max(Values.size(), added);
      moved = true;
    }
    Values.resize(length, 0);
    return moved;
  }
};

void CheckArray(Nu::CNuArrayInt const& array, CArrayModel const& model) {
  Check(array.Length() == model.Values.size());
  Check(array.IsValid());
  for (std::size_t i = 0; i < model.Values.size(); ++i) Check(array[i] == model.Values[i]);
  bool raised = false;
  try {
    (void)array[model.Values.size()];
  } catch (Nu::CNuException const&) {
    raised = true;
  }
  Check(raised);
}

struct C2DModel {
  unsigned long Rows = 0, Columns = 0;
  std::vector<int> Flat;
  bool HasBlock = false;

  void New(unsigned long rows, unsigned long columns) {
    Rows = rows;
    Columns = columns;
    Flat.resize(rows * columns, 0);
    HasBlock = HasBlock || !Flat.empty();
  }

  void Resize(unsigned long rows, unsigned long columns) {
    if (rows == Rows && columns == Columns) return;
    if (Rows != 0 && Columns != 0) {
      if (rows != 0 && columns != 0) {
        std::vector<int> fresh(rows * columns, 0);
        for (unsigned long c = 0; c < std::min(columns, Columns); ++c)
          for (unsigned long r = 0; r < std::min(rows, Rows); ++r) fresh[r * columns + c] = Flat[r * Columns + c];
        Flat = fresh;
        Rows = rows;
        Columns = columns;
      } else {
        Rows = Columns = 0;
        Flat.clear();
      }
    } else {
      New(rows, columns);
    }
  }
};

void Check2D(Nu::CNuArray2DInt const& array, C2DModel const& model) {
  unsigned long rows = 0, columns = 0;
  array.GetSize(rows, columns);
  Check(rows == model.Rows && columns == model.Columns);
  Check(array.IsValid() == model.HasBlock);
  for (unsigned long r = 0; r < rows; ++r)
    for (unsigned long c = 0; c < columns; ++c) Check(array(r, c) == model.Flat[r * columns + c]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  NuFuzz::CInput input(data, size);
  Nu::CNuArrayInt arrays[2];
  CArrayModel models[2];
  Nu::CNuArray2DInt grids[2];
  C2DModel gridModels[2];
  while (!input.Empty()) {
    unsigned int const op = input.Below(12);
    unsigned int const which = input.Below(2);
    Nu::CNuArrayInt& array = arrays[which];
    CArrayModel& model = models[which];
    Nu::CNuArray2DInt& grid = grids[which];
    C2DModel& gridModel = gridModels[which];
    unsigned long const a = input.Below(40), b = input.Below(9);
    void const* before = array.GetPointer();
    switch (op) {
      case 0:
      case 1: {
        bool const moved = model.Grow(a);
        op == 0 ? array.New(a) : array.Resize(a);
        if (!moved) Check(array.GetPointer() == before);
        break;
      }
      case 2:
        array.Delete();
        model.Values.clear();
        Check(array.GetPointer() == before);
        break;
      case 3:
        array.Reset();
        std::fill(model.Values.begin(), model.Values.end(), 0);
        break;
      case 4:
        if (a < model.Values.size()) {
          int const value = input.Take<int>();
          array[a] = value;
          model.Values[a] = value;
        }
        break;
      case 5: {
        bool const moved = model.Grow(models[1 - which].Values.size());
        array.CopyFrom(&arrays[1 - which]);
        model.Values = models[1 - which].Values;
        if (!moved) Check(array.GetPointer() == before);
        break;
      }
      case 6: {
        // Another element type of the same size carries its bits.
        Nu::CNuArrayUInt source(b, 0xFFFFFFFFu);
        model.Grow(b);
        array.CopyFrom(&source);
        std::fill(model.Values.begin(), model.Values.end(), -1);
        break;
      }
      case 7:
        grid.New(a % 7, b);
        gridModel.New(a % 7, b);
        break;
      case 8:
        grid.Resize(a % 7, b);
        gridModel.Resize(a % 7, b);
        break;
      case 9:
        grid.Delete();
        gridModel.Rows = gridModel.Columns = 0;
        gridModel.Flat.clear();
        break;
      case 10:
        if (gridModel.Rows * gridModel.Columns != 0) {
          int const value = input.Take<int>();
          unsigned long const r = a % gridModel.Rows, c = b % gridModel.Columns;
          grid(r, c) = value;
          gridModel.Flat[r * gridModel.Columns + c] = value;
        }
        break;
      default:
        grid = grids[1 - which];
        gridModel.Rows = gridModels[1 - which].Rows;
        gridModel.Columns = gridModels[1 - which].Columns;
        gridModel.Flat = gridModels[1 - which].Flat;
        gridModel.HasBlock = gridModel.HasBlock || !gridModel.Flat.empty();
        break;
    }
    CheckArray(array, model);
    Check2D(grid, gridModel);
  }
  return 0;
}
