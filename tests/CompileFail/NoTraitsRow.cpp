// Must not compile: an element type without a traits row has no value rule.
#include <Nu.Core.Ex/Convert/ValueRule.h>

long double Convert(float x) { return Nu::Detail::ConvertChannelValue<long double, float>(x); }
