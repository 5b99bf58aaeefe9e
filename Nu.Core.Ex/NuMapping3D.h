#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core/NuString.h>

namespace Nu {

/// A table of corrections to z over a regular grid in a 3-D box.
///
/// The node (ix, iy, iz) is the float at iz * (CountX * CountY) + ix * CountY + iy: y runs
/// fastest, then x, z slowest. Node i of an axis stands at Min + i * Step with
/// Step = (Max - Min) / (Count - 1). Map adds the node at the lower corner of a point's cell to
/// z, with no interpolation; a zero node means "no correction here". Two states: empty (Data
/// null, everything zero) and valid.
class NU_CORE_EX_EXPORT CNuMapping3D {
public:
  /// The empty mapping.
  CNuMapping3D();
  /// Default-constructs, then Create(mapping); an empty source gives an empty copy.
  CNuMapping3D(CNuMapping3D const& mapping);
  /// Default-constructs, then Create(std::move(mapping)): takes over the table.
  CNuMapping3D(CNuMapping3D&& mapping);
  /// Create(mapping), whose result is ignored; returns the mapping itself.
  CNuMapping3D& operator=(CNuMapping3D const& mapping);
  /// Create(std::move(mapping)); a self-move leaves the mapping empty, by design.
  CNuMapping3D& operator=(CNuMapping3D&& mapping);

  /// Destroy, then Text goes.
  virtual ~CNuMapping3D();
  /// Releases the table and zeroes box, counts and steps; Text stays. Always true.
  virtual bool Destroy();
  /// True when a table is allocated.
  virtual bool IsValid() const;
  /// CountX * CountY * 4 * CountZ in unsigned 32-bit arithmetic: it wraps with no check.
  virtual unsigned int GetByteCount() const;
  /// The node table, null when empty.
  virtual float* GetDataPtr();
  /// The node table, read-only; null when empty.
  virtual float const* GetDataPtr() const;

  /// Sizes the table for the counts and stores the box as given (min need not lie below max).
  ///
  /// The block is kept when the wrapping byte count is unchanged, else reallocated uninitialised;
  /// `data`, if non-null, fills it. Returns false and empties the mapping for a count <= 0.
  /// Raises "Error creating mapping" around a CNuException; std::bad_alloc leaves it empty.
  bool Create(float minX, float minY, float minZ, float maxX, float maxY, float maxZ, int countX,
              int countY, int countZ, float const* data);
  /// The ten-argument Create with the source's box, counts and table; Text is not copied.
  bool Create(CNuMapping3D const& mapping);
  /// Takes over the source's table and empties the source; Text is not moved. Always true.
  bool Create(CNuMapping3D&& mapping);
  /// Copies GetByteCount() bytes from `data` when valid. Returns false whether or not it wrote.
  bool Set(float const* data);
  /// Zeroes the table when valid. Raises "Error setting image to zero" around a CNuException.
  void SetZero();
  /// True strictly inside the box: a point on a face, edge or corner, or with a NaN, is outside.
  bool Contains(float x, float y, float z);
  /// Adds the node at the lower corner of the point's cell to z and returns true.
  ///
  /// Returns false, with all three coordinates untouched, when empty, outside, at an index past
  /// the upper nodes or on a node of 0.0 or -0.0. x and y never change.
  bool Map(float& x, float& y, float& z);

protected:
  /// The node table from the array form of new, GetByteCount() bytes; null when empty.
  float* Data;
  float MinX;   ///< The lower bound of the box on x.
  float MinY;   ///< The lower bound of the box on y.
  float MinZ;   ///< The lower bound of the box on z.
  float MaxX;   ///< The upper bound of the box on x.
  float MaxY;   ///< The upper bound of the box on y.
  float MaxZ;   ///< The upper bound of the box on z.
  int CountX;   ///< Nodes along x.
  int CountY;   ///< Nodes along y, the axis that runs fastest in the table.
  int CountZ;   ///< Nodes along z, the axis that runs slowest.
  float StepX;  ///< (MaxX - MinX) / (CountX - 1); infinite or NaN for a single node.
  float StepY;  ///< (MaxY - MinY) / (CountY - 1); infinite or NaN for a single node.
  float StepZ;  ///< (MaxZ - MinZ) / (CountZ - 1); infinite or NaN for a single node.
  /// Kept for layout compatibility; no operation reads, writes, copies or moves it.
  CNuString Text;
};

}  // namespace Nu
