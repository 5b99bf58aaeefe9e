#include <Nu.Core.Math/NuMatrix.h>

namespace Nu {

// Exported through the attribute on the extern declarations in the header.
template class CNuMatrixBase<double>;
template class CNuMatrixBase<int>;
template class CNuMatrix<double>;
template class CNuMatrix<int>;

}  // namespace Nu
