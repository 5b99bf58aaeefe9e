#include <Nu.Core.Ex/NuArrayInt.h>
#include <Nu.Core.Ex/NuNamedArrayImpl.h>

namespace Nu {

NU_DEFINE_NAMED_ARRAY(CNuArrayInt, int)

}  // namespace Nu
