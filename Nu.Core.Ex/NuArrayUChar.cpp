#include <Nu.Core.Ex/NuArrayUChar.h>
#include <Nu.Core.Ex/NuNamedArrayImpl.h>

namespace Nu {

NU_DEFINE_NAMED_ARRAY(CNuArrayUChar, unsigned char)

}  // namespace Nu
