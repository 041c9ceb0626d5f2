// Reading many numbers at once.
#pragma once

#include <cstddef>

namespace cells {

// Takes the numbers of a range in walking order, run after run.
class NumberSink {
public:
    virtual void Take(double const * numbers, std::size_t count) = 0;

protected:
    ~NumberSink() = default;
};

} // namespace cells
