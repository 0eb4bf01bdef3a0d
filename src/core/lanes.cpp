#include "core/lanes.h"

namespace zurt {

InstructionSet WidestInstructionSet() {
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx512f"))
        return InstructionSet::Avx512;
    if (__builtin_cpu_supports("avx2"))
        return InstructionSet::Avx2;
#endif
    return InstructionSet::Portable;
}

} // namespace zurt
