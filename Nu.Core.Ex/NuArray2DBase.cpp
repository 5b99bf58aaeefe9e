#include <Nu.Core.Ex/NuArray2DBase.h>

namespace Nu {

// Exported through the attribute on the extern declarations in the header.
template class CNuArray2DBase<double>;
template class CNuArray2DBase<int>;

}  // namespace Nu
