#include <Nu.Core.Ex/NuArrayUShort.h>
#include <Nu.Core.Ex/NuNamedArrayImpl.h>

namespace Nu {

NU_DEFINE_NAMED_ARRAY(CNuArrayUShort, unsigned short)

}  // namespace Nu
