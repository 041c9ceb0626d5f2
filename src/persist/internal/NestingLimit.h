// A bound on records within records while they are read, so that no stream exhausts the stack.
#pragma once

#include "platform/Exceptions.h"

namespace cells::internal {

// One level for its lifetime; the level beyond the limit throws CArchiveException(badSchema).
template <typename Record, int kDeepest>
class NestingLimit {
public:
    NestingLimit() {
        if (s_Depth >= kDeepest) throw CArchiveException(CArchiveException::badSchema);
        ++s_Depth;
    }
    NestingLimit(NestingLimit const &) = delete;
    NestingLimit & operator=(NestingLimit const &) = delete;
    ~NestingLimit() { --s_Depth; }

private:
    static inline int s_Depth = 0;
};

} // namespace cells::internal
