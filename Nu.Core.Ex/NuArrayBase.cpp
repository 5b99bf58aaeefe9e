#include <Nu.Core.Ex/NuArrayBase.h>

namespace Nu {

// Exported through the attribute on the extern declarations in the header.
template class CNuArrayBase<double>;
template class CNuArrayBase<int>;
template class CNuArrayBase<unsigned char>;
template class CNuArrayBase<unsigned int>;
template class CNuArrayBase<unsigned short>;
template class CNuArrayBase<CNuString>;

}  // namespace Nu
