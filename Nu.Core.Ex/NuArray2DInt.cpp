#include <Nu.Core.Ex/NuArray2DInt.h>
#include <Nu.Core.Ex/NuNamedArrayImpl.h>

namespace Nu {

NU_DEFINE_NAMED_ARRAY_2D(CNuArray2DInt, int)

}  // namespace Nu
