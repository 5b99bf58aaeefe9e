#include <Nu.Core.Ex/NuArrayUInt.h>
#include <Nu.Core.Ex/NuNamedArrayImpl.h>

namespace Nu {

NU_DEFINE_NAMED_ARRAY(CNuArrayUInt, unsigned int)

}  // namespace Nu
