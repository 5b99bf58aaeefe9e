#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuNamedArrayImpl.h>

namespace Nu {

NU_DEFINE_NAMED_ARRAY(CNuArrayDouble, double)

}  // namespace Nu
